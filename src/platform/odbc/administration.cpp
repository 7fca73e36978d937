#include "platform/odbc/administration.h"

#include "platform/odbc/data_source.h"
#include "platform/odbc/dialect.h"
#include "platform/odbc/errors.h"
#include "platform/odbc/notes.h"
#include "platform/odbc/postgres_names.h"
#include "platform/odbc/receipts.h"
#include "text/utf8.h"

namespace vordane::odbc {
namespace {

using namespace postgresNames;

// Nobody makes the same store at the same time.
constexpr std::string_view makingLock = "select pg_catalog.pg_advisory_xact_lock(1987014244, 3)::text";
constexpr int connectSeconds = 8, lockWaitMilliseconds = 5000;

[[noreturn]] void refuse(const std::string& sentence) {
  throw database::DatabaseError(number::callFailed, text::fromUtf8(sentence));
}

std::string quotedName(std::string_view name) {
  return postgres().quoted(text::fromUtf8(name));
}

// One making of a store, within one transaction.
class Making {
 public:
  Making(Link& link, const database::Description& description) : link_(link), description_(description) {}

  std::vector<std::string> make(const Subject& subject) {
    link_.begin();
    link_.query(std::string(makingLock));
    const bool isThere = has("pg_namespace where nspname = '" + std::string(schema) + "'");
    if (!isThere) refuseForeignTables();
    for (const std::string_view role : {reader, station, administrator}) makeRole(role);
    joinAdministrators();
    closeDatabase();
    if (!isThere) link_.change("create schema vordane authorization vordane_administrator");
    requireOwnSchema();
    link_.change("set local role vordane_administrator");
    if (!isThere) makeTables();
    say(isThere ? "the tables are there"
                : "made the tables, their indexes and triggers in the schema vordane");
    if (isThere) renewFunctions();
    if (isThere) makeReceipts();
    if (isThere) makeNotes();
    giveRights();
    keepVersion();
    renewIndex();
    if (subject.own) keep(subject);
    link_.commit();
    return std::move(done_);
  }

 private:
  void say(std::string line) { done_.push_back(std::move(line)); }
  std::string one(const std::string& query) {
    const auto rows = link_.query(query);
    return rows.empty() ? std::string{} : text::toUtf8(rows[0].at(0).value_or(u""));
  }
  bool has(const std::string& from) { return !one("select '1' from pg_catalog." + from).empty(); }

  bool hasTable(const database::TableDefinition& table) {
    return has("pg_class where relnamespace = 'vordane'::regnamespace and relname = '" +
               text::toUtf8(table.name) + "'");
  }

  void refuseForeignTables() {
    const std::string other = one(
        "select n.nspname || '.' || t.relname from pg_catalog.pg_class t join pg_catalog.pg_namespace n on "
        "n.oid = t.relnamespace where t.relkind in ('r', 'p', 'f') and n.nspname !~ '^pg_' and n.nspname <> "
        "'information_schema' and not exists (select 1 from pg_catalog.pg_depend d where d.objid = t.oid and "
        "d.deptype = 'e') order by 1 limit 1");
    if (!other.empty())
      refuse("the database holds other tables (" + other + "). Give the store a database of its own");
  }

  void makeRole(std::string_view role) {
    const std::string name(role);
    if (has("pg_roles where rolname = '" + name + "'")) return say("the role " + name + " is there");
    link_.change("create role " + name + " nologin");
    say("made the role " + name);
  }

  // What belongs to a role is made by one of its members.
  void joinAdministrators() {
    if (one("select pg_catalog.pg_has_role('vordane_administrator', 'member')::text") == "true") return;
    const std::string user = one("select current_user::text");
    link_.change("grant vordane_administrator to " + quotedName(user));
    say("made " + user + " a member of vordane_administrator");
  }

  void closeDatabase() {
    const std::string name = one("select pg_catalog.current_database()::text"),
                      database = "database " + quotedName(name);
    link_.change("revoke all on " + database + " from public");
    link_.change("grant connect on " + database +
                 " to vordane_reader, vordane_station, vordane_administrator");
    link_.change("revoke create, temporary on " + database + " from vordane_reader, vordane_station");
    if (has("pg_namespace where nspname = 'public'"))
      link_.change("revoke all on schema public from public, vordane_reader, vordane_station");
    say("closed the database " + name + " to everybody but these roles");
  }

  void requireOwnSchema() {
    if (!has(
            "pg_namespace n join pg_catalog.pg_roles r on r.oid = n.nspowner where n.nspname = 'vordane' and "
            "r.rolname = 'vordane_administrator'"))
      refuse("there is a schema vordane that belongs to somebody else. Give the store a database of its own");
    const std::string kept =
        one("select pg_catalog.to_regclass('" + postgres().name(agreements) + "')::text");
    const bool isNew =
        !has("pg_class where relkind in ('r', 'p') and relnamespace = 'vordane'::regnamespace");
    if (kept.empty() && !isNew) refuse("there is a schema vordane that holds something else than a store");
  }

  void makeTables() {
    for (const std::string& statement : postgres().create(description_, Dialect::Schema::isThere))
      link_.change(statement);
  }

  // For a store of an earlier time.
  void renewFunctions() {
    for (const std::string& statement : postgres().functions()) link_.change(statement);
  }
  void makeReceipts() {
    const auto statements = postgres().createReceipts();
    bool made = false;
    for (std::size_t i = 0; description_.lamps != nullptr && i < statements.size(); ++i) {
      if (hasTable(receiptTables[i])) continue;
      link_.change(statements[i]);
      made = true;
    }
    if (made) say("made the tables of the receipts");
  }
  void makeNotes() {
    if (hasTable(noteTable)) return;
    for (const std::string& statement : postgres().createNotes(*description_.events)) link_.change(statement);
    say("made the table of the notes");
  }

  // Whatever was given or taken by hand is put right.
  void giveRights() {
    const std::string everything = " in schema vordane from public, vordane_reader, vordane_station";
    link_.change("revoke all on all tables" + everything);
    link_.change("revoke all on all sequences" + everything);
    link_.change("revoke all on all functions" + everything);
    link_.change("revoke all on schema vordane from public, vordane_reader, vordane_station");
    link_.change("grant usage on schema vordane to vordane_reader, vordane_station");
    for (const database::TableDefinition& table : description_.tables) giveRows(table);
    giveRows(noteTable);
    for (const auto table : {eventIndex, ownerIndex, agreements})
      link_.change("grant select on " + postgres().name(table) + " to vordane_reader, vordane_station");
    link_.change("grant insert on " + postgres().name(agreements) + " to vordane_station");
    for (const database::TableDefinition& table : receiptTables) {
      const std::string on = " on " + postgres().name(table.name) + " to ";
      link_.change("grant select" + on + "vordane_reader");
      link_.change("grant select, insert" + on + "vordane_station");
    }
    link_.change("grant usage on all sequences in schema vordane to vordane_station");
    for (const char* function : {"fold(text)", "hash(text, text, text, text)"})
      link_.change(std::string("grant execute on function vordane.") + function +
                   " to vordane_reader, vordane_station");
    say("gave the roles their rights: readers read, stations add, change and delete rows, administrators "
        "own");
  }

  void giveRows(const database::TableDefinition& table) {
    const std::string on = " on " + postgres().name(table.name) + " to ";
    link_.change("grant select" + on + "vordane_reader");
    link_.change("grant select, insert, update, delete" + on + "vordane_station");
  }

  void renewIndex() {
    if (one(postgres().countUnindexed(*description_.events)) == "0") return;
    for (const std::string& statement : postgres().renewIndex(*description_.events)) link_.change(statement);
    say("renewed the index of the faults");
  }

  Fields kept(std::u16string_view subject) {
    const Field about = std::u16string(subject);
    const auto rows = link_.query(postgres().agreed(), {&about, 1});
    return rows.empty() ? Fields{} : rows[0];
  }

  void add(std::u16string_view subject, const database::Agreement& what) {
    const Field values[] = {std::u16string(subject), what.name, what.mark};
    link_.change(
        "insert into " + postgres().name(agreements) +
            " values (cast(? as text), cast(? as text), cast(? as text)) on conflict (\"Subject\") do "
            "update set \"Name\" = excluded.\"Name\", \"Mark\" = excluded.\"Mark\"",
        values);
  }

  void keepVersion() {
    const Fields version = kept(versionSubject);
    if (version.empty()) return add(versionSubject, {u"Vordane", std::u16string(storeVersion)});
    if (version.at(1) != Field(storeVersion))
      refuse("the store has the version " + text::toUtf8(version.at(1).value_or(u"")) +
             ", this program makes " + text::toUtf8(storeVersion) +
             ". Use the program that made it, or a newer one");
  }

  void keep(const Subject& subject) {
    const Fields before = kept(subject.name);
    const std::string what = text::toUtf8(subject.name), name = text::toUtf8(subject.own->name);
    if (!before.empty() && before.at(1) == Field(subject.own->mark))
      return say(what + ": " + name + ", as before");
    if (!before.empty() && !isEmpty())
      refuse(what + ": the store is kept in " + text::toUtf8(before.at(0).value_or(u"")) +
             " and holds faults; it can't change to " + name);
    add(subject.name, *subject.own);
    say(what + ": " + name);
  }

  bool isEmpty() {
    return one("select '1' from " + postgres().name(description_.events->table) + " limit 1").empty();
  }

  Link& link_;
  const database::Description& description_;
  std::vector<std::string> done_;
};

}  // namespace

Administration::Administration(std::u16string_view path, const Lookup& lookup) {
  const DataSource source = DataSource::read(path);
  encryption_ = source.value(u"SSLmode");
  api_ = loadApi(lookup);
  constexpr int wordSize = sizeof(void*) * 8;
  link_ = std::make_unique<Link>(api_, source.connection(wordSize, postgres().driverSettings()),
                                 std::chrono::seconds(connectSeconds), waiter_);
  link_->query(postgres().begin(lockWaitMilliseconds, false));
}

std::vector<std::string> Administration::create(const database::Description& description,
                                                const Subject& subject) {
  try {
    return Making(*link_, description).make(subject);
  } catch (...) {
    link_->rollback();
    throw;
  }
}

}  // namespace vordane::odbc
