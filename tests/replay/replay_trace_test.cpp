#include "replay/replay_trace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "zulsim/core/line_reader.h"

namespace vordane::replay {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const std::string start =
    R"({"at":"2026-11-23T06:45:12.345678Z","event":"start","format":1,"version":"1.0.12","hosted":true,)"
    R"("interactive":true,"exchange":"","words":64})";
const std::string timer = R"({"at":"2026-11-23T06:45:12.345679Z","event":"timer","milliseconds":100})";

std::string timerAs(const std::string& from, const std::string& to) {
  std::string line = timer;
  line.replace(line.find(from), from.size(), to);
  return line;
}

TEST(ReplayTrace, EachStartBeginsAProcess) {
  Notes notes;
  const auto read = readTrace({start, timer, start}, notes);
  ASSERT_THAT(read, SizeIs(2));
  EXPECT_THAT(read[0].events, SizeIs(2));
  EXPECT_EQ(read[0].events[1].name, "timer");
  EXPECT_EQ(read[0].events[1].line, 2U);
  EXPECT_EQ(numberOf(read[0].events[1], "milliseconds"), 100);
  EXPECT_TRUE(hosted(read[0]));
  EXPECT_THAT(read[1].events, SizeIs(1));
  EXPECT_THAT(notes, IsEmpty());
}

TEST(ReplayTrace, HalfALineEndsWhatCanBePlayed) {
  Notes notes;
  const auto read = readTrace({start, timer.substr(0, 40), timer}, notes);
  EXPECT_THAT(read.at(0).notes, ElementsAre(Note{2, "this is no whole line of a trace", true}));
}

TEST(ReplayTrace, WhatIsWrongWithALineIsSaid) {
  Notes notes;
  const auto read = readTrace(
      {start, "[]", timerAs("\"event\"", "\"tneve\""), timerAs("100", "\"100\""), timerAs("100", "1e2"), ""},
      notes);
  EXPECT_EQ(listed(read.at(0).notes),
            "line 2: this is no whole line of a trace\n"
            "line 3: the line names no event\n"
            "line 4: the event \"timer\" lacks its field \"milliseconds\"\n"
            "line 5: the event \"timer\" lacks its field \"milliseconds\"\n"
            "line 6: this is no whole line of a trace\n");
  EXPECT_THAT(read[0].events, SizeIs(1));
}

// Events are added without a new format.
TEST(ReplayTrace, AnEventOfALaterProgramIsPassedOver) {
  Notes notes;
  const auto read = readTrace({start, timerAs("timer", "sunrise"), timer}, notes);
  EXPECT_THAT(read.at(0).notes,
              ElementsAre(Note{2, "the event \"sunrise\" is not known to this program", false}));
  EXPECT_THAT(read[0].events, SizeIs(2));
}

TEST(ReplayTrace, ANewerFormatIsRefused) {
  Notes notes;
  std::string newer = start;
  newer.replace(newer.find("\"format\":1"), 10, "\"format\":2");
  try {
    readTrace({start, newer}, notes);
    FAIL();
  } catch (const NewerFormat& refusal) {
    EXPECT_STREQ(refusal.what(),
                 "line 2: the trace has the format 2, and this program reads format 1. Use a newer one");
  }
}

TEST(ReplayTrace, WhatWasLeftOutEndsWhatCanBePlayed) {
  Notes notes;
  const auto read = readTrace(
      {start, R"({"at":"2026-11-23T06:45:12.345679Z","event":"left out","why":"too fast","count":12})"},
      notes);
  EXPECT_THAT(read.at(0).notes, ElementsAre(Note{2, "12 events are missing here", true}));
}

TEST(ReplayTrace, ATraceThatBeginsInTheMiddleHasNothingToPlay) {
  Notes notes;
  EXPECT_THAT(readTrace({timer, timer}, notes), IsEmpty());
  EXPECT_EQ(listed(notes), "line 1: what comes before the first start of the add-in can't be played\n");
}

TEST(ReplayTrace, ACutTextHasItsLengthAgain) {
  EXPECT_EQ(textOf(Json::parse(R"({"cut":"abc","length":5})")), "abc??");
  EXPECT_EQ(textOf(Json::parse(R"({"cut":"\u00e4\ud83d\ude00","length":5})")), "\u00e4\U0001F600??");
  EXPECT_EQ(textOf(Json::parse(R"({"cut":"abc","length":4000001})")), "abc");
  EXPECT_EQ(textOf(Json::parse(R"({"is":"Empty"})")), "");
}

// As a scenario or a script reads it.
std::u16string readAgain(const std::string& text) {
  const std::string line = "word " + lineText(text) + " behind";
  const auto lines = lines::linesOf(line);
  if (lines.size() != 1) return u"(more than a line)";
  lines::LineReader reader(lines[0].text);
  reader.word(u"");
  std::u16string read = reader.word(u"");
  return reader.remaining() == u"behind" ? read : u"(not in its place)";
}

TEST(ReplayTrace, ATextStaysInItsPlaceOnItsLine) {
  EXPECT_EQ(lineText("PBX 1"), "\"PBX 1\"");
  EXPECT_EQ(lineText("a \"b\" \\"), "\"a \"\"b\"\" \\\"");
  EXPECT_EQ(lineText("a\nb\t\"\\"), R"(\"a\u000ab\u0009\"\\")");
  EXPECT_EQ(readAgain("PBX 1"), u"PBX 1");
  EXPECT_EQ(readAgain(""), u"");
  EXPECT_EQ(readAgain("# \"|\" \\\" x"), u"# \"|\" \\\" x");
  EXPECT_EQ(readAgain("\"\n  login raise\r\n"), u"\"\n  login raise\r\n");
  EXPECT_EQ(readAgain(std::string("\0\x01\x7f", 3) + "\xEF\xBF\xBD\xEF\xBB\xBF"),
            std::u16string(u"\0\x01\x7f\uFFFD\uFEFF", 5));
}

// JSON can't hold half of a character alone, and UTF-8 can't either.
TEST(ReplayTrace, HalfACharacterStaysWhatItIs) {
  const Event event = readLine(
      R"({"event":"box","number":1,"prompt":"\\ud800 \ud800 \ud83d\ude00 \udfff","title":"","style":0})", 1);
  const std::u16string half(1, char16_t{0xD800}), other(1, char16_t{0xDFFF});
  EXPECT_EQ(readAgain(textOf(valueOf(event, "prompt"))), u"\\ud800 " + half + u" \U0001F600 " + other);
}

}  // namespace
}  // namespace vordane::replay
