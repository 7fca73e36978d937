// What people have written to events in a store on a server: a table beside the documented ones, made with
// the store, from which a trigger takes the notes of events that go. A note counts only while its event is
// there and has the same owner.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_set>

#include "platform/description.h"
#include "platform/notes.h"
#include "platform/odbc/dialect.h"
#include "platform/odbc/link.h"

namespace vordane::odbc {

class Session;
struct Table;

namespace noteColumns {
using enum database::ColumnType;
inline constexpr database::ColumnDefinition notes[] = {
    {u"Count", integer}, {u"ID", integer}, {u"Author", text}, {u"Moment", text}, {u"Text", text}};
}  // namespace noteColumns

inline constexpr database::TableDefinition noteTable{u"VordaneNotes", noteColumns::notes};

// What a statement that reads events under the name "f" says more so that each row ends with its note: the
// columns, and what stands behind the table.
struct WithNotes {
  std::string columns, join;
};
WithNotes withNotes(const Dialect& dialect, const database::EventTable& events);
// The last of a row's fields; nothing where there is none. Whatever stands in the table, a line of the length
// that notes have is shown.
std::optional<database::Note> noteAtEnd(const Fields& row);

// Both ask the server. `put` as Notes has it.
std::optional<database::Note> readNote(Session& session, const Table& events, std::int64_t event);
database::Notes::Put putNote(Session& session, const Table& events, std::int64_t event,
                             const database::Note& before, const database::Note& now);
// The events of the store that have one.
std::unordered_set<std::int64_t> noted(Session& session, const Table& events);

}  // namespace vordane::odbc
