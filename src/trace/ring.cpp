#include "trace/ring.h"

#include <cstring>

namespace vordane::trace {

Ring::Ring(std::size_t bytes) : bytes_(bytes) {}

bool Ring::hasRoom(std::size_t size) noexcept {
  if (bytes_.size() - (written_ - knownTail_) >= size) return true;
  knownTail_ = tail_.load(std::memory_order_acquire);
  return bytes_.size() - (written_ - knownTail_) >= size;
}

bool Ring::put(std::string_view bytes) noexcept {
  const std::size_t size = sizeOf(bytes.size());
  // Every size is a multiple of a head's, so the rest behind the last record holds one.
  const std::size_t rest = bytes_.size() - (written_ & (bytes_.size() - 1));
  const std::size_t skipped = rest < size ? rest : 0;
  if (size > bytes_.size() || !hasRoom(skipped + size)) return false;
  if (skipped > 0) {
    const RecordHead skip{static_cast<std::uint32_t>(skipped - sizeof(RecordHead)), 1};
    std::memcpy(at(written_), &skip, sizeof skip);
  }
  const RecordHead head{static_cast<std::uint32_t>(bytes.size()), 0};
  char* const record = at(written_ + skipped);
  std::memcpy(record, &head, sizeof head);
  std::memcpy(record + sizeof head, bytes.data(), bytes.size());
  written_ += skipped + size;
  head_.store(written_, std::memory_order_seq_cst);
  return true;
}

RecordHead Ring::headAt(std::size_t position) {
  RecordHead head;
  std::memcpy(&head, at(position), sizeof head);
  return head;
}

std::optional<std::string_view> Ring::front() noexcept {
  if (empty()) return {};
  RecordHead head = headAt(taken_);
  if (head.skipped != 0) {
    taken_ += sizeOf(head.length);
    head = headAt(taken_);
  }
  return std::string_view(at(taken_) + sizeof head, head.length);
}

void Ring::pop() noexcept {
  taken_ += sizeOf(headAt(taken_).length);
  tail_.store(taken_, std::memory_order_release);
}

}  // namespace vordane::trace
