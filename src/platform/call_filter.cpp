#include "platform/call_filter.h"

namespace vordane::platform {
namespace {

// The start of a call is computed from two clock readings and may differ a little between two messages.
constexpr std::uint32_t sameCall = 200;

std::uint32_t distance(std::uint32_t a, std::uint32_t b) {
  return a > b ? a - b : b - a;
}

// A question's own window is served by the same loop that reports messages: none comes up above another.
class Asking {
 public:
  explicit Asking(bool& flag) : flag_(flag) { flag_ = true; }
  ~Asking() { flag_ = false; }
  Asking(const Asking&) = delete;
  Asking& operator=(const Asking&) = delete;

 private:
  bool& flag_;
};

}  // namespace

int CallFilter::rejected(std::uint32_t elapsed) {
  if (elapsed < patienceFrom_) patienceFrom_ = 0;  // a younger call than the one that was asked about
  if (elapsed - patienceFrom_ < static_cast<std::uint32_t>(times_.busyMilliseconds) || asking_)
    return retryPause;
  const Asking asking(asking_);
  if (!questions_.askWhileBusy()) {
    patienceFrom_ = 0;
    return giveUp;
  }
  patienceFrom_ = elapsed;
  return retryPause;
}

void CallFilter::waiting(std::uint32_t now, std::uint32_t elapsed, bool input) {
  if (asking_ || elapsed < static_cast<std::uint32_t>(times_.pendingMilliseconds)) return;
  if (questions_.unattended() ? alreadyNoted(now - elapsed) : !input) return;
  const Asking asking(asking_);
  questions_.tellPending();
}

// Without a person the note needs no input, so once for each call must do.
bool CallFilter::alreadyNoted(std::uint32_t began) {
  const bool noted = notedCall_ && distance(*notedCall_, began) < sameCall;
  notedCall_ = began;
  return noted;
}

}  // namespace vordane::platform
