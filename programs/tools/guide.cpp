// vordane-tools guide: the guide's sources, checked and made ready for pandoc.
#include <fstream>
#include <iostream>
#include <iterator>

#include "commands.h"
#include "guide_check.h"
#include "language/guide_topics.h"
#include "lines.h"
#include "text/utf8.h"

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
  std::ifstream in(toPath(file), std::ios::binary);
  if (!in) throw ToolError(file + ": can't be opened. Check the path and the rights of the file");
  return {text::toUtf8(toText(toPath(file).stem())), {std::istreambuf_iterator<char>(in), {}}};
}

int check(const Arguments& arguments) {
  if (arguments.size() < 2)
    throw Misuse("guide check needs the folder of the guides and that of the languages");
  std::vector<ProgramHelp> programs;
  for (std::size_t at = 2; at < arguments.size(); ++at) programs.push_back(readHelp(arguments[at]));
  Problems problems;
  std::vector<GuideSource> guides;
  for (const fs::path& folder : languagesOf(toPath(arguments[0]))) {
    guides.push_back(readGuide(folder, problems));
    const LanguageSource language = readLanguage(toPath(arguments[1]) / folder.filename(), problems);
    checkGuide(guides.back(), language, programs, problems);
  }
  compareGuides(guides, problems);
  // Languages without a guide.
  for (const fs::path& folder : languagesOf(toPath(arguments[1])))
    if (fs::exists(folder / "messages.tsv") && !fs::exists(toPath(arguments[0]) / folder.filename()))
      problems.push_back(text::toUtf8(toText(folder.filename())) + ": the guide of this language is missing");
  if (problems.empty()) std::cout << guides.size() << " guide(s) complete\n";
  return report(problems);
}

void writeFile(const fs::path& path, const std::string& bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << bytes;
  out.close();
  if (!out)
    throw ToolError(text::toUtf8(toText(path)) +
                    ": can't be written. Check the rights of its folder and the room on its disk");
}

// The desktop opens files and forgets what stands behind a "#": each topic has a page that leads on.
std::string leadingPage(const std::string& language, const std::string& topic, const GuideWords& words) {
  const std::string target = "guide.html#" + topic;
  return "<!DOCTYPE html>\n<html lang=\"" + language +
         "\">\n<meta charset=\"utf-8\">\n<meta http-equiv=\"refresh\" content=\"0; url=" + target +
         "\">\n<title>" + words(Word::guide) + "</title>\n<p><a href=\"" + target + "\">" +
         words(Word::elsewhere) + "</a></p>\n</html>\n";
}

int write(const Arguments& arguments) {
  if (arguments.size() != 3)
    throw Misuse("guide write needs a guide, its language and the folder to write to");
  Problems problems;
  const GuideSource guide = readGuide(toPath(arguments[0]), problems);
  const LanguageSource language = readLanguage(toPath(arguments[1]), problems);
  const std::string text = filledGuide(guide, language, problems);
  if (!problems.empty()) return report(problems);
  const fs::path out = toPath(arguments[2]);
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

int guide(const Arguments& arguments) {
  if (arguments.empty()) throw Misuse("guide needs check or write");
  const Arguments rest{arguments.begin() + 1, arguments.end()};
  if (arguments[0] == "check") return check(rest);
  if (arguments[0] == "write") return write(rest);
  throw Misuse("guide does not know " + arguments[0]);
}

}  // namespace vordane::tools
