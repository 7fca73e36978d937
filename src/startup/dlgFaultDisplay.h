// The program's only window: its load and unload, what the host and the exchange server call, the timer and
// its actions, and what a person does. It owns the fault database and the conversation with the exchange.
//
// One thread. Boxes and outgoing calls serve other calls while they wait, an ending included: whoever comes
// back from one looks at `alive` and touches neither window nor database when it is false.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "pbx/pbx_session.h"
#include "platform/view.h"
#include "platform/window.h"
#include "startup/application.h"
#include "store/fault_store.h"
#include "store/store_form.h"

namespace vordane {

namespace startup {
class FormObject;
}

class dlgFaultDisplay final : public store::StoreForm, public window::ViewEvents, private pbx::SessionForm {
 public:
  explicit dlgFaultDisplay(startup::Application& application);
  ~dlgFaultDisplay() override;
  dlgFaultDisplay(const dlgFaultDisplay&) = delete;
  dlgFaultDisplay& operator=(const dlgFaultDisplay&) = delete;

  // While one of these exists a call is under way: timer actions wait, and what an unload closes meanwhile is
  // let go of behind the last one. Every public procedure below makes its own.
  class Entry {
   public:
    explicit Entry(dlgFaultDisplay& form) : form_(form) { ++form_.depth_; }
    ~Entry();
    Entry(const Entry&) = delete;
    Entry& operator=(const Entry&) = delete;

   private:
    dlgFaultDisplay& form_;
  };
  Entry enter() { return Entry(*this); }

  // --- life
  void Load();  // once; a failure leaves the load-in-progress flag set
  void
  Unload();  // once: closes the databases, tells the host by the run mode; every step runs, nothing is thrown
  bool alive() override { return !ending_; }
  std::int16_t IncrementCount() { return ++userCount_; }
  std::int16_t DecrementCount() { return --userCount_; }
  // One user less; the last one saves the place, lets the host go, unloads and ends the process. A step that
  // fails hinders none of the others.
  void userReleased() noexcept;
  bool CheckLoadError() const { return loading_; }
  bool loaded() const { return loaded_; }

  // --- what layers and hosts set
  void setParent(const automation::ObjectRef& host);
  void setPBXName(const std::u16string& name);
  void setID(std::int16_t id) { id_ = id; }
  void setKey(std::u16string key) { key_ = std::move(key); }
  const std::u16string& Key() const { return key_; }
  const std::u16string& PBXName() const { return pbxName_; }
  bool visible();
  void setVisible(bool visible);
  // Places the window from the host's stored position, or in the middle; only before the first Parent.
  void FrmMove(const automation::ObjectRef& host);
  void FrmPositionSave();
  void BackGround(std::int16_t index);
  void ShowWhatsThis(window::Control& control);

  // --- the exchange server
  void CallBack(const automation::ObjectRef& response);
  automation::ObjectRef caller() override;  // this window as others call it: its public members by name

  // --- scheduled jobs
  void CreateSchedule();
  std::int16_t RunSchedule();     // of the job `Key`; 0
  std::int16_t CancelSchedule();  // 0
  // False in a scheduled run, whose pending request is then cancelled.
  bool QueryCancelRun();
  // The pieces of a job parameter that the host keeps; none when the host can't tell.
  std::vector<std::u16string> GetJobParameter(const automation::ObjectRef& host, std::u16string_view name);
  void StoreJobParameter(std::u16string_view first, const std::u16string& second);

  // --- store::StoreForm
  database::Database* faultDatabase() override { return faultDatabase_.get(); }
  window::Form& form() override { return model_; }
  window::View& view() override { return application_.station().view; }
  SharedState& state() override { return application_.state(); }
  platform::Clock& clock() override { return application_.station().clock; }
  const cFaultDisplay& faultDecoder(bool wideFaultFields) override;
  automation::Object* parent() override { return parent_.get(); }
  std::u16string installPath(std::u16string_view item) override { return application_.installPath(item); }
  void hostMessage(std::u16string_view text) override;
  void hostCode(std::int32_t code) override;
  int showBox(std::int16_t number, std::u16string_view substitution = {}) override;
  std::u16string requestPbxName() override { return session_.requestName(); }
  bool requestWideFaultFields() override { return session_.requestWide(); }
  const cListRequest& response() override { return session_.response(); }
  bool responseTruncated() override { return session_.responseTruncated(); }
  bool responseCut() override { return session_.responseCut(); }
  void listTaken(const store::ListAccount& account) override;
  void exchangeShown(std::u16string_view name, std::u16string_view received) override;
  void deletionGivenUp() override;
  bool showOwnNotice() override;
  // The next action, taken by one tick of the timer; a code that stands for none does nothing.
  void actionFollows(std::int16_t action) override;
  bool AcknowledgeFaultList() override { return session_.AcknowledgeFaultList(); }
  void endAction() override;

  // --- window::ViewEvents
  void buttonPressed(int action) override;
  void headingClicked(int column) override;
  void exchangeChosen(int listIndex) override;
  void closeAsked() override;
  void keyPressed(int keyCode) override;
  void mousePressed(window::Control& control, int button) override;
  void whatsThisChosen() override;
  std::optional<std::size_t> lookUp(std::u16string_view text, std::ptrdiff_t from,
                                    window::LookUpWay way) override;
  void tick() override;
  // What a tick does for an action's code; any code that is none does nothing.
  void dispatch(std::int16_t action);

  static constexpr int timerInterval = 100;  // milliseconds

 private:
  struct TimerAction;
  static const TimerAction timerActions[];

  // pbx::SessionForm
  automation::ObjectRef host() override { return parent_; }
  std::u16string registeredName() override { return pbxName_; }
  std::u16string jobKey() override { return key_; }
  void setHourglass(bool on) override { view().setHourglass(on); }
  void setInputEnabled(bool on) override { view().setInputEnabled(on); }
  int askBeforeRequest() override;
  bool logResponse(std::optional<std::int32_t> errorCode) override;
  void answerFailed() override;
  void waitingFor(std::int16_t kind) override;
  void requestFailed(pbx::Failure failure, std::int32_t errorCode) override;

  // load and unload
  void loadSteps();
  bool showExchanges();
  void usePBXName(const std::u16string& name, store::FaultStore::Report report);
  void openFaultDatabase();
  void localise();
  void beginEnding();  // from here on nothing reaches window or database; the classes are withdrawn
  void closeDatabases();
  void close(std::unique_ptr<database::Database>& database);
  void notifyUnload();
  void endProcess();
  bool hostMode() { return !state().StandAlone; }
  // Errors of the host, a missing one included, are ignored.
  void callHost(std::u16string_view member, std::initializer_list<automation::Argument> arguments = {});
  std::optional<std::pair<std::int32_t, std::int32_t>> savedPlace(const automation::ObjectRef& host);
  void showProcessorTexts();

  // the timer and its actions
  void enableTimer(std::int16_t nextAction);
  void endBrokenAction(std::int16_t action);
  bool answerWaits() const;
  void dropPress();
  bool pressCounts(int action);
  void requestAction();
  void clearAlarmAction();
  void printAction();
  void deleteAction();
  void closeAction();
  void scheduleFollowUp();
  void ingestAction();
  void alarmsClearedAction();
  void alarmStateAction();
  void runStepAction();
  void stopRunAction();
  void showIdle();
  void showNotice();
  void showStatus();
  void tellAttempt(bool good, std::size_t reason);
  void showAttemptFailed(const std::u16string& reason);
  std::u16string reasonText(pbx::Failure failure, std::int32_t errorCode);

  // scheduled runs
  void showButtonsDead();
  void ScheduledRunStep();
  bool startJob();
  void Ending();
  void notifyEnding();
  void runLogLine(const std::u16string& text);
  void closeRunLog();
  std::vector<std::u16string> filePathPieces(const std::u16string& value);

  startup::Application& application_;
  window::Form model_;
  std::unique_ptr<database::Database> faultDatabase_;
  // What an unload has let go of while a call was under way, which may still name it.
  std::vector<std::unique_ptr<database::Database>> retired_;
  std::unique_ptr<cFaultDisplay> retiredDecoder_;
  FaultTextTable faultTexts_;
  bool decoderWide_ = true;
  std::unique_ptr<cFaultDisplay> decoder_;
  std::map<std::u16string, std::u16string> helpTexts_;
  store::FaultStore store_;
  pbx::PbxSession session_;
  std::shared_ptr<startup::FormObject> caller_;

  automation::ObjectRef parent_;
  std::u16string pbxName_, key_;
  std::int16_t id_ = 0;
  std::int16_t userCount_ = 0;
  std::int16_t nextAction_ = 0;
  std::int16_t iteration_ = 0;   // of the scheduled run
  std::int16_t resultCode_ = 0;  // told at its end
  bool cancelled_ = false;       // the creation of a job was given up
  bool loaded_ = false, loading_ = false;
  bool ending_ = false, unloaded_ = false, endingTold_ = false, processEnded_ = false;
  bool timerEnabled_ = false;
  // What the window says of the conversation; empty where there is nothing to say.
  std::u16string waiting_, failure_;                    // in or above the grid: the wait goes first
  std::u16string storedLine_, listLine_, attemptLine_;  // in the status line
  int depth_ = 0;
  window::Control* whatsThisTarget_ = nullptr;
  std::pair<std::int32_t, std::int32_t> lastPlace_{0, 0};
  std::u16string textsIncomplete_;  // which loaders stopped
};

}  // namespace vordane
