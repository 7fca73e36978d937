#include "options/options.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <stdexcept>

#include "options/table.h"

namespace vordane::options {

std::string_view version() {
  return VORDANE_VERSION;
}

namespace {

struct Entry {
  std::string name, value, what;  // `value`: of an option, the word for what stands behind it
  CLI::Option* option = nullptr;
  bool repeated = false;

  bool given() const { return option->count() > 0; }
  std::string shown() const { return value.empty() ? name : name + ' ' + value; }
  std::string inUsage() const {
    const std::string one = option->get_required() ? shown() : '[' + shown() + ']';
    return repeated ? one + " ..." : one;
  }
};

// Options of which one at most may be given, or must be.
struct Group {
  std::vector<Entry> entries;
  bool needed;

  template <class Text>
  std::string joined(std::string_view between, Text text) const {
    std::string all;
    for (const Entry& entry : entries) all += (all.empty() ? "" : std::string(between)) + text(entry);
    return all;
  }
  std::string inUsage() const {
    const std::string all = joined(" | ", [](const Entry& entry) { return entry.shown(); });
    return needed ? '(' + all + ')' : '[' + all + ']';
  }
  // Empty when as many are given as may be.
  std::string problem() const {
    const auto name = [](const Entry& entry) { return entry.name; };
    const auto given = std::count_if(entries.begin(), entries.end(), std::mem_fn(&Entry::given));
    if (given > 1) return joined(" and ", name) + " exclude each other";
    return needed && given == 0 ? joined(" or ", name) + " is missing" : "";
  }
};

bool looksLikeOption(const std::string& word) {
  return word.size() > 1 && word[0] == '-' && !(word[1] >= '0' && word[1] <= '9');
}

// Empty for a number.
std::string numberProblem(const std::string& word) {
  long value = 0;
  const char* const end = word.data() + word.size();
  const auto [stopped, error] = std::from_chars(word.data(), end, value);
  return error == std::errc() && stopped == end && value >= 0 ? "" : word + " is no number from 0";
}

}  // namespace

struct Command::Parts {
  std::string path;  // the program's name and the commands' up to this one
  std::string does, notes;
  Parts* above = nullptr;
  CLI::App* app = nullptr;        // of a command it belongs to the program's
  std::unique_ptr<CLI::App> own;  // of a program
  std::vector<Entry> entries;
  std::vector<Group> groups;
  Words* rest = nullptr;  // where the arguments go that are one or more
  std::vector<std::unique_ptr<Command>> commands;
  std::function<int()> deed;

  // A name given twice counts as it was given last.
  Entry& add(Entry entry) {
    if (!entry.repeated) entry.option->take_last();
    return entries.emplace_back(std::move(entry));
  }

  Entry& named(const std::string& name) {
    const auto found =
        std::find_if(entries.begin(), entries.end(), [&](const Entry& entry) { return entry.name == name; });
    if (found == entries.end()) throw std::logic_error(path + " does not declare " + name);
    return *found;
  }

  void group(const Names& names, bool needed) {
    CLI::Option_group& group = *app->add_option_group("group");
    group.require_option(needed ? 1 : 0, 1);
    groups.push_back({{}, needed});
    for (const std::string& name : names) {
      group.add_option(named(name).option);
      groups.back().entries.push_back(named(name));
    }
  }

  Parts& chosen() {
    for (const auto& command : commands)
      if (command->parts().app->parsed()) return command->parts().chosen();
    return *this;
  }

  // One line for each form, without the program's "usage: ".
  std::vector<std::string> forms() const {
    if (commands.empty()) return {path + ownForm()};
    std::vector<std::string> all;
    for (const auto& command : commands)
      for (std::string& form : command->parts().forms()) all.push_back(std::move(form));
    return all;
  }

  std::string ownForm() const {
    std::string form;
    for (const Entry& entry : entries) {
      const auto group = std::find_if(groups.begin(), groups.end(), [&](const Group& some) {
        return std::any_of(some.entries.begin(), some.entries.end(),
                           [&](const Entry& other) { return other.name == entry.name; });
      });
      if (group == groups.end())
        form += ' ' + entry.inUsage();
      else if (group->entries.front().name == entry.name)
        form += ' ' + group->inUsage();
    }
    return form;
  }

  std::string usage() const {
    std::vector<std::string> lines = forms();
    if (own) {
      if (!commands.empty()) lines.insert(lines.begin(), path + " COMMAND [ARGUMENT ...]");
      lines.push_back(path + (commands.empty() ? " " : " COMMAND --help | ") + "--help | --version");
    }
    std::string text;
    for (const std::string& line : lines) text += (text.empty() ? "usage: " : "       ") + line + '\n';
    return text;
  }

  std::string help() const {
    std::vector<std::pair<std::string, std::string>> rows;
    for (const auto& command : commands)
      rows.emplace_back(command->parts().path.substr(path.size() + 1), command->parts().does);
    for (const Entry& entry : entries) rows.emplace_back(entry.shown(), entry.what);
    rows.emplace_back("-h, --help",
                      commands.empty() ? "this text" : "this text; behind a command more of it");
    if (own) rows.emplace_back("--version", "the version");
    return usage() + '\n' + wrapped(does) + '\n' + table(rows) + (notes.empty() ? "" : '\n' + wrapped(notes));
  }

  // What this command has left and then what those above it have, which get back what stands behind `--`.
  Words left() const {
    Words words = app->remaining();
    if (above != nullptr)
      for (std::string& word : above->left()) words.push_back(std::move(word));
    return words;
  }

  // What is wrong with the words that no declaration has taken; arguments that may be several take theirs.
  std::string leftProblem() {
    for (const std::string& word : left()) {
      if (word == "--") continue;
      if (looksLikeOption(word)) return "unknown option " + word;
      if (!commands.empty()) return "there is no command " + word;
      if (rest == nullptr) return word + " is one argument too many";
      rest->push_back(word);
    }
    return {};
  }

  std::string missingProblem() const {
    if (!commands.empty()) return "a command is missing";
    for (const Entry& entry : entries)
      if (entry.option->get_required() && !entry.given()) return entry.what + " is missing";
    for (const Group& group : groups)
      if (std::string problem = group.problem(); !problem.empty()) return problem;
    return {};
  }

  std::string problemOf(const CLI::ParseError& error, const Words& words) {
    std::string problem;
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) problem = valueProblem(words);
    if (problem.empty()) problem = leftProblem();
    if (problem.empty() && dynamic_cast<const CLI::RequiredError*>(&error) != nullptr)
      problem = missingProblem();
    return problem.empty() ? error.what() : problem;
  }

  // The last word is the option that nothing follows, unless a flag was given a value.
  std::string valueProblem(const Words& words) const {
    const std::string last = words.back().substr(0, words.back().find('='));
    for (const Entry& entry : entries)
      if (entry.name == last && !entry.value.empty()) return last + " needs " + entry.value + " behind it";
    for (const std::string& word : words)
      for (const Entry& entry : entries)
        if (entry.value.empty() && word.starts_with(entry.name + '=')) return entry.name + " takes no value";
    return {};
  }
};

Command::Command(std::unique_ptr<Parts> parts) : parts_(std::move(parts)) {
  parts_->app->set_help_flag("-h,--help");
  parts_->app->allow_extras();                      // they are judged when all is read
  parts_->app->allow_windows_style_options(false);  // a path may begin with a slash
}

Command::~Command() = default;

void Command::argument(const std::string& name, std::string& value, const std::string& what) {
  parts_->add({name, {}, what, parts_->app->add_option(name, value)->required()});
}

void Command::optionalArgument(const std::string& name, std::string& value, const std::string& what) {
  parts_->add({name, {}, what, parts_->app->add_option(name, value)});
}

// One that may take several words would also split one in brackets: so the first is an argument of its own,
// and the others are what is left.
void Command::arguments(const std::string& name, Words& values, const std::string& what) {
  CLI::Option* const first = parts_->app->add_option_function<std::string>(
      name, [&values](const std::string& word) { values.push_back(word); });
  parts_->add({name, {}, what, first->required(), true});
  parts_->rest = &values;
}

void Command::flag(const std::string& name, bool& given, const std::string& says) {
  parts_->add({name, {}, says, parts_->app->add_flag(name, given)->disable_flag_override()});
}

void Command::option(const std::string& name, const std::string& value, std::string& given,
                     const std::string& says) {
  parts_->add({name, value, says, parts_->app->add_option(name, given)});
}

void Command::option(const std::string& name, const std::string& value, std::optional<std::string>& given,
                     const std::string& says) {
  CLI::Option* const option = parts_->app->add_option_function<std::string>(
      name, [&given](const std::string& word) { given = word; });
  parts_->add({name, value, says, option});
}

void Command::option(const std::string& name, const std::string& value, std::optional<long>& given,
                     const std::string& says) {
  CLI::Option* const option = parts_->app->add_option_function<std::string>(
      name, [&given](const std::string& word) { given = std::strtol(word.c_str(), nullptr, 10); });
  parts_->add({name, value, says, option->check(numberProblem)});
}

void Command::options(const std::string& name, const std::string& value, Words& given,
                      const std::string& says) {
  CLI::Option* const option = parts_->app->add_option(name, given)->expected(1)->take_all();
  parts_->add({name, value, says, option->allow_extra_args(false), true});
}

void Command::oneAtMost(const Names& names) {
  parts_->group(names, false);
}

void Command::exactlyOne(const Names& names) {
  parts_->group(names, true);
}

void Command::needs(const std::string& name, const std::string& other) {
  parts_->named(name).option->needs(parts_->named(other).option);
}

void Command::notes(const std::string& text) {
  parts_->notes = text;
}

Command& Command::command(const std::string& name, const std::string& does) {
  parts_->app->require_subcommand(1);
  auto parts = std::make_unique<Parts>();
  parts->path = parts_->path + ' ' + name;
  parts->does = does;
  parts->above = parts_.get();
  parts->app = parts_->app->add_subcommand(name);
  return *parts_->commands.emplace_back(new Command(std::move(parts)));
}

void Command::runs(std::function<int()> deed) {
  parts_->deed = std::move(deed);
}

std::unique_ptr<Command::Parts> Command::partsOf(const std::string& program, const std::string& does) {
  auto parts = std::make_unique<Parts>();
  parts->path = program;
  parts->does = does;
  parts->own = std::make_unique<CLI::App>();
  parts->app = parts->own.get();
  return parts;
}

Program::Program(const std::string& name, const std::string& does, int wrongUsage)
    : Command(partsOf(name, does)), wrongUsage_(wrongUsage) {
  parts().app->set_version_flag("--version", name + ' ' + std::string(version()));
}

std::optional<Ending> Program::read(const Words& words) {
  std::string problem;
  try {
    parts().app->parse(Words(words.rbegin(), words.rend()));
    problem = parts().chosen().leftProblem();
  } catch (const CLI::CallForHelp&) {
    return Ending{0, parts().chosen().help(), {}};
  } catch (const CLI::CallForVersion& asked) {
    return Ending{0, asked.what() + std::string("\n"), {}};
  } catch (const CLI::ParseError& error) {
    problem = parts().chosen().problemOf(error, words);
  }
  if (problem.empty()) return std::nullopt;
  const Parts& chosen = parts().chosen();
  return Ending{wrongUsage_, {}, chosen.path + ": " + problem + '\n' + chosen.usage()};
}

int Program::perform() {
  return parts().chosen().deed();
}

}  // namespace vordane::options
