// Brings the exchanges and faults of a database into a store that many stations share.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/database.h"
#include "selected_tables.h"

namespace vordane::tools {

struct ImportedExchange {
  std::u16string name;
  std::uint64_t added = 0, known = 0;
};
struct StoreImport {
  std::vector<ImportedExchange> exchanges;  // by their IDs in the database they came from
  std::uint64_t ownerless = 0;              // faults of no exchange, left where they are
};

// Whether `read` tells the faults in the order of their numbers; otherwise all of them are kept in memory
// first.
enum class FaultOrder : bool { anyOrder, byNumber };

// An exchange is known by its name, and takes over time and lamps when its list here is the newer one. IDs
// and numbers are given anew, the faults' in their order. A fault that the store holds already is known as
// when a list is taken in; so it may be done again, also after it was broken off. `read` is called twice.
// Throws ToolError, with nothing brought over, when the store is kept in another language than `language`, in
// which the faults were composed, and what the database throws: what had been saved stays.
StoreImport importIntoStore(const ReadTables& read, FaultOrder order, database::Database& store,
                            const database::Agreement& language);

}  // namespace vordane::tools
