// Libraries that somebody has put beside the programs, and into the folder that they are started in, under
// the names of the system's own, are not loaded.
#include <windows.h>

#include "library/installed_suite.h"

namespace vordane::suite {
namespace {

// Wine takes its own before a file of the same name, Windows does not. (Nothing is planted that libraries of
// Wine itself are linked with: there it is loaded for them.)
constexpr const wchar_t* names[] = {L"msftedit",  L"riched20", L"dwmapi",
                                    L"cryptbase", L"propsys",  L"profapi"};

const Path log = L"C:\\planted.log";  // where a planted library tells that it was loaded

Path built(const wchar_t* file) {
  return layout().helpers / L"shipped" / file;
}

class Planted : public InstalledSuite {
 protected:
  void SetUp() override {
    InstalledSuite::SetUp();
    std::wstring overrides = before_;
    for (const wchar_t* name : names) {
      overrides += (overrides.empty() ? L"" : L";") + std::wstring(name) + L"=n,b";
      for (const Path& folder : {layout().addins(), layout().exchange})
        copyFile(built(L"libplanted.dll"), folder / (std::wstring(name) + L".dll"));
    }
    SetEnvironmentVariableW(L"WINEDLLOVERRIDES", overrides.c_str());
    std::filesystem::remove(log);
  }
  void TearDown() override {
    SetEnvironmentVariableW(L"WINEDLLOVERRIDES", before_.empty() ? nullptr : before_.c_str());
    std::filesystem::remove(log);
    InstalledSuite::TearDown();
  }

  static void expectNothingLoaded(const char* by) {
    EXPECT_FALSE(std::filesystem::exists(log)) << by << " loaded one";
  }

 private:
  std::wstring before_ = variable(L"WINEDLLOVERRIDES");
};

// Else the next test could not fail: a program that loads a library by its bare name gets the planted one.
TEST_F(Planted, ACarelessProgramLoadsOne) {
  copyFile(built(L"careless.exe"), layout().addins());
  EXPECT_EQ(run(layout().addins() / L"careless.exe", {}).code, 0);
  EXPECT_TRUE(std::filesystem::exists(log));
}

TEST_F(Planted, TheAddinLoadsNone) {
  registerProgram(layout().addin());
  expectNothingLoaded("a registration");
  useScenario(L"host");
  {
    const Host host("fetch");
    host.pressRequest();
    EXPECT_EQ(host.wait(), 0) << host.trace();
    awaitGone();
  }
  expectNothingLoaded("the add-in under a host");
  useScenario(L"by-hand");
  keepLog();
  StartedByHand addin;
  addin.fetch();
  EXPECT_EQ(stored(), 81);
  expectNothingLoaded("the window");
}

}  // namespace
}  // namespace vordane::suite
