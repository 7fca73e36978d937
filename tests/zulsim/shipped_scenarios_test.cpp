#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

#include "places.h"
#include "text/numbers.h"
#include "text/utf8.h"
#include "zulsim/core/generator.h"
#include "zulsim/core/scenario_parser.h"

namespace vordane::zulsim {
namespace {

const std::filesystem::path folder = test::sourceFolder() / "data" / "scenarios";

std::string contentOf(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

Scenario shipped(const std::string& name) {
  ParsedScenario parsed = parseScenario(contentOf(folder / name));
  EXPECT_EQ(lines::listing(text::fromUtf8(name), parsed.problems), u"");
  return std::move(parsed.scenario);
}

std::vector<Entry> listOf(const Scenario& scenario, std::u16string_view exchange, std::size_t use = 0) {
  const Exchange* found = findExchange(scenario, exchange);
  if (!found || !findCommand(*found, u"LEA0")) return {};
  return entriesOf(stepOf(findCommand(*found, u"LEA0")->answers, use, false), found->number);
}

TEST(ShippedScenarios, AllParse) {
  int files = 0;
  for (const auto& file : std::filesystem::directory_iterator(folder)) {
    if (file.path().extension() != ".zul") continue;
    ++files;
    const ParsedScenario parsed = parseScenario(contentOf(file.path()));
    EXPECT_EQ(lines::listing(file.path().filename().u16string(), parsed.problems), u"");
  }
  EXPECT_GE(files, 5);
}

TEST(ShippedScenarios, TheDemonstrationHoldsEveryKind) {
  const std::vector<Entry> entries = listOf(shipped("demo.zul"), u"PBX-1");
  ASSERT_EQ(entries.size() % 4, 0U);
  std::set<std::uint8_t> kinds;
  std::set<std::u16string> alarms, processors;
  bool withoutSecondData = false, withSecondData = false;
  for (std::size_t i = 0; i + 3 < entries.size(); i += 4) {
    kinds.insert(static_cast<std::uint8_t>(text::hexField(entries[i].FirstData.substr(0, 2))));
    alarms.insert(entries[i].FirstData.substr(3, 2));
    processors.insert(entries[i].FirstData.substr(6, 2));
    (entries[i + 3].FirstData.empty() ? withoutSecondData : withSecondData) = true;
    EXPECT_TRUE(parseMinute(entries[i + 1].FirstData)) << "entry " << i + 1;
  }
  for (const std::uint8_t kind : knownKinds()) EXPECT_TRUE(kinds.contains(kind)) << int(kind);
  EXPECT_EQ(alarms, (std::set<std::u16string>{u"MJ", u"MN"}));
  EXPECT_EQ(processors, (std::set<std::u16string>{u"LP", u"MP"}));
  EXPECT_TRUE(withSecondData && withoutSecondData);
}

TEST(ShippedScenarios, TheTroublesAreWhatTheirNamesSay) {
  const Scenario scenario = shipped("troubles.zul");
  EXPECT_EQ(listOf(scenario, u"EMPTY").at(0).FirstData, u"DATA NOT FOUND");
  EXPECT_EQ(listOf(scenario, u"CUT").at(20).FirstData, u"ZUL_TIMEOUT");
  EXPECT_NE(listOf(scenario, u"ODD").size() % 4, 0U);
  EXPECT_EQ(findExchange(scenario, u"BUSY")->login.at(0).text, u"BUSY");
  EXPECT_EQ(findExchange(scenario, u"SEND-ERROR")->send.at(0).text, u"ERROR");
  const std::pair<const char16_t*, int> codes[] = {{u"CODE-61", 61}, {u"CODE-200", 200}, {u"CODE-1", 1}};
  for (const auto& [name, code] : codes)
    EXPECT_EQ(findCommand(*findExchange(scenario, name), u"LEA0")->answers.at(0).errCode, code);
  EXPECT_TRUE(findCommand(*findExchange(scenario, u"SILENT"), u"LEA0")->answers.at(0).never);
  EXPECT_GT(findCommand(*findExchange(scenario, u"SLOW"), u"LEA0")->answers.at(0).delay, 1000);
}

TEST(ShippedScenarios, ManyExchangesAndMass) {
  EXPECT_GE(shipped("many.zul").exchanges.size(), 40U);
  EXPECT_GE(listOf(shipped("mass.zul"), u"PBX-1").size(), 4U * 5000U);
}

}  // namespace
}  // namespace vordane::zulsim
