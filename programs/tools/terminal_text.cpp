#include "terminal_text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>

#include "text/utf8.h"

namespace vordane::tools {
namespace {

constexpr char hexDigits[] = "0123456789ABCDEF";

struct Range {
  char32_t first, last;
};
// What a terminal obeys beside control characters: marks and overrides of direction, other ends of a line,
// the byte order mark.
constexpr std::array<Range, 6> obeyed{{{0x061C, 0x061C},
                                       {0x200E, 0x200F},
                                       {0x2028, 0x202E},
                                       {0x2066, 0x2069},
                                       {0xFEFF, 0xFEFF},
                                       {0xFFF9, 0xFFFB}}};

bool isControl(char32_t c) {
  return c < 0x20 || (c >= 0x7F && c < 0xA0);
}

bool isObeyed(char32_t c) {
  return std::any_of(obeyed.begin(), obeyed.end(),
                     [c](Range range) { return c >= range.first && c <= range.last; });
}

void appendHex(std::uint32_t value, int digits, std::string& out) {
  while (digits > 0) out += hexDigits[(value >> (4 * --digits)) & 0xFU];
}

void appendByte(char byte, std::string& out) {
  out += "\\x";
  appendHex(static_cast<unsigned char>(byte), 2, out);
}

void appendCharacter(char32_t c, std::string_view bytes, std::string& out) {
  if (isControl(c)) {
    out += "\\x";
    appendHex(c, 2, out);
  } else if (isObeyed(c)) {
    out += "\\u";
    appendHex(c, 4, out);
  } else {
    out += bytes;
  }
}

constexpr std::size_t unfinished = 0;
constexpr char32_t noCharacter = 0xFFFFFFFF;

struct Character {
  char32_t code = noCharacter;
  std::size_t length = 1;  // `unfinished`: its end is still to come
};

// The character that `bytes`, which are not empty, begin with; noCharacter for a byte that begins none.
Character firstOf(std::string_view bytes) {
  const auto lead = static_cast<unsigned char>(bytes[0]);
  if (lead < 0x80) return {lead, 1};
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4) return {};
  char32_t code = lead & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if (i == bytes.size()) return {noCharacter, unfinished};
    const auto next = static_cast<unsigned char>(bytes[i]);
    if ((next & 0xC0U) != 0x80) return {};
    code = code << 6U | (next & 0x3FU);
  }
  constexpr std::array<char32_t, 5> least{0, 0, 0x80, 0x800, 0x10000};
  const bool good = code >= least[length] && code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
  return good ? Character{code, length} : Character{};
}

}  // namespace

void TerminalText::append(std::string_view utf8, std::string& out) {
  pending_ += utf8;
  std::string_view rest = pending_;
  while (!rest.empty()) {
    if (rest[0] == '\r' && rest.size() == 1) break;
    const Character character = firstOf(rest);
    if (character.length == unfinished) break;
    const std::string_view bytes = rest.substr(0, character.length);
    if (character.code == noCharacter)
      appendByte(rest[0], out);
    else if (rest.starts_with("\r\n") || rest[0] == '\n' || rest[0] == '\t')
      out += bytes;
    else
      appendCharacter(character.code, bytes, out);
    rest.remove_prefix(bytes.size());
  }
  pending_.erase(0, pending_.size() - rest.size());
}

void TerminalText::finish(std::string& out) {
  for (const char byte : pending_) appendByte(byte, out);
  pending_.clear();
}

std::string onOneLine(std::u16string_view text) {
  std::string out;
  const std::string bytes = text::toUtf8(text);
  for (std::string_view rest = bytes; !rest.empty();) {
    const Character character = firstOf(rest);
    appendCharacter(character.code, rest.substr(0, character.length), out);
    rest.remove_prefix(character.length);
  }
  return out;
}

TerminalStream::TerminalStream(std::ostream& stream, Write write)
    : stream_(stream), before_(stream.rdbuf(this)), write_(write) {}

TerminalStream::~TerminalStream() {
  text_.finish(shown_);
  sync();
  stream_.rdbuf(before_);
}

TerminalStream::int_type TerminalStream::overflow(int_type character) {
  if (character == traits_type::eof()) return traits_type::not_eof(character);
  const char byte = traits_type::to_char_type(character);
  xsputn(&byte, 1);
  return character;
}

std::streamsize TerminalStream::xsputn(const char* bytes, std::streamsize count) {
  text_.append({bytes, static_cast<std::size_t>(count)}, shown_);
  if (shown_.ends_with('\n')) sync();
  return count;
}

int TerminalStream::sync() {
  if (!shown_.empty()) write_(shown_);
  shown_.clear();
  return 0;
}

}  // namespace vordane::tools
