// The words that the decoders are written in: read a field, show a message, a number, an item.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "faults/data_text.h"
#include "faults/fault_texts.h"
#include "faults/kind_table.h"
#include "faults/sinks.h"
#include "text/numbers.h"
#include "text/text.h"

namespace vordane::faults {

// A text chosen by one or two values; what is not listed has no text.
struct Choice {
  int first;
  int second;
  int message;
};
inline constexpr int noMessage = -1;

constexpr int choose(std::span<const Choice> choices, int first, int second = 0) {
  for (const Choice& choice : choices)
    if (choice.first == first && choice.second == second) return choice.message;
  return noMessage;
}

template <class Sink>
class Composer {
 public:
  Composer(const FaultTextTable& texts, bool wideFields, const FaultKind& kind, const DataText& data,
           Sink& sink)
      : texts_(texts), wideFields_(wideFields), kind_(kind), data_(data), sink_(sink) {}

  const FaultKind& kind() const { return kind_; }
  bool wideFields() const { return wideFields_; }

  // The row's field `n`: its place, and its characters as they stand or as a hexadecimal number.
  Field field(std::size_t n) const { return kind_.fields[n]; }
  FieldText read(std::size_t n) const { return data_.read(field(n)); }
  FieldText read(std::size_t high, std::size_t low) const { return data_.read(field(high), field(low)); }
  int number(std::size_t n) const { return read(n).hexadecimal(); }

  void blank() { sink_.character(u' '); }
  void endLine() { sink_.constant(text::crlf); }
  void literal(std::u16string_view text) { sink_.constant(text); }

  // A text that must be there; without it nothing is shown at all.
  void message(int number) {
    if (const Message* found = fetch(number)) sink_.constant(found->text);
  }
  // The same with a line end.
  void line(int number) {
    if (const Message* found = fetch(number)) sink_.joined(found->line, {found->text, text::crlf});
  }
  // The same, chosen by values of the data; `noMessage` shows nothing.
  void chosen(int number, Sources sources) {
    if (number == noMessage) return sink_.value({}, sources);
    if (const Message* found = fetch(number)) sink_.value(found->text, sources);
  }

  void show(std::u16string_view text, Sources sources) { sink_.value(text, sources); }

  // Decimal, padded with zeros to `digits`; `value` from -32768 to 99999.
  void showNumber(int value, int digits, Sources sources) {
    char16_t buffer[8];
    char16_t* const end = buffer + 8;
    char16_t* begin = end;
    for (int rest = value < 0 ? -value : value; rest > 0 || end - begin < digits; rest /= 10)
      *--begin = static_cast<char16_t>(u'0' + rest % 10);
    if (value < 0) *--begin = u'-';
    sink_.value({begin, static_cast<std::size_t>(end - begin)}, sources);
  }

  // The text of a code that is held to its list: anything out of range shows the item behind the highest
  // code, and an item "-" shows nothing. Without the list nothing is shown at all.
  void clampedItem(int code, Sources sources) {
    if (!texts_.hasList(kind_.list)) return fail();
    if (code < 0 || code > kind_.highestCode) code = kind_.highestCode + 1;
    const std::u16string* text = texts_.item(kind_.list, code);
    sink_.value(text == nullptr || *text == u"-" ? std::u16string_view{} : *text, sources);
  }
  // The text of a code as the list has it, "-" included; no text without list or item.
  void plainItem(int code, Sources sources) {
    const std::u16string* text = texts_.item(kind_.list, code);
    sink_.value(text == nullptr ? std::u16string_view{} : *text, sources);
  }

  // blank, bracket, label, blank, what `value` shows, bracket.
  template <class Value>
  void bracketed(int label, Value value) {
    const Message *open = fetch(openBracket), *found = fetch(label);
    if (open != nullptr && found != nullptr)
      sink_.joined(found->opening, {u" ", open->text, found->text, u" "});
    value();
    message(closeBracket);
  }

  // Ends the detail line.
  void trailer() {
    const Message *heading = fetch(rawDataHeading), *open = fetch(openBracket);
    if (heading != nullptr && open != nullptr)
      sink_.joined(texts_.rawDataOpening(), {text::crlf, heading->text, u" ", open->text});
    sink_.whole(data_);
    message(closeBracket);
    failed_ ? sink_.drop() : sink_.finish();
  }

 private:
  using Message = FaultTextTable::Message;

  void fail() { failed_ = true; }

  const Message* fetch(int number) {
    const Message* found = texts_.find(number);
    if (found == nullptr) fail();
    return found;
  }

  const FaultTextTable& texts_;
  const bool wideFields_;
  const FaultKind& kind_;
  const DataText& data_;
  Sink& sink_;
  bool failed_ = false;
};

}  // namespace vordane::faults
