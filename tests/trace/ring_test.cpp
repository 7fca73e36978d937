#include "trace/ring.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <thread>

namespace vordane::trace {
namespace {

bool put(Ring& ring, const std::string& bytes) {
  RecordHead head;
  head.kind = RecordKind::line;
  head.length = static_cast<std::uint32_t>(bytes.size());
  void* const place = ring.reserve(head);
  if (place == nullptr) return false;
  std::memcpy(place, bytes.data(), bytes.size());
  ring.commit();
  return true;
}

std::string take(Ring& ring) {
  Ring::Record record;
  if (!ring.front(record)) return "(none)";
  std::string bytes(record.bytes, record.head.length);
  ring.pop(record);
  return bytes;
}

TEST(TraceRing, GivesBackWhatWasPutInOrderAlsoRoundItsEnd) {
  Ring ring(128);
  EXPECT_EQ(take(ring), "(none)");
  for (int i = 0; i < 100; ++i) {
    const std::string bytes(static_cast<std::size_t>(i % 23), static_cast<char>('a' + i % 26));
    ASSERT_TRUE(put(ring, bytes)) << i;
    ASSERT_TRUE(put(ring, "x")) << i;
    EXPECT_EQ(take(ring), bytes);
    EXPECT_EQ(take(ring), "x");
    EXPECT_TRUE(ring.drained());
  }
}

TEST(TraceRing, RefusesWhatFindsNoRoomAndGoesOn) {
  Ring ring(64);
  EXPECT_FALSE(put(ring, std::string(57, 'l'))) << "longer than all of it";
  ASSERT_TRUE(put(ring, std::string(24, 'a')));
  ASSERT_TRUE(put(ring, std::string(20, 'b')));
  EXPECT_FALSE(put(ring, "")) << "a head alone has no room either";
  EXPECT_EQ(take(ring), std::string(24, 'a'));
  EXPECT_FALSE(put(ring, std::string(25, 'c')));
  ASSERT_TRUE(put(ring, std::string(24, 'c')));
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
      if (put(ring, bytes))
        ++i;
      else
        std::this_thread::yield();
    }
  });
  for (std::uint32_t i = 0; i < count;) {
    Ring::Record record;
    if (!ring.front(record)) {
      std::this_thread::yield();
      continue;
    }
    const std::string bytes(record.bytes, record.head.length);
    ring.pop(record);
    ASSERT_EQ(bytes, std::to_string(i) + std::string(i % 50, 'x'));
    ++i;
  }
  putting.join();
}

}  // namespace
}  // namespace vordane::trace
