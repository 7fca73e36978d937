#include "platform/access/jet_text.h"

namespace vordane::access {
namespace {

std::u16string plain(std::span<const std::uint8_t> bytes) {
  std::u16string text;
  text.reserve(bytes.size() / 2);
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
    text.push_back(static_cast<char16_t>(bytes[i] | bytes[i + 1] << 8));
  return text;
}

// Behind the mark, one byte stands for a character until a zero byte, which changes to two bytes a
// character and back.
std::u16string compressed(std::span<const std::uint8_t> bytes) {
  std::u16string text;
  text.reserve(bytes.size());
  bool oneByte = true;
  for (std::size_t i = 0; i < bytes.size();) {
    if (bytes[i] == 0) {
      oneByte = !oneByte;
      ++i;
    } else if (oneByte) {
      text.push_back(bytes[i++]);
    } else if (i + 1 < bytes.size()) {
      text.push_back(static_cast<char16_t>(bytes[i] | bytes[i + 1] << 8));
      i += 2;
    } else {
      break;
    }
  }
  return text;
}

}  // namespace

std::u16string jetText(std::span<const std::uint8_t> bytes) {
  const bool marked = bytes.size() >= 2 && bytes[0] == 0xFF && bytes[1] == 0xFE;
  return marked ? compressed(bytes.subspan(2)) : plain(bytes);
}

}  // namespace vordane::access
