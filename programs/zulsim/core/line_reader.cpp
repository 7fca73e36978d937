#include "zulsim/core/line_reader.h"

#include <utility>

#include "text/numbers.h"
#include "text/text.h"
#include "text/utf8.h"

namespace vordane::lines {
namespace {

bool isBlank(char16_t character) {
  return character == u' ' || character == u'\t';
}

std::u16string_view stripped(std::u16string_view text) {
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && (isBlank(text.back()) || text.back() == u'\r')) text.remove_suffix(1);
  return text;
}

constexpr std::size_t unitDigits = 4;

// The character that the first four digits mean.
char16_t unitOf(std::u16string_view text) {
  unsigned unit = 0;
  for (std::size_t i = 0; i < unitDigits; ++i) {
    if (i >= text.size() || !text::isHexDigit(text[i]))
      throw LineError(u"behind \\u stand four hexadecimal digits");
    unit = unit << 4U | static_cast<unsigned>(text::hexDigitValue(text[i]));
  }
  return static_cast<char16_t>(unit);
}

}  // namespace

LineError::LineError(std::u16string text) : text_(std::move(text)), what_(text::toUtf8(text_)) {}

std::u16string listing(std::u16string_view file, const std::vector<Problem>& problems) {
  std::u16string out;
  for (const Problem& problem : problems)
    out += std::u16string(file) + u":" + text::decimal(problem.line) + u": " + problem.text + u"\n";
  return out;
}

std::vector<Line> linesOf(std::string_view utf8) {
  constexpr std::string_view mark = "\xEF\xBB\xBF";
  if (utf8.starts_with(mark)) utf8.remove_prefix(mark.size());
  std::vector<Line> lines;
  for (int number = 1; !utf8.empty(); ++number) {
    const std::size_t end = std::min(utf8.find('\n'), utf8.size());
    const std::u16string whole = text::fromUtf8(utf8.substr(0, end));
    const std::u16string_view text = stripped(whole);
    if (!text.empty() && text.front() != u'#') lines.push_back({number, std::u16string(text)});
    utf8.remove_prefix(std::min(end + 1, utf8.size()));
  }
  return lines;
}

LineReader::LineReader(std::u16string_view line) : rest_(stripped(line)) {}

void LineReader::skipBlanks() {
  while (!rest_.empty() && isBlank(rest_.front())) rest_.remove_prefix(1);
}

// The text, whose closing quote stands before `end`.
std::u16string LineReader::closed(std::u16string text, std::size_t end) {
  rest_.remove_prefix(end);
  if (!rest_.empty() && !isBlank(rest_.front()) && rest_.front() != u'|')
    throw LineError(u"a blank is missing behind the closing quote");
  skipBlanks();
  return text;
}

std::u16string LineReader::quoted() {
  if (atEscapes()) return escaped();
  std::u16string text;
  for (std::size_t i = 1; i < rest_.size(); ++i) {
    if (rest_[i] != u'"') {
      text += rest_[i];
    } else if (i + 1 < rest_.size() && rest_[i + 1] == u'"') {
      text += rest_[i++];
    } else {
      return closed(std::move(text), i + 1);
    }
  }
  throw LineError(u"the closing quote is missing");
}

std::u16string LineReader::escaped() {
  std::u16string text;
  for (std::size_t i = 2; i < rest_.size(); ++i) {
    if (rest_[i] == u'"') return closed(std::move(text), i + 1);
    if (rest_[i] != u'\\') {
      text += rest_[i];
      continue;
    }
    const char16_t what = ++i < rest_.size() ? rest_[i] : u'\0';
    if (what == u'\\' || what == u'"')
      text += what;
    else if (what == u'n')
      text += u'\n';
    else if (what == u'r')
      text += u'\r';
    else if (what == u't')
      text += u'\t';
    else if (what == u'u')
      text += unitOf(rest_.substr(std::exchange(i, i + unitDigits) + 1));
    else
      throw LineError(u"behind a backslash stands \\, \", n, r, t or u with four hexadecimal digits");
  }
  throw LineError(u"the closing quote is missing");
}

std::u16string LineReader::word(std::u16string_view what) {
  if (rest_.empty()) throw LineError(std::u16string(what) + u" is missing");
  if (atQuote()) return quoted();
  std::size_t end = 0;
  while (end < rest_.size() && !isBlank(rest_[end])) ++end;
  std::u16string word(rest_.substr(0, end));
  rest_.remove_prefix(end);
  skipBlanks();
  return word;
}

std::u16string LineReader::rest() {
  if (atQuote()) {
    std::u16string text = quoted();
    expectEnd();
    return text;
  }
  std::u16string text(rest_);
  rest_ = {};
  return text;
}

std::int32_t LineReader::number(std::u16string_view what, std::int32_t low, std::int32_t high) {
  const std::u16string written = word(what);
  const auto value = text::parseInteger(written);
  if (!value || *value < low || *value > high)
    throw LineError(std::u16string(what) + u" must be a number from " + text::decimal(low) + u" to " +
                    text::decimal(high) + u", not \"" + written + u"\"");
  return *value;
}

std::vector<std::u16string> LineReader::fields() {
  std::vector<std::u16string> fields;
  for (;;) {
    skipBlanks();
    if (atQuote()) {
      fields.push_back(quoted());
      if (!rest_.empty() && rest_.front() != u'|') throw LineError(u"text behind the closing quote");
    } else {
      const std::size_t end = std::min(rest_.find(u'|'), rest_.size());
      fields.emplace_back(stripped(rest_.substr(0, end)));
      rest_.remove_prefix(end);
    }
    if (rest_.empty()) return fields;
    rest_.remove_prefix(1);
  }
}

void LineReader::expectEnd() const {
  if (!rest_.empty())
    throw LineError(u"nothing may follow here, but \"" + std::u16string(rest_) + u"\" does");
}

std::int32_t errorCode(std::u16string_view text, std::u16string_view what) {
  if (!text::startsWith(text, u"0x")) {
    if (const auto value = text::parseInteger(text)) return *value;
  } else if (text.size() > 2 && text.size() <= 10) {
    std::uint32_t value = 0;
    bool good = true;
    for (const char16_t digit : text.substr(2)) {
      good = good && text::isHexDigit(digit);
      value = value << 4U | (good ? static_cast<std::uint32_t>(text::hexDigitValue(digit)) : 0U);
    }
    if (good) return static_cast<std::int32_t>(value);
  }
  throw LineError(std::u16string(what) + u" must be a number, decimal or with 0x, not \"" +
                  std::u16string(text) + u"\"");
}

}  // namespace vordane::lines
