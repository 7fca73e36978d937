// Texts of the decoder with the lengths that real ones have.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

#include "faults/fault_texts.h"
#include "faults/kind_lists.h"

namespace vordane::bench {

inline std::u16string words(std::size_t length) {
  constexpr std::u16string_view some = u"line trunk station processor failure restart number equipped ";
  std::u16string text;
  while (text.size() < length) text += some.substr(0, std::min(some.size(), length - text.size()));
  return text;
}

inline FaultTextTable decoderTexts() {
  FaultTextTable table;
  for (int number = 0; number <= faults::lastFaultText; ++number)
    table.setMessage(number, words(8 + static_cast<std::size_t>(number) % 25));
  table.setMessage(6, u"[");
  table.setMessage(7, u"]");
  for (const faults::FaultKind& row : faults::faultKinds)
    for (int code = 0; row.list != faults::noList && code < 17; ++code)
      table.addItem(row.list, words(10 + static_cast<std::size_t>(code)));
  return table;
}

}  // namespace vordane::bench
