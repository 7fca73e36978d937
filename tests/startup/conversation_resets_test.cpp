// What is confirmed, asked back and busy: resets, and actions that end before their time.
#include "startup/conversation.h"

namespace vordane::startup {
namespace {

using namespace std::string_literals;

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
