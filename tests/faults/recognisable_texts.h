// Texts that say what they are: message n reads "Mn", item i of list cboFKxx reads "Kxx.i".
#pragma once

#include <cstdio>
#include <iterator>
#include <string>

#include "faults/cFaultDisplay.h"
#include "faults/kind_lists.h"
#include "text/numbers.h"

namespace vordane::faults {

inline std::u16string message(int number) {
  return u"M" + text::decimal(number);
}

inline std::u16string item(int kind, int code) {
  constexpr std::u16string_view digits = u"0123456789ABCDEF";
  return std::u16string(u"K") + digits[static_cast<std::size_t>(kind / 16)] +
         digits[static_cast<std::size_t>(kind % 16)] + u"." + text::decimal(code);
}

inline constexpr int lastMessage = lastFaultText;

// One list of a kind that is held to it ends with the item for codes out of range; the others have some
// items and no such last one.
inline int itemCount(const FaultKind& row) {
  if (row.highestCode != noHighestCode) return row.highestCode + 2;
  return row.kind == 0x17 ? 18 : row.kind == 0x48 ? 6 : row.kind == 0x49 ? 5 : 7;
}

// All of them, or all but one message or list.
inline FaultTextTable recognisableTexts(int missingMessage = -1, int missingList = -1) {
  FaultTextTable texts;
  for (int number = 0; number <= lastMessage; ++number)
    if (number != missingMessage) texts.setMessage(number, message(number));
  for (const FaultKind& row : faultKinds) {
    if (row.list == noList || row.list == missingList) continue;
    for (int code = 0; code < itemCount(row); ++code) texts.addItem(row.list, item(row.list, code));
  }
  return texts;
}
inline FaultTextTable textsWithoutMessage(int number) {
  return recognisableTexts(number);
}
inline FaultTextTable textsWithoutList(int kind) {
  return recognisableTexts(-1, kind);
}

// The decoder at work on recognisable texts, with wide fields unless `wide` is changed.
struct Decoder {
  FaultTextTable texts = recognisableTexts();
  bool wide = true;
  cFaultDisplay display{texts, wide};

  std::u16string operator()(std::u16string_view record, std::u16string_view first,
                            std::u16string_view second = {}) const {
    return display.GetFaultMessage(record, first, second);
  }
};

// What stands between the title line and the trailer of a description made of recognisable texts.
inline std::u16string detailOf(std::u16string_view description) {
  const auto begin = description.find(u"\r\n");
  const auto end = description.rfind(u"\r\nM5 M6");
  if (begin == std::u16string_view::npos || end == std::u16string_view::npos || end < begin + 2) return u"?";
  return std::u16string(description.substr(begin + 2, end - begin - 2));
}

}  // namespace vordane::faults
