#include "store/fault_database.h"
#include "store/store_fixture.h"

namespace vordane::store {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Lines = std::vector<std::string>;
using Texts = std::vector<std::u16string>;

class IngestionTest : public StoreTest {
 protected:
  void ingest() { form.ingest(store); }
  // The same list again, with the cause of a failure gone: the same store completes it.
  void expectTheNextListCompletes(const std::string& account, std::size_t faults) {
    database->before = [](std::u16string_view) {};
    form.takeTrace();
    ingest();
    EXPECT_EQ(form.takeTrace(), (Lines{account, "Acknowledge"}));
    EXPECT_EQ(stored(u"Fault").size(), faults);
    ASSERT_NE(form.memoryView.rows, nullptr);
    EXPECT_EQ(form.memoryView.rows->size(), faults);
    EXPECT_TRUE(form.enabled(u"cmdPrint"));
    EXPECT_EQ(database->batchDepth, 0);
  }
};

TEST_F(IngestionTest, StoresEachFaultOfAGroupOfFour) {
  form.receive(u"01 MJ MP   ", u"2026/11/20 20:58", u"01 00", u"");
  form.receive(u"0A MN AB 0C", u"06/11/27 10:15", u"0C", u"0D");
  ingest();
  EXPECT_EQ(form.trace, (Lines{"Account 2=2+0+0", "Acknowledge"}));
  EXPECT_EQ(exchanges(), Texts{u"PBX-1"});
  EXPECT_EQ(stored(u"Fault"), (Texts{u"01", u"0A"}));
  EXPECT_EQ(stored(u"Alarm"), (Texts{u"MJ", u"MN"}));
  EXPECT_EQ(stored(u"CPU"), (Texts{u"MP   ", u"AB 12"}));
  EXPECT_EQ(stored(u"Date"), (Texts{u"2026/11/20 20:58", u"2006/11/27 10:15"}));
  EXPECT_EQ(stored(u"Description")[0], u"M9\r\nM14 code 1\r\nData [01 00 ]");
  EXPECT_EQ(stored(u"ID"), (Texts{u"1", u"1"}));
  EXPECT_EQ(store.exchangeId(), 1);
}

TEST_F(IngestionTest, SendsTheStatementsAsTheyAreWrittenDown) {
  form.receive(u"02 MJ MP", u"2026/11/20 20:58", u"01");
  ingest();
  const Texts expected = {
      u"Select * FROM PBXList WHERE PBXName = \"PBX-1\"",
      u"Select * FROM PBXList",
      u"Select * from FaultDisplay",
      u"Select * FROM FaultDisplay WHERE ID = 1 AND Fault = '02' AND CPU = 'MP   ' AND Alarm = 'MJ' AND "
      u"Date = '2026/11/20 20:58' AND Description = \"M15\r\n\r\nData [01 ]\"",
      u"SELECT * FROM PBXList Order by [TimeStamp] Desc",
      u"SELECT * FROM FaultDisplay Order by [Date] Desc",
      u"SELECT * FROM PBXList WHERE PBXName = 'PBX-1' AND ID = 1",
      u"SELECT * FROM PBXList WHERE PBXName = 'PBX-1' AND ID = 1",
      u"SELECT * FROM FaultDisplay WHERE ID = 1 Order by [Date] Desc, [Count] Desc, [Fault] Desc, "
      u"[Alarm] Desc, [CPU] Desc, [Description] Desc",
      u"Select * FROM PBXList WHERE PBXName = \"PBX-1\"",
  };
  EXPECT_EQ(database->statements, expected);
  EXPECT_EQ(database->recordsetsOpen, 0);
  EXPECT_EQ(database->batchDepth, 0);
}

TEST_F(IngestionTest, StampsTheExchangeBeforeAnyFault) {
  addExchange(u"PBX-1", u"2020-01-01 00:00:00");
  addExchange(u"PBX-2", u"2021-01-01 00:00:00");
  form.receive(u"DATA NOT FOUND", u"");
  ingest();
  EXPECT_EQ(exchanges(), (Texts{u"PBX-1", u"PBX-2"}));
  EXPECT_EQ(column(findExchange(u"PBX-1").text(), u"TimeStamp"), Texts{u"2026-11-20 21:14:05"});
  EXPECT_EQ(form.window.control(u"txtTimeTag").text(u"Text"), u"20.11.2026 21:14:05");
}

// A list whose exchange was not the form's: from then on it is.
TEST_F(IngestionTest, TheExchangeThatIsStoredAlreadyBecomesTheForms) {
  addExchange(u"other", u"2030-01-01 00:00:00");
  const auto mine = addExchange(u"PBX-1", u"2020-01-01 00:00:00");
  ASSERT_EQ(store.exchangeId(), 0);
  form.receive(u"01 MJ MP", u"2026/11/20 20:58", u"02");
  form.ingest(store);
  EXPECT_EQ(store.exchangeId(), mine);
  EXPECT_EQ(stored(u"ID"), Texts{u"2"});
  EXPECT_EQ(store.datPBXList().recordSource(), u"SELECT * FROM PBXList WHERE PBXName = 'PBX-1' AND ID = 2");
}

TEST_F(IngestionTest, SaysThatAnEmptyListBroughtNothing) {
  form.receive(u"data not found", u"");
  form.receive(u"01 MJ MP", u"2026/11/20 10:00");
  ingest();
  EXPECT_EQ(form.trace, (Lines{"Account 0=0+0+0", "ShowMessage nothing new", "Box 104", "Acknowledge"}));
  EXPECT_THAT(stored(u"Fault"), IsEmpty());
  EXPECT_EQ(exchanges(), Texts{u"PBX-1"});
}

TEST_F(IngestionTest, TakesAnAnswerWithoutEntries) {
  ingest();
  EXPECT_EQ(form.trace, (Lines{"Account 0=0+0+0", "ShowMessage nothing new", "Box 104", "Acknowledge"}));
  EXPECT_EQ(exchanges(), Texts{u"PBX-1"});
}

TEST_F(IngestionTest, AddsNothingTheSecondTime) {
  form.receive(u"01 MJ MP   ", u"2026/11/20 20:58", u"01 00");
  form.receive(u"0A MN AB 0C", u"06/11/27 10:15", u"0C");
  ingest();
  form.takeTrace();
  ingest();
  EXPECT_EQ(form.trace, (Lines{"Account 2=0+2+0", "ShowMessage nothing new", "Box 104", "Acknowledge"}));
  EXPECT_EQ(stored(u"Fault").size(), 2U);
}

// --- the language that faults are stored in

class StoredLanguage : public IngestionTest {
 protected:
  StoredLanguage() { form.shared.Messages[message::statusOtherWords] = u"before {1}, now {2}"; }
  std::string told() {
    const std::string line = text::toUtf8(form.memoryView.status[window::accountPart]);
    const auto end = line.find('\n');
    return end == line.npos ? "" : line.substr(end + 1);
  }
  std::string take(std::u16string_view date) {
    form.receive(u"01 MJ MP", date, u"01");
    ingest();
    return told();
  }
  void speak(std::u16string_view name, std::u16string_view title) {
    form.language = name;
    form.texts.setMessage(9, std::u16string(title));
  }
};

TEST_F(StoredLanguage, IsToldWhenItIsAnotherThanBefore) {
  EXPECT_EQ(take(u"2026/11/20 20:58"), "");
  EXPECT_EQ(take(u"2026/11/20 20:59"), "");
  speak(u"русский", u"Д9");
  EXPECT_EQ(take(u"2026/11/20 21:00"), "before English, now русский");
  ingest();
  EXPECT_EQ(told(), "") << "nothing was added";
  EXPECT_EQ(take(u"2026/11/20 21:01"), "") << "the faults before are in this one";
  speak(u"English", u"M9");
  EXPECT_EQ(take(u"2026/11/20 21:02"), "before русский, now English");
}

TEST_F(StoredLanguage, WithOtherTextsUnderTheSameNameIsToldByItsMark) {
  take(u"2026/11/20 20:58");
  const std::string before = text::toUtf8(form.storingLanguage().mark);
  speak(u"English", u"changed");
  const std::string now = text::toUtf8(form.storingLanguage().mark);
  ASSERT_NE(before, now);
  EXPECT_EQ(take(u"2026/11/20 20:59"), "before English (" + before + "), now English (" + now + ")");
}

TEST_F(StoredLanguage, OfAListThatBringsNothingIsNotKept) {
  take(u"2026/11/20 20:58");
  speak(u"русский", u"M9");  // no stored text changes
  form.texts.setMessage(8, u"Д8");
  ingest();
  EXPECT_EQ(database->inner().kept(languageSubject)->name, u"English");
}

TEST_F(StoredLanguage, ThatTheFileCanNotKeepStopsNothing) {
  database->keepFails = true;
  EXPECT_EQ(take(u"2026/11/20 20:58"), "");
  EXPECT_EQ(form.takeTrace(), (Lines{"Account 1=1+0+0", "Acknowledge"}));
  database->keepFails = false;
  EXPECT_EQ(take(u"2026/11/20 20:59"), "");
  EXPECT_EQ(database->inner().kept(languageSubject)->name, u"English");
}

TEST_F(IngestionTest, CountsADoubleInsideTheListAsStored) {
  form.receive(u"01 MJ MP", u"2026/11/20 20:58", u"01");
  form.receive(u"01 MJ MP", u"2026/11/20 20:58", u"01");
  ingest();
  EXPECT_EQ(form.trace, (Lines{"Account 2=1+1+0", "Acknowledge"}));
  EXPECT_EQ(stored(u"Fault").size(), 1U);
}

TEST_F(IngestionTest, TakesTheSameFaultOfAnotherExchange) {
  form.receive(u"01 MJ MP", u"2026/11/20 20:58", u"01");
  ingest();
  form.exchange = u"PBX-2";
  ingest();
  EXPECT_EQ(stored(u"ID"), (Texts{u"1", u"2"}));
  EXPECT_EQ(store.exchangeId(), 2);
}

TEST_F(IngestionTest, ReadsMissingEntriesOfTheLastGroupAsEmpty) {
  form.receive(u"01 MJ MP", u"2026/11/20 20:58", u"01");
  form.answer.AddToList(u"LEA0", u"02 MN MP");
  ingest();
  EXPECT_EQ(form.trace, (Lines{"Account 2=2+0+0 incomplete", "Acknowledge"}));
  EXPECT_THAT(stored(u"Date"), testing::UnorderedElementsAre(u"2026/11/20 20:58", u""));
  EXPECT_THAT(stored(u"Description"), testing::Contains(u"M15\r\n\r\nData [ ]"));
}

TEST_F(IngestionTest, DropsTheBlanksAroundEachEntry) {
  form.receive(u"  01 MJ MP  ", u" 06/11/27 ", u" 01", u"02 ");
  ingest();
  EXPECT_EQ(stored(u"Fault"), Texts{u"01"});
  EXPECT_EQ(stored(u"Date"), Texts{u"2006/11/27"});
  EXPECT_EQ(stored(u"Description"), Texts{u"M9\r\nM14 code 1\r\nData [01 02]"});
}

TEST_F(IngestionTest, StopsAtAnEntryOfTheAccessComponent) {
  form.receive(u"01 MJ MP", u"2026/11/20 20:58", u"01");
  form.receive(u"02 MJ MP", u"2026/11/20 20:59", u"01", u"ZUL_TIMEOUT");
  form.receive(u"24 MJ MP", u"2026/11/20 21:00");
  ingest();
  EXPECT_EQ(form.trace, (Lines{"Account 3=1+0+2 incomplete", "Acknowledge"}));
  EXPECT_EQ(stored(u"Fault"), Texts{u"01"});
  EXPECT_EQ(form.memoryView.status[0],
            u"20.11.2026 21:14:05, incomplete: 3 received, 1 new, 0 stored, 2 refused: access: ZUL_TIMEOUT");
}

TEST_F(IngestionTest, TellsAnAccessErrorWhenNothingWasStored) {
  form.receive(u"ZUL_SYSERROR", u"");
  ingest();
  EXPECT_EQ(form.trace,
            (Lines{"Account 1=0+0+1 incomplete", "ShowMessage nothing new", "Box 102", "Acknowledge"}));
}

TEST_F(IngestionTest, TestsForAccessErrorsBeforeBlanksAreDropped) {
  form.receive(u"01 MJ MP", u" ZUL_TIMEOUT");
  ingest();
  EXPECT_EQ(stored(u"Date"), Texts{u"ZUL_TIMEOUT"});
  EXPECT_EQ(form.trace, (Lines{"Account 1=1+0+0", "Acknowledge"}));
}

TEST_F(IngestionTest, CountsOverTheWholeAnswerUpToTheEndMark) {
  form.receive(u"ZUL_TIMEOUT", u"");
  form.receive(u"01 MJ MP", u"");
  form.receive(u"DATA NOT FOUND", u"");
  form.receive(u"02 MJ MP", u"");
  ingest();
  EXPECT_EQ(form.trace.front(), "Account 2=0+0+2 incomplete");
}

TEST_F(IngestionTest, IsCompleteWhenALoneEndMarkFollowsTheFaults) {
  form.receive(u"01 MJ MP", u"2026/11/20 20:58", u"01");
  form.answer.AddToList(u"LEA0", u" Data Not Found ");
  ingest();
  EXPECT_EQ(form.trace, (Lines{"Account 1=1+0+0", "Acknowledge"}));
  EXPECT_EQ(form.memoryView.status[0], u"20.11.2026 21:14:05: 1 received, 1 new, 0 stored, 0 refused");
}

TEST_F(IngestionTest, IsIncompleteWhenTheAnswerWasTooLong) {
  form.receive(u"01 MJ MP", u"2026/11/20 20:58", u"01");
  form.truncated = true;
  ingest();
  EXPECT_EQ(form.trace.front(), "Account 1=1+0+0 incomplete");
  EXPECT_EQ(form.memoryView.status[0],
            u"20.11.2026 21:14:05, incomplete: 1 received, 1 new, 0 stored, 0 refused: too long");
}

TEST_F(IngestionTest, IsIncompleteWhenATextWasCutAndTakesTheRestAllTheSame) {
  form.receive(u"01 MJ MP", u"2026/11/20 20:58", u"01");
  form.cut = true;
  ingest();
  EXPECT_EQ(form.trace, (Lines{"Account 1=1+0+0 incomplete", "Acknowledge"}));
  EXPECT_EQ(form.memoryView.status[0],
            u"20.11.2026 21:14:05, incomplete: 1 received, 1 new, 0 stored, 0 refused: text cut");
  form.truncated = true;
  ingest();
  EXPECT_THAT(text::toUtf8(form.memoryView.status[0]), testing::EndsWith(": too long")) << "which lost more";
}

TEST_F(IngestionTest, EndsTheActionWhenTheAcknowledgementWasNotSent) {
  form.acknowledged = false;
  form.receive(u"01 MJ MP", u"2026/11/20 20:58");
  ingest();
  EXPECT_EQ(form.trace, (Lines{"Account 1=1+0+0", "Acknowledge", "EndAction"}));
}

TEST_F(IngestionTest, UsesWhatTheRequestWasSentWith) {
  form.requestWide = false;
  form.shared.WideFaultFields = true;
  form.receive(u"08 MJ MP", u"2026/11/20 20:58", u"FF");
  ingest();
  EXPECT_NE(stored(u"Description")[0].find(u"63"), std::u16string::npos);
}

TEST_F(IngestionTest, WithoutADatabaseReportsOnceAndStillAcknowledges) {
  form.receive(u"01 MJ MP", u"2026/11/20 20:58");
  auto kept = std::move(form.database);
  ingest();
  EXPECT_EQ(form.trace,
            (Lines{"ShowMessage not open", "ShowCode 3024", "Account 1=0+0+1 incomplete", "Acknowledge"}));
  form.database = std::move(kept);
}

TEST_F(IngestionTest, StandAloneReportsNothingToAHost) {
  form.shared.StandAlone = true;
  ingest();
  EXPECT_EQ(form.trace, (Lines{"Account 0=0+0+0", "Box 104", "Acknowledge"}));
}

TEST_F(IngestionTest, ADoubleQuoteInAFaultStopsTheList) {
  form.receive(u"01 MJ MP", u"2026/11/20 20:58", u"01");
  form.receive(u"02 MJ MP", u"2026/11/20 20:59", u"\"");
  form.receive(u"24 MJ MP", u"2026/11/20 21:00");
  ingest();
  ASSERT_EQ(form.trace.size(), 3U);
  EXPECT_EQ(form.trace[0], "Account 3=1+0+2 incomplete");
  EXPECT_THAT(form.trace[1], testing::StartsWith("Box 102 "));
  EXPECT_EQ(form.trace[2], "EndAction");
  EXPECT_EQ(stored(u"Fault"), Texts{u"01"});
  EXPECT_EQ(shown(&window::GridRow::fault), Texts{u"01"});
  form.answer.Clear();
  form.receive(u"24 MJ MP", u"2026/11/20 21:00");
  expectTheNextListCompletes("Account 1=1+0+0", 2);
}

// A doubled quote reads as one in the look-up, so what was stored is never found again.
TEST_F(IngestionTest, AFaultWithADoubledQuoteIsStoredAtEveryFetch) {
  form.receive(u"02 MJ MP", u"2026/11/20 20:58", u"\"\"");
  ingest();
  ingest();
  EXPECT_EQ(form.trace, (Lines{"Account 1=1+0+0", "Acknowledge", "Account 1=1+0+0", "Acknowledge"}));
  EXPECT_EQ(stored(u"Description"), Texts(2, u"M15\r\n\r\nData [\"\" ]"));
}

TEST_F(IngestionTest, CountsAStoredFaultWithADoubledQuoteAsStored) {
  form.receive(u"02 MJ MP", u"2026/11/20 20:58", u"\"\"");
  form.receive(u"'' MJ MP", u"2026/11/20 20:58", u"01");
  form.receive(u"02 MJ MP", u"2026/11/20 20:59", u"\"");
  ingest();
  EXPECT_EQ(form.trace[0], "Account 3=2+0+1 incomplete");
  EXPECT_EQ(stored(u"Fault").size(), 2U);
}

TEST_F(IngestionTest, ADoubleQuoteInAnExchangeNameStoresNothing) {
  form.exchange = u"PBX\"1";
  form.receive(u"01 MJ MP", u"2026/11/20 20:58", u"01");
  ingest();
  EXPECT_EQ(form.trace[0], "Account 1=0+0+1 incomplete");
  EXPECT_THAT(form.trace[1], testing::StartsWith("Box 102 "));
  EXPECT_THAT(exchanges(), IsEmpty());
}

TEST_F(IngestionTest, ShowsTheEnginesTextAndSendsNoAcknowledgement) {
  form.receive(u"01 MJ MP", u"2026/11/20 20:58", u"01");
  form.receive(u"02 MJ MP", u"2026/11/20 20:59", u"01");
  int updates = 0;
  database->before = [&](std::u16string_view step) {
    if (step == u"update" && ++updates == 3) throw database::DatabaseError(3022, u"no room");
  };
  ingest();
  EXPECT_EQ(form.trace, (Lines{"Account 2=1+0+1 incomplete", "Box 102 no room", "EndAction"}));
  EXPECT_EQ(stored(u"Fault"), Texts{u"01"});
  EXPECT_EQ(database->batchDepth, 0);
  EXPECT_EQ(form.memoryView.status[0],
            u"20.11.2026 21:14:05, incomplete: 2 received, 1 new, 0 stored, 1 refused: database: no room");
  expectTheNextListCompletes("Account 2=1+1+0", 2);
}

TEST_F(IngestionTest, CountsAsStoredOnlyWhatIsThereAfterAFailedSave) {
  form.receive(u"01 MJ MP", u"2026/11/20 20:58", u"01");
  form.receive(u"02 MJ MP", u"2026/11/20 20:59", u"01");
  database->before = [&](std::u16string_view step) {
    if (step != u"endBatch") return;
    database->before = [](std::u16string_view) {};
    database->inner().execute(deleteFaults(1));  // what a save that failed leaves behind
    throw database::DatabaseError(3026, u"disk full");
  };
  ingest();
  EXPECT_EQ(form.trace, (Lines{"Account 2=0+0+2 incomplete", "Box 102 disk full", "EndAction"}));
  expectTheNextListCompletes("Account 2=2+0+0", 2);
}

TEST_F(IngestionTest, ShowsNoSecondBoxWhenTheRefreshFailsToo) {
  form.receive(u"01 MJ MP", u"2026/11/20 20:58", u"01");
  database->before = [&](std::u16string_view) { throw database::DatabaseError(3049, u"damaged"); };
  ingest();
  EXPECT_EQ(form.trace, (Lines{"Account 1=0+0+1 incomplete", "Box 102 damaged", "EndAction"}));
  EXPECT_EQ(form.memoryView.rows, nullptr);
  expectTheNextListCompletes("Account 1=1+0+0", 1);
}

TEST_F(IngestionTest, AnErrorOfTheDisplayWithholdsNoAcknowledgement) {
  form.receive(u"01 MJ MP", u"2026/11/20 20:58", u"01");
  database->before = [](std::u16string_view step) {
    if (step.starts_with(u"SELECT")) throw database::DatabaseError(3049, u"unreadable");
  };
  ingest();
  EXPECT_EQ(form.trace, (Lines{"Account 1=1+0+0", "Box 102 unreadable", "Acknowledge"}));
  EXPECT_EQ(form.memoryView.rows, nullptr);
  EXPECT_FALSE(form.memoryView.majorLit);
  EXPECT_FALSE(form.enabled(u"cmdPrint"));
}

TEST_F(IngestionTest, SavesEverythingBeforeAnyoneElseIsAsked) {
  form.receive(u"DATA NOT FOUND", u"");
  std::vector<int> open;
  form.meanwhile = [&](const std::string&) { open.push_back(database->batchDepth); };
  ingest();
  EXPECT_THAT(open, ElementsAre(0, 0, 0, 0));
  EXPECT_EQ(database->batches, 1);
}

// An ending that begins while a box is up or a call is out: nothing more is touched.
TEST_F(IngestionTest, StopsWhereTheFormWentAway) {
  for (const std::string end : {"ShowMessage nothing new", "Box 104", "Acknowledge"}) {
    form.living = true;
    form.acknowledged = false;
    form.meanwhile = [&](const std::string& line) { form.living = line != end; };
    form.takeTrace();
    ingest();
    EXPECT_EQ(form.trace.back(), end);
  }
}

TEST_F(IngestionTest, StopsWhenTheFormWentAwayAtTheReportOfAMissingDatabase) {
  auto kept = std::move(form.database);
  form.meanwhile = [&](const std::string&) { form.living = false; };
  ingest();
  EXPECT_EQ(form.trace, Lines{"ShowMessage not open"});
  form.database = std::move(kept);
}

TEST_F(IngestionTest, AnIdBeyond16BitsIsAnError) {
  form.database.reset();
  tools::DatabaseWriter writer(file.path(), true);
  writer.createTables(store::faultTables);
  writer.setLastAutoNumber(u"PBXList", 32767);
  writer.finish();
  form.database = file.open();
  form.receive(u"01 MJ MP", u"2026/11/20 20:58", u"01");
  ingest();
  ASSERT_EQ(form.trace.size(), 3U);
  EXPECT_EQ(form.trace[0], "Account 1=0+0+1 incomplete");
  EXPECT_THAT(form.trace[1], testing::StartsWith("Box 102 "));
  EXPECT_EQ(form.trace[2], "EndAction");
  EXPECT_TRUE(form.database->openRecordset(faultsNewestFirst)->isEmpty());
  EXPECT_TRUE(form.database->openRecordset(exchangesNewestFirst)->isEmpty());
}

TEST(ExchangeId, NeverWraps) {
  EXPECT_EQ(exchangeIdOf(std::int32_t{32767}), 32767);
  EXPECT_THROW(exchangeIdOf(std::int32_t{32768}), database::DatabaseError);
  EXPECT_THROW(exchangeIdOf(std::int32_t{40000}), database::DatabaseError);
  EXPECT_THROW(exchangeIdOf(automation::Null{}), database::DatabaseError);
}

TEST_F(IngestionTest, SaysHowFarALongListIs) {
  for (int i = 0; i < 100; ++i) form.receive(u"01 MJ MP", text::decimal(i), u"01");
  form.setClock.secondsPerLook = 0.06;
  ingest();
  ASSERT_FALSE(form.memoryView.painted.empty());
  EXPECT_EQ(form.memoryView.painted.front().at(1).substr(0, 8), u"storing ");
  EXPECT_EQ(form.memoryView.painted.front().at(1).substr(form.memoryView.painted.front().at(1).size() - 6),
            u"of 100");
  EXPECT_EQ(form.memoryView.status[1], u"100 faults");
  EXPECT_FALSE(database->progress);
}

TEST_F(IngestionTest, TakesTheLargestListThereIs) {
  for (int i = 0; i < 8191; ++i) form.receive(u"01 MJ MP", text::decimalPadded(i, 5), u"01");
  ingest();
  EXPECT_EQ(form.trace, (Lines{"Account 8191=8191+0+0", "Acknowledge"}));
  form.takeTrace();
  ingest();
  EXPECT_EQ(form.trace[0], "Account 8191=0+8191+0");
  EXPECT_EQ(form.memoryView.rows->size(), 8191U);
  EXPECT_EQ(form.memoryView.rows->row(0)->date, u"08190");
}

TEST_F(IngestionTest, FindSameFaultComparesEveryColumn) {
  addFault(1, {u"01", u"MJ", u"AB 12", u"D", u"text"});
  const auto isNew = [&](std::int16_t id, std::u16string_view record, std::u16string_view date,
                         std::u16string_view description) {
    return FindSameFault(id, *form.database, record, date, description);
  };
  EXPECT_FALSE(isNew(1, u"01 MJ AB 0C", u"D", u"text"));
  EXPECT_TRUE(isNew(2, u"01 MJ AB 0C", u"D", u"text"));
  EXPECT_TRUE(isNew(1, u"02 MJ AB 0C", u"D", u"text"));
  EXPECT_TRUE(isNew(1, u"01 MN AB 0C", u"D", u"text"));
  EXPECT_TRUE(isNew(1, u"01 MJ AB 0D", u"D", u"text"));
  EXPECT_TRUE(isNew(1, u"01 MJ AB 0C", u"E", u"text"));
  EXPECT_TRUE(isNew(1, u"01 MJ AB 0C", u"D", u"other"));
}

}  // namespace
}  // namespace vordane::store
