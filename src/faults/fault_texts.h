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

namespace faults {

// The messages around the raw data, and the brackets around every value.
inline constexpr int rawDataHeading = 5;
inline constexpr int openBracket = 6;
inline constexpr int closeBracket = 7;

}  // namespace faults

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

  // A message, and what it mostly stands joined with: whoever composes a description appends that at once.
  struct Message {
    std::u16string text;
    std::u16string line;     // the text and a line end
    std::u16string opening;  // blank, opening bracket, the text, blank
  };
  // Null when there is no such message. Valid until the table changes.
  const Message* find(int number) const {
    const auto position = static_cast<std::size_t>(number);
    return position < messages_.size() && messages_[position] ? &*messages_[position] : nullptr;
  }
  const std::u16string* message(int number) const {
    const Message* found = find(number);
    return found != nullptr ? &found->text : nullptr;
  }
  // Line end, heading, blank and opening bracket of the raw data; of what is missing, nothing.
  const std::u16string& rawDataOpening() const { return rawDataOpening_; }
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
  void join(Message& message) const;
  void joinAll();

  std::vector<std::optional<Message>> messages_;
  std::u16string rawDataOpening_;
  std::array<std::optional<std::vector<std::u16string>>, 256> lists_;
};

}  // namespace vordane
