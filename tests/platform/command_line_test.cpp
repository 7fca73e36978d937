#include "platform/command_line.h"

#include <gtest/gtest.h>

namespace vordane::platform {
namespace {

TEST(CommandLine, LosesBlanksAndOnePairOfQuotes) {
  EXPECT_EQ(parseCommandLine(u"  PBX-1 ").text, u"PBX-1");
  EXPECT_EQ(parseCommandLine(u"\"PBX 1\"").text, u"PBX 1");
  EXPECT_EQ(parseCommandLine(u" \" PBX 1 \" ").text, u" PBX 1 ");
  EXPECT_EQ(parseCommandLine(u"\"\"PBX\"\"").text, u"\"PBX\"");
  EXPECT_EQ(parseCommandLine(u"\"PBX").text, u"\"PBX");
  EXPECT_EQ(parseCommandLine(u"\"").text, u"\"");
}

TEST(CommandLine, NothingLeftIsEmpty) {
  for (const std::u16string_view text : {u"", u"   ", u"\"\"", u" \"\" "}) {
    EXPECT_EQ(parseCommandLine(text).text, u"");
    EXPECT_EQ(parseCommandLine(text).start, Start::byHand);
  }
}

TEST(CommandLine, KnowsItsSwitchesInAnyCase) {
  for (const std::u16string_view text : {u"-Embedding", u"/Embedding", u"-embedding", u" /EMBEDDING "})
    EXPECT_EQ(parseCommandLine(text).start, Start::byAutomation);
  for (const std::u16string_view text : {u"/RegServer", u"-regserver"})
    EXPECT_EQ(parseCommandLine(text).start, Start::registerServer);
  for (const std::u16string_view text : {u"/UnregServer", u"-UNREGSERVER"})
    EXPECT_EQ(parseCommandLine(text).start, Start::unregisterServer);
}

TEST(CommandLine, MoreMayStandBehindARegistration) {
  const CommandLine named = parseCommandLine(u" /regserver  /JobAccount:OFFICE\\jobs ");
  EXPECT_EQ(named.start, Start::registerServer);
  EXPECT_EQ(named.text, u"/JobAccount:OFFICE\\jobs");
  EXPECT_EQ(parseCommandLine(u"/RegServer").text, u"");
  EXPECT_EQ(parseCommandLine(u"-UnregServer x").start, Start::unregisterServer);
  EXPECT_EQ(parseCommandLine(u"-UnregServer x").text, u"x");
  EXPECT_EQ(parseCommandLine(u"/RegServers").text, u"/RegServers");
  EXPECT_EQ(parseCommandLine(u"/RegServe").text, u"/RegServe");
  EXPECT_EQ(parseCommandLine(u"/").text, u"/");
  EXPECT_EQ(parseCommandLine(u"-Embedding x").text, u"-Embedding x");
}

TEST(CommandLine, EverythingElseIsAnExchangesName) {
  EXPECT_EQ(parseCommandLine(u"Embedding").start, Start::byHand);
  EXPECT_EQ(parseCommandLine(u"-Embedded").text, u"-Embedded");
  EXPECT_EQ(parseCommandLine(u"PBX /RegServer").text, u"PBX /RegServer");
}

TEST(CommandLine, OnlyWhoeverStartsByHandLearnsTheNumberOfTheEntry) {
  EXPECT_EQ(exitCodeOfBroken(Start::byHand), 10);
  for (const Start start : {Start::byAutomation, Start::registerServer, Start::unregisterServer})
    EXPECT_EQ(exitCodeOfBroken(start), 1);
}

TEST(CommandLine, TheProgramsOwnNameGoes) {
  EXPECT_EQ(withoutProgramName(u"\"C:\\Program Files\\V.EXE\" PBX-1"), u" PBX-1");
  EXPECT_EQ(withoutProgramName(u"V.EXE  PBX-1"), u" PBX-1");
  EXPECT_EQ(withoutProgramName(u"\"C:\\V.EXE\""), u"");
  EXPECT_EQ(withoutProgramName(u"V.EXE"), u"");
}

}  // namespace
}  // namespace vordane::platform
