#include "status/window_status.h"

#include <utility>

#include "language/message_numbers.h"
#include "text/fill.h"
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

// Values are kept as they will be shown.
std::u16string value(std::u16string_view text) {
  return brief(text, longestValue);
}

Sentence sentence(std::size_t pattern, std::u16string_view first) {
  return [pattern, one = value(first)](const SharedState& words) {
    return fillText(messageText(words, pattern), {one});
  };
}

Sentence sentence(std::size_t pattern, std::u16string_view first, std::u16string_view second) {
  return [pattern, one = value(first), two = value(second)](const SharedState& words) {
    return fillText(messageText(words, pattern), {one, two});
  };
}

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
  if (told(storedLine_).empty()) storedLine_ = sentence(message::statusNoList, {});
}

// --- the conversation

void WindowStatus::waits(std::int16_t request, std::u16string_view exchange) {
  // The acknowledgement belongs to the list before it, whose failure stays.
  if (request != step::alarmStateRequest) failure_ = receiptLine_ = nullptr;
  guideLine_ = languageLine_ = nullptr;
  waiting_ = sentence(sentencesOf(request).waiting, exchange);
}

void WindowStatus::runs(std::int32_t run, std::int32_t of) {
  waiting_ = sentence(message::noticeScheduledRun, text::decimal(run), text::decimal(of));
}

void WindowStatus::attemptFailed(std::int16_t request, std::u16string_view exchange, std::u16string_view when,
                                 const Sentence& reason) {
  waiting_ = nullptr;
  attemptLine_ = [=, at = value(when), of = value(exchange)](const SharedState& words) {
    return fillText(messageText(words, sentencesOf(request).failed), {at, reason(words), of});
  };
  failure_ = [=, of = value(exchange)](const SharedState& words) {
    return fillText(messageText(words, message::noticeRequestFailed), {of, reason(words)});
  };
}

void WindowStatus::listTaken(const ListAccount& account) {
  attemptLine_ = waiting_ = failure_ = nullptr;
  listLine_ = [=](const SharedState& words) {
    std::u16string line = statusText(words, account);
    if (!account.wordsBefore.empty())
      line += u"\n" +
              fillText(messageText(words, message::statusOtherWords), {account.wordsBefore, account.words});
    return line;
  };
  if (account.complete()) return;
  failure_ = [=](const SharedState& words) {
    return fillText(messageText(words, message::noticeListFailed),
                    {account.exchange, status::reasonText(words, account)});
  };
}

void WindowStatus::deletionGivenUp(std::u16string_view when) {
  attemptLine_ = sentence(message::statusNotDeleted, when);
}

void WindowStatus::receiptNotKept(std::u16string_view why) {
  receiptLine_ = sentence(message::statusNoReceipt, why);
}

// --- the guide, the language

void WindowStatus::guideMissing(std::u16string_view file) {
  guideLine_ = sentence(message::statusGuideMissing, file);
}

void WindowStatus::guideNotShown(std::u16string_view file) {
  guideLine_ = sentence(message::statusGuideNotShown, file);
}

void WindowStatus::languageUnusable(std::u16string_view file, std::u16string_view why) {
  languageLine_ = sentence(message::statusNoLanguage, file, why);
}

// --- the display

void WindowStatus::exchangeShown(std::u16string_view name, std::u16string_view received) {
  const std::size_t pattern = name.empty()       ? message::statusNoList
                              : received.empty() ? message::statusStoredUndated
                                                 : message::statusStored;
  newerLine_ = nullptr;
  storedLine_ = sentence(pattern, name, received);
}

void WindowStatus::newerListStored(std::u16string_view exchange) {
  newerLine_ = sentence(message::statusNewerList, exchange);
}

void WindowStatus::displayFailed(std::u16string_view engineText) {
  newerLine_ = nullptr;
  displayFailure_ = sentence(message::reasonDatabase, engineText);
}

// --- what is said of it

std::u16string WindowStatus::told(const Sentence& sentence) const {
  return sentence ? inShownWords(state_, sentence) : std::u16string{};
}

// A failed attempt, and in a line below it what came last: in this session, else before it.
std::u16string WindowStatus::line() const {
  const std::u16string attempt = told(attemptLine_), list = told(listLine_);
  const bool quiet = attempt.empty() && list.empty();
  std::u16string line = list.empty() ? told(storedLine_) : list;
  const auto above = [&](const std::u16string& words) {
    if (!words.empty()) line = words + u"\n" + line;
  };
  above(told(receiptLine_));
  above(attempt);
  if (quiet && !textsIncomplete_.empty())
    line = fillText(text(message::statusTextsIncomplete), {textsIncomplete_});
  if (quiet && onNetwork_) line = text(message::statusNetworkDrive) + u" " + line;
  above(told(newerLine_));
  // Always: nobody may take its faults for those of a real one.
  if (simulated_) line = text(message::statusSimulated) + u" " + line;
  above(told(guideLine_));
  above(told(languageLine_));
  return line;
}

// A wait before a failure, a failure before what a job's creation asks for.
std::optional<Notice> WindowStatus::conversation() const {
  if (auto words = told(waiting_); !words.empty()) return Notice{NoticeKind::waiting, std::move(words)};
  if (auto words = told(failure_); !words.empty()) return Notice{NoticeKind::failure, std::move(words)};
  if (state_.runMode == RunMode::creatingSchedule)
    return Notice{NoticeKind::hint, text(message::noticeChooseJob)};
  return {};
}

Notice WindowStatus::aboveRows() const {
  return conversation().value_or(Notice{});
}

Notice WindowStatus::inEmptyGrid(const std::optional<std::u16string>& chosen,
                                 std::u16string_view registered) const {
  if (auto words = told(displayFailure_); !words.empty()) return {NoticeKind::failure, std::move(words)};
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
