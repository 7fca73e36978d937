#include "trace/list_lines.h"

#include <algorithm>
#include <string>

namespace vordane::trace {

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
  entries_ = 0;
  values_ = 0;
}

void ListLines::put(std::string_view text) noexcept {
  at_ = std::copy(text.begin(), text.end(), at_);
}

void ListLines::put(int unread) noexcept {
  for (; unread > 0; --unread) put("null,");
}

void ListLines::beginEntry(std::int16_t index) noexcept {
  if (entryOpen_) endEntry();
  if (entries_++ > 0) *at_++ = ',';
  *at_++ = '[';
  entryOpen_ = true;
  index_ = index;
  next_ = 0;
}

// What was not read of it is null.
void ListLines::endEntry() noexcept {
  put(columns - next_);
  at_[-1] = ']';
  entryOpen_ = false;
}

std::string_view ListLines::end() noexcept {
  if (entryOpen_) endEntry();
  put("]}\n");
  object_ = 0;
  return {buffer_.data(), static_cast<std::size_t>(at_ - buffer_.data())};
}

}  // namespace vordane::trace
