#include "list/looking.h"

#include <gtest/gtest.h>

namespace vordane::list {
namespace {

using std::chrono::milliseconds;
using Shown = Looking::Shown;

class LookingTest : public testing::Test {
 protected:
  std::optional<Shown> see(const std::optional<Shown>& shown, int atMilliseconds) {
    return looking_.see(shown, Looking::Time(milliseconds(atMilliseconds)));
  }
  std::optional<int> due() const {
    const auto at = looking_.due();
    if (!at) return {};
    return static_cast<int>(std::chrono::duration_cast<milliseconds>(at->time_since_epoch()).count());
  }

  Looking looking_;
};

TEST_F(LookingTest, FiveSecondsInFrontAreALook) {
  EXPECT_EQ(see(Shown{1, 40}, 1000), std::nullopt);
  EXPECT_EQ(due(), 6000);
  EXPECT_EQ(see(Shown{1, 40}, 5999), std::nullopt);
  EXPECT_EQ(see(Shown{1, 40}, 6000), (Shown{1, 40}));
}

TEST_F(LookingTest, ItIsToldOnce) {
  see(Shown{1, 40}, 0);
  EXPECT_EQ(see(Shown{1, 40}, 5000), (Shown{1, 40}));
  EXPECT_EQ(due(), std::nullopt);
  EXPECT_EQ(see(Shown{1, 40}, 10000), std::nullopt);
  EXPECT_EQ(see(Shown{1, 40}, 15000), std::nullopt);
}

TEST_F(LookingTest, WhoLeavesBeforehandHasNotLooked) {
  see(Shown{1, 40}, 0);
  EXPECT_EQ(see(std::nullopt, 4000), std::nullopt);
  EXPECT_EQ(due(), std::nullopt);
  EXPECT_EQ(see(Shown{1, 40}, 5000), std::nullopt);
  EXPECT_EQ(see(Shown{1, 40}, 9999), std::nullopt);
  EXPECT_EQ(see(Shown{1, 40}, 10000), (Shown{1, 40}));
}

TEST_F(LookingTest, AnotherExchangeHasItsOwnFiveSeconds) {
  see(Shown{1, 40}, 0);
  EXPECT_EQ(see(Shown{2, 90}, 4000), std::nullopt);
  EXPECT_EQ(see(Shown{2, 90}, 5000), std::nullopt);
  EXPECT_EQ(see(Shown{2, 90}, 9000), (Shown{2, 90}));
}

TEST_F(LookingTest, FaultsThatComeOnTheWayHaveTheirOwnFiveSeconds) {
  see(Shown{1, 40}, 0);
  EXPECT_EQ(see(Shown{1, 43}, 3000), std::nullopt);
  EXPECT_EQ(see(Shown{1, 43}, 5000), (Shown{1, 40}));
  EXPECT_EQ(due(), 8000);
  EXPECT_EQ(see(Shown{1, 43}, 7999), std::nullopt);
  EXPECT_EQ(see(Shown{1, 43}, 8000), (Shown{1, 43}));
  EXPECT_EQ(due(), std::nullopt);
}

TEST_F(LookingTest, WhoIsAskedLateIsToldTheLatest) {
  see(Shown{1, 40}, 0);
  see(Shown{1, 43}, 3000);
  EXPECT_EQ(see(Shown{1, 43}, 9000), (Shown{1, 43}));
  EXPECT_EQ(see(Shown{1, 43}, 20000), std::nullopt);
}

TEST_F(LookingTest, FewerFaultsThanThereWereBeginAnew) {
  see(Shown{1, 40}, 0);
  EXPECT_EQ(see(Shown{1, 12}, 3000), std::nullopt);
  EXPECT_EQ(see(Shown{1, 12}, 5000), std::nullopt);
  EXPECT_EQ(see(Shown{1, 12}, 8000), (Shown{1, 12}));
}

}  // namespace
}  // namespace vordane::list
