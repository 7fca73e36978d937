// Calls the person to the lamps: looks, when lamps or the window have changed, what the rule asks for, and
// has it done once the message loop runs again, so that both lamps of one answer are one call. Keeps whether
// the person wants to hear it. One thread.
#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <string>

#include "attention/attention.h"
#include "platform/services.h"
#include "platform/windows/window/signals.h"

namespace vordane::window::win32 {

class AttentionWork {
 public:
  struct Around {
    std::function<bool()> attended;  // by a person, who may use the window
    std::function<HWND(attention::Lamp)> lamp;
    std::function<std::u16string(attention::Lamp)> words;  // of the lamp while it is lit
  };

  // Without `signals` nobody can see or hear the workstation, and nothing is done.
  AttentionWork(platform::SettingsStore& settings, std::unique_ptr<Signals> signals)
      : settings_(settings), signals_(std::move(signals)) {}
  void create(HWND frame, Around around);
  void forget();  // the window goes

  void shown(std::u16string_view exchange, attention::Lamp lamp, bool lit);
  void look();               // the window has come or gone
  bool heard(UINT message);  // true when it was its own

  bool soundWanted() const;
  void switchSound();

 private:
  bool inFront() const;
  void call();
  void announce(const attention::Call& call) const;
  void drawOver(attention::Overlay overlay);

  platform::SettingsStore& settings_;
  std::unique_ptr<Signals> signals_;
  Around around_;
  HWND frame_ = nullptr;
  attention::Attention attention_;
  attention::Overlay overlay_ = attention::Overlay::none;
  UINT buttonMade_ = 0;  // the message that the task bar sends
  bool posted_ = false;
};

}  // namespace vordane::window::win32
