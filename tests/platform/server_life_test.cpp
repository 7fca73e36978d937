#include "platform/server_life.h"

#include <gtest/gtest.h>

namespace vordane::platform {
namespace {

TEST(ServerLife, BeginsUnused) {
  const ServerLife life;
  EXPECT_TRUE(life.neverUsed());
  EXPECT_FALSE(life.over());
}

TEST(ServerLife, EndsWithTheLastRecord) {
  ServerLife life;
  life.created(false);
  life.created(false);
  life.released();
  EXPECT_FALSE(life.over());
  life.released();
  EXPECT_TRUE(life.over());
}

TEST(ServerLife, ALockKeepsIt) {
  ServerLife life;
  life.locked(true);
  life.created(false);
  life.released();
  EXPECT_FALSE(life.over());
  life.locked(false);
  EXPECT_TRUE(life.over());
}

// From the first layer on, only the layers decide.
TEST(ServerLife, ALayerTakesTheDecisionOver) {
  ServerLife life;
  life.created(false);
  life.created(true);
  life.released();
  life.released();
  EXPECT_FALSE(life.over());
}

}  // namespace
}  // namespace vordane::platform
