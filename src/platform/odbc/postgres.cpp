// PostgreSQL, from version 15 on.
#include <array>

#include "platform/described.h"
#include "platform/odbc/dialect.h"
#include "platform/odbc/notes.h"
#include "platform/odbc/postgres_names.h"
#include "platform/odbc/receipts.h"
#include "text/text.h"
#include "text/utf8.h"

namespace vordane::odbc {
namespace {

using database::ColumnDefinition;
using database::ColumnType;
using database::EventTable;
using database::TableDefinition;

using postgresNames::eventIndex, postgresNames::ownerIndex, postgresNames::schema;

// Advisory locks are known by two numbers, within a database: whose it is, and what it locks.
constexpr std::string_view numbersLock = "1987014244, 1";
constexpr std::string_view ownersLock = "1987014244, 2";
constexpr std::string_view ownerLock = "1987014245";

// A process's number may be given again.
constexpr std::string_view connectionName = "pid::text || ' ' || backend_start::text";

std::string join(const std::vector<std::string>& pieces, std::string_view between) {
  std::string all;
  for (const std::string& piece : pieces) {
    if (!all.empty()) all += between;
    all += piece;
  }
  return all;
}

void append(std::vector<std::string>& all, const std::vector<std::string>& more) {
  all.insert(all.end(), more.begin(), more.end());
}

}  // namespace

std::string_view postgresNames::typeOf(ColumnType type) {
  switch (type) {
    case ColumnType::text:
      return "text";
    case ColumnType::integer:
    case ColumnType::autoNumber:
      return "integer";
    case ColumnType::shortInteger:
    case ColumnType::shortAutoNumber:
    case ColumnType::yesNo:
      return "smallint";
    case ColumnType::number:
      return "double precision";
    case ColumnType::dateTime:
      return "timestamp(0) without time zone";
  }
  return "text";
}

namespace {

using postgresNames::typeOf;

// The capitals beyond ASCII and their small letters, as they are folded one for one.
struct Letters {
  std::u16string capitals, small;
};
Letters lettersToFold() {
  Letters letters;
  constexpr char16_t firstBeyondAscii = 0x80;
  for (char16_t c = firstBeyondAscii; c != 0xFFFF; ++c) {
    if (text::lower(c) == c) continue;
    letters.capitals.push_back(c);
    letters.small.push_back(text::lower(c));
  }
  return letters;
}

class Postgres final : public Dialect {
 public:
  std::vector<DataSource::Entry> driverSettings() const override {
    // The driver would turn line ends into others and a -1 into a 1, and save before each statement; a
    // network that has gone is noticed within seconds. A limit for connecting stands here and nowhere else,
    // since the driver refuses two of them.
    return {{u"PORT", u"5432"},
            {u"Protocol", u"7.4-0"},
            {u"LFConversion", u"0"},
            {u"TrueIsMinus1", u"0"},
            {u"UseDeclareFetch", u"0"},
            {u"UseServerSidePrepare", u"1"},
            {u"TextAsLongVarchar", u"1"},
            {u"UnknownsAsLongVarchar", u"1"},
            // Over a network; on a socket of the machine there is nobody in between.
            {u"SSLmode", u"verify-full"},
            {u"KeepaliveTime", u"4"},
            {u"KeepaliveInterval", u"2"},
            {u"pqopt", u"tcp_user_timeout=8000 connect_timeout=8"}};
  }
  std::string begin(int lockWaitMilliseconds, bool readOnly) const override {
    return "select (select " + std::string(connectionName) +
           " from pg_catalog.pg_stat_activity where pid = pg_catalog.pg_backend_pid()), "
           "pg_catalog.set_config('lock_timeout', '" +
           std::to_string(lockWaitMilliseconds) +
           "', false), pg_catalog.set_config('search_path', 'pg_catalog', false), "
           "pg_catalog.set_config('default_transaction_read_only', '" +
           (readOnly ? "on" : "off") +
           "', false), pg_catalog.set_config('default_transaction_isolation', 'read committed', false), "
           "pg_catalog.set_config('client_min_messages', 'error', false), "
           // Compiling a question about a whole list takes longer than answering it.
           "pg_catalog.set_config('jit', 'off', false), "
           // A station that has gone without a word keeps its locks no longer than this.
           "pg_catalog.set_config('tcp_keepalives_idle', '10', false), "
           "pg_catalog.set_config('tcp_keepalives_interval', '5', false), "
           "pg_catalog.set_config('tcp_keepalives_count', '3', false), "
           "pg_catalog.set_config('tcp_user_timeout', '25000', false), "
           "pg_catalog.set_config('idle_in_transaction_session_timeout', '60000', false), "
           "pg_catalog.set_config('application_name', 'Vordane', false)";
  }
  // A question of which the end was lost is one that the server reads on.
  std::string isAtWork() const override {
    return "select case when state = 'active' and wait_event is distinct from 'ClientRead' then '1' "
           "when pg_catalog.pg_terminate_backend(pid) then '0' end from pg_catalog.pg_stat_activity where " +
           std::string(connectionName) + " = cast(? as text)";
  }
  std::string listColumns() const override {
    return "select t.relname::text, c.attname::text from pg_catalog.pg_class t "
           "join pg_catalog.pg_attribute c on c.attrelid = t.oid "
           "where t.relnamespace = (select n.oid from pg_catalog.pg_namespace n where n.nspname = '" +
           std::string(schema) +
           "') and t.relkind in ('r', 'p') and c.attnum > 0 and not c.attisdropped "
           "order by t.relname, c.attnum";
  }
  std::string whyReadOnly() const override {
    return "select case when exists (select 1 from pg_catalog.pg_class t "
           "where t.relkind in ('r', 'p') and t.relname not like 'Vordane%' and t.relnamespace = '" +
           std::string(schema) +
           "'::regnamespace and not pg_catalog.has_table_privilege(t.oid, 'INSERT, UPDATE, DELETE')) "
           "then 'no right to write' else '' end";
  }

  std::string name(std::u16string_view table) const override {
    return std::string(schema) + "." + quoted(table);
  }
  std::string quoted(std::u16string_view name) const override {
    std::string result = "\"";
    for (const char c : text::toUtf8(name)) result.append(c == '"' ? 2 : 1, c);
    return result + "\"";
  }
  std::string parameter(ColumnType type) const override {
    return "cast(? as " + std::string(typeOf(type)) + ")";
  }
  std::string number() const override { return "cast(? as bigint)"; }
  std::string read(std::string_view column, ColumnType type) const override {
    const std::string it(column);
    return type == ColumnType::dateTime ? "to_char(" + it + ", 'YYYY-MM-DD HH24:MI:SS')" : it + "::text";
  }
  std::string folded(std::string_view text) const override {
    return std::string(schema) + ".fold(" + std::string(text) + ")";
  }
  std::string ordered(std::string_view column, ColumnType type, bool descending) const override {
    const std::string key =
        type == ColumnType::text ? folded(column) + " collate \"C\"" : std::string(column);
    return key + (descending ? " desc nulls last" : " asc nulls first");
  }
  std::string lastOrder() const override { return "ctid"; }
  std::string oneOf(std::string_view column) const override {
    return std::string(column) + " = any(cast(? as bigint[]))";
  }
  std::string rowsOfArrays(const std::vector<ColumnType>& types) const override {
    std::vector<std::string> arrays;
    for (const ColumnType type : types) arrays.push_back("cast(? as " + std::string(typeOf(type)) + "[])");
    return "unnest(" + join(arrays, ", ") + ") with ordinality";
  }
  std::string joined(const std::string& keys) const override {
    return "select coalesce(string_agg(k::text, ','), '') from (" + keys + ") as q(k)";
  }
  std::string limited(const std::string& query, int rows) const override {
    return query + " limit " + std::to_string(rows);
  }

  std::string nextNumber(const TableDefinition& table) const override {
    for (const ColumnDefinition& column : table.columns)
      if (isAutoNumber(column.type)) return "select nextval(" + sequenceOf(table, column) + ")::text";
    return {};
  }
  std::string insert(const TableDefinition& table, const std::vector<std::size_t>& columns,
                     const std::string& keyColumn) const override {
    std::vector<std::string> names, values;
    for (const std::size_t i : columns) {
      names.push_back(quoted(table.columns[i].name));
      values.push_back(parameter(table.columns[i].type));
    }
    std::string statement = "insert into " + name(table.name);
    statement += names.empty() ? " default values"
                               : " (" + join(names, ", ") + ") values (" + join(values, ", ") + ")";
    return keyColumn.empty() ? statement : statement + " returning " + keyColumn + "::text";
  }
  std::string insertMany(const TableDefinition& table,
                         const std::vector<std::size_t>& columns) const override {
    std::vector<std::string> names, places;
    std::vector<ColumnType> types;
    for (const std::size_t i : columns) {
      names.push_back(quoted(table.columns[i].name));
      types.push_back(table.columns[i].type);
      places.push_back("c" + std::to_string(i));
    }
    return "insert into " + name(table.name) + " (" + join(names, ", ") + ") select " + join(places, ", ") +
           " from " + rowsOfArrays(types) + " as rows(" + join(places, ", ") + ", place) order by place";
  }

  std::string indexTable() const override { return name(eventIndex); }
  std::string hash(const std::vector<std::string>& texts) const override {
    return std::string(schema) + ".hash(" + join(texts, ", ") + ")";
  }
  // An owner's newest is one seek; the owners are found by seeking too, since an index of time over all of
  // them would have to be written with each fault.
  std::string newest() const override {
    const std::string index = indexTable();
    return "with recursive owners(o) as ("
           "(select \"Owner\" from " +
           index + " order by \"Owner\" limit 1) union all select (select i.\"Owner\" from " + index +
           " i where i.\"Owner\" > owners.o order by i.\"Owner\" limit 1) from owners "
           "where owners.o is not null), "
           "newest(m) as (select max(l.m collate \"C\") from owners, "
           "lateral (select i.\"Moment\" as m from " +
           index +
           " i where i.\"Owner\" = owners.o order by i.\"Moment\" desc nulls last limit 1) l) "
           "select min(i.\"Key\") from owners join " +
           index + " i on i.\"Owner\" = owners.o and i.\"Moment\" = (select m from newest)";
  }

  std::string countUnindexed(const EventTable& events) const override;
  std::vector<std::string> renewIndex(const EventTable& events) const override;

  std::string holdOwner(const std::optional<Owners>& owners) const override {
    const std::string lock =
        "select pg_advisory_xact_lock(" + std::string(ownerLock) + ", cast(? as integer))";
    if (!owners) return "with lock as materialized (" + lock + ") select '' from lock";
    return "with lock as materialized (" + lock + ") select (select o." + quoted(owners->key) +
           "::text from " + name(owners->table) + " o where o." + quoted(owners->key) +
           " = cast(? as bigint) for no key update) from lock";
  }
  std::string holdOwners() const override {
    return "select pg_advisory_xact_lock(" + std::string(ownersLock) + ")::text";
  }
  std::string agreed() const override {
    return "select \"Name\", \"Mark\" from " + name(postgresNames::agreements) +
           " where \"Subject\" = cast(? as text)";
  }
  std::string agree() const override {
    const std::string table = name(postgresNames::agreements), text = "cast(? as text)";
    return "with added as (insert into " + table + " select " + text + ", " + text + ", " + text +
           " where not exists (select 1 from " + table + " where \"Subject\" = " + text +
           ") on conflict do nothing returning \"Name\", \"Mark\") select \"Name\", \"Mark\" from added "
           "union all select \"Name\", \"Mark\" from " +
           table + " where \"Subject\" = " + text;
  }
  std::string holdRow(const std::string& query, std::string_view row) const override {
    return query + " for no key update of " + std::string(row);
  }
  std::string savepoint() const override { return "savepoint step"; }
  std::string backToSavepoint() const override { return "rollback to savepoint step"; }

  std::vector<std::string> create(const database::Description& description, Schema whether) const override;
  std::vector<std::string> functions() const override;
  std::vector<std::string> createReceipts() const override {
    std::vector<std::string> all;
    for (const TableDefinition& table : receiptTables) all.push_back(createTable(table));
    return all;
  }
  std::vector<std::string> createNotes(const EventTable& events) const override;

 private:
  std::string sequenceOf(const TableDefinition& table, const ColumnDefinition& column) const {
    return "pg_get_serial_sequence('" + name(table.name) + "', '" + text::toUtf8(column.name) + "')";
  }
  std::string createTable(const TableDefinition& table) const;
  std::array<std::string, 4> indexed(const EventTable& events, std::string_view row) const;
  std::vector<std::string> createEvents(const EventTable& events) const;
  std::vector<std::string> createOwners(const Owners& owners) const;
  std::vector<std::string> createTrigger(std::string_view trigger, std::string_view when,
                                         std::string_view function, std::string_view work,
                                         std::u16string_view table) const;
  std::vector<std::string> createFollowing(const std::string& functions, std::u16string_view table,
                                           const std::string& kept, const std::string& add,
                                           const std::string& remove) const;
};

std::string Postgres::createTable(const TableDefinition& table) const {
  std::vector<std::string> columns;
  for (const ColumnDefinition& column : table.columns) {
    std::string one = quoted(column.name) + " " + std::string(typeOf(column.type));
    if (isAutoNumber(column.type)) one += " generated by default as identity primary key";
    if (column.type == ColumnType::yesNo) one += " not null default 0";
    columns.push_back(std::move(one));
  }
  return "create table " + name(table.name) + " (" + join(columns, ", ") + ")";
}

// Texts are equal without trailing blanks and case, letter by letter by the product's own table. Most hold no
// capital beyond ASCII, so a text is only looked at for one before the slow step; and that goes through the
// few that a text holds for each of its letters, not through the whole table. Whatever a function looks like,
// what it gives stays: it stands in the index.
std::vector<std::string> Postgres::functions() const {
  const Letters letters = lettersToFold();
  const std::string capitals = text::toUtf8(letters.capitals), small = text::toUtf8(letters.small);
  const std::string prefix = "create or replace function " + std::string(schema) + ".";
  const std::string fold = std::string(schema) + ".fold",
                    held = "regexp_replace(value collate \"C\", '[^" + capitals + "]+', '', 'g')";
  return {prefix +
              "fold(value text) returns text language sql immutable parallel safe as $$ select case when "
              "octet_length(value) = char_length(value) or (value collate \"C\") !~ '[" +
              capitals +
              "]' then lower(rtrim(value, ' ') collate \"C\") else translate(lower(rtrim(value, ' ') collate "
              "\"C\"), " +
              held + ", translate(" + held + ", '" + capitals + "', '" + small + "')) end collate \"C\" $$",
          // Stable, as what it calls: so the server writes it out where it is called, which is a third of the
          // work.
          prefix +
              "hash(a text, b text, c text, d text) returns bytea language sql stable parallel safe as $$ "
              "select "
              "substr(sha256(convert_to(concat_ws(E'\\x01', " +
              fold + "(a), " + fold + "(b), " + fold + "(c), " + fold + "(d)), 'UTF8')), 1, 8) $$"};
}

// `when` has "@" for "on" and the table's name.
std::vector<std::string> Postgres::createTrigger(std::string_view trigger, std::string_view when,
                                                 std::string_view function, std::string_view work,
                                                 std::u16string_view table) const {
  const std::string called = std::string(schema) + "." + std::string(function) + "()";
  const auto at = when.find('@');
  return {
      "create function " + called +
          " returns trigger language plpgsql security definer set search_path = pg_catalog, pg_temp as $$ "
          "begin " +
          std::string(work) + " return null; end $$",
      "create trigger " + std::string(trigger) + " " + std::string(when.substr(0, at)) + "on " + name(table) +
          std::string(when.substr(at + 1)) + " for each statement execute function " + called};
}

// Triggers that keep what stands beside a table as its rows are: `add` and `remove` do so for the rows of
// "added" and "removed", `kept` is emptied with the table.
std::vector<std::string> Postgres::createFollowing(const std::string& functions, std::u16string_view table,
                                                   const std::string& kept, const std::string& add,
                                                   const std::string& remove) const {
  std::vector<std::string> all;
  const auto trigger = [&](const std::string& event, std::string_view when, const std::string& work) {
    append(all, createTrigger("vordane_" + event, when, functions + "_" + event, work, table));
  };
  trigger("added", "after insert @ referencing new table as added", add);
  trigger("removed", "after delete @ referencing old table as removed", remove);
  trigger("changed", "after update @ referencing old table as removed new table as added", remove + add);
  trigger("emptied", "after truncate @", "delete from " + kept + ";");
  return all;
}

// What the index holds of the row that `row` names.
std::array<std::string, 4> Postgres::indexed(const EventTable& events, std::string_view row) const {
  const auto of = [&](std::u16string_view column) { return std::string(row) + "." + quoted(column); };
  return {of(events.owner), folded(of(events.moment)),
          hash({of(events.kind[0]), of(events.kind[1]), of(events.kind[2]), of(events.description)}),
          of(events.key)};
}

std::string Postgres::countUnindexed(const EventTable& events) const {
  const auto [owner, moment, hashed, key] = indexed(events, "f");
  return "select count(*)::text from " + name(events.table) + " f full join " + indexTable() +
         " i on i.\"Key\" = " + key + " where i.\"Key\" is null or " + key +
         " is null or i.\"Owner\" is distinct from " + owner + " or i.\"Moment\" is distinct from " + moment +
         " or i.\"Hash\" is distinct from " + hashed;
}

std::vector<std::string> Postgres::renewIndex(const EventTable& events) const {
  const auto all = indexed(events, "f");
  return {"lock table " + name(events.table) + " in share row exclusive mode", "delete from " + indexTable(),
          "insert into " + indexTable() + " select " + join({all.begin(), all.end()}, ", ") + " from " +
              name(events.table) + " f"};
}

std::vector<std::string> Postgres::createEvents(const EventTable& events) const {
  const auto of = [&](std::string_view row, std::u16string_view column) {
    return std::string(row) + "." + quoted(column);
  };
  const auto added = indexed(events, "added"), removed = indexed(events, "removed");
  const std::string add =
      "insert into " + indexTable() + " select " + join({added.begin(), added.end()}, ", ") + " from added;";
  const std::string remove =
      "delete from " + indexTable() + " i using removed where i.\"Owner\" = " + removed[0] +
      " and i.\"Moment\" = " + removed[1] + " and i.\"Hash\" = " + removed[2] +
      " and i.\"Key\" = " + removed[3] + "; if exists (select 1 from removed where " + removed[0] +
      " is null or " + of("removed", events.moment) + " is null) then delete from " + indexTable() +
      " i using removed where (i.\"Owner\" is null or i.\"Moment\" is "
      "null) and i.\"Key\" = " +
      removed[3] + "; end if;";
  std::vector<std::string> all{
      "create table " + indexTable() +
          " (\"Owner\" integer, \"Moment\" text collate \"C\", \"Hash\" bytea, \"Key\" integer)",
      "create index \"VordaneEventOrder\" on " + indexTable() +
          " (\"Owner\", \"Moment\" nulls first, \"Hash\", \"Key\")"};
  append(all,
         createTrigger("vordane_number", "before insert @", "number_events",
                       "perform pg_advisory_xact_lock(" + std::string(numbersLock) + ");", events.table));
  append(all, createFollowing("events", events.table, indexTable(), add, remove));
  return all;
}

// Notes are few, and most events that go have none.
std::vector<std::string> Postgres::createNotes(const EventTable& events) const {
  const std::string table = name(noteTable.name), key = quoted(noteTable.columns[0].name);
  std::vector<std::string> all{createTable(noteTable),
                               "alter table " + table + " add primary key (" + key + ")"};
  append(all, createTrigger("vordane_note_removed", "after delete @ referencing old table as removed",
                            "notes_removed",
                            "delete from " + table + " n using removed where n." + key + " = removed." +
                                quoted(events.key) + ";",
                            events.table));
  append(all, createTrigger("vordane_note_emptied", "after truncate @", "notes_emptied",
                            "delete from " + table + ";", events.table));
  return all;
}

// Of each name there is one row, whatever its case: the names are kept once more, folded.
std::vector<std::string> Postgres::createOwners(const Owners& owners) const {
  const std::string table = name(ownerIndex), key = quoted(owners.key), named = quoted(owners.name);
  const std::string add = "insert into " + table + " select " + folded("added." + named) + ", added." + key +
                          " from added where added." + named + " is not null;";
  const std::string remove =
      "delete from " + table + " i using removed where i.\"Key\" = removed." + key + ";";
  std::vector<std::string> all{"create table " + table +
                               " (\"Name\" text collate \"C\" primary key, \"Key\" integer not null unique)"};
  append(all, createFollowing("owners", owners.table, table, add, remove));
  return all;
}

std::vector<std::string> Postgres::create(const database::Description& description, Schema whether) const {
  std::vector<std::string> all;
  if (whether == Schema::isMissing) all.push_back("create schema " + std::string(schema));
  append(all, functions());
  for (const TableDefinition& table : description.tables) all.push_back(createTable(table));
  if (description.events == nullptr) return all;
  all.push_back("create table " + name(postgresNames::agreements) +
                " (\"Subject\" text primary key, \"Name\" text not null, \"Mark\" text not null)");
  append(all, createEvents(*description.events));
  append(all, createNotes(*description.events));
  if (const auto owners = ownersOf(description)) append(all, createOwners(*owners));
  if (description.lamps != nullptr) append(all, createReceipts());
  return all;
}

}  // namespace

const Dialect& postgres() {
  static const Postgres dialect;
  return dialect;
}

}  // namespace vordane::odbc
