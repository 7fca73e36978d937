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
          9,
          {u"Note", u"By", u"At"},
          u"Note ({1}, {2}):"};
}

std::string written(RowForm form, const std::vector<window::GridRow>& rows, const database::Note& note = {}) {
  const auto writer = makeRowWriter(form, sheet(), rows.size());
  std::string out;
  writer->begin(out);
  for (const auto& row : rows) writer->row(row, note, out);
  writer->end(out);
  return out;
}

const database::Note cable{u"north\\anna", u"2026/11/21 08:15", u"=cable \"A\" <b> on Monday"};

const window::GridRow major{
    u"0A", u"MJ", u"2026/11/20 20:41", u"LP 2", u"Say \"a\" <b>\r\n x\ty \r\n\r\n[03]", 7};
const window::GridRow minor{u"0B", u"MN ", u"", u"=1+1", u"Заряд", -3};

TEST(RowForms, CsvQuotesEveryTextAndDisarmsFormulas) {
  EXPECT_EQ(written(RowForm::csv, {major, minor}),
            "\"Kind\",\"Class\",\"Date\",\"CPU\",\"Fault\",\"No.\",\"Note\",\"By\",\"At\"\r\n"
            "\"0A\",\"MJ\",\"2026/11/20 20:41\",\"LP 2\",\"Say \"\"a\"\" <b>\r\n x\ty "
            "\r\n\r\n[03]\",7,\"\",\"\",\"\"\r\n"
            "\"0B\",\"MN \",\"\",\"'=1+1\",\"Заряд\",-3,\"\",\"\",\"\"\r\n");
  EXPECT_EQ(written(RowForm::csvFile, {minor}), "\xEF\xBB\xBF" + written(RowForm::csv, {minor}));
}

TEST(RowForms, JsonHasOneObjectForEachRow) {
  EXPECT_EQ(written(RowForm::json, {major, minor}),
            "{\"format\":\"vordane faults\",\"version\":1,\"exchange\":\"PBX-1\",\"received\":\"2026/11/20 "
            "21:14\",\"stored\":9,\"faults\":[\n"
            "{\"number\":7,\"kind\":\"0A\",\"class\":\"MJ\",\"time\":\"2026/11/20 20:41\",\"processor\":\"LP "
            "2\",\"description\":\"Say \\\"a\\\" <b>\\r\\n x\\ty "
            "\\r\\n\\r\\n[03]\",\"note\":\"\",\"noteAuthor\":\"\",\"noteTime\":\"\"},\n"
            "{\"number\":-3,\"kind\":\"0B\",\"class\":\"MN \",\"time\":\"\",\"processor\":\"=1+1\","
            "\"description\":\"Заряд\",\"note\":\"\",\"noteAuthor\":\"\",\"noteTime\":\"\"}\n]}\n");
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
      "scope=\"col\">No.</th><th scope=\"col\">Note</th></tr></thead><tbody>\r\n"
      "<tr><td>0A</td><td class=\"mj\"><span aria-hidden=\"true\">▲ </span>MJ</td><td>2026/11/20 20:41</td>"
      "<td>LP 2</td><td class=\"d\">Say &quot;a&quot; &lt;b&gt;<span><br> x\ty <br><br>[03]</span></td>"
      "<td class=\"n\">7</td><td class=\"d\"></td></tr>\r\n"
      "<tr><td>0B</td><td><span aria-hidden=\"true\">△ </span>MN</td><td></td><td>=1+1</td>"
      "<td class=\"d\">Заряд</td><td class=\"n\">-3</td><td class=\"d\"></td></tr>\r\n</tbody></table>\r\n");
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
            "0A\tMJ\t2026/11/20 20:41\tLP 2\tSay \"a\" <b> · x y · [03]\t7\t\t\t\r\n");
  EXPECT_EQ(written(RowForm::lines, {minor, minor}),
            "Kind\tClass\tDate\tCPU\tFault\tNo.\tNote\tBy\tAt\r\n0B\tMN\t\t'=1+1\tЗаряд\t-"
            "3\t\t\t\r\n0B\tMN\t\t'=1+1\tЗаряд\t-3\t\t\t\r\n");
}

TEST(RowForms, MessagesAreWholeWithAnEmptyLineBetween) {
  EXPECT_EQ(written(RowForm::messages, {major, minor}),
            "Say \"a\" <b>\r\n x\ty \r\n\r\n[03]\r\n\r\nЗаряд\r\n");
}

TEST(RowForms, ANoteStandsInFieldsOfItsOwn) {
  EXPECT_EQ(written(RowForm::csv, {minor}, cable),
            "\"Kind\",\"Class\",\"Date\",\"CPU\",\"Fault\",\"No.\",\"Note\",\"By\",\"At\"\r\n"
            "\"0B\",\"MN \",\"\",\"'=1+1\",\"Заряд\",-3,\"'=cable \"\"A\"\" <b> on "
            "Monday\",\"north\\anna\",\"2026/11/21 08:15\"\r\n");
  EXPECT_NE(written(RowForm::json, {minor}, cable)
                .find("\"Заряд\",\"note\":\"=cable \\\"A\\\" <b> on "
                      "Monday\",\"noteAuthor\":\"north\\\\anna\",\"noteTime\":\"2026/11/21 08:15\"}\n]}\n"),
            std::string::npos);
  EXPECT_NE(written(RowForm::table, {minor}, cable)
                .find("<td class=\"n\">-3</td><td class=\"d\">=cable &quot;A&quot; &lt;b&gt; on "
                      "Monday<span><br>north\\anna · 2026/11/21 08:15</span></td></tr>"),
            std::string::npos);
  EXPECT_EQ(written(RowForm::lines, {minor}, cable),
            "0B\tMN\t\t'=1+1\tЗаряд\t-3\t'=cable \"A\" <b> on Monday\tnorth\\anna\t2026/11/21 08:15\r\n");
  EXPECT_EQ(written(RowForm::messages, {minor, minor}, cable),
            "Заряд\r\nNote (north\\anna, 2026/11/21 08:15): =cable \"A\" <b> on Monday\r\n\r\n"
            "Заряд\r\nNote (north\\anna, 2026/11/21 08:15): =cable \"A\" <b> on Monday\r\n");
}

TEST(RowForms, TheLongestNoteIsWrittenWhole) {
  const database::Note longest{u"anna", u"2026/11/21 08:15", std::u16string(database::longestNote, u'x')};
  const std::string whole(database::longestNote, 'x');
  for (const RowForm form :
       {RowForm::csv, RowForm::page, RowForm::json, RowForm::table, RowForm::lines, RowForm::messages})
    EXPECT_NE(written(form, {minor}, longest).find(whole), std::string::npos) << static_cast<int>(form);
}

}  // namespace
}  // namespace vordane::list
