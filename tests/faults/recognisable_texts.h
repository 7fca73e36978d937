// Texts that say what they are: message n reads "Mn", item i of list cboFKxx reads "Kxx.i".
#pragma once

#include <cstdio>
#include <iterator>
#include <string>

#include "faults/cFaultDisplay.h"
#include "faults/kind_table.h"
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

inline constexpr int lastMessage = 164;

// One list of a kind that is held to it ends with the item for codes out of range; the others have some
// items and no such last one.
inline int itemCount(const FaultKind& row) {
  if (row.highestCode != noHighestCode) return row.highestCode + 2;
  return row.kind == 0x17 ? 18 : row.kind == 0x48 ? 6 : row.kind == 0x49 ? 5 : 7;
}

inline FaultTextTable recognisableTexts() {
  FaultTextTable texts;
  for (int number = 0; number <= lastMessage; ++number) texts.setMessage(number, message(number));
  for (const FaultKind& row : faultKinds) {
    if (row.list == noList) continue;
    for (int code = 0; code < itemCount(row); ++code) texts.addItem(row.list, item(row.list, code));
  }
  return texts;
}

// Recognisable texts without some of them.
class TextsWithout : public FaultTexts {
 public:
  TextsWithout(int missingMessage, int missingList)
      : missingMessage_(missingMessage), missingList_(missingList) {}
  static TextsWithout noMessage(int number) { return {number, -1}; }
  static TextsWithout noListOf(int kind) { return {-1, kind}; }

  const std::u16string* message(int number) const override {
    return number == missingMessage_ ? nullptr : texts_.message(number);
  }
  bool hasList(int kind) const override { return kind != missingList_ && texts_.hasList(kind); }
  const std::u16string* item(int kind, int code) const override {
    return kind == missingList_ ? nullptr : texts_.item(kind, code);
  }

 private:
  FaultTextTable texts_ = recognisableTexts();
  int missingMessage_, missingList_;
};

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
