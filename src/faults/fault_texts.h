// The texts that fault messages are composed of: numbered messages, and for each kind with a coded value
// the list of its codes' texts ("cboFK01" and so on; the two digits are the kind in hexadecimal).
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vordane {

// The kind whose list bears this control name ("cboFK2B" is 0x2B, the name's case does not count);
// nothing for any other name.
std::optional<int> listKind(std::u16string_view controlName);

// Held in memory: the snapshot that a program takes of its message array and its window's lists. A
// description reads some ten of these texts, so reading them is worth being seen by the compiler.
class FaultTextTable {
 public:
  // Messages from 0 upward, as the message array holds them.
  void setMessages(const std::vector<std::u16string>& messages);
  // `number` from 0 to 32767; the numbers between stay without a message.
  void setMessage(int number, std::u16string text);
  // `kind` from 0 to 255. A list may be empty, which is not the same as missing.
  void setList(int kind, std::vector<std::u16string> items);
  void addItem(int kind, std::u16string text);

  // Null when there is no such message. Valid until the table changes.
  const std::u16string* message(int number) const {
    const auto position = static_cast<std::size_t>(number);
    return position < messages_.size() && messages_[position] ? &*messages_[position] : nullptr;
  }
  bool hasList(int kind) const {
    const auto position = static_cast<std::size_t>(kind);
    return position < lists_.size() && lists_[position];
  }
  // Null when there is no such list, or the list is too short.
  const std::u16string* item(int kind, int code) const {
    if (!hasList(kind)) return nullptr;
    const auto& list = *lists_[static_cast<std::size_t>(kind)];
    const auto position = static_cast<std::size_t>(code);
    return position < list.size() ? &list[position] : nullptr;
  }

 private:
  std::vector<std::optional<std::u16string>> messages_;
  std::array<std::optional<std::vector<std::u16string>>, 256> lists_;
};

}  // namespace vordane
