// The described tables that a store has, and how each statement shape is asked of the server.
#pragma once

#include <array>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/jet.h"
#include "platform/odbc/dialect.h"

namespace vordane::odbc {

struct Table {
  std::u16string name;
  std::vector<std::u16string> columnNames;
  // As the store has it: `columns` are those that it has, in its order.
  std::vector<database::ColumnDefinition> columns;
  std::optional<std::size_t> key;                // the auto-number
  const database::EventTable* events = nullptr;  // it holds events, with an index beside it
  bool isOwners = false;                         // it holds the owners of events
  std::optional<Owners> owners;                  // of both these tables

  database::TableDefinition definition() const { return {name, columns}; }
  std::optional<std::size_t> find(std::u16string_view column) const;
  std::size_t column(std::u16string_view column, int errorNumber) const;  // throws DatabaseError
};

// `rows` asks for all columns, behind the key where there is one; `keys` for the keys alone, as one value;
// both in the shape's order with the shape's values. `byKey` asks for the rows of an array of keys, in any
// order; each of an event ends with its note where the store keeps notes.
struct Plan {
  enum class Special { none, sameEvent, newestEvents };

  jet::Shape shape;
  const Table* table = nullptr;
  std::vector<std::u16string> names;
  std::vector<database::ColumnType> types;  // of the result's columns
  std::string rows, keys, byKey;
  Special special = Special::none;
  // Of a plan for the same event: the question for many, each value an array, in the order of `places`, which
  // are those of the shape's values; the owner comes first.
  std::string many;
  std::vector<std::size_t> places;
  std::vector<std::size_t> values;  // which of the shape's values each parameter of `rows` and `keys` takes

  bool isUnion() const { return shape.verb == jet::Verb::countedUnion; }
  bool isKeyed() const { return table->key.has_value() && !isUnion(); }
  // The rows of such a table are too many to be read at once.
  bool isLong() const { return table->events != nullptr && isKeyed(); }
  std::size_t resultColumn(std::u16string_view name) const;  // throws DatabaseError (unknownItem)
};

class Tables {
 public:
  // From rows (table, column). Throws DatabaseError (notADatabase) when no described table is among them.
  Tables(const std::vector<Fields>& columns, database::Descriptions descriptions);
  const Table& table(std::u16string_view name) const;  // throws DatabaseError (unknownTable)
  const Table* events() const;                         // null where no table holds events with numbers

 private:
  std::map<std::u16string, std::unique_ptr<Table>> tables_;  // by folded name
};

class Plans {
 public:
  Plans(const Dialect& dialect, const Tables& tables, const jet::Documented& documented, bool withNotes)
      : dialect_(dialect), tables_(tables), documented_(documented), withNotes_(withNotes) {}
  // Takes a statement apart into `lifted`. Throws DatabaseError.
  const Plan& find(std::u16string_view statement, jet::Lifted& lifted);

 private:
  std::unique_ptr<Plan> make(const jet::Lifted& lifted) const;
  void planUnion(Plan& plan) const;
  void planRows(Plan& plan) const;
  bool planEvents(Plan& plan) const;
  std::string eventsByKey(const Plan& plan) const;
  void planRemoval(Plan& plan) const;
  void planOwner(Plan& plan) const;
  void planNewest(Plan& plan) const;
  void planSame(Plan& plan) const;
  void planManySame(Plan& plan, const std::array<std::size_t, 4>& texts) const;
  std::string joinedEvents(const Plan& plan) const;
  std::string columnsOf(const Plan& plan, std::string_view prefix) const;
  std::string conditionsOf(Plan& plan) const;
  std::string columnOf(const Plan& plan, std::size_t condition) const;
  std::string ordersOf(const Plan& plan, std::string_view prefix) const;

  const Dialect& dialect_;
  const Tables& tables_;
  const jet::Documented& documented_;
  bool withNotes_;
  std::unordered_map<std::u16string, std::unique_ptr<Plan>> plans_;
};

}  // namespace vordane::odbc
