// How the workstation calls a person who looks elsewhere: task bar button and sound. One thread, with COM.
#pragma once

#include <windows.h>

#include <memory>
#include <string>

#include "attention/attention.h"

namespace vordane::window::win32 {

class Signals {
 public:
  virtual ~Signals() = default;
  virtual void flash(HWND window) = 0;  // its button, until the window is in front
  virtual void sound(attention::Lamp lamp) = 0;
  // Over its button, in these words for who can't see it; none takes it away.
  virtual void overlay(HWND window, attention::Overlay overlay, const std::u16string& words) = 0;
};

// The system's. Where the desktop has no task bar of that kind, overlays are left out.
std::unique_ptr<Signals> systemSignals();

}  // namespace vordane::window::win32
