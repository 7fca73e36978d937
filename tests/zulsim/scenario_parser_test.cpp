#include "zulsim/core/scenario_parser.h"

#include <gtest/gtest.h>

#include "zulsim/core/generator.h"

namespace vordane::zulsim {
namespace {

Scenario good(std::string_view text) {
  ParsedScenario parsed = parseScenario(text);
  EXPECT_EQ(parsed.problems, std::vector<lines::Problem>{});
  return std::move(parsed.scenario);
}

lines::Problem problem(std::string_view text) {
  const ParsedScenario parsed = parseScenario(text);
  EXPECT_EQ(parsed.problems.size(), 1U);
  return parsed.problems.empty() ? lines::Problem{} : parsed.problems.front();
}

const Answer& answerOf(const Scenario& scenario, std::u16string_view key) {
  return findCommand(scenario.exchanges.at(0), key)->answers.at(0);
}

TEST(ScenarioParser, ReadsAnExchangeWithItsAnswers) {
  const Scenario scenario = good(
      "\xEF\xBB\xBF# the exchange of the training room\r\n"
      "\r\n"
      "exchange \"PBX 1\"\r\n"
      "  alarm 10\r\n"
      "  login answer BUSY\r\n"
      "  login after 250 accept LOGIN-7\r\n"
      "  answer LEA0\r\n"
      "    fault 11 MJ LP 0C | 06/11/27 10:15 | 0C 1F | 00\r\n"
      "    fault 01 MN MP 00 | 06/11/27 10:16\r\n"
      "    errcode 200\r\n"
      "    message Ende der Liste – geprüft\r\n"
      "    delay 1500\r\n");
  const Exchange& exchange = scenario.exchanges.at(0);
  EXPECT_EQ(exchange.name, u"PBX 1");
  EXPECT_EQ(exchange.alarm, u"10");
  ASSERT_EQ(exchange.login.size(), 2U);
  EXPECT_EQ(exchange.login[0].kind, Reply::Kind::text);
  EXPECT_EQ(exchange.login[0].text, u"BUSY");
  EXPECT_EQ(exchange.login[1].kind, Reply::Kind::accept);
  EXPECT_EQ(exchange.login[1].text, u"LOGIN-7");
  EXPECT_EQ(exchange.login[1].pause, 250);
  const Answer& answer = answerOf(scenario, u"lea0");
  EXPECT_EQ(answer.errCode, 200);
  EXPECT_EQ(answer.message, u"Ende der Liste – geprüft");
  EXPECT_EQ(answer.delay, 1500);
  const std::vector<Entry> entries = entriesOf(answer, 0);
  ASSERT_EQ(entries.size(), 8U);
  EXPECT_EQ(entries[0].FirstData, u"11 MJ LP 0C");
  EXPECT_EQ(entries[2].FirstData, u"0C 1F");
  EXPECT_EQ(entries[5].FirstData, u"06/11/27 10:16");
  EXPECT_EQ(entries[7].FirstData, u"");
}

TEST(ScenarioParser, QuotesKeepBlanksAndBars) {
  const Scenario scenario =
      good("exchange A\nanswer LEA0\nfault \" 01 MN MP 00 \" | \"06/11/27 \"\"A\"\"\" | \"a|b\"\n");
  const std::vector<Entry> entries = entriesOf(answerOf(scenario, u"LEA0"), 0);
  EXPECT_EQ(entries[0].FirstData, u" 01 MN MP 00 ");
  EXPECT_EQ(entries[1].FirstData, u"06/11/27 \"A\"");
  EXPECT_EQ(entries[2].FirstData, u"a|b");
}

// Line ends and halves of characters, which no line holds as they are.
TEST(ScenarioParser, EscapesBehindABackslash) {
  const auto parsed = parseScenario(
      "exchange A\nlogin answer \\\"a\\nb\\r\\t\\\\ \\\"c\\\" \\u00e4\\ud800\"\nanswer LEA0\n"
      "entry \\\"x|\\n\" | \"y\"\n");
  ASSERT_EQ(lines::listing(u"x", parsed.problems), u"");
  const Exchange& exchange = parsed.scenario.exchanges.at(0);
  EXPECT_EQ(exchange.login.at(0).text, std::u16string(u"a\nb\r\t\\ \"c\" \u00e4") + char16_t{0xD800});
  const auto entries = entriesOf(exchange.commands.at(0).answers.at(0), 0);
  EXPECT_EQ(entries.at(0).FirstData, u"x|\n");
  EXPECT_EQ(entries.at(0).SecondData, u"y");
}

TEST(ScenarioParser, ShortWaysOfCommonEntries) {
  const Scenario scenario = good(
      "exchange A\n"
      "answer LEA0\nfault 01 MN MP 00 | 06/11/27\ncut\nnot-found\ncut ZUL_SYSERROR\n"
      "answer EA1/00\nlamps 01\n"
      "answer EA1/00/CCC\ndone\ndone WRONG\nentry a | b | c | d\n");
  const std::vector<Entry> list = entriesOf(answerOf(scenario, u"LEA0"), 0);
  ASSERT_EQ(list.size(), 7U);
  EXPECT_EQ(list[4].FirstData, u"ZUL_TIMEOUT");
  EXPECT_EQ(list[5].FirstData, u"DATA NOT FOUND");
  EXPECT_EQ(list[6].FirstData, u"ZUL_SYSERROR");
  EXPECT_EQ(entriesOf(answerOf(scenario, u"EA1/00"), 0).at(0).SecondData, u"01");
  const std::vector<Entry> cleared = entriesOf(answerOf(scenario, u"EA1/00/CCC"), 0);
  EXPECT_EQ(cleared.at(0).ExtraData, u"OK");
  EXPECT_EQ(cleared.at(1).ExtraData, u"WRONG");
  EXPECT_EQ(cleared.at(2), (Entry{u"a", u"b", u"c", u"d"}));
}

TEST(ScenarioParser, GeneratedListsWithTheirOptions) {
  const Scenario scenario = good(
      "exchange A\nanswer LEA0\n"
      "generate 40 seed 3 from 05/12/31 to \"06/01/01 06:30\" order mixed kinds 01,3B\n"
      "drop-last 2\n");
  const Answer& answer = answerOf(scenario, u"LEA0");
  const auto& generation = std::get<Generation>(answer.parts.at(0));
  EXPECT_EQ(generation.count, 40);
  EXPECT_EQ(generation.seed, 3U);
  EXPECT_EQ(generation.fromMinute, parseMinute(u"05/12/31"));
  EXPECT_EQ(generation.toMinute, parseMinute(u"06/01/01 06:30"));
  EXPECT_EQ(generation.order, Generation::Order::mixed);
  EXPECT_EQ(generation.kinds, (std::vector<std::uint8_t>{0x01, 0x3B}));
  EXPECT_EQ(entriesOf(answer, 0).size(), 158U);
}

TEST(ScenarioParser, EveryWayOfMisbehaving) {
  const Scenario scenario = good(
      "exchange A\nrepeat all\nsend empty\nsend raise\nsend raise 0x80010001 call rejected\nlogout raise "
      "429\ncancel ignore\n"
      "answer LEA0\nnever\nearly\ntwice\nsent-record\nlogin-id \"\"\ntag 99\nalarm 11\nomit Message\nomit "
      "ErrCode\nvanish 3\n");
  const Exchange& exchange = scenario.exchanges.at(0);
  EXPECT_TRUE(exchange.repeatAll);
  EXPECT_EQ(exchange.send.at(0).kind, Reply::Kind::text);
  EXPECT_EQ(exchange.send.at(1).kind, Reply::Kind::raise);
  EXPECT_EQ(exchange.send.at(2).code, static_cast<std::int32_t>(0x80010001));
  EXPECT_EQ(exchange.send.at(2).text, u"call rejected");
  EXPECT_EQ(exchange.logOut.at(0).code, 429);
  EXPECT_EQ(exchange.cancel.at(0).kind, Reply::Kind::ignore);
  EXPECT_EQ(exchange.alarm, u"00");
  const Answer& answer = answerOf(scenario, u"LEA0");
  EXPECT_TRUE(answer.never && answer.early && answer.twice && answer.sentRecord);
  EXPECT_EQ(answer.loginId, u"");
  EXPECT_EQ(answer.tag, u"99");
  EXPECT_EQ(answer.alarm, u"11");
  EXPECT_EQ(answer.omitted, (std::vector<std::u16string>{u"Message", u"ErrCode"}));
  EXPECT_EQ(answer.vanishAfter, 3);
}

TEST(ScenarioParser, Words) {
  const Scenario scenario =
      good("exchange A\ncancelled-when cancelled\nanswer LEA0\nwhen heard tried\nthen answered\n");
  EXPECT_EQ(scenario.exchanges.at(0).cancelledWhen, u"cancelled");
  EXPECT_EQ(answerOf(scenario, u"LEA0").when, (std::vector<std::u16string>{u"heard", u"tried"}));
  EXPECT_EQ(answerOf(scenario, u"LEA0").then, u"answered");
}

TEST(ScenarioParser, SequencesAreHeldInOrder) {
  const Scenario scenario =
      good("exchange A\nanswer LEA0\nnot-found\nanswer EA1/00\nanswer lea0\nerrcode 61\n");
  const Command* command = findCommand(scenario.exchanges.at(0), u"LEA0");
  ASSERT_EQ(command->answers.size(), 2U);
  EXPECT_EQ(stepOf(command->answers, 0, false).errCode, 0);
  EXPECT_EQ(stepOf(command->answers, 1, false).errCode, 61);
  EXPECT_EQ(stepOf(command->answers, 2, false).errCode, 61);  // the last one holds
  EXPECT_EQ(stepOf(command->answers, 2, true).errCode, 0);    // or it starts over
}

TEST(ScenarioParser, ARangeOfNames) {
  const Scenario scenario = good("exchange PBX-{08..11}\nalarm 01\nexchange Main\n");
  ASSERT_EQ(scenario.exchanges.size(), 5U);
  EXPECT_EQ(scenario.exchanges[0].name, u"PBX-08");
  EXPECT_EQ(scenario.exchanges[3].name, u"PBX-11");
  EXPECT_EQ(scenario.exchanges[3].number, 3U);
  EXPECT_EQ(scenario.exchanges[3].alarm, u"01");
  EXPECT_EQ(scenario.exchanges[4].alarm, u"00");
}

TEST(ScenarioParser, AnExchangeForEveryOtherName) {
  const Scenario scenario = good("exchange *\nalarm 11\nexchange A\n");
  EXPECT_EQ(findExchange(scenario, u"A")->alarm, u"00");
  EXPECT_EQ(findExchange(scenario, u"B")->alarm, u"11");
  EXPECT_EQ(findExchange(good("exchange A\n"), u"B"), nullptr);
}

struct BadCase {
  const char* text;
  int line;
  const char16_t* problem;

  friend void PrintTo(const BadCase& bad, std::ostream* out) { *out << testing::PrintToString(bad.text); }
};

class BadScenario : public testing::TestWithParam<BadCase> {};

TEST_P(BadScenario, IsToldWithItsLine) {
  EXPECT_EQ(problem(GetParam().text), (lines::Problem{GetParam().line, GetParam().problem}));
}

INSTANTIATE_TEST_SUITE_P(
    Lines, BadScenario,
    testing::Values(
        BadCase{"", 1, u"the scenario has no exchange"},
        BadCase{"# only words\n", 1, u"the scenario has no exchange"},
        BadCase{"login accept\n", 1, u"\"login\" needs a line \"exchange NAME\" before it"},
        BadCase{"exchange A\n\nnot-found\n", 3, u"\"not-found\" needs a line \"answer COMMAND\" before it"},
        BadCase{"exchange A\nlogon accept\n", 2, u"\"logon\" is no word of a scenario"},
        BadCase{"exchange A\nanswer LEA0\nwhen\n", 3, u"the word is missing"},
        BadCase{"exchange A\nanswer LEA0\nwhen C:\\heard\n", 3, u"a word can't hold \\ / : * ? \" < > or |"},
        BadCase{"exchange A\nanswer LEA0\nthen a b\n", 3, u"nothing may follow here, but \"b\" does"},
        BadCase{"exchange A\ncancelled-when\n", 2, u"the word is missing"},
        BadCase{"exchange\n", 1, u"the exchange's name is missing"},
        BadCase{"exchange A B\n", 1, u"nothing may follow here, but \"B\" does"},
        BadCase{"exchange A\nexchange A\n", 2, u"the exchange \"A\" stands here a second time"},
        BadCase{"exchange \"A\nlogin accept\n", 1, u"the closing quote is missing"},
        BadCase{"exchange \\\"A\\\"\n", 1, u"the closing quote is missing"},
        BadCase{"exchange \\\"A\"B\n", 1, u"a blank is missing behind the closing quote"},
        BadCase{"exchange \\\"A\\x\"\n", 1,
                u"behind a backslash stands \\, \", n, r, t or u with four hexadecimal digits"},
        BadCase{"exchange \\\"A\\u12g4\"\n", 1, u"behind \\u stand four hexadecimal digits"},
        BadCase{"exchange \\\"A\\u12", 1, u"behind \\u stand four hexadecimal digits"},
        BadCase{"exchange P-{1-4}\n", 1, u"a range of names is written {1..40}"},
        BadCase{"exchange P-{4..1}\n", 1,
                u"a range of names runs from a number to a greater one, at most 10000 names"},
        BadCase{"exchange A\nlogin BUSY\n", 2,
                u"\"BUSY\" is no answer; it is accept, answer TEXT, empty or raise"},
        BadCase{"exchange A\ncancel no\n", 2,
                u"\"no\" is no answer; it is accept, answer TEXT, empty, ignore or raise"},
        BadCase{"exchange A\nlogin ignore\n", 2,
                u"\"ignore\" is no answer; it is accept, answer TEXT, empty or raise"},
        BadCase{"exchange A\nlogin answer\n", 2, u"the answer's text is missing (\"\" is the empty one)"},
        BadCase{"exchange A\nlogin after x accept\n", 2,
                u"the pause in milliseconds must be a number from 0 to 86400000, not \"x\""},
        BadCase{"exchange A\nlogin raise 0xZZ\n", 2,
                u"the error's number must be a number, decimal or with 0x, not \"0xZZ\""},
        BadCase{"exchange A\nrepeat twice\n", 2, u"repeat is followed by all or last"},
        BadCase{"exchange A\nanswer LEA0\nfault 01 MN MP 00\n", 3,
                u"a fault is written RECORD | DATE | DATA | DATA, the data texts may be left out"},
        BadCase{"exchange A\nanswer LEA0\nentry 1|2|3|4|5\n", 3, u"an entry has at most four fields"},
        BadCase{"exchange A\nanswer LEA0\ngenerate 0\n", 3,
                u"the number of faults must be a number from 1 to 100000, not \"0\""},
        BadCase{"exchange A\nanswer LEA0\ngenerate 5 from 06/02/30\n", 3,
                u"the first date is written YY/MM/DD or \"YY/MM/DD HH:MM\", not \"06/02/30\""},
        BadCase{"exchange A\nanswer LEA0\ngenerate 5 from 06/02/02 to 06/02/01\n", 3,
                u"the last date lies before the first"},
        BadCase{"exchange A\nanswer LEA0\ngenerate 5 order random\n", 3,
                u"\"random\" is no order; it is newest-last, newest-first or mixed"},
        BadCase{"exchange A\nanswer LEA0\ngenerate 5 kinds 01,ZZ\n", 3,
                u"\"ZZ\" is no kind that can be generated"},
        BadCase{"exchange A\nanswer LEA0\ngenerate 5 speed 3\n", 3,
                u"\"speed\" is no option; they are seed, from, to, order and kinds"},
        BadCase{"exchange A\nanswer LEA0\nerrcode many\n", 3,
                u"the error code must be a number from -2147483648 to 2147483647, not \"many\""},
        BadCase{"exchange A\nanswer LEA0\nnever ever\n", 3, u"nothing may follow here, but \"ever\" does"},
        BadCase{"exchange A\nanswer LEA0\nmessage \xFF\n", 3, u"the line is not UTF-8"}));

TEST(ScenarioParser, TellsEveryProblemAtOnce) {
  const ParsedScenario parsed =
      parseScenario("exchange A\nlogon\nanswer LEA0\nerrcode\nmessage fine\nvanish -1\n");
  EXPECT_EQ(lines::listing(u"try.txt", parsed.problems),
            u"try.txt:2: \"logon\" is no word of a scenario\n"
            u"try.txt:4: the error code is missing\n"
            u"try.txt:6: the number of reads must be a number from 0 to 2147483647, not \"-1\"\n");
}

TEST(ScenarioParser, AWrongExchangeLineIsNotToldAgainForTheLinesBelow) {
  EXPECT_EQ(problem("exchange P-{9..x}\nalarm 10\nanswer LEA0\nnot-found\n").line, 1);
}

}  // namespace
}  // namespace vordane::zulsim
