// When the lamps call for a person, and how.
#include "attention/attention.h"

#include <gtest/gtest.h>

#include <vector>

namespace vordane::attention {
namespace {

constexpr Around behind{true, true, false, true};
constexpr Around inFront{true, true, true, true};
constexpr Around silent{true, true, false, false};
constexpr Around scheduled{false, true, false, true};
constexpr Around hidden{true, false, false, true};

constexpr Call nothing{};
constexpr Call overlayOnly(Overlay overlay) {
  return {false, Announcement::none, {}, {}, overlay};
}

// Both lamps as they are shown, one after the other.
struct Shown {
  const char16_t* exchange;
  bool major, minor;
};
void show(Attention& attention, const Shown& shown) {
  attention.shown(shown.exchange, Lamp::major, shown.major);
  attention.shown(shown.exchange, Lamp::minor, shown.minor);
}

struct Row {
  const char* what;
  std::vector<Shown> before;  // each taken by itself
  Shown now;
  Around around;
  Call expected;
};

const Row rows[] = {
    {"nothing is lit", {{u"A", false, false}}, {u"A", false, false}, behind, nothing},
    {"a major alarm behind other windows",
     {{u"A", false, false}},
     {u"A", true, false},
     behind,
     {true, Announcement::alert, Lamp::major, Lamp::major, Overlay::major}},
    {"a minor alarm behind other windows",
     {{u"A", false, false}},
     {u"A", false, true},
     behind,
     {true, Announcement::alert, Lamp::minor, Lamp::minor, Overlay::minor}},
    {"both at once are one call, of the worse",
     {{u"A", false, false}},
     {u"A", true, true},
     behind,
     {true, Announcement::alert, Lamp::major, Lamp::major, Overlay::major}},
    {"in front nothing flashes",
     {{u"A", false, false}},
     {u"A", true, false},
     inFront,
     {false, Announcement::inPlace, Lamp::major, Lamp::major, Overlay::major}},
    {"the sound is off",
     {{u"A", false, false}},
     {u"A", true, false},
     silent,
     {true, Announcement::alert, Lamp::major, {}, Overlay::major}},
    {"a minor alarm beside a major one that was there",
     {{u"A", false, false}, {u"A", true, false}},
     {u"A", true, true},
     behind,
     {true, Announcement::alert, Lamp::minor, Lamp::minor, Overlay::major}},
    {"an alarm that goes on is no news",
     {{u"A", false, false}, {u"A", true, false}},
     {u"A", true, false},
     behind,
     overlayOnly(Overlay::major)},
    {"an alarm that ends leaves the other",
     {{u"A", true, true}},
     {u"A", false, true},
     behind,
     overlayOnly(Overlay::minor)},
    {"all alarms end", {{u"A", true, true}}, {u"A", false, false}, behind, nothing},
    {"an alarm that comes back is news",
     {{u"A", false, false}, {u"A", true, false}, {u"A", false, false}},
     {u"A", true, false},
     behind,
     {true, Announcement::alert, Lamp::major, Lamp::major, Overlay::major}},
    {"the first lamps shown are no news", {}, {u"A", true, true}, behind, overlayOnly(Overlay::major)},
    {"another exchange that was in alarm",
     {{u"A", false, false}},
     {u"B", true, false},
     behind,
     overlayOnly(Overlay::major)},
    {"the same lamp after another exchange",
     {{u"A", false, false}, {u"B", true, false}, {u"A", false, false}},
     {u"A", true, false},
     behind,
     {true, Announcement::alert, Lamp::major, Lamp::major, Overlay::major}},
    {"a scheduled run", {{u"A", false, false}}, {u"A", true, true}, scheduled, nothing},
    {"nobody can see it", {{u"A", false, false}}, {u"A", true, true}, hidden, nothing},
};

TEST(Attention, TheLampsCallWhenAndHowTheTableSays) {
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    Attention attention;
    for (const Shown& before : row.before) {
      show(attention, before);
      attention.take(row.around);
    }
    show(attention, row.now);
    EXPECT_EQ(attention.take(row.around), row.expected);
  }
}

TEST(Attention, ACallIsMadeOnce) {
  Attention attention;
  show(attention, {u"A", false, false});
  show(attention, {u"A", true, false});
  EXPECT_TRUE(attention.take(behind).flash);
  EXPECT_EQ(attention.take(behind), overlayOnly(Overlay::major));
}

TEST(Attention, WhatNobodyCouldBeToldIsNotToldLater) {
  Attention attention;
  show(attention, {u"A", false, false});
  show(attention, {u"A", true, false});
  attention.take(hidden);
  EXPECT_EQ(attention.take(inFront), overlayOnly(Overlay::major));
}

TEST(Attention, AnAlarmThatIsOverBeforeItIsToldIsNotTold) {
  Attention attention;
  show(attention, {u"A", false, false});
  show(attention, {u"A", true, false});
  show(attention, {u"A", false, false});
  EXPECT_EQ(attention.take(behind), nothing);
}

TEST(Attention, NewsOfAnExchangeThatIsShownNoMoreIsDropped) {
  Attention attention;
  show(attention, {u"A", false, false});
  show(attention, {u"A", true, false});
  show(attention, {u"B", true, false});
  EXPECT_EQ(attention.take(behind), overlayOnly(Overlay::major));
}

TEST(Attention, NewsStandsUntilItIsTakenHoweverOftenTheLampIsShown) {
  Attention attention;
  show(attention, {u"A", false, false});
  show(attention, {u"A", true, false});
  show(attention, {u"A", true, false});
  EXPECT_TRUE(attention.take(behind).flash);
}

}  // namespace
}  // namespace vordane::attention
