// Statements in the Access dialect. A statement is taken apart into its shape and its literals, so that a
// value can never be read as anything but a value, and only shapes that this system sends are run.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vordane::jet {

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
  // Where the literals stood in the statement, without their quotes.
  struct Range {
    std::size_t begin, end;
  };
  std::vector<Range> places;
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

// A statement remembered as the text between its literals: one that differs in its values alone is known
// again by comparing that text, at a fraction of what taking it apart costs.
class Skeleton {
 public:
  Skeleton(std::u16string_view statement, const Lifted& lifted);
  // Fills `literals` and returns true when `statement` has this skeleton for certain; false when it has
  // another one, or when only taking it apart can tell.
  bool match(std::u16string_view statement, std::vector<Literal>& literals) const;

 private:
  std::vector<std::u16string> pieces_;  // one more than there are literals
  std::vector<bool> texts_;
};

// Throws DatabaseError (syntax) for everything that this system does not send.
Shape parse(const Lifted& statement);

// Takes a statement apart into `lifted` and looks at its shape, for an engine that runs the text itself.
// Throws as `lift` and `parse` do.
void requireKnown(std::u16string_view statement, Lifted& lifted);

// A table of the suite's databases that a documented statement reads or changes; case does not matter.
bool isDocumentedTable(std::u16string_view name);

}  // namespace vordane::jet
