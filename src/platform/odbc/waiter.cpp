#include "platform/odbc/waiter.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

namespace vordane::odbc {
namespace {

using std::chrono::steady_clock;

// Whoever looks takes no shorter stop for a hang.
constexpr std::chrono::milliseconds betweenLooks{50};

}  // namespace

// What the thread and its owner share. The thread goes when it has been told to end, after the step it is at.
struct Waiter::Work {
  std::thread thread;
  std::mutex mutex;
  std::condition_variable changed;
  Step step;
  Return result = 0;
  bool busy = false, ending = false;  // with a step

  static void serve(const std::shared_ptr<Work>& work) {
    std::unique_lock lock(work->mutex);
    for (;;) {
      work->changed.wait(lock, [&] { return work->busy || work->ending; });
      if (!work->busy) return;
      Step step = std::move(work->step);
      lock.unlock();
      const Return result = step();
      step = {};  // what it held goes on this thread
      lock.lock();
      work->result = result;
      work->busy = false;
      work->changed.notify_all();
    }
  }
};

Waiter::~Waiter() {
  if (!work_) return;
  {
    const std::lock_guard lock(work_->mutex);
    work_->ending = true;
  }
  work_->changed.notify_all();
  work_->thread.join();
}

void Waiter::begin(Step step) {
  if (!work_) {
    auto work = std::make_shared<Work>();
    work->thread = std::thread([work] { Work::serve(work); });
    work_ = std::move(work);
  }
  const std::lock_guard lock(work_->mutex);
  work_->step = std::move(step);
  work_->busy = true;
  work_->changed.notify_all();
}

std::optional<Return> Waiter::call(Step step, const Patience& patience) {
  begin(std::move(step));
  auto since = steady_clock::now();
  std::unique_lock lock(work_->mutex);
  const auto done = [this] { return !work_->busy; };
  while (!work_->changed.wait_for(lock, betweenLooks, done)) {
    lock.unlock();
    if (meanwhile_) meanwhile_();
    const bool late = patience.time && steady_clock::now() - since >= *patience.time;
    const bool goesOn = late && patience.goesOn && patience.goesOn();
    if (goesOn) since = steady_clock::now();
    lock.lock();
    if (!late || goesOn || done()) continue;
    work_->ending = true;
    work_->thread.detach();
    lock.unlock();
    work_.reset();
    return std::nullopt;
  }
  return work_->result;
}

}  // namespace vordane::odbc
