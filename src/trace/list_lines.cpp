#include "trace/list_lines.h"

namespace vordane::trace {

void ListLines::begin(Moment at, std::int64_t object) {
  end();
  at_ = at;
  object_ = object;
}

void ListLines::beginLine(std::int16_t index) {
  lineOpen_ = true;
  out_ += R"({"at":")";
  appendMoment(at_, out_);
  out_ += R"(","event":"entries","object":)";
  appendNumber(object_, out_);
  out_ += R"(,"first":)";
  appendNumber(index, out_);
  out_ += R"(,"entries":[)";
}

void ListLines::read(int column, std::int16_t index, std::u16string_view text) {
  if (entryOpen_ && (index != index_ || column < next_)) endEntry();
  if (!entryOpen_) {
    if (lineOpen_ && index != index_ + 1) end();
    if (lineOpen_)
      out_ += ',';
    else
      beginLine(index);
    out_ += '[';
    entryOpen_ = true;
    index_ = index;
    next_ = 0;
  }
  for (; next_ < column; ++next_) out_ += "null,";
  appendJson(text, out_);
  if (++next_ < columns)
    out_ += ',';
  else
    endEntry();
}

// What was not read of it is null.
void ListLines::endEntry() {
  for (; next_ < columns; ++next_) out_ += next_ + 1 < columns ? "null," : "null";
  out_ += ']';
  entryOpen_ = false;
}

bool ListLines::end() {
  if (!lineOpen_) return false;
  if (entryOpen_) endEntry();
  out_ += "]}\n";
  lineOpen_ = false;
  ++lines_;
  return true;
}

}  // namespace vordane::trace
