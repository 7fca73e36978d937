// vordane-tools guide: the guide's sources, checked and made ready for pandoc.
#include <algorithm>
#include <iostream>
#include <memory>

#include "commands.h"
#include "guide_check.h"
#include "language/guide_topics.h"
#include "lines.h"
#include "text/utf8.h"
#include "whole_file.h"

namespace vordane::tools {
namespace {

namespace fs = std::filesystem;

int report(const Problems& problems) {
  for (const std::string& problem : problems) std::cerr << problem << '\n';
  return problems.empty() ? 0 : 1;
}

std::vector<fs::path> languagesOf(const fs::path& guides) {
  std::vector<fs::path> folders;
  std::error_code failure;
  for (const auto& entry : fs::directory_iterator(guides, failure))
    if (entry.is_directory()) folders.push_back(entry.path());
  if (folders.empty())
    throw ToolError(text::toUtf8(toText(guides)) + ": there is no folder of a language in it");
  std::sort(folders.begin(), folders.end());
  return folders;
}

// "vordane-tools decode.txt" holds what vordane-tools decode prints.
ProgramHelp readHelp(const std::string& file) {
  return {text::toUtf8(toText(toPath(file).stem())), readFile(toPath(file))};
}

struct ToCheck {
  std::string guides, languages;
  options::Words helps;
};

int check(const ToCheck& given) {
  std::vector<ProgramHelp> programs;
  for (const std::string& file : given.helps) programs.push_back(readHelp(file));
  Problems problems;
  std::vector<GuideSource> guides;
  for (const fs::path& folder : languagesOf(toPath(given.guides))) {
    guides.push_back(readGuide(folder, problems));
    const LanguageSource language = readLanguageSource(toPath(given.languages) / folder.filename(), problems);
    checkGuide(guides.back(), language, programs, problems);
  }
  compareGuides(guides, problems);
  // Languages without a guide.
  for (const fs::path& folder : languagesOf(toPath(given.languages)))
    if (fs::exists(folder / "messages.tsv") && !fs::exists(toPath(given.guides) / folder.filename()))
      problems.push_back(text::toUtf8(toText(folder.filename())) + ": the guide of this language is missing");
  if (problems.empty()) std::cout << guides.size() << " guide(s) complete\n";
  return report(problems);
}

// The desktop opens files and forgets what stands behind a "#": each topic has a page that leads on.
std::string leadingPage(const std::string& language, const std::string& topic, const GuideWords& words) {
  const std::string target = "guide.html#" + topic;
  return "<!DOCTYPE html>\n<html lang=\"" + language +
         "\">\n<meta charset=\"utf-8\">\n<meta http-equiv=\"refresh\" content=\"0; url=" + target +
         "\">\n<title>" + words(Word::guide) + "</title>\n<p><a href=\"" + target + "\">" +
         words(Word::elsewhere) + "</a></p>\n</html>\n";
}

struct ToWrite {
  std::string guide, language, folder;
};

int write(const ToWrite& given) {
  Problems problems;
  const GuideSource guide = readGuide(toPath(given.guide), problems);
  const LanguageSource language = readLanguageSource(toPath(given.language), problems);
  const std::string text = filledGuide(guide, language, problems);
  if (!problems.empty()) return report(problems);
  const fs::path out = toPath(given.folder);
  fs::create_directories(out);
  writeFile(out / "guide.md", "---\ntitle: \"" + guide.words(Word::guide) + "\"\nlang: " + guide.language +
                                  "\ntoc-title: \"" + guide.words(Word::contents) + "\"\n---\n\n" + text);
  for (const GuideTopic& row : guideTopics) {
    const std::string topic = text::toUtf8(row.topic);
    writeFile(out / (topic + ".html"), leadingPage(guide.language, topic, guide.words));
  }
  return 0;
}

}  // namespace

void declareGuide(options::Command& command) {
  options::Command& checking = command.command(
      "check",
      "Says what a person meets and the guide does not describe, in every language, and what leads nowhere.");
  const auto toCheck = std::make_shared<ToCheck>();
  checking.argument("GUIDES", toCheck->guides, "the folder of the guides");
  checking.argument("LANGUAGES", toCheck->languages, "the folder of the languages");
  checking.options("--described-by", "FILE", toCheck->helps,
                   "what a program prints for help, in a file named PROGRAM.txt; may be given again");
  checking.runs([toCheck] { return check(*toCheck); });

  options::Command& writing = command.command(
      "write", "Makes of a guide and its language one Markdown text, and a page that leads to each topic.");
  const auto toWrite = std::make_shared<ToWrite>();
  writing.argument("GUIDE", toWrite->guide, "the folder of the guide");
  writing.argument("LANGUAGE", toWrite->language, "the folder of the language");
  writing.argument("FOLDER", toWrite->folder, "the folder to write to");
  writing.runs([toWrite] { return write(*toWrite); });
}

}  // namespace vordane::tools
