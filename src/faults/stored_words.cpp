#include "faults/stored_words.h"

#include <cstdint>

#include "faults/kind_lists.h"

namespace vordane {
namespace {

// Those of later kinds are left out, so that a station which knows them yet and one which does not can share
// a store.
constexpr int firstMessage = 5, lastMessage = 164;

class Mark {
 public:
  void addText(const std::u16string* text) {
    addNumber(text == nullptr ? 0 : text->size() + 1);
    if (text == nullptr) return;
    for (const char16_t character : *text) addNumber(character);
  }
  // FNV-1a, a byte at a time from the lowest.
  void addNumber(std::uint64_t number) {
    for (int shift = 0; shift < 32; shift += 8) {
      value_ ^= (number >> shift) & 0xFF;
      value_ *= 0x100000001B3U;
    }
  }
  std::u16string text() const {
    constexpr std::u16string_view digits = u"0123456789abcdef";
    std::u16string all;
    for (int shift = 60; shift >= 0; shift -= 4) all.push_back(digits[(value_ >> shift) & 0xF]);
    return all;
  }

 private:
  std::uint64_t value_ = 0xCBF29CE484222325U;
};

}  // namespace

std::u16string markOfStoredWords(const FaultTextTable& texts) {
  Mark mark;
  for (int number = firstMessage; number <= lastMessage; ++number) mark.addText(texts.message(number));
  for (const KindList& list : kindLists) {
    int items = 0;
    while (texts.item(list.kind, items) != nullptr) mark.addText(texts.item(list.kind, items++));
    mark.addNumber(static_cast<std::uint64_t>(items));
  }
  return mark.text();
}

}  // namespace vordane
