// Whole conversations with the exchange, call by call: the log-in, the request, what the host hears.
#include "startup/conversation.h"

namespace vordane::startup {
namespace {

using namespace std::string_literals;

TEST_F(Conversation, AListIsAskedForTakenInAndAcknowledged) {
  startWithHost();
  press(0);
  EXPECT_THAT(taken(), IsEmpty()) << "work runs from the timer alone";
  EXPECT_FALSE(state.busy);
  tick();
  EXPECT_EQ(state.stepCode, 20000);
  EXPECT_TRUE(state.busy);
  EXPECT_THAT(taken(), ElementsAre("(hourglass)", "Login PBX-1&", "ShowMessage PBX L1", listRequest,
                                   "ShowMessage PBX ACCEPTED", "(disabled)", "TurnOnFlow"));
  EXPECT_EQ(view.notice, u"waiting for PBX-1");

  exchange().answer(0, oneFault());
  EXPECT_THAT(taken(), ElementsAre("ShowMessage Done", "ShowCode 0", "LogOut PBX-1& L1&", "TurnOffFlow",
                                   "(enabled)", "(pointer)"));
  tick();
  EXPECT_EQ(state.stepCode, 20001);
  EXPECT_THAT(taken(), ElementsAre("(hourglass)", "Login PBX-1&", "ShowMessage PBX L1", acknowledgement,
                                   "ShowMessage PBX ACCEPTED", "(disabled)", "TurnOnFlow"));
  EXPECT_TRUE(state.busy);
  EXPECT_THAT(text::toUtf8(view.status[0]), testing::HasSubstr("1 received, 1 new, 0 stored, 0 refused"));

  exchange().answerLamps(u"10");
  EXPECT_THAT(taken(), ElementsAre("ShowMessage Done", "ShowCode 0", "LogOut PBX-1& L1&", "TurnOffFlow",
                                   "(enabled)", "(pointer)"));
  tick();
  EXPECT_THAT(taken(), IsEmpty());
  EXPECT_FALSE(state.busy);
  EXPECT_TRUE(view.majorLit);
  EXPECT_FALSE(view.minorLit);
  ASSERT_NE(view.rows, nullptr);
  EXPECT_EQ(view.rows->size(), 1U);
  EXPECT_EQ(view.timer, 0);
}

TEST_F(Conversation, TheSameListAgainAddsNothingAndSaysSo) {
  startWithHost();
  for (int i = 0; i < 2; ++i) {
    pressAndTick(0);
    exchange().answer(0, oneFault());
    trace.clear();
    tick();
    if (i == 1) {
      EXPECT_THAT(taken(), testing::IsSupersetOf({"ShowMessage nothing new"s, "Box 104  "s}));
    }
    exchange().answerLamps(u"00");
    tick();
  }
  EXPECT_EQ(view.rows->size(), 1U);
}

TEST_F(Conversation, AReFusedLogInSendsNothingAndLogsNothingOut) {
  for (const char16_t* answer : {u"BUSY", u"ERROR", u""}) {
    SCOPED_TRACE(text::toUtf8(answer));
    if (!application) startWithHost();
    exchange().loginAnswer = std::u16string(answer);
    pressAndTick(0);
    EXPECT_THAT(taken(), ElementsAre("(hourglass)", "Login PBX-1&", "ShowMessage PBX " + text::toUtf8(answer),
                                     "(pointer)"));
    EXPECT_FALSE(state.busy);
    EXPECT_EQ(view.timer, 0);
  }
  EXPECT_EQ(view.noticeKind, window::NoticeKind::failure);
}

TEST_F(Conversation, ALogInThatRaisesCountsAsEmpty) {
  startWithHost();
  exchange().loginRaises = true;
  pressAndTick(0);
  EXPECT_THAT(taken(), ElementsAre("(hourglass)", "Login PBX-1&", "ShowMessage PBX ", "(pointer)"));
  EXPECT_FALSE(state.busy);
}

TEST_F(Conversation, ARefusalIsComparedExactly) {
  startWithHost();
  exchange().loginAnswer = u"busy"s;
  pressAndTick(0);
  EXPECT_TRUE(state.busy) << "an identifier like any other";
}

TEST_F(Conversation, ARefusedRequestIsLoggedOut) {
  for (const char16_t* answer : {u"BUSY", u"ERROR", u""}) {
    SCOPED_TRACE(text::toUtf8(answer));
    if (!application) startWithHost();
    exchange().sendAnswer = std::u16string(answer);
    pressAndTick(0);
    EXPECT_THAT(taken(), ElementsAre("(hourglass)", "Login PBX-1&", "ShowMessage PBX L1", listRequest,
                                     "ShowMessage PBX " + text::toUtf8(answer), "LogOut PBX-1& L1&",
                                     "TurnOffFlow", "(pointer)"));
    EXPECT_FALSE(state.busy);
    exchange().answer(0, oneFault());
    EXPECT_THAT(taken(), IsEmpty()) << "nobody waits for an answer";
  }
}

TEST_F(Conversation, ASendingThatRaisesCountsAsEmpty) {
  startWithHost();
  exchange().sendRaises = true;
  pressAndTick(0);
  EXPECT_THAT(taken(), ElementsAre("(hourglass)", "Login PBX-1&", "ShowMessage PBX L1", listRequest,
                                   "ShowMessage PBX ", "LogOut PBX-1& L1&", "TurnOffFlow", "(pointer)"));
}

TEST_F(Conversation, WholeHundredsAreSuccess) {
  startWithHost();
  pressAndTick(0);
  taken();
  exchange().answer(200, oneFault());
  EXPECT_THAT(taken(), ElementsAre("ShowMessage Done", "ShowCode 200", "LogOut PBX-1& L1&", "TurnOffFlow",
                                   "(enabled)", "(pointer)"));
  EXPECT_EQ(view.timer, 100);
}

TEST_F(Conversation, AnErrorCodeEndsTheActionAfterTheSameSteps) {
  startWithHost();
  pressAndTick(0);
  taken();
  exchange().answer(61, oneFault());
  EXPECT_THAT(taken(), ElementsAre("ShowMessage ", "ShowCode 61", "LogOut PBX-1& L1&", "TurnOffFlow",
                                   "(enabled)", "(pointer)"));
  EXPECT_EQ(view.timer, 0);
  EXPECT_FALSE(state.busy);
  EXPECT_EQ(form().session().response().Count(), 4) << "the entries are copied all the same";
  EXPECT_EQ(view.status[0], u"PBX-1 failed: code 61.\nno list yet");
}

TEST_F(Conversation, AnAnswerWithoutEntriesStillRunsItsAction) {
  startWithHost();
  pressAndTick(0);
  exchange().answer(0);
  trace.clear();
  tick();
  EXPECT_THAT(taken(), testing::Contains("Box 104  "));
  EXPECT_TRUE(state.busy) << "the acknowledgement is under way";
}

TEST_F(Conversation, AMessageOfTheServersOwnIsShownAsItIs) {
  startWithHost();
  pressAndTick(0);
  const auto answer = exchange().record();
  answer->message = u"All read";
  taken();
  exchange().callBack(answer);
  EXPECT_EQ(taken().front(), "ShowMessage All read");
}

TEST_F(Conversation, ARecordWithoutAMessageShowsItsCodeAlone) {
  startWithHost();
  pressAndTick(0);
  const auto answer = exchange().record();
  answer->hasMessage = false;
  taken();
  exchange().callBack(answer);
  EXPECT_THAT(taken(),
              ElementsAre("ShowCode 0", "LogOut PBX-1& L1&", "TurnOffFlow", "(enabled)", "(pointer)"));
  EXPECT_EQ(view.timer, 100);
}

TEST_F(Conversation, OnlyTheCommandAndItsDataAreCopied) {
  startWithHost();
  pressAndTick(0);
  const auto answer = exchange().record();
  automation::call(*exchange().request, u"AddToList",
                   {automation::byVal(u"c"s), automation::byVal(u"f"s), automation::byVal(u"s"s),
                    automation::byVal(u"e"s), automation::byVal(u"d"s)});
  for (const char16_t* column : {u"CK", u"ERMFP", u"MSGFP"}) {
    automation::Argument arguments[] = {automation::byVal(std::int16_t{0}), automation::byVal(u"x"s)};
    exchange().request->invoke(column, automation::CallKind::put, arguments);
  }
  exchange().callBack(answer);
  const char16_t* const copied[cListRequest::columnCount] = {u"c", u"f", u"s", u"e", u"", u"", u"", u""};
  for (std::size_t i = 0; i < cListRequest::columnCount; ++i)
    EXPECT_EQ(form().session().response().at(static_cast<cListRequest::Column>(i), 0), copied[i]) << i;
}

TEST_F(Conversation, TheWindowGoesByValueAndTheRecordByReference) {
  startWithHost();
  bool callerByReference = true, recordByReference = false;
  exchange().on(u"Login", [&](auto arguments) {
    callerByReference = arguments[1].byReference;
    return automation::Value(u"L1"s);
  });
  exchange().on(u"SendRequest", [&](auto arguments) {
    recordByReference = arguments[0].byReference;
    return automation::Value(u"ERROR"s);
  });
  pressAndTick(0);
  EXPECT_FALSE(callerByReference);
  EXPECT_TRUE(recordByReference);
}

TEST_F(Conversation, AHostThatRaisesEverywhereStopsNothing) {
  startWithHost();
  for (const char16_t* name : {u"ShowMessage", u"ShowCode", u"TurnOnFlow", u"TurnOffFlow"})
    host->remove(name);
  exchange().remove(u"LogOut");
  pressAndTick(0);
  exchange().answer(0, oneFault());
  EXPECT_TRUE(view.inputEnabled);
  tick();
  exchange().answerLamps(u"01");
  tick();
  EXPECT_FALSE(state.busy);
  EXPECT_EQ(view.rows->size(), 1U);
  EXPECT_TRUE(view.minorLit);
}

TEST_F(Conversation, AHostWithoutAServerFailsTheLogIn) {
  startWithHost();
  host->remove(u"oPBX");
  pressAndTick(0);
  EXPECT_THAT(taken(), ElementsAre("(hourglass)", "ShowMessage PBX ", "(pointer)"));
  EXPECT_FALSE(state.busy);
}

TEST_F(Conversation, TheServerIsReadAfreshForEachCall) {
  startWithHost();
  auto second = std::make_shared<fakes::MemoryExchange>(trace);
  exchange().duringLogin = [&] {
    host->on(u"oPBX", [&](auto) { return automation::Value(automation::ObjectRef(second)); });
  };
  pressAndTick(0);
  EXPECT_EQ(exchange().request, nullptr);
  EXPECT_NE(second->request, nullptr);
}

TEST_F(Conversation, ModeAndKeyBelongToRunsAlone) {
  startWithHost();
  form().job().setKey(u"9");
  fetch();
  pressAndTick(1);
  const Lines lines = taken();
  for (const auto& request : {listRequest, acknowledgement, resetRequest})
    EXPECT_THAT(lines, testing::Contains(request));
}

}  // namespace
}  // namespace vordane::startup
