#include "store/trap.h"

#include <string_view>

namespace vordane::store {

std::u16string errorText(const automation::AutomationError& error) {
  if (!error.description().empty()) return error.description();
  constexpr std::u16string_view digits = u"0123456789ABCDEF";
  const auto code = static_cast<std::uint32_t>(error.code());
  std::u16string text = u"0x";
  for (int shift = 28; shift >= 0; shift -= 4) text += digits[(code >> static_cast<unsigned>(shift)) & 0xFU];
  return text;
}

}  // namespace vordane::store
