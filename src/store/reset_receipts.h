// The receipts of resets: what becomes of the one under way is written down when that is known, and the
// latest of the exchange shown stands beside the lamps. A receipt that can't be written stops nothing: the
// status line says so. None of these throws but for want of memory; the writing ones not even then. One
// thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "pbx/failure.h"
#include "pbx/received_list.h"
#include "platform/receipts.h"
#include "platform/services.h"
#include "platform/view.h"
#include "settings/shared_state.h"
#include "status/window_status.h"

namespace vordane::store {

class StoreForm;

// What a receipt's outcome is called where it is kept, besides those of failed requests.
inline constexpr std::u16string_view outcomeConfirmed = u"confirmed";
inline constexpr std::u16string_view outcomeNotConfirmed = u"not confirmed";
inline constexpr std::u16string_view outcomeNoAnswer = u"no answer";

class ResetReceipts {
 public:
  // Of an answer, the first entries are kept, of each text its beginning.
  static constexpr std::int32_t mostEntries = 1000;
  static constexpr std::size_t longestText = 1000;

  // All of it outlives this.
  ResetReceipts(StoreForm& form, window::View& view, const SharedState& state, platform::Clock& clock,
                status::WindowStatus& status, const platform::Program& program)
      : form_(form), view_(view), state_(state), clock_(clock), status_(status), program_(program) {}
  ResetReceipts(const ResetReceipts&) = delete;
  ResetReceipts& operator=(const ResetReceipts&) = delete;

  // A person has asked for a reset of this exchange's alarms. No run of a job ever does.
  void begin(std::u16string_view exchange) noexcept;
  // What came of it; nothing is written when none is under way, so each has one receipt.
  void failed(const pbx::FailedRequest& request) noexcept;
  void answered(const pbx::ReceivedList& answer, bool confirmed) noexcept;
  void ended() noexcept;  // the window goes, and no answer has come

  // The exchange whose lamps are shown from now on; empty: none.
  void show(std::u16string_view exchange);
  void showLast();  // once more: it is worded anew

 private:
  struct Asked {
    std::u16string exchange;
    platform::LocalTime when;
  };
  void finish(std::u16string_view outcome, std::optional<std::int32_t> code,
              const cListRequest* answer) noexcept;
  void write(const Asked& asked, std::u16string_view outcome, std::optional<std::int32_t> code,
             const cListRequest* answer);
  void notKept(std::u16string_view why);
  std::u16string sentence(const database::Receipt& receipt) const;
  std::u16string reason(const database::Receipt& receipt) const;

  StoreForm& form_;
  window::View& view_;
  const SharedState& state_;
  platform::Clock& clock_;
  status::WindowStatus& status_;
  const platform::Program& program_;
  std::optional<Asked> asked_;  // the one under way
  std::u16string shown_;
};

}  // namespace vordane::store
