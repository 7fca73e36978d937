#include <gtest/gtest.h>

#include "random_records.h"
#include "recognisable_texts.h"
#include "text/text.h"
#include "text/utf8.h"

namespace vordane::faults {
namespace {

using Source = cFaultDisplay::Source;
using Sources = std::vector<Source>;

std::u16string joined(const cFaultDisplay::Pieces& pieces) {
  std::u16string text;
  for (const cFaultDisplay::Piece& piece : pieces) text += piece.text;
  return text;
}

// The pieces that came from the data, without the trailer's.
std::vector<std::pair<std::u16string, Sources>> values(cFaultDisplay::Pieces pieces) {
  std::vector<std::pair<std::u16string, Sources>> found;
  for (const cFaultDisplay::Piece& piece : pieces)
    if (!piece.sources.empty()) found.emplace_back(piece.text, piece.sources);
  if (!found.empty()) found.pop_back();
  return found;
}

using Values = std::vector<std::pair<std::u16string, Sources>>;

class Explain : public testing::Test {
 protected:
  Values explain(std::u16string_view record, std::u16string_view data) {
    return values(decode.display.explain(record, data, u""));
  }
  Decoder decode;
};

TEST_F(Explain, ThePiecesJoinedAreTheDescription) {
  RandomRecords records(7);
  for (int i = 0; i < 60000; ++i) {
    const RandomRecord record = records.next();
    decode.wide = (i & 1) != 0;
    ASSERT_EQ(joined(decode.display.explain(record.kind, record.first, record.second)),
              decode(record.kind, record.first, record.second));
  }
}

TEST_F(Explain, NoSourceLiesOutsideTheData) {
  RandomRecords records(8);
  for (int i = 0; i < 60000; ++i) {
    const RandomRecord record = records.next();
    const std::size_t size = record.first.size() + 1 + record.second.size();
    for (const auto& piece : decode.display.explain(record.kind, record.first, record.second))
      for (const Source& source : piece.sources) {
        ASSERT_LT(source.begin, source.end);
        ASSERT_LE(source.end, size);
      }
  }
}

// Whatever character is changed: only values that name it as their source may read differently, as long
// as the layout stays. Layouts depend on the data in kinds 04 and 17 and where digits stop or are skipped.
TEST_F(Explain, ACharacterThatNoValueNamesChangesNoValue) {
  const std::u16string data = u"01 02 01 01 12 34 56 02";
  for (const FaultKind& row : faultKinds) {
    const std::u16string record{u"0123456789ABCDEF"[row.kind / 16], u"0123456789ABCDEF"[row.kind % 16]};
    const Values before = explain(record, data);
    for (std::size_t at = 0; at < data.size(); ++at) {
      std::u16string changed = data;
      changed[at] = u'3';
      const Values after = explain(record, changed);
      for (std::size_t i = 0; i < before.size() && after.size() == before.size(); ++i) {
        const bool named = std::any_of(before[i].second.begin(), before[i].second.end(),
                                       [&](const Source& s) { return s.begin <= at && at < s.end; });
        const bool changes = before[i].first != after[i].first;
        EXPECT_TRUE(named || !changes) << text::toUtf8(record) << ' ' << at;
      }
    }
  }
}

TEST_F(Explain, ValuesNameTheirCharacters) {
  EXPECT_EQ(explain(u"01", u"0C"), (Values{{u"K01.12", {{1, 2}}}}));
  EXPECT_EQ(explain(u"05", u"1F 07"), (Values{{u"007", {{3, 5}}}, {u"1F", {{0, 2}}}}));
  EXPECT_EQ(explain(u"40", u"0C 1F"), (Values{{u"12", {{0, 2}}}, {u"31", {{3, 5}}}}));
  EXPECT_EQ(explain(u"12", u"05 00 01 28"), (Values{{u"K12.5", {{0, 2}}}, {u"128", {{6, 8}, {9, 11}}}}));
  EXPECT_EQ(explain(u"17", u"10 34 12"), (Values{{u"K17.16", {{0, 2}}}, {u"4660", {{6, 8}, {3, 5}}}}));
  EXPECT_EQ(explain(u"16", u"05"), (Values{{u"K16.5", {{0, 2}}}, {u"5", {{0, 2}}}}));
  EXPECT_EQ(explain(u"23", u"02 2A"), (Values{{u"K23.2", {{1, 2}}}, {u"042", {{3, 5}}}}));
  EXPECT_EQ(explain(u"28", u"03 01"), (Values{{u"03", {{1, 2}}}, {u"K28.1", {{4, 5}}}}));
  EXPECT_EQ(explain(u"13", u"05 00 81 21"), (Values{{u"M90", {{6, 8}, {9, 11}}}, {u"5", {{0, 2}}}}));
}

TEST_F(Explain, AValueWithoutATextStillNamesItsCharacters) {
  EXPECT_EQ(explain(u"43", u"00 35"), (Values{{u"", {{3, 4}, {4, 5}}}}));
  EXPECT_EQ(explain(u"2C", u"75"), (Values{{u"", {{0, 1}}}, {u"5", {{1, 2}}}}));
}

TEST_F(Explain, EachDigitNamesItsOwnCharacter) {
  EXPECT_EQ(explain(u"26", u"03 00 00 1A F0"),
            (Values{{u"K26.3", {{0, 2}}}, {u"1", {{9, 10}}}, {u"A", {{10, 11}}}}));
  EXPECT_EQ(explain(u"27", u"01 1F 2F"), (Values{{u"M50", {{1, 2}}}, {u"1", {{3, 4}}}, {u"2", {{6, 7}}}}));
}

TEST_F(Explain, ShortDataIsNoSource) {
  EXPECT_EQ(explain(u"40", u"0C"), (Values{{u"12", {{0, 2}}}}));
  EXPECT_EQ(explain(u"21", u""), (Values{{u"0", {{0, 1}}}}));  // the blank between both data texts
}

TEST_F(Explain, TheTrailerNamesTheWholeData) {
  const auto pieces = decode.display.explain(u"02", u"01", u"02");
  ASSERT_EQ(pieces.size(), 8u);
  EXPECT_EQ(pieces[6].text, u"01 02");
  EXPECT_EQ(pieces[6].sources, (Sources{{0, 5}}));
}

TEST_F(Explain, NothingIsExplainedWhereNothingIsShown) {
  const FaultTextTable texts = textsWithoutMessage(7);
  const bool wide = true;
  EXPECT_TRUE(cFaultDisplay(texts, wide).explain(u"02", u"01", u"02").empty());
}

// Every text of another language: "N5" for message 5, "L01.0" for the item "K01.0".
FaultTextTable otherWords() {
  FaultTextTable texts;
  for (int number = 0; number <= lastMessage; ++number)
    texts.setMessage(number, u"N" + message(number).substr(1));
  for (const FaultKind& row : faultKinds)
    for (int code = 0; row.list != noList && code < itemCount(row); ++code)
      texts.addItem(row.list, u"L" + item(row.list, code).substr(1));
  return texts;
}

class TranslateStored : public Explain {
 protected:
  std::string translate(std::u16string_view kind, std::u16string_view description) {
    return text::toUtf8(joined(decode.display.translateStored(kind, description, other)));
  }
  FaultTextTable other = otherWords();
};

TEST_F(TranslateStored, SaysTheSameInTheOtherWords) {
  EXPECT_EQ(translate(u"01", u"M9\r\nM14 K01.0\r\nM5 M600 11 M7"), "N9\r\nN14 L01.0\r\nN5 N600 11 N7");
}

TEST_F(TranslateStored, IsWhatDecodingGivesForEveryRecordInEitherWidth) {
  RandomRecords records(11);
  for (int i = 0; i < 20000; ++i) {
    const RandomRecord record = records.next();
    decode.wide = (i & 1) != 0;
    const std::u16string stored = decode(record.kind, record.first, record.second);
    const std::u16string expected =
        cFaultDisplay(other, decode.wide).GetFaultMessage(record.kind, record.first, record.second);
    ASSERT_EQ(translate(record.kind, stored), text::toUtf8(expected)) << i;
  }
}

// The exchange's fields may have been of the other width when it was stored.
TEST_F(TranslateStored, KeepsTheWidthThatTheFaultWasStoredWith) {
  const std::u16string stored = decode(u"04", u"10 63 C5");
  decode.wide = false;
  EXPECT_EQ(translate(u"04", stored), "N18\r\nN19\r\n N6N20 99N21N7\r\n N6N23 197N7\r\nN5 N610 63 C5 N7");
  EXPECT_EQ(translate(u"04", decode(u"04", u"10 63 C5")),
            "N18\r\nN19\r\n N6N20 99N21N7\r\n N6N23 05N7\r\nN5 N610 63 C5 N7");
}

TEST_F(TranslateStored, LeavesAloneWhatIsNotLetterForLetterWhatDecodingGives) {
  const std::u16string stored = decode(u"01", u"00", u"11");
  const std::size_t data = stored.rfind(u"00 11");
  for (std::size_t at = 0; at < stored.size(); ++at) {
    if (at >= data && at < data + 5) continue;  // other data: another fault, and it decodes
    std::u16string changed = stored;
    changed[at] = changed[at] == u'x' ? u'y' : u'x';
    EXPECT_EQ(translate(u"01", changed), "") << at;
  }
  EXPECT_EQ(translate(u"01", stored + u" "), "");
  EXPECT_EQ(translate(u"01", stored.substr(0, stored.size() - 1)), "");
  EXPECT_EQ(translate(u"01", stored.substr(1)), "");
  EXPECT_EQ(translate(u"02", stored), "") << "of another kind";
  EXPECT_EQ(translate(u"01", u""), "");
  EXPECT_EQ(translate(u"", u"a text of somebody else"), "");
  EXPECT_EQ(translate(u"01", u"N9\r\nN14 L01.0\r\nN5 N600 11 N7"), "") << "stored in the other language";
}

TEST_F(TranslateStored, GivesNothingWhereTheOtherLanguageLacksAText) {
  const std::u16string stored = decode(u"01", u"00", u"11");
  other = otherWords();
  FaultTextTable without;
  for (int number = 0; number <= lastMessage; ++number)
    if (number != 14) without.setMessage(number, *other.message(number));
  for (int code = 0; other.item(1, code) != nullptr; ++code) without.addItem(1, *other.item(1, code));
  EXPECT_TRUE(decode.display.translateStored(u"01", stored, without).empty());
}

class ExplainStored : public Explain {
 protected:
  std::u16string data;
};

TEST_F(ExplainStored, FindsTheDataInTheTrailer) {
  const auto pieces = decode.display.explainStored(u"12", decode(u"12", u"05 00", u"01 28"), data);
  EXPECT_EQ(data, u"05 00 01 28");
  EXPECT_EQ(values(pieces), (Values{{u"K12.5", {{0, 2}}}, {u"128", {{6, 8}, {9, 11}}}}));
}

TEST_F(ExplainStored, ExplainsWhateverWasDecoded) {
  RandomRecords records(9);
  for (int i = 0; i < 20000; ++i) {
    const RandomRecord record = records.next();
    decode.wide = (i & 1) != 0;
    const std::u16string description = decode(record.kind, record.first, record.second);
    decode.wide = (i & 2) != 0;  // the exchange shown now need not be the one that sent the fault
    ASSERT_EQ(joined(decode.display.explainStored(record.kind, description, data)), description);
    ASSERT_EQ(data, record.first + u" " + record.second);
  }
}

TEST_F(ExplainStored, MarksNothingInADescriptionThatComesOutDifferently) {
  const std::u16string description = decode(u"21", u"05");
  EXPECT_TRUE(decode.display.explainStored(u"22", description, data).empty());
  EXPECT_TRUE(decode.display.explainStored(u"21", description + u" ", data).empty());
  EXPECT_TRUE(decode.display.explainStored(u"21", u"", data).empty());
  EXPECT_TRUE(
      decode.display.explainStored(u"21", description.substr(0, description.size() - 1), data).empty());
  EXPECT_TRUE(decode.display.explainStored(u"21", u"M5 M6M7", data).empty());
  EXPECT_TRUE(decode.display.explainStored(u"21", u"M40\r\n M6M41 5M7\r\nM5 M605M7", data).empty());
  decode.texts.setMessage(41, u"another text");
  EXPECT_TRUE(decode.display.explainStored(u"21", description, data).empty());
  EXPECT_EQ(data, u"");
}

TEST_F(ExplainStored, SurvivesTextsThatOverlap) {
  decode.texts.setMessage(6, u"x");
  decode.texts.setMessage(7, u"x");
  EXPECT_TRUE(decode.display.explainStored(u"21", u"\r\nM5 x", data).empty());
  const std::u16string description = decode(u"21", u"05");
  EXPECT_EQ(joined(decode.display.explainStored(u"21", description, data)), description);
}

}  // namespace
}  // namespace vordane::faults
