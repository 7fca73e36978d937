// Notes to faults in a store that several stations share.
#include "platform/notes.h"

#include <gmock/gmock.h>

#include "database/contract.h"
#include "odbc/server_store.h"
#include "text/utf8.h"

namespace vordane::odbc {
namespace {

using database::addFault;
using database::Layout;
using database::Note;
using Put = database::Notes::Put;
using Places = std::vector<std::uint32_t>;
using testing::Optional;

const Note none;
const Note cable{u"north\\anna", u"2026/11/21 08:15", u"cable to be replaced on Monday"};
const Note door{u"boris", u"2026/11/22 09:00", u"ДВЕРЬ open, '電話' \xD83D\xDE00"};

constexpr std::u16string_view allColumns[] = {u"Fault", u"Alarm", u"Date", u"CPU", u"Description", u"Count"};

class ServerNotes : public testing::Test {
 protected:
  ServerNotes() : path_(under_.make(Layout::faults)) {}
  std::unique_ptr<database::Database> open(bool readOnly = false) {
    return under_.engine().open(path_, readOnly);
  }
  static void addThree(database::Database& database) {
    database::addExchange(database, u"PBX-1");
    for (const std::int16_t id : {1, 1, 2})
      addFault(database, {id, u"01", u"MJ", u"MP", u"2026/11/20 10:00", u"Door open"});
  }
  static std::unique_ptr<database::RowList> listed(database::Database& database,
                                                   const std::u16string& owner = u"1") {
    return database.openRowList(u"SELECT * FROM FaultDisplay WHERE ID = " + owner +
                                    u" Order by [Date] Asc, [Count] Asc, [Fault] Asc, [Alarm] Asc, [CPU] "
                                    u"Asc, [Description] Asc",
                                allColumns);
  }
  static Places everyPlace(const database::RowList& rows) {
    Places all;
    for (std::uint32_t i = 0; i < rows.size(); ++i) all.push_back(i);
    return all;
  }
  static Places noted(database::RowList& rows) {
    Places chosen;
    rows.chooseNoted(everyPlace(rows), chosen);
    return chosen;
  }
  static Places holding(database::RowList& rows, std::u16string_view needle) {
    Places chosen;
    rows.choose(needle, everyPlace(rows), chosen);
    return chosen;
  }
  static void readRow(database::RowList& rows, std::size_t position) {
    std::vector<database::Value> row;
    ASSERT_TRUE(rows.fetch(position, row));
    ASSERT_EQ(row.size(), std::size(allColumns));
  }
  // As any other client reads them.
  std::string stored() {
    const auto rows = connectTo(under_.database())
                          ->query(
                              "select string_agg(\"Count\" || ' ' || \"ID\" || ' ' || \"Text\", ';' order by "
                              "\"Count\") from vordane.\"VordaneNotes\"");
    return text::toUtf8(rows.at(0).at(0).value_or(u""));
  }
  void run(const std::string& statement) { runOn(under_.database(), statement); }

  ServerUnderTest under_{{.lockWaitMilliseconds = 400}};
  std::u16string path_;
};

TEST_F(ServerNotes, AnotherStationReadsWhatOneHasWritten) {
  const auto station = open(), other = open();
  addThree(*station);
  const auto rows = listed(*station);
  ASSERT_NE(rows->notes(), nullptr);
  EXPECT_EQ(rows->notes()->of(2), std::nullopt);
  EXPECT_EQ(rows->notes()->put(2, none, door), Put::kept);
  EXPECT_THAT(rows->notes()->of(2), Optional(door));
  EXPECT_EQ(rows->notes()->of(1), std::nullopt);
  EXPECT_THAT(listed(*other)->notes()->of(2), Optional(door));
  EXPECT_EQ(stored(), "2 1 " + text::toUtf8(door.text));
  EXPECT_EQ(rows->notes()->put(2, door, cable), Put::kept);
  EXPECT_THAT(rows->notes()->of(2), Optional(cable));
  EXPECT_EQ(rows->notes()->put(2, cable, none), Put::kept);
  EXPECT_EQ(rows->notes()->of(2), std::nullopt);
  EXPECT_EQ(stored(), "");
}

// The rows of a screen bring their notes along.
TEST_F(ServerNotes, ARowThatIsThereHasItsNoteAlsoAfterItsWriting) {
  const auto station = open();
  addThree(*station);
  const auto rows = listed(*station);
  readRow(*rows, 0);
  EXPECT_EQ(rows->notes()->of(1), std::nullopt);
  EXPECT_EQ(rows->notes()->put(1, none, cable), Put::kept);
  EXPECT_THAT(rows->notes()->of(1), Optional(cable));
  readRow(*rows, 1);
  EXPECT_THAT(rows->notes()->of(1), Optional(cable));
  EXPECT_EQ(rows->notes()->of(2), std::nullopt);
  std::vector<database::Value> row;
  ASSERT_TRUE(rows->fetch(0, row));
  EXPECT_EQ(automation::toText(row[4]), u"Door open") << "the note is behind the columns";
}

TEST_F(ServerNotes, WhatAnotherStationHasWrittenIsSeenWhenTheRowsAreReadAnew) {
  const auto station = open(), other = open();
  addThree(*station);
  const auto mine = listed(*station);
  readRow(*mine, 0);
  EXPECT_EQ(mine->notes()->of(1), std::nullopt);
  ASSERT_EQ(listed(*other)->notes()->put(1, none, door), Put::kept);
  EXPECT_EQ(mine->notes()->of(1), std::nullopt) << "it came with the row";
  addFault(*station, {1, u"02", u"MN", u"MP", u"2026/11/21 10:00", u"Door shut"});
  EXPECT_THAT(mine->notes()->of(1), Optional(door)) << "whose rows may have changed meanwhile";
}

TEST_F(ServerNotes, WhatAnotherStationHasWrittenMeanwhileIsNotOverwritten) {
  const auto station = open(), other = open();
  addThree(*station);
  const auto mine = listed(*station), theirs = listed(*other);
  readRow(*mine, 0);
  EXPECT_EQ(theirs->notes()->put(1, none, door), Put::kept);
  EXPECT_EQ(mine->notes()->put(1, none, cable), Put::changed);
  EXPECT_THAT(mine->notes()->of(1), Optional(door)) << "what the window tells then";
  EXPECT_EQ(mine->notes()->put(1, door, cable), Put::kept);
  EXPECT_EQ(theirs->notes()->put(1, door, none), Put::changed);
  EXPECT_THAT(theirs->notes()->of(1), Optional(cable));
}

TEST_F(ServerNotes, AFaultThatIsGoneTakesNoNote) {
  const auto station = open();
  addThree(*station);
  const auto rows = listed(*station);
  readRow(*rows, 0);
  run("delete from vordane.\"FaultDisplay\" where \"Count\" = 2");
  EXPECT_EQ(rows->notes()->put(2, none, cable), Put::faultGone);
  EXPECT_EQ(rows->notes()->put(77, none, cable), Put::faultGone);
  EXPECT_EQ(rows->notes()->put(1, none, cable), Put::kept) << "it goes on with the same list";
  EXPECT_EQ(stored(), "1 1 cable to be replaced on Monday");
}

TEST_F(ServerNotes, TheyGoWithTheirFaultsWhoeverRemovesThem) {
  const auto station = open();
  addThree(*station);
  const auto rows = listed(*station);
  for (const std::int64_t fault : {1, 2, 3}) ASSERT_EQ(rows->notes()->put(fault, none, cable), Put::kept);
  run("delete from vordane.\"FaultDisplay\" where \"Count\" = 1");
  EXPECT_EQ(stored(), "2 1 cable to be replaced on Monday;3 2 cable to be replaced on Monday");
  station->execute(u"DELETE FROM FaultDisplay WHERE ID = 1");
  EXPECT_EQ(stored(), "3 2 cable to be replaced on Monday");
  run("truncate vordane.\"FaultDisplay\"");
  EXPECT_EQ(stored(), "");
}

TEST_F(ServerNotes, ANoteCountsOnlyForTheFaultItWasWrittenTo) {
  const auto station = open();
  addThree(*station);
  ASSERT_EQ(listed(*station)->notes()->put(1, none, cable), Put::kept);
  run("update vordane.\"FaultDisplay\" set \"ID\" = 2 where \"Count\" = 1");
  const auto rows = listed(*station, u"2");
  readRow(*rows, 0);
  EXPECT_EQ(rows->notes()->of(1), std::nullopt);
  EXPECT_EQ(listed(*station, u"2")->notes()->of(1), std::nullopt) << "nor where no row was read";
  EXPECT_EQ(noted(*rows), Places{});
  EXPECT_EQ(rows->notes()->put(1, none, door), Put::kept);
  EXPECT_EQ(stored(), "1 2 " + text::toUtf8(door.text));
}

TEST_F(ServerNotes, ATextIsFoundInThemToo) {
  const auto station = open();
  addThree(*station);
  const auto rows = listed(*station);
  ASSERT_EQ(rows->notes()->put(2, none, door), Put::kept);
  EXPECT_EQ(holding(*rows, u"дверь"), Places{1});
  EXPECT_EQ(holding(*rows, u"01"), (Places{0, 1}));
  EXPECT_EQ(holding(*rows, u"boris"), Places{}) << "who wrote it is not what was written";
  EXPECT_EQ(rows->find(u"дверь open", 0, {}), 1U);
  EXPECT_EQ(rows->find(u"дверь", 1, {}, database::Walk::backwards), 1U);
  EXPECT_EQ(rows->find(u"nowhere", 0, {}), std::nullopt);
  EXPECT_EQ(noted(*rows), Places{1});
}

// Whatever another client writes there, one line is shown.
TEST_F(ServerNotes, WhatIsNoLineIsShownAsOne) {
  const auto station = open();
  addThree(*station);
  run("insert into vordane.\"VordaneNotes\" values (1, 1, null, null, E' a\\r\\nb '), (2, 1, 'x', 'y', '  "
      "')");
  const auto rows = listed(*station);
  EXPECT_THAT(rows->notes()->of(1), Optional(Note{u"", u"", u"a  b"}));
  EXPECT_EQ(rows->notes()->of(2), std::nullopt);
  EXPECT_EQ(noted(*rows), Places{0});
  EXPECT_EQ(rows->notes()->put(1, {u"", u"", u"a  b"}, cable), Put::kept);
  EXPECT_EQ(rows->notes()->put(2, none, cable), Put::kept);
  EXPECT_EQ(noted(*rows), (Places{0, 1}));
}

TEST_F(ServerNotes, ATextThatIsNoLineOrCannotTravelIsNotKept) {
  const auto station = open();
  addThree(*station);
  const auto rows = listed(*station);
  database::Notes& notes = *rows->notes();
  for (const std::u16string& text :
       {std::u16string(database::longestNote + 1, u'x'), std::u16string(u"a\r\nb"), std::u16string(u" a"),
        std::u16string(u"a\0b", 3)})
    EXPECT_EQ(notes.put(1, none, {u"anna", u"", text}), Put::notOneLine);
  EXPECT_EQ(database::numberOfError([&] { notes.put(1, none, {u"anna", u"", u"\xD83D"}); }), 3421);
  const Note longest{u"anna", u"2026/11/21 08:15", std::u16string(database::longestNote, u'日')};
  EXPECT_EQ(notes.put(1, none, longest), Put::kept);
  EXPECT_THAT(notes.of(1), Optional(longest));
}

TEST_F(ServerNotes, WhoeverOnlyReadsWritesNone) {
  addThree(*open());
  const auto reader = open(true);
  EXPECT_EQ(database::numberOfError([&] { listed(*reader)->notes()->put(1, none, cable); }), 3027);
}

TEST_F(ServerNotes, AFaultThatAnotherStationHoldsTakesNoneUntilItLetsGo) {
  const auto station = open();
  addThree(*station);
  const auto rows = listed(*station);
  const auto other = connectTo(under_.database());
  other->begin();
  other->query("select 1 from vordane.\"FaultDisplay\" where \"Count\" = 1 for update");
  EXPECT_EQ(database::numberOfError([&] { rows->notes()->put(1, none, cable); }), 3260);
  other->rollback();
  EXPECT_EQ(rows->notes()->put(1, none, cable), Put::kept);
}

TEST_F(ServerNotes, OneThatFailsLeavesWhatWasThere) {
  const auto station = open();
  addThree(*station);
  const auto rows = listed(*station);
  ASSERT_EQ(rows->notes()->put(1, none, cable), Put::kept);
  run("alter table vordane.\"VordaneNotes\" add check (\"Author\" <> 'boris')");
  EXPECT_NE(database::numberOfError([&] { rows->notes()->put(1, cable, door); }), 0);
  EXPECT_THAT(rows->notes()->of(1), Optional(cable));
  EXPECT_EQ(stored(), "1 1 cable to be replaced on Monday");
}

TEST_F(ServerNotes, AStoreThatWasMadeWithoutThemSaysSo) {
  run("drop trigger vordane_note_removed on vordane.\"FaultDisplay\"");
  run("drop trigger vordane_note_emptied on vordane.\"FaultDisplay\"");
  run("drop table vordane.\"VordaneNotes\"");
  const auto station = open();
  addThree(*station);
  const auto rows = listed(*station);
  EXPECT_EQ(rows->notes(), nullptr);
  EXPECT_EQ(rows->noNotes(), database::NoNotes::server);
  EXPECT_EQ(noted(*rows), Places{});
  readRow(*rows, 0);
  EXPECT_EQ(rows->find(u"door", 0, {}), 0U);
  EXPECT_EQ(rows->find(u"nowhere", 0, {}), std::nullopt);
}

}  // namespace
}  // namespace vordane::odbc
