#include "list/last_look.h"

#include <gtest/gtest.h>

#include <array>

#include "fakes/memory_arrivals.h"
#include "fakes/memory_settings.h"

namespace vordane::list {
namespace {

constexpr auto always = [] { return true; };
constexpr auto never = [] { return false; };

class LastLookTest : public testing::Test {
 protected:
  // One begun anew, as by a program that starts.
  void start() { look = std::make_unique<LastLook>(settings), follow(); }
  void follow() {
    look->begin();
    while (look->busy()) look->work(store, exchanges, always);
  }
  std::optional<std::u16string> kept(std::u16string_view key) {
    return settings.read(u"VORDANE", u"LastLook", key);
  }
  void SetUp() override {
    store.add(1, 10);
    store.add(2, 5);
    start();
  }

  fakes::MemoryArrivals store;
  fakes::MemorySettings settings;
  std::vector<std::int64_t> exchanges{1, 2};
  std::unique_ptr<LastLook> look;
};

TEST_F(LastLookTest, WhatWasThereWhenTheUserMetTheStoreIsNotNew) {
  EXPECT_EQ(look->newFaults(1), 0U);
  EXPECT_EQ(look->newFaults(2), 0U);
  EXPECT_EQ(look->mark(1), 15);
  EXPECT_EQ(look->mark(2), 15);
  EXPECT_EQ(kept(u"aa"), u"15");
}

TEST_F(LastLookTest, WhatCameSinceIsNewUntilSomebodyHasLooked) {
  store.add(2, 3);
  store.add(1, 1);
  follow();
  EXPECT_EQ(look->newFaults(1), 1U);
  EXPECT_EQ(look->newFaults(2), 3U);
  look->looked(2, 18);
  EXPECT_EQ(look->newFaults(1), 1U);
  EXPECT_EQ(look->newFaults(2), 0U);
  EXPECT_EQ(look->mark(2), 18);
  EXPECT_EQ(look->mark(1), 15);
}

TEST_F(LastLookTest, OnlyWhatStoodThereHasBeenLookedAt) {
  store.add(2, 5);
  follow();
  look->looked(2, 17);
  EXPECT_EQ(look->newFaults(2), 3U);
}

TEST_F(LastLookTest, TheNextStartKnowsTheMarks) {
  store.add(1, 4);
  follow();
  look->looked(1, 19);
  store.add(1, 2);
  store.add(2, 1);
  start();
  EXPECT_EQ(look->newFaults(1), 2U);
  EXPECT_EQ(look->newFaults(2), 1U);
  EXPECT_EQ(kept(u"aa.1"), u"19");
  EXPECT_EQ(kept(u"aa"), u"15");
}

TEST_F(LastLookTest, AnExchangeThatIsNewToTheStoreIsNewWhole) {
  store.add(3, 4);
  exchanges.push_back(3);
  follow();
  EXPECT_EQ(look->newFaults(3), 4U);
  EXPECT_EQ(look->mark(3), 15);
}

TEST_F(LastLookTest, AnExchangeThatIsListedLateIsCountedFromItsMark) {
  store.add(3, 4);
  follow();
  EXPECT_EQ(look->newFaults(3), 0U);
  EXPECT_EQ(look->mark(3), std::nullopt);
  exchanges.push_back(3);
  follow();
  EXPECT_EQ(look->newFaults(3), 4U);
}

TEST_F(LastLookTest, EachStoreHasItsOwnMarks) {
  store.add(1, 4);
  follow();
  fakes::MemoryArrivals other;
  other.ownIdentity = u"bb";
  other.add(1, 2);
  std::swap(store, other);
  start();
  EXPECT_EQ(look->mark(1), 2);
  EXPECT_EQ(look->newFaults(1), 0U);
  std::swap(store, other);
  start();
  EXPECT_EQ(look->mark(1), 15);
  EXPECT_EQ(look->newFaults(1), 4U);
}

TEST_F(LastLookTest, AnOlderCopyOfTheStoreTakesTheMarksBackWithIt) {
  store.add(1, 5);
  follow();
  look->looked(1, 20);
  store.all.resize(12);  // as it was before
  start();
  EXPECT_EQ(look->mark(1), 12);
  EXPECT_EQ(look->mark(2), 12);
  EXPECT_EQ(kept(u"aa.1"), u"12") << "before what comes next can pass the mark";
  EXPECT_EQ(kept(u"aa"), u"12");
  store.add(1, 3);
  follow();
  EXPECT_EQ(look->newFaults(1), 3U);
}

TEST_F(LastLookTest, AnOlderCopyIsNoticedWhileTheProgramRuns) {
  store.add(1, 5);
  follow();
  look->looked(1, 20);
  store.all.resize(12);
  follow();
  EXPECT_EQ(look->mark(1), 12);
  store.add(1, 1);
  follow();
  EXPECT_EQ(look->newFaults(1), 1U);
}

TEST_F(LastLookTest, AMarkNeverGoesBackByLooking) {
  store.add(1, 5);
  follow();
  look->looked(1, 20);
  look->looked(1, 16);
  EXPECT_EQ(look->mark(1), 20);
  EXPECT_EQ(kept(u"aa.1"), u"20");
}

TEST_F(LastLookTest, WhatTheSamePersonLooksAtInAnotherWindowIsFollowed) {
  store.add(1, 5);
  follow();
  LastLook elsewhere(settings);
  elsewhere.begin();
  while (elsewhere.busy()) elsewhere.work(store, exchanges, always);
  elsewhere.looked(1, 18);
  follow();
  EXPECT_EQ(look->newFaults(1), 2U);
  EXPECT_EQ(look->mark(1), 18);
}

TEST_F(LastLookTest, MoreThanAreCountedAreCountedAgainWhenSomeHaveBeenLookedAt) {
  store.add(1, 2500);
  store.add(2, 3);
  follow();
  EXPECT_EQ(look->newFaults(1), 1000U);
  EXPECT_EQ(look->newFaults(2), 3U);
  look->looked(1, 15 + 2000);
  follow();
  EXPECT_EQ(look->newFaults(1), 500U);
  EXPECT_EQ(look->newFaults(2), 3U);
}

TEST_F(LastLookTest, WhatIsReadOnceIsNotReadAgain) {
  store.add(1, 700);
  follow();
  const std::size_t before = store.read;
  follow();
  store.add(2, 2);
  follow();
  EXPECT_EQ(store.read - before, 2U);
}

TEST_F(LastLookTest, NothingIsToldToBeDrawnAnewWhereNothingChanged) {
  store.add(1, 2);
  look->begin();
  EXPECT_TRUE(look->work(store, exchanges, always));
  look->begin();
  EXPECT_FALSE(look->work(store, exchanges, always));
}

TEST_F(LastLookTest, ItIsReadInPieces) {
  store.add(1, 1700);
  look->begin();
  int pieces = 0;
  for (; look->busy(); ++pieces) look->work(store, exchanges, never);
  EXPECT_EQ(pieces, 4);
  EXPECT_EQ(look->newFaults(1), 1000U);
}

// An exchange that sends nothing for years must not make each start read what the others have sent.
TEST_F(LastLookTest, AMarkThatNothingCameBehindFollowsFarBelow) {
  store.add(1, 12'000);
  follow();
  look->looked(1, 12'015);
  EXPECT_EQ(kept(u"aa.2"), u"12015");
  EXPECT_EQ(look->newFaults(2), 0U);
  store.add(2, 1);
  store.read = 0;
  start();
  EXPECT_EQ(store.read, 1U);
  EXPECT_EQ(look->newFaults(2), 1U);
}

TEST_F(LastLookTest, AMarkIsNeverRaisedAboveAFaultThatIsNew) {
  store.add(1, 11'000);
  store.add(2, 1);  // number 11,016
  store.add(1, 11'000);
  follow();
  EXPECT_EQ(kept(u"aa.2"), u"11015");
  start();
  EXPECT_EQ(look->newFaults(2), 1U);
}

TEST_F(LastLookTest, WhatFailsIsTriedAtTheNextBeginning) {
  store.add(1, 2);
  store.fails = true;
  follow();
  EXPECT_TRUE(look->failed());
  EXPECT_EQ(look->newFaults(1), 0U);
  EXPECT_EQ(look->mark(1), 15);
  store.fails = false;
  follow();
  EXPECT_FALSE(look->failed());
  EXPECT_EQ(look->newFaults(1), 2U);
}

TEST_F(LastLookTest, AStoreWithoutAnIdentityHasNoMarks) {
  store.ownIdentity.clear();
  start();
  store.add(1, 2);
  follow();
  EXPECT_EQ(look->mark(1), std::nullopt);
  EXPECT_EQ(look->newFaults(1), 0U);
  look->looked(1, 17);
  EXPECT_EQ(kept(u".1"), std::nullopt);
}

TEST_F(LastLookTest, AKeptMarkThatIsNoNumberCountsAsNone) {
  settings.write(u"VORDANE", u"LastLook", u"aa.1", u"7x");
  start();
  EXPECT_EQ(look->mark(1), 15);
}

}  // namespace
}  // namespace vordane::list
