// Answers beyond what is taken over.
#include "startup/conversation.h"

namespace vordane::startup {
namespace {

using namespace std::string_literals;

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

}  // namespace
}  // namespace vordane::startup
