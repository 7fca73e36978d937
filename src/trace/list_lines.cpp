#include "trace/list_lines.h"

#include <algorithm>
#include <string>

namespace vordane::trace {

bool ListLines::takes(std::int64_t object, int column, std::int16_t index, std::size_t length) const {
  if (!open_ || object != object_) return false;
  const auto left = static_cast<std::size_t>(buffer_.data() + room - at_);
  if (left < length * longestOfCharacter + ofFraming) return false;
  if (entryOpen_ && index == index_ && column >= next_) return true;
  return index == index_ + 1 && entries_ < entriesOfLine;
}

void ListLines::begin(Moment at, std::int64_t object, std::int16_t index) {
  std::string head = R"({"at":")";
  appendMoment(at, head);
  head += R"(","event":"entries","object":)";
  appendNumber(object, head);
  head += R"(,"first":)";
  appendNumber(index, head);
  head += R"(,"entries":[)";
  at_ = buffer_.data();
  put(head);
  object_ = object;
  open_ = true;
  entries_ = 0;
  values_ = 0;
}

void ListLines::put(std::string_view text) noexcept {
  at_ = std::copy(text.begin(), text.end(), at_);
}

void ListLines::add(int column, std::int16_t index, std::u16string_view text) noexcept {
  if (entryOpen_ && (index != index_ || column < next_)) endEntry();
  if (!entryOpen_) {
    if (entries_++ > 0) *at_++ = ',';
    *at_++ = '[';
    entryOpen_ = true;
    index_ = index;
    next_ = 0;
  }
  for (; next_ < column; ++next_) put("null,");
  at_ = putJson(text, at_);
  ++values_;
  if (++next_ < columns)
    *at_++ = ',';
  else
    endEntry();
}

// What was not read of it is null.
void ListLines::endEntry() noexcept {
  for (; next_ < columns; ++next_) put(next_ + 1 < columns ? "null," : "null");
  *at_++ = ']';
  entryOpen_ = false;
}

std::string_view ListLines::end() noexcept {
  if (entryOpen_) endEntry();
  put("]}\n");
  open_ = false;
  return {buffer_.data(), static_cast<std::size_t>(at_ - buffer_.data())};
}

}  // namespace vordane::trace
