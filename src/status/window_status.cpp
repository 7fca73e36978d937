#include "status/window_status.h"

#include "language/message_numbers.h"
#include "text/numbers.h"

namespace vordane::status {
namespace {

using window::NoticeKind;

// The sentences for each kind of request; any other is told as a list's.
struct Sentences {
  std::int16_t request;
  std::size_t waiting, failed;
};
constexpr Sentences sentences[] = {
    {step::faultListRequest, message::noticeWaitingList, message::statusAttemptFailed},
    {step::alarmStateRequest, message::noticeWaitingAlarms, message::statusAckFailed},
    {step::alarmClearRequest, message::noticeWaitingReset, message::statusResetFailed},
};

const Sentences& sentencesOf(std::int16_t request) {
  for (const Sentences& row : sentences)
    if (row.request == request) return row;
  return sentences[0];
}

// The clause for each failure: {1} is the code in the way the row says.
enum class Code { none, decimal, hexadecimal };
struct Reason {
  pbx::Failure failure;
  std::size_t message;
  Code code = Code::none;
};
using pbx::Failure;
constexpr Reason reasons[] = {
    {Failure::declined, message::reasonCancelled},
    {Failure::loginBusy, message::reasonBusy},
    {Failure::loginRefused, message::reasonRefused},
    {Failure::unreachable, message::reasonUnreachable, Code::hexadecimal},
    {Failure::noServer, message::reasonNoServer},
    {Failure::sendFailed, message::reasonSendFailed},
    {Failure::errorCode, message::reasonErrorCode, Code::decimal},
    {Failure::unreadable, message::reasonServerGone},
    {Failure::tooLarge, message::reasonTooLarge},
    {Failure::noMemory, message::reasonNoMemory},
    {Failure::cancelled, message::reasonCancelled},
};

}  // namespace

std::u16string reasonText(const SharedState& state, Failure failure, std::int32_t errorCode) {
  for (const Reason& reason : reasons) {
    if (reason.failure != failure) continue;
    std::u16string text = messageText(state, reason.message);
    if (reason.code == Code::none) return text;
    return fillText(
        text, {reason.code == Code::decimal ? text::decimal(errorCode)
                                            : text::hexadecimal(static_cast<std::uint32_t>(errorCode))});
  }
  return {};
}

// --- the load

void WindowStatus::textsStopped(std::u16string_view table) {
  if (!textsIncomplete_.empty()) textsIncomplete_ += u", ";
  textsIncomplete_ += table;
}

void WindowStatus::loaded() {
  if (storedLine_.empty()) storedLine_ = text(message::statusNoList);
}

// --- the conversation

void WindowStatus::waits(std::int16_t request, std::u16string_view exchange) {
  // The acknowledgement belongs to the list before it, whose failure stays.
  if (request != step::alarmStateRequest) {
    failure_.clear();
    receiptLine_.clear();
  }
  guideLine_.clear();
  waiting_ = fillText(text(sentencesOf(request).waiting), {exchange});
}

void WindowStatus::runs(std::int32_t run, std::int32_t of) {
  waiting_ = fillText(text(message::noticeScheduledRun), {text::decimal(run), text::decimal(of)});
}

void WindowStatus::attemptFailed(std::int16_t request, std::u16string_view exchange, std::u16string_view when,
                                 std::u16string_view reason) {
  waiting_.clear();
  attemptLine_ = fillText(text(sentencesOf(request).failed), {when, reason, exchange});
  failure_ = fillText(text(message::noticeRequestFailed), {exchange, reason});
}

void WindowStatus::listTaken(const ListAccount& account) {
  attemptLine_.clear();
  listLine_ = statusText(state_, account);
  if (!account.wordsBefore.empty())
    listLine_ += u"\n" + fillText(text(message::statusOtherWords), {account.wordsBefore, account.words});
  waiting_.clear();
  failure_.clear();
  if (!account.complete())
    failure_ =
        fillText(text(message::noticeListFailed), {account.exchange, status::reasonText(state_, account)});
}

void WindowStatus::deletionGivenUp(std::u16string_view when) {
  attemptLine_ = fillText(text(message::statusNotDeleted), {when});
}

void WindowStatus::receiptNotKept(std::u16string_view why) {
  receiptLine_ = fillText(text(message::statusNoReceipt), {why});
}

// --- the guide

void WindowStatus::guideMissing(std::u16string_view file) {
  guideLine_ = fillText(text(message::statusGuideMissing), {file});
}

void WindowStatus::guideNotShown(std::u16string_view file) {
  guideLine_ = fillText(text(message::statusGuideNotShown), {file});
}

// --- the display

void WindowStatus::exchangeShown(std::u16string_view name, std::u16string_view received) {
  const std::size_t pattern = name.empty()       ? message::statusNoList
                              : received.empty() ? message::statusStoredUndated
                                                 : message::statusStored;
  newerLine_.clear();
  storedLine_ = fillText(text(pattern), {name, received});
}

void WindowStatus::newerListStored(std::u16string_view exchange) {
  newerLine_ = fillText(text(message::statusNewerList), {exchange});
}

void WindowStatus::displayFailed(std::u16string_view engineText) {
  newerLine_.clear();
  displayFailure_ = fillText(text(message::reasonDatabase), {engineText});
}

// --- what is said of it

// A failed attempt, and in a line below it what came last: in this session, else before it.
std::u16string WindowStatus::line() const {
  const bool quiet = attemptLine_.empty() && listLine_.empty();
  std::u16string line = listLine_.empty() ? storedLine_ : listLine_;
  if (!receiptLine_.empty()) line = receiptLine_ + u"\n" + line;
  if (!attemptLine_.empty()) line = attemptLine_ + u"\n" + line;
  if (quiet && !textsIncomplete_.empty())
    line = fillText(text(message::statusTextsIncomplete), {textsIncomplete_});
  if (quiet && onNetwork_) line = text(message::statusNetworkDrive) + u" " + line;
  if (!newerLine_.empty()) line = newerLine_ + u"\n" + line;
  // Always: nobody may take its faults for those of a real one.
  if (simulated_) line = text(message::statusSimulated) + u" " + line;
  if (!guideLine_.empty()) line = guideLine_ + u"\n" + line;
  return line;
}

// A wait before a failure, a failure before what a job's creation asks for.
std::optional<Notice> WindowStatus::conversation() const {
  if (!waiting_.empty()) return Notice{NoticeKind::waiting, waiting_};
  if (!failure_.empty()) return Notice{NoticeKind::failure, failure_};
  if (state_.runMode == RunMode::creatingSchedule)
    return Notice{NoticeKind::hint, text(message::noticeChooseJob)};
  return {};
}

Notice WindowStatus::aboveRows() const {
  return conversation().value_or(Notice{});
}

Notice WindowStatus::inEmptyGrid(const std::optional<std::u16string>& chosen,
                                 std::u16string_view registered) const {
  if (!displayFailure_.empty()) return {NoticeKind::failure, displayFailure_};
  if (auto notice = conversation()) return *notice;
  return hint(chosen, registered);
}

Notice WindowStatus::hint(const std::optional<std::u16string>& chosen, std::u16string_view registered) const {
  if (chosen) return {NoticeKind::hint, fillText(text(message::noticeNoFaults), {*chosen})};
  if (registered.empty()) return {NoticeKind::hint, fillText(text(message::noticeNoExchange), {registered})};
  return {NoticeKind::hint, fillText(text(message::noticeFirstList), {registered})};
}

Notice WindowStatus::withoutDatabase() const {
  return {NoticeKind::failure, text(message::noticeDatabaseClosed)};
}

}  // namespace vordane::status
