#include "list/row_forms.h"

#include <gtest/gtest.h>

namespace vordane::list {
namespace {

Sheet sheet() {
  return {u"Fault List (PBX-1)",
          u"PBX-1",
          u"2026/11/20 21:14",
          {u"MAJOR: alarm", u"2 of 9 shown"},
          {u"Kind", u"Class", u"Date", u"CPU", u"Fault", u"No."},
          9};
}

std::string written(RowForm form, const std::vector<window::GridRow>& rows) {
  const auto writer = makeRowWriter(form, sheet(), rows.size());
  std::string out;
  writer->begin(out);
  for (const auto& row : rows) writer->row(row, out);
  writer->end(out);
  return out;
}

const window::GridRow major{
    u"0A", u"MJ", u"2026/11/20 20:41", u"LP 2", u"Say \"a\" <b>\r\n x\ty \r\n\r\n[03]", 7};
const window::GridRow minor{u"0B", u"MN ", u"", u"=1+1", u"Заряд", -3};

TEST(RowForms, CsvQuotesEveryTextAndDisarmsFormulas) {
  EXPECT_EQ(written(RowForm::csv, {major, minor}),
            "\"Kind\",\"Class\",\"Date\",\"CPU\",\"Fault\",\"No.\"\r\n"
            "\"0A\",\"MJ\",\"2026/11/20 20:41\",\"LP 2\",\"Say \"\"a\"\" <b>\r\n x\ty \r\n\r\n[03]\",7\r\n"
            "\"0B\",\"MN \",\"\",\"'=1+1\",\"Заряд\",-3\r\n");
  EXPECT_EQ(written(RowForm::csvFile, {minor}), "\xEF\xBB\xBF" + written(RowForm::csv, {minor}));
}

TEST(RowForms, JsonHasOneObjectForEachRow) {
  EXPECT_EQ(written(RowForm::json, {major, minor}),
            "{\"format\":\"vordane faults\",\"version\":1,\"exchange\":\"PBX-1\",\"received\":\"2026/11/20 "
            "21:14\",\"stored\":9,\"faults\":[\n"
            "{\"number\":7,\"kind\":\"0A\",\"class\":\"MJ\",\"time\":\"2026/11/20 20:41\",\"processor\":\"LP "
            "2\",\"description\":\"Say \\\"a\\\" <b>\\r\\n x\\ty \\r\\n\\r\\n[03]\"},\n"
            "{\"number\":-3,\"kind\":\"0B\",\"class\":\"MN \",\"time\":\"\",\"processor\":\"=1+1\","
            "\"description\":\"Заряд\"}\n]}\n");
  EXPECT_TRUE(written(RowForm::json, {}).ends_with("\"faults\":[\n]}\n"));
}

TEST(RowForms, ALoneSurrogateIsNoReasonToSaveNothing) {
  const window::GridRow odd{u"0A", u"MJ", u"", u"", std::u16string(1, static_cast<char16_t>(0xD800)), 1};
  for (const RowForm form : {RowForm::csvFile, RowForm::page, RowForm::json, RowForm::lines})
    EXPECT_NE(written(form, {odd}).find("\xEF\xBF\xBD"), std::string::npos);
}

TEST(RowForms, ATableShowsSignsTitlesAndDetails) {
  EXPECT_EQ(
      written(RowForm::table, {major, minor}),
      "<table><thead><tr><th scope=\"col\">Kind</th><th scope=\"col\">Class</th><th scope=\"col\">Date</th>"
      "<th scope=\"col\">CPU</th><th scope=\"col\">Fault</th><th "
      "scope=\"col\">No.</th></tr></thead><tbody>\r\n"
      "<tr><td>0A</td><td class=\"mj\"><span aria-hidden=\"true\">▲ </span>MJ</td><td>2026/11/20 20:41</td>"
      "<td>LP 2</td><td class=\"d\">Say &quot;a&quot; &lt;b&gt;<span><br> x\ty <br><br>[03]</span></td>"
      "<td class=\"n\">7</td></tr>\r\n"
      "<tr><td>0B</td><td><span aria-hidden=\"true\">△ </span>MN</td><td></td><td>=1+1</td>"
      "<td class=\"d\">Заряд</td><td class=\"n\">-3</td></tr>\r\n</tbody></table>\r\n");
}

TEST(RowForms, APageSaysWhatTheWindowSays) {
  const std::string page = written(RowForm::page, {major});
  EXPECT_TRUE(page.starts_with("<!DOCTYPE html>"));
  EXPECT_NE(page.find("<h1>Fault List (PBX-1)</h1>"), std::string::npos);
  EXPECT_NE(page.find("<p>MAJOR: alarm · 2 of 9 shown</p>"), std::string::npos);
  EXPECT_NE(page.find("<table>"), std::string::npos);
  EXPECT_TRUE(page.ends_with("</body></html>\r\n"));
}

TEST(RowForms, LinesArePartedByTabsAndHaveHeadingsWhenTheyAreSeveral) {
  EXPECT_EQ(written(RowForm::lines, {major}),
            "0A\tMJ\t2026/11/20 20:41\tLP 2\tSay \"a\" <b> · x y · [03]\t7\r\n");
  EXPECT_EQ(
      written(RowForm::lines, {minor, minor}),
      "Kind\tClass\tDate\tCPU\tFault\tNo.\r\n0B\tMN\t\t'=1+1\tЗаряд\t-3\r\n0B\tMN\t\t'=1+1\tЗаряд\t-3\r\n");
}

TEST(RowForms, MessagesAreWholeWithAnEmptyLineBetween) {
  EXPECT_EQ(written(RowForm::messages, {major, minor}),
            "Say \"a\" <b>\r\n x\ty \r\n\r\n[03]\r\n\r\nЗаряд\r\n");
}

}  // namespace
}  // namespace vordane::list
