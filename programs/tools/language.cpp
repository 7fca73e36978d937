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
  for (const std::string& folder : folders) sources.push_back(readLanguage(toPath(folder), problems));
  for (const LanguageSource& source : sources) checkLanguage(source, problems);
  compareLanguages(sources, problems);
  if (problems.empty()) std::cout << sources.size() << " language(s) complete\n";
  return report(problems);
}

int usage() {
  std::cerr << "usage: vordane-tools language check FOLDER ...\n"
               "       vordane-tools language build [--common] FOLDER OUT.LNG\n";
  return 2;
}

int build(Arguments arguments) {
  const bool common = arguments.front() == "--common";
  if (common) arguments.erase(arguments.begin());
  if (arguments.size() != 2) return usage();
  Problems problems;
  const LanguageSource source = readLanguage(toPath(arguments[0]), problems);
  checkLanguage(source, problems);
  if (!problems.empty()) return report(problems);
  (common ? buildCommonLanguage : buildOwnLanguage)(source, toPath(arguments[1]));
  return 0;
}

}  // namespace

int language(const Arguments& arguments) {
  if (arguments.size() < 2) return usage();
  if (arguments[0] == "check") return check({arguments.begin() + 1, arguments.end()});
  if (arguments[0] == "build") return build({arguments.begin() + 1, arguments.end()});
  return usage();
}

}  // namespace vordane::tools
