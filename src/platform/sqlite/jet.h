// Statements in the Access dialect. A statement is taken apart into its shape and its literals, so that a
// value can never be read as anything but a value, and only shapes that this system sends are run.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vordane::sqlite::jet {

struct Literal {
  bool isText = false;
  std::u16string text;
  std::int64_t number = 0;
};

// `shape` has one blank between tokens, key words in lower case, names in brackets and lower case, ' for a
// text and # for a number.
struct Lifted {
  std::u16string shape;
  std::vector<Literal> literals;
};

// Reuses what `out` holds. Throws DatabaseError (syntax).
void lift(std::u16string_view statement, Lifted& out);

enum class Verb { select, countedUnion, remove };

struct Condition {
  std::u16string column;
  bool isText;
};
struct Order {
  std::u16string column;
  bool descending = false;
};

// `columns` empty means all. A counted union is the whole table behind a row (-1, number of rows), by ID.
struct Shape {
  Verb verb = Verb::select;
  std::u16string table;
  std::vector<std::u16string> columns;
  std::vector<Condition> conditions;
  std::vector<Order> orders;
};

// Throws DatabaseError (syntax) for everything that this system does not send.
Shape parse(const Lifted& statement);

}  // namespace vordane::sqlite::jet
