#include "startup/application.h"

#include <utility>

#include "language/help_files.h"
#include "language/message_numbers.h"
#include "pbx/cListRequest.h"
#include "pbx/cSLVRequest.h"
#include "startup/cOLELayer.h"
#include "startup/dlgFaultDisplay.h"
#include "text/fill.h"

namespace vordane::startup {
namespace {

constexpr std::size_t longestSubstitution = 4096;  // of a box, as of a line in the run log
constexpr std::int32_t retryCancel = 5;
constexpr std::int32_t exclamation = 48;
constexpr int answerRetry = 4;

}  // namespace

Application::Application(const Workstation& workstation, SharedState& state)
    : station_(workstation),
      state_(state),
      installation_{station_.settings, station_.program.directory},
      runLog_{installation_,  station_.engine, station_.clock,
              station_.files, state_.schedule, [this](bool on) { station_.view.setHourglass(on); }},
      events_(station_.events) {}

Application::~Application() = default;

dlgFaultDisplay& Application::form() {
  if (!form_) form_ = std::make_unique<dlgFaultDisplay>(*this);
  return *form_;
}

std::u16string Application::installPath(std::u16string_view item) const {
  return comRegQuil32::GetInstallPath(installation_, u"Addins", item);
}

std::optional<std::u16string> Application::helpDocument(std::u16string_view boxHelp) const {
  return language::openableHelp(boxHelp, installation_.runningDirectory,
                                comRegQuil32::suiteDirectory(installation_));
}

std::optional<std::u16string> Application::guidePage(std::u16string_view topic) const {
  return helpDocument(installPath(u"Help") + u"GUIDE\\" + std::u16string(topic) + u".html");
}

int Application::showBox(std::int16_t number, std::u16string_view substitution) {
  comTools::BoxEnvironment boxes{LangDB.get(), CommonLangDB.get(), station_.boxes, runLog_,
                                 station_.program.directory};
  comTools::BoxRequest request;
  request.number = number;
  if (!substitution.empty()) request.substitution = brief(substitution, longestSubstitution);
  request.logOnly = unattended();
  return comTools::ShowMsgBox(boxes, request);
}

bool Application::unattended() {
  return state_.runMode == RunMode::scheduledRun || !station_.program.interactive;
}

bool Application::askWhileBusy() {
  if (unattended()) {
    comSchedule::writeRunLine(runLog_, texts.OleServerBusyMsgText);
    return false;
  }
  return station_.boxes.show(
             {texts.OleServerBusyMsgText, texts.OleServerBusyMsgTitle, retryCancel | exclamation, {}, {}}) ==
         answerRetry;
}

void Application::tellPending() {
  if (unattended())
    comSchedule::writeRunLine(runLog_, texts.OleRequestPendingMsgText);
  else
    station_.boxes.show(
        {texts.OleRequestPendingMsgText, texts.OleRequestPendingMsgTitle, exclamation, {}, {}});
}

automation::ObjectRef Application::createLayer() {
  // The outside world's last release is a step of its own with outgoing calls, not a destructor's work.
  return automation::ObjectRef(new cOLELayer(*this), [](cOLELayer* layer) {
    layer->released();
    delete layer;
  });
}

automation::ObjectRef Application::createListRequest() {
  return std::make_shared<cListRequest>();
}

automation::ObjectRef Application::createSLVRequest() {
  return std::make_shared<cSLVRequest>(station_.clock.regional(station_.clock.now()));
}

}  // namespace vordane::startup
