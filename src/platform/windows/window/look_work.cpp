#include "platform/windows/window/look_work.h"

#include <algorithm>
#include <chrono>

#include "platform/database.h"
#include "text/numbers.h"

namespace vordane::window::win32 {
namespace {

constexpr UINT_PTR lookTimer = 3;
constexpr UINT lookPause = USER_TIMER_MINIMUM, lookRest = 100;  // milliseconds
// Others may have stored faults of any exchange meanwhile.
constexpr ULONGLONG betweenPolls = 15'000;
constexpr std::chrono::milliseconds lookSlice{6};

}  // namespace

void LookWork::create(HWND frame, Around around) {
  frame_ = frame;
  around_ = std::move(around);
}

void LookWork::forget() {
  if (frame_ != nullptr) KillTimer(frame_, lookTimer);
  frame_ = nullptr;
  rest();
}

// Nothing is known, and nothing is drawn.
void LookWork::rest() {
  const bool drawn = begun_ && frame_ != nullptr;
  rows_.forget();
  last_.forget();
  looking_ = {};
  exchange_.reset();
  begun_.reset();
  front_ = false;
  if (!drawn) return;
  around_.marksChanged();
  around_.numbersChanged();
}

void LookWork::rowsSet() {
  if (frame_ == nullptr) return;
  if (around_.use() == ListUse::never) {
    KillTimer(frame_, lookTimer);
    return rest();
  }
  rows_.begin();
  last_.begin();
  lookBegins();
  wake();
}

// Which window is in front is known when the message loop runs again.
void LookWork::frontChanged() {
  if (frame_ != nullptr && exchange_) SetTimer(frame_, lookTimer, lookPause, nullptr);
}

// A box of the window's own is the window, too.
bool LookWork::inFront() const {
  const HWND front = GetForegroundWindow();
  return front != nullptr && (front == frame_ || GetAncestor(front, GA_ROOTOWNER) == frame_) &&
         IsWindowVisible(frame_) && !IsIconic(frame_);
}

bool LookWork::timer(WPARAM id) {
  if (id != lookTimer) return false;
  const ListUse use = around_.use();
  if (use == ListUse::never) {
    KillTimer(frame_, lookTimer);
    rest();
    return true;
  }
  if (use == ListUse::now) work();
  see();
  wake();
  return true;
}

// One work at a time.
void LookWork::work() {
  const auto end = std::chrono::steady_clock::now() + lookSlice;
  const auto again = [end] { return std::chrono::steady_clock::now() < end; };
  if (rows_.busy()) return rows_.work(again);
  const bool pollDue = !last_.failed() && GetTickCount64() >= pollAt_ && IsWindowVisible(frame_);
  if (!last_.busy() && pollDue) last_.begin();
  if (last_.busy()) readOn(again);
}

void LookWork::readOn(const std::function<bool()>& again) {
  try {
    if (const auto store = around_.arrivals(); store == nullptr)
      last_.forget();
    else if (last_.work(*store, around_.exchanges(), again))
      around_.numbersChanged();
  } catch (const database::DatabaseError&) {
    last_.giveUp();  // it is held by somebody at this moment
  }
  if (!last_.busy()) pollAt_ = GetTickCount64() + betweenPolls;
  lookBegins();
}

// Of another exchange at once; of the same one as soon as its mark is known. A mark that has fallen back
// takes the look with it.
void LookWork::lookBegins() {
  const auto shown = around_.shown();
  const auto before = begun_;
  const auto mark = shown ? last_.mark(*shown) : std::nullopt;
  if (shown != exchange_ || !mark || !begun_)
    begun_ = mark;
  else
    begun_ = std::min(*begun_, *mark);
  exchange_ = shown;
  if (begun_ != before) around_.marksChanged();
}

void LookWork::see() {
  const bool use = around_.use() == ListUse::now, front = use && inFront();
  if (use && front != front_) {
    front_ = front;
    if (front && begun_) {  // who comes back looks anew
      begun_.reset();
      lookBegins();
    }
  }
  const auto highest = rows_.highest();
  const bool known = front && exchange_ && begun_ && highest;
  const auto shown = known ? std::optional(list::Looking::Shown{*exchange_, *highest}) : std::nullopt;
  if (const auto looked = looking_.see(shown, std::chrono::steady_clock::now())) {
    last_.looked(looked->exchange, looked->highest);
    around_.numbersChanged();
  }
}

// The timer runs while there is work, a look to be ended, or a store to be looked at again.
void LookWork::wake() {
  const ListUse use = around_.use();
  if (use == ListUse::never || !exchange_) {
    KillTimer(frame_, lookTimer);
    return;
  }
  UINT after = static_cast<UINT>(betweenPolls);
  if (use == ListUse::later || (rows_.waits() && !last_.busy())) {
    after = lookRest;
  } else if (rows_.busy() || last_.busy()) {
    after = lookPause;
  } else if (const auto due = looking_.due()) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*due - std::chrono::steady_clock::now());
    after = static_cast<UINT>(std::clamp<long long>(left.count(), lookPause, betweenPolls));
  }
  SetTimer(frame_, lookTimer, after, nullptr);
}

std::optional<std::size_t> LookWork::next(std::optional<std::size_t> from) const {
  return begun_ ? rows_.next(*begun_, from) : std::nullopt;
}

std::u16string LookWork::newFaults(std::int64_t exchange) const {
  const std::size_t faults = last_.newFaults(exchange);
  if (faults == 0) return {};
  if (faults < list::LastLook::mostCounted) return text::decimal(static_cast<std::int64_t>(faults));
  return text::decimal(static_cast<std::int64_t>(list::LastLook::mostCounted) - 1) + u"+";
}

}  // namespace vordane::window::win32
