// What a user does with the shown faults through a host: the report in every order of the grid, one that the
// host refuses, the reset of the alarm, the deletion, the help. Every click is made from outside in the real
// window; the host's trace shows what came of it.
#include <algorithm>
#include <regex>

#include "library/installed_suite.h"

namespace vordane::suite {
namespace {

class Report : public InstalledSuite {};

// The order of a printed report, by the numbers that its faults were stored under.
std::string order() {
  static const std::regex number("^.*<td class=\"number\">([0-9]+)<.td><.tr>$");
  std::string found;
  std::smatch match;
  for (const std::string& line : linesOf(readText(layout().addins() / "REPORT" / "FAULT-PBX-1.html")))
    if (std::regex_match(line, match, number)) found += (found.empty() ? "" : " ") + match[1].str();
  return found;
}

std::string lamps() {
  return sql(layout().faults(), "SELECT MJ <> 0, MN <> 0 FROM PBXList");
}

struct Clicked {
  int column;
  const char *name, *order;
};
constexpr Clicked clicks[] = {
    {0, "fault", "2 1 4 3"},
    {0, "fault, last first", "3 4 1 2"},
    {1, "class", "1 2 4 3"},
    {1, "class, last first", "3 4 2 1"},
    {2, "date, newest first", "2 1 4 3"},
    {2, "date", "3 4 1 2"},
    {3, "processor", "4 1 3 2"},
    {3, "processor, last first", "2 3 1 4"},
    {4, "description", "1 2 4 3"},
    {4, "description, last first", "3 4 2 1"},
};

TEST_F(Report, PrintedInEveryOrderResetDeletedAndExplained) {
  useScenario(L"report");
  const Host host("report");
  const Window window(&host.program());
  host.pressRequest();
  host.awaitLine("# FETCHED");
  window.awaitIdle();
  EXPECT_EQ(stored(), 4);

  std::size_t prints = 0;
  const auto print = [&] {
    window.press(L"cmdPrint");
    host.awaitLine("PrintReport = ", ++prints);
    return order();
  };
  EXPECT_EQ(print(), "2 1 4 3") << "as the list came";
  for (const Clicked& click : clicks) {
    window.pressHeading(click.column);
    EXPECT_EQ(print(), click.order) << "by " << click.name;
  }

  const Path form = layout().addins() / "REPORT" / "FAULT.RPT", away = layout().addins() / "REPORT" / "away";
  std::filesystem::rename(form, away);
  window.press(L"cmdPrint");
  std::string refusal = window.answerBox().text;
  refusal.erase(std::remove_if(refusal.begin(), refusal.end(), [](char c) { return c == '\r' || c == '\n'; }),
                refusal.end());
  EXPECT_EQ(refusal, "The report was not printed.The report file " + utf8(form) + " can't be read.");
  std::filesystem::rename(away, form);

  EXPECT_EQ(lamps(), "1|1");
  window.press(L"cmdReset");
  EXPECT_EQ(window.answerBox().text, "The alarms of the exchange are reset.");
  await("lamps that are stored as out", [] { return lamps() == "0|0"; });
  EXPECT_NE(tools({L"list", layout().faults().wstring()}).find("major clear, minor clear"),
            std::string::npos);

  EXPECT_EQ(
      window.whatsThis(L"lblMJ"),
      "The major alarm lamp of this exchange: red while a major alarm stands, white when there is none. "
      "It shows the state the exchange last reported.");

  const std::string question = "Delete this exchange and all its stored faults?";
  window.press(L"cmdClear");
  EXPECT_EQ(window.answerBox(IDNO).text, question);
  EXPECT_EQ(stored(), 4) << "the deletion was declined";
  window.press(L"cmdClear");
  EXPECT_EQ(window.answerBox(IDYES).text, question);
  await("the deletion of the faults", [] { return stored() == 0; });
  EXPECT_EQ(tools({L"list", layout().faults().wstring()}), "");
  window.pressKey(VK_F1);
  host.awaitLine("DisplayHelp");
  EXPECT_TRUE(endsAsExpected(host, "report"));
  awaitGone();
  EXPECT_EQ(integrity(layout().faults()), "ok");
}

}  // namespace
}  // namespace vordane::suite
