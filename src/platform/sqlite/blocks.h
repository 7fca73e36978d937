// A growing list that never moves what it holds and never has more than one block too many: a vector that
// doubles would need three times its size at the moment it grows.
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <vector>

namespace vordane::sqlite {

template <class T>
class Blocks {
 public:
  std::size_t size() const { return size_; }
  void push_back(const T& value) {
    if (size_ % blockSize == 0) last_ = blocks_.emplace_back(std::make_unique<Block>())->data();
    last_[size_++ % blockSize] = value;
  }
  T& operator[](std::size_t i) { return (*blocks_[i / blockSize])[i % blockSize]; }
  const T& operator[](std::size_t i) const { return (*blocks_[i / blockSize])[i % blockSize]; }

 private:
  static constexpr std::size_t blockSize = 16384;
  using Block = std::array<T, blockSize>;
  std::vector<std::unique_ptr<Block>> blocks_;
  std::size_t size_ = 0;
  T* last_ = nullptr;  // the last block
};

}  // namespace vordane::sqlite
