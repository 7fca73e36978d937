#include "platform/server_life.h"

#include <gtest/gtest.h>

namespace vordane::platform {
namespace {

void create(ServerLife& life, bool endsItself) {
  life.creating();
  life.created(endsItself);
}

TEST(ServerLife, BeginsUnused) {
  const ServerLife life;
  EXPECT_TRUE(life.neverUsed());
  EXPECT_FALSE(life.over());
}

TEST(ServerLife, EndsWithTheLastRecord) {
  ServerLife life;
  create(life, false);
  create(life, false);
  life.released();
  EXPECT_FALSE(life.over());
  life.released();
  EXPECT_TRUE(life.over());
}

TEST(ServerLife, ALockKeepsIt) {
  ServerLife life;
  life.locked(true);
  create(life, false);
  life.released();
  EXPECT_FALSE(life.over());
  life.locked(false);
  EXPECT_TRUE(life.over());
}

// From the first layer on, only the layers decide.
TEST(ServerLife, ALayerTakesTheDecisionOver) {
  ServerLife life;
  create(life, false);
  create(life, true);
  life.released();
  life.released();
  EXPECT_FALSE(life.over());
}

TEST(ServerLife, AnObjectThatIsBeingMadeKeepsIt) {
  ServerLife life;
  life.creating();
  EXPECT_FALSE(life.neverUsed()) << "whoever waits for it uses the process";
  create(life, false);
  life.released();
  EXPECT_FALSE(life.over());
  life.created(false);
  EXPECT_FALSE(life.over());
  life.released();
  EXPECT_TRUE(life.over());
}

TEST(ServerLife, AnObjectThatCouldNotBeMadeLeavesTheOthers) {
  ServerLife life;
  create(life, false);
  life.creating();
  life.failed();
  EXPECT_FALSE(life.over());
  life.released();
  EXPECT_TRUE(life.over());
}

TEST(ServerLife, ALayerThatCouldNotBeMadeTakesNoDecisionOver) {
  ServerLife life;
  life.creating();
  life.failed();
  EXPECT_TRUE(life.over()) << "nobody else uses the process";
}

}  // namespace
}  // namespace vordane::platform
