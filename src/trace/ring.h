// Records on their way from the thread that traces to the thread that writes, without a lock and without an
// allocation. One thread puts them in, one takes them out.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace vordane::trace {

// In front of the bytes of each record.
struct RecordHead {
  std::uint32_t length = 0;   // of its bytes, in bytes
  std::uint32_t skipped = 0;  // 1: there is none, the next one begins where the memory does
};
static_assert(sizeof(RecordHead) == 8);

class Ring {
 public:
  explicit Ring(std::size_t bytes);  // a power of two

  // --- the thread that traces
  // False when there is no room now.
  bool put(std::string_view bytes) noexcept;

  // --- the thread that writes
  bool empty() const noexcept { return taken_ == head_.load(std::memory_order_seq_cst); }
  // The next record; valid until `pop`.
  std::optional<std::string_view> front() noexcept;
  void pop() noexcept;

 private:
  static std::size_t sizeOf(std::size_t length) {
    return sizeof(RecordHead) + ((length + 7U) & ~std::size_t{7});
  }
  RecordHead headAt(std::size_t position);
  char* at(std::size_t position) { return bytes_.data() + (position & (bytes_.size() - 1)); }
  bool hasRoom(std::size_t size) noexcept;

  std::vector<char> bytes_;
  // Positions only grow.
  alignas(64) std::atomic<std::size_t> head_{0};
  std::size_t written_ = 0, knownTail_ = 0;  // of the thread that traces
  alignas(64) std::atomic<std::size_t> tail_{0};
  std::size_t taken_ = 0;  // of the thread that writes
};

}  // namespace vordane::trace
