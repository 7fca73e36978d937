#include "replay/replay_script.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "devhost/core/script.h"
#include "trace_lines.h"

namespace vordane::replay {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string call(int number, const std::string& member, const std::string& arguments = "") {
  return R"("event":"call","number":)" + std::to_string(number) + R"(,"object":2,"member":")" + member +
         R"(","as":"method","arguments":[)" + arguments + "]";
}
std::string answer(int number, const std::string& with = "") {
  return R"("event":"answer","number":)" + std::to_string(number) + R"(,"took":1)" + with;
}
std::string called(int number, const std::string& member, const std::string& arguments,
                   const std::string& as = "method") {
  return R"("event":"called","number":)" + std::to_string(number) + R"(,"object":1,"member":")" + member +
         R"(","as":")" + as + R"(","arguments":[)" + arguments + "]";
}
std::string returned(int number) {
  return R"("event":"returned","number":)" + std::to_string(number) + R"(,"took":1)";
}
const std::string lent = R"("event":"lent","object":1,"class":"cOLELayer")";

TEST(ReplayScript, TheHostDoesWhatItDidWhenItsWordIsGiven) {
  const Lines lines{lent,
                    called(3, "RegisterPBX", R"("PBX \"1\"",{"object":2},7)"),
                    call(4, "GetComData", R"("VORDANE","MOVE","")"),
                    answer(4, R"(,"changed":{"2":"1200,900"})"),
                    call(5, "oZUL"),
                    answer(5, R"(,"answer":{"object":6})"),
                    call(7, "getsysinfo", R"("PBX 1")"),
                    answer(7, R"(,"answer":12)"),
                    returned(3),
                    called(8, "Visible", "true", "put"),
                    returned(8),
                    R"("event":"person","what":"button","which":3)",
                    R"("event":"box","number":9,"prompt":"105","title":"","style":4)",
                    R"("event":"box answer","number":9,"took":1,"answer":7)",
                    called(10, "RunSchedule", R"("3\ndie")"),
                    returned(10),
                    R"("event":"released","object":1)"};
  const Play play = playOf(recordingOf(lines));
  EXPECT_EQ(play.script,
            "pbx in-process \"Zulsim.zul\"\n"
            "next GetComData answer \"1200,900\"\n"
            "next getsysinfo answer 12\n"
            "when host-2\n"
            "try create layer-1\n"
            "when host-3\n"
            "use layer-1\n"
            "try register \"PBX \"\"1\"\"\" 7\n"
            "when host-11\n"
            "try put layer-1 \"Visible\" True\n"
            "when host-16\n"
            "try call layer-1 \"RunSchedule\" \\\"3\\u000adie\"\n"
            "when host-18\n"
            "try release layer-1\n"
            "when end\n");
  EXPECT_THAT(devhost::parseScript(play.script).problems, IsEmpty());
  EXPECT_THAT(play.cues,
              ElementsAre(Cue{Cue::Kind::word, 2, "host-2", 0}, Cue{Cue::Kind::word, 3, "host-3", 0},
                          Cue{Cue::Kind::word, 11, "host-11", 0}, Cue{Cue::Kind::person, 13, "button", 3},
                          Cue{Cue::Kind::box, 15, "", 7}, Cue{Cue::Kind::word, 16, "host-16", 0},
                          Cue{Cue::Kind::word, 18, "host-18", 0}));
  EXPECT_THAT(play.notes, IsEmpty());
  EXPECT_EQ(play.playedTo, std::nullopt);
}

TEST(ReplayScript, EachCallOfTheHostBringsWhatItBrought) {
  const Lines lines{call(1, "ShowMessage", "\"x\""),
                    answer(1, R"(,"answer":"")"),
                    call(2, "ShowMessage", "\"x\""),
                    answer(2, R"(,"error":"0x800a0005","description":"no\n")"),
                    call(3, "TurnOnFlow"),
                    answer(3),
                    call(4, "oPBX"),
                    answer(4, R"(,"answer":{"object":6})"),
                    call(5, "oPBX"),
                    answer(5, R"(,"answer":{"is":"Nothing"})"),
                    call(6, "PrintReport"),
                    answer(6, R"(,"answer":"no paper")")};
  EXPECT_EQ(playOf(recordingOf(lines)).script,
            "pbx in-process \"Zulsim.zul\"\n"
            "next PrintReport answer \"no paper\"\n"
            "next ShowMessage\n"
            "next ShowMessage raise 0x800a0005 \\\"no\\u000a\"\n"
            "next oPBX\n"
            "next oPBX nothing\n"
            "when end\n");
}

TEST(ReplayScript, ARunTellsOfItsJob) {
  const auto tick = [](int number, const std::string& action) {
    return R"("event":"tick","number":)" + std::to_string(number) + R"(,"action":")" + action + "\"";
  };
  const Lines run{lent,
                  called(1, "RunSchedule", "\"12\""),
                  tick(2, "run step"),
                  tick(3, "request"),
                  tick(4, "request"),
                  tick(5, "stop run")};
  EXPECT_THAT(playOf(recordingOf(run)).jobs, ElementsAre(Job{12, true, 2, true}));
  const Lines other{lent, called(1, "RunSchedule", "\"6\""), tick(2, "run step"), tick(3, "run step"),
                    tick(4, "run step")};
  EXPECT_THAT(playOf(recordingOf(other)).jobs, ElementsAre(Job{6, false, 2, false}));
  EXPECT_THAT(playOf(recordingOf({lent, called(1, "RunSchedule", "\"../6\"")})).jobs, IsEmpty());
}

TEST(ReplayScript, WhatCantBePlayedEndsThePlay) {
  const auto told = [](const Lines& lines) {
    const Play play = playOf(recordingOf(lines));
    return listed(play.notes) + "to " + std::to_string(play.playedTo.value_or(0));
  };
  EXPECT_EQ(told({lent, call(1, "TurnOnFlow"), called(2, "Visible", "", "get"), answer(1)}),
            "line 4: the host called in the middle of a call that it was asked to serve\nto 4");
  EXPECT_EQ(told({lent, call(1, "TurnOnFlow"), R"("event":"person","what":"button","which":3)", answer(1)}),
            "line 4: the person did something in the middle of a call, which can't be met again\nto 4");
  EXPECT_EQ(told({lent, called(2, "RegisterPBX", R"("PBX-1",{"is":"Nothing"},7)")}),
            "line 3: the host registered an exchange in a way that can't be played\nto 3");
  EXPECT_EQ(told({lent, called(2, "SetBackGround", R"({"is":"Null"})")}),
            "line 3: the host passed a value that can't be played\nto 3");
  EXPECT_EQ(told({lent, call(1, "TurnOnFlow")}), "line 3: this call of the host never came to its end\nto 3");
  EXPECT_EQ(told({lent, call(1, "getsysinfo"), answer(1, R"(,"answer":1.5)")}),
            "line 3: the host answered with a value that can't be played\nto 3");
}

TEST(ReplayScript, AStartByHandHasNoHost) {
  const Play play = playOf(recordingOf({R"("event":"created","class":"CalderinProj30001.cPBXOLE","object":1)",
                                        R"("event":"window","visible":true)"},
                                       false));
  EXPECT_EQ(play.script, "");
  EXPECT_TRUE(play.simulated);
}

TEST(ReplayScript, AStartThatNobodySawIsPlayedBeforeSomebodyAndThatIsSaid) {
  Recording unseen = recordingOf({lent});
  EXPECT_EQ(listed(playOf(unseen).notes), "");
  unseen.events.at(0).fields["interactive"] = false;
  const Play play = playOf(unseen);
  EXPECT_EQ(listed(play.notes), "line 1: nobody could see its windows; here they are before somebody\n");
  EXPECT_EQ(play.playedTo, std::nullopt);
}

}  // namespace
}  // namespace vordane::replay
