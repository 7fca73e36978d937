// Text for a terminal. Names and descriptions come from exchanges and files, and a terminal obeys some
// characters instead of showing them: they could colour a line, move the cursor over another one or turn its
// direction.
#pragma once

#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>

namespace vordane::tools {

// UTF-8 in pieces of any size, with control characters as \x1B, marks of direction and other line ends as
// \u202E, and bytes that are no UTF-8 as \xFF. TAB, LF and CR LF stay.
class TerminalText {
 public:
  void append(std::string_view utf8, std::string& out);
  // What waited for more: the beginning of a character, or a CR.
  void finish(std::string& out);

 private:
  std::string pending_;
};

// The same for a text that must not leave its line anywhere: TAB, LF and CR are shown too.
std::string onOneLine(std::u16string_view text);

// As long as it lives, what goes to `stream` reaches `write` in whole lines, made fit for a terminal.
class TerminalStream : public std::streambuf {
 public:
  using Write = void (*)(std::string_view utf8);
  TerminalStream(std::ostream& stream, Write write);
  ~TerminalStream() override;
  TerminalStream(const TerminalStream&) = delete;
  TerminalStream& operator=(const TerminalStream&) = delete;

 protected:
  int_type overflow(int_type character) override;
  std::streamsize xsputn(const char* bytes, std::streamsize count) override;
  int sync() override;

 private:
  std::ostream& stream_;
  std::streambuf* const before_;
  const Write write_;
  TerminalText text_;
  std::string shown_;
};

}  // namespace vordane::tools
