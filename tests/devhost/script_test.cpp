#include "devhost/core/script.h"

#include <gtest/gtest.h>

namespace vordane::devhost {
namespace {

std::vector<Statement> good(std::string_view text) {
  ParsedScript parsed = parseScript(text);
  EXPECT_EQ(lines::listing(u"script", parsed.problems), u"");
  return std::move(parsed.statements);
}

TEST(Script, ReadsStatementsWithTheirUsualValues) {
  const auto script = good(
      "# a comment\r\n"
      "pbx\n"
      "pbx in-process \"my scenario.zul\"\n"
      "create\n"
      "create second Vordane10013.cListRequest\n"
      "register \"PBX 1\" 7\n"
      "register PBX-2\n"
      "create-schedule 70000 2\n"
      "run 7\n");
  ASSERT_EQ(script.size(), 8U);
  EXPECT_EQ(script[0].text, u"CalderinProj30001.cPBXOLE");
  EXPECT_EQ(script[0].line, 2);
  EXPECT_EQ(script[1].verb, Verb::pbxInProcess);
  EXPECT_EQ(script[1].name, u"my scenario.zul");
  EXPECT_EQ(script[2].name, u"layer");
  EXPECT_EQ(script[2].text, u"Vordane10013.cOLELayer");
  EXPECT_EQ(script[3].text, u"Vordane10013.cListRequest");
  EXPECT_EQ(script[4].name, u"PBX 1");
  EXPECT_EQ(script[4].number, 7);
  EXPECT_EQ(script[4].words, u"register \"PBX 1\" 7");
  EXPECT_EQ(script[5].number, 1);
  EXPECT_EQ(script[6].number, 70000);
  EXPECT_EQ(script[6].second, 2);
  EXPECT_EQ(script[7].name, u"7");
}

TEST(Script, WaitsForANotificationAsTheTraceWritesIt) {
  const auto script = good(
      "wait UnloadChild\n"
      "wait EndProcess \"7\" 20000 within 60000\n"
      "wait oPBX.Login \"within\" within forever\n"
      "never ShowCode 61 within 500\n");
  EXPECT_EQ(script[0].text, u"UnloadChild");
  EXPECT_EQ(script[0].milliseconds, 30000);
  EXPECT_EQ(script[1].text, u"EndProcess \"7\" 20000");
  EXPECT_EQ(script[1].milliseconds, 60000);
  EXPECT_EQ(script[2].text, u"oPBX.Login \"within\"");
  EXPECT_EQ(script[2].milliseconds, forever);
  EXPECT_EQ(script[3].text, u"ShowCode 61");
  EXPECT_EQ(script[3].milliseconds, 500);
}

TEST(Script, FreeCallsKeepTheTypeOfTheirValues) {
  const auto script = good("try call record AddToList \"LEA0\" 7 70000 True word\n");
  EXPECT_TRUE(script[0].tolerated);
  ASSERT_EQ(script[0].values.size(), 5U);
  EXPECT_EQ(std::get<std::u16string>(script[0].values[0]), u"LEA0");
  EXPECT_EQ(std::get<std::int16_t>(script[0].values[1]), 7);
  EXPECT_EQ(std::get<std::int32_t>(script[0].values[2]), 70000);
  EXPECT_EQ(std::get<bool>(script[0].values[3]), true);
  EXPECT_EQ(std::get<std::u16string>(script[0].values[4]), u"word");
}

TEST(Script, SetsAndDepartures) {
  const auto script = good(
      "set sysinfo 12\nset version \"SC-1000 4.2\"\nset data MOVE 1200,900\n"
      "omit oZUL\nraise ShowMessage 0x80010108 gone\nraise ShowCode\nslow TurnOnFlow 500\ndie "
      "LogOut\ndie\nrestore oZUL\n");
  EXPECT_EQ(script[0].verb, Verb::systemInfo);
  EXPECT_EQ(script[0].number, 12);
  EXPECT_EQ(script[1].text, u"SC-1000 4.2");
  EXPECT_EQ(script[2].name, u"MOVE");
  EXPECT_EQ(script[2].text, u"1200,900");
  EXPECT_EQ(script[4].number, static_cast<std::int32_t>(0x80010108));
  EXPECT_EQ(script[4].text, u"gone");
  EXPECT_EQ(script[5].number, static_cast<std::int32_t>(0x800A01BD));
  EXPECT_EQ(script[6].milliseconds, 500);
  EXPECT_EQ(script[7].verb, Verb::dieOn);
  EXPECT_EQ(script[8].verb, Verb::die);
}

TEST(Script, Words) {
  const auto script = good(
      "give go\ngive heard on TurnOnFlow\ngive accepted on ShowMessage Exchange server: ACC\n"
      "hold TurnOnFlow until answered\nhold ShowMessage until answered Exchange server: ACC\n");
  EXPECT_EQ(script[0].verb, Verb::give);
  EXPECT_EQ(script[0].word, u"go");
  EXPECT_EQ(script[1].verb, Verb::giveOn);
  EXPECT_EQ(script[1].name, u"TurnOnFlow");
  EXPECT_EQ(script[1].text, u"");
  EXPECT_EQ(script[2].text, u"Exchange server: ACC");
  EXPECT_EQ(script[3].verb, Verb::hold);
  EXPECT_EQ(script[3].name, u"TurnOnFlow");
  EXPECT_EQ(script[3].word, u"answered");
  EXPECT_EQ(script[4].text, u"Exchange server: ACC");
}

TEST(Script, AWordToGoOnAndWhatTheNextCallsBring) {
  const auto script = good(
      "when go\nnext TurnOnFlow\nnext getsysinfo answer 12\nnext oPBX nothing\n"
      "next ShowMessage raise 0x800A0005 \\\"no\\r\\n\\u0041 \\\"b\\\"\"\nnext ShowCode raise\n");
  EXPECT_EQ(script[0].verb, Verb::when);
  EXPECT_EQ(script[0].word, u"go");
  EXPECT_EQ(script[1].name, u"TurnOnFlow");
  EXPECT_FALSE(script[1].answer);
  EXPECT_EQ(std::get<automation::Value>(*script[2].answer), automation::Value(std::int16_t{12}));
  EXPECT_EQ(std::get<automation::Value>(*script[3].answer), automation::Value(automation::ObjectRef{}));
  const auto& raised = std::get<automation::AutomationError>(*script[4].answer);
  EXPECT_EQ(raised.code(), static_cast<std::int32_t>(0x800A0005));
  EXPECT_EQ(raised.description(), u"no\r\nA \"b\"");
  EXPECT_EQ(std::get<automation::AutomationError>(*script[5].answer).code(),
            static_cast<std::int32_t>(0x800A01BD));
}

TEST(Script, RepetitionsHoldTheirStatements) {
  const auto script = good("repeat 3\ncreate\nrepeat 2\nsleep 1\nend\nrelease\nend\nnote done\n");
  ASSERT_EQ(script.size(), 2U);
  EXPECT_EQ(script[0].number, 3);
  ASSERT_EQ(script[0].block.size(), 3U);
  EXPECT_EQ(script[0].block[1].block.size(), 1U);
  EXPECT_EQ(script[1].text, u"done");
}

struct BadCase {
  const char* text;
  int line;
  const char16_t* problem;

  friend void PrintTo(const BadCase& bad, std::ostream* out) { *out << testing::PrintToString(bad.text); }
};

class BadScript : public testing::TestWithParam<BadCase> {};

TEST_P(BadScript, IsToldWithItsLine) {
  const ParsedScript parsed = parseScript(GetParam().text);
  ASSERT_EQ(parsed.problems.size(), 1U);
  EXPECT_EQ(parsed.problems[0], (lines::Problem{GetParam().line, GetParam().problem}));
}

INSTANTIATE_TEST_SUITE_P(
    Lines, BadScript,
    testing::Values(
        BadCase{"\nstart\n", 2, u"\"start\" is no word of a script"},
        BadCase{"pbx maybe\n", 1, u"pbx is followed by create, in-process or none"},
        BadCase{"register\n", 1, u"the exchange's name is missing"},
        BadCase{"register A 70000\n", 1, u"the ID must be a number from -32768 to 32767, not \"70000\""},
        BadCase{"show now\n", 1, u"nothing may follow here, but \"now\" does"},
        BadCase{"wait Something\n", 1, u"\"Something\" is no notification"},
        BadCase{"wait ShowCode within soon\n", 1,
                u"the time in milliseconds must be a number from 0 to 86400000, not \"soon\""},
        BadCase{"wait ShowCode within\n", 1, u"the time in milliseconds is missing"},
        BadCase{"omit Everything\n", 1, u"\"Everything\" is no member of a host"},
        BadCase{"set colour red\n", 1, u"\"colour\" can't be set; sysinfo, version and data can"},
        BadCase{"when\n", 1, u"the word is missing"},
        BadCase{"when ..\\a\n", 1, u"a word can't hold \\ / : * ? \" < > or |"},
        BadCase{"next TurnOnFlow fails\n", 1,
                u"behind the member stands nothing, or answer VALUE, nothing or raise"},
        BadCase{"next TurnOnFlow answer\n", 1, u"a value is missing"},
        BadCase{"next Everything\n", 1, u"\"Everything\" is no member of a host"},
        BadCase{"give\n", 1, u"the word is missing"},
        BadCase{"give a\\b\n", 1, u"a word can't hold \\ / : * ? \" < > or |"},
        BadCase{"give heard at TurnOnFlow\n", 1, u"behind the word stands nothing, or on MEMBER"},
        BadCase{"give heard on Everything\n", 1, u"\"Everything\" is no member of a host"},
        BadCase{"hold TurnOnFlow for answered\n", 1, u"behind the member stands until WORD"},
        BadCase{"put record Tag\n", 1, u"the value is missing"},
        BadCase{"try\n", 1, u"what is tried is missing"},
        BadCase{"end\n", 1, u"there is no repetition to end"},
        BadCase{"note a\nrepeat 2\nnote b\n", 2, u"the line \"end\" of this repetition is missing"},
        BadCase{"repeat none\nnote b\nend\n", 1,
                u"the number of rounds must be a number from 1 to 10000000, not \"none\""},
        BadCase{"note \"open\n", 1, u"the closing quote is missing"}));

}  // namespace
}  // namespace vordane::devhost
