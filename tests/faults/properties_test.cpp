// What holds for every record, shown on many random and hostile ones.
#include <gtest/gtest.h>

#include <map>
#include <random>

#include "random_records.h"
#include "recognisable_texts.h"
#include "text/text.h"
#include "text/utf8.h"

namespace vordane::faults {
namespace {

constexpr int rounds = 60000;

std::size_t lineEnds(std::u16string_view text) {
  std::size_t count = 0;
  for (auto at = text.find(u"\r\n"); at != std::u16string_view::npos; at = text.find(u"\r\n", at + 2))
    ++count;
  return count;
}

// Title, detail and trailer are three lines; some kinds have more detail lines.
std::size_t expectedLineEnds(const FaultKind& row) {
  static const std::map<int, std::size_t> longer = {{0x04, 4}, {0x3B, 4}, {0x48, 5}, {0x49, 4}};
  const auto found = longer.find(row.kind);
  return found == longer.end() ? 2 : found->second;
}

TEST(Properties, EveryDescriptionBeginsWithItsTitleAndEndsWithItsData) {
  Decoder decode;
  RandomRecords records(1);
  for (int i = 0; i < rounds; ++i) {
    const RandomRecord record = records.next();
    decode.wide = (i & 1) != 0;
    const std::u16string description = decode(record.kind, record.first, record.second);
    const FaultKind& row = kindIndex[text::hexField(text::left(record.kind, 2))];
    const std::u16string data = record.first + u" " + record.second;
    ASSERT_TRUE(description.starts_with(message(row.title) + u"\r\n")) << text::toUtf8(description);
    ASSERT_TRUE(description.ends_with(u"\r\nM5 M6" + data + u"M7")) << text::toUtf8(description);
  }
}

TEST(Properties, TheNumberOfLinesIsTheKindsOwn) {
  Decoder decode;
  RandomRecords records(2);
  for (int i = 0; i < rounds; ++i) {
    const RandomRecord record = records.next();
    const FaultKind& row = kindIndex[text::hexField(text::left(record.kind, 2))];
    const std::u16string data = record.first + u" " + record.second;
    if (data.find_first_of(u"\r\n") != std::u16string::npos) continue;  // raw values may show these
    ASSERT_EQ(lineEnds(decode(record.kind, record.first, record.second)), expectedLineEnds(row))
        << text::toUtf8(record.kind) << ' ' << text::toUtf8(data);
  }
}

TEST(Properties, OnlyThreeKindsDependOnTheWidth) {
  Decoder wide, narrow;
  narrow.wide = false;
  RandomRecords records(3);
  for (int i = 0; i < rounds; ++i) {
    const RandomRecord record = records.next();
    const int kind = kindIndex[text::hexField(text::left(record.kind, 2))].kind;
    if (kind == 0x04 || kind == 0x08 || kind == 0x18) continue;
    ASSERT_EQ(wide(record.kind, record.first, record.second),
              narrow(record.kind, record.first, record.second));
  }
}

TEST(Properties, OnlyTheJoinedDataCounts) {
  Decoder decode;
  RandomRecords records(4);
  for (int i = 0; i < rounds; ++i) {
    const RandomRecord record = records.next();
    const std::u16string joined = record.first + u" " + record.second;
    const auto blank = joined.rfind(u' ');
    const std::u16string other = decode(record.kind, joined.substr(0, blank), joined.substr(blank + 1));
    ASSERT_EQ(decode(record.kind, record.first, record.second), other);
  }
}

TEST(Properties, MissingTextsNeverCrash) {
  std::mt19937 random(5);
  RandomRecords records(6);
  for (int texts = 0; texts < 60; ++texts) {
    FaultTextTable some;
    for (int number = 0; number <= lastMessage; ++number)
      if (random() % 8 != 0 || number < 8) some.setMessage(number, message(number));
    for (const FaultKind& row : faultKinds) {
      if (row.list == noList || random() % 4 == 0) continue;
      some.setList(row.list, std::vector<std::u16string>(random() % 18, u"-"));
    }
    const bool wide = true;
    const cFaultDisplay display(some, wide);
    for (int i = 0; i < 500; ++i) {
      const RandomRecord record = records.next();
      const std::u16string description = display.GetFaultMessage(record.kind, record.first, record.second);
      ASSERT_TRUE(description.empty() || description.ends_with(u"M7"));
    }
  }
}

}  // namespace
}  // namespace vordane::faults
