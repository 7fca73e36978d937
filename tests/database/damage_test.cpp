// Copies of each database with bytes changed at random: an error or an answer, never a crash, and whatever
// could be read of the copy before it was used can be read of it afterwards. VORDANE_DAMAGE_ROUNDS=n damages
// n copies of each.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <random>

#include "database/contract.h"
#include "database/embedded.h"
#include "text/utf8.h"

namespace vordane::sqlite {
namespace {

using database::addExchange;
using database::addFault;
using database::Database;
using database::Fault;
using database::isStored;
using database::Layout;
using database::numberOfError;
using database::Row;
using database::Value;

int wantedRounds() {
  const char* wanted = std::getenv("VORDANE_DAMAGE_ROUNDS");
  return wanted != nullptr ? std::atoi(wanted) : 60;
}

Value words(std::u16string_view text) {
  return std::u16string(text);
}
std::u16string number(int value) {
  return text::fromUtf8(std::to_string(value));
}

Fault faultOf(int i) {
  return {std::int16_t(1 + i % 3),
          u"01",
          u"MJ",
          u"MP   ",
          u"2006/11/27 10:" + number(10 + i % 50),
          u"Title " + number(i) + u"\r\n" + std::u16string(i % 20 == 0 ? 6000 : 200, u'x')};
}

std::vector<Value> readAll(Database& database, std::u16string_view statement) {
  std::vector<Value> values;
  numberOfError([&] {
    const auto rows = database.openRecordset(statement);
    for (int i = 0; i < 2000 && !rows->atEnd(); ++i, rows->moveNext())
      for (std::size_t k = 0; k < 2; ++k) values.push_back(rows->get(k));
  });
  return values;
}

void changeFirst(Database& database, std::u16string_view statement, std::u16string_view column,
                 const Value& value) {
  numberOfError([&] {
    const auto rows = database.openRecordset(statement);
    if (rows->isEmpty()) return;
    rows->edit();
    rows->set(column, value);
    rows->update();
  });
}

// Each database: what it holds, and what a caller does with it from opening to closing. What a use removes
// or changes on purpose is told by `touched`, a condition on the documented rows.
struct Kind {
  const char* name;
  Layout layout;
  std::vector<Row> (*rows)();
  void (*use)(Database& database);
  std::map<std::string, std::string> touched;  // table: condition
  std::size_t untouched = 0;                   // rows that are not

  friend void PrintTo(const Kind& kind, std::ostream* out) { *out << kind.name; }
};

std::vector<Row> faultRows() {
  std::vector<Row> rows;
  for (const char16_t* name : {u"A", u"B", u"C"})
    rows.push_back(
        {u"PBXList", {automation::Null{}, words(name), words(u"2006-11-27 10:15:00"), false, true}});
  for (int i = 0; i < 150; ++i) {
    const Fault f = faultOf(i);
    rows.push_back({u"FaultDisplay",
                    {f.id, words(f.fault), words(f.alarm), words(f.cpu), words(f.date), automation::Null{},
                     words(f.description)}});
  }
  return rows;
}

void useFaults(Database& database) {
  for (const char16_t* statement :
       {u"Select * FROM PBXList", u"SELECT * FROM PBXList Order by [TimeStamp] Desc",
        u"Select * from FaultDisplay", u"SELECT * FROM FaultDisplay Order by [Date] Desc"})
    readAll(database, statement);
  changeFirst(database, u"Select * FROM PBXList WHERE PBXName = \"A\"", u"MJ", true);
  numberOfError([&] { database.beginBatch(); });
  for (int i = 0; i < 60; ++i)
    numberOfError([&] {
      if (!isStored(database, faultOf(i * 3))) addFault(database, faultOf(i * 3));
    });
  numberOfError([&] { database.endBatch(); });
  const std::u16string_view columns[] = {u"Count", u"Description"};
  for (const char16_t* order :
       {u"[Description] Asc, [Fault] Asc, [Alarm] Asc, [Date] Asc, [Count] Asc, [CPU] Asc",
        u"[Date] Desc, [Count] Desc, [Fault] Desc, [Alarm] Desc, [CPU] Desc, [Description] Desc"})
    numberOfError([&] {
      const auto rows = database.openRowList(
          u"SELECT * FROM FaultDisplay WHERE ID = 1 Order by " + std::u16string(order), columns);
      std::vector<Value> values;
      for (std::size_t i = 0; i < rows->size(); ++i) rows->fetch(i, values);
    });
  numberOfError([&] { database.execute(u"DELETE FROM PBXList WHERE ID = 2"); });
  numberOfError([&] { database.execute(u"DELETE FROM FaultDisplay WHERE ID = 2"); });
  for (int i = 0; i < 20; ++i) numberOfError([&] { addFault(database, faultOf(1000 + i)); });
}

std::vector<Row> languageRows() {
  std::vector<Row> rows;
  for (int i = 0; i < 165; ++i) rows.push_back({u"tMessages", {i, words(u"Message " + number(i))}});
  for (int i = 0; i < 60; ++i)
    rows.push_back({u"tControls",
                    {words(u"dlgFaultDisplay"), words(u"cmd" + number(i)), -1, words(u"Caption " + number(i)),
                     words(u"-1"), 8.25, automation::Null{}}});
  for (int i = 0; i < 100; ++i)
    rows.push_back(
        {u"tComboBoxDT",
         {words(u"dlgFaultDisplay"), words(u"cboFK01"), -1, i, words(u"Item " + number(i)), i, false}});
  for (int i = 100; i < 120; ++i)
    rows.push_back(
        {u"tMsgBox",
         {i, words(u"Prompt " + number(i)), words(u"0"), words(u"Title"), words(u""), words(u"")}});
  rows.push_back({u"tProject", std::vector<Value>(6, words(u"VORDANE"))});
  rows.push_back({u"tForms", {words(u"dlgFaultDisplay"), words(u"Faults"), words(u"Arial"), 9.0}});
  return rows;
}

void useLanguage(Database& database) {
  for (const char16_t* statement :
       {u"select Caption,FontName,FontSize from tForms where ObjectName = 'dlgFaultDisplay'",
        u"select ObjectName,Index,Caption,FontName,FontSize,ToolTipText from tControls where FormName = "
        u"'dlgFaultDisplay'",
        u"select ObjectName,Index,List,ItemData,Visible from tComboBoxDT where FormName = 'dlgFaultDisplay' "
        u"ORDER BY "
        u"ListIndex",
        u"select * from tProject where EXEName = 'VORDANE'",
        u"SELECT * FROM tMessages UNION SELECT -1, COUNT(*) FROM tMessages ORDER BY ID"})
    readAll(database, statement);
}

std::vector<Row> commonRows() {
  std::vector<Row> rows;
  for (int i = 0; i < 60; ++i)
    rows.push_back({u"PictureFileName",
                    {i % 3, words(u"back" + number(i) + u".bmp"), words(u"set" + number(i) + u".bmp")}});
  for (int i = 100; i < 130; ++i)
    rows.push_back(
        {u"tMsgBox",
         {i, words(u"Prompt " + number(i)), words(u"0"), words(u"Title"), words(u""), words(u"")}});
  return rows;
}

void useCommon(Database& database) {
  readAll(database, u"Select * From PictureFileName Where  ID = 1");
}

std::vector<Row> registryRows() {
  std::vector<Row> rows;
  for (int i = 0; i < 40; ++i)
    rows.push_back({u"Registry",
                    {words(i == 20 ? u"VORDANE" : u"APP" + number(i)), words(u"Menu"),
                     words(u"Item " + number(i)), words(u"Tip"), words(u"30000")}});
  return rows;
}

void useRegistry(Database& database) {
  changeFirst(database, u"SELECT * FROM Registry WHERE AppName = \"VORDANE\"", u"Version", words(u"1.00.13"));
}

std::vector<Row> optionRows() {
  std::vector<Row> rows;
  for (int i = 0; i < 60; ++i)
    rows.push_back({u"Options", {i, 3, true, 2, true, false, 50, words(u"run" + number(i)), 2}});
  return rows;
}

void useOptions(Database& database) {
  for (const int key : {0, 7, 30, 59}) readAll(database, u"SELECT * FROM Options WHERE Key = " + number(key));
}

const Kind kinds[] = {
    {"FAULT.MDB",
     Layout::faults,
     faultRows,
     useFaults,
     {{"FaultDisplay", "ID = 2"}, {"PBXList", "ID = 2"}},
     125},
    {"VORDANE.LNG", Layout::ownLanguage, languageRows, useLanguage, {}, 347},
    {"Common.LNG", Layout::commonLanguage, commonRows, useCommon, {}, 90},
    {"Register.mdb", Layout::registration, registryRows, useRegistry, {}, 40},
    {"Schedule.mdb", Layout::schedule, optionRows, useOptions, {}, 60},
};

// What a plain SQLite program can still read of the documented tables: a line for each row, by table and key.
class Readable {
 public:
  Readable(const std::u16string& path, const Kind& kind, int highestKey) {
    // A log that damage kept from being tidied away belongs to the file; else looking must leave no trace.
    const bool logged = std::filesystem::exists(std::filesystem::path(path + u"-wal"));
    const std::string address = "file:" + text::toUtf8(path) + (logged ? "" : "?immutable=1");
    sqlite3_open_v2(address.c_str(), &handle_,
                    logged ? SQLITE_OPEN_READWRITE | SQLITE_OPEN_URI : SQLITE_OPEN_READONLY | SQLITE_OPEN_URI,
                    nullptr);
    for (const database::TableDefinition& table : tablesOf(kind.layout)) {
      const std::string name = text::toUtf8(std::u16string(table.name));
      std::string columns;
      for (const database::ColumnDefinition& column : table.columns) {
        // What a use changes on purpose is told apart by its table; the registration's version by its column.
        if (column.name == u"Version" || column.name == u"MJ") continue;
        columns +=
            (columns.empty() ? "quote([" : " || quote([") + text::toUtf8(std::u16string(column.name)) + "])";
      }
      const auto touched = kind.touched.find(name);
      readTable(name,
                "SELECT " + columns + " FROM [" + name + "] WHERE rowid = ?" +
                    (touched == kind.touched.end() ? "" : " AND NOT (" + touched->second + ")"),
                highestKey);
    }
  }
  ~Readable() { sqlite3_close(handle_); }
  Readable(const Readable&) = delete;
  Readable& operator=(const Readable&) = delete;

  std::map<std::string, std::string> rows;

 private:
  void readTable(const std::string& name, const std::string& sql, int highestKey) {
    sqlite3_stmt* row = nullptr;
    if (sqlite3_prepare_v2(handle_, sql.c_str(), -1, &row, nullptr) != SQLITE_OK) return;
    for (int key = 0; key <= highestKey; ++key) {
      sqlite3_bind_int(row, 1, key);
      if (sqlite3_step(row) == SQLITE_ROW)
        if (const auto* line = reinterpret_cast<const char*>(sqlite3_column_text(row, 0)))
          rows[name + " " + std::to_string(key)] = line;
      sqlite3_reset(row);
    }
    sqlite3_finalize(row);
  }
  sqlite3* handle_ = nullptr;
};

class Damage : public testing::TestWithParam<Kind> {
 protected:
  std::string good() {
    const std::u16string path = under.make(GetParam().layout, GetParam().rows());
    {
      // As it is after its first use, with whatever the engine keeps beside the tables.
      const auto database = under.engine().open(path, false);
      GetParam().use(*database);
    }
    std::ifstream file(std::filesystem::path(path), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  // A few bytes or some, anywhere, in the file's head or in the page that lists the tables.
  std::string damaged(std::string bytes) {
    constexpr unsigned most[] = {2, 20, 300};
    const std::size_t ranges[] = {bytes.size(), bytes.size(), 100, 4096};
    const std::size_t range = ranges[random() % std::size(ranges)];
    for (unsigned i = 1 + random() % most[random() % std::size(most)]; i > 0; --i)
      bytes[random() % range] = static_cast<char>(random());
    if (random() % 20 == 0) bytes.resize(random() % bytes.size());
    return bytes;
  }

  std::u16string lay(const std::string& bytes) {
    for (const char* name : {"copy", "copy-wal", "copy-shm", "copy-journal"})
      std::filesystem::remove(under.folder() / name);
    std::ofstream(under.folder() / "copy", std::ios::binary) << bytes;
    return (under.folder() / "copy").u16string();
  }

  EmbeddedUnderTest under;
  std::mt19937 random{11};
};

TEST_P(Damage, ACopyGivesAnErrorOrAnAnswerAndLosesNothingMore) {
  const std::string whole = good();
  ASSERT_EQ(Readable(lay(whole), GetParam(), 250).rows.size(), GetParam().untouched);
  int refused = 0, used = 0, worse = 0;
  const int rounds = wantedRounds();
  for (int round = 0; round < rounds; ++round) {
    const std::u16string copy = lay(damaged(whole));
    const Readable before(copy, GetParam(), 250);
    const int error = numberOfError([&] {
      const auto database = under.engine().open(copy, random() % 4 == 0);
      GetParam().use(*database);
    });
    ++(error != 0 ? refused : used);
    const Readable after(copy, GetParam(), 250);
    for (const auto& [key, line] : before.rows) {
      const auto found = after.rows.find(key);
      if (found != after.rows.end() && found->second == line) continue;
      ++worse;
      ADD_FAILURE() << "round " << round << " lost " << key << ": " << line.substr(0, 80) << " -> "
                    << (found == after.rows.end() ? "nothing" : found->second.substr(0, 80));
      break;
    }
  }
  std::printf("%s: %d damaged copies, %d refused, %d used, %d worse\n", GetParam().name, rounds, refused,
              used, worse);
}

std::uint32_t numberAt(const std::string& bytes, std::size_t place) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < 4; ++i) value = value << 8 | static_cast<unsigned char>(bytes[place + i]);
  return value;
}

// A list of free pages that names a page in use: whoever took it for free would write over its rows.
TEST(DamagedList, OfFreePagesLosesNoRow) {
  constexpr std::size_t pageSize = 4096;
  EmbeddedUnderTest under;
  const std::u16string path = under.make(Layout::faults, faultRows());
  {
    const auto database = under.engine().open(path, false);
    useFaults(*database);
  }
  std::ifstream in(std::filesystem::path(path), std::ios::binary);
  const std::string whole{std::istreambuf_iterator<char>(in), {}};
  const std::size_t trunk = (numberAt(whole, 32) - 1) * pageSize;
  const std::uint32_t entries = numberAt(whole, trunk + 4);
  ASSERT_GT(entries, 3U);
  ASSERT_GT(whole.size(), 50 * pageSize);
  for (std::size_t page = 2; page <= whole.size() / pageSize; ++page) {
    std::string bytes = whole;
    // The entries that are taken first stand at the end.
    bytes.replace(trunk + 8 + (entries - 1 - page % 3) * 4, 4, {'\0', '\0', '\0', static_cast<char>(page)});
    const auto copy = (under.folder() / ("list" + std::to_string(page)).c_str()).u16string();
    std::ofstream(std::filesystem::path(copy), std::ios::binary) << bytes;
    const Readable before(copy, kinds[0], 250);
    numberOfError([&] {
      const auto database = under.engine().open(copy, false);
      useFaults(*database);
    });
    const Readable after(copy, kinds[0], 250);
    for (const auto& [key, line] : before.rows) {
      const auto found = after.rows.find(key);
      EXPECT_TRUE(found != after.rows.end() && found->second == line) << "page " << page << " lost " << key;
    }
  }
}

TEST(DamagedEntry, OfTheIndexTakesNoFaultOfAnotherExchangeAlong) {
  EmbeddedUnderTest under;
  const std::u16string path = under.make(Layout::faults);
  const auto database = under.engine().open(path, false);
  for (const std::int16_t id : {1, 2, 2}) addFault(*database, {id});
  sqlite3* raw = nullptr;
  sqlite3_open(text::toUtf8(path).c_str(), &raw);
  ASSERT_EQ(
      sqlite3_exec(raw, "UPDATE VordaneFaultIndex SET ID = 2 WHERE Count = 1", nullptr, nullptr, nullptr),
      SQLITE_OK);
  sqlite3_close(raw);
  database->execute(u"DELETE FROM FaultDisplay WHERE ID = 2");
  EXPECT_EQ(database::column(*database, u"Select * from FaultDisplay", u"Count"),
            (std::vector<std::string>{"1"}));
}

INSTANTIATE_TEST_SUITE_P(Each, Damage, testing::ValuesIn(kinds), [](const auto& run) {
  std::string name = run.param.name;
  std::erase(name, '.');
  return name;
});

}  // namespace
}  // namespace vordane::sqlite
