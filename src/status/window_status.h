// What the window says of its lists and its conversation: the status line's account, and the notice in the
// place of an empty grid or above a full one. Events go in, texts and the look of the notice come out;
// nothing is drawn here. One thread.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "pbx/failure.h"
#include "platform/view.h"
#include "settings/shared_state.h"
#include "status/list_account.h"

namespace vordane::status {

struct Notice {
  window::NoticeKind kind = window::NoticeKind::hint;
  std::u16string text;
  bool operator==(const Notice&) const = default;
};

// The clause of a sentence that says why a request came to nothing.
std::u16string reasonText(const SharedState& state, pbx::Failure failure, std::int32_t errorCode);

// A sentence, or a part of one, in the words of that state's messages.
using Sentence = std::function<std::u16string(const SharedState& words)>;

// What is told stays told in another language: the window may be read in one from now on.
class WindowStatus {
 public:
  // `state` outlives it: the texts and the run mode are read from there.
  explicit WindowStatus(const SharedState& state) : state_(state) {}

  // --- the load
  void databaseOpened(bool onNetwork) { onNetwork_ = onNetwork; }
  void databaseClosed() { onNetwork_ = false; }
  void exchangeIsSimulated() { simulated_ = true; }
  void textsStopped(std::u16string_view table);  // a loader gave up in it
  void loaded();

  // --- the conversation
  void waits(std::int16_t request, std::u16string_view exchange);  // its number, as step::faultListRequest
  void runs(std::int32_t run, std::int32_t of);                    // of the host's scheduler
  void idle() { waiting_ = nullptr; }                              // nothing is waited for any more
  void attemptFailed(std::int16_t request, std::u16string_view exchange, std::u16string_view when,
                     const Sentence& reason);
  void attemptSucceeded() { attemptLine_ = nullptr; }  // it makes an earlier failure old
  void listTaken(const ListAccount& account);
  void deletionGivenUp(std::u16string_view when);
  // Of a reset: the engine's text. It stands until the next request or receipt.
  void receiptNotKept(std::u16string_view why);
  void receiptKept() { receiptLine_ = nullptr; }

  // --- the language that the window is read in: why another one can't be
  void languageUnusable(std::u16string_view file, std::u16string_view why);
  void languageRead() { languageLine_ = nullptr; }

  // --- the guide: where it was looked for
  void guideMissing(std::u16string_view file);
  void guideNotShown(std::u16string_view file);
  void guideShown() { guideLine_ = nullptr; }

  // --- the display
  void otherExchange() {  // the failure was about what was shown before
    failure_ = guideLine_ = languageLine_ = nullptr;
  }
  // The exchange now shown, empty without one, and when its stored list came, empty when that is not known.
  void exchangeShown(std::u16string_view name, std::u16string_view received);
  void newerListStored(std::u16string_view exchange);  // than the one shown: until it is shown anew
  void displayFailed(std::u16string_view engineText);
  void displayed() { displayFailure_ = nullptr; }

  // --- what is said of it
  std::u16string line() const;
  // What is waited for, what failed last, what a job's creation asks for; nothing when there is none of them.
  std::optional<Notice> conversation() const;
  Notice aboveRows() const;
  // `chosen` is the exchange in the drop-down, nothing without one; `registered` may be empty.
  Notice inEmptyGrid(const std::optional<std::u16string>& chosen, std::u16string_view registered) const;
  Notice withoutDatabase() const;

 private:
  std::u16string text(std::size_t number) const { return shownText(state_, number); }
  std::u16string told(const Sentence& sentence) const;  // empty without one
  Notice hint(const std::optional<std::u16string>& chosen, std::u16string_view registered) const;

  const SharedState& state_;
  bool onNetwork_ = false, simulated_ = false;
  Sentence waiting_, failure_, displayFailure_;   // the notice
  Sentence storedLine_, listLine_, attemptLine_;  // the status line
  std::u16string textsIncomplete_;                // the tables of loaders that stopped
  Sentence receiptLine_;                          // below what failed
  Sentence newerLine_;                            // above what failed
  Sentence guideLine_, languageLine_;             // above all others
};

inline void show(window::View& view, const Notice& notice) {
  view.setNoticeKind(notice.kind);
  view.setNotice(notice.text);
}
inline void showConversation(window::View& view, const WindowStatus& status) {
  if (const auto notice = status.conversation()) show(view, *notice);
}
inline void showLine(window::View& view, const WindowStatus& status) {
  view.setStatus(window::accountPart, status.line());
}

}  // namespace vordane::status
