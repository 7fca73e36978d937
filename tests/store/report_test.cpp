#include "fakes/scripted_object.h"
#include "store/store_fixture.h"

namespace vordane::store {
namespace {

using Lines = std::vector<std::string>;
using Texts = std::vector<std::u16string>;

class ReportTest : public StoreTest {
 protected:
  ReportTest() {
    addExchange(u"PBX-1", u"2021-01-01 00:00:00");
    addFault(1, {});
    store.setExchangeName(u"PBX-1");
    host->on(u"PrintReport", [this](std::span<automation::Argument> arguments) {
      passed.assign(arguments.begin(), arguments.end());
      form.trace.emplace_back("PrintReport");
      return answer;
    });
    form.hostObject = host;
  }
  std::u16string argument(std::size_t position) { return automation::toText(passed.at(position).value); }
  // Formulas 1 to 6, without the fifth argument.
  Texts formulas() {
    Texts result = {argument(3)};
    for (std::size_t i = 5; i < 10; ++i) result.push_back(argument(i));
    return result;
  }

  std::shared_ptr<fakes::ScriptedObject> host = std::make_shared<fakes::ScriptedObject>();
  std::vector<automation::Argument> passed;
  automation::Value answer = std::u16string();
};

TEST_F(ReportTest, HandsTenArgumentsToTheHost) {
  store.PrintFaultReport();
  ASSERT_EQ(passed.size(), 10U);
  EXPECT_EQ(argument(0), u"C:\\SUITE\\ADDINS\\Database\\FAULT.MDB");
  EXPECT_EQ(argument(1), u"C:\\SUITE\\ADDINS\\Report\\FAULT.RPT");
  EXPECT_EQ(argument(2), u"{PbxList.PBXName} = 'PBX-1'");
  EXPECT_EQ(passed[4].value, automation::Value(std::int16_t{0}));
  for (std::size_t i = 0; i < 10; ++i) EXPECT_EQ(passed[i].byReference, i != 4);
  EXPECT_EQ(form.trace, Lines{"PrintReport"});
}

TEST_F(ReportTest, IsSortedAsTheGridIs) {
  const std::vector<Texts> byColumn = {
      {u"Fault", u"Alarm", u"Date", u"Count", u"CPU", u"Description"},
      {u"Alarm", u"Fault", u"Date", u"Count", u"CPU", u"Description"},
      {u"Date", u"Count", u"Fault", u"Alarm", u"CPU", u"Description"},
      {u"CPU", u"Fault", u"Alarm", u"Date", u"Count", u"Description"},
      {u"Description", u"Fault", u"Alarm", u"Date", u"Count", u"CPU"},
  };
  for (int click = 0; click < 10; ++click) {
    const int column = click / 2;
    store.headingClicked(column);
    store.PrintFaultReport();
    Texts expected;
    for (const auto& name : byColumn[static_cast<std::size_t>(column)])
      expected.push_back((store.sortKey() < 5 ? u"+{FaultDisplay." : u"-{FaultDisplay.") + name + u"}");
    EXPECT_EQ(formulas(), expected);
    EXPECT_EQ(store.sortKey() % 5, column);
  }
}

TEST_F(ReportTest, OfAFreshSelectionIsNewestFirst) {
  store.PrintFaultReport();
  EXPECT_EQ(formulas(),
            (Texts{u"-{FaultDisplay.Date}", u"-{FaultDisplay.Count}", u"-{FaultDisplay.Fault}",
                   u"-{FaultDisplay.Alarm}", u"-{FaultDisplay.CPU}", u"-{FaultDisplay.Description}"}));
}

TEST_F(ReportTest, ARefusalReachesTheUser) {
  answer = std::u16string(u"no paper");
  store.PrintFaultReport();
  EXPECT_EQ(form.trace, (Lines{"PrintReport", "Box 107 no paper"}));
}

TEST_F(ReportTest, AHostThatFailsIsATrappedError) {
  host->on(u"PrintReport", [](std::span<automation::Argument>) -> automation::Value {
    throw automation::AutomationError(automation::error::exception, u"the printer is gone");
  });
  store.PrintFaultReport();
  EXPECT_EQ(form.takeTrace(), Lines{"Box 102 the printer is gone"});
  host->remove(u"PrintReport");
  store.PrintFaultReport();
  EXPECT_EQ(form.takeTrace(), Lines{"Box 102 0x80020006"});
  host->on(u"PrintReport", [this](std::span<automation::Argument>) { return answer; });
  store.PrintFaultReport();
  EXPECT_EQ(form.takeTrace(), Lines{}) << "with the cause gone";
}

TEST_F(ReportTest, WithoutAHostTheUserIsToldSo) {
  form.hostObject = nullptr;
  form.shared.StandAlone = true;
  store.PrintFaultReport();
  EXPECT_EQ(form.trace, Lines{"Box 900"});
}

TEST_F(ReportTest, ShowsNothingWhenTheFormWentAwayDuringThePrinting) {
  answer = std::u16string(u"no paper");
  host->on(u"PrintReport", [this](std::span<automation::Argument>) {
    form.living = false;
    return answer;
  });
  store.PrintFaultReport();
  EXPECT_EQ(form.trace, Lines{});
}

TEST_F(ReportTest, WithoutARowIsATrappedError) {
  database->inner().execute(deleteExchange(1));
  store.headingClicked(0);
  store.PrintFaultReport();
  ASSERT_EQ(form.trace.size(), 1U);
  EXPECT_THAT(form.trace[0], testing::StartsWith("Box 102 "));
  EXPECT_TRUE(passed.empty());
}

TEST_F(ReportTest, WithoutADatabaseReportsOnce) {
  auto kept = std::move(form.database);
  store.PrintFaultReport();
  store.DeleteExchange();
  EXPECT_EQ(form.trace,
            (Lines{"ShowMessage not open", "ShowCode 3024", "ShowMessage not open", "ShowCode 3024"}));
  form.database = std::move(kept);
}

class DeletionTest : public ReportTest {
 protected:
  DeletionTest() {
    addExchange(u"PBX-2", u"2022-01-01 00:00:00");
    addFault(2, {u"02"});
    store.RefreshDisplay();
    database->statements.clear();
    form.boxAnswer = 6;
  }
};

TEST_F(DeletionTest, RemovesTheShownExchangeAndThenItsFaults) {
  store.DeleteExchange();
  EXPECT_EQ(form.trace, Lines{"Box 105"});
  ASSERT_GE(database->statements.size(), 2U);
  EXPECT_EQ(database->statements[0], u"DELETE FROM PBXList WHERE ID = 1");
  EXPECT_EQ(database->statements[1], u"DELETE FROM FaultDisplay WHERE ID = 1");
  EXPECT_EQ(exchanges(), Texts{u"PBX-2"});
  EXPECT_EQ(stored(u"Fault"), Texts{u"02"});
  EXPECT_EQ(shown(&window::GridRow::fault), Texts{u"02"});
  EXPECT_EQ(database->batches, 0);
}

TEST_F(DeletionTest, NeedsAYes) {
  for (const int answerCode : {0, 1, 2, 7}) {
    form.boxAnswer = answerCode;
    store.DeleteExchange();
  }
  EXPECT_TRUE(database->statements.empty());
  EXPECT_EQ(exchanges().size(), 2U);
}

TEST_F(DeletionTest, OfTheLastExchangeLeavesNothingToShow) {
  store.DeleteExchange();
  store.DeleteExchange();
  EXPECT_TRUE(exchanges().empty());
  EXPECT_TRUE(form.window.control(u"drpPBXList").items().empty());
  EXPECT_EQ(form.window.control(u"drpPBXList").listIndex(), -1);
  EXPECT_EQ(form.memoryView.rows, nullptr);
  EXPECT_FALSE(form.enabled(u"cmdClear"));
}

TEST_F(DeletionTest, OfAnotherExchangeKeepsTheFormsOwnShown) {
  form.window.control(u"drpPBXList").setListIndex(0);
  store.exchangeListClicked();
  store.DeleteExchange();
  EXPECT_EQ(exchanges(), Texts{u"PBX-1"});
  EXPECT_EQ(shown(&window::GridRow::fault), Texts{u"01"});
}

TEST_F(DeletionTest, AFirstStatementThatFailsKeepsTheFaults) {
  database->before = [](std::u16string_view step) {
    if (step.starts_with(u"DELETE FROM PBXList")) throw database::DatabaseError(3027, u"can't be written");
  };
  store.DeleteExchange();
  EXPECT_EQ(form.takeTrace(), (Lines{"Box 105", "Box 102 can't be written"}));
  EXPECT_EQ(exchanges().size(), 2U);
  EXPECT_EQ(stored(u"Fault").size(), 2U);
  database->before = [](std::u16string_view) {};
  store.DeleteExchange();
  EXPECT_EQ(form.takeTrace(), Lines{"Box 105"}) << "with the cause gone";
  EXPECT_EQ(exchanges(), Texts{u"PBX-2"});
  EXPECT_EQ(stored(u"Fault"), Texts{u"02"});
}

TEST_F(DeletionTest, ASecondStatementThatFailsLeavesTheFaultsBehind) {
  database->before = [](std::u16string_view step) {
    if (step.starts_with(u"DELETE FROM FaultDisplay"))
      throw database::DatabaseError(3027, u"can't be written");
  };
  store.DeleteExchange();
  EXPECT_EQ(form.takeTrace(), (Lines{"Box 105", "Box 102 can't be written"}));
  EXPECT_EQ(exchanges(), Texts{u"PBX-2"});
  EXPECT_EQ(stored(u"Fault").size(), 2U);
  EXPECT_EQ(shown(&window::GridRow::fault), Texts{u"02"});
  database->before = [](std::u16string_view) {};
  store.DeleteExchange();
  EXPECT_EQ(form.takeTrace(), Lines{"Box 105"}) << "with the cause gone";
  EXPECT_EQ(exchanges(), Texts{});
  EXPECT_EQ(form.memoryView.rows, nullptr);
}

TEST_F(DeletionTest, DoesNothingWhenTheFormWentAwayBehindTheQuestion) {
  form.meanwhile = [&](const std::string&) { form.living = false; };
  store.DeleteExchange();
  EXPECT_TRUE(database->statements.empty());
}

// A host registers another exchange while the question stands.
TEST_F(DeletionTest, OfAnotherExchangeThanTheOneAskedAboutIsGivenUp) {
  form.meanwhile = [&](const std::string& line) {
    if (line == "Box 105") store.setExchangeName(u"PBX-2");
  };
  store.DeleteExchange();
  EXPECT_EQ(form.takeTrace(), (Lines{"Box 105", "DeletionGivenUp"}));
  EXPECT_EQ(exchanges().size(), 2U);
  EXPECT_EQ(stored(u"Fault").size(), 2U);
  EXPECT_EQ(shown(&window::GridRow::fault), Texts{u"02"});
  form.meanwhile = [](const std::string&) {};
  store.DeleteExchange();
  EXPECT_EQ(form.takeTrace(), Lines{"Box 105"}) << "asked again, about the one that is shown now";
  EXPECT_EQ(exchanges(), Texts{u"PBX-1"});
}

TEST_F(DeletionTest, OfTheSameExchangeShownAnewGoesOn) {
  form.meanwhile = [&](const std::string& line) {
    if (line == "Box 105") store.setExchangeName(u"PBX-1");
  };
  store.DeleteExchange();
  EXPECT_EQ(form.takeTrace(), Lines{"Box 105"});
  EXPECT_EQ(exchanges(), Texts{u"PBX-2"});
}

TEST_F(DeletionTest, OfAnExchangeThatWasNotThereWhenAskedIsGivenUp) {
  store.setExchangeName(u"PBX-1");
  database->inner().execute(deleteExchange(1));
  database->inner().execute(deleteExchange(2));
  store.RefreshDisplay();
  ASSERT_FALSE(store.datPBXList().hasRow());
  form.meanwhile = [&](const std::string& line) {
    if (line != "Box 105") return;
    addExchange(u"PBX-9", u"2023-01-01 00:00:00");
    store.setExchangeName(u"PBX-9");
  };
  store.DeleteExchange();
  EXPECT_EQ(form.takeTrace(), (Lines{"Box 105", "DeletionGivenUp"}));
  EXPECT_EQ(exchanges(), Texts{u"PBX-9"});
}

TEST_F(DeletionTest, NeverUsesANumberAgain) {
  store.DeleteExchange();
  form.exchange = u"PBX-3";
  form.receive(u"01 MJ MP", u"2026/11/20 20:58");
  form.ingest(store);
  EXPECT_EQ(store.exchangeId(), 3);
  EXPECT_EQ(form.memoryView.rows->row(0)->count, 3);
}

}  // namespace
}  // namespace vordane::store
