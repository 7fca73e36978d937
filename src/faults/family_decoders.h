// The decoders that several kinds share. Each composes the detail line; title and trailer are the same
// for all and stand around it.
#pragma once

#include "faults/composer.h"
#include "text/text.h"

namespace vordane::faults {

template <class C>
void OneCode(C& c) {
  c.clampedItem(c.number(0), {c.field(0)});
}

template <class C>
void LabelledOneCode(C& c) {
  c.message(c.kind().label);
  c.blank();
  if (c.kind().highestCode == noHighestCode) return c.plainItem(c.number(0), {c.field(0)});
  c.clampedItem(c.number(0), {c.field(0)});
}

// blank, bracket, label, blank, number, bracket.
template <class C>
void BracketedNumber(C& c, int value, int digits) {
  c.bracketed(c.kind().label, [&] { c.showNumber(value, digits, {c.field(0)}); });
}

template <class C>
void MaskedValue(C& c) {
  // Narrow exchanges send flags in the upper two bits.
  const int value = c.number(0);
  BracketedNumber(c, c.wideFields() ? value : value & 0x3F, 2);
}

template <class C>
void Date(C& c) {
  c.message(c.kind().label);
  c.blank();
  // Hexadecimal numbers, not binary-coded decimal: a byte 12 shows as 18.
  c.showNumber(c.number(0), 2, {c.field(0)});
  c.literal(u"/");
  c.showNumber(c.number(1), 2, {c.field(1)});
}

// item, blank, bracket, label, blank, what `value` shows, bracket. `code` is the number of the field.
template <class C, class Value>
void ItemAndValue(C& c, int code, Field codeField, Value value) {
  c.clampedItem(code, {codeField});
  c.bracketed(c.kind().label, value);
}

template <class C>
void RawValue(C& c) {
  ItemAndValue(c, c.number(0), c.field(0), [&] {
    c.show(c.read(1).view(), {c.field(1)});
    c.show(c.read(2).view(), {c.field(2)});
  });
}

// Two bytes whose four characters are decimal digits, unlike every other field: up to the first character
// that is none, and -1 when the number needs more than a byte.
template <class C>
void ShowDecimalPair(C& c, std::size_t high, std::size_t low) {
  const int value = c.read(high, low).decimal();
  c.showNumber(value > 255 ? -1 : value, 1, {c.field(high), c.field(low)});
}

template <class C>
void DecimalPair(C& c) {
  ItemAndValue(c, c.number(2), c.field(2), [&] { ShowDecimalPair(c, 0, 1); });
}

template <class C>
void PaddedNumber(C& c) {
  ItemAndValue(c, c.number(0), c.field(0), [&] { c.showNumber(c.number(1), 3, {c.field(1)}); });
}

template <class C>
void CodeAndItsNumber(C& c) {
  const int code = c.number(0) & 7;  // never above the highest code
  ItemAndValue(c, code, c.field(0), [&] { c.showNumber(code, 1, {c.field(0)}); });
}

// The one kind that shows its number before the code, and both between the brackets.
template <class C>
void NumberThenCode(C& c) {
  c.bracketed(c.kind().label, [&] {
    c.showNumber(c.number(0), 2, {c.field(0)});
    c.literal(u"  ");
    c.clampedItem(c.number(1), {c.field(1)});
  });
}

template <class C>
void TypeAndNumber(C& c) {
  static constexpr int numberLabel = 112;
  static constexpr Choice types[] = {{0, 0, 107}, {1, 0, 108}, {2, 0, 109}, {3, 0, 160}};  // 160: added late
  c.message(c.kind().label);
  c.chosen(choose(types, c.number(0)), {c.field(0)});  // no blank between label and type
  c.blank();
  c.message(numberLabel);
  c.blank();
  c.showNumber(c.number(1), 1, {c.field(1)});
}

template <class C>
void GroupAndItem(C& c) {
  static constexpr Choice items[] = {
      {2, 0, 118}, {2, 1, 119}, {2, 2, 120}, {2, 3, 121}, {2, 4, 122},  //
      {3, 0, 123}, {3, 1, 124},                                         //
      {4, 0, 125}, {4, 1, 126}, {4, 2, 127}, {4, 3, 130},               // 128 and 129 belong to other kinds
  };
  c.chosen(choose(items, c.number(0), c.number(1)), {c.field(0), c.field(1)});
}

// A digit that an exchange can dial: 0 to 9, A and B.
constexpr bool IsDigitOrAB(char16_t character) {
  return (character >= u'0' && character <= u'9') || character == u'A' || character == u'B';
}

// Shows the packed digits of fields 1 to 4, one character after the other, until `take` says stop.
enum class Digit { show, skip, stop };

template <class C, class Take>
void ShowDigits(C& c, Take take) {
  for (std::size_t n = 1; n <= 4; ++n) {
    const FieldText digits = c.read(n);
    for (std::size_t i = 0; i < digits.view().size(); ++i) {
      const Digit decision = take(text::upper(digits.view()[i]));
      if (decision == Digit::stop) return;
      const auto place = static_cast<std::uint8_t>(c.field(n).start + i);
      if (decision == Digit::show) c.show(digits.view().substr(i, 1), {Field{place, 1}});
    }
  }
}

// The leading run of digits: the first other character, usually the filler F, ends it.
template <class C>
void CodedDigits(C& c) {
  ItemAndValue(c, c.number(0), c.field(0), [&] {
    ShowDigits(c, [](char16_t character) { return IsDigitOrAB(character) ? Digit::show : Digit::stop; });
  });
}

// Here the filler F is skipped wherever it stands, and everything else shows.
template <class C>
void FlaggedDigits(C& c) {
  static constexpr int flagClear = 49, flagSet = 50;
  c.chosen((c.number(0) & 1) != 0 ? flagSet : flagClear, {c.field(0)});
  c.bracketed(c.kind().label, [&] {
    ShowDigits(c, [](char16_t character) { return character == u'F' ? Digit::skip : Digit::show; });
  });
}

}  // namespace vordane::faults
