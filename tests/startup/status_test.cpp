// What the window says of the lists: the status line, and what stands in the place of an empty grid.
#include "fakes/watched_database.h"
#include "startup/story.h"
#include "store/statements.h"

namespace vordane::startup {
namespace {

using testing::HasSubstr;
using window::NoticeKind;
using namespace std::string_literals;

class Status : public Story {
 protected:
  Status() {
    engine.between = [this](std::u16string_view path, auto file) -> std::unique_ptr<database::Database> {
      if (!path.ends_with(u"FAULT.MDB")) return file;
      auto watched = std::make_unique<fakes::WatchedDatabase>(std::move(file));
      watched->before = [this](std::u16string_view step) {
        if (step == failing) throw database::DatabaseError(3049, u"disk full");
      };
      return watched;
    };
  }
  // An exchange that an earlier start has stored.
  void storeEarlier(const std::u16string& name, const database::Value& when) {
    const auto database = engine.open(u"C:\\FAULT.MDB", false);
    const auto row = database->openRecordset(u"Select * from PBXList");
    row->addNew();
    row->set(u"PBXName", name);
    row->set(u"TimeStamp", when);
    row->update();
  }
  void fetch(const std::vector<std::u16string>& entries) {
    pressAndTick(0);
    exchange().answer(0, entries);
    tick();
  }
  std::u16string_view failing;  // the step of FAULT.MDB that fails; empty: none

  std::string status() { return text::toUtf8(view.status[0]); }
};

TEST_F(Status, NothingStoredIsNoListYet) {
  startWithHost();
  EXPECT_EQ(status(), "no list yet");
}

TEST_F(Status, AStoredListIsToldWithItsTime) {
  storeEarlier(u"PBX-1", u"2026-11-20 21:14:05"_v);
  startWithHost();
  EXPECT_EQ(status(), "PBX-1: stored 20.11.2026 21:14:05");
}

TEST_F(Status, ADatabaseOnANetworkDriveIsToldUntilThereIsNews) {
  engine.onNetwork = true;
  startWithHost();
  EXPECT_EQ(status(), "on the network no list yet");
  fetch({u"01 MJ MP", u"2026/11/20 20:58", u"02", u""});
  EXPECT_EQ(status(), "20.11.2026 21:14:05: 1 received, 1 new, 0 stored, 0 refused");
}

TEST_F(Status, AnExchangesNameOfAnyLengthIsToldInBrief) {
  const std::u16string name(300'000, u'x');
  startWithHost(name);
  const std::u16string told = std::u16string(400, u'x') + u"...";
  EXPECT_EQ(view.notice, u"press to ask " + told);
  pressAndTick(0);
  EXPECT_EQ(view.notice, u"waiting for " + told);
  exchange().answer(61);
  EXPECT_EQ(view.status[0], told + u" failed: code 61.\nno list yet");
  fetch(oneFault());
  EXPECT_LT(view.status[0].size(), 1000U);
  EXPECT_EQ(form().host().PBXName(), name) << "it keeps its whole name";
}

TEST_F(Status, ASimulatedExchangeIsToldWhateverElseIs) {
  files.content[u"Zulsim.exe"] = "";
  const auto server = std::make_shared<fakes::MemoryExchange>(trace);
  creator.server = server;
  engine.onNetwork = true;
  startStandAlone(u"PBX-1");
  EXPECT_EQ(status(), "simulated on the network no list yet");
  pressAndTick(0);
  server->answer(61);
  EXPECT_EQ(status(), "simulated PBX-1 failed: code 61.\nno list yet");
  pressAndTick(0);
  server->answer(0, oneFault());
  tick();
  EXPECT_THAT(status(), testing::StartsWith("simulated 20.11.2026 21:14:05: 1 received"));
}

TEST_F(Status, ARealExchangeStartedByHandIsNotCalledSimulated) {
  creator.server = std::make_shared<fakes::MemoryExchange>(trace);
  startStandAlone(u"PBX-1");
  EXPECT_EQ(status(), "no list yet");
}

TEST_F(Status, AStoredListWithoutATimeIsToldToo) {
  storeEarlier(u"PBX-1", automation::Null{});
  startWithHost();
  EXPECT_EQ(status(), "PBX-1: stored, nobody knows when");
}

TEST_F(Status, AnotherExchangeChosenIsToldUntilAListCame) {
  storeEarlier(u"PBX-1", u"2026-11-20 21:14:05"_v);
  storeEarlier(u"PBX-2", u"2026-11-19 08:00:00"_v);
  startWithHost();
  form().input().exchangeChosen(1);
  EXPECT_EQ(status(), "PBX-2: stored 19.11.2026 08:00:00");
  fetch(oneFault());
  exchange().answerLamps(u"00");
  tick();
  form().input().exchangeChosen(1);
  EXPECT_THAT(status(), HasSubstr("1 received, 1 new")) << "of the exchange it names";
}

TEST_F(Status, AStandAloneStartTellsItToo) {
  storeEarlier(u"PBX-1", u"2026-11-20 21:14:05"_v);
  startStandAlone(u"PBX-1");
  EXPECT_EQ(status(), "PBX-1: stored 20.11.2026 21:14:05");
}

TEST_F(Status, AFailedAttemptStandsBeforeWhatCameLast) {
  storeEarlier(u"PBX-1", u"2026-11-20 21:14:05"_v);
  startWithHost();
  pressAndTick(0);
  exchange().answer(61);
  EXPECT_EQ(status(), "PBX-1 failed: code 61.\nPBX-1: stored 20.11.2026 21:14:05");
  fetch(oneFault());
  EXPECT_THAT(status(), testing::Not(HasSubstr("failed")));
  exchange().answerLamps(u"00");
  tick();
  pressAndTick(0);
  exchange().answer(5);
  EXPECT_THAT(status(), testing::StartsWith("PBX-1 failed: code 5."));
  EXPECT_THAT(status(), testing::EndsWith("1 received, 1 new, 0 stored, 0 refused"));
}

TEST_F(Status, AnAcknowledgementThatFailsLeavesTheListsAccount) {
  startWithHost();
  pressAndTick(0);
  exchange().answer(0, oneFault());
  exchange().loginAnswer = u"BUSY"s;
  tick();
  EXPECT_THAT(status(), testing::StartsWith("PBX-1 not acknowledged: busy."));
  EXPECT_THAT(status(), testing::EndsWith("1 received, 1 new, 0 stored, 0 refused"));
  pressAndTick(1);
  EXPECT_THAT(status(), testing::StartsWith("PBX-1 not reset: busy."));
}

TEST_F(Status, AnAnswerThatSaysNothingIsAFailureUntilTheNextGoodOne) {
  startWithHost();
  pressAndTick(0);
  exchange().answer(0, oneFault());
  tick();
  exchange().answerLamps(u"red");
  tick();
  EXPECT_THAT(status(), testing::StartsWith("PBX-1 not acknowledged: lamps unreadable."));
  const auto reset = [&](const std::vector<std::u16string>& entries) {
    pressAndTick(1);
    exchange().answer(0, entries);
    tick();
  };
  reset({u"an entry without a confirmation"});
  EXPECT_THAT(status(), testing::StartsWith("PBX-1 not reset: not confirmed."));
  reset({});
  EXPECT_THAT(status(), testing::EndsWith("1 received, 1 new, 0 stored, 0 refused"));
  EXPECT_THAT(status(), testing::Not(HasSubstr("not "))) << "the reset went well";
}

TEST_F(Status, ALogInThatRaisesIsNotCalledRefused) {
  startWithHost();
  host->remove(u"oPBX");
  pressAndTick(0);
  EXPECT_THAT(status(), HasSubstr("failed: unreachable 0x80020"));
}

TEST_F(Status, AFailedIngestionStaysInTheEmptyGrid) {
  startWithHost();
  failing = u"update";
  fetch(oneFault());
  EXPECT_EQ(view.notice, u"PBX-1 not whole: database: disk full");
  EXPECT_EQ(view.noticeKind, NoticeKind::failure);
  EXPECT_THAT(status(), HasSubstr("incomplete: 1 received, 0 new, 0 stored, 1 refused"));
  form().input().headingClicked(1);
  EXPECT_EQ(view.notice, u"PBX-1 not whole: database: disk full") << "the grid is as empty as before";
}

TEST_F(Status, AnIncompleteListIsToldBehindItsAcknowledgement) {
  startWithHost();
  fetch({u"ZUL_TIMEOUT", u"", u"", u""});
  EXPECT_EQ(view.notice, u"alarms of PBX-1");
  exchange().answerLamps(u"00");
  tick();
  EXPECT_EQ(view.notice, u"PBX-1 not whole: access: ZUL_TIMEOUT");
  EXPECT_EQ(view.noticeKind, NoticeKind::failure);
  fetch({});
  exchange().answerLamps(u"00");
  tick();
  EXPECT_EQ(view.notice, u"PBX-1 has no faults") << "the next attempt went well";
}

TEST_F(Status, AListCutShortIsToldAboveItsRows) {
  startWithHost();
  auto entries = oneFault();
  entries.push_back(u"15 MJ MP001");
  fetch(entries);
  exchange().answerLamps(u"00");
  tick();
  EXPECT_EQ(view.notice, u"PBX-1 not whole: cut short");
  EXPECT_EQ(view.noticeKind, NoticeKind::failure);
}

TEST_F(Status, ADisplayThatFailedIsNotCalledEmpty) {
  startWithHost();
  failing = store::exchangesNewestFirst;
  fetch(oneFault());
  exchange().answerLamps(u"00");
  tick();
  EXPECT_EQ(view.notice, u"database: disk full");
  EXPECT_EQ(view.noticeKind, NoticeKind::failure);
  failing = {};
  registerPbx(u"PBX-1");
  EXPECT_EQ(view.notice, u"") << "the rows are back";
}

TEST_F(Status, AStartByHandThatCouldNotReadGoesOnWhenItCan) {
  auto server = std::make_shared<fakes::MemoryExchange>(trace);
  creator.server = server;
  failing = store::exchangesNewestFirst;
  startStandAlone(u"PBX-1");
  EXPECT_THAT(taken(), ElementsAre("Box 102 disk full"));
  EXPECT_EQ(view.notice, u"database: disk full");
  failing = {};
  pressAndTick(0);
  server->answer(0, oneFault());
  tick();
  server->answerLamps(u"00");
  tick();
  ASSERT_NE(view.rows, nullptr);
  EXPECT_EQ(view.rows->size(), 1U);
  EXPECT_EQ(view.notice, u"");
}

TEST_F(Status, ARegistrationMeanwhileLeavesTheWaitAsItIs) {
  startWithHost();
  pressAndTick(0);
  registerPbx(u"PBX-2");
  EXPECT_EQ(view.notice, u"waiting for PBX-1");
  EXPECT_EQ(view.noticeKind, NoticeKind::waiting);
}

TEST_F(Status, AnotherExchangeIsNotBlamedForTheFailure) {
  startWithHost();
  pressAndTick(0);
  exchange().answer(61);
  EXPECT_EQ(view.noticeKind, NoticeKind::failure);
  registerPbx(u"PBX-2");
  EXPECT_EQ(view.notice, u"press to ask PBX-2");
  EXPECT_EQ(view.noticeKind, NoticeKind::hint);
}

TEST_F(Status, ADeletionThatWasAskedAboutAnotherExchangeIsToldAsNotDone) {
  startWithHost();
  fetch(oneFault());
  exchange().answerLamps(u"00");
  tick();
  storeEarlier(u"PBX-2", u"2026-11-19 08:00:00"_v);
  boxes.answer = 6;
  boxes.meanwhile = [&] { registerPbx(u"PBX-2"); };
  pressAndTick(3);
  EXPECT_THAT(status(), testing::StartsWith("not deleted 20.11.2026 21:14:05.\n"));
  EXPECT_FALSE(state.busy);
  EXPECT_EQ(form().form().control(u"drpPBXList").items().size(), 2U);
  EXPECT_EQ(engine.open(u"C:\\FAULT.MDB", true)->openRecordset(u"Select * from FaultDisplay")->recordCount(),
            1);
}

TEST_F(Status, JobSelectionIsToldUntilItEnds) {
  startWithHost();
  createSchedule();
  EXPECT_EQ(view.notice, u"choose");
  registerPbx(u"PBX-2");
  EXPECT_EQ(view.notice, u"choose");
}

}  // namespace
}  // namespace vordane::startup
