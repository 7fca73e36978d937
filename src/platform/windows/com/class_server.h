// The classes that this process offers to others, and how the process lives and ends by them.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/automation.h"
#include "platform/process.h"
#include "platform/windows/com/apartment.h"

namespace vordane::com {

struct ServedClass {
  std::string clsid;  // "{...}"
  // Called for each creation. An AutomationError it throws is the creation's answer; when nobody uses the
  // process otherwise, the process then ends.
  std::function<automation::ObjectRef()> create;
  // True for a class whose last release is dealt with by its own objects (they call Process::end); once
  // one has existed, the others no longer keep or end the process.
  bool endsItself = false;
};

class ClassServer : public platform::Process {
 public:
  explicit ClassServer(Apartment& apartment);
  ~ClassServer() override;
  ClassServer(const ClassServer&) = delete;
  ClassServer& operator=(const ClassServer&) = delete;

  // Offers the classes, all from one moment on. Throws AutomationError when that fails. The process ends
  // with its last served object or lock, and when nobody has created anything within a minute.
  void serve(const std::vector<ServedClass>& classes);

  // The process does not end with its last object, nor for want of one: somebody started it by hand.
  void stay();

  void setCallTimes(const platform::CallTimes& times) override;
  void stopServing() override;
  void end() override;
  [[noreturn]] void endAtOnce() override;
  void watchHost(automation::Object& layer, const automation::ObjectRef& host) override;

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace vordane::com
