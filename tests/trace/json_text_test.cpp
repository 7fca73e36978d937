#include "trace/json_text.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <random>

#include "text/utf8.h"

namespace vordane::trace {
namespace {

std::string json(std::u16string_view text) {
  std::string out;
  appendJson(text, out);
  return out;
}

TEST(TraceText, StandsAsItIsWhereJsonLetsIt) {
  EXPECT_EQ(json(u""), R"("")");
  EXPECT_EQ(json(u"15 MJ MP000"), R"("15 MJ MP000")");
  EXPECT_EQ(json(u"~ }[{:,/'"), R"("~ }[{:,/'")");
}

TEST(TraceText, QuotesAndControlCharactersAreEscapedWhereverTheyStand) {
  for (std::size_t i = 0; i < 9; ++i) {
    const std::u16string before(i, u'x');
    const std::string same(i, 'x');
    const auto check = [&](std::u16string_view wrong, const std::string& escaped) {
      EXPECT_EQ(json(before + std::u16string(wrong) + u"yyyy"), '"' + same + escaped + "yyyy\"");
    };
    check(u"\"", R"(\")");
    check(u"\\", R"(\\)");
    check(std::u16string_view(u"\0", 1), R"(\u0000)");
    check(u"\x1F", R"(\u001f)");
    check(u"\n", R"(\u000a)");
    check(u"\x7F", "\x7F");
    check(u"\x80", "\xC2\x80");
  }
}

TEST(TraceText, OtherScriptsAreUtf8AndHalvesOfCharactersAreKept) {
  EXPECT_EQ(json(u"Büro 電話 \U0001F600"), "\"B\xC3\xBCro \xE9\x9B\xBB\xE8\xA9\xB1 \xF0\x9F\x98\x80\"");
  EXPECT_EQ(json(std::u16string{u'a', 0xD800}), R"("a\ud800")");
  EXPECT_EQ(json(std::u16string{0xDC00, u'b'}), R"("\udc00b")");
  EXPECT_EQ(json(std::u16string{0xD800, 0xD800, 0xDC00}), "\"\\ud800\xF0\x90\x80\x80\"");
}

TEST(TraceText, AnyTextIsReadBackAsItWas) {
  std::mt19937 random(7);
  constexpr char16_t kinds[] = {0,    0x0A, u' ',  u'"',  u'\\',  u'a',  u'~',
                                0x7F, 0xFF, 0x7FF, 0x800, 0xFFFD, 0xFFFF};
  for (int round = 0; round < 2000; ++round) {
    std::u16string text;
    for (std::size_t i = random() % 40; i > 0; --i) {
      const unsigned any = random() % 16;
      text += any < std::size(kinds) ? kinds[any] : static_cast<char16_t>(u'0' + random() % 40);
      if (any == 15) text += u"\U0001F600";
    }
    ASSERT_EQ(nlohmann::json::parse(json(text)).get<std::string>(), text::toUtf8(text));
  }
  const std::u16string million(1 << 20, u'"');
  EXPECT_EQ(json(million).size(), 2 * million.size() + 2);
}

TEST(TraceText, MomentsAreUtcToTheMicrosecond) {
  const auto text = [](Moment moment) {
    std::string out;
    appendMoment(moment, out);
    return out;
  };
  EXPECT_EQ(text(0), "1970-01-01T00:00:00.000000Z");
  EXPECT_EQ(text(1'795'416'312'345'678), "2026-11-23T06:45:12.345678Z");
  EXPECT_EQ(text(951'782'399'999'999), "2000-02-28T23:59:59.999999Z");
  EXPECT_EQ(stampOf(1'795'416'312'345'678), "20261123-064512");
  EXPECT_EQ(hexadecimal(static_cast<std::int32_t>(0x800A01AD)), "0x800a01ad");
}

}  // namespace
}  // namespace vordane::trace
