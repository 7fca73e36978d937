#include "platform/windows/window/attention_work.h"

#include <utility>

#include "platform/windows/window/accessible_name.h"

namespace vordane::window::win32 {
namespace {

using attention::Announcement;
using attention::Lamp;
using attention::Overlay;

constexpr UINT callMessage = WM_APP + 4;
constexpr std::u16string_view application = u"VORDANE", section = u"Window", soundKey = u"AlarmSound";

}  // namespace

void AttentionWork::create(HWND frame, Around around) {
  frame_ = frame;
  around_ = std::move(around);
  attention_ = {};
  overlay_ = Overlay::none;
  posted_ = false;
  buttonMade_ = RegisterWindowMessageW(L"TaskbarButtonCreated");
}

void AttentionWork::forget() {
  frame_ = nullptr;
}

void AttentionWork::shown(std::u16string_view exchange, Lamp lamp, bool lit) {
  if (frame_ == nullptr) return;
  attention_.shown(exchange, lamp, lit);
  look();
}

void AttentionWork::look() {
  if (frame_ == nullptr || std::exchange(posted_, true)) return;
  if (!PostMessageW(frame_, callMessage, 0, 0)) posted_ = false;
}

bool AttentionWork::heard(UINT message) {
  if (frame_ == nullptr) return false;
  if (message == callMessage) {
    posted_ = false;
    call();
    return true;
  }
  if (message != buttonMade_ || buttonMade_ == 0) return false;
  overlay_ = Overlay::none;  // the new button has none
  look();
  return true;
}

bool AttentionWork::soundWanted() const {
  return settings_.read(application, section, soundKey) == u"1";
}

void AttentionWork::switchSound() {
  settings_.write(application, section, soundKey, soundWanted() ? u"0" : u"1");
}

// A box of the window's own is the window, too.
bool AttentionWork::inFront() const {
  const HWND front = GetForegroundWindow();
  return front != nullptr && (front == frame_ || GetAncestor(front, GA_ROOTOWNER) == frame_);
}

void AttentionWork::call() {
  const bool seen = signals_ != nullptr && IsWindowVisible(frame_);
  const attention::Call call = attention_.take({around_.attended(), seen, inFront(), soundWanted()});
  announce(call);
  if (signals_ == nullptr) return;
  if (call.flash) signals_->flash(frame_);
  if (call.sound) signals_->sound(*call.sound);
  drawOver(call.overlay);
}

void AttentionWork::announce(const attention::Call& call) const {
  if (!call.announced) return;
  const HWND lamp = around_.lamp(*call.announced);
  if (call.announcement == Announcement::inPlace) tellLive(lamp);
  if (call.announcement == Announcement::alert)
    NotifyWinEvent(EVENT_SYSTEM_ALERT, lamp, OBJID_ALERT, CHILDID_SELF);
}

void AttentionWork::drawOver(Overlay overlay) {
  if (std::exchange(overlay_, overlay) == overlay) return;
  const Lamp lamp = overlay == Overlay::major ? Lamp::major : Lamp::minor;
  signals_->overlay(frame_, overlay, overlay == Overlay::none ? std::u16string{} : around_.words(lamp));
}

}  // namespace vordane::window::win32
