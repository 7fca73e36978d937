#include <iostream>

#include "commands.h"
#include "doctor_checks.h"

namespace vordane::tools {

// 0: nothing to say; 1: something is incomplete or stops the program.
int doctor(const Arguments& arguments) {
  if (arguments.size() != 1) throw Misuse("the version directory of a suite is needed, and nothing else");
  const SuiteLayout layout{suiteDirectory(arguments.front())};
  std::vector<Finding> findings = examineFiles(layout, *examiningEngine());
  if (const auto workstation = thisWorkstation())
    for (Finding& finding : examineWorkstation(layout, *workstation)) findings.push_back(std::move(finding));
  else
    std::cout << "settings and registration are examined on Windows only\n";
  for (const std::string& line : linesOf(findings)) std::cout << line << '\n';
  return findings.empty() ? 0 : 1;
}

}  // namespace vordane::tools
