#include "zulsim/core/generator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "text/numbers.h"

namespace vordane::zulsim {
namespace {

Generation generation(std::int32_t count, Generation::Order order = Generation::Order::newestLast) {
  return {count, 7, *parseMinute(u"06/01/01"), *parseMinute(u"06/11/27 23:59"), order, {}};
}

std::vector<Entry> made(const Generation& wanted, std::uint64_t offset = 0) {
  std::vector<Entry> entries;
  generate(wanted, offset, entries);
  return entries;
}

std::vector<std::int64_t> minutesOf(const std::vector<Entry>& entries) {
  std::vector<std::int64_t> minutes;
  for (std::size_t i = 1; i < entries.size(); i += 4)
    minutes.push_back(parseMinute(entries[i].FirstData).value());
  return minutes;
}

TEST(Generator, SameSeedSameList) {
  EXPECT_EQ(made(generation(50)), made(generation(50)));
  EXPECT_NE(made(generation(50)), made(generation(50), 1));
}

TEST(Generator, TheNumbersAreTheSameOnEveryMachine) {
  Random random(1);
  EXPECT_EQ(random.next(), 10451216379200822465U);
  EXPECT_EQ(random.next(), 13757245211066428519U);
}

TEST(Generator, EachFaultHasFourEntriesOfTheExchangesForm) {
  const std::vector<Entry> entries = made(generation(400));
  ASSERT_EQ(entries.size(), 1600U);
  std::set<std::u16string> alarms, processors;
  for (std::size_t i = 0; i < entries.size(); i += 4) {
    const std::u16string& record = entries[i].FirstData;
    ASSERT_EQ(record.size(), 11U);
    EXPECT_TRUE(text::isHexDigit(record[0]) && text::isHexDigit(record[1]) && text::isHexDigit(record[9]));
    alarms.insert(record.substr(3, 2));
    processors.insert(record.substr(6, 3));
    EXPECT_EQ(entries[i + 2].FirstData.size(), 23U);  // eight bytes
    EXPECT_LE(entries[i + 3].FirstData.size(), 23U);
  }
  EXPECT_EQ(alarms, (std::set<std::u16string>{u"MJ", u"MN"}));
  EXPECT_EQ(processors, (std::set<std::u16string>{u"LP ", u"MP "}));
}

TEST(Generator, AListLongEnoughHoldsEveryKind) {
  std::set<std::uint8_t> kinds;
  const std::vector<Entry> entries = made(generation(100));
  for (std::size_t i = 0; i < entries.size(); i += 4)
    kinds.insert(static_cast<std::uint8_t>(text::hexField(entries[i].FirstData.substr(0, 2))));
  const std::vector<std::uint8_t> known = knownKinds();
  EXPECT_EQ(kinds, std::set<std::uint8_t>(known.begin(), known.end()));
  EXPECT_EQ(known.size(), 53U);  // the 52 that have a text of their own, and one that has none
}

TEST(Generator, OrdersByDate) {
  const auto last = minutesOf(made(generation(200)));
  EXPECT_TRUE(std::is_sorted(last.begin(), last.end()));
  const auto first = minutesOf(made(generation(200, Generation::Order::newestFirst)));
  EXPECT_TRUE(std::is_sorted(first.rbegin(), first.rend()));
  const auto mixed = minutesOf(made(generation(200, Generation::Order::mixed)));
  EXPECT_FALSE(std::is_sorted(mixed.begin(), mixed.end()) || std::is_sorted(mixed.rbegin(), mixed.rend()));
}

TEST(Generator, OnlyTheKindsAsked) {
  Generation wanted = generation(30);
  wanted.kinds = {0x3B};
  const std::vector<Entry> entries = made(wanted);
  for (std::size_t i = 0; i < entries.size(); i += 4) EXPECT_EQ(entries[i].FirstData.substr(0, 2), u"3B");
}

TEST(Generator, OneMinuteForAllFaults) {
  Generation wanted = generation(5);
  wanted.fromMinute = wanted.toMinute = *parseMinute(u"06/11/27 10:15");
  const std::vector<Entry> entries = made(wanted);
  for (std::size_t i = 1; i < entries.size(); i += 4) EXPECT_EQ(entries[i].FirstData, u"06/11/27 10:15");
}

TEST(Generator, ReadsAndWritesDates) {
  EXPECT_EQ(parseMinute(u"80/01/01 00:01"), 3652 * 24 * 60 + 1);
  for (const std::u16string_view date :
       {u"00/02/29 00:00", u"06/11/27 10:15", u"79/12/31 23:59", u"80/01/01 00:00", u"99/12/31 12:30"})
    EXPECT_EQ(formatMinute(parseMinute(date).value()), date);
  for (const std::u16string_view wrong : {u"", u"06/11/27 10", u"06/02/30", u"06/13/01", u"06-11-27",
                                          u"06/11/27 24:00", u"06/11/27 10:60", u"0a/11/27"})
    EXPECT_FALSE(parseMinute(wrong));
  EXPECT_LT(*parseMinute(u"80/01/01"), *parseMinute(u"79/01/01"));  // 1980 and 2079
}

}  // namespace
}  // namespace vordane::zulsim
