// The kinds whose detail lines are like no other's. Each composes everything between the title line and
// the line end before the trailer.
#pragma once

#include "faults/composer.h"
#include "faults/family_decoders.h"

namespace vordane::faults {

template <class C>
void DecodeKind04(C& c) {
  static constexpr int stateOff = 19, stateOn = 69, below = 20, belowEnd = 21, atLeast = 22, limit = 100;
  // The state digit is compared as a character, so that only a plain 0 or 1 has a text.
  const FieldText state = c.read(0);
  const bool off = state.view() == u"0", on = state.view() == u"1";
  c.chosen(off ? stateOff : on ? stateOn : noMessage, {c.field(0)});
  c.endLine();
  const int value = c.number(1);
  c.blank();
  c.message(openBracket);
  if (value < limit) {
    c.message(below);
    c.blank();
    c.showNumber(value, 1, {c.field(1)});
    c.message(belowEnd);
  } else {
    c.chosen(atLeast, {c.field(1)});  // the number itself is not shown
  }
  c.message(closeBracket);
  c.endLine();
  const int unit = c.number(2);
  c.bracketed(c.kind().label, [&] { c.showNumber(c.wideFields() ? unit : unit & 0x3F, 2, {c.field(2)}); });
}

// The label follows the bracket without a blank, and byte 1 shows as it stands.
template <class C>
void DecodeKind05(C& c) {
  static constexpr int rawLabel = 26, rawEnd = 27;
  c.bracketed(c.kind().label, [&] {
    c.showNumber(c.number(0), 3, {c.field(0)});
    c.blank();
    c.message(rawLabel);
    c.blank();
    c.show(c.read(1).view(), {c.field(1)});
    c.message(rawEnd);
  });
}

// state label, blank, what `state` shows, then byte 1 between brackets. An empty state leaves two blanks
// in a row behind its label.
template <class C, class State>
void StateLine(C& c, State state) {
  static constexpr int stateLabel = 14;
  c.message(stateLabel);
  c.blank();
  state();
  c.bracketed(c.kind().label, [&] { c.showNumber(c.number(2), 1, {c.field(2)}); });
}

template <class C>
void DecodeKind13(C& c) {
  static constexpr Choice states[] = {
      {0x01, 0x01, 79}, {0x02, 0x09, 80},  // 02 0A has no text
      {0x02, 0x0B, 81}, {0x02, 0x0C, 82}, {0x02, 0x0D, 83},
      {0x81, 0x01, 84}, {0x81, 0x11, 85}, {0x81, 0x21, 90},  // 86 to 89 belong to other places
  };
  StateLine(c, [&] { c.chosen(choose(states, c.number(0), c.number(1)), {c.field(0), c.field(1)}); });
}

template <class C>
void DecodeKind14(C& c) {
  static constexpr Choice states[] = {{0x80, 0x01, 128}};
  StateLine(c, [&] { c.chosen(choose(states, c.number(0), c.number(1)), {c.field(0), c.field(1)}); });
}

// Byte 3 stands in the row as in the rows of its sisters, but plays no part.
template <class C>
void DecodeKind15(C& c) {
  static constexpr int numberLabel = 131;
  StateLine(c, [&] {
    c.message(numberLabel);
    c.message(openBracket);
    c.showNumber(c.number(1), 1, {c.field(1)});
    c.message(closeBracket);
  });
}

// Code 16 alone carries a number: byte 3 before byte 2, sixteen bits with a sign.
template <class C>
void DecodeKind17(C& c) {
  static constexpr int codeWithNumber = 16;
  const int code = c.number(0);
  c.plainItem(code, {c.field(0)});
  if (code != codeWithNumber) return;
  c.blank();
  c.message(c.kind().label);
  c.blank();
  c.showNumber(c.read(1, 2).hexadecimal(), 1, {c.field(1), c.field(2)});
}

// A number of field `n` that has a text of its own for some values, and shows in decimal otherwise.
template <class C>
void NamedOrNumber(C& c, int label, std::size_t n, std::span<const Choice> names) {
  const int value = c.number(n);
  const int name = choose(names, value);
  c.bracketed(label, [&] {
    if (name != noMessage) return c.chosen(name, {c.field(n)});
    c.showNumber(value, 1, {c.field(n)});
  });
}

template <class C>
void DecodeKind3B(C& c) {
  static constexpr int modeLabel = 161;
  static constexpr Choice modes[] = {{0, 0, 162}, {1, 0, 163}, {2, 0, 164}};
  c.clampedItem(c.number(2), {c.field(2)});
  c.endLine();
  c.bracketed(c.kind().label, [&] { ShowDecimalPair(c, 0, 1); });
  c.endLine();
  NamedOrNumber(c, modeLabel, 3, modes);
}

template <class C>
void DecodeKind48(C& c) {
  static constexpr Choice third[] = {{2, 0, 137}, {3, 0, 138}};
  static constexpr Choice fourth[] = {{2, 0, 149}, {3, 0, 150}};
  c.message(c.kind().label);
  c.blank();
  c.plainItem(c.number(0), {c.field(0)});
  c.endLine();
  NamedOrNumber(c, 134, 1, third);
  c.endLine();
  NamedOrNumber(c, 135, 2, fourth);
  c.endLine();
  NamedOrNumber(c, 136, 3, {});  // the fifth byte has no names: a 3 shows as 3
}

template <class C>
void DecodeKind49(C& c) {
  static constexpr Choice second[] = {{0, 0, 144}, {1, 0, 145}, {2, 0, 146}, {3, 0, 147}, {4, 0, 148}};
  c.message(c.kind().label);
  c.blank();
  c.plainItem(c.number(0), {c.field(0)});
  c.endLine();
  NamedOrNumber(c, 142, 1, second);
  c.endLine();
  NamedOrNumber(c, 143, 2, {});
}

}  // namespace vordane::faults
