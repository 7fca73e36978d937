// Conversations of the add-in itself, taken down and played again.
#include "replay_story.h"

namespace vordane::replay {
namespace {

MATCHER(Same, "") {
  if (!arg) return true;
  *result_listener << "line " << arg->line << "\nthen " << arg->then << "\nnow  " << arg->now;
  return false;
}

class Replay : public TracedStory {
 protected:
  // The exchange answers with a record of its own, as one in a process of its own does.
  void answered(std::int32_t errCode, const std::vector<std::array<std::u16string, 3>>& entries,
                std::u16string message = {}) {
    const auto record = std::make_shared<zulsim::AnswerRecord>();
    record->copyHead(*exchange().request);
    for (const auto& [first, second, extra] : entries) record->addEntry(u"LEA0", {first, second, extra, {}});
    record->setScalar(u"ErrCode", errCode);
    record->setScalar(u"Message", std::move(message));
    exchange().callBack(record);
  }
  void answerFault() {
    answered(0,
             {{u"15 MJ MP000", u"", u""}, {u"26/11/20 10:15", u"", u""}, {u"00", u"", u""}, {u"", u"", u""}});
  }
  void fetchTraced() {
    pressTraced(0);
    tickTraced();
    answerFault();
    tickTraced();
    answered(0, {{u"00", u"10", u"OK"}});
    tickTraced();
  }
  std::optional<Difference> playAgain() {
    const Recording conversation = told();
    Stage stage;
    auto difference = stage.play(conversation);
    notes = stage.notes;
    return difference;
  }
  Notes notes;
};

TEST_F(Replay, AListIsFetchedAgain) {
  startWithHost();
  automation::put(*layer, u"Visible", true);
  fetchTraced();
  layer = nullptr;
  EXPECT_THAT(playAgain(), Same());
  EXPECT_EQ(listed(notes), "");
}

TEST_F(Replay, ABoxIsAnsweredAgain) {
  startWithHost();
  fetchTraced();
  boxes.answer = 7;
  pressTraced(3);
  tickTraced();
  boxes.answer = 6;
  pressTraced(3);
  tickTraced();
  EXPECT_THAT(playAgain(), Same());
}

TEST_F(Replay, AlarmsAreResetAgain) {
  startWithHost();
  fetchTraced();
  pressTraced(1);
  tickTraced();
  answered(0, {{u"00", u"CCC", u"OK"}});
  tickTraced();
  EXPECT_THAT(playAgain(), Same());
}

TEST_F(Replay, AnExchangeFailsAgain) {
  startWithHost();
  exchange().loginAnswer = std::u16string(u"BUSY");
  pressTraced(0);
  tickTraced();
  exchange().loginRaises = true;
  pressTraced(0);
  tickTraced();
  exchange().loginRaises = false;
  exchange().loginAnswer = std::u16string(u"L9");
  exchange().sendAnswer = std::u16string(u"ERROR");
  pressTraced(0);
  tickTraced();
  exchange().sendRaises = true;
  pressTraced(0);
  tickTraced();
  exchange().sendRaises = false;
  exchange().sendAnswer = std::u16string(u"OK \"then\"\r\nlogin raise");
  pressTraced(0);
  tickTraced();
  answered(61, {{u"ZUL_USERCANCEL", u"", u""}}, u"two\r\nlines, \"quoted\"");
  fetchTraced();
  EXPECT_THAT(playAgain(), Same());
  EXPECT_EQ(listed(notes), "");
}

TEST_F(Replay, AHostFailsAgain) {
  host->data[u"MOVE"] = u"1200,900";
  startWithHost();
  int calls = 0;
  host->on(u"ShowMessage", [&](auto) -> automation::Value {
    if (++calls == 2) throw automation::AutomationError(automation::error::runTime(5), u"no \"line\"\r\n");
    return {};
  });
  fetchTraced();
  host->on(u"oPBX", [](auto) { return automation::Value(automation::ObjectRef{}); });
  pressTraced(0);
  tickTraced();
  EXPECT_THAT(playAgain(), Same());
}

TEST_F(Replay, AnUnattendedRunRunsAgain) {
  startWithHost();
  runSchedule(u"3");
  for (int run = 0; run < 3; ++run) {
    tickTraced();
    tickTraced();
    answerFault();
    tickTraced();
    answered(0, {{u"00", u"00", u"OK"}});
    tickTraced();
  }
  const Recording conversation = told();
  EXPECT_THAT(playOf(conversation).jobs, testing::ElementsAre(Job{3, false, 3, true}));
  EXPECT_THAT(playAgain(), Same());
}

TEST_F(Replay, ACancelledRunIsCancelledAgain) {
  startWithHost();
  runSchedule(u"3");
  tickTraced();
  tickTraced();
  callInteger(u"CancelSchedule");
  EXPECT_THAT(playAgain(), Same());
}

TEST_F(Replay, ADifferenceIsFoundAtItsLine) {
  startWithHost();
  fetchTraced();
  std::vector<std::string> lines = traced();
  const auto shown = std::find_if(lines.begin(), lines.end(), [](const std::string& line) {
    return line.find("\"ShowCode\"") != std::string::npos;
  });
  ASSERT_NE(shown, lines.end());
  shown->replace(shown->find("\"arguments\":[0]"), 15, "\"arguments\":[7]");
  Notes none;
  const Recording changed = readTrace(lines, none).at(0);
  Stage stage;
  const auto difference = stage.play(changed);
  ASSERT_TRUE(difference);
  EXPECT_EQ(difference->line, static_cast<std::size_t>(shown - lines.begin()) + 1);
  EXPECT_THAT(difference->then, testing::HasSubstr("\"arguments\":[7]"));
  EXPECT_THAT(difference->now, testing::HasSubstr("\"arguments\":[0]"));
}

}  // namespace
}  // namespace vordane::replay
