#include <iostream>
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

int check(const Arguments& folders) {
  Problems problems;
  std::vector<LanguageSource> sources;
  for (const std::string& folder : folders) sources.push_back(readLanguageSource(toPath(folder), problems));
  for (const LanguageSource& source : sources) checkLanguage(source, problems);
  compareLanguages(sources, problems);
  if (problems.empty()) std::cout << sources.size() << " language(s) complete\n";
  return report(problems);
}

int build(Arguments arguments) {
  const bool common = arguments.front() == "--common";
  if (common) arguments.erase(arguments.begin());
  if (arguments.size() != 2) throw Misuse("language build needs a folder and the file to make");
  Problems problems;
  const LanguageSource source = readLanguageSource(toPath(arguments[0]), problems);
  checkLanguage(source, problems);
  if (!problems.empty()) return report(problems);
  (common ? buildCommonLanguage : buildOwnLanguage)(source, toPath(arguments[1]));
  return 0;
}

}  // namespace

int language(const Arguments& arguments) {
  if (arguments.size() < 2) throw Misuse("language needs check or build and a folder");
  if (arguments[0] == "check") return check({arguments.begin() + 1, arguments.end()});
  if (arguments[0] == "build") return build({arguments.begin() + 1, arguments.end()});
  throw Misuse("language does not know " + arguments[0]);
}

}  // namespace vordane::tools
