#include "devhost/core/trace.h"

#include <gtest/gtest.h>

namespace vordane::devhost {
namespace {

using automation::byVal;
using automation::Value;

TEST(Trace, WritesEachTypeInOneForm) {
  const std::pair<Value, std::u16string> values[] = {
      {automation::Empty{}, u"Empty"},
      {automation::Null{}, u"Null"},
      {automation::Missing{}, u"Missing"},
      {true, u"True"},
      {false, u"False"},
      {std::int16_t{-3}, u"-3"},
      {std::int32_t{200000}, u"200000"},
      {1.5, u"1.5"},
      {automation::ObjectRef{}, u"Nothing"},
      {std::u16string(u"plain"), u"\"plain\""},
      {std::u16string(u"a\\b\"c\r\nd\te\x01"), u"\"a\\\\b\\\"c\\r\\nd\\te\\x01\""},
  };
  for (const auto& [value, expected] : values) EXPECT_EQ(written(value), expected);
}

TEST(Trace, WritesErrorsWithTheirNumber) {
  EXPECT_EQ(written(automation::AutomationError(static_cast<std::int32_t>(0x800A01BD))), u"0x800A01BD");
  EXPECT_EQ(written(automation::AutomationError(static_cast<std::int32_t>(0x80020009), u"it \"broke\"")),
            u"0x80020009 \"it \\\"broke\\\"\"");
}

TEST(Trace, FindsNotificationsByWholeWordsFromAPlaceOn) {
  std::vector<std::string> lines;
  Trace trace([&](std::string_view line) { lines.emplace_back(line); });
  trace.notification(u"UnloadChild2", u"7");
  trace.line(u"= False");
  trace.notification(u"UnloadChild", u"7");
  trace.notification(u"UnloadChild", u"70");
  EXPECT_EQ(lines,
            (std::vector<std::string>{"UnloadChild2 7", "= False", "UnloadChild 7", "UnloadChild 70"}));
  EXPECT_EQ(trace.find(u"UnloadChild", 0), 2U);
  EXPECT_EQ(trace.find(u"UnloadChild", 2), 3U);
  EXPECT_EQ(trace.find(u"UnloadChild 70", 0), 3U);
  EXPECT_EQ(trace.find(u"UnloadChild 8", 0), 0U);
}

TEST(Trace, QuietPrintsNothingAndForgetsNothing) {
  std::vector<std::string> lines;
  Trace trace([&](std::string_view line) { lines.emplace_back(line); });
  trace.setQuiet(true);
  trace.notification(u"TurnOnFlow", u"");
  EXPECT_TRUE(lines.empty());
  EXPECT_EQ(trace.find(u"TurnOnFlow", 0), 1U);
}

}  // namespace
}  // namespace vordane::devhost
