// Help: F1 asks the host for the program's document, What's This shows the control's own text, the system
// menu opens the installed guide. One thread.
#pragma once

#include <map>
#include <string>

#include "platform/database.h"
#include "platform/window.h"
#include "startup/host_link.h"
#include "startup/window_life.h"
#include "status/window_status.h"

namespace vordane::startup {

class WindowHelp {
 public:
  WindowHelp(Application& application, WindowLife& life, HostLink& host, status::WindowStatus& status)
      : application_(application), life_(life), host_(host), status_(status) {}

  void load(window::Form& form, database::Database& language);
  // What's This says these texts from now on; null: its own. They outlive the next call.
  void readIn(const std::map<std::u16string, std::u16string>* texts) { reading_ = texts; }
  void askHost();
  void mousePressed(window::Control& control, int button);
  void ShowWhatsThis(window::Control& control);
  void whatsThisChosen();
  bool guideOffered();  // not where nobody would see it
  // Opens the guide at the topic of that part of the window; the status line says why it does not open.
  void openGuide(std::u16string_view part);

 private:
  Application& application_;
  WindowLife& life_;
  HostLink& host_;
  status::WindowStatus& status_;
  std::map<std::u16string, std::u16string> texts_;
  const std::map<std::u16string, std::u16string>* reading_ = nullptr;
  window::Control* target_ = nullptr;  // while its menu is open
};

}  // namespace vordane::startup
