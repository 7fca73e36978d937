#include "store/store_fixture.h"

namespace vordane::store {
namespace {

using Lines = std::vector<std::string>;

class LampsTest : public StoreTest {
 protected:
  void answerLamps(std::u16string_view text) {
    form.answer.Clear();
    form.answer.AddToList(u"EA1", u"00", text);
  }
  void answerClear(std::initializer_list<std::u16string_view> texts) {
    form.answer.Clear();
    for (const auto text : texts) {
      form.answer.AddToList(u"EA1");
      form.answer.set(cListRequest::Column::ExtraData, form.answer.Count() - 1, text);
    }
  }
  std::string lamps(std::u16string_view name = u"PBX-1") {
    const auto row = database->inner().openRecordset(findExchange(name));
    if (row->recordCount() < 1) return "no row";
    return std::string(automation::toBoolean(row->get(u"MJ")) ? "MJ" : "--") +
           (automation::toBoolean(row->get(u"MN")) ? "MN" : "--");
  }
  std::int32_t colour(std::u16string_view lamp, std::u16string_view property) {
    return form.window.control(lamp).number(property);
  }
};

TEST_F(LampsTest, AreStoredFromTheTwoDigits) {
  addExchange(u"PBX-1", u"2020-01-01 00:00:00");
  const std::pair<std::u16string_view, std::string> cases[] = {
      {u"10", "MJ--"}, {u"01", "--MN"}, {u"11", "MJMN"}, {u"00", "----"}, {u"92", "MJMN"}, {u" 10 ", "MJ--"}};
  for (const auto& [text, expected] : cases) {
    answerLamps(text);
    store.UpDateAlarm(form.received());
    EXPECT_EQ(lamps(), expected);
  }
  EXPECT_EQ(form.trace, Lines{});
}

TEST_F(LampsTest, TakeNothingButTwoDigits) {
  addExchange(u"PBX-1", u"2020-01-01 00:00:00", true, false);
  for (const auto* text :
       {u"", u"1", u"1A", u"A1", u"111", u"+1", u"-1", u"1.", u".1", u"1 1", u"\uFF11\uFF10"}) {
    answerLamps(text);
    form.takeTrace();
    store.UpDateAlarm(form.received());
    EXPECT_EQ(form.trace, Lines{"Box 102"});
    EXPECT_EQ(lamps(), "MJ--");
  }
  EXPECT_TRUE(database->statements.empty());
}

TEST_F(LampsTest, AnAnswerWithoutEntriesIsNoLampState) {
  addExchange(u"PBX-1", u"2020-01-01 00:00:00");
  store.UpDateAlarm(form.received());
  EXPECT_EQ(form.trace, Lines{"Box 102"});
}

TEST_F(LampsTest, OfAnExchangeWithoutARowAreNotStored) {
  addExchange(u"PBX-2", u"2020-01-01 00:00:00");
  answerLamps(u"11");
  store.UpDateAlarm(form.received());
  EXPECT_EQ(form.trace, Lines{});
  EXPECT_EQ(lamps(), "no row");
  EXPECT_EQ(lamps(u"PBX-2"), "----");
}

TEST_F(LampsTest, BelongToTheExchangeOfTheRequest) {
  addExchange(u"PBX-1", u"2020-01-01 00:00:00");
  addExchange(u"PBX-2", u"2020-01-01 00:00:00");
  form.exchange = u"PBX-2";
  answerLamps(u"11");
  store.UpDateAlarm(form.received());
  EXPECT_EQ(lamps(u"PBX-1"), "----");
  EXPECT_EQ(lamps(u"PBX-2"), "MJMN");
}

TEST_F(LampsTest, GoOffAfterAConfirmedClear) {
  addExchange(u"PBX-1", u"2020-01-01 00:00:00", true, true);
  answerClear({u"OK", u"ok"});
  store.ClearAlarm(form.received());
  EXPECT_EQ(form.trace, Lines{"Box 108"});
  EXPECT_EQ(lamps(), "----");
}

TEST_F(LampsTest, AnEmptyClearAnswerPasses) {
  addExchange(u"PBX-1", u"2020-01-01 00:00:00", true, true);
  store.ClearAlarm(form.received());
  EXPECT_EQ(form.trace, Lines{"Box 108"});
  EXPECT_EQ(lamps(), "----");
}

TEST_F(LampsTest, StayAfterARefusedClear) {
  addExchange(u"PBX-1", u"2020-01-01 00:00:00", true, true);
  answerClear({u"OK", u"DATA ERROR"});
  store.ClearAlarm(form.received());
  EXPECT_EQ(form.trace, Lines{"Box 102"});
  EXPECT_EQ(lamps(), "MJMN");
  answerClear({u""});
  store.ClearAlarm(form.received());
  EXPECT_EQ(lamps(), "MJMN");
}

TEST_F(LampsTest, AConfirmationIsComparedAsItCame) {
  addExchange(u"PBX-1", u"2020-01-01 00:00:00", true, true);
  answerClear({u" OK"});
  EXPECT_FALSE(store.ClearAlarm(form.received()));
  EXPECT_EQ(form.takeTrace(), Lines{"Box 102"});
  EXPECT_EQ(lamps(), "MJMN");
  answerClear({u"OK "});
  EXPECT_TRUE(store.ClearAlarm(form.received()));
  EXPECT_EQ(form.takeTrace(), Lines{"Box 108"});
}

TEST_F(LampsTest, TheNewsOfAClearComesBeforeTheStoredStateChanges) {
  addExchange(u"PBX-1", u"2020-01-01 00:00:00", true, true);
  std::string during;
  form.meanwhile = [&](const std::string&) { during = lamps(); };
  store.ClearAlarm(form.received());
  EXPECT_EQ(during, "MJMN");
}

TEST_F(LampsTest, StayWhenTheFormWentAwayBehindTheNews) {
  addExchange(u"PBX-1", u"2020-01-01 00:00:00", true, true);
  form.meanwhile = [&](const std::string&) { form.living = false; };
  store.ClearAlarm(form.received());
  EXPECT_EQ(lamps(), "MJMN");
}

TEST_F(LampsTest, AnErrorOfTheDatabaseShowsItsText) {
  addExchange(u"PBX-1", u"2020-01-01 00:00:00");
  database->before = [](std::u16string_view step) {
    if (step == u"update") throw database::DatabaseError(3027, u"can't be written");
  };
  answerLamps(u"11");
  store.UpDateAlarm(form.received());
  EXPECT_EQ(form.takeTrace(), Lines{"Box 102 can't be written"});
  answerClear({u"OK"});
  store.ClearAlarm(form.received());
  EXPECT_EQ(form.takeTrace(), (Lines{"Box 108", "Box 102 can't be written"}));
  EXPECT_EQ(lamps(), "----");
  database->before = [](std::u16string_view) {};
  answerLamps(u"11");
  store.UpDateAlarm(form.received());
  EXPECT_EQ(form.takeTrace(), Lines{}) << "with the cause gone";
  EXPECT_EQ(lamps(), "MJMN");
  answerClear({u"OK"});
  store.ClearAlarm(form.received());
  EXPECT_EQ(form.takeTrace(), Lines{"Box 108"});
  EXPECT_EQ(lamps(), "----");
}

TEST_F(LampsTest, WithoutADatabaseReportOnce) {
  auto kept = std::move(form.database);
  answerLamps(u"1");
  store.UpDateAlarm(form.received());
  store.DisplayAlarm();
  EXPECT_EQ(form.takeTrace(), (Lines{"ShowMessage not open", "ShowCode 3024"}));
  store.ClearAlarm(form.received());
  store.DisplayAlarm();
  EXPECT_EQ(form.takeTrace(), (Lines{"ShowMessage not open", "ShowCode 3024"}));
  form.database = std::move(kept);
}

TEST_F(LampsTest, ArePaintedRedOrWhiteWithBlackText) {
  addExchange(u"PBX-1", u"2020-01-01 00:00:00", true, false);
  store.FillExchangeList();
  store.DisplayAlarm();
  EXPECT_EQ(colour(u"lblMJ", u"BackColor"), 255);
  EXPECT_EQ(colour(u"lblMN", u"BackColor"), 16777215);
  EXPECT_EQ(colour(u"lblMJ", u"ForeColor"), 0);
  EXPECT_EQ(colour(u"lblMN", u"ForeColor"), 0);
  EXPECT_TRUE(form.memoryView.majorLit);
  EXPECT_FALSE(form.memoryView.minorLit);
  EXPECT_EQ(database->statements.back(), u"Select * FROM PBXList WHERE PBXName = \"PBX-1\"");
}

TEST_F(LampsTest, TheirTextIsBlackWhateverColourItHad) {
  addExchange(u"PBX-1", u"2020-01-01 00:00:00", true, false);
  store.FillExchangeList();
  for (const char16_t* lamp : {u"lblMJ", u"lblMN"})
    form.window.control(lamp).set(u"ForeColor", std::int32_t{255});
  store.DisplayAlarm();
  EXPECT_EQ(colour(u"lblMJ", u"ForeColor"), 0) << "lit";
  EXPECT_EQ(colour(u"lblMN", u"ForeColor"), 0) << "not lit";
}

TEST_F(LampsTest, FollowTheExchangeThatIsChosen) {
  addExchange(u"PBX-1", u"2021-01-01 00:00:00", true, false);
  addExchange(u"PBX-2", u"2020-01-01 00:00:00", false, true);
  store.RefreshDisplay();
  EXPECT_EQ(colour(u"lblMJ", u"BackColor"), 255);
  form.window.control(u"drpPBXList").setListIndex(1);
  store.exchangeListClicked();
  EXPECT_EQ(colour(u"lblMJ", u"BackColor"), 16777215);
  EXPECT_EQ(colour(u"lblMN", u"BackColor"), 255);
}

TEST_F(LampsTest, AreWhiteForANameThatIsNotStored) {
  addExchange(u"PBX-1", u"2021-01-01 00:00:00", true, true);
  store.RefreshDisplay();
  database->inner().execute(deleteExchange(1));
  store.DisplayAlarm();
  EXPECT_EQ(colour(u"lblMJ", u"BackColor"), 16777215);
  EXPECT_EQ(colour(u"lblMN", u"BackColor"), 16777215);
  EXPECT_EQ(form.trace, Lines{});
}

TEST_F(LampsTest, AreWhiteWithoutADatabase) {
  addExchange(u"PBX-1", u"2021-01-01 00:00:00", true, true);
  store.RefreshDisplay();
  ASSERT_EQ(colour(u"lblMJ", u"BackColor"), 255);
  auto kept = std::move(form.database);
  store.DisplayAlarm();
  EXPECT_EQ(colour(u"lblMJ", u"BackColor"), 16777215);
  EXPECT_EQ(colour(u"lblMN", u"BackColor"), 16777215);
  form.database = std::move(kept);
}

TEST_F(LampsTest, AreWhiteWithoutAChosenExchange) {
  for (const char16_t* lamp : {u"lblMJ", u"lblMN"})
    form.window.control(lamp).set(u"BackColor", std::int32_t{255});
  form.memoryView.majorLit = form.memoryView.minorLit = true;
  store.DisplayAlarm();
  EXPECT_EQ(colour(u"lblMJ", u"BackColor"), 16777215);
  EXPECT_EQ(colour(u"lblMN", u"BackColor"), 16777215);
  EXPECT_FALSE(form.memoryView.majorLit);
  EXPECT_FALSE(form.memoryView.minorLit);
  EXPECT_TRUE(database->statements.empty());
}

TEST_F(LampsTest, GoOutWithTheLastExchange) {
  addExchange(u"PBX-1", u"2021-01-01 00:00:00", true, true);
  store.RefreshDisplay();
  ASSERT_EQ(colour(u"lblMJ", u"BackColor"), 255);
  ASSERT_EQ(colour(u"lblMN", u"BackColor"), 255);
  form.boxAnswer = 6;
  store.DeleteExchange();
  EXPECT_EQ(colour(u"lblMJ", u"BackColor"), 16777215);
  EXPECT_EQ(colour(u"lblMN", u"BackColor"), 16777215);
  EXPECT_FALSE(form.memoryView.majorLit);
  EXPECT_FALSE(form.memoryView.minorLit);
}

TEST_F(LampsTest, OfANewExchangeAreOff) {
  form.receive(u"01 MJ MP", u"2026/11/20 20:58");
  form.ingest(store);
  EXPECT_EQ(lamps(), "----");
  EXPECT_FALSE(form.memoryView.majorLit);
}

}  // namespace
}  // namespace vordane::store
