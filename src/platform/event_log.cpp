#include "platform/event_log.h"

#include "text/fill.h"
#include "text/numbers.h"

namespace vordane::platform {
namespace {

constexpr std::size_t longestEventValue = 1000;

// Behind a value's own % a digit would be the place of a value once more.
std::u16string eventValue(std::u16string_view text) {
  std::u16string line;
  for (const char16_t character : brief(text, longestEventValue)) {
    if (text::isDecimalDigit(character) && !line.empty() && line.back() == u'%') line += u' ';
    line += character < 0x20 || character == 0x7F ? u' ' : character;
  }
  return line;
}

}  // namespace

std::array<std::u16string, 3> valuesOf(const EventEntry& entry) {
  return {eventValue(entry.file), eventValue(entry.reason), eventValue(entry.job)};
}

}  // namespace vordane::platform
