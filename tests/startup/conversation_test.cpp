// Whole conversations with the exchange, call by call, for success and for each failure.
#include "startup/story.h"

namespace vordane::startup {
namespace {

using namespace std::string_literals;

class Conversation : public Story {
 protected:
  // A whole list, taken in and acknowledged.
  void fetch() {
    pressAndTick(0);
    exchange().answer(0, oneFault());
    tick();
    exchange().answerLamps(u"00");
    tick();
  }
};

const std::string listRequest = "SendRequest LEA0// tag 10 for PBX-1 as L1 busy True mode 0 key ";
const std::string acknowledgement = "SendRequest EA1/00/ tag 12 for PBX-1 as L1 busy False mode 0 key ";
const std::string resetRequest = "SendRequest EA1/00/CCC tag 11 for PBX-1 as L1 busy True mode 0 key ";

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

TEST_F(Conversation, AnotherIdentifierIsAnotherConversation) {
  startWithHost();
  pressAndTick(0);
  const auto answer = exchange().record();
  answer->loginId = u"L2"s;
  taken();
  exchange().callBack(answer);
  EXPECT_THAT(taken(), IsEmpty());
  EXPECT_TRUE(state.busy);
  answer->loginId = u""s;
  exchange().callBack(answer);
  EXPECT_THAT(taken(), testing::Contains("LogOut PBX-1& L1&"));
}

TEST_F(Conversation, AnUnreadableIdentifierStandsForTheOwnOne) {
  startWithHost();
  pressAndTick(0);
  const auto answer = exchange().record();
  answer->loginId = automation::Null{};
  exchange().callBack(answer);
  EXPECT_THAT(taken(), testing::Contains("LogOut PBX-1& L1&"));
}

TEST_F(Conversation, TheSecondAnswerIsIgnored) {
  startWithHost();
  pressAndTick(0);
  exchange().answer(0, oneFault());
  taken();
  exchange().answer(0, oneFault());
  EXPECT_THAT(taken(), IsEmpty());
}

TEST_F(Conversation, AnAnswerBeforeTheLogInHasReturnedIsIgnored) {
  startWithHost();
  pressAndTick(0);
  exchange().answer(61);
  exchange().duringLogin = [&] { exchange().answer(0, oneFault()); };
  taken();
  pressAndTick(0);
  EXPECT_EQ(taken().back(), "TurnOnFlow");
}

TEST_F(Conversation, AnAnswerBeforeSendRequestHasReturnedWinsOverItsText) {
  startWithHost();
  exchange().sendAnswer = u"ERROR"s;
  exchange().duringSend = [&] { exchange().answer(0, oneFault()); };
  pressAndTick(0);
  EXPECT_THAT(taken(), ElementsAre("(hourglass)", "Login PBX-1&", "ShowMessage PBX L1", listRequest,
                                   "ShowMessage Done", "ShowCode 0", "LogOut PBX-1& L1&", "TurnOffFlow",
                                   "(pointer)", "ShowMessage PBX ERROR"));
  EXPECT_TRUE(view.inputEnabled);
  EXPECT_TRUE(state.busy);
  EXPECT_EQ(view.timer, 100);
}

// A host is slow, or asked for the number of a member's name first: the answer overtakes what it is told.
TEST_F(Conversation, AnAnswerWhileTheHostHearsOfTheAcceptanceFollowsItsTurn) {
  for (const char16_t* member : {u"ShowMessage", u"TurnOnFlow"}) {
    SCOPED_TRACE(text::toUtf8(member));
    if (!application) startWithHost();
    host->meanwhile[member] = [&] {
      if (trace.back() != "ShowMessage PBX ACCEPTED" && trace.back() != "TurnOnFlow") return;
      exchange().answer(0, oneFault());
      EXPECT_EQ(form().session().response().Count(), 4) << "read while the server still keeps its record";
      EXPECT_FALSE(tick());
    };
    pressAndTick(0);
    host->meanwhile.clear();
    EXPECT_THAT(taken(),
                ElementsAre("(hourglass)", "Login PBX-1&", "ShowMessage PBX L1", listRequest,
                            "ShowMessage PBX ACCEPTED", "(disabled)", "TurnOnFlow", "ShowMessage Done",
                            "ShowCode 0", "LogOut PBX-1& L1&", "TurnOffFlow", "(enabled)", "(pointer)"));
    EXPECT_TRUE(view.inputEnabled);
    exchange().answer(0, oneFault());
    EXPECT_THAT(taken(), IsEmpty()) << "one answer for each request";
    tick();
    exchange().answerLamps(u"00");
    tick();
    EXPECT_FALSE(state.busy);
    taken();
  }
}

TEST_F(Conversation, AFailedAnswerWhileTheFlowIsTurnedOnEndsTheActionBehindIt) {
  startWithHost();
  host->meanwhile[u"TurnOnFlow"] = [&] { exchange().answer(61); };
  pressAndTick(0);
  const Lines lines = taken();
  EXPECT_EQ(Lines(lines.end() - 7, lines.end()),
            (Lines{"TurnOnFlow", "ShowMessage ", "ShowCode 61", "LogOut PBX-1& L1&", "TurnOffFlow",
                   "(enabled)", "(pointer)"}));
  EXPECT_FALSE(state.busy);
  EXPECT_EQ(view.timer, 0);
}

TEST_F(Conversation, OnlyTheKnownTagsLeadToAnAction) {
  for (const char16_t* tag : {u"5", u"6", u"0", u"99", u"", u"100", u"list"}) {
    if (!application) startWithHost();
    pressAndTick(0);
    const auto answer = exchange().record();
    automation::put(*answer, u"Tag", std::u16string(tag));
    exchange().callBack(answer);
    EXPECT_EQ(view.timer, 0);
    EXPECT_FALSE(state.busy);
  }
}

TEST_F(Conversation, AnEntryThatCantBeReadIsEmptyAtItsPlace) {
  startWithHost();
  pressAndTick(0);
  const auto answer = exchange().record(0, {u"a", u"b"});
  answer->broken = [](std::u16string_view member) { return member == u"FirstData"; };
  exchange().callBack(answer);
  EXPECT_EQ(form().session().response().Count(), 2);
  EXPECT_EQ(form().session().response().FirstData(0), u"");
  EXPECT_EQ(form().session().response().CMD(1), u"LEA0");
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

TEST_F(Conversation, AServerThatVanishesInTheMiddleIsAFailure) {
  startWithHost();
  pressAndTick(0);
  const auto answer = exchange().record(0, oneFault());
  int reads = 0;
  answer->broken = [&](std::u16string_view) { return ++reads > 5; };
  answer->brokenWith = static_cast<std::int32_t>(0x800706BA);
  exchange().callBack(answer);
  EXPECT_FALSE(state.busy);
  EXPECT_EQ(view.timer, 0);
  EXPECT_TRUE(view.inputEnabled);
  EXPECT_LT(reads, 12) << "a server that has gone is not asked again and again";
}

TEST_F(Conversation, AnUnreadableCodeIsAFailure) {
  startWithHost();
  pressAndTick(0);
  const auto answer = exchange().record(0, oneFault());
  answer->broken = [](std::u16string_view member) { return member == u"ErrCode"; };
  taken();
  exchange().callBack(answer);
  EXPECT_THAT(taken(),
              ElementsAre("ShowMessage ", "LogOut PBX-1& L1&", "TurnOffFlow", "(enabled)", "(pointer)"));
  EXPECT_EQ(view.timer, 0);
}

TEST_F(Conversation, WithoutACountTheCodeIsShownAndNothingFollows) {
  startWithHost();
  pressAndTick(0);
  const auto answer = exchange().record(0, oneFault());
  answer->broken = [](std::u16string_view member) { return member == u"Count"; };
  taken();
  exchange().callBack(answer);
  EXPECT_THAT(taken(), ElementsAre("ShowMessage ", "ShowCode 0", "LogOut PBX-1& L1&", "TurnOffFlow",
                                   "(enabled)", "(pointer)"));
  EXPECT_EQ(view.timer, 0) << "a list that nobody could read is not acknowledged";
  EXPECT_FALSE(state.busy);
}

TEST_F(Conversation, EntriesBeyondWholeGroupsAreNotTakenOver) {
  startWithHost();
  pressAndTick(0);
  const auto answer = exchange().record(0, oneFault());
  answer->count = std::int32_t{32766};
  exchange().callBack(answer);
  EXPECT_EQ(form().session().response().Count(), 32764);
  EXPECT_TRUE(form().session().received().truncated);
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

TEST_F(Conversation, ARequestKeepsTheExchangeItWasSentWith) {
  startWithHost();
  pressAndTick(0);
  registerPbx(u"PBX-2");
  taken();
  exchange().answer(0, oneFault());
  EXPECT_THAT(taken(), testing::Contains("LogOut PBX-1& L1&"));
  tick();
  EXPECT_THAT(taken(), testing::Contains(acknowledgement));
  exchange().answerLamps(u"00");
  tick();
  pressAndTick(0);
  EXPECT_THAT(taken(), testing::Contains("Login PBX-2&"));
}

TEST_F(Conversation, TheResetIsConfirmedAndTurnsTheLampsOff) {
  startWithHost();
  pressAndTick(0);
  exchange().answer(0, oneFault());
  tick();
  exchange().answerLamps(u"11");
  tick();
  ASSERT_TRUE(view.majorLit);
  taken();
  pressAndTick(1);
  EXPECT_EQ(state.stepCode, 20002);
  EXPECT_THAT(taken(), testing::Contains(resetRequest));
  const auto answer = exchange().record();
  automation::call(*exchange().request, u"AddToList",
                   {automation::byVal(u"EA1"s), automation::byVal(u"00"s), automation::byVal(u"CCC"s),
                    automation::byVal(u"OK"s)});
  exchange().callBack(answer);
  taken();
  tick();
  EXPECT_THAT(taken(), ElementsAre("Box 108  "));
  EXPECT_FALSE(view.majorLit);
  EXPECT_FALSE(state.busy);
}

TEST_F(Conversation, ARefusedResetEndsAndTheNextIsSent) {
  startWithHost();
  fetch();
  exchange().loginAnswer = u"BUSY"s;
  pressAndTick(1);
  EXPECT_FALSE(state.busy);
  EXPECT_EQ(view.timer, 0);
  exchange().loginAnswer = u"L1"s;
  exchange().sendAnswer = u"ERROR"s;
  pressAndTick(1);
  EXPECT_FALSE(state.busy);
  exchange().sendAnswer = u"ACCEPTED"s;
  taken();
  pressAndTick(1);
  EXPECT_THAT(taken(), testing::Contains(resetRequest));
}

TEST_F(Conversation, TheAddInIsBusyWhileItResetsPrintsAndDeletes) {
  startWithHost();
  fetch();
  pressAndTick(1);
  EXPECT_TRUE(state.busy);
  EXPECT_EQ(runSchedule(u"1"), 10001);
  exchange().answer(0);
  EXPECT_TRUE(state.busy);
  tick();
  EXPECT_FALSE(state.busy);

  std::int16_t answered = 0;
  host->meanwhile[u"PrintReport"] = [&] { answered = runSchedule(u"1"); };
  pressAndTick(2);
  EXPECT_EQ(answered, 10001);
  EXPECT_FALSE(state.busy);

  answered = 0;
  boxes.meanwhile = [&] { answered = runSchedule(u"1"); };
  pressAndTick(3);
  EXPECT_EQ(answered, 10001);
  EXPECT_FALSE(state.busy);
  EXPECT_EQ(state.runMode, RunMode::interactive);
}

TEST_F(Conversation, TheResetGoesToTheExchangeThatIsRegisteredWhenItIsPressed) {
  startWithHost();
  fetch();
  registerPbx(u"PBX-2");
  taken();
  pressAndTick(1);
  Lines lines = taken();
  EXPECT_THAT(lines, testing::Contains("Login PBX-2&"));
  EXPECT_THAT(lines,
              testing::Contains("SendRequest EA1/00/CCC tag 11 for PBX-2 as L1 busy True mode 0 key "));
  registerPbx(u"PBX-1");
  taken();
  exchange().answer(0);
  EXPECT_THAT(taken(), testing::Contains("LogOut PBX-2& L1&"));
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

TEST_F(Conversation, AnAnswerWhileARefusalIsShownIsIgnored) {
  startWithHost();
  exchange().sendAnswer = u"ERROR"s;
  host->meanwhile[u"ShowMessage"] = [&] {
    if (trace.back() == "ShowMessage PBX ERROR") exchange().answer(0, oneFault());
  };
  pressAndTick(0);
  EXPECT_THAT(taken(), ElementsAre("(hourglass)", "Login PBX-1&", "ShowMessage PBX L1", listRequest,
                                   "ShowMessage PBX ERROR", "LogOut PBX-1& L1&", "TurnOffFlow", "(pointer)"));
  EXPECT_EQ(form().session().response().Count(), 0);
  EXPECT_FALSE(state.busy);
  EXPECT_EQ(view.timer, 0);
}

TEST_F(Conversation, ATextIsCutAt65536CharactersAndTheAccountSaysSo) {
  startWithHost();
  for (const char16_t* column : {u"CMD", u"FirstData", u"SecondData", u"ExtraData"}) {
    SCOPED_TRACE(text::toUtf8(column));
    for (const std::size_t length : {65'536U, 65'537U}) {
      pressAndTick(0);
      const auto answer = exchange().record(0, oneFault());
      automation::Argument put[] = {automation::byVal(std::int16_t{3}),
                                    automation::byVal(std::u16string(length, u'x'))};
      exchange().request->invoke(column, automation::CallKind::put, put);
      exchange().callBack(answer);
      const auto& copy = form().session().response();
      EXPECT_EQ(copy.CMD(3).size() + copy.FirstData(3).size() + copy.SecondData(3).size() +
                    copy.ExtraData(3).size(),
                65'536U + (column == std::u16string_view(u"CMD") ? 0 : 4));
      tick();
      const std::string status = text::toUtf8(view.status[0]);
      if (length > 65'536)
        EXPECT_THAT(status, testing::EndsWith("refused: text cut"));
      else
        EXPECT_THAT(status, testing::EndsWith("refused"));
      exchange().answerLamps(u"00");
      tick();
      EXPECT_FALSE(state.busy);
    }
  }
}

TEST_F(Conversation, AMessageOfAnyLengthIsCutToo) {
  startWithHost();
  pressAndTick(0);
  const auto answer = exchange().record();
  answer->message = std::u16string(70'000, u'm');
  taken();
  exchange().callBack(answer);
  EXPECT_EQ(taken().front(), "ShowMessage " + std::string(65'536, 'm'));
}

// Of `count` entries whose four texts are as long as one may be.
std::shared_ptr<fakes::ScriptedObject> largeAnswer(std::int32_t count) {
  auto answer = std::make_shared<fakes::ScriptedObject>();
  const auto fixed = [&](const char16_t* member, const automation::Value& value) {
    answer->on(member, [value](auto) { return value; });
  };
  fixed(u"Count", count);
  fixed(u"ErrCode", std::int32_t{0});
  fixed(u"Tag", u"10"s);
  fixed(u"LoginID", u"L1"s);
  fixed(u"Message", u"large"s);
  for (const char16_t* column : {u"CMD", u"FirstData", u"SecondData", u"ExtraData"})
    fixed(column, std::u16string(65'536, u'x'));
  return answer;
}

TEST_F(Conversation, AnAnswerOfMoreThan256MegabytesHasFailed) {
  startWithHost();
  pressAndTick(0);
  exchange().callBack(largeAnswer(512));
  const Lines lines = taken();
  EXPECT_EQ(Lines(lines.end() - 6, lines.end()),
            (Lines{"ShowMessage large", "ShowCode 0", "LogOut PBX-1& L1&", "TurnOffFlow", "(enabled)",
                   "(pointer)"}));
  EXPECT_EQ(view.status[0], u"PBX-1 failed: too large.\nno list yet");
  EXPECT_EQ(form().session().response().Count(), 0) << "its memory is free again";
  EXPECT_EQ(view.timer, 0);
  EXPECT_FALSE(state.busy);

  pressAndTick(0);
  exchange().callBack(largeAnswer(511));
  EXPECT_EQ(form().session().response().Count(), 511);
  EXPECT_EQ(view.timer, 100) << "one entry less is taken in";
}

// An empty text in place of one that was there would be stored and acknowledged.
TEST_F(Conversation, AnEntryThatFoundNoRoomOnItsWayFailsTheAnswer) {
  startWithHost();
  pressAndTick(0);
  const auto answer = exchange().record(0, oneFault());
  answer->broken = [](std::u16string_view member) { return member == u"FirstData"; };
  answer->brokenWith = static_cast<std::int32_t>(0x8007000E);
  exchange().callBack(answer);
  EXPECT_EQ(view.notice, u"PBX-1: no memory");
  EXPECT_EQ(form().session().response().Count(), 0);
  EXPECT_EQ(view.timer, 0);
  EXPECT_FALSE(state.busy);
  fetch();
  EXPECT_EQ(view.rows->size(), 1U);
}

// Memory that runs out behind the conversation must not leave the add-in busy for good.
TEST_F(Conversation, AnActionThatBreaksOffIsOver) {
  startWithHost();
  pressAndTick(0);
  exchange().answer(0);
  boxes.meanwhile = [] { throw std::bad_alloc(); };
  EXPECT_THROW(tick(), std::bad_alloc);
  EXPECT_FALSE(state.busy);
  EXPECT_EQ(view.timer, 0);
  EXPECT_EQ(view.noticeKind, window::NoticeKind::failure);
  EXPECT_EQ(view.notice, u"PBX-1: no memory");
  boxes.meanwhile = nullptr;
  fetch();
  EXPECT_EQ(view.rows->size(), 1U);
  boxes.meanwhile = [] { throw std::bad_alloc(); };
  EXPECT_THROW(pressAndTick(3), std::bad_alloc);
  EXPECT_FALSE(state.busy);
  EXPECT_EQ(view.notice, u"") << "nothing was asked of the exchange";
}

TEST_F(Conversation, OnlyNoKeepsTheRequestBack) {
  host->sysInfo = std::int16_t{12};
  startWithHost();
  for (const int answer : {0, 1, 2, 6}) {
    boxes.answer = answer;
    pressAndTick(0);
    ASSERT_THAT(taken(), testing::Contains(listRequest)) << answer;
    exchange().answer(61);
    taken();
  }
}

TEST_F(Conversation, ACarefulExchangeIsAskedForOnlyWhenTheUserAgrees) {
  host->sysInfo = std::int16_t{12};
  startWithHost();
  ASSERT_TRUE(state.SysInfoBit8);
  boxes.answer = 7;
  pressAndTick(0);
  EXPECT_THAT(taken(), ElementsAre("Box 109  "));
  EXPECT_FALSE(state.busy);
  EXPECT_EQ(state.stepCode, 20000);
  boxes.answer = 6;
  pressAndTick(0);
  EXPECT_THAT(taken(), testing::Contains(listRequest));
}

}  // namespace
}  // namespace vordane::startup
