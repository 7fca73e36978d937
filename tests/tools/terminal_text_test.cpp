#include "terminal_text.h"

#include <gtest/gtest.h>

#include <sstream>

namespace vordane::tools {
namespace {

std::string shown(std::string_view utf8) {
  std::string out;
  TerminalText text;
  text.append(utf8, out);
  text.finish(out);
  return out;
}

TEST(TerminalText, LetsTextOfEveryLanguagePass) {
  for (const char* text :
       {"PBX-1", "Станция №2", "交換機１号", "bell \xF0\x9F\x94\x94", "a\tb\nc\r\nd", "back\\slash", ""})
    EXPECT_EQ(shown(text), text);
}

TEST(TerminalText, ShowsWhatATerminalWouldObey) {
  EXPECT_EQ(shown("\x1B[31mred\x1B[0m"), "\\x1B[31mred\\x1B[0m");
  EXPECT_EQ(shown(std::string_view("\0\a\b\x7F", 4)), "\\x00\\x07\\x08\\x7F");
  EXPECT_EQ(shown("\xC2\x9B"
                  "2J \xC2\x80 \xC2\x9F \xC2\xA0."),
            "\\x9B2J \\x80 \\x9F \xC2\xA0.");  // C1, then a blank
  EXPECT_EQ(shown("over\rwritten"), "over\\x0Dwritten");
  EXPECT_EQ(shown("a\u200Eb\u200Fc\u061Cd"), "a\\u200Eb\\u200Fc\\u061Cd");
  EXPECT_EQ(shown("\u202A\u202B\u202C\u202D\u202E"), "\\u202A\\u202B\\u202C\\u202D\\u202E");
  EXPECT_EQ(shown("\u2066\u2067\u2068\u2069"), "\\u2066\\u2067\\u2068\\u2069");
  EXPECT_EQ(shown("\u2028\u2029\uFEFF\uFFF9\uFFFB"), "\\u2028\\u2029\\uFEFF\\uFFF9\\uFFFB");
  EXPECT_EQ(shown("\u200D\u2027\u202F\u2065\u206A"),
            "\u200D\u2027\u202F\u2065\u206A");  // their neighbours are text
}

TEST(TerminalText, ShowsBytesThatAreNoCharacters) {
  EXPECT_EQ(shown("\x9B"), "\\x9B");
  EXPECT_EQ(shown("\xC0\x9B."), "\\xC0\\x9B.");  // a longer spelling of ESC
  EXPECT_EQ(shown("\xE0\x82\x9B."), "\\xE0\\x82\\x9B.");
  EXPECT_EQ(shown("\xED\xA0\x80."), "\\xED\\xA0\\x80.");  // half of a pair
  EXPECT_EQ(shown("\xF4\x90\x80\x80."), "\\xF4\\x90\\x80\\x80.");
  EXPECT_EQ(shown("\xD0x\xE2\x82"), "\\xD0x\\xE2\\x82");
}

TEST(TerminalText, PiecesAreOneText) {
  const std::string_view whole = "\x1B[1mЖ\u202E日\xF0\x9F\x94\x94\r\n\rx\xC2\x9B";
  TerminalText text;
  std::string out;
  for (const char byte : whole) text.append({&byte, 1}, out);
  text.finish(out);
  EXPECT_EQ(out, shown(whole));
  EXPECT_EQ(out, "\\x1B[1mЖ\\u202E日\xF0\x9F\x94\x94\r\n\\x0Dx\\x9B");
}

TEST(OnOneLine, NothingLeavesTheLine) {
  EXPECT_EQ(onOneLine(u"PBX\r\nmajor alarm\t\x1B[2K\u202EЖ"),
            "PBX\\x0D\\x0Amajor alarm\\x09\\x1B[2K\\u202EЖ");
  EXPECT_EQ(onOneLine(u""), "");
}

std::string heard;

TEST(TerminalStream, ShowsWhatAStreamSaysAndLetsGoOfIt) {
  heard.clear();
  std::ostringstream stream;
  {
    TerminalStream terminal(stream, [](std::string_view text) { heard += "<" + std::string(text) + ">"; });
    stream << "name \x1B[2J" << '\n' << "half";
    EXPECT_EQ(heard, "<name \\x1B[2J\n>");
    stream << std::flush << " \xD0";
    EXPECT_EQ(heard, "<name \\x1B[2J\n><half>");
  }
  EXPECT_EQ(heard, "<name \\x1B[2J\n><half>< \\xD0>");
  stream << "after";
  EXPECT_EQ(stream.str(), "after");
}

}  // namespace
}  // namespace vordane::tools
