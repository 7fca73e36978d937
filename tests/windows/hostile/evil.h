// The hostile host as the director has it: started when it is needed, ordered about, dead now and then.
#pragma once

#include <initializer_list>
#include <string_view>

#include "program.h"

namespace vordane::hostile {

inline constexpr const wchar_t* hostProgram = L"EvilHost.exe";
inline constexpr const wchar_t* exchangeProgram = L"EvilExchange.exe";

class EvilHost {
 public:
  // Gives an order; false when the program died in the middle, as it may. Throws std::runtime_error when the
  // order failed otherwise.
  bool order(std::u16string_view member, std::initializer_list<automation::Argument> given = {});
  bool alive() const { return object_ != nullptr; }
  // Also one that hangs.
  void end();

 private:
  void take();
  void died(std::u16string_view member, const automation::AutomationError& failure);

  automation::ObjectRef object_;
  com::Handle process_;
};

// Ends all programs of that name.
void endPrograms(const wchar_t* program);

}  // namespace vordane::hostile
