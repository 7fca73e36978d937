// A description costs one allocation, or none when its memory is used again: fields, numbers and digits
// must not cost any.
#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#include "recognisable_texts.h"

namespace {
std::size_t allocations = 0;
}

void* operator new(std::size_t size) {
  ++allocations;
  if (void* const memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}

namespace vordane::faults {
namespace {

constexpr std::u16string_view data = u"10 02 81 21 12 34 56 02";

std::u16string recordOf(int kind) {
  return {u"0123456789ABCDEF"[kind / 16], u"0123456789ABCDEF"[kind % 16]};
}

TEST(Allocation, OneForEachDescription) {
  const Decoder decode;
  for (int kind = 0; kind <= 0xFF; ++kind) {
    const std::u16string record = recordOf(kind);
    const std::size_t before = allocations;
    const std::u16string description = decode(record, data, u"FF");
    EXPECT_EQ(allocations - before, 1u) << kind;
    EXPECT_FALSE(description.empty());
  }
}

TEST(Allocation, NoneWhereMemoryIsUsedAgain) {
  const Decoder decode;
  std::u16string description;
  decode.display.GetFaultMessage(u"48", data, data, description);
  for (int kind = 0; kind <= 0xFF; ++kind) {
    const std::u16string record = recordOf(kind);
    const std::size_t before = allocations;
    decode.display.GetFaultMessage(record, data, u"FF", description);
    EXPECT_EQ(allocations - before, 0u) << kind;
  }
}

TEST(Allocation, TheCountSeesAllocations) {
  const std::size_t before = allocations;
  const std::u16string large(1000, u'x');
  EXPECT_EQ(allocations - before, 1u);
}

}  // namespace
}  // namespace vordane::faults
