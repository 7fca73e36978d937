#include "startup/basMain.h"

#include "language/comDatabase.h"
#include "settings/suite_databases.h"
#include "startup/dlgFaultDisplay.h"
#include "text/numbers.h"

namespace vordane::basMain {
namespace {

constexpr std::u16string_view addins = u"Addins";

bool openLanguage(startup::Application& application, std::u16string_view item, std::u16string_view file,
                  std::unique_ptr<database::Database>& database, bool readOnly) {
  const std::u16string path = application.installPath(item) + std::u16string(file);
  return comDatabase::OpenLanguageDatabase(application.station().engine, path, database, readOnly);
}

// It is opened for writing, but nothing is ever written to it: one that can't be written serves as well.
bool openOwnLanguage(startup::Application& application) {
  return openLanguage(application, u"Database", u"VORDANE.LNG", application.LangDB, false) ||
         openLanguage(application, u"Database", u"VORDANE.LNG", application.LangDB, true);
}

bool loadTexts(startup::Application& application) {
  return openLanguage(application, u"REGDBOFQUIL32", u"Common.LNG", application.CommonLangDB, true) &&
         openOwnLanguage(application) &&
         comLanguage::LoadProjectTexts(programName, *application.LangDB, application.texts) &&
         comLanguage::LoadTextArray(application.state().Messages, u"tMessages", *application.LangDB);
}

std::u16string versionText(const platform::Program& program) {
  return text::decimal(program.major) + u"." + text::decimal(program.minor) + u"." +
         text::decimal(program.revision);
}

}  // namespace

Start Main(startup::Application& application) {
  SharedState& state = application.state();
  platform::Process& process = application.station().process;
  state.StandAlone = false;
  process.setCallTimes({});  // stand-alone no layer is created that would set them
  state.AddinsSection = comRegQuil32::GetSuiteVersion(application.installation(), addins);
  state.BackGroundDir = application.installPath(u"BackGrnd");
  if (!loadTexts(application)) process.endAtOnce();
  application.helpFile = application.installPath(u"Help") + u"VORDANE.HLP";
  if (application.station().program.startedByAutomation) return Start::hostMode;
  state.StandAlone = true;
  bool shown = false;
  if (!StartStandAlone(application, shown)) process.endAtOnce();
  return shown ? Start::window : Start::nothing;
}

bool StartStandAlone(startup::Application& application, bool& shown) {
  shown = !application.station().program.commandLine.empty();
  if (!shown) return true;
  application.form().Load();
  application.form().setVisible(true);
  return true;
}

void RegisterAddin(startup::Application& application) {
  platform::Process& process = application.station().process;
  const bool registered =
      comRegQuil32::RegisterVersion(application.installation(), application.station().engine, addins,
                                    settings::registeredName, versionText(application.station().program));
  if (!registered) process.endAtOnce();
  process.setCallTimes({10000, 20000});
  application.form().Load();
}

}  // namespace vordane::basMain
