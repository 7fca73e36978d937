// How each statement shape is run: worked out once for a shape, kept with its prepared statements.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/jet.h"
#include "platform/sqlite/connection.h"
#include "platform/sqlite/event_index.h"
#include "platform/sqlite/event_notes.h"

namespace vordane::sqlite {

struct Plan {
  // Statements on a table of events that its index answers: the duplicate test, every event newest first, and
  // an owner's events in order, or their deletion.
  enum class Special { none, sameEvent, newestEvents, eventsOfOwner };

  jet::Shape shape;
  Table* table = nullptr;
  std::vector<std::u16string> names;   // of the result's columns
  std::vector<const Column*> columns;  // the same; empty for a counted union
  StatementPool rows;                  // column 0 is the row's key, but for a counted union
  StatementPool keys;                  // the key alone
  StatementPool byKey;                 // one row
  Special special = Special::none;
  std::size_t ownerValue = 0;               // of the duplicate test: which value is compared with the owner
  std::array<std::size_t, 5> textValues{};  // and which with the texts, as EventColumns has them
  EventOrder order;
  bool descending = false;

  std::uint64_t tablesChanged = 0;  // the connection's count when it was made

  bool isUnion() const { return shape.verb == jet::Verb::countedUnion; }
  // The texts that the duplicate test compares; views of the literals.
  EventTexts sameTexts(const std::vector<jet::Literal>& literals) const;
  int firstColumn() const { return isUnion() ? 0 : 1; }
  // Throws DatabaseError (unknownItem).
  std::size_t resultColumn(std::u16string_view name) const;
};

// The plans of one connection, by shape.
class Plans {
 public:
  Plans(Connection& connection, const jet::Documented& documented)
      : connection_(connection), documented_(documented) {}
  // The values of a statement go into `lifted.literals`, as its text has them. Throws DatabaseError.
  Plan& find(const database::Statement& statement, jet::Lifted& lifted);

 private:
  struct Known {
    jet::Skeleton skeleton;
    Plan* plan;
  };
  // A pattern whose values are what its text has for literals, one for one.
  struct Direct {
    std::u16string text, ending;
    Plan* plan;
  };
  Plan& findText(std::u16string_view statement, jet::Lifted& lifted);
  Plan* findDirect(const database::StatementPattern& pattern) const;
  std::unique_ptr<Plan> make(const jet::Lifted& lifted);
  void remember(std::u16string_view statement, const jet::Lifted& lifted, Plan& plan);
  void forgetIfTablesChanged();

  Connection& connection_;
  const jet::Documented& documented_;
  using ByShape = std::unordered_map<std::u16string, std::unique_ptr<Plan>>;
  ByShape plans_;
  std::vector<ByShape> former_;  // made for tables that were changed since; their rows may still be held
  std::vector<Known> known_;
  std::vector<Direct> direct_;
  std::uint64_t tablesChanged_ = 0;
};

// What a database and the recordsets and lists it gave out share: none of them is cut off by the end of
// another.
struct Opened {
  Opened(Handle handle, bool readOnly, const Options& options,
         std::shared_ptr<const jet::Documented> whatIsDocumented)
      : documented(std::move(whatIsDocumented)),
        connection(std::move(handle), readOnly, options, documented->descriptions()),
        plans(connection, *documented) {}
  std::shared_ptr<const jet::Documented> documented;
  Connection connection;
  EventNotes notes{connection};
  Plans plans;
  jet::Lifted lifted;  // of the statement at hand; keeps its memory for the next

  // Asked with each exchange that is shown, so they stay prepared.
  Statement ownTable, lastReceipt, keptAgreement;
  Statement& prepared(Statement& statement, std::string_view sql) {
    if (!statement) statement = Statement(connection, sql);
    return statement;
  }
};

}  // namespace vordane::sqlite
