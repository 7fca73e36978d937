// Reading the texts that people write for the simulator and the development host: one statement a line,
// words separated by blanks, a text with blanks in double quotes ("" inside is one quote). Behind a backslash
// such a text may hold anything: \"a\nb\"c", with \\ \" \n \r \t and \uXXXX inside.
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <string_view>
#include <vector>

namespace vordane::lines {

// What is wrong with a line; whoever reads the file adds the line's number.
class LineError : public std::exception {
 public:
  explicit LineError(std::u16string text);
  const char* what() const noexcept override { return what_.c_str(); }
  const std::u16string& text() const { return text_; }

 private:
  std::u16string text_;
  std::string what_;
};

struct Problem {
  int line = 0;  // from 1
  std::u16string text;
  bool operator==(const Problem&) const = default;
};

// "FILE:LINE: TEXT", one line for each, as compilers write it.
std::u16string listing(std::u16string_view file, const std::vector<Problem>& problems);

// A statement with its line's number; comment lines (#) and empty lines are left out.
struct Line {
  int number;
  std::u16string text;
};
std::vector<Line> linesOf(std::string_view utf8);

class LineReader {
 public:
  explicit LineReader(std::u16string_view line);
  bool atEnd() const { return rest_.empty(); }
  bool atQuote() const { return rest_.starts_with(u'"') || atEscapes(); }  // the next word is a quoted text
  std::u16string remaining() const { return std::u16string(rest_); }       // not yet read, as it stands
  // The next word or quoted text; LineError (naming `what`) when there is none.
  std::u16string word(std::u16string_view what);
  // What the line still holds, unquoted when it is one quoted text; may be empty.
  std::u16string rest();
  // LineError when it is no whole number from `low` to `high`.
  std::int32_t number(std::u16string_view what, std::int32_t low, std::int32_t high);
  // The rest cut at every "|" outside quotes, blanks around each piece dropped.
  std::vector<std::u16string> fields();
  void expectEnd() const;

 private:
  bool atEscapes() const { return rest_.starts_with(u"\\\""); }
  std::u16string quoted();
  std::u16string escaped();
  std::u16string closed(std::u16string text, std::size_t end);
  void skipBlanks();

  std::u16string_view rest_;
};

// Decimal, or hexadecimal behind "0x"; LineError naming `what`.
std::int32_t errorCode(std::u16string_view text, std::u16string_view what);

}  // namespace vordane::lines
