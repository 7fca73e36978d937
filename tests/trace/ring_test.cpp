#include "trace/ring.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>

namespace vordane::trace {
namespace {

std::string take(Ring& ring) {
  const auto record = ring.front();
  if (!record) return "(none)";
  std::string bytes(*record);
  ring.pop();
  return bytes;
}

TEST(TraceRing, GivesBackWhatWasPutInOrderAlsoRoundItsEnd) {
  Ring ring(128);
  EXPECT_EQ(take(ring), "(none)");
  for (int i = 0; i < 100; ++i) {
    const std::string bytes(static_cast<std::size_t>(i % 23), static_cast<char>('a' + i % 26));
    ASSERT_TRUE(ring.put(bytes)) << i;
    ASSERT_TRUE(ring.put("x")) << i;
    EXPECT_EQ(take(ring), bytes);
    EXPECT_EQ(take(ring), "x");
    EXPECT_TRUE(ring.empty());
  }
}

TEST(TraceRing, RefusesWhatFindsNoRoomAndGoesOn) {
  Ring ring(64);
  EXPECT_FALSE(ring.put(std::string(57, 'l'))) << "longer than all of it";
  ASSERT_TRUE(ring.put(std::string(24, 'a')));
  ASSERT_TRUE(ring.put(std::string(20, 'b')));
  EXPECT_FALSE(ring.put("")) << "a head alone has no room either";
  EXPECT_EQ(take(ring), std::string(24, 'a'));
  EXPECT_FALSE(ring.put(std::string(25, 'c')));
  ASSERT_TRUE(ring.put(std::string(24, 'c')));
  EXPECT_EQ(take(ring), std::string(20, 'b'));
  EXPECT_EQ(take(ring), std::string(24, 'c'));
  EXPECT_EQ(take(ring), "(none)");
}

TEST(TraceRing, IsUsedByTwoThreads) {
  Ring ring(1024);
  constexpr std::uint32_t count = 200'000;
  std::thread putting([&] {
    for (std::uint32_t i = 0; i < count;) {
      const std::string bytes = std::to_string(i) + std::string(i % 50, 'x');
      if (ring.put(bytes))
        ++i;
      else
        std::this_thread::yield();
    }
  });
  for (std::uint32_t i = 0; i < count;) {
    if (ring.empty()) {
      std::this_thread::yield();
      continue;
    }
    ASSERT_EQ(take(ring), std::to_string(i) + std::string(i % 50, 'x'));
    ++i;
  }
  putting.join();
}

}  // namespace
}  // namespace vordane::trace
