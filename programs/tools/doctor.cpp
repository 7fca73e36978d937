#include <filesystem>
#include <functional>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "commands.h"
#include "doctor_remedies.h"
#include "examination.h"
#include "language_check.h"
#include "lines.h"
#include "setup_system.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

struct Options {
  std::string directory;
  std::optional<std::string> source, language;  // of texts that are made
  bool fix = false, yes = false, json = false;
};

class Doctor {
 public:
  explicit Doctor(const Options& given) : given_(given), layout_{suiteDirectory(given.directory)} {}

  // 0: nothing to say; 1: something is incomplete or stops the program.
  int look() {
    std::vector<Finding> findings = examine();
    if (given_.fix) {
      for (const Remedy remedy : remediesFor(findings)) mend(remedy, findings);
      findings = examine();
    }
    if (given_.json)
      std::cout << jsonOf(text::toUtf8(toText(layout_.root)), findings, mended_);
    else
      tell(findings);
    return findings.empty() && !failed_ ? 0 : 1;
  }

 private:
  std::vector<Finding> examine() { return examineSuite(layout_, *engine_, around_); }

  void tell(const std::vector<Finding>& findings) const {
    if (!thisWorkstation()) std::cout << "settings and registration are examined on Windows only\n";
    for (const std::string& deed : mended_) std::cout << "mended: " << deed << '\n';
    for (const std::string& line : linesOf(findings)) std::cout << line << '\n';
  }

  // Each is asked for; no answer is no.
  bool isWanted(Remedy remedy, const std::vector<Finding>& findings) const {
    if (given_.yes) return true;
    for (const Finding& finding : findings)
      if (finding.remedy == remedy) std::cerr << finding.text << '\n';
    std::cerr << "Shall it " << deedOf(remedy) << "? [y/N] " << std::flush;
    std::string answer;
    std::getline(std::cin, answer);
    return answer.starts_with('y') || answer.starts_with('Y');
  }

  void mend(Remedy remedy, const std::vector<Finding>& findings) try {
    if (!isWanted(remedy, findings)) return;
    std::optional<LanguageSource> language;
    if (given_.source && given_.language) language = sources();
    apply(remedy, {layout_, *engine_, *system_, around_, language ? &*language : nullptr});
    mended_.push_back(deedOf(remedy));
  } catch (const database::DatabaseError& failure) {
    say(remedy, text::toUtf8(failure.description()));
  } catch (const ToolError& failure) {
    say(remedy, failure.what());
  }
  void say(Remedy remedy, const std::string& why) {
    failed_ = true;
    std::cerr << "not done: " << deedOf(remedy) << ": " << why << '\n';
  }

  LanguageSource sources() const {
    Problems problems;
    LanguageSource source =
        readLanguageSource(toPath(*given_.source) / "language" / toPath(*given_.language), problems);
    checkLanguage(source, problems);
    if (!problems.empty()) throw ToolError(problems.front());
    return source;
  }

  const Options& given_;
  const SuiteLayout layout_;
  const std::unique_ptr<database::Engine> engine_ = examiningEngine();
  const std::unique_ptr<SetupSystem> system_ = setupSystem();
  const Surroundings around_ = surroundingsHere(*system_);
  std::vector<std::string> mended_;
  bool failed_ = false;  // to mend something
};

}  // namespace

void declareDoctor(options::Command& command) {
  const auto given = std::make_shared<Options>();
  command.argument("SUITE_DIR", given->directory, "the version directory of a suite");
  command.flag(
      "--fix", given->fix,
      "mends what can be mended without losing anything stored: registration, missing texts, the index "
      "of the faults, locks that were left; asks before each");
  command.flag("--yes", given->yes, "does not ask");
  command.option("--source", "SOURCE", given->source,
                 "where texts stand of which a missing language file is made");
  command.option("--language", "NAME", given->language, "their language: a folder of SOURCE/language");
  command.flag("--json", given->json, "one JSON object for programs");
  command.needs("--yes", "--fix");
  command.needs("--source", "--fix");
  command.needs("--source", "--language");
  command.needs("--language", "--source");
  command.notes("Exit code: 0 nothing is missing or unsafe, 1 there is something to say, 2 wrong usage.");
  command.runs([given] { return Doctor(*given).look(); });
}

}  // namespace vordane::tools
