// Files that somebody has prepared: nothing but this system's own steps happens when they are opened and
// written to.
#include <sqlite3.h>

#include <fstream>
#include <iterator>

#include "database/contract.h"
#include "database/embedded.h"
#include "platform/sqlite/foreign_files.h"
#include "text/utf8.h"

namespace vordane::sqlite {
namespace {

using database::addExchange;
using database::addFault;
using database::Layout;
using database::numberOfError;

class Attack : public testing::Test {
 protected:
  void run(const std::string& sql) {
    sqlite3* handle = nullptr;
    sqlite3_open(text::toUtf8(path).c_str(), &handle);
    char* error = nullptr;
    EXPECT_EQ(sqlite3_exec(handle, sql.c_str(), nullptr, nullptr, &error), SQLITE_OK) << error;
    sqlite3_free(error);
    sqlite3_close(handle);
  }
  std::string bytesOf(const std::u16string& file) {
    std::ifstream in(std::filesystem::path(file), std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }
  void write(const std::u16string& file, const std::string& bytes) {
    std::ofstream(std::filesystem::path(file), std::ios::binary) << bytes;
  }
  int openAndStore() {
    return numberOfError([&] {
      const auto database = under.engine().open(path, false);
      addExchange(*database, u"B");
      addFault(*database, {1});
    });
  }

  EmbeddedUnderTest under;
  std::u16string path = under.make(Layout::faults);
};

std::string bigEndian(std::uint32_t number) {
  return {static_cast<char>(number >> 24), static_cast<char>(number >> 16), static_cast<char>(number >> 8),
          static_cast<char>(number)};
}

// What stands at the end of a journal that names a further file.
std::string namingJournalEnd(const std::string& name) {
  std::uint32_t sum = 0;
  for (const char c : name) sum += static_cast<std::uint32_t>(static_cast<signed char>(c));
  return bigEndian(0x40000000 / 4096 + 1) + name + bigEndian(static_cast<std::uint32_t>(name.size())) +
         bigEndian(sum) + "\xd9\xd5\x05\xf9\x20\xa1\x63\xd7";
}

// The journal of a transaction that was cut off, as another program leaves it, and the file in its middle.
TEST_F(Attack, AJournalThatNamesAnotherFileDoesNotDeleteIt) {
  run("PRAGMA journal_mode = DELETE; INSERT INTO PBXList(PBXName) VALUES ('A')");
  const std::u16string victim = (under.folder() / "victim").u16string(), journal = path + u"-journal";
  const std::string name = text::toUtf8(victim);
  sqlite3* handle = nullptr;
  sqlite3_open(text::toUtf8(path).c_str(), &handle);
  sqlite3_exec(handle,
               "PRAGMA cache_size = 1; PRAGMA cache_spill = 1; BEGIN; UPDATE PBXList SET PBXName = 'C'",
               nullptr, nullptr, nullptr);
  const std::string hot = bytesOf(journal), whole = bytesOf(path);
  sqlite3_exec(handle, "ROLLBACK", nullptr, nullptr, nullptr);
  sqlite3_close(handle);
  ASSERT_GT(hot.size(), 512U);
  for (const std::string& beginning : {hot, hot.substr(0, 28), std::string(1, 'x')}) {
    write(path, whole);
    write(victim, "what matters");
    write(journal, beginning + namingJournalEnd(name));
    EXPECT_EQ(openAndStore(), 3049);
    EXPECT_EQ(bytesOf(victim), "what matters");
    EXPECT_EQ(bytesOf(path), whole) << "and the database is as it was";
  }
  // One that names nothing is played back as ever.
  write(journal, hot);
  EXPECT_EQ(openAndStore(), 0);
  EXPECT_FALSE(std::filesystem::exists(std::filesystem::path(journal)));
}

TEST_F(Attack, NoExpressionOfTheFileRunsWhenARowIsStored) {
  const char* const hostile[] = {
      "CREATE TABLE x(a INTEGER, CHECK (length(hex(zeroblob(1000000))) > 0))",
      "CREATE TABLE x(a INTEGER cHeCk(a > 0))",
      "CREATE TABLE x(a TEXT DEFAULT 'quoted' CHECK(a > 0))",
      "CREATE TABLE x(a TEXT /* said */ CHECK(a > 0))",
      "CREATE TABLE x(a INTEGER, b AS (hex(a)))",
      "CREATE TABLE x(a INTEGER, b GENERATED ALWAYS AS (hex(a)) STORED)",
      "CREATE TABLE x(a INTEGER DEFAULT (random()))",
      "CREATE TABLE x(a INTEGER DEFAULT ('(' || hex(zeroblob(9))))",
      "CREATE INDEX x ON FaultDisplay(hex(Description))",
      "CREATE INDEX x ON FaultDisplay(Fault) WHERE length(Description) > 5",
      "DROP TABLE PBXList; CREATE TABLE PBXList(ID INTEGER PRIMARY KEY AUTOINCREMENT, PBXName TEXT CHECK "
      "(length(hex(zeroblob(100000000))) > 0), TimeStamp TEXT, MJ, MN)",
  };
  for (const char* sql : hostile) {
    path = under.make(Layout::faults);
    run(sql);
    EXPECT_EQ(openAndStore(), 3343) << sql;
    EXPECT_NO_THROW(under.engine().open(path, true)) << sql;
  }
}

TEST_F(Attack, WhatOnlyLooksLikeAnExpressionIsTaken) {
  run("CREATE TABLE x(a INTEGER DEFAULT 5, [check] TEXT DEFAULT 'check(this)', \"CHECK (it)\" TEXT, checked "
      "TEXT, "
      "recheck TEXT, b DATETIME DEFAULT CURRENT_TIMESTAMP /* CHECK (a) */, c REAL DEFAULT -1.5 -- CHECK "
      "(b)\n)");
  run("CREATE INDEX y ON FaultDisplay(Fault, Description DESC); CREATE UNIQUE INDEX z ON x(a)");
  EXPECT_EQ(openAndStore(), 0);
}

TEST_F(Attack, OfADescriptionOfManyMegabytesTheBeginningIsGivenAndTheOthersAreWhole) {
  addFault(*under.engine().open(path, false), {1});
  run("INSERT INTO FaultDisplay(ID, Fault, Alarm, CPU, Date, Description) VALUES (1, '01', 'MJ', 'MP', "
      "'2005', replace(hex(zeroblob(10000000)), '0', 'x'))");
  for (const bool readOnly : {false, true}) {
    const auto database = under.engine().open(path, readOnly);
    EXPECT_TRUE(database::isStored(*database, {1}));
    const auto rows = database->openRecordset(u"Select * from FaultDisplay");
    EXPECT_EQ(rows->get(u"Description"), database::Value(database::Fault{1}.description));
    rows->moveNext();
    EXPECT_EQ(rows->get(u"Description"), database::Value(std::u16string(65536, u'x') + u" [...]"));
    rows->moveNext();
    EXPECT_TRUE(rows->atEnd());
  }
}

// Such a value is a file of its size, so it is asked for the limit itself.
TEST(ForeignFile, NoValueIsLargerThan256Megabytes) {
  sqlite3* handle = nullptr;
  ASSERT_EQ(sqlite3_open(":memory:", &handle), SQLITE_OK);
  limitValues(handle);
  EXPECT_EQ(sqlite3_limit(handle, SQLITE_LIMIT_LENGTH, -1), 268'435'456);
  sqlite3_close(handle);
}

TEST_F(Attack, ATableOfVeryManyColumnsIsRefused) {
  std::string columns;
  for (int i = 0; i < 70; ++i) columns += ", c" + std::to_string(i);
  run("CREATE TABLE x(a INTEGER" + columns + ")");
  EXPECT_NE(openAndStore(), 0);
}

TEST_F(Attack, AColumnThatHidesTheRowsNumberIsRefused) {
  run("ALTER TABLE FaultDisplay ADD COLUMN rowid INTEGER");
  const auto database = under.engine().open(path, false);
  EXPECT_EQ(numberOfError([&] { database->openRecordset(u"Select * from FaultDisplay"); }), 3001);
}

}  // namespace
}  // namespace vordane::sqlite
