#include "list/filter.h"

#include <gtest/gtest.h>

namespace vordane::list {
namespace {

TEST(StoredDates, AreTextsOfOneForm) {
  EXPECT_EQ(minuteOf(u"2026/11/20 20:58"), 202611202058U);
  EXPECT_EQ(minuteOf(u"2026/11/20 20:58  "), 202611202058U);
  EXPECT_EQ(minuteOf(u"9999/99/99 99:99"), 999999999999U);
}

TEST(StoredDates, OfAnotherFormHaveNoMinute) {
  for (const char16_t* date :
       {u"", u"2026/11/20", u"26/11/20 20:58", u"2026-11-20 20:58", u" 2026/11/20 20:58",
        u"2026/11/20 20:58:01", u"2026/11/20 2a:58", u"２026/11/20 20:58"})
    EXPECT_EQ(minuteOf(date), noMinute);
}

TEST(WrittenDates, StandForTheWholeStretchThatTheyName) {
  EXPECT_EQ(readMinute(u"2026/11/20 14:05", End::since), 202611201405U);
  EXPECT_EQ(readMinute(u"2026/11/20 14:05", End::until), 202611201405U);
  EXPECT_EQ(readMinute(u" 2026/11/20 ", End::since), 202611200000U);
  EXPECT_EQ(readMinute(u"2026/11/20", End::until), 202611209999U);
  EXPECT_EQ(readMinute(u"2026/11/20 14", End::since), 202611201400U);
  EXPECT_EQ(readMinute(u"2026/11/20 14", End::until), 202611201499U);
  EXPECT_EQ(readMinute(u"2026/11", End::since), 202611000000U);
  EXPECT_EQ(readMinute(u"2026/11", End::until), 202611999999U);
  EXPECT_EQ(readMinute(u"2026", End::until), 202699999999U);
}

TEST(WrittenDates, OfAnotherStyleAreNone) {
  for (const char16_t* date : {u"", u"20.11.2026", u"2026-11-20", u"11/20/2026", u"2026/1/2",
                               u"2026/11/20 14:0", u"2026/11/20 14:05:00", u"today", u"202"})
    EXPECT_FALSE(readMinute(date, End::since).has_value());
}

TEST(KindRules, ShowAllOnlySomeOrAllButSome) {
  KindRule rule;
  EXPECT_TRUE(rule.shows(u"01"));
  rule.set(u"01", false);
  EXPECT_FALSE(rule.shows(u"01"));
  EXPECT_TRUE(rule.shows(u"02")) << "one that is stored later too";
  rule.set(u"01", true);
  EXPECT_EQ(rule, KindRule{});
  rule = {KindRule::Way::only, {u"01"}};
  EXPECT_TRUE(rule.shows(u"01"));
  EXPECT_FALSE(rule.shows(u"02"));
  rule.set(u"02", true);
  rule.set(u"01", false);
  EXPECT_EQ(rule, (KindRule{KindRule::Way::only, {u"02"}}));
}

TEST(Classes, BothTickedShowEveryRow) {
  Filter filter;
  EXPECT_TRUE(showsClass(filter, u"??"));
  filter.minor = false;
  EXPECT_TRUE(showsClass(filter, u"MJ"));
  EXPECT_TRUE(showsClass(filter, u"mj "));
  EXPECT_FALSE(showsClass(filter, u"MN"));
  EXPECT_FALSE(showsClass(filter, u"??"));
  filter = {};
  filter.major = false;
  EXPECT_FALSE(showsClass(filter, u"MJ"));
  EXPECT_TRUE(showsClass(filter, u"MN"));
  filter.minor = false;
  EXPECT_FALSE(showsClass(filter, u"MN"));
}

TEST(Filters, AreOnWhenTheyAskForAnything) {
  EXPECT_FALSE(isOn(Filter{}));
  Filter filter;
  filter.otherDates = true;
  filter.since = u"  ";
  EXPECT_FALSE(isOn(filter));
  filter.text = u"x";
  EXPECT_TRUE(isOn(filter));
  filter = {};
  filter.major = false;
  EXPECT_TRUE(isOn(filter));
  filter = {};
  filter.minor = false;
  EXPECT_TRUE(isOn(filter));
  filter = {};
  filter.kinds.set(u"01", false);
  EXPECT_TRUE(isOn(filter));
  filter = {};
  filter.processor = u"";
  EXPECT_TRUE(isOn(filter));
  filter = {};
  filter.since = u"2026";
  EXPECT_TRUE(isOn(filter));
  filter = {};
  filter.until = u"2026";
  EXPECT_TRUE(isOn(filter));
}

TEST(Filters, SayWhatKeepsThemFromBeingFollowed) {
  Filter filter;
  filter.since = filter.until = u" ";
  EXPECT_EQ(mistakeIn(filter), Mistake::none);
  filter.since = u"20.11.2026";
  EXPECT_EQ(mistakeIn(filter), Mistake::since);
  filter.since = u"2026/11/20";
  EXPECT_EQ(mistakeIn(filter), Mistake::none);
  filter.until = u"tomorrow";
  EXPECT_EQ(mistakeIn(filter), Mistake::until);
  filter.until = u"2026/11/20";
  EXPECT_EQ(mistakeIn(filter), Mistake::none) << "the whole of that day";
  filter.until = u"2026/11/19";
  EXPECT_EQ(mistakeIn(filter), Mistake::order);
}

}  // namespace
}  // namespace vordane::list
