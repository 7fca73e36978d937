#include <iostream>
#include <memory>

#include "commands.h"
#include "doctor_checks.h"

namespace vordane::tools {
namespace {

// 0: nothing to say; 1: something is incomplete or stops the program.
int doctor(const std::string& directory) {
  const SuiteLayout layout{suiteDirectory(directory)};
  std::vector<Finding> findings = examineFiles(layout, *examiningEngine());
  if (const auto workstation = thisWorkstation())
    for (Finding& finding : examineWorkstation(layout, *workstation)) findings.push_back(std::move(finding));
  else
    std::cout << "settings and registration are examined on Windows only\n";
  for (const std::string& line : linesOf(findings)) std::cout << line << '\n';
  return findings.empty() ? 0 : 1;
}

}  // namespace

void declareDoctor(options::Command& command) {
  const auto directory = std::make_shared<std::string>();
  command.argument("SUITE_DIR", *directory, "the version directory of a suite");
  command.notes("Exit code: 0 nothing is missing or unsafe, 1 there is something to say, 2 wrong usage.");
  command.runs([directory] { return doctor(*directory); });
}

}  // namespace vordane::tools
