// The embedded engine knows a table by its description alone: one that no program of this house has is served
// as well.
#include "database/fault_index.h"

namespace vordane::sqlite {
namespace {

using enum database::ColumnType;

constexpr database::ColumnDefinition passages[] = {
    {u"Words", text}, {u"Seen", text}, {u"Door", shortInteger}, {u"Number", autoNumber},
    {u"Way", text},   {u"Who", text},  {u"Badge", text}};
constexpr database::TableDefinition tables[] = {{u"Passages", passages}};
constexpr database::EventTable events{u"Passages", u"Number", u"Door", u"Seen", {u"Who", u"Badge", u"Way"},
                                      u"Words"};
constexpr std::u16string_view ofDoor = u"select * from Passages where Door = {}";
constexpr database::StatementPattern same{
    u"select * from Passages where Words = '{}' and Seen = '{}' and Who = '{}' and Badge = '{}' and Way = "
    u"'{}' "
    u"and Door = {}"};
constexpr database::StatementPattern byTime{ofDoor, u" order by Seen desc, Number desc"};
constexpr database::StatementPattern byBadge{ofDoor, u" order by Badge, Who, Seen, Number, Way"};
constexpr database::StatementPattern byWords{ofDoor,
                                             u" order by Words desc, Way desc, Seen desc, Number desc"};
constexpr database::StatementPattern mixed{ofDoor, u" order by Badge, Seen desc, Number"};
constexpr database::StatementPattern remove{u"delete from Passages where Door = {}"};
constexpr database::StatementPattern statements[] = {same, byTime, byBadge, byWords, mixed, remove};
constexpr database::Description doors[] = {{tables, statements, &events}};

struct Passage {
  std::int16_t door;
  std::u16string words, seen, who, badge, way;
};
// Numbers 1 to 5.
const Passage made[] = {{1, u"b", u"2026-02", u"Ann", u"7", u"in"},
                        {1, u"a", u"2026-03", u"Bob", u"5", u"out"},
                        {2, u"c", u"2026-04", u"Ann", u"7", u"in"},
                        {1, u"b", u"2026-01", u"Ann", u"5", u"out"},
                        {1, u"b", u"2026-01", u"Cid", u"7", u"in"}};

class Described : public testing::Test {
 protected:
  Described() {
    OtherTool(path_).run(
        "CREATE TABLE Passages (Words TEXT, Seen TEXT, Door INTEGER, Number INTEGER PRIMARY KEY "
        "AUTOINCREMENT, "
        "Way TEXT, Who TEXT, Badge TEXT)");
    database_ = engine_->open(path_, false);
    const auto rows = database_->openRecordset(u"select * from Passages");
    for (const Passage& passage : made) {
      rows->addNew();
      rows->set(u"Door", passage.door);
      rows->set(u"Words", passage.words);
      rows->set(u"Seen", passage.seen);
      rows->set(u"Who", passage.who);
      rows->set(u"Badge", passage.badge);
      rows->set(u"Way", passage.way);
      rows->update();
    }
  }

  std::string numbers(const database::StatementPattern& statement, std::u16string_view door) {
    const std::u16string_view number[] = {u"Number"};
    const auto rows = database_->openRowList(statement.with({door}), number);
    std::string all;
    std::vector<Value> values;
    for (std::size_t i = 0; i < rows->size(); ++i)
      if (rows->fetch(i, values)) all += shown(values[0]) + ' ';
    return all;
  }
  std::int32_t stored(const Passage& passage) {
    const auto door = text::fromUtf8(std::to_string(passage.door));
    return database_
        ->openRecordset(
            same.with({passage.words, passage.seen, passage.who, passage.badge, passage.way, door}))
        ->recordCount();
  }

  TemporaryFolder folder_;
  std::u16string path_ = (folder_ / "doors").u16string();
  std::unique_ptr<database::Engine> engine_ = makeEngine(doors);
  std::unique_ptr<database::Database> database_;
};

TEST_F(Described, ATableOfEventsHasItsIndexWhateverItsName) {
  EXPECT_EQ(OtherTool(path_).run("SELECT count(*) FROM VordaneFaultIndex"), "5\n");
  EXPECT_EQ(OtherTool(path_).run("SELECT tbl_name FROM sqlite_schema WHERE name = 'VordaneFaultInserted'"),
            "Passages\n");
}

TEST_F(Described, TheOrdersAreThoseOfTheStatements) {
  EXPECT_EQ(numbers(byTime, u"1"), "2 1 5 4 ");
  EXPECT_EQ(numbers(byBadge, u"1"), "4 2 1 5 ");
  EXPECT_EQ(numbers(byWords, u"1"), "4 1 5 2 ");
  EXPECT_EQ(numbers(mixed, u"1"), "2 4 1 5 ") << "two directions are left to the table";
  EXPECT_EQ(numbers(byTime, u"2"), "3 ");
}

TEST_F(Described, TheSameRowIsFoundWhateverTheOrderOfItsConditions) {
  for (const Passage& passage : made) EXPECT_EQ(stored(passage), 1);
  for (int changed = 0; changed < 6; ++changed) {
    Passage other = made[0];
    if (changed == 0) other.door = 2;
    std::u16string* const texts[] = {&other.words, &other.seen, &other.who, &other.badge, &other.way};
    if (changed > 0) *texts[changed - 1] = u"other";
    EXPECT_EQ(stored(other), 0) << changed;
  }
}

TEST_F(Described, AnOwnersRowsGoWithTheirEntries) {
  database_->execute(remove.with({u"1"}));
  EXPECT_EQ(numbers(byTime, u"1"), "");
  EXPECT_EQ(numbers(byTime, u"2"), "3 ");
  EXPECT_EQ(OtherTool(path_).run("SELECT Count FROM VordaneFaultIndex"), "3\n");
}

TEST_F(Described, WhatIsNotDescribedDoesNotRun) {
  EXPECT_EQ(
      database::numberOfError([&] { database_->openRecordset(u"select * from Passages where Who = 'Ann'"); }),
      3075);
  EXPECT_EQ(database::numberOfError([&] { database_->execute(store::statement::deleteFaults.with({u"1"})); }),
            3075);
}

}  // namespace
}  // namespace vordane::sqlite
