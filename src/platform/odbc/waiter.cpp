#include "platform/odbc/waiter.h"

#include <chrono>

namespace vordane::odbc {
namespace {

// Whoever looks takes no shorter stop for a hang.
constexpr std::chrono::milliseconds betweenLooks{50};

}  // namespace

Waiter::~Waiter() {
  if (!thread_.joinable()) return;
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
  }
  changed_.notify_all();
  thread_.join();
}

Return Waiter::call(const std::function<Return()>& step) {
  if (!meanwhile_) return step();
  if (!thread_.joinable()) thread_ = std::thread([this] { work(); });
  std::unique_lock lock(mutex_);
  step_ = &step;
  changed_.notify_all();
  while (!changed_.wait_for(lock, betweenLooks, [this] { return step_ == nullptr; })) {
    lock.unlock();
    meanwhile_();
    lock.lock();
  }
  return result_;
}

void Waiter::work() {
  std::unique_lock lock(mutex_);
  for (;;) {
    changed_.wait(lock, [this] { return step_ != nullptr || ending_; });
    if (ending_) return;
    const auto& step = *step_;
    lock.unlock();
    const Return result = step();
    lock.lock();
    result_ = result;
    step_ = nullptr;
    changed_.notify_all();
  }
}

}  // namespace vordane::odbc
