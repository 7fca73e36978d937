#include "text/fill.h"

#include "text/numbers.h"
#include "text/text.h"

namespace vordane {

std::u16string brief(std::u16string_view text, std::size_t most) {
  if (text.size() <= most) return std::u16string(text);
  return std::u16string(text::beginning(text, most)) + u"...";
}

std::u16string fillText(std::u16string_view pattern, std::initializer_list<std::u16string_view> values) {
  std::u16string result;
  for (std::size_t at = 0; at < pattern.size(); ++at) {
    const bool place = at + 2 < pattern.size() && pattern[at] == u'{' && pattern[at + 2] == u'}' &&
                       text::isDecimalDigit(pattern[at + 1]) && pattern[at + 1] != u'0';
    const std::size_t number = place ? static_cast<std::size_t>(pattern[at + 1] - u'1') : values.size();
    if (number >= values.size()) {
      result += pattern[at];
      continue;
    }
    result += brief(values.begin()[number], longestValue);
    at += 2;
  }
  return result;
}

}  // namespace vordane
