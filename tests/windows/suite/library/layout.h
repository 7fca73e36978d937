// Where the suite under test stands on this workstation. All of it comes from here, so that one run works in
// the folders of a Wine prefix and another in folders of its own on a workstation with an installed suite.
#pragma once

#include <filesystem>
#include <string>

namespace vordane::suite {

using Path = std::filesystem::path;

// Each from the environment variable beside it, when that is set.
struct Layout {
  Path
      root;  // VORDANE_SUITE_ROOT: ...\QUILMAR32\vvvvv, usually C:\QUILMAR32\30000; vvvvv has five characters
  Path exchange;   // VORDANE_SUITE_EXCHANGE: the simulator's folder, usually C:\SIM
  Path elsewhere;  // VORDANE_SUITE_ELSEWHERE: where tests put suites and programs of other places, usually
                   // C:\ELSEWHERE
  Path programs;   // VORDANE_SUITE_PROGRAMS: the programs under test, usually those built beside this one
  Path helpers;  // VORDANE_SUITE_HELPERS: programs of the tests themselves, usually the build's tests\windows
  Path source;   // VORDANE_SUITE_SOURCE: data, examples and tests\windows\suite, usually the repository
  std::wstring otherSection;  // VORDANE_SUITE_OTHER_SECTION: the version of suites elsewhere, usually 31000

  // Of the version in the settings: the root's last part.
  std::wstring section() const { return root.filename().wstring(); }

  Path addins() const { return root / L"ADDINS"; }
  Path ownDatabases() const { return addins() / L"DATABASE"; }
  Path sharedDatabases() const { return root / L"QUIL32" / L"DATABASE"; }
  Path faults() const { return ownDatabases() / L"FAULT.MDB"; }
  Path schedule() const { return sharedDatabases() / L"Schedule.mdb"; }
  Path addin() const { return addins() / L"VORDANE.EXE"; }
  Path host() const { return addins() / L"devhost.exe"; }
  Path simulator() const { return exchange / L"Zulsim.exe"; }
  Path tools() const { return programs / L"tools" / L"vordane-tools.exe"; }
  // What the tests expect and play: host\*.txt, host\*.expected, scenarios\*.zul.
  Path tests() const { return source / L"tests" / L"windows" / L"suite"; }
};

const Layout& layout();

// A variable of the environment; empty when it is not set.
std::wstring variable(const wchar_t* name);

}  // namespace vordane::suite
