// Lines of a file or stream, as their bytes stand, however many there are.
#pragma once

#include <cstdio>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace vordane::tools {

// Nothing of the environment's can be mended by going on: a file that can't be read or written, a line
// that makes no sense. The text says which and where, and ends the program.
class ToolError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A line ends at LF, or at the end; what stands before it is kept, a CR included.
class FileLines {
 public:
  explicit FileLines(std::FILE* file) : file_(file) {}

  // Valid until the next call; nothing at the end. Throws ToolError when the file can't be read.
  std::optional<std::string_view> next();
  std::size_t number() const { return number_; }  // of the line last read, from 1

 private:
  bool fill();
  std::string_view take(std::size_t length, std::size_t skip);

  std::FILE* file_;
  std::string buffer_;
  std::size_t position_ = 0;
  std::size_t number_ = 0;
};

// Collects output and writes it in large blocks, for a terminal as terminal_text.h says. `finish` must be
// called at the end.
class BlockWriter {
 public:
  BlockWriter(std::FILE* file, bool terminal) : file_(file), terminal_(terminal) {}
  std::string& buffer() { return buffer_; }
  // Called between lines; throws ToolError when the output can't be written.
  void flushIfLarge();
  void finish();

 private:
  std::FILE* file_;
  bool terminal_;
  std::string buffer_;
};

// The text before the first TAB; `rest` keeps what follows it, empty without one.
std::string_view takeField(std::string_view& rest);

// Backslash, CR and LF as \\, \r and \n, so that any text is one line.
void appendEscaped(std::string_view text, std::string& out);

}  // namespace vordane::tools
