#include "lines.h"

#include "console.h"
#include "terminal_text.h"

namespace vordane::tools {
namespace {

constexpr std::size_t blockSize = std::size_t{1} << 18;

}  // namespace

// Drops what was taken and reads one block more; false at the end.
bool FileLines::fill() {
  buffer_.erase(0, position_);
  position_ = 0;
  const std::size_t kept = buffer_.size();
  buffer_.resize(kept + blockSize);
  const std::size_t count = std::fread(buffer_.data() + kept, 1, blockSize, file_);
  buffer_.resize(kept + count);
  if (std::ferror(file_) != 0) throw ToolError("the input can't be read. Give it as a file that may be read");
  return count > 0;
}

std::string_view FileLines::take(std::size_t length, std::size_t skip) {
  const std::string_view line(buffer_.data() + position_, length);
  position_ += length + skip;
  ++number_;
  return line;
}

std::optional<std::string_view> FileLines::next() {
  std::size_t searched = 0;  // so that a line of many blocks is searched once
  for (;;) {
    const std::size_t end = buffer_.find('\n', position_ + searched);
    if (end != std::string::npos) return take(end - position_, 1);
    searched = buffer_.size() - position_;
    if (fill()) continue;
    if (searched == 0) return std::nullopt;
    return take(searched, 0);
  }
}

void BlockWriter::flushIfLarge() {
  if (buffer_.size() >= blockSize) finish();
}

void BlockWriter::finish() {
  if (terminal_) {
    std::string shown;
    TerminalText text;  // blocks end with lines, so nothing of a character is still to come
    text.append(buffer_, shown);
    text.finish(shown);
    writeTerminal(file_, shown);
  } else if (std::fwrite(buffer_.data(), 1, buffer_.size(), file_) != buffer_.size() ||
             std::fflush(file_) != 0) {
    throw ToolError("the output can't be written. Make room on its disk, or write it elsewhere");
  }
  buffer_.clear();
}

std::string_view takeField(std::string_view& rest) {
  const std::size_t end = rest.find('\t');
  const std::string_view field = rest.substr(0, end);
  rest = end == std::string_view::npos ? std::string_view{} : rest.substr(end + 1);
  return field;
}

void appendEscaped(std::string_view text, std::string& out) {
  for (const char character : text) {
    if (character == '\\') {
      out += "\\\\";
    } else if (character == '\r') {
      out += "\\r";
    } else if (character == '\n') {
      out += "\\n";
    } else {
      out += character;
    }
  }
}

}  // namespace vordane::tools
