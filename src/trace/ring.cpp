#include "trace/ring.h"

#include <cstring>

namespace vordane::trace {

Ring::Ring(std::size_t bytes) : bytes_(bytes) {}

bool Ring::hasRoom(std::size_t size) noexcept {
  if (bytes_.size() - (reserved_ - knownTail_) >= size) return true;
  knownTail_ = tail_.load(std::memory_order_acquire);
  return bytes_.size() - (reserved_ - knownTail_) >= size;
}

void* Ring::reserve(const RecordHead& head) noexcept {
  const std::size_t size = sizeOf(head);
  // Every size is a multiple of a head's, so the rest behind the last record holds one.
  const std::size_t rest = bytes_.size() - (reserved_ & (bytes_.size() - 1));
  const std::size_t skipped = rest < size ? rest : 0;
  if (size > bytes_.size() || !hasRoom(skipped + size)) return nullptr;
  if (skipped > 0) {
    RecordHead skip;
    skip.length = static_cast<std::uint32_t>(skipped - sizeof skip);
    std::memcpy(at(reserved_), &skip, sizeof skip);
    reserved_ += skipped;
  }
  char* const record = at(reserved_);
  std::memcpy(record, &head, sizeof head);
  reserved_ += size;
  return record + sizeof head;
}

bool Ring::front(Record& record) noexcept {
  while (taken_ != head_.load(std::memory_order_acquire)) {
    std::memcpy(&record.head, at(taken_), sizeof record.head);
    record.bytes = at(taken_) + sizeof record.head;
    if (record.head.kind != RecordKind::skip) return true;
    pop(record);
  }
  return false;
}

void Ring::pop(const Record& record) noexcept {
  taken_ += sizeOf(record.head);
  tail_.store(taken_, std::memory_order_release);
}

}  // namespace vordane::trace
