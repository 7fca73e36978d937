#include "tools/sqlite/integrity.h"

#include "platform/sqlite/connection.h"
#include "platform/sqlite/engine.h"
#include "platform/sqlite/event_index.h"
#include "startup/databases.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

// One row comes: "ok", or a heading between asterisks with the complaint in the line below it.
int takeComplaint(void* complaint, int count, char** values, char**) {
  const std::string text = count > 0 && values[0] != nullptr ? values[0] : "";
  if (text != "ok") *static_cast<std::string*>(complaint) = text.substr(text.find('\n') + 1);
  return 0;
}

}  // namespace

std::string damageIn(std::u16string_view path) try {
  const sqlite::Handle handle = sqlite::openToRead(path, {});
  std::string complaint;
  const int result =
      sqlite3_exec(handle.get(), "PRAGMA integrity_check(1)", takeComplaint, &complaint, nullptr);
  return result == SQLITE_OK ? complaint : sqlite3_errmsg(handle.get());
} catch (const database::DatabaseError& error) {
  return text::toUtf8(error.description());
}

bool hasStaleIndex(std::u16string_view path) {
  sqlite::Connection connection(sqlite::openToRead(path, {}), true, {}, startup::databases);
  const database::EventTable* const events = connection.eventTable();
  const sqlite::Table* const table = events != nullptr ? connection.tables().find(events->table) : nullptr;
  if (table == nullptr || !table->events) return false;
  sqlite::Statement any(connection, "SELECT 1 FROM " + table->quoted + " LIMIT 1");
  return any.step() && !connection.events().usable();
}

}  // namespace vordane::tools
