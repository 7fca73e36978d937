#include <sqlite3.h>

#include <stdexcept>

#include "store/store_fixture.h"
#include "text/utf8.h"

namespace vordane::store {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Lines = std::vector<std::string>;
using Texts = std::vector<std::u16string>;

class DisplayTest : public StoreTest {
 protected:
  window::Control& list() { return form.window.control(u"drpPBXList"); }
  Texts listed() {
    Texts names;
    for (const auto& entry : list().items()) names.push_back(entry.text);
    return names;
  }
  void choose(int position) {
    list().setListIndex(position);
    store.exchangeListClicked();
  }
  std::u16string clause(SortKey key) {
    return store.datFaultDisplay().recordSource().substr(faultsOfExchange(1, 0).text().size() -
                                                         sortClauses[0].size()) ==
                   std::u16string(sortClauses[static_cast<std::size_t>(key)])
               ? u"as asked"
               : store.datFaultDisplay().recordSource();
  }
};

TEST_F(DisplayTest, ListsTheExchangesNewestListFirst) {
  addExchange(u"old", u"2020-01-01 00:00:00");
  addExchange(u"new", u"2022-01-01 00:00:00");
  addExchange(u"between", u"2021-01-01 00:00:00");
  store.FillExchangeList();
  EXPECT_EQ(listed(), (Texts{u"new", u"between", u"old"}));
  EXPECT_EQ(list().items()[0].itemData, 2);
  EXPECT_EQ(list().items()[2].itemData, 1);
  EXPECT_EQ(list().listIndex(), 0);
}

TEST_F(DisplayTest, AnEmptyListSelectsNothing) {
  store.RefreshDisplay();
  EXPECT_EQ(list().listIndex(), -1);
  EXPECT_EQ(form.memoryView.rows, nullptr);
  EXPECT_EQ(form.memoryView.notice, u"no exchange");
  EXPECT_EQ(store.datPBXList().recordSource(), u"");
  EXPECT_EQ(store.datFaultDisplay().recordSource(), u"");
  EXPECT_THAT(database->statements,
              ElementsAre(std::u16string(exchangesNewestFirst), std::u16string(faultsNewestFirst)));
  for (const auto* button : {u"cmdPrint", u"cmdClear", u"cmdLookUp", u"cmdFilter", u"cmdReset"})
    EXPECT_FALSE(form.enabled(button));
  EXPECT_TRUE(form.enabled(u"cmdRequest"));
  EXPECT_TRUE(form.enabled(u"cmdClose"));
}

TEST_F(DisplayTest, KeepsTheFormsExchangeSelected) {
  addExchange(u"mine", u"2020-01-01 00:00:00");
  addExchange(u"other", u"2022-01-01 00:00:00");
  store.setExchangeName(u"mine");
  EXPECT_EQ(list().listIndex(), 1);
  EXPECT_EQ(store.exchangeId(), 1);
  EXPECT_EQ(store.datPBXList().recordSource(), u"SELECT * FROM PBXList WHERE PBXName = 'mine' AND ID = 1");
}

TEST_F(DisplayTest, ANameWithoutARowSelectsTheFirst) {
  addExchange(u"mine", u"2020-01-01 00:00:00");
  store.setExchangeName(u"mine");
  store.setExchangeName(u"unknown");
  EXPECT_EQ(store.exchangeId(), 0);
  EXPECT_EQ(list().listIndex(), 0);
  store.setExchangeName(u"mine");
  store.setExchangeName(u"");
  EXPECT_EQ(store.exchangeId(), 0);
}

TEST_F(DisplayTest, AChoiceChangesWhatIsShownButNotTheFormsExchange) {
  addExchange(u"mine", u"2020-01-01 00:00:00");
  addExchange(u"other", u"2022-01-01 00:00:00");
  addFault(1, {u"01"});
  addFault(2, {u"02"});
  store.setExchangeName(u"mine");
  EXPECT_EQ(shown(&window::GridRow::fault), Texts{u"01"});
  choose(0);
  EXPECT_EQ(shown(&window::GridRow::fault), Texts{u"02"});
  EXPECT_EQ(store.exchangeId(), 1);
  EXPECT_EQ(form.window.control(u"txtTimeTag").text(u"Text"), u"01.01.2022 00:00:00");
}

TEST_F(DisplayTest, AChoiceMadeWhileTheListIsFilledShowsNothing) {
  addExchange(u"mine", u"2020-01-01 00:00:00");
  form.window.listen([&](window::Control& control, std::u16string_view property) {
    if (&control == &list() && property == u"ListIndex") store.exchangeListClicked();
  });
  store.FillExchangeList();
  EXPECT_THAT(database->statements, ElementsAre(std::u16string(exchangesNewestFirst)));
  EXPECT_TRUE(form.trace.empty());
}

TEST_F(DisplayTest, ShowsTheSixColumnsOfAFault) {
  addExchange(u"mine", u"2020-01-01 00:00:00");
  addFault(1, {u"0A", u"MN", u"AB 12", u"2026/11/20 10:00", u"title\r\ndetail"});
  store.RefreshDisplay();
  const auto row = form.memoryView.rows->row(0).value();
  EXPECT_EQ(row.fault, u"0A");
  EXPECT_EQ(row.alarm, u"MN");
  EXPECT_EQ(row.date, u"2026/11/20 10:00");
  EXPECT_EQ(row.cpu, u"AB 12");
  EXPECT_EQ(row.description, u"title\r\ndetail");
  EXPECT_EQ(row.count, 1);
  EXPECT_EQ(form.memoryView.status[1], u"1 faults");
  EXPECT_TRUE(form.enabled(u"cmdPrint"));
}

TEST_F(DisplayTest, BeginsNewestFirstWithFaultsOfOneTimeLatestFirst) {
  addExchange(u"mine", u"2020-01-01 00:00:00");
  addFault(1, {u"01", u"MJ", u"MP   ", u"2026/11/20 10:00"});
  addFault(1, {u"02", u"MJ", u"MP   ", u"2026/11/20 11:00"});
  addFault(1, {u"03", u"MJ", u"MP   ", u"2026/11/20 11:00"});
  store.RefreshDisplay();
  EXPECT_EQ(shown(&window::GridRow::fault), (Texts{u"03", u"02", u"01"}));
  EXPECT_EQ(store.sortKey(), 7);
  EXPECT_EQ(form.memoryView.sortColumn, 2);
  EXPECT_TRUE(form.memoryView.sortDescending);
}

TEST_F(DisplayTest, HeadingClicksAlternateBetweenTheDirections) {
  addExchange(u"mine", u"2020-01-01 00:00:00");
  addFault(1, {});
  store.RefreshDisplay();
  for (const int column : {0, 1, 3, 4}) {
    store.headingClicked(column);
    EXPECT_EQ(store.sortKey(), column);
    EXPECT_EQ(clause(static_cast<SortKey>(column)), u"as asked");
    EXPECT_FALSE(form.memoryView.sortDescending);
    store.headingClicked(column);
    EXPECT_EQ(store.sortKey(), 5 + column);
    EXPECT_EQ(clause(static_cast<SortKey>(5 + column)), u"as asked");
    EXPECT_TRUE(form.memoryView.sortDescending);
  }
}

TEST_F(DisplayTest, TheDateHeadingSortsDescendingFirst) {
  addExchange(u"mine", u"2020-01-01 00:00:00");
  store.RefreshDisplay();
  store.headingClicked(2);
  EXPECT_EQ(store.sortKey(), 7);
  store.headingClicked(2);
  EXPECT_EQ(store.sortKey(), 2);
  choose(0);
  store.headingClicked(2);
  EXPECT_EQ(store.sortKey(), 7);
}

// One click leaves the date ascending for the next one; whatever is chosen begins newest first all the same.
TEST_F(DisplayTest, AChoiceBeginsNewestFirstAfterOneClickToo) {
  addExchange(u"mine", u"2020-01-01 00:00:00");
  addFault(1, {u"01", u"MJ", u"MP   ", u"2026/01/01"});
  addFault(1, {u"02", u"MJ", u"MP   ", u"2026/01/02"});
  store.RefreshDisplay();
  store.headingClicked(2);
  choose(0);
  EXPECT_EQ(store.sortKey(), 7);
  EXPECT_EQ(shown(&window::GridRow::fault), (Texts{u"02", u"01"}));
  store.headingClicked(2);
  EXPECT_EQ(store.sortKey(), 7);
  store.headingClicked(2);
  EXPECT_EQ(store.sortKey(), 2);
}

TEST_F(DisplayTest, TheButtonsFollowAChoiceInTheDropDown) {
  addExchange(u"full", u"2022-01-01 00:00:00");
  addExchange(u"empty", u"2020-01-01 00:00:00");
  addFault(1, {});
  store.RefreshDisplay();
  for (const auto* button : {u"cmdPrint", u"cmdClear", u"cmdLookUp", u"cmdFilter", u"cmdReset"}) {
    choose(1);
    EXPECT_FALSE(form.enabled(button));
    choose(0);
    EXPECT_TRUE(form.enabled(button));
  }
}

// As Access numbers them where its auto-number is set to random.
TEST_F(DisplayTest, FaultsWithNumbersOfAnySizeAndSignAreShownInEveryOrder) {
  addExchange(u"mine", u"2020-01-01 00:00:00");
  sqlite3* other = nullptr;
  ASSERT_EQ(sqlite3_open(text::toUtf8(file.path()).c_str(), &other), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(other,
                         "INSERT INTO FaultDisplay(ID, Fault, Alarm, CPU, Date, Description, Count) VALUES "
                         "(1, '01', 'MJ', 'MP', '2026', 'x', -5), (1, '01', 'MJ', 'MP', '2026', 'x', 7), "
                         "(1, '01', 'MJ', 'MP', '2026', 'x', 5000000000)",
                         nullptr, nullptr, nullptr),
            SQLITE_OK);
  sqlite3_close(other);
  store.RefreshDisplay();
  const auto numbers = [&] {
    std::vector<std::int64_t> all;
    for (std::size_t i = 0; i < form.memoryView.rows->size(); ++i)
      all.push_back(form.memoryView.rows->row(i).value().count);
    return all;
  };
  for (int column = 0; column < 5; ++column) {
    store.headingClicked(column);
    const bool descending = form.memoryView.sortDescending;
    EXPECT_EQ(numbers(), descending ? (std::vector<std::int64_t>{5000000000, 7, -5})
                                    : (std::vector<std::int64_t>{-5, 7, 5000000000}))
        << column;
    store.headingClicked(column);
    EXPECT_EQ(numbers(), descending ? (std::vector<std::int64_t>{-5, 7, 5000000000})
                                    : (std::vector<std::int64_t>{5000000000, 7, -5}))
        << column;
  }
}

TEST_F(DisplayTest, TheLastColumnHasNoOrder) {
  addExchange(u"mine", u"2020-01-01 00:00:00");
  addFault(1, {});
  store.RefreshDisplay();
  store.headingClicked(0);
  const auto source = store.datFaultDisplay().recordSource();
  const int set = form.memoryView.rowsSet;
  store.headingClicked(5);
  EXPECT_EQ(store.datFaultDisplay().recordSource(), source);
  EXPECT_EQ(store.sortKey(), 0);
  EXPECT_EQ(form.memoryView.rowsSet, set + 1);
}

TEST_F(DisplayTest, AClickThatCouldNotSortTurnsTheDirectionAllTheSame) {
  addExchange(u"mine", u"2020-01-01 00:00:00");
  addFault(1, {});
  store.RefreshDisplay();
  auto kept = std::move(form.database);
  store.headingClicked(0);
  EXPECT_EQ(form.takeTrace(), (Lines{"ShowMessage not open", "ShowCode 3024"}));
  form.database = std::move(kept);
  store.headingClicked(0);
  EXPECT_EQ(store.sortKey(), 5) << "the ascending click was lost";
  store.headingClicked(0);
  EXPECT_EQ(store.sortKey(), 0);
  database->before = [](std::u16string_view) { throw database::DatabaseError(3049, u"broken"); };
  store.headingClicked(0);
  database->before = [](std::u16string_view) {};
  store.headingClicked(0);
  EXPECT_EQ(store.sortKey(), 0) << "the descending click failed";
}

TEST_F(DisplayTest, NoOtherColumnExists) {
  EXPECT_THROW(store.headingClicked(-1), std::out_of_range);
  EXPECT_THROW(store.headingClicked(6), std::out_of_range);
  EXPECT_THAT(database->statements, IsEmpty());
}

TEST_F(DisplayTest, SortsByEachColumnBothWays) {
  addExchange(u"mine", u"2020-01-01 00:00:00");
  addFault(1, {u"02", u"MJ", u"AB 2", u"2026/01/02", u"b"});
  addFault(1, {u"01", u"MN", u"AB 1", u"2026/01/03", u"c"});
  addFault(1, {u"03", u"MA", u"AB 3", u"2026/01/01", u"a"});
  store.RefreshDisplay();
  const auto order = [&](int column) {
    store.headingClicked(column);
    return shown(&window::GridRow::fault);
  };
  EXPECT_EQ(order(0), (Texts{u"01", u"02", u"03"}));
  EXPECT_EQ(order(0), (Texts{u"03", u"02", u"01"}));
  EXPECT_EQ(order(1), (Texts{u"03", u"02", u"01"}));
  EXPECT_EQ(order(1), (Texts{u"01", u"02", u"03"}));
  EXPECT_EQ(order(2), (Texts{u"01", u"02", u"03"}));
  EXPECT_EQ(order(2), (Texts{u"03", u"02", u"01"}));
  EXPECT_EQ(order(3), (Texts{u"01", u"02", u"03"}));
  EXPECT_EQ(order(3), (Texts{u"03", u"02", u"01"}));
  EXPECT_EQ(order(4), (Texts{u"03", u"02", u"01"}));
  EXPECT_EQ(order(4), (Texts{u"01", u"02", u"03"}));
}

TEST_F(DisplayTest, AnExchangeWithoutFaultsSaysSo) {
  addExchange(u"mine", u"2020-01-01 00:00:00");
  store.setExchangeName(u"mine");
  EXPECT_EQ(form.memoryView.notice, u"mine has no faults");
  EXPECT_EQ(form.memoryView.noticeKind, window::NoticeKind::hint);
  EXPECT_EQ(form.memoryView.sortColumn, -1);
}

TEST_F(DisplayTest, ARegisteredExchangeWithoutAListSaysWhatToPress) {
  store.setExchangeName(u"PBX-9");
  EXPECT_EQ(form.memoryView.notice, u"press to ask PBX-9");
}

TEST_F(DisplayTest, WhileAJobIsBeingMadeTheFaultButtonsStayDead) {
  addExchange(u"mine", u"2020-01-01 00:00:00");
  addFault(1, {});
  form.shared.runMode = RunMode::creatingSchedule;
  store.RefreshDisplay();
  EXPECT_FALSE(form.enabled(u"cmdClear"));
  EXPECT_TRUE(form.enabled(u"cmdRequest"));
  form.shared.runMode = RunMode::interactive;
  store.showButtonStates();
  EXPECT_TRUE(form.enabled(u"cmdClear"));
}

// --- stored years

TEST_F(DisplayTest, WidensNothingWhenTheLatestTextIsAnotherForm) {
  addExchange(u"mine", u"2020-01-01 00:00:00");
  addFault(1, {u"01", u"MJ", u"MP   ", u"06/11/27 10:15"});
  addFault(2, {u"02", u"MJ", u"MP   ", u"95/01/02"});
  addFault(2, {u"03", u"MJ", u"MP   ", u"short"});
  addFault(2, {u"04", u"MJ", u"MP   ", u"1"});
  store.RefreshDisplay();
  EXPECT_EQ(stored(u"Date"), (Texts{u"short", u"95/01/02", u"1", u"06/11/27 10:15"}));
}

TEST_F(DisplayTest, WidensStoredYearsOfEveryExchange) {
  addExchange(u"mine", u"2020-01-01 00:00:00");
  addFault(1, {u"01", u"MJ", u"MP   ", u"06/11/27 10:15"});
  addFault(2, {u"02", u"MJ", u"MP   ", u"95/01/02"});
  addFault(2, {u"03", u"MJ", u"MP   ", u""});
  addFault(2, {u"04", u"MJ", u"MP   ", u"2006/01/01"});
  store.RefreshDisplay();
  EXPECT_THAT(stored(u"Date"),
              testing::UnorderedElementsAre(u"2006/11/27 10:15", u"1995/01/02", u"2006/01/01", u""));
  EXPECT_EQ(shown(&window::GridRow::date), Texts{u"2006/11/27 10:15"});
  EXPECT_EQ(database->batches, 1);
}

TEST_F(DisplayTest, LeavesTwoDigitYearsBehindAFourDigitOne) {
  addExchange(u"mine", u"2020-01-01 00:00:00");
  addFault(1, {u"01", u"MJ", u"MP   ", u"06/11/27 10:15"});
  addFault(1, {u"02", u"MJ", u"MP   ", u"2006/11/27 10:15"});
  store.RefreshDisplay();
  EXPECT_EQ(stored(u"Date"), (Texts{u"2006/11/27 10:15", u"06/11/27 10:15"}));
}

TEST_F(DisplayTest, ANullDateIsLeftAndTheWalkGoesOn) {
  addExchange(u"mine", u"2020-01-01 00:00:00");
  const auto rows = database->inner().openRecordset(addFaults);
  rows->addNew();
  rows->set(u"ID", std::int16_t{1});
  rows->set(u"Fault", std::u16string(u"01"));
  rows->update();
  rows->close();
  addFault(1, {u"02", u"MJ", u"MP   ", u"95/01/02"});
  addFault(1, {u"03", u"MJ", u"MP   ", u"94/01/02"});
  store.RefreshDisplay();
  EXPECT_THAT(shown(&window::GridRow::date),
              testing::UnorderedElementsAre(u"", u"1995/01/02", u"1994/01/02"));
}

TEST_F(DisplayTest, WideningMayMakeTwoRowsAlike) {
  addExchange(u"mine", u"2020-01-01 00:00:00");
  addFault(1, {u"01", u"MJ", u"MP   ", u"95/01/02"});
  addFault(1, {u"01", u"MJ", u"MP   ", u"1995/01/02"});
  store.RefreshDisplay();
  EXPECT_EQ(shown(&window::GridRow::date), (Texts{u"1995/01/02", u"1995/01/02"}));
}

TEST_F(DisplayTest, WidensThousandsOfRowsOnce) {
  addExchange(u"mine", u"2020-01-01 00:00:00");
  database->beginBatch();
  for (int i = 0; i < 3000; ++i) {
    std::u16string date = text::decimalPadded(i % 100, 2);
    date.append(u"/01/02");
    addFault(1, {u"01", u"MJ", u"MP   ", date});
  }
  database->endBatch();
  int updates = 0;
  database->before = [&](std::u16string_view step) { updates += step == u"update" ? 1 : 0; };
  store.RefreshDisplay();
  EXPECT_EQ(updates, 3000);
  for (const auto& date : stored(u"Date")) ASSERT_EQ(date.size(), 10U);
}

// --- errors

TEST_F(DisplayTest, WithoutADatabaseReportsOnce) {
  auto kept = std::move(form.database);
  store.setExchangeName(u"mine");
  EXPECT_EQ(form.takeTrace(), (Lines{"ShowMessage not open", "ShowCode 3024"}));
  store.RefreshDisplay();
  EXPECT_EQ(form.takeTrace(), (Lines{"ShowMessage not open", "ShowCode 3024"}));
  store.headingClicked(0);
  EXPECT_EQ(form.takeTrace(), (Lines{"ShowMessage not open", "ShowCode 3024"}));
  store.DisplayAlarm();
  EXPECT_EQ(form.takeTrace(), Lines{});
  EXPECT_EQ(form.memoryView.notice, u"database closed");
  EXPECT_EQ(form.memoryView.noticeKind, window::NoticeKind::failure);
  form.database = std::move(kept);
}

TEST_F(DisplayTest, StandAloneAMissingDatabaseIsSilent) {
  form.shared.StandAlone = true;
  auto kept = std::move(form.database);
  store.RefreshDisplay();
  EXPECT_EQ(form.trace, Lines{});
  form.database = std::move(kept);
}

TEST_F(DisplayTest, AnErrorShowsOneBoxAndLeavesGridAndLampsEmpty) {
  addExchange(u"mine", u"2020-01-01 00:00:00", true, true);
  addFault(1, {});
  store.RefreshDisplay();
  ASSERT_NE(form.memoryView.rows, nullptr);
  ASSERT_TRUE(form.memoryView.majorLit);
  const Texts steps = {std::u16string(exchangesNewestFirst), std::u16string(faultsNewestFirst),
                       selectExchange(u"mine", 1).text(), faultsOfExchange(1, 7).text(),
                       findExchange(u"mine").text()};
  for (const auto& failing : steps) {
    database->before = [&](std::u16string_view step) {
      if (step == failing) throw database::DatabaseError(3049, u"unreadable");
    };
    form.takeTrace();
    store.RefreshDisplay();
    EXPECT_EQ(form.trace, Lines{"Box 102 unreadable"});
    EXPECT_EQ(form.memoryView.rows, nullptr);
    EXPECT_FALSE(form.memoryView.majorLit);
    EXPECT_FALSE(form.memoryView.minorLit);
    EXPECT_FALSE(form.enabled(u"cmdReset"));
    EXPECT_EQ(form.memoryView.notice, u"database: unreadable");
    database->before = [](std::u16string_view) {};
    store.RefreshDisplay();
    EXPECT_EQ(shown(&window::GridRow::fault), Texts{u"01"});
  }
}

TEST_F(DisplayTest, ANameThatBreaksAStatementShowsOneBox) {
  addExchange(u"O'Hara", u"2020-01-01 00:00:00");
  store.setExchangeName(u"O'Hara");
  EXPECT_EQ(store.exchangeId(), 1);
  ASSERT_EQ(form.trace.size(), 1U);
  EXPECT_THAT(form.trace[0], testing::StartsWith("Box 102 "));
  form.takeTrace();
  store.setExchangeName(u"a\"b");
  ASSERT_EQ(form.trace.size(), 1U);
  EXPECT_EQ(store.exchangeId(), 0) << "a name that can't be looked up has no row";
}

TEST_F(DisplayTest, ASortThatFailedStillTurnsTheDirection) {
  addExchange(u"mine", u"2020-01-01 00:00:00");
  store.RefreshDisplay();
  database->before = [](std::u16string_view) { throw database::DatabaseError(3049, u"unreadable"); };
  store.headingClicked(0);
  EXPECT_EQ(form.trace, Lines{"Box 102 unreadable"});
  database->before = [](std::u16string_view) {};
  store.headingClicked(0);
  EXPECT_EQ(store.sortKey(), 5);
}

TEST_F(DisplayTest, TouchesNothingAfterTheFormWentAwayBehindTheBox) {
  addExchange(u"mine", u"2020-01-01 00:00:00");
  store.RefreshDisplay();
  database->before = [](std::u16string_view) { throw database::DatabaseError(3049, u"unreadable"); };
  form.meanwhile = [&](const std::string&) {
    form.living = false;
    form.window.control(u"cmdPrint").set(u"Enabled", true);
  };
  store.RefreshDisplay();
  EXPECT_TRUE(form.enabled(u"cmdPrint"));
}

TEST_F(DisplayTest, NothingStaysOpenBetweenSteps) {
  addExchange(u"mine", u"2020-01-01 00:00:00");
  addFault(1, {});
  store.setExchangeName(u"mine");
  store.headingClicked(1);
  EXPECT_EQ(database->recordsetsOpen, 0);
  EXPECT_EQ(database->batchDepth, 0);
  store.close();
  EXPECT_EQ(store.rows().size(), 0U);
  EXPECT_FALSE(store.rows().row(0).has_value());
}

}  // namespace
}  // namespace vordane::store
