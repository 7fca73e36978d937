#include <gmock/gmock.h>

#include "platform/window.h"

namespace vordane::window {
namespace {

using testing::ElementsAre;

// What the view hears of a list that fills and empties.
TEST(ListControl, TellsEachChangeOnce) {
  Control list(u"lstExchanges", -1, u"ComboBox", {});
  std::vector<std::u16string> told;
  list.listen([&](Control&, std::u16string_view property) { told.emplace_back(property); });
  EXPECT_EQ(list.addItem(u"PBX-1"), 0);
  EXPECT_EQ(list.addItem(u"PBX-2"), 1);
  EXPECT_THAT(told, ElementsAre(u"Items", u"Items"));
  told.clear();
  list.setListIndex(1);
  EXPECT_THAT(told, ElementsAre(u"ListIndex"));
  told.clear();
  list.clearItems();
  EXPECT_THAT(told, testing::Contains(u"Items"));
  EXPECT_EQ(list.listIndex(), -1);
}

TEST(ListControl, ChoosesAnEntryOrNone) {
  Control list(u"lstExchanges", -1, u"ComboBox", {});
  list.addItem(u"PBX-1");
  for (const int position : {0, -1}) EXPECT_NO_THROW(list.setListIndex(position));
  for (const int position : {1, -2}) EXPECT_THROW(list.setListIndex(position), PropertyError);
  EXPECT_EQ(list.listIndex(), -1);
}

}  // namespace
}  // namespace vordane::window
