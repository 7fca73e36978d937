#include "library/installed_suite.h"

#include "library/texts.h"
#include "library/traced.h"

namespace vordane::suite {
namespace {

bool installed = false;  // by this run

}  // namespace

void registerProgram(const Path& program) {
  if (const int code = run(program, {L"/RegServer"}).code; code != 0)
    throw Failure(utf8(program) + " was not registered: " + std::to_string(code));
}

void unregisterProgram(const Path& program) {
  if (const int code = run(program, {L"/UnregServer"}).code; code != 0)
    throw Failure(utf8(program) + " was not unregistered: " + std::to_string(code));
}

void InstalledSuite::install(const std::string& language) {
  const Layout& at = layout();
  if (isTaken(at.root)) endSuitePrograms();  // of an earlier test, or of a run that was broken off
  setLanguage(language);
  for (const Path& folder : {at.root, at.exchange, at.elsewhere}) takeFolder(folder);
  installed = true;
  std::filesystem::create_directories(at.addins());
  copyFile(at.programs / L"vordane" / L"VORDANE.EXE", at.addins());
  copyFile(at.programs / L"devhost" / L"devhost.exe", at.addins());
  copyFile(at.programs / L"zulsim" / L"Zulsim.exe", at.exchange);
  copyFolder(at.source / L"data" / L"scenarios", at.exchange / L"scenarios");
  tools({L"suite", at.root.wstring(), L"--language", wide(language), L"--source",
         (at.source / L"data").wstring()});
  if (!std::filesystem::exists(at.faults())) throw Failure("the suite's files were not made");
  removeSettings(at.section());
  WindowSettingsKept::forget();
  setSetting(at.section(), L"InstallPath", at.root.wstring() + L"\\");
  setSetting(at.section(), L"QUILMAR32", at.section());
  setSetting(at.section(), L"ZUL", L"30001");
  registerProgram(at.addin());
  registerProgram(at.simulator());
  if (playsAll()) keepTraces();
}

void InstalledSuite::TearDown() {
  endSuitePrograms();
  if (playsAll()) expectPlayedAgain();
}

void StartedByHand::fetch() {
  const std::size_t before = logged("LogOut");
  window.press(L"cmdRequest");
  awaitLogged("LogOut", before + 2);
  window.awaitIdle();
}

void removeSuite() {
  if (!installed) return;
  const Layout& at = layout();
  endSuitePrograms();
  for (const Path& program : {at.addin(), at.simulator()})
    if (std::filesystem::exists(program)) run(program, {L"/UnregServer"});
  for (const std::wstring& version : {at.section(), at.otherSection}) removeSettings(version);
  for (const Path& folder : {at.root, at.exchange, at.elsewhere}) leaveFolder(folder);
}

std::string tools(const Program::Arguments& arguments) {
  const Ended ended = run(layout().tools(), arguments);
  if (ended.code != 0) throw Failure("vordane-tools " + utf8(Path(arguments.front())) + ": " + ended.output);
  return ended.output;
}

}  // namespace vordane::suite
