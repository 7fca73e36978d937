#include "platform/sqlite/event_notes.h"

#include "platform/sqlite/errors.h"
#include "platform/stored_values.h"
#include "text/utf8.h"

namespace vordane::sqlite {
namespace {

using database::Note;

// As the file's schema keeps it. Plain SQL only: another tool must be able to read the table.
constexpr const char* makeTable =
    "CREATE TABLE VordaneNotes (Count INTEGER PRIMARY KEY, ID INTEGER NOT NULL, Author TEXT NOT NULL, Moment "
    "TEXT "
    "NOT NULL, Text TEXT NOT NULL)";
constexpr std::string_view makeTrigger =
    "CREATE TRIGGER IF NOT EXISTS VordaneNoteGone AFTER DELETE ON {table} BEGIN DELETE FROM VordaneNotes "
    "WHERE "
    "Count = OLD.{key}; END";
constexpr std::string_view readNote =
    "SELECT n.Author, n.Moment, n.Text FROM VordaneNotes AS n CROSS JOIN {table} AS f ON f.{key} = n.Count "
    "AND "
    "f.{owner} = n.ID WHERE n.Count = ?1";

// Whatever stands there, a line of the length that notes have is shown.
std::u16string shown(const Value& stored) {
  return database::noteLine(database::textOf(stored).substr(0, database::longestNote));
}

}  // namespace

// Statements name the tables as they were declared when they were prepared.
bool EventNotes::findTable() {
  connection_.tables().follow();
  if (tablesChanged_ != connection_.tables().timesChanged()) {
    tablesChanged_ = connection_.tables().timesChanged();
    look_ = {};
    read_ = {};
  }
  const database::EventTable* described = connection_.eventTable();
  Table* table = described != nullptr ? connection_.tables().find(described->table) : nullptr;
  if (table != nullptr && !table->events) table->events = findEvents(*table, *described);
  table_ = table != nullptr && table->events ? table : nullptr;
  return table_ != nullptr;
}

EventNotes::Found EventNotes::look() {
  static const std::u16string own = text::fromUtf8(makeTable);
  if (!look_)
    look_ = Statement(
        connection_,
        "SELECT count(*), sum(type = 'table' AND name = 'VordaneNotes' AND sql = ?1) FROM sqlite_schema "
        "WHERE lower(name) = 'vordanenotes'");
  const Running running(look_);
  look_.bindText(1, own);
  if (!look_.step() || look_.integer(0) == 0) return Found::nothing;
  return look_.integer(0) == 1 && look_.integer(1) == 1 ? Found::own : Found::foreign;
}

bool EventNotes::offered() {
  connection_.beforeRead();
  return findTable() && look() != Found::foreign;
}

Statement& EventNotes::prepared(Statement& statement, std::string_view sql) {
  if (!statement) statement = Statement(connection_, eventSql(*table_, sql));
  return statement;
}

std::optional<Note> EventNotes::of(std::int64_t event) {
  connection_.beforeRead();
  if (!any()) return {};
  Statement& note = prepared(read_, readNote);
  const Running running(note);
  note.bind(1, event);
  if (!note.step()) return {};
  Note found{shown(note.limitedValue(0, false)), shown(note.limitedValue(1, false)),
             shown(note.limitedValue(2, false))};
  return found.text.empty() ? std::nullopt : std::optional(std::move(found));
}

bool EventNotes::any() {
  return findTable() && look() == Found::own;
}

bool EventNotes::has(std::int64_t event, const FoldedNeedle* needle) {
  Statement& note = prepared(read_, readNote);
  const Running running(note);
  note.bind(1, event);
  if (!note.step()) return false;
  const std::u16string text = shown(note.limitedValue(2, false));
  return !text.empty() && (needle == nullptr || needle->isIn(text));
}

bool EventNotes::isThere(std::int64_t event) {
  Statement row(connection_, eventSql(*table_, "SELECT 1 FROM {table} WHERE {key} = ?1"));
  row.bind(1, event);
  return row.step();
}

database::Notes::Put EventNotes::put(std::int64_t event, const Note& before, const Note& now) {
  for (const std::u16string* text : {&now.author, &now.moment, &now.text})
    if (text->size() > database::longestNote || database::noteLine(*text) != *text) return Put::notOneLine;
  requireStorable(now);
  WriteScope step(connection_);
  if (!findTable() || look() == Found::foreign) fail(number::invalidOperation);
  if (!isThere(event)) return Put::faultGone;
  if (of(event).value_or(Note{}) != before) return Put::changed;
  now.text.empty() ? remove(event) : write(event, now);
  step.done();
  return Put::kept;
}

// A file in UTF-8 can't hold a lone half of a character pair.
void EventNotes::requireStorable(const Note& note) const {
  static const Column anyText{u"Text", u"text", "\"Text\"", Kind::text, Affinity::text};
  for (const std::u16string* text : {&note.author, &note.moment, &note.text})
    fit(anyText, *text, connection_.utf8());
}

void EventNotes::remove(std::int64_t event) {
  if (look() != Found::own) return;
  Statement row(connection_, "DELETE FROM VordaneNotes WHERE Count = ?1");
  row.bind(1, event);
  row.run();
}

void EventNotes::make() {
  if (look() == Found::nothing) connection_.runMaintenance(makeTable);
  connection_.runMaintenance(eventSql(*table_, makeTrigger).c_str());
}

void EventNotes::write(std::int64_t event, const Note& note) {
  make();
  Statement row(
      connection_,
      eventSql(*table_,
               "INSERT OR REPLACE INTO VordaneNotes(Count, ID, Author, Moment, Text) SELECT {key}, {owner}, "
               "?2, ?3, ?4 FROM {table} WHERE {key} = ?1"));
  row.bind(1, event);
  row.bindText(2, note.author);
  row.bindText(3, note.moment);
  row.bindText(4, note.text);
  row.run();
}

void EventNotes::removeGone() {
  if (!any()) return;
  Statement gone(
      connection_,
      eventSql(*table_,
               "DELETE FROM VordaneNotes WHERE NOT EXISTS (SELECT 1 FROM {table} AS f WHERE f.{key} = "
               "VordaneNotes.Count)"));
  gone.run();
}

}  // namespace vordane::sqlite
