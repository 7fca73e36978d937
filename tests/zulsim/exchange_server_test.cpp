#include "zulsim/core/exchange_server.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "zulsim/fakes.h"

namespace vordane::zulsim {
namespace {

using automation::AutomationError;
using automation::byRef;
using automation::byVal;
using testing::ElementsAre;

// One program with a scenario, a server object in it and a caller that talks to it late-bound.
class ExchangeServerTest : public testing::Test {
 protected:
  void load(std::string_view text) {
    ParsedScenario parsed = parseScenario(text);
    ASSERT_EQ(parsed.problems, std::vector<lines::Problem>{});
    scenario_ = std::move(parsed.scenario);
    simulation_ = std::make_shared<Simulation>(scenario_, timers_);
    server_ = std::make_shared<ExchangeServer>(simulation_);
  }

  std::string login(std::u16string name = u"A") {
    return text::toUtf8(automation::toText(automation::call(
        *server_, u"Login", {byRef(std::move(name)), byVal(automation::ObjectRef(caller_))})));
  }

  // A record as the program fills it, sent under the log-in `id`.
  std::string send(const std::string& id, std::u16string command, std::u16string first = {},
                   std::u16string second = {}) {
    sent_ = std::make_shared<AnswerRecord>();
    sent_->addEntry(command, {std::move(first), std::move(second), {}, {}});
    sent_->setScalar(u"LoginID", text::fromUtf8(id));
    sent_->setScalar(u"Tag", std::u16string(u"10"));
    return text::toUtf8(automation::toText(
        automation::call(*server_, u"SendRequest", {byRef(automation::ObjectRef(sent_))})));
  }

  void logOut(const std::string& id, std::u16string name = u"A") {
    automation::call(*server_, u"LogOut", {byRef(std::move(name)), byRef(text::fromUtf8(id))});
  }

  HandTimers timers_;
  Scenario scenario_;
  std::shared_ptr<Simulation> simulation_;
  std::shared_ptr<ExchangeServer> server_;
  std::shared_ptr<FakeCaller> caller_ = std::make_shared<FakeCaller>();
  std::shared_ptr<AnswerRecord> sent_;
};

TEST_F(ExchangeServerTest, AnswersAfterSendRequestHasReturned) {
  load("exchange A\nanswer LEA0\nfault 01 MN MP 00 | 06/11/27 10:15 | 0C | 00\nmessage ready\ndelay 500\n");
  const std::string id = login();
  EXPECT_EQ(id, "SIM-1");
  EXPECT_EQ(send(id, u"LEA0"), "ACCEPTED-1");
  timers_.pass(499);
  EXPECT_EQ(caller_->calls, 0);
  timers_.pass(1);
  ASSERT_EQ(caller_->calls, 1);
  EXPECT_EQ(caller_->heard[0].loginId, "SIM-1");
  EXPECT_EQ(caller_->heard[0].tag, "10");
  EXPECT_EQ(caller_->heard[0].message, "ready");
  EXPECT_EQ(caller_->heard[0].errCode, 0);
  EXPECT_THAT(caller_->heard[0].first, ElementsAre("01 MN MP 00", "06/11/27 10:15", "0C", "00"));
  EXPECT_NE(caller_->record, automation::ObjectRef(sent_));
}

TEST_F(ExchangeServerTest, AnAnswerWithoutDelayStillComesLater) {
  load("exchange A\n");
  send(login(), u"LEA0");
  EXPECT_EQ(caller_->calls, 0);
  timers_.pass(0);
  EXPECT_EQ(caller_->calls, 1);
}

TEST_F(ExchangeServerTest, AnAnswerWaitsForItsWordsOneAfterTheOther) {
  load("exchange A\nanswer LEA0\ndelay 500\nwhen heard tried\nthen answered\n");
  const std::string id = login();
  send(id, u"LEA0");
  timers_.pass(5000);
  EXPECT_EQ(caller_->calls, 0);
  timers_.words = {u"tried", u"other"};
  timers_.pass(5000);
  EXPECT_EQ(caller_->calls, 0) << "the first word is still missing";
  timers_.words.push_back(u"heard");
  caller_->onCallBack = [&] { EXPECT_EQ(timers_.words, std::vector<std::u16string>{u"other"}); };
  timers_.pass(100);
  EXPECT_EQ(caller_->calls, 1);
  EXPECT_EQ(timers_.words, (std::vector<std::u16string>{u"other", u"answered"}));
  send(id, u"LEA0");
  timers_.pass(5000);
  EXPECT_EQ(caller_->calls, 1) << "words that were taken count once";
}

TEST_F(ExchangeServerTest, AWordThatCameEarlyDoesNotShortenTheDelay) {
  load("exchange A\nanswer LEA0\ndelay 500\nwhen heard\n");
  timers_.words = {u"heard"};
  send(login(), u"LEA0");
  timers_.pass(499);
  EXPECT_EQ(caller_->calls, 0);
  timers_.pass(1);
  EXPECT_EQ(caller_->calls, 1);
}

TEST_F(ExchangeServerTest, ALogOutEndsTheWaitForAWord) {
  load("exchange A\nanswer LEA0\nwhen heard\n");
  const std::string id = login();
  send(id, u"LEA0");
  timers_.pass(100);
  logOut(id);
  timers_.words = {u"heard"};
  timers_.pass(5000);
  EXPECT_EQ(caller_->calls, 0);
  EXPECT_EQ(timers_.words, std::vector<std::u16string>{u"heard"});
}

TEST_F(ExchangeServerTest, ACancelledRequestIsAnsweredAtItsWord) {
  load("exchange A\ncancelled-when cancelled\nanswer LEA0\nnever\n");
  const std::string id = login();
  send(id, u"LEA0");
  automation::call(*server_, u"CancelRequest", {byRef(std::u16string(u"A")), byRef(text::fromUtf8(id))});
  timers_.pass(60000);
  EXPECT_EQ(caller_->calls, 0);
  timers_.words = {u"cancelled"};
  timers_.pass(100);
  ASSERT_EQ(caller_->calls, 1);
  EXPECT_EQ(caller_->heard[0].errCode, 61);
}

TEST_F(ExchangeServerTest, LogInsAreUsedInTurnAndTheLastHolds) {
  load(
      "exchange A\nlogin answer BUSY\nlogin answer ERROR\nlogin empty\nlogin raise 0x800A01AD no line\nlogin "
      "accept L\n");
  EXPECT_EQ(login(), "BUSY");
  EXPECT_EQ(login(), "ERROR");
  EXPECT_EQ(login(), "");
  try {
    login();
    FAIL() << "the fourth log-in raises";
  } catch (const AutomationError& failure) {
    EXPECT_EQ(failure.code(), static_cast<std::int32_t>(0x800A01AD));
    EXPECT_EQ(failure.description(), u"no line");
  }
  EXPECT_EQ(login(), "L");
  EXPECT_EQ(login(), "L");
}

TEST_F(ExchangeServerTest, AnUnknownExchangeIsAnError) {
  load("exchange A\n");
  EXPECT_EQ(login(u"B"), "ERROR");
}

TEST_F(ExchangeServerTest, ASlowLogInPauses) {
  load("exchange A\nlogin after 12000 accept\n");
  EXPECT_EQ(login(), "SIM-1");
  EXPECT_EQ(timers_.paused, 12000);
}

TEST_F(ExchangeServerTest, ARefusedRequestIsNeverAnswered) {
  load("exchange A\nsend answer BUSY\nsend answer ERROR\nsend empty\nsend raise\nsend answer OK\n");
  const std::string id = login();
  EXPECT_EQ(send(id, u"LEA0"), "BUSY");
  EXPECT_EQ(send(id, u"LEA0"), "ERROR");
  EXPECT_EQ(send(id, u"LEA0"), "");
  EXPECT_THROW(send(id, u"LEA0"), AutomationError);
  timers_.pass(60000);
  EXPECT_EQ(caller_->calls, 0);
  EXPECT_EQ(send(id, u"LEA0"), "OK");
  timers_.pass(0);
  EXPECT_EQ(caller_->calls, 1);
}

TEST_F(ExchangeServerTest, ARequestNeedsALogIn) {
  load("exchange A\n");
  EXPECT_EQ(send("SIM-1", u"LEA0"), "ERROR");
  const std::string id = login();
  logOut(id);
  EXPECT_EQ(send(id, u"LEA0"), "ERROR");
}

TEST_F(ExchangeServerTest, AnswersAreUsedInTurn) {
  load("exchange A\nrepeat all\nanswer LEA0\nerrcode 61\nanswer LEA0\nerrcode 200\n");
  for (int i = 0; i < 3; ++i) {
    send(login(), u"LEA0");
    timers_.pass(0);
  }
  ASSERT_EQ(caller_->heard.size(), 3U);
  EXPECT_EQ(caller_->heard[0].errCode, 61);
  EXPECT_EQ(caller_->heard[1].errCode, 200);
  EXPECT_EQ(caller_->heard[2].errCode, 61);
}

TEST_F(ExchangeServerTest, SilenceLastsUntilItIsCancelled) {
  load("exchange A\nanswer LEA0\nnever\n");
  const std::string id = login();
  send(id, u"LEA0");
  timers_.pass(3600000);
  EXPECT_EQ(caller_->calls, 0);
  automation::call(*server_, u"CancelRequest", {byRef(std::u16string(u"A")), byRef(text::fromUtf8(id))});
  timers_.pass(1499);
  EXPECT_EQ(caller_->calls, 0);
  timers_.pass(1);
  ASSERT_EQ(caller_->calls, 1);
  EXPECT_EQ(caller_->heard[0].errCode, 61);
  EXPECT_EQ(caller_->heard[0].message, "ZUL_USERCANCEL");
  EXPECT_THAT(caller_->heard[0].first, ElementsAre("ZUL_USERCANCEL"));
}

TEST_F(ExchangeServerTest, ACancelledAnswerDoesNotComeAsWell) {
  load("exchange A\nanswer LEA0\ndelay 1000\n");
  const std::string id = login();
  send(id, u"LEA0");
  server_->CancelRequest(u"A", text::fromUtf8(id));
  timers_.pass(5000);
  EXPECT_EQ(caller_->calls, 1);
  EXPECT_EQ(caller_->heard[0].errCode, 61);
}

TEST_F(ExchangeServerTest, ACancellationCanBeIgnored) {
  load("exchange A\ncancel ignore\nanswer LEA0\ndelay 1000\n");
  const std::string id = login();
  send(id, u"LEA0");
  server_->CancelRequest(u"A", text::fromUtf8(id));
  timers_.pass(5000);
  ASSERT_EQ(caller_->calls, 1);
  EXPECT_EQ(caller_->heard[0].errCode, 0);
}

TEST_F(ExchangeServerTest, AnEarlyAnswerComesBeforeSendRequestReturns) {
  load("exchange A\nanswer LEA0\nearly\n");
  const std::string id = login();
  caller_->onCallBack = [&] { logOut(id); };  // as the program does
  EXPECT_EQ(send(id, u"LEA0"), "ACCEPTED-1");
  EXPECT_EQ(caller_->calls, 1);
  timers_.pass(5000);
  EXPECT_EQ(caller_->calls, 1);
}

TEST_F(ExchangeServerTest, AnsweringTwiceOutlivesTheLogOutBetween) {
  load("exchange A\nanswer LEA0\ntwice\n");
  const std::string id = login();
  caller_->onCallBack = [&] { logOut(id); };
  send(id, u"LEA0");
  timers_.pass(0);
  EXPECT_EQ(caller_->calls, 2);
}

TEST_F(ExchangeServerTest, TheCallersErrorIsItsOwnAffair) {
  load("exchange A\nanswer LEA0\ntwice\n");
  caller_->failing = true;
  send(login(), u"LEA0");
  timers_.pass(0);
  EXPECT_EQ(caller_->calls, 2);
  EXPECT_THAT(timers_.lines, testing::Contains("CallBack failed"));
}

TEST_F(ExchangeServerTest, AWrongLogInIdentifierAndTag) {
  load("exchange A\nanswer LEA0\nlogin-id SOMEBODY\ntag 99\n");
  send(login(), u"LEA0");
  timers_.pass(0);
  EXPECT_EQ(caller_->heard.at(0).loginId, "SOMEBODY");
  EXPECT_EQ(caller_->heard.at(0).tag, "99");
}

TEST_F(ExchangeServerTest, ARecordWithoutMessage) {
  load("exchange A\nanswer LEA0\nomit Message\n");
  send(login(), u"LEA0");
  timers_.pass(0);
  EXPECT_EQ(caller_->heard.at(0).message, "(no Message)");
}

TEST_F(ExchangeServerTest, CanFillTheCallersOwnRecord) {
  load("exchange A\nanswer LEA0\nsent-record\nerrcode 1\nentry ZUL_TIMEOUT\n");
  send(login(), u"LEA0");
  timers_.pass(0);
  EXPECT_EQ(caller_->record, automation::ObjectRef(sent_));
  EXPECT_THAT(caller_->heard.at(0).first, ElementsAre("ZUL_TIMEOUT"));
  EXPECT_EQ(caller_->heard.at(0).errCode, 1);
}

TEST_F(ExchangeServerTest, AListCutShortAndOneWithALooseEnd) {
  load(
      "exchange A\nanswer LEA0\nfault 01 MN MP 00 | 06/11/27\ncut\nanswer LEA0\nfault 01 MN MP 00 | "
      "06/11/27\ndrop-last 3\n");
  for (int i = 0; i < 2; ++i) send(login(), u"LEA0");
  timers_.pass(0);
  EXPECT_THAT(caller_->heard.at(0).first, ElementsAre("01 MN MP 00", "06/11/27", "", "", "ZUL_TIMEOUT"));
  EXPECT_THAT(caller_->heard.at(1).first, ElementsAre("01 MN MP 00"));
}

TEST_F(ExchangeServerTest, WithoutAnswersOfItsOwnAnExchangeBehavesOrdinarily) {
  load("exchange A\nalarm 10\n");
  for (const auto& [first, second] :
       {std::pair<std::u16string, std::u16string>{u"", u""}, {u"00", u""}, {u"00", u"CCC"}, {u"00", u""}}) {
    send(login(), first.empty() ? u"LEA0" : u"EA1", first, second);
    timers_.pass(0);
  }
  ASSERT_EQ(caller_->heard.size(), 4U);
  EXPECT_THAT(caller_->heard[0].first, ElementsAre("DATA NOT FOUND"));
  EXPECT_THAT(caller_->heard[1].second, ElementsAre("10"));
  EXPECT_THAT(caller_->heard[2].extra, ElementsAre("OK"));
  EXPECT_THAT(caller_->heard[3].second, ElementsAre("00"));  // the alarms were cleared
}

TEST_F(ExchangeServerTest, AnUnknownCommandFails) {
  load("exchange A\n");
  send(login(), u"XYZ");
  timers_.pass(0);
  EXPECT_EQ(caller_->heard.at(0).errCode, 1);
  EXPECT_EQ(caller_->heard.at(0).message, "CODE NOT USED");
}

TEST_F(ExchangeServerTest, AnAnswerCanChangeTheAlarms) {
  load("exchange A\nanswer LEA0\nnot-found\nalarm 11\n");
  send(login(), u"LEA0");
  timers_.pass(0);
  send(login(), u"EA1", u"00");
  timers_.pass(0);
  EXPECT_THAT(caller_->heard.at(1).second, ElementsAre("11"));
}

TEST_F(ExchangeServerTest, TheProcessCanVanishInsteadOfAnswering) {
  load("exchange A\nanswer LEA0\nvanish\n");
  send(login(), u"LEA0");
  timers_.pass(0);
  EXPECT_EQ(timers_.vanished, 1);
  EXPECT_EQ(caller_->calls, 0);
}

TEST_F(ExchangeServerTest, TheProcessCanVanishWhileTheAnswerIsRead) {
  load("exchange A\nanswer LEA0\ngenerate 3\nvanish 2\n");
  caller_->read = false;
  send(login(), u"LEA0");
  timers_.pass(0);
  ASSERT_EQ(caller_->calls, 1);
  textOf(*caller_->record, u"Tag");
  textOf(*caller_->record, u"ErrCode");
  EXPECT_EQ(timers_.vanished, 0);
  textOf(*caller_->record, u"Count");
  EXPECT_EQ(timers_.vanished, 1);
}

TEST_F(ExchangeServerTest, LettingTheServerGoDropsItsCallersAndAnswers) {
  load("exchange A\nanswer LEA0\ndelay 100\n");
  send(login(), u"LEA0");
  server_.reset();
  EXPECT_EQ(caller_.use_count(), 1);
  timers_.pass(1000);
  EXPECT_EQ(caller_->calls, 0);
}

TEST_F(ExchangeServerTest, LogOutLetsTheCallerGo) {
  load("exchange A\nlogout raise 91 line dropped\n");
  const std::string id = login();
  EXPECT_GT(caller_.use_count(), 1);
  EXPECT_THROW(logOut(id), AutomationError);
  EXPECT_EQ(caller_.use_count(), 1);
}

TEST_F(ExchangeServerTest, TheCallerMayLetTheServerGoInsideCallBack) {
  load("exchange A\nanswer LEA0\ntwice\n");
  caller_->onCallBack = [this] { server_.reset(); };
  send(login(), u"LEA0");
  timers_.pass(0);
  EXPECT_EQ(caller_->calls, 2);
}

TEST_F(ExchangeServerTest, ExchangesOfARangeDiffer) {
  load("exchange P{1..2}\nanswer LEA0\ngenerate 8 seed 5\n");
  send(login(u"P1"), u"LEA0");
  send(login(u"P2"), u"LEA0");
  timers_.pass(0);
  ASSERT_EQ(caller_->heard.size(), 2U);
  EXPECT_EQ(caller_->heard[0].first.size(), 32U);
  EXPECT_NE(caller_->heard[0].first, caller_->heard[1].first);
}

TEST_F(ExchangeServerTest, SequencesBelongToTheProcessNotToTheServerObject) {
  load("exchange A\nlogin answer BUSY\nlogin accept\n");
  EXPECT_EQ(login(), "BUSY");
  server_ = std::make_shared<ExchangeServer>(simulation_);
  EXPECT_EQ(login(), "SIM-1");
}

}  // namespace
}  // namespace vordane::zulsim
