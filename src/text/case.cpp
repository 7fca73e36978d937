#include <array>
#include <cstddef>

#include "text/text.h"

namespace vordane::text {
namespace {

struct Pair {
  char16_t letter;
  char16_t mapped;
};

constexpr Pair upperPairs[] = {
#include "text/upper_pairs.inc"
};
constexpr Pair lowerPairs[] = {
#include "text/lower_pairs.inc"
};
constexpr Pair pathPairs[] = {
#include "text/path_pairs.inc"
};

// One entry for each UTF-16 code unit: a look-up is one read.
class CaseTable {
 public:
  template <std::size_t n>
  explicit CaseTable(const Pair (&pairs)[n]) {
    for (std::size_t i = 0; i < map_.size(); ++i) map_[i] = static_cast<char16_t>(i);
    for (const Pair& pair : pairs) map_[pair.letter] = pair.mapped;
  }
  char16_t operator[](char16_t letter) const { return map_[letter]; }

 private:
  std::array<char16_t, 65536> map_;
};

}  // namespace

char16_t lower(char16_t character) {
  static const CaseTable table(lowerPairs);
  return table[character];
}

char16_t upper(char16_t character) {
  static const CaseTable table(upperPairs);
  return table[character];
}

char16_t upperInPath(char16_t character) {
  static const CaseTable table(pathPairs);
  return table[character];
}

}  // namespace vordane::text
