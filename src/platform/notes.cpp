#include "platform/notes.h"

#include <algorithm>

#include "text/text.h"

namespace vordane::database {
namespace {

// The controls of both halves of the first 256 characters, the two line ends above them, and what turns the
// direction of writing, behind which a line says something else than it holds.
constexpr bool steers(char16_t character) {
  return character < 0x20 || (character >= 0x7F && character <= 0x9F) ||
         (character >= 0x2028 && character <= 0x202E) || (character >= 0x2066 && character <= 0x2069);
}

}  // namespace

std::u16string noteLine(std::u16string_view written) {
  std::u16string line(written);
  std::replace_if(line.begin(), line.end(), steers, u' ');
  return std::u16string(text::trim(line));
}

bool isSteered(std::u16string_view written) {
  return std::any_of(written.begin(), written.end(), steers);
}

}  // namespace vordane::database
