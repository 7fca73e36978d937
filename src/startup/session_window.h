// The window as its conversation with the exchange sees it, and what the window says of that conversation.
// One thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "pbx/pbx_session.h"
#include "startup/action_timer.h"
#include "startup/host_link.h"
#include "startup/scheduled_job.h"
#include "status/window_status.h"
#include "store/reset_receipts.h"

namespace vordane::startup {

class SessionWindow final : public pbx::SessionForm {
 public:
  // `caller` is the window as other programs call it.
  SessionWindow(Application& application, const WindowLife& life, const HostLink& host,
                const ScheduledJob& job, ActionTimer& timer, status::WindowStatus& status,
                store::ResetReceipts& receipts, automation::ObjectRef caller)
      : application_(application),
        life_(life),
        host_(host),
        job_(job),
        timer_(timer),
        status_(status),
        receipts_(receipts),
        caller_(std::move(caller)) {}

  // Tells the status line, the notice and, in a scheduled run, the run log. `request` as
  // step::faultListRequest.
  void attemptFailed(std::int16_t request, std::u16string_view exchange, const status::Sentence& reason);

  automation::ObjectRef host() override { return host_.ref(); }
  automation::ObjectRef caller() override { return caller_; }
  std::u16string registeredName() override { return host_.PBXName(); }
  std::u16string jobKey() override { return job_.Key(); }
  void setHourglass(bool on) override;
  void setInputEnabled(bool on) override;
  int askBeforeRequest() override;
  bool alive() override { return life_.alive(); }
  bool logResponse(const cListRequest& answer, std::optional<std::int32_t> errorCode) override;
  void concluded(std::optional<Action> action) override;
  void waitingFor(std::int16_t request, std::u16string_view exchange) override;
  void requestFailed(const pbx::FailedRequest& request) override;

 private:
  window::View& view() { return application_.station().view; }

  Application& application_;
  const WindowLife& life_;
  const HostLink& host_;
  const ScheduledJob& job_;
  ActionTimer& timer_;
  status::WindowStatus& status_;
  store::ResetReceipts& receipts_;
  automation::ObjectRef caller_;
};

}  // namespace vordane::startup
