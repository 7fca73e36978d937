// Which answers of the exchange server are taken, when they come and what they hold.
#include "startup/conversation.h"

namespace vordane::startup {
namespace {

using namespace std::string_literals;

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

// A server that has gone isn't asked for the rest of its answer; one that fails otherwise is.
TEST_F(Conversation, EveryWayOfBeingGoneIsOne) {
  startWithHost();
  const auto readsWith = [&](std::uint32_t code) {
    pressAndTick(0);
    const auto answer = exchange().record(0, oneFault());
    int reads = 0;
    answer->broken = [&](std::u16string_view) { return ++reads > 5; };
    answer->brokenWith = static_cast<std::int32_t>(code);
    exchange().callBack(answer);
    EXPECT_NE(view.status[0].find(u"gone"), std::u16string::npos);
    return reads;
  };
  const int asked = readsWith(0x80004005U);  // E_FAIL
  for (const std::uint32_t gone :
       {0x800706BAU, 0x800706BEU, 0x80010108U, 0x80010007U, 0x80010012U, 0x800401FDU})
    EXPECT_LT(readsWith(gone), asked) << std::hex << gone;
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

}  // namespace
}  // namespace vordane::startup
