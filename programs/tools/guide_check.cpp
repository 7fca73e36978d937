#include "guide_check.h"

#include <algorithm>
#include <map>
#include <regex>
#include <set>

#include "faults/kind_table.h"
#include "guide_kinds.h"
#include "language/guide_topics.h"
#include "language/message_numbers.h"
#include "text/text.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

namespace fs = std::filesystem;
using Names = std::set<std::string>;

// What the host shows of this program's messages besides its own ones.
constexpr std::size_t hostMessages[] = {message::windowTitle,     message::serverAnswer, message::requestDone,
                                        message::databaseNotOpen, message::noNewFaults,  message::runNumber};
constexpr std::u16string_view waitingTexts[] = {u"OleServerBusyMsgText", u"OleRequestPendingMsgText"};

// Asked for everywhere, and described once.
bool isCommonOption(const std::string& option) {
  return option == "--help" || option == "-h" || option == "--version";
}

void eachMatch(std::string_view text, const std::regex& pattern,
               const std::function<void(std::string)>& take) {
  using Match = std::regex_iterator<std::string_view::const_iterator>;
  for (Match at(text.begin(), text.end(), pattern), end; at != end; ++at) take((*at)[1].str());
}

struct Link {
  std::string target, place;
};

// What a guide's text holds, gathered in one reading.
struct Contents {
  std::map<std::string, int> anchors;    // how often
  Names marks;                           // that are terms of a definition with a text
  std::map<std::string, Names> options;  // by the anchor above them
  std::vector<Link> links, pictures;
};

class Reading {
 public:
  explicit Reading(const GuideSource& guide) {
    forEachLine(guide, [this](std::string_view line, int number, const GuideFile& file) {
      take(line, file.name + ":" + std::to_string(number));
    });
  }
  Contents contents;

 private:
  void take(std::string_view line, const std::string& place) {
    static const std::regex anchor(R"(^#+ .*\{#([^ }]+)\})"), picture(R"(!\[[^\]]*\]\(([^)]*)\))"),
        link(R"((?:^|[^!])\[[^\]]*\]\(([^)]*)\))"), option(R"(`(--?[A-Za-z][A-Za-z-]*|/[A-Z][A-Za-z]+))");
    eachMatch(line, anchor, [&](const std::string& name) {
      ++contents.anchors[name];
      section_ = name;
    });
    eachMatch(line, picture, [&](const std::string& file) { contents.pictures.push_back({file, place}); });
    eachMatch(line, link, [&](const std::string& target) { contents.links.push_back({target, place}); });
    if (line.starts_with(":   ") && line.find_first_not_of(' ', 4) != line.npos) {
      for (const std::string& mark : marksOf(term_)) contents.marks.insert(mark);
      eachMatch(term_, option, [&](const std::string& name) { contents.options[section_].insert(name); });
    }
    if (!line.empty()) term_ = line;
  }

  std::string section_, term_;
};

class GuideChecker {
 public:
  GuideChecker(const GuideSource& guide, const LanguageSource& language, Problems& problems)
      : guide_(guide), language_(language), problems_(problems), contents_(Reading(guide).contents) {}

  void run(std::span<const ProgramHelp> programs) {
    messages();
    boxes();
    controls();
    topics();
    marks();
    for (const ProgramHelp& program : programs) options(program);
    links();
    pictures();
  }

 private:
  void complain(const std::string& what) { problems_.push_back(guide_.language + ": " + what); }

  void describe(const std::string& mark, const std::string& what) {
    if (contents_.marks.contains(mark)) return;
    Problems ignored;
    complain(what + " is not described (" + textOfMark(mark, language_, guide_.words, {}, ignored) + ")");
  }

  void messages() {
    const auto one = [this](std::size_t number) {
      describe("message " + std::to_string(number), "message " + std::to_string(number));
    };
    for (const std::size_t number : hostMessages) one(number);
    for (std::size_t number = 0; number < message::count; ++number)
      if (message::isOwn(number) && !message::isUnused(number)) one(number);
  }

  void boxes() {
    for (const std::int16_t number : box::all)
      describe("box " + std::to_string(number), "box " + std::to_string(number));
    for (const std::u16string_view name : waitingTexts)
      describe("project " + text::toUtf8(name), "the box " + text::toUtf8(name));
  }

  void controls() {
    for (const SourceRow& row : language_.controls)
      if (row.fields[1] != u"-1")
        describe("control " + text::toUtf8(row.fields[0]), "control " + text::toUtf8(row.fields[0]));
    for (const SourceRow& row : language_.headings)
      describe("column " + text::toUtf8(row.fields[1]), "column " + text::toUtf8(row.fields[1]));
  }

  void topics() {
    for (const GuideTopic& row : guideTopics)
      if (!contents_.anchors.contains(text::toUtf8(row.topic)))
        complain("the window opens the topic " + text::toUtf8(row.topic) + " for " + text::toUtf8(row.part) +
                 ", which is missing");
    for (const auto& [anchor, times] : contents_.anchors)
      if (times > 1) complain("the topic " + anchor + " stands " + std::to_string(times) + " times");
  }

  // Each mark must stand for something. The one of the reference brings the anchors of all kinds.
  void marks() {
    bool reference = false;
    forEachLine(guide_, [&](std::string_view line, int number, const GuideFile& file) {
      for (const std::string& mark : marksOf(line)) {
        if (mark == "kinds")
          reference = true;
        else
          textOfMark(mark, language_, guide_.words, file.name + ":" + std::to_string(number), problems_);
      }
    });
    for (const faults::FaultKind& row : faults::faultKinds) kind(reference, kindAnchor(row.kind));
    kind(reference, unknownKindAnchor);
  }

  void kind(bool described, const std::string& anchor) {
    if (described)
      contents_.anchors.try_emplace(anchor, 1);
    else
      complain("the fault " + anchor + " is not described");
  }

  void options(const ProgramHelp& program) {
    static const std::regex option(R"((?:^|[^A-Za-z0-9-])(--?[A-Za-z][A-Za-z-]*|/[A-Z][a-z][A-Za-z]+))");
    std::string anchor = program.program;
    std::replace(anchor.begin(), anchor.end(), ' ', '-');
    if (!contents_.anchors.contains(anchor))
      return complain(program.program + " is not described (a topic " + anchor + ")");
    const Names& described = contents_.options[anchor];
    Names known;
    eachMatch(program.text, option, [&](const std::string& name) { known.insert(name); });
    for (const std::string& name : known)
      if (!isCommonOption(name) && !described.contains(name))
        complain("the option " + name + " of " + program.program + " is not described");
    for (const std::string& name : described)
      if (!known.contains(name))
        complain(program.program + " does not know the option " + name + " that is described");
  }

  void links() {
    for (const Link& link : contents_.links) {
      if (!link.target.starts_with("#"))
        problems_.push_back(link.place + ": the link to " + link.target + " leads out of the guide");
      else if (!contents_.anchors.contains(link.target.substr(1)))
        problems_.push_back(link.place + ": the link to " + link.target + " leads nowhere");
    }
  }

  void pictures() {
    Names shown;
    for (const Link& picture : contents_.pictures) {
      shown.insert(picture.target);
      if (!fs::is_regular_file(guide_.folder / toPath(picture.target)))
        problems_.push_back(picture.place + ": the picture " + picture.target + " is missing");
    }
    std::error_code none;
    for (const auto& entry : fs::directory_iterator(guide_.folder / "pictures", none)) {
      const std::string name = "pictures/" + entry.path().filename().string();
      if (!shown.contains(name)) complain("nothing shows the picture " + name);
    }
  }

  const GuideSource& guide_;
  const LanguageSource& language_;
  Problems& problems_;
  Contents contents_;
};

// What is in the first and not in the second.
void compare(const Names& have, const Names& lacks, const std::string& language, const std::string& what,
             Problems& problems) {
  const auto missing = [&](const std::string& name) {
    return language + ": the " + what + " " + name + " is missing";
  };
  for (const std::string& name : have)
    if (!lacks.contains(name)) problems.push_back(missing(name));
}

Names anchorsOf(const Contents& contents) {
  Names names;
  for (const auto& [anchor, times] : contents.anchors) names.insert(anchor);
  return names;
}

Names picturesOf(const Contents& contents) {
  Names names;
  for (const Link& picture : contents.pictures) names.insert(picture.target);
  return names;
}

}  // namespace

void checkGuide(const GuideSource& guide, const LanguageSource& language,
                std::span<const ProgramHelp> programs, Problems& problems) {
  GuideChecker(guide, language, problems).run(programs);
}

void compareGuides(std::span<const GuideSource> guides, Problems& problems) {
  Names anchors, pictures;
  std::vector<Contents> contents;
  for (const GuideSource& guide : guides) {
    contents.push_back(Reading(guide).contents);
    anchors.merge(anchorsOf(contents.back()));
    pictures.merge(picturesOf(contents.back()));
  }
  for (std::size_t n = 0; n < guides.size(); ++n) {
    compare(anchors, anchorsOf(contents[n]), guides[n].language, "topic", problems);
    compare(pictures, picturesOf(contents[n]), guides[n].language, "picture", problems);
  }
}

}  // namespace vordane::tools
