#include "startup/basMain.h"

#include "language/comDatabase.h"
#include "settings/suite_databases.h"
#include "startup/dlgFaultDisplay.h"
#include "text/numbers.h"

namespace vordane::basMain {
namespace {

constexpr std::u16string_view addins = u"Addins";

using platform::Event;

bool openSharedTexts(startup::Application& application) {
  const std::u16string path = application.installPath(u"REGDBOFQUIL32") + u"Common.LNG";
  std::u16string reason;
  if (comDatabase::OpenLanguageDatabase(application.station().engine, path, application.CommonLangDB, true,
                                        &reason))
    return true;
  application.events().fileFailed(Event::sharedTextsUnusable, path, reason);
  return false;
}

// It is opened for writing, but nothing is ever written to it: one that can't be written serves as well.
bool openOwnTexts(startup::Application& application) {
  const std::u16string path = application.ownTextsPath();
  std::u16string reason;
  for (const bool readOnly : {false, true})
    if (comDatabase::OpenLanguageDatabase(application.station().engine, path, application.LangDB, readOnly,
                                          &reason))
      return true;
  application.events().fileFailed(Event::ownTextsUnusable, path, reason);
  return false;
}

bool loadOwnTexts(startup::Application& application) {
  const auto loaded = [&](bool wasLoaded, std::u16string_view table) {
    if (!wasLoaded)
      application.events().fileFailed(Event::ownTextsUnusable, application.ownTextsPath(), table);
    return wasLoaded;
  };
  database::Database& texts = *application.LangDB;
  return loaded(comLanguage::LoadProjectTexts(programName, texts, application.texts), u"tProject") &&
         loaded(comLanguage::LoadTextArray(application.state().Messages, u"tMessages", texts), u"tMessages");
}

bool loadTexts(startup::Application& application) {
  return openSharedTexts(application) && openOwnTexts(application) && loadOwnTexts(application);
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
  std::u16string reason;
  const bool registered = comRegQuil32::RegisterVersion(
      application.installation(), application.station().engine, addins, settings::registeredName,
      versionText(application.station().program), &reason);
  if (!registered) {
    application.events().fileFailed(
        Event::notRegistered, comRegQuil32::registrationPath(application.installation(), addins), reason);
    process.endAtOnce();
  }
  process.setCallTimes({10000, 20000});
  application.form().Load();
}

}  // namespace vordane::basMain
