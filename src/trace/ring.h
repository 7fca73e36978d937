// Records on their way from the thread that traces to the thread that writes, without a lock and without an
// allocation. One thread puts them in, one takes them out.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace vordane::trace {

enum class RecordKind : std::uint8_t { line, begin, entry, skip };

// In front of the bytes of each record.
struct RecordHead {
  std::uint32_t length = 0;  // of its bytes, in bytes
  std::int16_t index = 0;    // of an entry
  RecordKind kind = RecordKind::skip;
  std::uint8_t column = 0;  // of an entry
};
static_assert(sizeof(RecordHead) == 8);

class Ring {
 public:
  explicit Ring(std::size_t bytes);  // a power of two

  // --- the thread that traces
  // Room for a record's bytes, in one piece and at an address that 8 divides; null when there is none now.
  // What was reserved counts from `commit` on.
  void* reserve(const RecordHead& head) noexcept;
  void commit() noexcept { head_.store(reserved_, std::memory_order_seq_cst); }
  void commitQuietly() noexcept { head_.store(reserved_, std::memory_order_release); }

  // --- the thread that writes
  bool empty() const noexcept { return taken_ == head_.load(std::memory_order_seq_cst); }
  // The next record, null without one; valid until `pop`.
  struct Record {
    RecordHead head;
    const char* bytes;
  };
  bool front(Record& record) noexcept;
  void pop(const Record& record) noexcept;

  // --- either thread
  bool drained() const noexcept {
    return tail_.load(std::memory_order_acquire) == head_.load(std::memory_order_acquire);
  }

 private:
  static std::size_t sizeOf(const RecordHead& head) {
    return sizeof(RecordHead) + ((static_cast<std::size_t>(head.length) + 7U) & ~std::size_t{7});
  }
  char* at(std::size_t position) { return bytes_.data() + (position & (bytes_.size() - 1)); }
  bool hasRoom(std::size_t size) noexcept;

  std::vector<char> bytes_;
  // Positions only grow.
  alignas(64) std::atomic<std::size_t> head_{0};
  std::size_t reserved_ = 0, knownTail_ = 0;  // of the thread that traces
  alignas(64) std::atomic<std::size_t> tail_{0};
  std::size_t taken_ = 0;  // of the thread that writes
};

}  // namespace vordane::trace
