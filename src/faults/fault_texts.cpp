#include "faults/fault_texts.h"

#include "text/numbers.h"
#include "text/text.h"

namespace vordane {

std::optional<int> listKind(std::u16string_view controlName) {
  constexpr std::u16string_view prefix = u"cboFK";
  if (controlName.size() != prefix.size() + 2) return std::nullopt;
  if (!text::equalIgnoringCase(controlName.substr(0, prefix.size()), prefix)) return std::nullopt;
  const int high = text::hexDigitValue(controlName[prefix.size()]);
  const int low = text::hexDigitValue(controlName[prefix.size() + 1]);
  if (high < 0 || low < 0) return std::nullopt;
  return high * 16 + low;
}

void FaultTextTable::setMessages(const std::vector<std::u16string>& messages) {
  messages_.clear();
  for (const std::u16string& text : messages) messages_.push_back(Message{text, {}, {}});
  joinAll();
}

void FaultTextTable::setMessage(int number, std::u16string text) {
  const auto position = static_cast<std::size_t>(number);
  if (position >= messages_.size()) messages_.resize(position + 1);
  messages_[position] = Message{std::move(text), {}, {}};
  if (number == faults::openBracket || number == faults::rawDataHeading) return joinAll();
  join(*messages_[position]);
}

void FaultTextTable::join(Message& message) const {
  const std::u16string* open = this->message(faults::openBracket);
  message.line = message.text;
  message.line += text::crlf;
  message.opening = u" " + (open != nullptr ? *open : u"") + message.text + u" ";
}

void FaultTextTable::joinAll() {
  for (auto& message : messages_)
    if (message) join(*message);
  rawDataOpening_ = text::crlf;
  if (const std::u16string* heading = message(faults::rawDataHeading)) rawDataOpening_ += *heading;
  rawDataOpening_ += u' ';
  if (const std::u16string* open = message(faults::openBracket)) rawDataOpening_ += *open;
}

void FaultTextTable::setList(int kind, std::vector<std::u16string> items) {
  lists_.at(static_cast<std::size_t>(kind)) = std::move(items);
}

void FaultTextTable::addItem(int kind, std::u16string text) {
  auto& list = lists_.at(static_cast<std::size_t>(kind));
  if (!list) list.emplace();
  list->push_back(std::move(text));
}

}  // namespace vordane
