#include "startup/session_window.h"

#include "language/message_numbers.h"

namespace vordane::startup {

void SessionWindow::setHourglass(bool on) {
  view().setHourglass(on);
}

void SessionWindow::setInputEnabled(bool on) {
  view().setInputEnabled(on);
}

int SessionWindow::askBeforeRequest() {
  return application_.showBox(box::confirmRequest);
}

bool SessionWindow::logResponse(const cListRequest& answer, std::optional<std::int32_t> errorCode) {
  return comSchedule::LogResponse(application_.runLog(), {errorCode, answer.Count(), [&](std::int32_t i) {
                                                            return comSchedule::LoggedEntry{
                                                                answer.CMD(i), answer.FirstData(i),
                                                                answer.SecondData(i), answer.ExtraData(i)};
                                                          }});
}

void SessionWindow::concluded(std::optional<Action> action) {
  if (action) return timer_.enable(*action);
  // The next step of a run waits until the exchange server has its call back.
  if (application_.state().runMode == RunMode::scheduledRun)
    timer_.enable(Action::runStep);
  else
    application_.state().busy = false;
}

void SessionWindow::waitingFor(std::int16_t request, std::u16string_view exchange) {
  status_.waits(request, exchange);
  status::showConversation(view(), status_);
}

void SessionWindow::requestFailed(const pbx::FailedRequest& request) {
  receipts_.failed(request);
  if (request.failure == pbx::Failure::declined) return;  // the user knows
  attemptFailed(request.kind, request.exchange,
                [failure = request.failure, code = request.errorCode](const SharedState& words) {
                  return status::reasonText(words, failure, code);
                });
}

void SessionWindow::attemptFailed(std::int16_t request, std::u16string_view exchange,
                                  const status::Sentence& reason) {
  const SharedState& state = application_.state();
  const std::u16string words = reason(state);
  platform::Clock& clock = application_.station().clock;
  status_.attemptFailed(request, exchange, clock.regional(clock.now()), reason);
  status::showLine(view(), status_);
  status::showConversation(view(), status_);
  application_.events().runFailed(words);
  if (state.runMode != RunMode::scheduledRun) return;
  const auto pattern = request == step::alarmStateRequest ? message::runAckFailed : message::runListFailed;
  comSchedule::writeRunLine(application_.runLog(), fillText(messageText(state, pattern), {words}));
}

}  // namespace vordane::startup
