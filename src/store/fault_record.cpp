#include "store/fault_record.h"

#include "text/numbers.h"
#include "text/text.h"

namespace vordane::store {

std::u16string_view faultKind(std::u16string_view record) {
  return text::middle(record, 1, 2);
}

std::u16string_view alarmClass(std::u16string_view record) {
  return text::middle(record, 4, 2);
}

std::u16string processor(std::u16string_view record) {
  if (text::middle(record, 7, 2) == u"MP") return u"MP   ";
  return std::u16string(text::middle(record, 7, 3)) +
         text::decimal(text::hexField(text::middle(record, 10, 2)));
}

std::u16string WidenYear(std::u16string_view text) {
  if (text::middle(text, 3, 1) != u"/") return std::u16string(text);
  const auto year = text::left(text, 2);
  std::u16string widened = text::decimalField(year) < 80 ? u"20" : u"19";
  return widened.append(text);
}

}  // namespace vordane::store
