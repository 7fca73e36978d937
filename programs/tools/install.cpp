#include <charconv>
#include <fstream>
#include <iostream>
#include <optional>

#include "commands.h"
#include "setup.h"
#include "setup_system.h"

namespace vordane::tools {
namespace {

// What is told goes to whoever reads, and to the log.
class Account {
 public:
  void openLog(const std::string& file) {
    log_.open(toPath(file), std::ios::binary | std::ios::app);
    if (!log_) std::cerr << "vordane-tools: " << file << ": the log can't be written\n";
  }
  void tell(const std::string& line) {
    std::cout << line << '\n' << std::flush;
    if (log_.is_open()) log_ << line << "\r\n" << std::flush;
  }

 private:
  std::ofstream log_;
};

std::string valueBehind(const Arguments& arguments, std::size_t& at) {
  if (at + 1 == arguments.size()) throw Misuse(arguments[at] + " needs a value behind it");
  return arguments[++at];
}

std::chrono::seconds secondsOf(const std::string& text) {
  int seconds = 0;
  const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), seconds);
  if (failure != std::errc{} || end != text.data() + text.size() || seconds < 0)
    throw Misuse("--wait needs a number of seconds, not " + text);
  return std::chrono::seconds(seconds);
}

Words wordsOf(const std::string& name) {
  const auto words = wordsNamed(name);
  if (!words) throw Misuse("--words is x64 or x86, not " + name);
  return *words;
}

void takeRoot(const std::string& argument, std::filesystem::path& root) {
  if (argument.starts_with("--")) throw Misuse("unknown option " + argument);
  if (!root.empty()) throw Misuse("one directory at a time: " + argument);
  const std::filesystem::path whole = std::filesystem::absolute(toPath(argument)).lexically_normal();
  root = whole.has_filename() ? whole : whole.parent_path();
}

// The outcome as exit code; a failure says where it stopped.
template <typename Step>
int outcomeOf(Account& account, Step step) {
  try {
    step([&](const std::string& line) { account.tell(line); });
    return 0;
  } catch (const SetupFailure& failure) {
    account.tell(failure.what());
    return static_cast<int>(failure.outcome());
  }
}

}  // namespace

int install(const Arguments& arguments) {
  InstallRequest request;
  Account account;
  request.version = versionOf(VORDANE_VERSION).value_or(Version{});
  for (std::size_t at = 0; at < arguments.size(); ++at) {
    const std::string& argument = arguments[at];
    if (argument == "--package")
      request.package = toPath(valueBehind(arguments, at));
    else if (argument == "--language")
      request.language = valueBehind(arguments, at);
    else if (argument == "--words")
      request.words = wordsOf(valueBehind(arguments, at));
    else if (argument == "--wait")
      request.wait = secondsOf(valueBehind(arguments, at));
    else if (argument == "--log")
      account.openLog(valueBehind(arguments, at));
    else if (argument == "--this-user")
      request.everybody = false;
    else if (argument == "--demonstration")
      request.demonstration = true;
    else
      takeRoot(argument, request.root);
  }
  if (request.root.empty()) throw Misuse("the version directory is missing");
  if (request.package.empty())
    throw Misuse("--package is missing: the folder that an installer has unpacked");
  const auto system = setupSystem();
  return outcomeOf(account, [&](const Tell& tell) { install(request, *system, tell); });
}

int uninstall(const Arguments& arguments) {
  RemovalRequest request;
  Account account;
  for (std::size_t at = 0; at < arguments.size(); ++at) {
    const std::string& argument = arguments[at];
    if (argument == "--everything")
      request.everything = true;
    else if (argument == "--wait")
      request.wait = secondsOf(valueBehind(arguments, at));
    else if (argument == "--log")
      account.openLog(valueBehind(arguments, at));
    else
      takeRoot(argument, request.root);
  }
  if (request.root.empty()) throw Misuse("the version directory is missing");
  const auto system = setupSystem();
  return outcomeOf(account, [&](const Tell& tell) { uninstall(request, *system, tell); });
}

}  // namespace vordane::tools
