// A whole suite in memory: a host, an exchange, the databases in a folder of the test's own, and the add-in.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "fakes/folder_engine.h"
#include "fakes/memory_event_log.h"
#include "fakes/memory_files.h"
#include "fakes/memory_host.h"
#include "fakes/memory_settings.h"
#include "fakes/memory_view.h"
#include "fakes/set_clock.h"
#include "language/language_databases.h"
#include "language/message_numbers.h"
#include "settings/suite_databases.h"
#include "startup/application.h"
#include "startup/basMain.h"
#include "startup/cOLELayer.h"
#include "startup/dlgFaultDisplay.h"
#include "store/fault_database.h"

namespace vordane::startup {

using testing::ElementsAre;
using testing::IsEmpty;
using Lines = std::vector<std::string>;

inline database::Value operator""_v(const char16_t* text, std::size_t length) {
  return std::u16string(text, length);
}

struct ProcessEnded {};  // ended at once, in the middle of a start

class StoryProcess : public platform::Process {
 public:
  explicit StoryProcess(fakes::Trace& trace) : trace_(trace) {}
  void setCallTimes(const platform::CallTimes& given) override { times = given; }
  void stopServing() override {
    if (serving) trace_.push_back("(stops serving)");
    serving = false;
  }
  void end() override {
    trace_.push_back("(process ends)");
    ended = true;
  }
  [[noreturn]] void endAtOnce() override { throw ProcessEnded{}; }
  void watchHost(automation::Object&, const automation::ObjectRef& host) override { watched = host; }

  platform::CallTimes times{0, 0};
  bool serving = true, ended = false;
  automation::ObjectRef watched;

 private:
  fakes::Trace& trace_;
};

class StoryView : public fakes::MemoryView {
 public:
  explicit StoryView(fakes::Trace& trace) : trace_(trace) {}
  void setHourglass(bool on) override {
    if (tracePointer && on != hourglass) trace_.push_back(on ? "(hourglass)" : "(pointer)");
    MemoryView::setHourglass(on);
  }
  void setInputEnabled(bool on) override {
    if (on != inputEnabled) trace_.push_back(on ? "(enabled)" : "(disabled)");
    MemoryView::setInputEnabled(on);
  }
  void popUpMenu(std::u16string_view menu) override {
    trace_.push_back("(menu " + text::toUtf8(menu) + ")");
    if (duringMenu) duringMenu();
  }
  void showWhatsThis(window::Control& control, std::u16string_view help) override {
    trace_.push_back("(help " + text::toUtf8(control.name()) + ": " + text::toUtf8(help) + ")");
  }
  void detach() override {
    trace_.push_back("(window gone)");
    MemoryView::detach();
    shown = false;
    if (duringDetach) duringDetach();
  }
  std::function<void()> duringMenu, duringDetach;
  bool tracePointer = true;

 private:
  fakes::Trace& trace_;
};

class StoryBoxes : public platform::MessageBoxes {
 public:
  explicit StoryBoxes(fakes::Trace& trace) : trace_(trace) {}
  int show(const platform::MessageBoxRequest& request) override {
    trace_.push_back("Box " + text::toUtf8(request.prompt));
    if (meanwhile) meanwhile();
    return answer;
  }
  int answer = 1;
  std::function<void()> meanwhile;

 private:
  fakes::Trace& trace_;
};

class StoryDocuments : public platform::Documents {
 public:
  bool open(std::u16string_view path) override {
    opened.push_back(text::toUtf8(path));
    if (meanwhile) meanwhile();
    return hasProgram;
  }
  Lines opened;
  bool hasProgram = true;
  std::function<void()> meanwhile;
};

class StoryCreator : public platform::ObjectCreator {
 public:
  automation::ObjectRef create(std::u16string_view progId) override {
    asked.push_back(text::toUtf8(progId));
    if (!server) throw automation::AutomationError(automation::error::runTime(429));
    return server;
  }
  automation::ObjectRef server;
  Lines asked;
};

class StoryPictures : public comPicture::PictureLoader {
 public:
  bool readable(std::u16string_view) override { return areReadable; }
  bool areReadable = false;
};

class StoryClock : public fakes::SetClock {
 public:
  void sleep(int milliseconds) override {
    if (duringSleep) duringSleep();
    SetClock::sleep(milliseconds);
  }
  std::function<void()> duringSleep;
};

// What stands between the add-in and a story's workstation, where a test program has something to put there.
class Between {
 public:
  virtual ~Between() = default;
  virtual Workstation station() = 0;                 // to make the application with
  virtual void watch(Application& application) = 0;  // which is there now
  virtual automation::ObjectRef given(
      const automation::ObjectRef& own) = 0;  // an object as its creator gets it
};
using MakeBetween = std::function<std::unique_ptr<Between>(const Workstation&)>;
inline MakeBetween& makeBetween() {
  static MakeBetween make;
  return make;
}

class Story : public testing::Test {
 protected:
  Story() {
    makeLanguage();
    tools::createDatabase(engine.file(u"Common.LNG"), language::commonTables);
    tools::createDatabase(engine.file(u"FAULT.MDB"), store::faultTables);
    const auto& registry = settings::registrationTables[0];
    fakes::makeDatabase(engine, u"Register.mdb",
                        {{registry, {{u"VORDANE.WRX"_v, u""_v, u""_v, u""_v, u"0.0.0"_v}}}});
    fakes::makeDatabase(engine, u"Schedule.mdb", {{settings::scheduleTables[0], jobRows()}});
    program.directory = u"C:\\QUILMAR32\\30000\\ADDINS";
    program.startedByAutomation = true;
    program.major = 1;
    program.revision = 12;
    clock.secondsPerLook = 0.01;
  }
  ~Story() override { view.tracePointer = false; }

  void makeLanguage() {
    const auto& own = language::ownTables;
    const auto table = [&](std::u16string_view name, std::vector<fakes::Row> rows) {
      return fakes::NewTable{fakes::tableNamed(own, name), std::move(rows)};
    };
    fakes::makeDatabase(
        engine, u"VORDANE.LNG",
        {table(u"tForms", {{u"dlgFaultDisplay"_v, u"Fault list"_v, u"Segoe UI"_v, 9.0}}),
         table(u"tControls", controlRows()), table(u"tComboBoxDT", {}), table(u"tSSGridsHD", {}),
         table(u"tProject", {{u"VORDANE"_v, u"Fault display"_v, u"Busy"_v, u"It is busy"_v, u"Waiting"_v,
                              u"No answer yet"_v}}),
         fakes::NewTable{language::helpTable,
                         {{u"dlgFaultDisplay"_v, u"txtTimeTag"_v, u"When the list was taken"_v}}},
         table(u"tMessages", messageRows()), table(u"tMsgBox", boxRows()), table(u"tPicture", pictureRows)});
  }
  bool badControl = false;  // a row of a control that the window lacks
  std::vector<fakes::Row> pictureRows;

  // --- what happens
  void start() {
    plain.emplace(Workstation{settings, clock, files, creator, boxes, documents, engine, view, pictures,
                              process, events, program});
    const auto former = std::exchange(between, makeBetween() ? makeBetween()(*plain) : nullptr);
    application = std::make_unique<Application>(between ? between->station() : *plain, state);
    if (between) between->watch(*application);
    started = basMain::Main(*application);
  }
  void startStandAlone(std::u16string commandLine) {
    program.startedByAutomation = false;
    program.commandLine = std::move(commandLine);
    start();
  }
  automation::ObjectRef createLayer() {
    automation::ObjectRef made = application->createLayer();
    return between ? between->given(made) : made;
  }
  // The usual beginning: a host, its layer, its exchange.
  void startWithHost(std::u16string exchange = u"PBX-1") {
    start();
    layer = createLayer();
    registerPbx(exchange);
    trace.clear();
  }
  bool registerPbx(const std::u16string& exchange) {
    return automation::toBoolean(
        automation::call(*layer, u"RegisterPBX",
                         {automation::byVal(exchange), automation::byVal(automation::ObjectRef(host)),
                          automation::byVal(std::int16_t{7})}));
  }
  std::int16_t callInteger(std::u16string_view member,
                           std::initializer_list<automation::Argument> arguments = {}) {
    return automation::toInteger(automation::call(*layer, member, arguments));
  }
  std::int16_t runSchedule(std::u16string key) {
    return callInteger(u"RunSchedule", {automation::byVal(key)});
  }
  bool createSchedule() {
    return automation::toBoolean(automation::call(
        *layer, u"CreateSchedule", {automation::byVal(std::int32_t{5}), automation::byVal(std::int16_t{3})}));
  }
  dlgFaultDisplay& form() { return application->form(); }
  fakes::MemoryExchange& exchange() { return *host->exchange; }
  void press(int action) { form().input().buttonPressed(action); }
  // The timer's time has come, if it runs.
  bool tick() {
    if (view.timer == 0) return false;
    view.timer = 0;
    form().input().tick();
    return true;
  }
  void pressAndTick(int action) {
    press(action);
    tick();
  }
  // A person asks for the list, which brings a fault, and no lamp is lit.
  void fetchOneFault() {
    pressAndTick(0);
    exchange().answer(0, oneFault());
    tick();
    exchange().answerLamps(u"00");
    tick();
  }
  Lines taken() { return std::exchange(trace, {}); }

  // The lines of the run log, without their times.
  Lines log() {
    Lines lines;
    for (const auto& [path, bytes] : files.content) {
      if (!path.ends_with(u".tlg")) continue;
      std::size_t at = 0;
      for (std::size_t end; (end = bytes.find("\r\n", at)) != bytes.npos; at = end + 2)
        lines.push_back(bytes.substr(at + 20, end - at - 20));
    }
    return lines;
  }

  static const std::vector<std::u16string>& oneFault() {
    static const std::vector<std::u16string> entries{u"15 MJ MP000", u"26/11/20 10:15", u"00", u""};
    return entries;
  }

  fakes::Trace trace;
  fakes::FolderEngine engine;
  fakes::MemorySettings settings;
  fakes::MemoryFiles files;
  StoryClock clock;
  StoryView view{trace};
  StoryBoxes boxes{trace};
  StoryDocuments documents;
  StoryCreator creator;
  StoryPictures pictures;
  StoryProcess process{trace};
  fakes::MemoryEventLog events;
  platform::Program program;
  SharedState state;
  std::shared_ptr<fakes::MemoryHost> host = std::make_shared<fakes::MemoryHost>(trace);
  std::optional<Workstation> plain;
  std::unique_ptr<Between> between;
  std::unique_ptr<Application> application;
  basMain::Start started = basMain::Start::nothing;
  automation::ObjectRef layer;

 private:
  static std::vector<fakes::Row> messageRows() {
    std::map<std::size_t, std::u16string> words{
        {0, u"Faults"},
        {1, u"PBX"},
        {2, u"Done"},
        {3, u"not open"},
        {4, u"nothing new"},
        {89, u"Run"},
        {message::statusListComplete, u"{1}: {2} received, {3} new, {4} stored, {5} refused"},
        {message::statusListIncomplete, u"{1}, incomplete: {2} received, {3} new, {4} stored, {5} refused"},
        {message::statusAttemptFailed, u"{3} failed: {2}."},
        {message::statusNoList, u"no list yet"},
        {message::statusStored, u"{1}: stored {2}"},
        {message::statusStoredUndated, u"{1}: stored, nobody knows when"},
        {message::noticeListFailed, u"{1} not whole: {2}"},
        {message::noticeChooseJob, u"choose"},
        {message::noticeScheduledRun, u"run {1} of {2}"},
        {message::reasonAccess, u"access: {1}"},
        {message::reasonTooLarge, u"too large"},
        {message::reasonTextCut, u"text cut"},
        {message::reasonNoMemory, u"no memory"},
        {message::statusNotDeleted, u"not deleted {1}."},
        {message::statusNoReceipt, u"no receipt: {1}"},
        {message::statusNewerList, u"newer of {1}"},
        {message::lampsReset, u"reset {1} by {2} on {3}"},
        {message::reasonServerGone, u"gone"},
        {message::reasonDatabase, u"database: {1}"},
        {message::reasonCutShort, u"cut short"},
        {message::reasonRefused, u"refused"},
        {message::reasonUnreachable, u"unreachable {1}"},
        {message::statusAckFailed, u"{3} not acknowledged: {2}."},
        {message::statusResetFailed, u"{3} not reset: {2}."},
        {message::runAckFailed, u"not acknowledged: {1}"},
        {message::reasonLampAnswer, u"lamps unreadable"},
        {message::reasonClearAnswer, u"not confirmed"},
        {message::runCancelled, u"cancelled"},
        {message::runLetGo, u"let go"},
        {message::noticeWaitingList, u"waiting for {1}"},
        {message::statusGuideMissing, u"no guide at {1}"},
        {message::statusGuideNotShown, u"nothing shows {1}"},
        {message::noticeWaitingAlarms, u"alarms of {1}"},
        {message::noticeNoFaults, u"{1} has no faults"},
        {message::noticeFirstList, u"press to ask {1}"},
        {message::noticeRequestFailed, u"{1}: {2}"},
        {message::reasonBusy, u"busy"},
        {message::reasonErrorCode, u"code {1}"},
        {message::reasonCancelled, u"cancelled"},
        {message::reasonNoServer, u"no server"},
        {message::runListComplete, u"{1} received, {2} new, {3} stored, {4} refused"},
        {message::runListFailed, u"failed: {1}"},
        {message::reasonNoExchange, u"no exchange"},
        {message::runOtherKind, u"another kind"},
        {message::statusTextsIncomplete, u"incomplete: {1}"},
        {message::statusNetworkDrive, u"on the network"},
        {message::statusSimulated, u"simulated"},
    };
    std::vector<fakes::Row> rows;
    for (std::size_t i = 0; i < message::count; ++i) {
      const auto found = words.find(i);
      rows.push_back({static_cast<std::int32_t>(i), found == words.end()
                                                        ? u"M" + text::decimal(static_cast<std::int64_t>(i))
                                                        : found->second});
    }
    return rows;
  }
  std::vector<fakes::Row> controlRows() const {
    if (!badControl) return {};
    return {{u"dlgFaultDisplay"_v, u"cmdNone"_v, std::int32_t{-1}, u"x"_v, u"-1"_v, 9.0, u"-1"_v}};
  }
  static std::vector<fakes::Row> boxRows() {
    std::vector<fakes::Row> rows;
    for (const std::int16_t number : box::all)
      rows.push_back({std::int32_t{number}, text::decimal(number) + u"&%SP&%ST", u"vbOKOnly"_v, u"Title"_v,
                      u"-1"_v, u"-1"_v});
    return rows;
  }
  // Key, Wait, ErrorStop, Count, Log, Log2, FileByte, File, Kind
  static fakes::Row job(int key, bool errorStop, int count, bool log = true, int kind = 2, int wait = 0) {
    return {std::int32_t{key}, std::int32_t{wait}, errorStop,         std::int32_t{count}, log, true,
            std::int32_t{100}, u"night"_v,         std::int32_t{kind}};
  }
  static std::vector<fakes::Row> jobRows() {
    return {job(1, true, 1),
            job(2, false, 1),
            job(3, true, 3),
            job(4, false, 3),
            job(5, true, 1, false),
            job(6, true, 2, true, 9),
            job(7, true, 1, true, 2, 30),
            job(8, true, 0),
            job(9, true, -3),
            job(10, true, 2, true, 2, 30),
            job(11, false, 30000)};
  }
};

}  // namespace vordane::startup
