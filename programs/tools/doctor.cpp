#include <filesystem>
#include <iostream>

#include "commands.h"
#include "doctor_checks.h"

namespace vordane::tools {

// 0: nothing to say; 1: something is incomplete or stops the program.
int doctor(const Arguments& arguments) {
  if (arguments.size() != 1) {
    std::cerr << "usage: vordane-tools doctor SUITE_DIR\n";
    return 2;
  }
  const SuiteLayout layout{toPath(arguments.front())};
  std::error_code failure;
  if (!std::filesystem::is_directory(layout.root, failure)) {
    std::cerr << arguments.front() << ": there is no such directory\n";
    return 1;
  }
  std::vector<Finding> findings = examineFiles(layout, *examiningEngine());
  if (const auto workstation = thisWorkstation())
    for (Finding& finding : examineWorkstation(layout, *workstation)) findings.push_back(std::move(finding));
  else
    std::cout << "settings and registration are examined on Windows only\n";
  for (const Finding& finding : findings)
    std::cout << (finding.fatal ? "stops the program: " : "incomplete: ") << finding.text << '\n';
  if (findings.empty()) std::cout << "nothing is missing\n";
  return findings.empty() ? 0 : 1;
}

}  // namespace vordane::tools
