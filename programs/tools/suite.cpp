#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "commands.h"
#include "language_check.h"
#include "suite_files.h"

namespace vordane::tools {
namespace {

struct Options {
  std::string directory, language = "en", source = "data";
  std::string guide;  // empty: none
};

// Every folder of texts; `shared` holds what all of them have.
std::vector<LanguageSource> allLanguages(const std::filesystem::path& folder, Problems& problems) {
  std::vector<LanguageSource> languages;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (!entry.is_directory() || entry.path().filename() == "shared") continue;
    languages.push_back(readLanguageSource(entry.path(), problems));
    checkLanguage(languages.back(), problems);
  }
  return languages;
}

int suite(const Options& given) {
  Problems problems;
  const std::filesystem::path folder = toPath(given.source) / "language";
  const LanguageSource source = readLanguageSource(folder / toPath(given.language), problems);
  checkLanguage(source, problems);
  std::vector<LanguageSource> languages;
  if (problems.empty()) languages = allLanguages(folder, problems);
  if (!problems.empty()) {
    for (const std::string& problem : problems) std::cerr << problem << '\n';
    return 1;
  }
  const SuiteLayout layout{toPath(given.directory)};
  makeSuiteFiles(layout, source, languages);
  installReportLayout(layout, toPath(given.source) / "report", source);
  if (!given.guide.empty()) installGuide(layout, toPath(given.guide), source.name);
  std::cout << "made the data files of " << given.directory << '\n';
  return 0;
}

}  // namespace

void declareSuite(options::Command& command) {
  const auto given = std::make_shared<Options>();
  command.argument("DIR", given->directory, "the directory of the suite");
  command.option("--language", "NAME", given->language,
                 "the language of its texts and of its report: a folder of SOURCE/language, else en");
  command.option("--source", "SOURCE", given->source, "where texts and report stand, else data");
  command.option("--guide", "GUIDES", given->guide,
                 "where the pages of the guide stand, a folder for each language; without it there is none");
  command.runs([given] { return suite(*given); });
}

}  // namespace vordane::tools
