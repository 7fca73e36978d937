#include "devhost/core/report_template.h"

#include <gtest/gtest.h>

namespace vordane::devhost {
namespace {

using Show = std::function<void(const Layout::Values&)>;

std::string rendered(std::string_view text, const Layout::Values& values = {}) {
  return Layout(text).render(values);
}

std::u16string failure(std::string_view text, const Layout::Values& values = {}) {
  try {
    rendered(text, values);
  } catch (const TemplateError& wrong) {
    return wrong.text();
  }
  return {};
}

TEST(Html, EscapesWhatHasAMeaning) {
  EXPECT_EQ(escapeHtml(u"<b>\"R&D\"</b> 'x'"), "&lt;b&gt;&quot;R&amp;D&quot;&lt;/b&gt; &#39;x&#39;");
  EXPECT_EQ(escapeHtml(u"line 1\r\nline 2\t."), "line 1\nline 2\t.");
  EXPECT_EQ(escapeHtml(u"\x01ü日"), "\xEF\xBF\xBDü日");
}

TEST(Layout, PlacesValuesEscaped) {
  EXPECT_EQ(rendered("<h1>{{PBXName}}</h1>{{! kept out }} {{ PBXName }}", {{{u"PBXName", u"A<B"}}, {}}),
            "<h1>A&lt;B</h1> A&lt;B");
  EXPECT_EQ(rendered(""), "");
  EXPECT_EQ(rendered("no placeholders { } at all"), "no placeholders { } at all");
}

TEST(Layout, SectionsStandAsOftenAsTheyAreShown) {
  Layout::Values values;
  values.texts[u"Name"] = u"outer";
  values.sections[u"rows"] = [](const Show& show) {
    show({{{u"Row", u"1"}}, {}});
    show({{{u"Row", u"2"}, {u"Name", u"inner"}}, {}});
  };
  values.sections[u"nothing"] = [](const Show&) {};
  EXPECT_EQ(rendered("{{#rows}}[{{Row}} {{Name}}{{#nothing}}!{{/nothing}}]{{/rows}}{{Name}}", values),
            "[1 outer][2 inner]outer");
}

TEST(Layout, WrongOnesAreToldWithTheirLine) {
  EXPECT_EQ(failure("a\nb {{Unknown}}"),
            u"The report's layout is wrong in line 2: there is no value named Unknown.");
  EXPECT_EQ(failure("{{#rows}}\n{{/rows}}"),
            u"The report's layout is wrong in line 1: there is no section named rows.");
  EXPECT_EQ(failure("\n\n{{#rows}}"),
            u"The report's layout is wrong in line 3: the section is never closed: rows.");
  EXPECT_EQ(failure("{{/rows}}"), u"The report's layout is wrong in line 1: no such section is open: rows.");
  EXPECT_EQ(failure("{{#a}}{{#b}}{{/a}}{{/b}}"),
            u"The report's layout is wrong in line 1: no such section is open: a.");
  EXPECT_EQ(failure("{{! a\ncomment }}\n{{PBX"), u"The report's layout is wrong in line 3: }} is missing.");
}

}  // namespace
}  // namespace vordane::devhost
