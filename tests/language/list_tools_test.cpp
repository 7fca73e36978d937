#include <gtest/gtest.h>

#include "language/comTools.h"
#include "language_database.h"

namespace vordane {
namespace {

using comTools::FindItemDataIndex;

TEST(ItemData, TheFirstEqualEntryIsFound) {
  window::Form form = fakes::makeForm();
  window::Control& list = fakes::addControl(form, u"drpPBXList", u"ComboBox");
  EXPECT_EQ(FindItemDataIndex(list, std::int16_t{5}), -1);
  EXPECT_EQ(FindItemDataIndex(list, std::int32_t{70000}), -1) << "nothing to compare it with";
  for (const int data : {3, 5, 5}) list.setItemData(list.addItem(u"x"), data);
  EXPECT_EQ(FindItemDataIndex(list, std::int16_t{5}), 1);
  EXPECT_EQ(FindItemDataIndex(list, std::u16string(u"3")), 0);
  EXPECT_EQ(FindItemDataIndex(list, 4.6), 1);
  EXPECT_EQ(FindItemDataIndex(list, std::int32_t{9}), -1);
  EXPECT_THROW(FindItemDataIndex(list, std::int32_t{70000}), automation::AutomationError);
}

TEST(ButtonStyles, NamesAddUp) {
  EXPECT_EQ(comTools::ParseButtonStyle(u"vbYesNo+vbQuestion+vbDefaultButton2"), 292);
  EXPECT_EQ(comTools::ParseButtonStyle(u"vbYesNo + vbQuestion"), 0);
  EXPECT_EQ(comTools::ParseButtonStyle(u"vbyesno"), 0);
  EXPECT_EQ(comTools::ParseButtonStyle(u""), 0);
  EXPECT_EQ(comTools::ParseButtonStyle(u"+vbYesNo+"), 4);
}

TEST(ButtonStyles, EveryNameHasItsValue) {
  const std::pair<const char16_t*, int> values[] = {{u"vbOKOnly", 0},
                                                    {u"vbOKCancel", 1},
                                                    {u"vbAbortRetryIgnore", 2},
                                                    {u"vbYesNoCancel", 3},
                                                    {u"vbYesNo", 4},
                                                    {u"vbRetryCancel", 5},
                                                    {u"vbCritical", 16},
                                                    {u"vbQuestion", 32},
                                                    {u"vbExclamation", 48},
                                                    {u"vbInformation", 64},
                                                    {u"vbDefaultButton1", 0},
                                                    {u"vbDefaultButton2", 256},
                                                    {u"vbDefaultButton3", 512},
                                                    {u"vbDefaultButton4", 768},
                                                    {u"vbApplicationModal", 0},
                                                    {u"vbSystemModal", 4096},
                                                    {u"vbMsgBoxHelpButton", 16384},
                                                    {u"vbMsgBoxSetForeground", 65536},
                                                    {u"vbMsgBoxRight", 524288},
                                                    {u"vbMsgBoxRtlReading", 1048576},
                                                    {u"vbNothing", 0}};
  for (const auto& [name, value] : values) EXPECT_EQ(comTools::ButtonStyleValue(name), value);
}

TEST(ButtonStyles, ASumBeyond32BitsIsAnOverflow) {
  std::u16string names;
  for (int count = 0; count < 2047; ++count) names += u"+vbMsgBoxRtlReading";
  EXPECT_EQ(comTools::ParseButtonStyle(names), 2047 * 1048576);
  EXPECT_THROW(comTools::ParseButtonStyle(names + u"+vbMsgBoxRtlReading"), automation::AutomationError);
}

}  // namespace
}  // namespace vordane
