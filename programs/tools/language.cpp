#include <iostream>
#include <memory>
#include <vector>

#include "commands.h"
#include "language_build.h"
#include "language_check.h"
#include "language_source.h"

namespace vordane::tools {
namespace {

int report(const Problems& problems) {
  for (const std::string& problem : problems) std::cerr << problem << '\n';
  return problems.empty() ? 0 : 1;
}

int check(const options::Words& folders) {
  Problems problems;
  std::vector<LanguageSource> sources;
  for (const std::string& folder : folders) sources.push_back(readLanguageSource(toPath(folder), problems));
  for (const LanguageSource& source : sources) checkLanguage(source, problems);
  compareLanguages(sources, problems);
  if (problems.empty()) std::cout << sources.size() << " language(s) complete\n";
  return report(problems);
}

struct ToBuild {
  std::string folder, file;
  bool common = false;
};

int build(const ToBuild& given) {
  Problems problems;
  const LanguageSource source = readLanguageSource(toPath(given.folder), problems);
  checkLanguage(source, problems);
  if (!problems.empty()) return report(problems);
  (given.common ? buildCommonLanguage : buildOwnLanguage)(source, toPath(given.file));
  return 0;
}

}  // namespace

void declareLanguage(options::Command& command) {
  options::Command& checking = command.command(
      "check", "Compares the texts of languages with what the program needs and with one another.");
  const auto folders = std::make_shared<options::Words>();
  checking.arguments("FOLDER", *folders, "the folder of a language");
  checking.runs([folders] { return check(*folders); });

  options::Command& building =
      command.command("build", "Makes a language database of the texts of a language.");
  const auto given = std::make_shared<ToBuild>();
  building.flag("--common", given->common, "Common.LNG instead of VORDANE.LNG");
  building.argument("FOLDER", given->folder, "the folder of a language");
  building.argument("OUT.LNG", given->file, "the file to make");
  building.runs([given] { return build(*given); });
}

}  // namespace vordane::tools
