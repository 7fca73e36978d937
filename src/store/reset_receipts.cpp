#include "store/reset_receipts.h"

#include <algorithm>
#include <array>
#include <utility>

#include "language/message_numbers.h"
#include "store/store_form.h"
#include "store/time_stamp.h"
#include "store/trap.h"

namespace vordane::store {
namespace {

using database::Receipt;
using pbx::Failure;

// What a failed request is called in a receipt. The words stand in files: they never change.
struct FailureWord {
  Failure failure;
  std::u16string_view word;
};
constexpr std::array failureWords{FailureWord{Failure::declined, u"declined"},
                                  FailureWord{Failure::loginBusy, u"exchange busy"},
                                  FailureWord{Failure::loginRefused, u"log-in refused"},
                                  FailureWord{Failure::unreachable, u"exchange unreachable"},
                                  FailureWord{Failure::noServer, u"no exchange server"},
                                  FailureWord{Failure::sendFailed, u"request refused"},
                                  FailureWord{Failure::errorCode, u"error code"},
                                  FailureWord{Failure::unreadable, u"answer unreadable"},
                                  FailureWord{Failure::tooLarge, u"answer too large"},
                                  FailureWord{Failure::noMemory, u"no memory"},
                                  FailureWord{Failure::cancelled, u"cancelled"}};

std::u16string_view wordOf(Failure failure) {
  const auto* const found = std::find_if(failureWords.begin(), failureWords.end(),
                                         [&](const FailureWord& row) { return row.failure == failure; });
  return found == failureWords.end() ? std::u16string_view{} : found->word;
}

bool hasCode(Failure failure) {
  return failure == Failure::errorCode || failure == Failure::unreachable;
}

std::u16string beginning(const std::u16string& text) {
  return text.substr(0, ResetReceipts::longestText);
}

void takeEntries(const cListRequest& answer, Receipt& receipt) {
  receipt.answered = answer.Count();
  const std::int32_t kept = std::min(receipt.answered, ResetReceipts::mostEntries);
  for (std::int32_t i = 0; i < kept; ++i)
    receipt.entries.push_back({beginning(answer.CMD(i)), beginning(answer.FirstData(i)),
                               beginning(answer.SecondData(i)), beginning(answer.ExtraData(i))});
}

}  // namespace

void ResetReceipts::begin(std::u16string_view exchange) noexcept {
  asked_.reset();
  if (state_.runMode == RunMode::scheduledRun) return;
  try {
    asked_ = Asked{std::u16string(exchange), clock_.now()};
  } catch (const std::exception&) {
    // Without memory for the name there is none for a receipt.
  }
}

void ResetReceipts::failed(const pbx::FailedRequest& request) noexcept {
  if (request.kind != step::alarmClearRequest) return;
  finish(wordOf(request.failure), hasCode(request.failure) ? std::optional(request.errorCode) : std::nullopt,
         request.answer);
}

void ResetReceipts::answered(const pbx::ReceivedList& answer, bool confirmed) noexcept {
  finish(confirmed ? outcomeConfirmed : outcomeNotConfirmed, std::nullopt, &answer.entries);
}

void ResetReceipts::ended() noexcept {
  finish(outcomeNoAnswer, std::nullopt, nullptr);
}

void ResetReceipts::finish(std::u16string_view outcome, std::optional<std::int32_t> code,
                           const cListRequest* answer) noexcept {
  const auto asked = std::exchange(asked_, std::nullopt);
  if (!asked) return;
  try {
    const auto failure = trap([&] { write(*asked, outcome, code, answer); });
    if (failure) notKept(*failure);
  } catch (const std::exception&) {
    // The reset goes on without memory for its receipt too.
  }
}

void ResetReceipts::write(const Asked& asked, std::u16string_view outcome, std::optional<std::int32_t> code,
                          const cListRequest* answer) {
  database::Database* const database = form_.faultDatabase();
  const auto receipts = database != nullptr ? database->receipts() : nullptr;
  if (!receipts) return;
  Receipt receipt;
  receipt.moment = isoText(asked.when);
  receipt.exchange = asked.exchange;
  receipt.person = program_.person;
  receipt.workstation = program_.workstation;
  receipt.outcome = outcome;
  receipt.code = code;
  if (answer != nullptr) takeEntries(*answer, receipt);
  receipts->keep(receipt);
  status_.receiptKept();
  if (form_.alive()) showLast();
}

void ResetReceipts::notKept(std::u16string_view why) {
  if (!form_.alive()) return;
  status_.receiptNotKept(why);
  status::showLine(view_, status_);
}

// --- beside the lamps

void ResetReceipts::show(std::u16string_view exchange) {
  shown_ = exchange;
  showLast();
}

// What can't be read is not shown: the documented display says what is wrong with the file.
void ResetReceipts::showLast() {
  std::u16string note;
  trap([&] {
    database::Database* const database = shown_.empty() ? nullptr : form_.faultDatabase();
    const auto receipts = database != nullptr ? database->receipts() : nullptr;
    if (const auto last = receipts ? receipts->last(shown_) : std::nullopt) note = sentence(*last);
  });
  view_.setLampNote(note);
}

std::u16string ResetReceipts::sentence(const Receipt& receipt) const {
  const std::u16string when = shownTimeStamp(receipt.moment, true, clock_);
  if (receipt.outcome == outcomeConfirmed)
    return fillText(shownText(state_, message::lampsReset), {when, receipt.person, receipt.workstation});
  return fillText(shownText(state_, message::lampsNotReset),
                  {when, receipt.person, receipt.workstation, reason(receipt)});
}

// A word that a later version has written stands for itself.
std::u16string ResetReceipts::reason(const Receipt& receipt) const {
  if (receipt.outcome == outcomeNotConfirmed) return shownText(state_, message::reasonClearAnswer);
  if (receipt.outcome == outcomeNoAnswer) return shownText(state_, message::reasonNoAnswer);
  for (const FailureWord& row : failureWords)
    if (row.word == receipt.outcome)
      return inShownWords(state_, [&](const SharedState& words) {
        return status::reasonText(words, row.failure, receipt.code.value_or(0));
      });
  return receipt.outcome;
}

}  // namespace vordane::store
