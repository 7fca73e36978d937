// Statements in the Access dialect. A statement is taken apart into its shape and its literals, so that a
// value can never be read as anything but a value, and only shapes that were described are run.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "platform/description.h"

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

// `columns` empty means all. A counted union is the whole table behind a row (-1, number of rows), by one
// column.
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

// Throws DatabaseError (syntax) for what is no statement of this dialect.
Shape parse(const Lifted& statement);

// What may be run: statements without a value, and of those that hold one the described ones, as values are
// joined to them as they came and could make another statement of it.
class Documented {
 public:
  explicit Documented(database::Descriptions descriptions);

  // Throw DatabaseError (syntax) for everything else.
  Shape shapeOf(const Lifted& statement) const;
  // Takes it apart into `lifted` first, for an engine that runs the text itself.
  void require(std::u16string_view statement, Lifted& lifted) const;

  // Whether a table is described; case does not matter.
  bool hasTable(std::u16string_view name) const;
  database::Descriptions descriptions() const { return descriptions_; }

 private:
  database::Descriptions descriptions_;
  std::unordered_set<std::u16string> shapes_;
};

}  // namespace vordane::jet
