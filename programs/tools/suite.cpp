#include <iostream>
#include <string>

#include "commands.h"
#include "language_check.h"
#include "suite_files.h"

namespace vordane::tools {
namespace {

struct SuiteOptions {
  std::string directory, language = "en", source = "data";
  std::string guide;  // empty: none
};

SuiteOptions parse(const Arguments& arguments) {
  SuiteOptions options;
  for (std::size_t at = 0; at < arguments.size(); ++at) {
    const std::string& argument = arguments[at];
    const bool named = argument == "--language" || argument == "--source" || argument == "--guide";
    if (named && at + 1 == arguments.size()) throw Misuse(argument + " needs a value behind it");
    if (argument == "--language")
      options.language = arguments[++at];
    else if (argument == "--source")
      options.source = arguments[++at];
    else if (argument == "--guide")
      options.guide = arguments[++at];
    else if (argument.starts_with("--"))
      throw Misuse("unknown option " + argument);
    else if (!options.directory.empty())
      throw Misuse("one directory at a time: " + options.directory + " or " + argument);
    else
      options.directory = argument;
  }
  if (options.directory.empty()) throw Misuse("the directory of the suite is missing");
  return options;
}

}  // namespace

int suite(const Arguments& arguments) {
  const SuiteOptions options = parse(arguments);
  Problems problems;
  const LanguageSource source =
      readLanguage(toPath(options.source) / "language" / toPath(options.language), problems);
  checkLanguage(source, problems);
  if (!problems.empty()) {
    for (const std::string& problem : problems) std::cerr << problem << '\n';
    return 1;
  }
  const SuiteLayout layout{toPath(options.directory)};
  makeSuiteFiles(layout, source);
  installReportLayout(layout, toPath(options.source) / "report", source);
  if (!options.guide.empty()) installGuide(layout, toPath(options.guide), source.name);
  std::cout << "made the data files of " << options.directory << '\n';
  return 0;
}

}  // namespace vordane::tools
