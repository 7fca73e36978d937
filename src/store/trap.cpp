#include "store/trap.h"

#include "text/numbers.h"

namespace vordane::store {

std::u16string errorText(const automation::AutomationError& error) {
  if (!error.description().empty()) return error.description();
  return text::hexadecimal(static_cast<std::uint32_t>(error.code()));
}

}  // namespace vordane::store
