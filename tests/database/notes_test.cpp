// Notes to faults: kept beside them by the embedded engine, gone with them, and nothing to the documented
// tables.
#include "platform/notes.h"
#include "database/fault_index.h"

namespace vordane::sqlite {
namespace {

using database::NoNotes;
using database::Note;
using database::noteLine;
using Put = database::Notes::Put;

const Note none;
const Note cable{u"north\\anna", u"2026/11/21 08:15", u"cable to be replaced on Monday"};
const Note door{u"boris", u"2026/11/22 09:00", u"ДВЕРЬ open"};

class NotesTest : public FaultIndexTest {
 protected:
  static void addThree(database::Database& database) {
    database::addExchange(database, u"PBX-1");
    for (const std::int16_t id : {1, 1, 2})
      addFault(database, {id, u"01", u"MJ", u"MP", u"2026/11/20 10:00"});
  }
  static std::unique_ptr<database::RowList> listed(database::Database& database,
                                                   const char16_t* owner = u"1") {
    return database.openRowList(
        u"SELECT * FROM FaultDisplay WHERE ID = " + std::u16string(owner) + std::u16string(clauses[2][0]),
        allColumns);
  }
  static std::vector<std::uint32_t> noted(database::RowList& rows) {
    std::vector<std::uint32_t> all, chosen;
    for (std::size_t i = 0; i < rows.size(); ++i) all.push_back(static_cast<std::uint32_t>(i));
    rows.chooseNoted(all, chosen);
    return chosen;
  }
  static std::vector<std::uint32_t> holding(database::RowList& rows, std::u16string_view needle) {
    std::vector<std::uint32_t> all, chosen;
    for (std::size_t i = 0; i < rows.size(); ++i) all.push_back(static_cast<std::uint32_t>(i));
    rows.choose(needle, all, chosen);
    return chosen;
  }
  std::string notesStored() { return OtherTool(path_).run("SELECT Count || ' ' || Text FROM VordaneNotes"); }
};

using Places = std::vector<std::uint32_t>;

TEST_F(NotesTest, ANoteIsKeptReplacedAndTakenAway) {
  const auto database = open();
  addThree(*database);
  const auto rows = listed(*database);
  database::Notes& notes = *rows->notes();
  EXPECT_EQ(notes.of(2), std::nullopt);
  EXPECT_EQ(notes.put(2, none, cable), Put::kept);
  EXPECT_EQ(notes.of(2), cable);
  EXPECT_EQ(notes.of(1), std::nullopt);
  EXPECT_EQ(notes.put(2, cable, door), Put::kept);
  EXPECT_EQ(listed(*open())->notes()->of(2), door) << "another process reads it";
  EXPECT_EQ(notes.put(2, door, none), Put::kept);
  EXPECT_EQ(notes.of(2), std::nullopt);
  EXPECT_EQ(notesStored(), "");
}

TEST_F(NotesTest, AFileWithoutNotesHoldsNothingForThem) {
  const auto database = open();
  addThree(*database);
  const auto rows = listed(*database);
  EXPECT_EQ(rows->notes()->of(1), std::nullopt);
  EXPECT_EQ(noted(*rows), Places{});
  EXPECT_EQ(rows->notes()->put(1, none, none), Put::kept);
  EXPECT_EQ(OtherTool(path_).run("SELECT name FROM sqlite_schema WHERE name LIKE 'VordaneNote%'"), "");
}

TEST_F(NotesTest, WhatSomebodyElseHasWrittenMeanwhileIsNotOverwritten) {
  const auto database = open(), besides = open();
  addThree(*database);
  const auto mine = listed(*database), theirs = listed(*besides);
  EXPECT_EQ(theirs->notes()->put(1, none, door), Put::kept);
  EXPECT_EQ(mine->notes()->put(1, none, cable), Put::changed);
  EXPECT_EQ(mine->notes()->of(1), door);
  EXPECT_EQ(mine->notes()->put(1, door, cable), Put::kept);
  EXPECT_EQ(theirs->notes()->put(1, door, none), Put::changed);
  EXPECT_EQ(theirs->notes()->of(1), cable);
}

TEST_F(NotesTest, AFaultThatIsGoneTakesNoNote) {
  const auto database = open();
  addThree(*database);
  const auto rows = listed(*database);
  ASSERT_EQ(OtherTool(path_).run("DELETE FROM FaultDisplay WHERE Count = 2"), "");
  EXPECT_EQ(rows->notes()->put(2, none, cable), Put::faultGone);
  EXPECT_EQ(rows->notes()->put(77, none, cable), Put::faultGone);
  EXPECT_EQ(rows->notes()->put(1, none, cable), Put::kept) << "it goes on with the same list";
}

TEST_F(NotesTest, NotesGoWithTheFaultsOfTheirExchange) {
  const auto database = open();
  addThree(*database);
  database::Notes& notes = *listed(*database)->notes();
  for (const std::int64_t fault : {1, 2, 3}) ASSERT_EQ(notes.put(fault, none, cable), Put::kept);
  database->execute(u"DELETE FROM FaultDisplay WHERE ID = 1");
  EXPECT_EQ(notesStored(), "3 cable to be replaced on Monday\n");
  EXPECT_EQ(listed(*database, u"2")->notes()->of(3), cable);
  addFault(*database, {1, u"01", u"MJ", u"MP", u"2026/11/20 10:00"});
  EXPECT_EQ(noted(*listed(*database)), Places{}) << "a fault stored again is another one";
}

TEST_F(NotesTest, AnotherProgramThatRemovesAFaultRemovesItsNote) {
  const auto database = open();
  addThree(*database);
  ASSERT_EQ(listed(*database)->notes()->put(1, none, cable), Put::kept);
  ASSERT_EQ(listed(*database)->notes()->put(2, none, door), Put::kept);
  ASSERT_EQ(OtherTool(path_).run("DELETE FROM FaultDisplay WHERE Count = 1"), "");
  EXPECT_EQ(notesStored(), "2 ДВЕРЬ open\n");
}

// Triggers can be switched off, and a fault can be given to another exchange.
TEST_F(NotesTest, ANoteCountsOnlyForTheFaultItWasWrittenTo) {
  const auto database = open();
  addThree(*database);
  ASSERT_EQ(listed(*database)->notes()->put(1, none, cable), Put::kept);
  OtherTool other(path_);
  ASSERT_EQ(other.run("UPDATE FaultDisplay SET ID = 2 WHERE Count = 1"), "");
  EXPECT_EQ(listed(*database, u"2")->notes()->of(1), std::nullopt);
  EXPECT_EQ(noted(*listed(*database, u"2")), Places{});
  ASSERT_EQ(other.run("UPDATE FaultDisplay SET ID = 1 WHERE Count = 1"), "");
  EXPECT_EQ(listed(*database)->notes()->of(1), cable);
  ASSERT_EQ(other.run("DROP TRIGGER VordaneNoteGone"), "");
  ASSERT_EQ(other.run("DELETE FROM FaultDisplay WHERE Count = 1"), "");
  EXPECT_EQ(listed(*database)->notes()->of(1), std::nullopt);
  database->execute(u"DELETE FROM FaultDisplay WHERE ID = 2");
  EXPECT_EQ(notesStored(), "") << "and what was left goes with the next removal";
}

TEST_F(NotesTest, AYearThatIsWidenedLaterLeavesTheNote) {
  const auto database = open();
  addThree(*database);
  ASSERT_EQ(listed(*database)->notes()->put(1, none, cable), Put::kept);
  const auto rows = database->openRecordset(u"Select * from FaultDisplay");
  rows->edit();
  rows->set(u"Date", std::u16string(u"1926/11/20 10:00"));
  rows->update();
  EXPECT_EQ(listed(*database)->notes()->of(1), cable);
}

TEST_F(NotesTest, ATextIsFoundInNotesToo) {
  const auto database = open();
  addThree(*database);
  const auto rows = listed(*database);
  ASSERT_EQ(rows->notes()->put(2, none, door), Put::kept);
  EXPECT_EQ(holding(*rows, u"дверь"), Places{1});
  EXPECT_EQ(holding(*rows, u"01"), (Places{0, 1}));
  EXPECT_EQ(holding(*rows, u"boris"), Places{}) << "who wrote it is not what was written";
  EXPECT_EQ(rows->find(u"дверь open", 0, {}), 1U);
  EXPECT_EQ(rows->find(u"дверь", 1, {}, database::Walk::backwards), 1U);
  EXPECT_EQ(rows->find(u"nowhere", 0, {}), std::nullopt);
  EXPECT_EQ(noted(*rows), Places{1});
}

// Lists by other orders have other places, and keys beyond 32 bits another kind of list.
TEST_F(NotesTest, ItIsTheFaultThatHasTheNoteWhateverTheOrder) {
  const auto database = open();
  addThree(*database);
  ASSERT_EQ(OtherTool(path_).run("INSERT INTO FaultDisplay(ID, Fault, Alarm, CPU, Date, Count, Description) "
                                 "VALUES (1, '01', 'MJ', 'MP', '2026/11/21 10:00', 9000000000, 'x')"),
            "");
  ASSERT_EQ(listed(*database)->notes()->put(9'000'000'000, none, cable), Put::kept);
  for (const auto& [up, down] : clauses) {
    const auto rows =
        database->openRowList(u"SELECT * FROM FaultDisplay WHERE ID = 1" + std::u16string(down), allColumns);
    EXPECT_EQ(noted(*rows), Places{0}) << "the newest";
    EXPECT_EQ(holding(*rows, u"monday"), Places{0});
  }
}

// A long list is shown before all of it is read.
TEST_F(NotesTest, FaultsThatTheListHasNotReadYetHaveTheirNotesToo) {
  Options options;
  options.rowsReadAtOnce = 2;
  const auto engine = makeEngine(startup::databases, options);
  const auto database = engine->open(path_, false);
  database::addExchange(*database, u"PBX-1");
  for (char16_t minute = u'0'; minute <= u'9'; ++minute)
    addFault(*database, {1, u"01", u"MJ", u"MP", std::u16string(u"2026/11/20 10:0") + minute});
  const auto newestFirst = [&] {
    return database->openRowList(u"SELECT * FROM FaultDisplay WHERE ID = 1" + std::u16string(clauses[2][1]),
                                 allColumns);
  };
  {
    const auto other = open();  // who writes has read the whole list
    ASSERT_EQ(listed(*other)->notes()->put(1, none, cable), Put::kept);
    ASSERT_EQ(listed(*other)->notes()->put(10, none, door), Put::kept);
  }
  const auto unread = newestFirst();
  ASSERT_FALSE(unread->isRead());
  EXPECT_EQ(noted(*unread), (Places{0, 9}));
  EXPECT_EQ(holding(*newestFirst(), u"monday"), Places{9});
}

TEST_F(NotesTest, ATextThatIsNoLineOrTooLongIsNotKept) {
  const auto database = open();
  addThree(*database);
  database::Notes& notes = *listed(*database)->notes();
  for (const std::u16string& text :
       {std::u16string(database::longestNote + 1, u'x'), std::u16string(u"a\r\nb"), std::u16string(u" a"),
        std::u16string(u"a\tb"), std::u16string(u"a\u202Eb"), std::u16string(u"a\u2028b"),
        std::u16string(u"a\0b", 3)})
    EXPECT_EQ(notes.put(1, none, {u"anna", u"", text}), Put::notOneLine);
  EXPECT_EQ(notes.of(1), std::nullopt);
  const Note longest{u"anna", u"2026/11/21 08:15", std::u16string(database::longestNote, u'日')};
  EXPECT_EQ(notes.put(1, none, longest), Put::kept);
  EXPECT_EQ(notes.of(1), longest);
}

TEST_F(NotesTest, WhatAPersonWritesBecomesOneLine) {
  EXPECT_EQ(noteLine(u"  one\r\n\ttwo \u0007\u0085three\u202E  "), u"one   two   three");
  EXPECT_EQ(noteLine(u" \r\n "), u"");
  EXPECT_EQ(noteLine(u"Кабель 障害"), u"Кабель 障害");
  EXPECT_TRUE(database::isSteered(u"a\nb"));
  EXPECT_FALSE(database::isSteered(u" Кабель 障害 "));
}

TEST_F(NotesTest, WhatAnotherProgramHasWrittenIsShownAsALineOfANote) {
  const auto database = open();
  addThree(*database);
  ASSERT_EQ(listed(*database)->notes()->put(1, none, cable), Put::kept);
  OtherTool other(path_);
  ASSERT_EQ(other.run("UPDATE VordaneNotes SET Author = x'00', Moment = 7, Text = 'a' || char(10, 27) || "
                      "hex(zeroblob(100000))"),
            "");
  const Note read = listed(*database)->notes()->of(1).value_or(none);
  EXPECT_EQ(read.text, u"a  " + std::u16string(database::longestNote - 3, u'0'));
  EXPECT_EQ(read.moment, u"7");
  EXPECT_EQ(listed(*database)->notes()->put(1, read, door), Put::kept) << "and can be replaced";
  EXPECT_EQ(listed(*database)->notes()->of(1), door);
}

TEST_F(NotesTest, AFileThatIsOnlyReadShowsItsNotesAndTakesNone) {
  {
    const auto database = open();
    addThree(*database);
    ASSERT_EQ(listed(*database)->notes()->put(1, none, cable), Put::kept);
  }
  const auto read = open(true);
  const auto rows = listed(*read);
  EXPECT_EQ(rows->notes()->of(1), cable);
  EXPECT_EQ(database::numberOfError([&] { rows->notes()->put(1, cable, door); }), 3027);
  EXPECT_EQ(rows->notes()->of(1), cable);
}

TEST_F(NotesTest, AFileThatOthersHoldTakesTheNoteWhenItIsFree) {
  Options options;
  options.lockWaitMilliseconds = 20;
  const auto engine = makeEngine(startup::databases, options);
  const auto database = engine->open(path_, false);
  addThree(*database);
  const auto rows = listed(*database);
  OtherTool other(path_);
  ASSERT_EQ(other.run("BEGIN IMMEDIATE"), "");
  EXPECT_EQ(database::numberOfError([&] { rows->notes()->put(1, none, cable); }), 3260);
  EXPECT_EQ(rows->notes()->of(1), std::nullopt);
  ASSERT_EQ(other.run("COMMIT"), "");
  EXPECT_EQ(rows->notes()->put(1, none, cable), Put::kept);
  EXPECT_EQ(rows->notes()->of(1), cable);
}

TEST_F(NotesTest, AFileInWhichFaultsAreDeclaredOtherwiseIsOfferedNone) {
  OtherTool other(path_);
  ASSERT_EQ(other.run("ALTER TABLE FaultDisplay RENAME TO Former"), "");
  ASSERT_EQ(other.run("CREATE TABLE FaultDisplay (ID INTEGER, Fault TEXT, Alarm TEXT, CPU TEXT, Date TEXT, "
                      "Count INTEGER PRIMARY KEY, Description TEXT)"),
            "")
      << "its numbers may be given twice";
  const auto database = open();
  addFault(*database, {});
  const auto rows = listed(*database);
  EXPECT_EQ(rows->notes(), nullptr);
  EXPECT_EQ(rows->noNotes(), NoNotes::foreignTable);
  EXPECT_EQ(noted(*rows), Places{});
}

TEST_F(NotesTest, SomethingElseUnderTheNameIsLeftAlone) {
  OtherTool other(path_);
  ASSERT_EQ(other.run("CREATE TABLE vordanenotes (Count INTEGER PRIMARY KEY, Text TEXT)"), "");
  ASSERT_EQ(other.run("INSERT INTO vordanenotes VALUES (1, 'theirs')"), "");
  const auto database = open();
  addThree(*database);
  const auto rows = listed(*database);
  EXPECT_EQ(rows->notes(), nullptr);
  EXPECT_EQ(noted(*rows), Places{});
  EXPECT_EQ(holding(*rows, u"theirs"), Places{});
  database->execute(u"DELETE FROM FaultDisplay WHERE ID = 1");
  EXPECT_EQ(other.run("SELECT Text FROM vordanenotes"), "theirs\n");
}

TEST_F(NotesTest, AnIndexOfAnEarlierVersionAndNotesAreNoMatterToEachOther) {
  {
    const auto database = open();
    addThree(*database);
    ASSERT_EQ(listed(*database)->notes()->put(1, none, cable), Put::kept);
  }
  OtherTool other(path_);
  ASSERT_EQ(other.run("DROP TABLE VordaneFaultIndex"), "");
  ASSERT_EQ(other.run("UPDATE VordaneIndexState SET Version = 1"), "");
  EXPECT_EQ(listed(*open(true))->notes()->of(1), cable) << "also where no index can be made";
  const auto database = open();
  EXPECT_EQ(listed(*database)->notes()->of(1), cable);
  EXPECT_EQ(listed(*database)->notes()->put(2, none, door), Put::kept);
  EXPECT_EQ(isStored(*database, {1, u"01", u"MJ", u"MP", u"2026/11/20 10:00"}), true);
}

// Rows that are listed stay, and so does what the index is known to hold: a note is no change of the faults.
TEST_F(NotesTest, ListsAndTheirOrderOutliveANote) {
  const auto database = open(), besides = open();
  addThree(*database);
  const auto rows = listed(*database);
  ASSERT_EQ(rows->notes()->put(1, none, cable), Put::kept);
  ASSERT_EQ(listed(*besides)->notes()->put(2, none, door), Put::kept);
  std::vector<Value> values;
  for (const std::size_t place : {0U, 1U}) EXPECT_TRUE(rows->fetch(place, values)) << place;
  EXPECT_EQ(noted(*rows), (Places{0, 1})) << "the one of another process too";
  EXPECT_EQ(newestDate(*database), "2026/11/20 10:00");
  EXPECT_EQ(OtherTool(path_).run("SELECT Stale FROM VordaneIndexState"), "0\n");
  expectTheGridAsTheStatement(*database, 2);
}

TEST_F(NotesTest, TheDocumentedTablesStayAsTheyWereByteForByte) {
  const auto dump = [&] {
    return OtherTool(path_).run(
        "SELECT sql FROM sqlite_schema WHERE name IN ('PBXList', 'FaultDisplay') UNION ALL "
        "SELECT quote(ID) || quote(PBXName) || quote(TimeStamp) || quote(MJ) || quote(MN) FROM PBXList UNION "
        "ALL "
        "SELECT quote(ID) || quote(Fault) || quote(Alarm) || quote(CPU) || quote(Date) || quote(Count) || "
        "quote(Description) FROM FaultDisplay UNION ALL SELECT name || seq FROM sqlite_sequence");
  };
  const auto database = open();
  addThree(*database);
  const std::string before = dump();
  const auto rows = listed(*database);
  ASSERT_EQ(rows->notes()->put(1, none, cable), Put::kept);
  ASSERT_EQ(rows->notes()->put(1, cable, door), Put::kept);
  ASSERT_EQ(rows->notes()->put(2, none, door), Put::kept);
  ASSERT_EQ(rows->notes()->put(2, door, none), Put::kept);
  EXPECT_EQ(dump(), before);
  EXPECT_EQ(OtherTool(path_).run("PRAGMA integrity_check"), "ok\n");
}

TEST_F(NotesTest, AFileInUtf8RefusesWhatItCannotHold) {
  const std::u16string path = (under_.folder() / "utf8").u16string();
  {
    OtherTool other(path);
    ASSERT_EQ(
        other.run("CREATE TABLE FaultDisplay (ID INTEGER, Fault TEXT, Alarm TEXT, CPU TEXT, Date TEXT, Count "
                  "INTEGER PRIMARY KEY AUTOINCREMENT, Description TEXT)"),
        "");
  }
  const auto database = under_.engine().open(path, false);
  addFault(*database, {});
  const auto rows = listed(*database);
  const Note lone{u"anna", u"", std::u16string(1, char16_t(0xD800))};
  EXPECT_EQ(database::numberOfError([&] { rows->notes()->put(1, none, lone); }), 3421);
  EXPECT_EQ(rows->notes()->put(1, none, door), Put::kept);
  EXPECT_EQ(rows->notes()->of(1), door);
}

}  // namespace
}  // namespace vordane::sqlite
