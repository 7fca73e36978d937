#include "pbx/response_codes.h"

#include <gtest/gtest.h>

#include "fakes/scripted_object.h"

namespace vordane::pbx {
namespace {

struct Expected {
  const char16_t* text;
  int code;
};

constexpr Expected everyText[] = {
    {u"DIGIT ERROR", 0},
    {u"DATA ERROR", 1},
    {u"CODE NOT ALLOWED", 2},
    {u"CODE NOT USED", 3},
    {u"DATA NOT FOUND", 4},
    {u"WAIT, BUSY NOW", 5},
    {u"ASSIGNED ALREADY", 6},
    {u"HARD WARE ERROR", 7},
    {u"WD ERROR", 8},
    {u"USE CM", 9},
    {u"TRK NOT ASSIGNED", 10},
    {u"ASSIGNED TO", 11},
    {u"MEMORY FULL", 12},
    {u"DATA NOT SET", 13},
    {u"END", 14},
    {u"SEE CM", 15},
    {u"OK", 100},
    {u"NONE", 101},
    {u"WRONG", 102},
    {u"MEMORY CLEAR?", 103},
    {u"ERROR", 104},
    {u"INITIAL?", 105},
    {u"COMMAND=", 106},
    {u"CODE NOTALLOWED", 2},
    {u"ZUL_TIMEOUT", 60},
    {u"ZUL_USERCANCEL", 61},
    {u"ZUL_LACK INPUT", 62},
    {u"ZUL_PORT TROUBLES", 63},
    {u"ZUL_SYSERROR", 64},
    {u"ZUL_CMD RERR", 65},
    {u"ZUL_CMD WERR", 66},
    {u"ZUL_CHECKSUMERROR", 67},
    {u"ZUL_INVALID FILENAME", 68},
    {u"ZUL_INVALID PROCNUM", 69},
    {u"ZUL_INVALID AREANUM", 70},
    {u"ZUL_INVALID FILEFORMAT", 71},
    {u"ZUL_WRITE ERROR", 72},
    {u"ZUL_MEM OVERFLOW", 73},
    {u"ZUL_DISK_WRITE_ERROR", 74},
    {u"ZUL_INVALID_SEQUENCE", 75},
    {u"ZUL_BACKUP_NG", 76},
    {u"ZUL_NO_IPPBX", 77},
    {u"ZUL_OK", 80},
    {u"ZUL_NONE", 81},
    {u"ZUL_NO DUMY NUM", 82},
    {u"ZUL_STN", 83},
    {u"ZUL_PKG", 84},
    {u"ZUL_STN_STATION", 85},
    {u"ZUL_STN_DTERM", 86},
    {u"ZUL_STN_VIRTUAL", 87},
    {u"ZUL_STN_PS", 88},
    {u"ZUL_STN_ISDN", 89},
    {u"ZUL_STN_MODEM", 90},
    {u"ZUL_STN_DATA", 91},
    {u"ZUL_STN_OTHERS", 92},
    {u"ZUL_STN_NOT ASSIGNED", 93},
    {u"ZUL_STN_DTERMIP", 94},
};

TEST(ResponseCode, EveryTextYieldsItsCodeAndAPrefixOfItDoesNot) {
  ASSERT_EQ(std::size(everyText), 57U);
  for (const auto& [text, code] : everyText) {
    EXPECT_EQ(GetResponseCode(text), code);
    EXPECT_EQ(GetResponseCode(std::u16string(text) + u" 1"), code);
  }
  EXPECT_EQ(GetResponseCode(u"DATA NOT FOUN"), -1);
}

TEST(ResponseCode, ATextThatOnlyBeginsSoMatchesToo) {
  EXPECT_EQ(GetResponseCode(u"OKAY"), 100);
}

TEST(ResponseCode, ComparesWithCaseAndFromTheFirstCharacter) {
  EXPECT_EQ(GetResponseCode(u"ok"), -1);
  EXPECT_EQ(GetResponseCode(u" OK"), -1);
  EXPECT_EQ(GetResponseCode(u""), -1);
  EXPECT_EQ(GetResponseCode(u"04 MJ MP000"), -1);
}

TEST(ResponseCode, OnlyTheLast25CharactersOfALongTextCount) {
  EXPECT_EQ(GetResponseCode(u"123456789012345DATA ERROR890123456789012"), 1);  // 40 characters
  EXPECT_EQ(GetResponseCode(u"DATA ERROR 2345678901234567"), -1);
  EXPECT_EQ(GetResponseCode(u"DATA ERROR 23456789012345"), 1);  // 25
}

TEST(ResponseCode, AColonAloneFindsNothingInTheTable) {
  EXPECT_EQ(GetResponseCode(u"REPLY:OK"), -1);
  EXPECT_EQ(GetResponseCode(u":"), -1);
}

std::u16string generation(std::u16string answer) {
  auto access = std::make_shared<fakes::ScriptedObject>();
  access->on(u"GetMPVersion", [&](auto arguments) -> automation::Value {
    EXPECT_EQ(arguments.size(), 1U);
    EXPECT_TRUE(arguments[0].byReference);
    EXPECT_EQ(arguments[0].value, automation::Value(std::u16string(u"P1")));
    return answer;
  });
  fakes::ScriptedObject host;
  host.on(u"oZUL", [&](auto) { return automation::Value(automation::ObjectRef(access)); });
  return GetMPGeneration(&host, u"P1");
}

TEST(MPGeneration, IsTheFirstCharacterBehindTheBlank) {
  EXPECT_EQ(generation(u"SC-1000 4.2"), u"4");
  EXPECT_EQ(generation(u"SC-1000 N"), u"N");
  EXPECT_EQ(generation(u"XX-1 4"), u"");
  EXPECT_EQ(generation(u"sc-1 4"), u"");
  EXPECT_EQ(generation(u"SC-1000"), u"");
  EXPECT_EQ(generation(u"SC-1000  4"), u"");
  EXPECT_EQ(generation(u""), u"");
}

TEST(MPGeneration, AnyFailureOnTheWayLeavesItEmpty) {
  EXPECT_EQ(GetMPGeneration(nullptr, u"P1"), u"");
  fakes::ScriptedObject bare;
  EXPECT_EQ(GetMPGeneration(&bare, u"P1"), u"");
  bare.on(u"oZUL", [](auto) { return automation::Value(automation::ObjectRef()); });
  EXPECT_EQ(GetMPGeneration(&bare, u"P1"), u"");
  bare.on(u"oZUL", [](auto) { return automation::Value(std::int16_t{5}); });
  EXPECT_EQ(GetMPGeneration(&bare, u"P1"), u"");
}

}  // namespace
}  // namespace vordane::pbx
