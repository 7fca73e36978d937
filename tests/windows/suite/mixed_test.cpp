// Programs of both word sizes together: a 32-bit host with the 64-bit add-in and the reverse, with the
// exchange server of the add-in's word size and of the host's. Needs both builds: VORDANE_SUITE_PROGRAMS_X64
// and ..._X86, usually those of the build trees beside each other.
#include <cstring>

#include "library/installed_suite.h"

namespace vordane::suite {
namespace {

enum class Words { x64, x86 };

Path programsOf(Words words) {
  const std::wstring given =
      variable(words == Words::x64 ? L"VORDANE_SUITE_PROGRAMS_X64" : L"VORDANE_SUITE_PROGRAMS_X86");
  if (!given.empty()) return given;
  const Path builds = layout().programs.parent_path().parent_path();
  return builds / (words == Words::x64 ? L"windows-x64" : L"windows-x86") / L"programs";
}

// The machine type that a program was built for: 8664 or 014c.
std::uint16_t machineOf(const Path& program) {
  const std::string bytes = readText(program).substr(0, 4096);
  std::uint32_t header = 0;
  std::uint16_t machine = 0;
  std::memcpy(&header, bytes.data() + 60, sizeof header);
  if (header + 6 < bytes.size()) std::memcpy(&machine, bytes.data() + header + 4, sizeof machine);
  return machine;
}

struct Together {
  const char* name;
  Words addin, host, exchange;
};

class Mixed : public InstalledSuite, public testing::WithParamInterface<Together> {
 protected:
  void SetUp() override {
    for (const Words words : {Words::x64, Words::x86})
      if (!std::filesystem::exists(programsOf(words) / L"vordane" / L"VORDANE.EXE"))
        GTEST_SKIP() << "there are no programs in " << utf8(programsOf(words));
    if (std::filesystem::exists(systemWide32()) == false)
      GTEST_SKIP() << "this system runs programs of one word size alone";
    InstalledSuite::SetUp();
    useScenario(L"jobs");
  }

 private:
  static Path systemWide32() { return Path(variable(L"SystemRoot")) / L"SysWOW64" / L"kernel32.dll"; }
};

void use(const Together& together) {
  const Layout& at = layout();
  copyFile(programsOf(together.addin) / L"vordane" / L"VORDANE.EXE", at.addins());
  copyFile(programsOf(together.host) / L"devhost" / L"devhost.exe", at.addins());
  copyFile(programsOf(together.exchange) / L"zulsim" / L"Zulsim.exe", at.exchange);
  registerProgram(at.addin());
  registerProgram(at.simulator());
  const auto expected = [](Words words) { return words == Words::x64 ? 0x8664 : 0x014C; };
  EXPECT_EQ(machineOf(at.addin()), expected(together.addin));
  EXPECT_EQ(machineOf(at.host()), expected(together.host));
  EXPECT_EQ(machineOf(at.simulator()), expected(together.exchange));
}

TEST_P(Mixed, AWholeRun) {
  use(GetParam());
  const Host host("mixed");
  EXPECT_TRUE(endsAsExpected(host, "mixed"));
  awaitGone();
  EXPECT_EQ(stored(), 2);
}

INSTANTIATE_TEST_SUITE_P(
    WordSizes, Mixed,
    testing::Values(Together{"addin64_host32_exchange64", Words::x64, Words::x86, Words::x64},
                    Together{"addin32_host64_exchange32", Words::x86, Words::x64, Words::x86},
                    Together{"addin64_host32_exchange32", Words::x64, Words::x86, Words::x86},
                    Together{"addin32_host64_exchange64", Words::x86, Words::x64, Words::x64}),
    [](const auto& entry) { return std::string(entry.param.name); });

}  // namespace
}  // namespace vordane::suite
