// How one kind of server writes what the engine asks of it. PostgreSQL's is the one that is proved.
//
// A store is a schema of its own. It holds the described tables under their names and, for tables of events,
// what the engine needs beside them: which equal texts share a key, a short hash, the order of time. Triggers
// keep that, so that rows of any other client are found.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/description.h"
#include "platform/odbc/data_source.h"
#include "platform/odbc/link.h"

namespace vordane::odbc {

// The table of the owners of events, where there is one: its key is a number that an event's owner names, and
// of each name it has one row.
struct Owners {
  std::u16string_view table, key, name;
};
// It stands in the same description, and its auto-number has the name of the events' owner.
std::optional<Owners> ownersOf(const database::Description& description);

class Dialect {
 public:
  virtual ~Dialect() = default;

  // What the driver must be told besides the data source, and the statement that a new connection begins
  // with; its first value is what the server knows the connection by.
  virtual std::vector<DataSource::Entry> driverSettings() const = 0;
  virtual std::string begin(int lockWaitMilliseconds, bool readOnly) const = 0;
  // Asked by another connection about that one: '1' while the server works on what it has asked for.
  // Otherwise the server ends it, so that it holds no lock and saves nothing any more.
  virtual std::string isAtWork() const = 0;
  // Rows (table, column) of the store's tables, columns in their order.
  virtual std::string listColumns() const = 0;
  // One row with one value, empty when this user has the right to write to this store. Whether the server
  // takes changes at all is not asked: a replica may become the first server at any time.
  virtual std::string whyReadOnly() const = 0;

  virtual std::string name(std::u16string_view table) const = 0;  // within the store
  virtual std::string quoted(std::u16string_view name) const = 0;
  virtual std::string parameter(database::ColumnType type) const = 0;
  virtual std::string number() const = 0;  // a parameter that is any whole number
  virtual std::string read(std::string_view column, database::ColumnType type) const = 0;
  // What equal texts share, whose order is the order of texts.
  virtual std::string folded(std::string_view text) const = 0;
  virtual std::string ordered(std::string_view column, database::ColumnType type, bool descending) const = 0;
  // What decides where nothing else does, in a table without a key.
  virtual std::string lastOrder() const = 0;
  virtual std::string oneOf(std::string_view column) const = 0;  // of a parameter that is an array
  // Rows out of parameters that are arrays of these types, each row with its place from 1 behind.
  virtual std::string rowsOfArrays(const std::vector<database::ColumnType>& types) const = 0;
  virtual std::string joined(const std::string& keys) const = 0;  // of a query for numbers, in one value
  virtual std::string limited(const std::string& query, int rows) const = 0;

  virtual std::string nextNumber(const database::TableDefinition& table) const = 0;
  virtual std::string insert(const database::TableDefinition& table, const std::vector<std::size_t>& columns,
                             const std::string& keyColumn) const = 0;
  virtual std::string insertMany(const database::TableDefinition& table,
                                 const std::vector<std::size_t>& columns) const = 0;

  // Events, of a table and the index that triggers keep beside it.
  virtual std::string indexTable() const = 0;
  virtual std::string hash(const std::vector<std::string>& texts) const = 0;
  virtual std::string newest() const = 0;  // the key of the newest of all
  // How many do not stand once in the index, as they are; and what makes the index anew.
  virtual std::string countUnindexed(const database::EventTable& events) const = 0;
  virtual std::vector<std::string> renewIndex(const database::EventTable& events) const = 0;

  // Locks that last until the transaction ends. The statement for an owner also holds its row, and says with
  // one row whether there is one; its parameters are the owner, twice.
  virtual std::string holdOwner(const std::optional<Owners>& owners) const = 0;
  virtual std::string holdOwners() const = 0;
  // What is kept of a subject, name and mark, if anything is. Parameter: subject.
  virtual std::string agreed() const = 0;
  // The same, or what is kept from now on; no row when somebody else keeps something at this moment.
  // Parameters: subject, name, mark, subject, subject.
  virtual std::string agree() const = 0;
  // A query whose rows of the table that it names so are held until the transaction ends.
  virtual std::string holdRow(const std::string& query, std::string_view row) const = 0;
  virtual std::string savepoint() const = 0;
  virtual std::string backToSavepoint() const = 0;

  // Everything that makes a store of an empty database, or of an empty schema in it.
  enum class Schema : bool { isMissing, isThere };
  virtual std::vector<std::string> create(const database::Description& description,
                                          Schema schema = Schema::isMissing) const = 0;
  // What texts are folded and hashed by, which `create` makes too: for a store that was made with slower
  // ones.
  virtual std::vector<std::string> functions() const = 0;
  // One for each of the receipts' tables, which `create` makes too: for a store that was made without them.
  virtual std::vector<std::string> createReceipts() const = 0;
  // The table of the notes and what takes them away with their events; `create` makes them too.
  virtual std::vector<std::string> createNotes(const database::EventTable& events) const = 0;
};

const Dialect& postgres();

}  // namespace vordane::odbc
