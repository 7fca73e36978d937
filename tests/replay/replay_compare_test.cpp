#include "replay/replay_compare.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "trace_lines.h"

namespace vordane::replay {
namespace {

std::optional<Difference> compared(const Lines& then, const Lines& now) {
  return compare(recordingOf(then), recordingOf(now));
}

const Lines first{
    R"("event":"lent","object":14,"class":"dlgFaultDisplay")",
    R"("event":"tick","number":7,"action":"none")",
    R"("event":"done","number":7,"took":3)",
    R"("event":"call","number":15,"object":13,"member":"Login","as":"method","arguments":["PBX-1",{"object":14}])",
    R"=("event":"answer","number":15,"took":1,"answer":"(identifier 4)")=",
    R"("event":"let go","object":13)",
    R"=("event":"box","number":16,"prompt":"C:\\A B\\30000\\FAULT.MDB: (identifier 4) \"D:\\x\\y.z\"","title":"","style":0)=",
    R"("event":"box answer","number":16,"took":900,"answer":1)",
    R"("event":"database failed","step":"open","file":"C:\\Q\\FAULT.MDB","code":3024,"reason":"C:\\Q fehlt")"};
const Lines second{
    R"("event":"lent","object":3,"class":"dlgFaultDisplay")",
    R"("event":"call","number":5,"object":2,"member":"Login","as":"method","arguments":["PBX-1",{"object":3}])",
    R"=("event":"answer","number":5,"took":77,"answer":"(identifier 1)")=",
    R"=("event":"box","number":6,"prompt":"\\\\server\\s\\FAULT.MDB: (identifier 1) \"y.z\"","title":"","style":0)=",
    R"("event":"box answer","number":6,"took":2,"answer":1)",
    R"("event":"database failed","step":"open","file":"D:\\P L\\FAULT.MDB","code":3024,"reason":"not found")"};

TEST(ReplayCompare, TimesNumbersIdentifiersAndFoldersAreNoDifference) {
  EXPECT_EQ(compared(first, second), std::nullopt);
  EXPECT_EQ(compared(second, first), std::nullopt);
}

TEST(ReplayCompare, ADifferenceHasItsLine) {
  Lines other = second;
  other[4] = R"("event":"box answer","number":6,"took":2,"answer":2)";
  EXPECT_EQ(compared(first, other), (Difference{9, R"({"answer":1,"event":"box answer","number":2})",
                                                R"({"answer":2,"event":"box answer","number":2})"}));
}

// A script host asks for both at once where a compiled one knows which of them it wants.
TEST(ReplayCompare, HowAHostReadsIsNoDifferenceAndWhatItPutsIs) {
  const auto called = [](const std::string& as, const std::string& member = "Visible") {
    return Lines{R"("event":"lent","object":1,"class":"cOLELayer")",
                 R"("event":"called","number":1,"object":1,"member":")" + member + R"(","as":")" + as +
                     R"(","arguments":[])"};
  };
  for (const char* as : {"method", "get", "method or get"})
    EXPECT_EQ(compared(called(as), called("method")), std::nullopt) << as;
  EXPECT_NE(compared(called("put"), called("method")), std::nullopt);
  EXPECT_NE(compared(called("get", "oZUL"), called("get")), std::nullopt);
}

TEST(ReplayCompare, WhetherSomebodySawItIsNoDifference) {
  Recording unseen = recordingOf({}), seen = unseen;
  unseen.events.at(0).fields["interactive"] = false;
  EXPECT_EQ(compare(unseen, seen), std::nullopt);
  unseen.events.at(0).fields["hosted"] = false;
  EXPECT_NE(compare(unseen, seen), std::nullopt);
}

TEST(ReplayCompare, AnotherIdentifierIsADifference) {
  const auto answer = [](int number, int identifier) {
    return Lines{R"("event":"call","number":)" + std::to_string(number) +
                     R"(,"object":13,"member":"Login","as":"method","arguments":[])",
                 R"("event":"answer","number":)" + std::to_string(number) +
                     R"(,"took":1,"answer":"(identifier )" + std::to_string(identifier) + ")\""};
  };
  EXPECT_EQ(compared(answer(1, 3) + answer(2, 3), answer(1, 1) + answer(2, 1)), std::nullopt);
  const auto found = compared(answer(1, 3) + answer(2, 3), answer(1, 1) + answer(2, 2));
  ASSERT_TRUE(found);
  EXPECT_EQ(found->line, 5U);
}

TEST(ReplayCompare, WhatIsMissingAtTheEndIsADifferenceAndWhatIsMoreIsNone) {
  const Lines shorter(second.begin(), second.end() - 1);
  const auto found = compared(first, shorter);
  ASSERT_TRUE(found);
  EXPECT_EQ(found->line, 10U);
  EXPECT_EQ(found->now, "");
  EXPECT_EQ(compared(shorter, first), std::nullopt);
}

// The exchange may read what it likes, and the entry's command is its own.
TEST(ReplayCompare, WhatOthersAreFreeInIsNoDifference) {
  const Lines reads{
      R"("event":"lent","object":19,"class":"cListRequest")",
      R"("event":"called","number":21,"object":19,"member":"CMD","as":"method or get","arguments":[0])",
      R"("event":"returned","number":21,"took":1,"answer":"LEA0")",
      R"("event":"entries","object":32,"first":0,"entries":[["LEA0 1","a","b","c"],["LEA0","d","e","f"]])"};
  const Lines none{R"("event":"entries","object":7,"first":0,"entries":[["LEA0","a","b","c"]])",
                   R"("event":"entries","object":7,"first":1,"entries":[["LEA0","d","e","f"]])"};
  EXPECT_EQ(compared(reads, none), std::nullopt);
  Lines other = none;
  other[1] = R"("event":"entries","object":7,"first":1,"entries":[["LEA0","d","e","x"]])";
  EXPECT_EQ(compared(reads, other)->line, 5U);
}

TEST(ReplayCompare, ACueIsDueWhenTheAddInHasComeToItAndOnce) {
  const Lines lines{R"("event":"timer","milliseconds":100)", R"("event":"person","what":"key","which":112)",
                    R"("event":"timer","milliseconds":200)"};
  const Cue cue{Cue::Kind::person, 3, "key", 112};
  Conductor conductor(recordingOf(lines), {cue}, std::nullopt);
  const Lines now = traceOf(lines);
  EXPECT_EQ(conductor.due(), std::nullopt);
  conductor.heard(now[0]);
  EXPECT_EQ(conductor.due(), std::nullopt);
  conductor.heard(now[1]);
  EXPECT_EQ(conductor.due(), cue);
  EXPECT_EQ(conductor.due(), std::nullopt);
  conductor.heard("{\"half");
  conductor.heard(now[2]);
  EXPECT_FALSE(conductor.over());
  conductor.heard(now[3]);
  EXPECT_TRUE(conductor.over());
}

TEST(ReplayCompare, APlayThatEndsEarlyEndsThere) {
  const Lines lines{R"("event":"timer","milliseconds":100)", R"("event":"person","what":"key","which":112)"};
  Conductor conductor(recordingOf(lines), {{Cue::Kind::person, 3, "key", 112}}, 3);
  for (const std::string& line : traceOf({lines[0]})) conductor.heard(line);
  EXPECT_EQ(conductor.due(), std::nullopt);
  EXPECT_TRUE(conductor.over());
}

}  // namespace
}  // namespace vordane::replay
