// Every fault kind with a decoder of its own or in a family: one row each. Adding a kind to a family is
// adding a row here.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "faults/data_text.h"

namespace vordane::faults {

// How a kind's detail lines are composed. The fields of a row stand in the order the family reads them.
enum class Family : std::uint8_t {
  titleOnly,         // no fields; the detail line is empty
  oneCode,           // code
  labelledOneCode,   // code
  oneValue,          // number
  maskedValue,       // number, cut to six bits on exchanges with narrow fields
  onePaddedValue,    // number, two digits
  date,              // two numbers, two digits each
  rawValue,          // code, then two pieces shown as they stand
  decimalPair,       // two pieces read together as decimal, then code
  paddedNumber,      // code, number of three digits
  codeAndItsNumber,  // code
  numberThenCode,    // number, code
  typeAndNumber,     // type digit, number digit
  groupAndItem,      // group digit, item digit
  codedDigits,       // code, four bytes of digits
  flaggedDigits,     // flag digit, four bytes of digits
  kind04,
  kind05,
  kind13,
  kind14,
  kind15,
  kind17,
  kind3B,
  kind48,
  kind49,
};

// Kinds whose code is taken as it comes: beyond the list's end it has no text.
inline constexpr std::int16_t noHighestCode = -1;
inline constexpr std::uint8_t noList = 0;

// The messages that no row names (brackets, states, modes ...) end here.
inline constexpr std::uint16_t lastSharedText = 164;

struct FaultKind {
  std::uint8_t kind;
  Family family;
  std::uint16_t title;      // message number
  std::uint16_t label = 0;  // message number beside the value
  std::array<Field, 5> fields = {};
  std::int16_t highestCode = noHighestCode;  // a code above it becomes highestCode + 1
  std::uint8_t list = noList;                // the xx of "cboFKxx"
  std::uint8_t leastItems = 1;               // of a list without a highest code
};

// clang-format off
inline constexpr FaultKind faultKinds[] = {
    // kind  family                   title label  fields                                      highest  list
    {0x01, Family::labelledOneCode,     9,  14, {{{2, 1}}},                                        15, 0x01},
    {0x02, Family::titleOnly,          15},
    {0x03, Family::labelledOneCode,    16,  17, {{{2, 1}}},                                         1, 0x03},
    {0x04, Family::kind04,             18,  23, {{{2, 1}, {4, 2}, {7, 2}}}},
    {0x05, Family::kind05,             24,  25, {{{4, 2}, {1, 2}}}},
    {0x08, Family::maskedValue,        28,  23, {{{1, 2}}}},
    {0x09, Family::oneCode,            29,   0, {{{1, 2}}},                                        15, 0x09},
    {0x0A, Family::rawValue,           30,  31, {{{1, 2}, {5, 1}, {7, 2}}},                        15, 0x0A},
    {0x10, Family::oneCode,            32,   0, {{{2, 1}}},                                        15, 0x10},
    {0x11, Family::oneCode,            33,   0, {{{1, 2}}},                                         2, 0x11},
    {0x12, Family::decimalPair,        34,  35, {{{7, 2}, {10, 2}, {1, 2}}},                       15, 0x12},
    {0x13, Family::kind13,            129,  86, {{{7, 2}, {10, 2}, {1, 2}}}},
    {0x14, Family::kind14,            106, 101, {{{7, 2}, {10, 2}, {1, 2}}}},
    {0x15, Family::kind15,             87,  86, {{{7, 2}, {10, 2}, {1, 2}}}},
    {0x16, Family::codeAndItsNumber,   67,  68, {{{1, 2}}},                                         7, 0x16},
    // The code that carries a number, 16, has a text of its own.
    {0x17, Family::kind17,             78,  88, {{{1, 2}, {7, 2}, {4, 2}}},             noHighestCode, 0x17, 17},
    {0x18, Family::maskedValue,        36,  23, {{{1, 2}}}},
    {0x19, Family::oneCode,            37,   0, {{{1, 2}}},                                        15, 0x19},
    {0x1A, Family::rawValue,           38,  31, {{{1, 2}, {5, 1}, {7, 2}}},                        15, 0x1A},
    {0x20, Family::oneCode,            39,   0, {{{2, 1}}},                                        15, 0x20},
    {0x21, Family::oneValue,           40,  41, {{{1, 2}}}},
    {0x22, Family::oneValue,           42,  43, {{{1, 2}}}},
    {0x23, Family::paddedNumber,       44,  25, {{{2, 1}, {4, 2}}},                                 3, 0x23},
    {0x24, Family::titleOnly,          45},
    {0x25, Family::titleOnly,          46},
    {0x26, Family::codedDigits,        47,  66, {{{1, 2}, {10, 2}, {13, 2}, {16, 2}, {19, 2}}},    15, 0x26},
    {0x27, Family::flaggedDigits,      48,  51, {{{2, 1}, {4, 2}, {7, 2}, {10, 2}, {13, 2}}}},
    {0x28, Family::numberThenCode,     54,  53, {{{2, 1}, {5, 1}}},                                 1, 0x28},
    {0x2B, Family::decimalPair,        55,  35, {{{7, 2}, {10, 2}, {1, 2}}},                       15, 0x2B},
    {0x2C, Family::typeAndNumber,     110, 111, {{{1, 1}, {2, 1}}}},
    {0x30, Family::oneCode,            56,   0, {{{2, 1}}},                                        15, 0x30},
    {0x31, Family::oneValue,           57,  41, {{{1, 2}}}},
    {0x32, Family::oneValue,           58,  43, {{{1, 2}}}},
    {0x33, Family::paddedNumber,       59,  25, {{{2, 1}, {4, 2}}},                                 3, 0x33},
    {0x34, Family::titleOnly,          60},
    {0x35, Family::titleOnly,          61},
    {0x36, Family::codedDigits,        62,  66, {{{1, 2}, {10, 2}, {13, 2}, {16, 2}, {19, 2}}},    15, 0x36},
    {0x37, Family::flaggedDigits,      63,  51, {{{2, 1}, {4, 2}, {7, 2}, {10, 2}, {13, 2}}}},
    // One digit is read, so the number is never above 15.
    {0x38, Family::onePaddedValue,     64,  53, {{{2, 1}}}},
    {0x3B, Family::kind3B,             65,  35, {{{7, 2}, {10, 2}, {1, 2}, {22, 2}}},              15, 0x3B},
    {0x3C, Family::typeAndNumber,     113, 111, {{{1, 1}, {2, 1}}}},
    {0x40, Family::date,               70,  74, {{{1, 2}, {4, 2}}}},
    {0x41, Family::date,               71,  74, {{{1, 2}, {4, 2}}}},
    {0x42, Family::onePaddedValue,     76,  75, {{{1, 2}}}},
    {0x43, Family::groupAndItem,      114,   0, {{{4, 1}, {5, 1}}}},
    {0x48, Family::kind48,            132, 133, {{{4, 2}, {7, 2}, {10, 2}, {13, 2}}},   noHighestCode, 0x48},
    {0x49, Family::kind49,            140, 141, {{{1, 2}, {4, 2}, {7, 2}}},             noHighestCode, 0x49},
    {0x50, Family::date,               72,  74, {{{1, 2}, {4, 2}}}},
    {0x51, Family::date,               73,  74, {{{1, 2}, {4, 2}}}},
    {0x52, Family::onePaddedValue,     77,  75, {{{1, 2}}}},
    {0x53, Family::groupAndItem,      115,   0, {{{4, 1}, {5, 1}}}},
    // The one labelled code that is not held to its list: beyond the last item it shows nothing, and "-"
    // shows as "-".
    {0x58, Family::labelledOneCode,   139,  14, {{{4, 2}}},                             noHighestCode, 0x58},
};
// clang-format on

// Every other kind: a title that names none.
inline constexpr FaultKind defaultKind = {0, Family::titleOnly, 8};

// Each kind is named once, in ascending order.
constexpr bool strictlyAscending(const auto& rows) {
  return std::adjacent_find(std::begin(rows), std::end(rows), [](const FaultKind& a, const FaultKind& b) {
           return a.kind >= b.kind;
         }) == std::end(rows);
}

// What a family reads and shows of a row.
struct Needs {
  std::size_t fields;
  bool label, item;
};
constexpr Needs needsOf(Family family) {
  switch (family) {
    case Family::titleOnly:
      return {0, false, false};
    case Family::oneCode:
      return {1, false, true};
    case Family::labelledOneCode:
    case Family::codeAndItsNumber:
      return {1, true, true};
    case Family::oneValue:
    case Family::maskedValue:
    case Family::onePaddedValue:
      return {1, true, false};
    case Family::date:
    case Family::typeAndNumber:
    case Family::kind05:
      return {2, true, false};
    case Family::paddedNumber:
    case Family::numberThenCode:
      return {2, true, true};
    case Family::groupAndItem:
      return {2, false, false};
    case Family::rawValue:
    case Family::decimalPair:
    case Family::kind17:
    case Family::kind49:
      return {3, true, true};
    case Family::kind04:
    case Family::kind13:
    case Family::kind14:
    case Family::kind15:
      return {3, true, false};
    case Family::kind3B:
    case Family::kind48:
      return {4, true, true};
    case Family::codedDigits:
      return {5, true, true};
    case Family::flaggedDigits:
      return {5, true, false};
  }
  return {};
}

// Exactly the fields that the family reads, each within eight bytes.
constexpr bool hasItsFields(const FaultKind& row) {
  for (std::size_t i = 0; i < row.fields.size(); ++i) {
    const Field& field = row.fields[i];
    if ((field.start != 0) != (i < needsOf(row.family).fields)) return false;
    if ((field.start == 0) != (field.length == 0) || field.length > 2 || field.start + field.length > 24)
      return false;
  }
  return true;
}

constexpr bool hasItsList(const FaultKind& row) {
  return needsOf(row.family).item ? row.list == row.kind
                                  : row.list == noList && row.highestCode == noHighestCode;
}

constexpr bool hasItsMessages(const FaultKind& row) {
  return row.title != 0 && (row.label != 0) == needsOf(row.family).label;
}

constexpr bool wellFormed(const FaultKind& row) {
  return row.kind != 0 && hasItsMessages(row) && hasItsFields(row) && hasItsList(row);
}

constexpr bool titlesDiffer(const auto& rows) {
  for (const FaultKind& a : rows)
    for (const FaultKind& b : rows)
      if (a.kind != b.kind && a.title == b.title) return false;
  return true;
}

constexpr bool all(bool (*good)(const FaultKind&)) {
  return std::all_of(std::begin(faultKinds), std::end(faultKinds), good);
}

static_assert(strictlyAscending(faultKinds), "faultKinds: a kind stands out of its place or twice");
static_assert(
    all(hasItsMessages),
    "faultKinds: a row lacks its title, or the label its family shows, or has one that nobody shows");
static_assert(titlesDiffer(faultKinds), "faultKinds: a kind has the title of another one");
static_assert(all(hasItsFields),
              "faultKinds: a row has not the fields that its family reads, or one beyond the eighth byte");
static_assert(all(hasItsList),
              "faultKinds: a row whose family shows an item names the list of its own kind, any other none");
static_assert(all(wellFormed));

// The row of each kind value, in one step.
class KindIndex {
 public:
  constexpr KindIndex() {
    for (const FaultKind*& row : rows_) row = &defaultKind;
    for (const FaultKind& row : faultKinds) rows_[row.kind] = &row;
  }
  constexpr const FaultKind& operator[](int kind) const {
    return kind >= 0 && kind < 256 ? *rows_[static_cast<std::size_t>(kind)] : defaultKind;
  }

 private:
  std::array<const FaultKind*, 256> rows_{};
};

inline constexpr KindIndex kindIndex;

}  // namespace vordane::faults
