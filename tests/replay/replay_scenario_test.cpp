#include "replay/replay_scenario.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>

#include "trace_lines.h"
#include "zulsim/fakes.h"

namespace vordane::replay {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

// A request and its answer, as an exchange in a process of its own brings it.
Lines request(const std::string& login, const std::string& sent) {
  return {
      R"("event":"lent","object":14,"class":"dlgFaultDisplay")",
      R"("event":"call","number":15,"object":13,"member":"Login","as":"method","arguments":["PBX-1",{"object":14}],"references":[0])",
      R"("event":"answer","number":15,"took":1,)" + login,
      R"("event":"lent","object":19,"class":"cListRequest")",
      R"("event":"call","number":20,"object":18,"member":"SendRequest","as":"method","arguments":[{"object":19}],"references":[0])",
      R"("event":"called","number":21,"object":19,"member":"CMD","as":"method or get","arguments":[0])",
      R"("event":"returned","number":21,"took":1,"answer":"LEA0")",
      R"("event":"answer","number":20,"took":1,)" + sent};
}
const Lines theAnswer = {
    R"("event":"called","number":33,"object":14,"member":"CallBack","as":"method","arguments":[{"object":32}])",
    R"("event":"call","number":34,"object":32,"member":"LoginID","as":"method or get","arguments":[])",
    R"=("event":"answer","number":34,"took":1,"answer":"(identifier 1)")=",
    R"("event":"call","number":35,"object":32,"member":"Count","as":"method or get","arguments":[])",
    R"("event":"answer","number":35,"took":1,"answer":2)",
    R"("event":"entries","object":32,"first":0,"entries":[["LEA0","15 MJ \"MP\"","",""],["LEA0","a\nb","|",null]])",
    R"("event":"call","number":36,"object":32,"member":"ErrCode","as":"method or get","arguments":[])",
    R"("event":"answer","number":36,"took":1,"answer":200)",
    R"("event":"call","number":37,"object":32,"member":"Tag","as":"method or get","arguments":[])",
    R"("event":"answer","number":37,"took":1,"answer":"10")",
    R"("event":"call","number":38,"object":32,"member":"Message","as":"method or get","arguments":[])",
    R"("event":"answer","number":38,"took":1,"error":"0x80020006")",
    R"("event":"returned","number":33,"took":1)"};

// The same once more: a number joins one beginning and one end.
Lines later(Lines lines) {
  static const std::regex number(R"("number":(\d+))");
  for (std::string& line : lines) line = std::regex_replace(line, number, R"("number":10$1)");
  return lines;
}

const std::string accepted = R"("answer":"OK 1")", identifier = R"=("answer":"(identifier 1)")=";

TEST(ReplayScenario, ARequestAndItsAnswer) {
  Notes notes;
  const Scenario scenario = scenarioOf(recordingOf(request(identifier, accepted) + theAnswer), notes);
  EXPECT_EQ(scenario.text,
            "exchange \"PBX-1\"\n"
            "  login accept PLAY-1\n"
            "  send answer \"OK 1\"\n"
            "  answer \"LEA0\"\n"
            "    entry \"15 MJ \"\"MP\"\"\" | \"\" | \"\"\n"
            "    entry \\\"a\\u000ab\" | \"|\" | \"\"\n"
            "    errcode 200\n"
            "    omit \"Message\"\n"
            "    when answer-10\n");
  EXPECT_THAT(scenario.answers, ElementsAre(10U));
  EXPECT_THAT(notes, IsEmpty());
}

TEST(ReplayScenario, TheSimulatedExchangeAnswersFromIt) {
  Notes notes;
  const std::string text = scenarioOf(recordingOf(request(identifier, accepted) + theAnswer), notes).text;
  const zulsim::ParsedScenario parsed = zulsim::parseScenario(text);
  ASSERT_THAT(parsed.problems, IsEmpty());
  zulsim::HandTimers timers;
  const auto simulation = std::make_shared<zulsim::Simulation>(parsed.scenario, timers);
  const auto server = std::make_shared<zulsim::ExchangeServer>(simulation);
  const auto caller = std::make_shared<zulsim::FakeCaller>();
  const auto record = std::make_shared<zulsim::AnswerRecord>();
  record->addEntry(u"LEA0", {});
  record->setScalar(u"LoginID", server->Login(u"PBX-1", caller));
  EXPECT_EQ(server->SendRequest(record), u"OK 1");
  timers.pass(60000);
  EXPECT_EQ(caller->calls, 0);
  timers.give(u"answer-10");
  timers.pass(100);
  ASSERT_EQ(caller->calls, 1);
  EXPECT_THAT(caller->heard[0].first, ElementsAre("15 MJ \"MP\"", "a\nb"));
  EXPECT_THAT(caller->heard[0].second, ElementsAre("", "|"));
  EXPECT_EQ(caller->heard[0].errCode, 200);
  EXPECT_EQ(caller->heard[0].message, "(no Message)");
}

TEST(ReplayScenario, WhatFailed) {
  Notes notes;
  const Lines twice =
      request(R"("error":"0x800a0005","description":"no \"line\"\r\n  login accept")", accepted) +
      later(request(R"("answer":"BUSY")", accepted));
  EXPECT_EQ(scenarioOf(recordingOf(twice), notes).text,
            "exchange \"PBX-1\"\n"
            "  login raise 0x800a0005 \\\"no \\\"line\\\"\\u000d\\u000a  login accept\"\n"
            "  login answer \"BUSY\"\n"
            "  send answer \"OK 1\"\n"
            "  answer \"LEA0\"\n"
            "    never\n"
            "  answer \"LEA0\"\n"
            "    never\n");
}

TEST(ReplayScenario, AnAnswerThatComesBeforeTheRequestIsAccepted) {
  Notes notes;
  Lines lines = request(identifier, accepted);
  lines.insert(lines.end() - 1, theAnswer.begin(), theAnswer.end());
  const Scenario scenario = scenarioOf(recordingOf(lines), notes);
  EXPECT_THAT(scenario.text, testing::EndsWith("    early\n"));
  EXPECT_THAT(scenario.answers, IsEmpty());
}

TEST(ReplayScenario, AnAnswerInTheMiddleOfAnotherCallEndsThePlay) {
  Notes notes;
  const Lines shows{
      R"("event":"call","number":30,"object":2,"member":"ShowMessage","as":"method","arguments":["x"])"};
  scenarioOf(recordingOf(request(identifier, accepted) + shows + theAnswer), notes);
  EXPECT_EQ(listed(notes), "line 11: the answer came in the middle of another call\n");
}

TEST(ReplayScenario, TheSameAnswerTwice) {
  Notes notes;
  EXPECT_THAT(
      scenarioOf(recordingOf(request(identifier, accepted) + theAnswer + later(theAnswer)), notes).text,
      testing::EndsWith("    twice\n    when answer-10\n"));
  EXPECT_THAT(notes, IsEmpty());
}

TEST(ReplayScenario, WhatCantBePlayedIsSaid) {
  Notes notes;
  Lines other = theAnswer;
  other[7] = R"("event":"answer","number":36,"took":1,"answer":61)";
  scenarioOf(recordingOf(request(identifier, R"("error":"broken off")")), notes);
  scenarioOf(recordingOf(request(identifier, R"("answer":{"is":"Null"})")), notes);
  scenarioOf(recordingOf(request(identifier, R"("answer":"BUSY")") + theAnswer), notes);
  scenarioOf(recordingOf(request(identifier, accepted) + theAnswer + later(other)), notes);
  EXPECT_EQ(listed(notes),
            "line 6: this call of the exchange never came to its end\n"
            "line 6: the exchange answered with something that is no text\n"
            "line 10: nobody had asked for this answer, so it can't be played\n"
            "line 23: a second answer to the same request can't be played when it is another one\n");
  for (const Note& note : notes) EXPECT_TRUE(note.ends);
}

}  // namespace
}  // namespace vordane::replay
