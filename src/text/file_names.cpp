#include "text/file_names.h"

#include <algorithm>

#include "text/text.h"

namespace vordane::text {
namespace {

// Names that mean a device, whatever ending they have.
constexpr std::u16string_view devices[] = {u"CON", u"PRN", u"AUX", u"NUL", u"CONIN$", u"CONOUT$"};
constexpr std::u16string_view numberedDevices[] = {u"COM", u"LPT"};  // and one digit, as 1 or superscript

bool namesDevice(std::u16string_view name) {
  const std::u16string stem = toUpper(trim(name.substr(0, name.find(u'.'))));
  if (std::find(std::begin(devices), std::end(devices), stem) != std::end(devices)) return true;
  constexpr std::u16string_view digits = u"0123456789\u00B9\u00B2\u00B3";
  return stem.size() == 4 && digits.find(stem[3]) != digits.npos &&
         std::find(std::begin(numberedDevices), std::end(numberedDevices), left(stem, 3)) !=
             std::end(numberedDevices);
}

bool mayStandInAName(char16_t character) {
  constexpr std::u16string_view forbidden = u"\\/:*?\"<>|";
  return character >= 0x20 && forbidden.find(character) == forbidden.npos;
}

// All of them are of one byte.
void appendCode(std::u16string& name, char16_t character) {
  constexpr std::u16string_view digits = u"0123456789ABCDEF";
  name += u'%';
  name += digits[character / 16 % 16];
  name += digits[character % 16];
}

}  // namespace

bool isPlainFileName(std::u16string_view name) {
  return name.find_first_not_of(u". ") != name.npos &&
         std::all_of(name.begin(), name.end(), mayStandInAName) && !namesDevice(name);
}

std::u16string asFileName(std::u16string_view text) {
  std::u16string name;
  const bool device = namesDevice(text);
  for (const char16_t character : text) {
    const bool code = !mayStandInAName(character) || character == u'%' || (device && name.empty());
    if (code)
      appendCode(name, character);
    else
      name += character;
  }
  return name;
}

}  // namespace vordane::text
