#include "trace/wish.h"

#include <gtest/gtest.h>

#include "fakes/memory_settings.h"

namespace vordane::trace {
namespace {

class WishTest : public testing::Test {
 protected:
  static void set(fakes::MemorySettings& settings, std::u16string_view key, std::u16string_view value) {
    settings.write(u"VORDANE", u"Trace", key, value);
  }
  std::optional<Wish> wish() { return wishOf(user, workstation); }

  fakes::MemorySettings user, workstation;
};

TEST_F(WishTest, NothingIsTracedUnlessItIsAskedFor) {
  EXPECT_FALSE(wish());
  for (const auto* value : {u"0", u"", u"2", u"true", u"1 "}) {
    set(user, u"On", value);
    EXPECT_FALSE(wish());
  }
  set(user, u"On", u"1");
  EXPECT_TRUE(wish());
}

TEST_F(WishTest, WhatIsNotSaidIsAsUsual) {
  set(user, u"On", u"1");
  const Wish asked = wish().value();
  EXPECT_EQ(asked.folder, u"");
  EXPECT_EQ(asked.limits.bytes, 64'000'000U);
  EXPECT_EQ(asked.limits.days, 7);
  EXPECT_EQ(asked.limits.room, 128'000'000U);
  EXPECT_FALSE(asked.identifiers);
}

TEST_F(WishTest, SaysWhereHowMuchAndHowLong) {
  set(user, u"On", u"1");
  set(user, u"Folder", u"D:\\TRACE");
  set(user, u"Megabytes", u"100000");
  set(user, u"Days", u"3650");
  set(user, u"Identifiers", u"1");
  const Wish asked = wish().value();
  EXPECT_EQ(asked.folder, u"D:\\TRACE");
  EXPECT_EQ(asked.limits.bytes, 100'000'000'000U);
  EXPECT_EQ(asked.limits.days, 3650);
  EXPECT_TRUE(asked.identifiers);
}

TEST_F(WishTest, WhatIsNoNumberWithinTheLimitsIsAsUsual) {
  set(user, u"On", u"1");
  for (const auto* value : {u"", u"0", u"-1", u"1e3", u" 5", u"100001", u"9999999999999999999999"}) {
    set(user, u"Megabytes", value);
    set(user, u"Days", value);
    EXPECT_EQ(wish()->limits.bytes, 64'000'000U);
    EXPECT_EQ(wish()->limits.days, 7);
  }
}

TEST_F(WishTest, TheUsersOwnSettingsGoFirst) {
  set(workstation, u"On", u"1");
  set(workstation, u"Folder", u"W");
  EXPECT_EQ(wish().value().folder, u"W");
  set(user, u"Folder", u"U");
  EXPECT_EQ(wish().value().folder, u"W") << "the user says nothing about whether";
  set(user, u"On", u"1");
  EXPECT_EQ(wish().value().folder, u"U");
  set(user, u"On", u"0");
  EXPECT_FALSE(wish());
}

}  // namespace
}  // namespace vordane::trace
