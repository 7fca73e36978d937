// What a subsystem keeps in its databases and how it asks for it, as data. An engine is made with the
// descriptions of those that use it and knows no table of its own accord.
#pragma once

#include <array>
#include <cstddef>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

#include "platform/statement.h"

namespace vordane::database {

enum class ColumnType {
  text,
  integer,
  shortInteger,  // 16 bits, however a foreign file declares it
  number,
  yesNo,  // however a foreign file declares it
  dateTime,
  autoNumber,
  shortAutoNumber,
};

struct ColumnDefinition {
  std::u16string_view name;
  ColumnType type;
};

struct TableDefinition {
  std::u16string_view name;
  std::span<const ColumnDefinition> columns;
};

// A statement with `{}` for each value, in quotes where the value is a text. `ending` is what stands behind,
// for statements that differ at their end alone.
class StatementPattern {
 public:
  constexpr StatementPattern(std::u16string_view text, std::u16string_view ending = {})
      : text_(text), ending_(ending) {
    for (std::size_t i = 0; i + 1 < text.size(); ++i)
      if (text[i] == u'{' && text[i + 1] == u'}') places_.at(values_++) = i;
  }

  // One value for each `{}`, in their order. The pattern must outlive it.
  Statement with(std::initializer_list<StatementValue> values) const {
    return {*this, {values.begin(), values.size()}};
  }
  // The statement with 0 for each value.
  std::u16string sample() const;

  std::u16string joined(std::span<const StatementValue> values) const;

  std::size_t values() const { return values_; }
  // What stands before the place of a value: a quote, where it is a text.
  char16_t before(std::size_t value) const {
    return places_.at(value) == 0 ? u' ' : text_[places_.at(value) - 1];
  }
  friend bool operator==(const StatementPattern& a, const StatementPattern& b) {
    return a.text_ == b.text_ && a.ending_ == b.ending_;
  }
  std::u16string_view text() const { return text_; }
  std::u16string_view ending() const { return ending_; }

 private:
  std::u16string_view text_, ending_;
  std::array<std::size_t, Statement::mostValues> places_{};
  std::size_t values_ = 0;
};

// A table that grows to a million rows: each is the report of one event and belongs to an owner. What its
// columns mean lets an engine find a row that is there already, and list an owner's rows in order, without
// reading the others.
struct EventTable {
  std::u16string_view table;
  std::u16string_view key;                  // an auto-number: the rows in the order they were added
  std::u16string_view owner;                // a number
  std::u16string_view moment;               // a text whose order is the order of time
  std::array<std::u16string_view, 3> kind;  // texts of which few are different
  std::u16string_view description;          // a long text
};

// A table that tells of each owner of events, which it finds by a name, what is lit there.
struct LampTable {
  std::u16string_view table;
  std::u16string_view name;          // a text
  std::u16string_view major, minor;  // Yes/No
};

// A table of the owners of events, one row each.
struct OwnerTable {
  std::u16string_view table;
  std::u16string_view key;     // the number that an event's owner is
  std::u16string_view listed;  // a date: when its last list of events came
};

// `statements`: all that hold a value; an engine refuses any other that does. `events`, `lamps` and `owners`:
// the tables of that kind, if there are any. What is described must live as long as the engines that are made
// with it.
struct Description {
  std::span<const TableDefinition> tables;
  std::span<const StatementPattern> statements;
  const EventTable* events = nullptr;
  const LampTable* lamps = nullptr;
  const OwnerTable* owners = nullptr;
};
using Descriptions = std::span<const Description>;

}  // namespace vordane::database
