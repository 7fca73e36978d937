// A host and an exchange server that misbehave, in processes of their own, against the installed suite; after
// each round a host that behaves. VORDANE_HOSTILE_CALLS says how many calls they answer (400),
// VORDANE_HOSTILE_SEED where their generator begins, VORDANE_HOSTILE_LOG in which file each call gets a line.
// The long version: VORDANE_HOSTILE_CALLS=20000 VORDANE_TEST_TIMEOUT=10000.
#include <iostream>

#include "library/installed_suite.h"

namespace vordane::suite {
namespace {

class HostilePrograms : public InstalledSuite {
 protected:
  HostilePrograms() {
    for (const Path& program : programs) registerProgram(program);
  }
  ~HostilePrograms() override {
    for (const Path& program : programs) unregisterProgram(program);
  }

  const Path folder = layout().helpers / L"hostile";
  const Path programs[2] = {folder / L"EvilHost.exe", folder / L"EvilExchange.exe"};
};

std::wstring wanted(const wchar_t* name, const std::wstring& usual) {
  const std::wstring set = variable(name);
  return set.empty() ? usual : set;
}

TEST_F(HostilePrograms, LeaveTheAddInAsItWas) {
  setSetting(layout().section(), L"ZUL", L"30666");  // by hand it creates the hostile exchange server
  Program director(folder / L"director.exe",
                   {layout().root.wstring(), wanted(L"VORDANE_HOSTILE_CALLS", L"400"),
                    wanted(L"VORDANE_HOSTILE_SEED", L"1")},
                   layout().programs);
  // As long as it has something to tell it goes on.
  for (std::size_t told = 1; director.output().await("", told); ++told)
    std::cout << director.output().lines()[told - 1] << std::endl;
  EXPECT_EQ(director.wait(), 0);
  awaitGone();
  EXPECT_EQ(integrity(layout().faults()), "ok");
}

}  // namespace
}  // namespace vordane::suite
