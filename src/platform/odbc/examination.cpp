// What vordane-tools says of a store: each thing is a question to the server's own tables.
#include <cmath>
#include <set>

#include "platform/odbc/administration.h"
#include "platform/odbc/dialect.h"
#include "platform/odbc/errors.h"
#include "platform/odbc/notes.h"
#include "platform/odbc/postgres_names.h"
#include "platform/odbc/receipts.h"
#include "text/utf8.h"

namespace vordane::odbc {
namespace {

using namespace postgresNames;
using database::TableDefinition;

// Apart by more than this the lists of two stations stand in a wrong order.
constexpr double mostSecondsApart = 10;
constexpr int oldestServer = 150000;  // as the server numbers its versions

constexpr std::string_view allRights =
    "('SELECT', 1), ('INSERT', 2), ('UPDATE', 3), ('DELETE', 4), "
    "('TRUNCATE', 5), ('REFERENCES', 6), ('TRIGGER', 7)";

// What lies around the tables: the owner, the schemas, the database, who is a member. Each gives a sentence
// for each thing that should not be.
constexpr std::string_view wrongRights[] = {
    R"(select 'the table ' || t.relname || ' belongs to ' || pg_get_userbyid(t.relowner)
         || ', not to vordane_administrator'
       from pg_catalog.pg_class t
       where t.relkind in ('r', 'p') and t.relnamespace = 'vordane'::regnamespace
         and pg_get_userbyid(t.relowner) <> 'vordane_administrator' order by 1)",
    R"(select 'the role ' || role || ' can make tables in the schema ' || n.nspname
       from (values ('vordane_reader'), ('vordane_station')) as r(role), pg_catalog.pg_namespace n
       where n.nspname !~ '^pg_' and has_schema_privilege(role, n.oid, 'CREATE') order by 1)",
    R"(select 'the role ' || role || ' can read in the schema ' || n.nspname
       from (values ('vordane_reader'), ('vordane_station')) as r(role), pg_catalog.pg_namespace n
       where n.nspname !~ '^pg_' and n.nspname not in ('vordane', 'information_schema')
         and has_schema_privilege(role, n.oid, 'USAGE') order by 1)",
    R"(select 'the role ' || role || ' can not use the schema vordane'
       from (values ('vordane_reader'), ('vordane_station')) as r(role)
       where not has_schema_privilege(role, 'vordane', 'USAGE') order by 1)",
    R"(select 'the role ' || role || ' can make ' || what || ' in the database'
       from (values ('vordane_reader'), ('vordane_station')) as r(role),
         (values ('CREATE', 'schemas'), ('TEMPORARY', 'temporary tables')) as p(name, what)
       where has_database_privilege(role, current_database(), name) order by 1)",
    R"(select 'the role ' || role || ' may not connect to the database'
       from (values ('vordane_reader'), ('vordane_station')) as r(role)
       where not has_database_privilege(role, current_database(), 'CONNECT') order by 1)",
    R"(select 'the role vordane_station may not take numbers from ' || s.relname
       from pg_catalog.pg_class s
       where s.relnamespace = 'vordane'::regnamespace
         and case when s.relkind = 'S' then not has_sequence_privilege('vordane_station', s.oid, 'USAGE') end
       order by 1)",
    R"(with recursive members(role, member) as (
         select r.rolname, a.member
         from pg_catalog.pg_auth_members a join pg_catalog.pg_roles r on r.oid = a.roleid
         where r.rolname in ('vordane_reader', 'vordane_station')
         union select m.role, a.member from pg_catalog.pg_auth_members a join members m on m.member = a.roleid)
       select 'the user ' || u.rolname || ' is a member of ' || m.role || ' and can do more than that'
       from members m join pg_catalog.pg_roles u on u.oid = m.member
       where u.rolsuper or u.rolcreaterole or u.rolcreatedb or u.rolreplication or u.rolbypassrls
         or pg_has_role(u.oid, 'vordane_administrator', 'member') order by 1)",
};

std::string utf8(const Field& field) {
  return text::toUtf8(field.value_or(u""));
}

class Examination {
 public:
  Examination(Link& link, const database::Description& description)
      : link_(link), description_(description) {}

  std::vector<Examined> examine(const Subject& subject, const Administration::Clock& now,
                                const std::string& encryption) {
    examineServer();
    examineEncryption(encryption);
    examineClock(now);
    if (!examineVersion()) return std::move(found_);
    const bool tables = examineTables(), indexes = examineIndexes(), triggers = examineTriggers();
    if (tables && indexes && triggers) examineEvents();
    examineRights();
    examineSubject(subject);
    return std::move(found_);
  }

 private:
  bool say(bool good, std::string text) {
    found_.push_back({good, std::move(text)});
    return good;
  }
  std::vector<std::string> column(const std::string& query) {
    std::vector<std::string> all;
    for (const Fields& row : link_.query(query)) all.push_back(utf8(row.at(0)));
    return all;
  }
  std::string one(const std::string& query) {
    const auto all = column(query);
    return all.empty() ? std::string{} : all[0];
  }
  // What `query` gives is what should not be: a sentence for each row, or the good one.
  bool sayEach(const std::string& query, const std::string& good) {
    const auto wrong = column(query);
    for (const std::string& sentence : wrong) say(false, sentence);
    return wrong.empty() ? say(true, good) : false;
  }

  void examineServer() {
    const auto row =
        link_
            .query(
                "select current_setting('server_version'), current_setting('server_version_num'), "
                "pg_encoding_to_char(encoding), current_user::text, datname::text, "
                "pg_is_in_recovery()::text from pg_catalog.pg_database where datname = current_database()")
            .at(0);
    const bool recent = std::stoi(utf8(row.at(1))) >= oldestServer;
    say(recent, "PostgreSQL " + utf8(row.at(0)) + (recent ? "" : ": it must be 15 or newer"));
    say(true, "user " + utf8(row.at(3)) + " in the database " + utf8(row.at(4)));
    if (utf8(row.at(5)) == "true")
      say(false, "the server is a replica: stations show faults and can store none until it is promoted");
    if (utf8(row.at(2)) != "UTF8")
      say(false, "the database keeps texts as " + utf8(row.at(2)) + ": make it with the encoding UTF8");
  }

  // Nobody listens on a socket of the machine.
  void examineEncryption(const std::string& asked) {
    const auto row =
        link_
            .query(
                "select (inet_client_addr() is not null)::text, coalesce(s.version, '') from "
                "(select 1) as this left join pg_catalog.pg_stat_ssl s on s.pid = pg_backend_pid() "
                "and s.ssl")
            .at(0);
    const std::string version = utf8(row.at(1)), says = ": the data source says SSLmode=" + asked;
    if (utf8(row.at(0)) != "true") return;
    if (version.empty()) {
      say(false, "the connection is not encrypted" + says);
    } else if (!asked.empty() && asked != "verify-full") {
      say(false,
          "the connection is encrypted (" + version + "), but the server's name is not verified" + says);
    } else {
      say(true, "the connection is encrypted (" + version + "), the server's name is verified");
    }
  }

  // The server's answer is as old as half of the way there and back, at most.
  void examineClock(const Administration::Clock& now) {
    const auto seconds = [](auto moment) {
      return std::chrono::duration<double>(moment.time_since_epoch()).count();
    };
    const double before = seconds(now());
    const double there = std::stod(one("select extract(epoch from clock_timestamp())::text"));
    const double apart = there - (before + seconds(now())) / 2;
    const auto whole = std::to_string(std::llround(std::abs(apart)));
    if (std::abs(apart) <= mostSecondsApart)
      say(true, "the clocks of the server and of this station agree");
    else
      say(false, "the server's clock is " + whole + " s " + (apart > 0 ? "ahead of" : "behind") +
                     " this station's: set them by one time server");
  }

  bool examineVersion() {
    if (one("select '1' from pg_catalog.pg_namespace where nspname = 'vordane'").empty())
      return say(false, "there is no store in this database: 'vordane-tools store create' makes it");
    const std::string version = agreed(versionSubject).mark;
    const bool same = version == text::toUtf8(storeVersion);
    return say(same, same              ? "store of version " + version
                     : version.empty() ? "the store does not say which version it has"
                                       : "the store has the version " + version + ", this program knows " +
                                             text::toUtf8(storeVersion));
  }

  struct Agreed {
    std::string name, mark;
  };
  Agreed agreed(std::u16string_view subject) {
    const std::string table = postgres().name(agreements);
    if (one("select '1' where to_regclass('" + table + "') is not null and has_table_privilege('" + table +
            "', 'SELECT')")
            .empty())
      return {};
    const Field about = std::u16string(subject);
    const auto rows = link_.query(
        "select \"Name\", \"Mark\" from " + table + " where \"Subject\" = cast(? as text)", {&about, 1});
    return rows.empty() ? Agreed{} : Agreed{utf8(rows[0].at(0)), utf8(rows[0].at(1))};
  }

  bool examineTables() {
    std::set<std::string> there;
    for (const std::string& name : column(
             "select t.relname || '.' || c.attname || ' ' || format_type(c.atttypid, c.atttypmod) from "
             "pg_catalog.pg_class t join pg_catalog.pg_attribute c on c.attrelid = t.oid where t.relkind in "
             "('r', 'p') and c.attnum > 0 and not c.attisdropped and t.relnamespace = "
             "'vordane'::regnamespace"))
      there.insert(name);
    const auto isThere = [&](const TableDefinition& table) {
      return std::all_of(table.columns.begin(), table.columns.end(), [&](const auto& column) {
        return there.contains(text::toUtf8(table.name) + "." + text::toUtf8(column.name) + " " +
                              std::string(typeOf(column.type)));
      });
    };
    bool whole = true;
    const auto requireOwn = [&](const TableDefinition& table, const std::string& what) {
      if (isThere(table)) return;
      whole = say(false, "the table " + text::toUtf8(table.name) + " of the " + what +
                             " is missing or another one: 'vordane-tools store create' makes one that is "
                             "missing");
    };
    for (const TableDefinition& table : receiptTables) requireOwn(table, "receipts");
    requireOwn(noteTable, "notes");
    for (const TableDefinition& table : description_.tables)
      for (const auto& column : table.columns) {
        const std::string name = text::toUtf8(table.name) + "." + text::toUtf8(column.name);
        if (there.contains(name + " " + std::string(typeOf(column.type)))) continue;
        whole = say(false, "the column " + name + " is missing, or of another type than " +
                               std::string(typeOf(column.type)));
      }
    return whole && say(true, "the tables are as documented");
  }

  static std::string quotedText(std::string_view text) { return "'" + std::string(text) + "'"; }
  // Rows (table, what) that should be there and are not.
  bool sayMissing(const std::vector<std::string>& expected, const std::string& there, const std::string& what,
                  const std::string& good) {
    std::string rows;
    for (const std::string& row : expected) rows += (rows.empty() ? "(" : ", (") + row + ")";
    return sayEach("select '" + what +
                       " ' || e.w || ' of ' || e.t || ' is missing or not in force' from (values " + rows +
                       ") as e(t, w) where not exists (" + there + ")",
                   good);
  }

  bool examineIndexes() {
    const std::string events = quotedText(text::toUtf8(eventIndex)),
                      owners = quotedText(text::toUtf8(ownerIndex)),
                      agreed = quotedText(text::toUtf8(agreements));
    std::vector<std::string> expected{events + ", 'Owner, Moment, Hash, Key'", owners + ", 'Name'",
                                      owners + ", 'Key'", agreed + ", 'Subject'"};
    for (const TableDefinition& table : description_.tables)
      for (const auto& column : table.columns)
        if (column.type == database::ColumnType::autoNumber ||
            column.type == database::ColumnType::shortAutoNumber)
          expected.push_back(quotedText(text::toUtf8(table.name)) + ", " +
                             quotedText(text::toUtf8(column.name)));
    expected.push_back(quotedText(text::toUtf8(receiptTables[0].name)) + ", 'Number'");
    expected.push_back(quotedText(text::toUtf8(noteTable.name)) + ", 'Count'");
    return sayMissing(
        expected,
        "select 1 from pg_catalog.pg_index i join pg_catalog.pg_class t on t.oid = i.indrelid where "
        "t.relnamespace = 'vordane'::regnamespace and i.indisvalid and t.relname = e.t and (i.indisunique "
        "or e.t = " +
            events +
            ") and e.w = (select string_agg(c.attname, ', ' order by k.place) from "
            "unnest(i.indkey::int2[]) with ordinality k(number, place) join pg_catalog.pg_attribute c "
            "on c.attrelid = t.oid and c.attnum = k.number)",
        "the index over", "the indexes are there");
  }

  bool examineTriggers() {
    std::vector<std::string> expected;
    const auto add = [&](std::u16string_view table, std::string_view trigger) {
      expected.push_back(quotedText(text::toUtf8(table)) + ", " + quotedText(trigger));
    };
    constexpr std::string_view following[] = {"vordane_added", "vordane_removed", "vordane_changed",
                                              "vordane_emptied"};
    add(description_.events->table, "vordane_number");
    for (const auto trigger : following) add(description_.events->table, trigger);
    for (const auto trigger : {"vordane_note_removed", "vordane_note_emptied"})
      add(description_.events->table, trigger);
    if (const auto owners = ownersOf(description_))
      for (const auto trigger : following) add(owners->table, trigger);
    return sayMissing(
        expected,
        "select 1 from pg_catalog.pg_trigger g join pg_catalog.pg_class t on t.oid = g.tgrelid where "
        "t.relnamespace = 'vordane'::regnamespace and t.relname = e.t and g.tgname = e.w and "
        "g.tgenabled in ('O', 'A')",
        "the trigger", "the triggers are in force");
  }

  bool canRead(std::u16string_view table) {
    return one("select has_table_privilege('" + postgres().name(table) + "', 'SELECT')::text") == "true";
  }

  // Each event stands once in its index, as its row is.
  void examineEvents() {
    const database::EventTable& events = *description_.events;
    if (!canRead(eventIndex) || !canRead(events.table)) {
      say(true, "whether the index agrees with the faults was not looked at: this user may not read it");
      return;
    }
    const std::string wrong = one(postgres().countUnindexed(events));
    say(wrong == "0", wrong == "0" ? "the index agrees with the faults"
                                   : "the index does not agree with " + wrong +
                                         " fault(s): 'vordane-tools store create' renews it");
  }

  // In which stations change rows.
  std::string listOfTables() const {
    std::string all;
    for (const TableDefinition& table : description_.tables)
      all += quotedText(text::toUtf8(table.name)) + ", ";
    return all + quotedText(text::toUtf8(noteTable.name));
  }

  void examineRights() {
    const std::string missing =
        one("select string_agg(r, ', ') from (values ('vordane_reader'), ('vordane_station'), "
            "('vordane_administrator')) as e(r) where not exists (select 1 from pg_catalog.pg_roles where "
            "rolname = r)");
    if (!missing.empty()) {
      say(false, "there is no role " + missing + ": 'vordane-tools store create' makes it");
      return;
    }
    const bool tables = examineTableRights(), around = examineOtherRights();
    if (tables && around) say(true, "the roles have the rights that they should have, and no others");
  }

  bool sayWrong(const std::string& query) {
    const auto wrong = column(query);
    for (const std::string& sentence : wrong) say(false, sentence);
    return wrong.empty();
  }

  bool examineTableRights() {
    const std::string expected =
        "case when r.role = 'public' then '' when r.role = 'vordane_reader' then 'SELECT' when t.relname in "
        "(" +
        listOfTables() + ") then 'SELECT, INSERT, UPDATE, DELETE' when t.relname in ('" +
        text::toUtf8(agreements) + "', '" + text::toUtf8(receiptTables[0].name) + "', '" +
        text::toUtf8(receiptTables[1].name) + "') then 'SELECT, INSERT' else 'SELECT' end";
    return sayWrong(
        "select 'the role ' || role || ' has the rights (' || has || ') on ' || relname || ', not (' || "
        "should || ')' "
        "from (select r.role, t.relname, coalesce((select string_agg(p.name, ', ' order by p.place) from "
        "(values " +
        std::string(allRights) +
        ") as p(name, place) where has_table_privilege(r.role, t.oid, p.name)), '') as has, " + expected +
        " as should from (values ('public'), ('vordane_reader'), ('vordane_station')) as r(role), "
        "pg_catalog.pg_class t where t.relkind in ('r', 'p', 'v', 'm') and t.relnamespace = "
        "'vordane'::regnamespace) as "
        "q where has <> should order by 1");
  }

  bool examineOtherRights() {
    bool good = true;
    for (const std::string_view question : wrongRights) good &= sayWrong(std::string(question));
    return good;
  }

  void examineSubject(const Subject& subject) {
    const Agreed kept = agreed(subject.name);
    const std::string what = text::toUtf8(subject.name);
    if (kept.mark.empty()) {
      say(false, what + ": none is kept; the first station that stores a list decides");
    } else if (!subject.own) {
      say(true, what + ": " + kept.name + " (" + kept.mark + ")");
    } else if (kept.mark == text::toUtf8(subject.own->mark)) {
      say(true, what + ": " + kept.name + ", as the texts given here");
    } else {
      say(false, what + ": the store is kept in " + kept.name + " (" + kept.mark +
                     "), the texts given here are " + text::toUtf8(subject.own->name) + " (" +
                     text::toUtf8(subject.own->mark) + ")");
    }
  }

  Link& link_;
  const database::Description& description_;
  std::vector<Examined> found_;
};

}  // namespace

std::vector<Examined> Administration::examine(const database::Description& description,
                                              const Subject& subject, const Clock& now) {
  return Examination(*link_, description).examine(subject, now, text::toUtf8(encryption_));
}

}  // namespace vordane::odbc
