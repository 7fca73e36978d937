// Hosts written as scripts drive an unattended run: every notification reaches them, and the faults are
// stored.
#include <windows.h>

#include "library/installed_suite.h"

namespace vordane::suite {
namespace {

class ScriptHost : public InstalledSuite {
 protected:
  void SetUp() override {
    InstalledSuite::SetUp();
    useScenario(L"jobs");
  }
};

Path scriptEngine() {
  std::wstring folder(MAX_PATH, L'\0');
  folder.resize(GetSystemDirectoryW(folder.data(), MAX_PATH));
  return Path(folder) / L"cscript.exe";
}

// Runs the script to its end; the exchange answers when the host has heard that its request was accepted.
void expectScript(const Path& script, const std::string& expected, Program::Arguments arguments = {}) {
  arguments.insert(arguments.begin(), {L"//nologo", script.wstring()});
  Program program(scriptEngine(), arguments, layout().addins());
  program.output().whenever("TurnOnFlow", [] { give(L"heard"); });
  const int code = program.wait();
  program.output().await("\n");
  EXPECT_TRUE(isExpected(masked(program.output().text()), expected));
  EXPECT_EQ(code, 0);
  awaitGone();
}

TEST_F(ScriptHost, TheExampleRunsAJob) {
  expectScript(layout().source / "examples" / "host.js", "js-host.expected", {L"PBX-1", L"1", L"60"});
  EXPECT_EQ(stored(), 2);
}

// It answers with plain script objects.
TEST_F(ScriptHost, OneThatIsItsOwnExchangeServer) {
  expectScript(layout().tests() / "host" / "js-exchange.js", "js-exchange.expected");
  EXPECT_EQ(stored(), 1);
}

}  // namespace
}  // namespace vordane::suite
