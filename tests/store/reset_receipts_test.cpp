// What a reset leaves behind: written before its box, once, whatever came of it, and in nobody's way.
#include "store/reset_receipts.h"

#include "store/store_fixture.h"

namespace vordane::store {
namespace {

using database::Receipt;
using database::ReceiptEntry;
using pbx::Failure;
using Lines = std::vector<std::string>;

class ResetReceiptsTest : public StoreTest {
 protected:
  ResetReceiptsTest() {
    form.program.person = u"anna";
    form.program.workstation = u"STATION-3";
    form.shared.Messages[message::lampsReset] = u"{1} {2} {3} confirmed";
    form.shared.Messages[message::lampsNotReset] = u"{1} {2} {3} failed: {4}";
    form.shared.Messages[message::reasonNoAnswer] = u"no answer";
    form.shared.Messages[message::reasonClearAnswer] = u"it says no";
    form.shared.Messages[message::reasonErrorCode] = u"code {1}";
    form.shared.Messages[message::reasonUnreachable] = u"unreachable {1}";
    form.shared.Messages[message::statusNoReceipt] = u"no receipt: {1}";
    addExchange(u"PBX-1", u"2020-01-01 00:00:00", true, false);
    store.RefreshDisplay();
    form.takeTrace();
  }
  void answer(std::initializer_list<std::u16string_view> texts) {
    form.answer.Clear();
    for (const auto text : texts) {
      form.answer.AddToList(u"EA1", u"00", u"CCC");
      form.answer.set(cListRequest::Column::ExtraData, form.answer.Count() - 1, text);
    }
  }
  bool reset(std::initializer_list<std::u16string_view> texts) {
    form.receipts.begin(u"PBX-1");
    answer(texts);
    return store.ClearAlarm(form.received());
  }
  void fail(Failure failure, std::int32_t code = 0, const cListRequest* answer = nullptr) {
    form.receipts.begin(u"PBX-1");
    form.receipts.failed({step::alarmClearRequest, u"PBX-1", failure, code, answer});
  }
  std::vector<Receipt> kept() {
    std::vector<Receipt> all;
    database->inner().receipts()->read([&](const Receipt& receipt) { all.push_back(receipt); });
    return all;
  }
  std::string note() { return text::toUtf8(form.memoryView.lampNote); }
  std::string line() { return text::toUtf8(form.memoryView.status[0]); }
  void refuse() {
    database->beforeReceipts = [] { throw database::DatabaseError(3027, u"it can't be written"); };
  }
};

TEST_F(ResetReceiptsTest, AConfirmedOneTellsWhoWhereWhenAndWhatTheExchangeSaid) {
  EXPECT_TRUE(reset({u"OK", u"ok"}));
  const auto all = kept();
  ASSERT_EQ(all.size(), 1U);
  EXPECT_EQ(all[0].moment, u"2026-11-20 21:14:05");
  EXPECT_EQ(all[0].exchange, u"PBX-1");
  EXPECT_EQ(all[0].person, u"anna");
  EXPECT_EQ(all[0].workstation, u"STATION-3");
  EXPECT_EQ(all[0].lamps, (database::ReceiptLamps{true, false})) << "as they were before";
  EXPECT_EQ(all[0].outcome, u"confirmed");
  EXPECT_EQ(all[0].answered, 2);
  EXPECT_EQ(all[0].entries,
            (std::vector<ReceiptEntry>{{u"EA1", u"00", u"CCC", u"OK"}, {u"EA1", u"00", u"CCC", u"ok"}}));
}

TEST_F(ResetReceiptsTest, IsWrittenBeforeTheBox) {
  std::vector<std::u16string> during;
  form.meanwhile = [&](const std::string& box) {
    during.push_back(text::fromUtf8(box) + u": " + kept().at(0).outcome);
  };
  reset({u"OK"});
  reset({u"DATA ERROR"});
  EXPECT_EQ(during, (std::vector<std::u16string>{u"Box 108: confirmed", u"Box 102: not confirmed"}));
}

TEST_F(ResetReceiptsTest, StaysWhenTheWindowGoesBehindTheBox) {
  form.meanwhile = [&](const std::string&) { form.living = false; };
  reset({u"OK"});
  EXPECT_EQ(kept().size(), 1U);
}

TEST_F(ResetReceiptsTest, TheTimeIsThatOfTheAsking) {
  form.receipts.begin(u"PBX-1");
  form.setClock.time.hour = 23;
  answer({u"OK"});
  store.ClearAlarm(form.received());
  EXPECT_EQ(kept().at(0).moment, u"2026-11-20 21:14:05");
}

TEST_F(ResetReceiptsTest, EveryFailureHasAWordAndASentence) {
  struct {
    Failure failure;
    std::int32_t code;
    const char16_t* outcome;
    std::optional<std::int32_t> kept;
    std::string note;
  } const cases[] = {
      {Failure::declined, 0, u"declined", {}, "M205"},
      {Failure::loginBusy, 0, u"exchange busy", {}, "M197"},
      {Failure::loginRefused, 0, u"log-in refused", {}, "M198"},
      {Failure::unreachable, static_cast<std::int32_t>(0x800706BAU), u"exchange unreachable", -2147023174,
       "unreachable 0x800706BA"},
      {Failure::noServer, 0, u"no exchange server", {}, "M200"},
      {Failure::sendFailed, 0, u"request refused", {}, "M199"},
      {Failure::errorCode, 61, u"error code", 61, "code 61"},
      {Failure::unreadable, 61, u"answer unreadable", {}, "M202"},
      {Failure::tooLarge, 0, u"answer too large", {}, "M239"},
      {Failure::noMemory, 0, u"no memory", {}, "M241"},
      {Failure::cancelled, 61, u"cancelled", {}, "M205"},
  };
  for (const auto& row : cases) {
    fail(row.failure, row.code);
    EXPECT_EQ(kept().at(0).outcome, row.outcome);
    EXPECT_EQ(kept().at(0).code, row.kept) << row.note;
    EXPECT_EQ(kept().at(0).answered, 0);
    EXPECT_EQ(note(), "20.11.2026 21:14:05 anna STATION-3 failed: " + row.note);
  }
  EXPECT_EQ(kept().size(), std::size(cases));
}

TEST_F(ResetReceiptsTest, AnAnswerThatFailedIsKeptWithItsLines) {
  answer({u"WAIT"});
  fail(Failure::errorCode, 61, &form.answer);
  EXPECT_EQ(kept().at(0).answered, 1);
  EXPECT_EQ(kept().at(0).entries, (std::vector<ReceiptEntry>{{u"EA1", u"00", u"CCC", u"WAIT"}}));
}

TEST_F(ResetReceiptsTest, OfALongAnswerTheBeginningIsKept) {
  form.answer.Clear();
  for (int i = 0; i < 1001; ++i) form.answer.AddToList(std::u16string(1001, u'x'), text::decimal(i));
  fail(Failure::errorCode, 61, &form.answer);
  EXPECT_EQ(kept().at(0).answered, 1001);
  ASSERT_EQ(kept().at(0).entries.size(), 1000U);
  EXPECT_EQ(kept().at(0).entries[999].first, u"999");
  EXPECT_EQ(kept().at(0).entries[0].command, std::u16string(1000, u'x'));
}

TEST_F(ResetReceiptsTest, EachHasOneAndWhatIsNoResetHasNone) {
  answer({u"OK"});
  store.ClearAlarm(form.received());
  EXPECT_TRUE(kept().empty()) << "nobody asked for it";
  form.receipts.ended();
  EXPECT_TRUE(kept().empty());
  form.receipts.begin(u"PBX-1");
  form.receipts.failed({step::faultListRequest, u"PBX-1", Failure::loginBusy});
  EXPECT_TRUE(kept().empty()) << "another request's failure";
  form.receipts.ended();
  form.receipts.ended();
  form.receipts.failed({step::alarmClearRequest, u"PBX-1", Failure::loginBusy});
  ASSERT_EQ(kept().size(), 1U);
  EXPECT_EQ(kept()[0].outcome, u"no answer");
}

TEST_F(ResetReceiptsTest, AnUnattendedRunLeavesNone) {
  form.shared.runMode = RunMode::scheduledRun;
  reset({u"OK"});
  fail(Failure::loginBusy);
  EXPECT_TRUE(kept().empty());
}

TEST_F(ResetReceiptsTest, OneThatCantBeWrittenStopsNothingAndIsTold) {
  refuse();
  EXPECT_TRUE(reset({u"OK"}));
  EXPECT_EQ(form.takeTrace(), Lines{"Box 108"});
  EXPECT_EQ(column(allExchanges, u"MJ"), (std::vector<std::u16string>{u"False"}));
  EXPECT_EQ(line(), "no receipt: it can't be written\nM225");
  EXPECT_FALSE(reset({u"DATA ERROR"}));
  EXPECT_EQ(form.takeTrace(), Lines{"Box 102"});
  // The cause is gone: the next one is kept, and the sentence with it.
  database->beforeReceipts = [] {};
  reset({u"OK"});
  EXPECT_EQ(kept().size(), 1U);
  EXPECT_EQ(form.status.line(), u"M225");
}

TEST_F(ResetReceiptsTest, WantOfMemoryForOneStopsNothing) {
  database->beforeReceipts = [] { throw std::bad_alloc(); };
  EXPECT_TRUE(reset({u"OK"}));
  EXPECT_EQ(form.takeTrace(), Lines{"Box 108"});
}

TEST_F(ResetReceiptsTest, WhereNoneAreKeptNothingIsSaid) {
  database->keepsReceipts = false;
  EXPECT_TRUE(reset({u"OK"}));
  EXPECT_EQ(form.takeTrace(), Lines{"Box 108"});
  EXPECT_EQ(line(), "M225");
  EXPECT_EQ(note(), "");
}

TEST_F(ResetReceiptsTest, TheLatestOfTheExchangeShownStandsBesideTheLamps) {
  EXPECT_EQ(note(), "");
  reset({u"OK"});
  EXPECT_EQ(note(), "20.11.2026 21:14:05 anna STATION-3 confirmed");
  reset({u"DATA ERROR"});
  EXPECT_EQ(note(), "20.11.2026 21:14:05 anna STATION-3 failed: it says no");
  addExchange(u"PBX-2", u"2019-01-01 00:00:00");
  store.RefreshDisplay();
  form.window.control(u"drpPBXList").setListIndex(1);
  store.exchangeListClicked();
  EXPECT_EQ(note(), "") << "of the other exchange";
  form.window.control(u"drpPBXList").setListIndex(0);
  store.exchangeListClicked();
  EXPECT_EQ(note(), "20.11.2026 21:14:05 anna STATION-3 failed: it says no");
  form.receipts.begin(u"PBX-1");
  form.receipts.ended();
  EXPECT_EQ(note(), "20.11.2026 21:14:05 anna STATION-3 failed: no answer");
}

TEST_F(ResetReceiptsTest, TheNoteGoesWithWhatIsShownAndComesBack) {
  reset({u"OK"});
  form.boxAnswer = 6;
  store.DeleteExchange();
  EXPECT_EQ(note(), "") << "nothing is shown";
  EXPECT_EQ(kept().size(), 1U) << "the receipt stays";
  addExchange(u"pbx-1", u"2020-01-01 00:00:00");
  store.RefreshDisplay();
  EXPECT_EQ(note(), "20.11.2026 21:14:05 anna STATION-3 confirmed");
  auto gone = std::move(form.database);
  store.DisplayAlarm();
  EXPECT_EQ(note(), "");
  form.database = std::move(gone);
}

TEST_F(ResetReceiptsTest, WhatCantBeReadIsNotShownAndStopsNoDisplay) {
  reset({u"OK"});
  refuse();
  form.takeTrace();
  store.RefreshDisplay();
  EXPECT_EQ(note(), "");
  EXPECT_EQ(form.takeTrace(), Lines{});
  EXPECT_EQ(form.window.control(u"drpPBXList").items().size(), 1U);
}

TEST_F(ResetReceiptsTest, AWordOfALaterVersionStandsForItself) {
  Receipt later;
  later.moment = u"2026-11-20 21:14:05";
  later.exchange = u"PBX-1";
  later.outcome = u"half done";
  database->inner().receipts()->keep(later);
  store.RefreshDisplay();
  EXPECT_EQ(note(), "20.11.2026 21:14:05   failed: half done");
}

}  // namespace
}  // namespace vordane::store
