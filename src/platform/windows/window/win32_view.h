// The window as Windows draws it. One thread: the one that makes it, which must run the message loop.
#pragma once

#include <windows.h>

#include <memory>

#include "platform/services.h"
#include "platform/view.h"
#include "platform/windows/window/signals.h"

namespace vordane::window::win32 {

class Win32View : public View {
 public:
  virtual HWND window() const = 0;  // null before attach and after detach

  // For the message loop, before TranslateMessage: true when the message was one of the window's own keys
  // (Tab, access keys, F1, F3, Ctrl+F, Esc) and needs nothing more.
  virtual bool translate(MSG& message) = 0;

  // Makes the tick whose time has come, if any. For a loop that serves calls without end, which would
  // otherwise starve the timer's message. Never call it from inside a tick, a box or an outgoing call.
  virtual void serveDueTick() = 0;
};

// `texts` and `settings` must outlive the view. `signals` call the person to an alarm; null where nobody can
// see the workstation. Column widths, order, the splitter and the window's place are kept in `settings` under
// application VORDANE, section Window.
std::unique_ptr<Win32View> makeWin32View(ViewTexts& texts, platform::SettingsStore& settings,
                                         std::unique_ptr<Signals> signals = systemSignals());

}  // namespace vordane::window::win32
