// The process as a whole: what the workstation lends it, the state and the databases that live as long as it
// does, and the objects it makes for others. One thread.
#pragma once

#include <memory>
#include <string>

#include "language/comLanguage.h"
#include "language/comPicture.h"
#include "language/comTools.h"
#include "platform/database.h"
#include "platform/event_log.h"
#include "platform/member_table.h"
#include "platform/process.h"
#include "platform/services.h"
#include "platform/view.h"
#include "settings/comRegQuil32.h"
#include "settings/comSchedule.h"
#include "settings/shared_state.h"
#include "startup/event_reports.h"

namespace vordane {

class dlgFaultDisplay;

namespace startup {

// Everything from outside; all of it outlives the application.
struct Workstation {
  platform::SettingsStore& settings;
  platform::Clock& clock;
  platform::Files& files;
  platform::ObjectCreator& creator;
  platform::MessageBoxes& boxes;
  platform::Documents& documents;
  database::Engine& engine;
  window::View& view;
  comPicture::PictureLoader& pictures;
  platform::Process& process;
  platform::EventLog& events;
  platform::Program program;
};

class Application final : public platform::CallQuestions {
 public:
  // `state` is handed in, since the view's own words are read from it too.
  Application(const Workstation& workstation, SharedState& state);
  ~Application() override;
  Application(const Application&) = delete;
  Application& operator=(const Application&) = delete;

  const Workstation& station() const { return station_; }
  SharedState& state() { return state_; }
  const comRegQuil32::Installation& installation() const { return installation_; }
  comSchedule::Environment& runLog() { return runLog_; }
  EventReports& events() { return events_; }
  // The window; made at its first mention, loaded by its own Load.
  dlgFaultDisplay& form();

  // The directory of an item of the product "Addins".
  std::u16string installPath(std::u16string_view item) const;
  std::u16string ownTextsPath() const { return installPath(u"Database") + u"VORDANE.LNG"; }
  // Asks for a box with selector 0; in a scheduled run it is logged instead and answered 6. An empty
  // substitution counts as none given.
  int showBox(std::int16_t number, std::u16string_view substitution = {});
  // True while nobody would see or answer a box.
  bool unattended() override;
  bool askWhileBusy() override;
  void tellPending() override;

  // What the class factories hand out. The layer's last outside release reaches `cOLELayer::released`.
  automation::ObjectRef createLayer();
  automation::ObjectRef createListRequest();
  automation::ObjectRef createSLVRequest();

  comLanguage::ProjectTexts texts;  // the application object's title and waiting texts
  std::u16string helpFile;
  // What a person who asks a box for help is shown: the document of the box's help file, when it is one of
  // the suite's. Nothing counts as a help file that is missing.
  std::optional<std::u16string> helpDocument(std::u16string_view boxHelp) const;
  // The page of the installed guide that begins at the topic, wherever the settings say that help stands;
  // nothing when that is no place of the suite's. Looks at names only.
  std::optional<std::u16string> guidePage(std::u16string_view topic) const;
  std::unique_ptr<database::Database> CommonLangDB, LangDB;

 private:
  Workstation station_;
  SharedState& state_;
  comRegQuil32::Installation installation_;
  comSchedule::Environment runLog_;
  EventReports events_;
  std::unique_ptr<dlgFaultDisplay> form_;
};

}  // namespace startup
}  // namespace vordane
