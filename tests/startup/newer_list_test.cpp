// A newer list from another station, in the whole window: when it is looked for, and F5.
#include "fakes/watched_database.h"
#include "startup/story.h"

namespace vordane::startup {
namespace {

using namespace std::string_literals;
using testing::HasSubstr;
using testing::Not;

class NewerListStory : public Story {
 protected:
  NewerListStory() {
    engine.between = [this](std::u16string_view path, auto file) -> std::unique_ptr<database::Database> {
      if (!path.ends_with(u"FAULT.MDB")) return file;
      auto watched = std::make_unique<fakes::WatchedDatabase>(std::move(file));
      watched->beforeArrivals = [this] { ++questions; };
      watched->before = [this](std::u16string_view step) { statements.emplace_back(text::toUtf8(step)); };
      return watched;
    };
    startWithHost();
    fetchOneFault();
    form().input().lookAtStore();
    taken();
    questions = 0;
    statements.clear();
  }
  // Another station takes in a list of the exchange with one fault more.
  void another(std::u16string_view time = u"2026-11-20 23:00:00") {
    const auto station = sqlite::makeEngine(databases)->open(engine.file(u"FAULT.MDB"), false);
    const auto row = station->openRecordset(u"Select * FROM PBXList WHERE PBXName = \"PBX-1\"");
    row->edit();
    row->set(u"TimeStamp", std::u16string(time));
    row->update();
    const auto faults = station->openRecordset(u"Select * from FaultDisplay");
    faults->addNew();
    faults->set(u"ID", std::int16_t{1});
    faults->set(u"Description", u"of another"s);
    faults->update();
  }
  std::string line() { return text::toUtf8(view.status[0]); }
  std::string timeShown() { return text::toUtf8(form().form().control(u"txtTimeTag").text(u"Text")); }
  void key(int code) { form().input().keyPressed(code); }

  static constexpr const char* said = "newer of PBX-1\n";
  static constexpr int keyF5 = 116;
  int questions = 0;
  Lines statements;
};

TEST_F(NewerListStory, IsToldAndF5ShowsIt) {
  another();
  EXPECT_EQ(form().input().lookAtStore(), std::chrono::seconds(4));
  EXPECT_THAT(line(), testing::StartsWith(said));
  EXPECT_EQ(timeShown(), "20.11.2026 21:14:05");
  EXPECT_EQ(view.rows->size(), 1U);
  EXPECT_THAT(statements, IsEmpty());
  EXPECT_THAT(taken(), IsEmpty());
  key(keyF5);
  EXPECT_THAT(line(), Not(HasSubstr(said)));
  EXPECT_EQ(timeShown(), "20.11.2026 23:00:00");
  EXPECT_EQ(view.rows->size(), 2U);
  EXPECT_THAT(taken(), IsEmpty());
}

TEST_F(NewerListStory, F5RunsWhatAChoiceRuns) {
  form().input().exchangeChosen(0);
  const Lines choice = std::exchange(statements, {});
  EXPECT_FALSE(choice.empty());
  key(keyF5);
  EXPECT_EQ(statements, choice);
}

TEST_F(NewerListStory, F5LeavesTheFailureOfARequestInSight) {
  exchange().loginRaises = true;
  pressAndTick(0);
  const std::u16string failed = view.notice;
  EXPECT_EQ(view.noticeKind, window::NoticeKind::failure);
  key(keyF5);
  EXPECT_EQ(view.notice, failed);
}

TEST_F(NewerListStory, AnotherChoiceShowsItToo) {
  another();
  form().input().lookAtStore();
  form().input().exchangeChosen(0);
  EXPECT_THAT(line(), Not(HasSubstr(said)));
  EXPECT_EQ(view.rows->size(), 2U);
}

TEST_F(NewerListStory, WhileAnAnswerIsWaitedForNothingIsAsked) {
  another();
  press(0);
  form().input().lookAtStore();
  tick();
  form().input().lookAtStore();
  key(keyF5);
  EXPECT_EQ(questions, 0);
  EXPECT_EQ(view.rows->size(), 1U);
  exchange().answer(0, oneFault());
  tick();
  form().input().lookAtStore();
  key(keyF5);
  EXPECT_EQ(questions, 0) << "the alarms are still asked for";
  exchange().answerLamps(u"00");
  tick();
  form().input().lookAtStore();
  EXPECT_EQ(questions, 1);
}

TEST_F(NewerListStory, WhileABoxStandsNothingIsAsked) {
  another();
  bool stood = false;
  boxes.meanwhile = [&] {
    stood = true;
    form().input().lookAtStore();
    key(keyF5);
  };
  pressAndTick(3);
  EXPECT_TRUE(stood);
  EXPECT_EQ(questions, 0);
}

TEST_F(NewerListStory, InAnUnattendedRunNothingIsAsked) {
  another();
  for (const RunMode mode : {RunMode::scheduledRun, RunMode::creatingSchedule}) {
    state.runMode = mode;
    form().input().lookAtStore();
    key(keyF5);
  }
  EXPECT_EQ(questions, 0);
  EXPECT_THAT(statements, IsEmpty());
  state.runMode = RunMode::interactive;
  form().input().lookAtStore();
  EXPECT_EQ(questions, 1);
}

TEST_F(NewerListStory, AWindowThatHasGoneAsksNothing) {
  layer.reset();
  form().input().lookAtStore();
  key(keyF5);
  EXPECT_EQ(questions, 0);
  EXPECT_THAT(statements, IsEmpty());
}

using EmptyStory = Story;

TEST_F(EmptyStory, F5FillsAnEmptyDropDown) {
  start();
  layer = createLayer();
  const auto station = sqlite::makeEngine(databases)->open(engine.file(u"FAULT.MDB"), false);
  registerPbx(u"");
  EXPECT_TRUE(form().form().control(u"drpPBXList").items().empty());
  const auto row = station->openRecordset(u"Select * FROM PBXList");
  row->addNew();
  row->set(u"PBXName", u"PBX-7"s);
  row->update();
  form().input().keyPressed(116);
  ASSERT_EQ(form().form().control(u"drpPBXList").items().size(), 1U);
  EXPECT_EQ(form().form().control(u"drpPBXList").items()[0].text, u"PBX-7");
}

}  // namespace
}  // namespace vordane::startup
