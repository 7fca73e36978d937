// One of the two hostile programs as the director has it: started when it is needed, ordered about, dead now
// and then.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string_view>

#include "program.h"

namespace vordane::hostile {

class Evil {
 public:
  Evil(Role role, const wchar_t* program) : role_(role), program_(program) {}

  // Gives an order; false when the program died in the middle, as it may. Throws std::runtime_error when the
  // order failed otherwise, or when something was answered to the program that nobody may get.
  bool order(std::u16string_view member, std::initializer_list<automation::Argument> given = {});
  bool alive() const { return object_ != nullptr; }
  std::int64_t calls() const { return calls_; }  // it has answered so many, in all its lives
  int deaths() const { return deaths_; }
  void end();

 private:
  void take();
  void keepCalls();
  void died(std::u16string_view member, const automation::AutomationError& failure);
  void endAll() const;

  Role role_;
  const wchar_t* program_;
  automation::ObjectRef object_;
  com::Handle process_;
  std::int64_t calls_ = 0;
  std::int32_t counted_ = 0;
  int deaths_ = 0;
};

}  // namespace vordane::hostile
