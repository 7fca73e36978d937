// Help: F1 asks the host for the program's document, What's This shows the control's own text. One thread.
#pragma once

#include <map>
#include <string>

#include "platform/database.h"
#include "platform/window.h"
#include "startup/host_link.h"
#include "startup/window_life.h"

namespace vordane::startup {

class WindowHelp {
 public:
  WindowHelp(Application& application, WindowLife& life, HostLink& host)
      : application_(application), life_(life), host_(host) {}

  void load(window::Form& form, database::Database& language);
  void askHost();
  void mousePressed(window::Control& control, int button);
  void ShowWhatsThis(window::Control& control);
  void whatsThisChosen();

 private:
  Application& application_;
  WindowLife& life_;
  HostLink& host_;
  std::map<std::u16string, std::u16string> texts_;
  window::Control* target_ = nullptr;  // while its menu is open
};

}  // namespace vordane::startup
