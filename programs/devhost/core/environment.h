// What the development host needs of the program it runs in. One thread.
#pragma once

#include <functional>
#include <string_view>

#include "platform/automation.h"
#include "zulsim/core/exchange_server.h"

namespace vordane::devhost {

class Environment : public zulsim::Services {
 public:
  virtual automation::ObjectRef create(std::u16string_view progId) = 0;  // throws AutomationError
  // Serves calls until `done` says so (true) or the time is over (false); below 0: without end.
  virtual bool waitUntil(const std::function<bool()>& done, int milliseconds) = 0;
  virtual void print(std::string_view line) = 0;  // UTF-8, without an end
  virtual std::u16string now() = 0;               // "2006-11-27 10:15", for the report's head
};

}  // namespace vordane::devhost
