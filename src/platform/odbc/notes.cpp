#include "platform/odbc/notes.h"

#include <array>

#include "platform/odbc/errors.h"
#include "platform/odbc/session.h"
#include "text/numbers.h"

namespace vordane::odbc {
namespace {

using database::ColumnType;
using database::Note;
using Put = database::Notes::Put;

// The columns that a person reads, behind the two that say which event it is.
constexpr auto written = noteTable.columns.subspan(2);

std::string table(const Dialect& dialect, const database::EventTable& events) {
  return dialect.name(events.table) + " f";
}

// Notes in the order of `noteTable`, each of an event "f" that is there.
std::string readNotes(const Dialect& dialect, const database::EventTable& events) {
  const WithNotes notes = withNotes(dialect, events);
  return "select " + dialect.read("f." + dialect.quoted(events.key), ColumnType::integer) + notes.columns +
         " from " + table(dialect, events) + notes.join;
}

std::string ofEvent(const Dialect& dialect, const std::string& key) {
  return " where " + key + " = " + dialect.number();
}

}  // namespace

WithNotes withNotes(const Dialect& dialect, const database::EventTable& events) {
  const auto of = [&](std::string_view row, std::u16string_view column) {
    return std::string(row) + "." + dialect.quoted(column);
  };
  WithNotes notes;
  for (const database::ColumnDefinition& column : written)
    notes.columns += ", " + dialect.read(of("n", column.name), column.type);
  notes.join = " left join " + dialect.name(noteTable.name) + " n on " + of("n", u"Count") + " = " +
               of("f", events.key) + " and " + of("n", u"ID") + " = " + of("f", events.owner);
  return notes;
}

std::optional<Note> noteAtEnd(const Fields& row) {
  std::array<std::u16string, written.size()> texts;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    const Field& field = row.at(row.size() - texts.size() + i);
    texts[i] = database::noteLine(std::u16string_view(field.value_or(u"")).substr(0, database::longestNote));
  }
  if (texts[2].empty()) return {};
  return Note{texts[0], texts[1], texts[2]};
}

std::optional<Note> readNote(Session& session, const Table& events, std::int64_t event) {
  const Dialect& dialect = session.dialect();
  const Field number = text::decimal(event);
  const auto rows = session.askBeside(
      readNotes(dialect, *events.events) + ofEvent(dialect, "f." + dialect.quoted(events.events->key)),
      {&number, 1});
  return rows.empty() ? std::nullopt : noteAtEnd(rows[0]);
}

Put putNote(Session& session, const Table& events, std::int64_t event, const Note& before, const Note& now) {
  const std::array<const std::u16string*, written.size()> texts{&now.author, &now.moment, &now.text};
  for (const std::u16string* text : texts)
    if (text->size() > database::longestNote || database::noteLine(*text) != *text) return Put::notOneLine;
  for (const std::u16string* text : texts)
    if (!canTravel(*text)) database::fail(number::badValue, u"Text");
  if (session.readOnly()) database::fail(number::readOnly);
  const Dialect& dialect = session.dialect();
  const std::string key = "f." + dialect.quoted(events.events->key);
  const Field number = text::decimal(event);
  const std::span<const Field> it(&number, 1);
  Put result = Put::kept;
  session.beside([&](Link& link) {
    // Whoever has the event's row writes to it, one after the other. What was kept meanwhile is seen by the
    // next question only.
    const auto held = link.query(
        dialect.holdRow("select " +
                            dialect.read("f." + dialect.quoted(events.events->owner), ColumnType::integer) +
                            " from " + table(dialect, *events.events) + ofEvent(dialect, key),
                        "f"),
        it);
    if (held.empty()) {
      result = Put::faultGone;
      return;
    }
    const auto rows = link.query(readNotes(dialect, *events.events) + ofEvent(dialect, key), it);
    if (rows.empty() || noteAtEnd(rows[0]).value_or(Note{}) != before) {
      result = Put::changed;
      return;
    }
    link.change("delete from " + dialect.name(noteTable.name) + ofEvent(dialect, dialect.quoted(u"Count")),
                it);
    if (now.text.empty()) return;
    const Field row[] = {number, held[0].at(0), now.author, now.moment, now.text};
    link.change(dialect.insert(noteTable, {0, 1, 2, 3, 4}, {}), row);
  });
  return result;
}

std::unordered_set<std::int64_t> noted(Session& session, const Table& events) {
  const Dialect& dialect = session.dialect();
  std::unordered_set<std::int64_t> all;
  for (const Fields& row : session.askBeside(
           readNotes(dialect, *events.events) + " where n." + dialect.quoted(u"Count") + " is not null", {}))
    if (noteAtEnd(row)) all.insert(numberFrom(row.at(0)));
  return all;
}

}  // namespace vordane::odbc
