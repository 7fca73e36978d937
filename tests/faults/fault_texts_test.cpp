#include "faults/fault_texts.h"

#include <gtest/gtest.h>

namespace vordane {
namespace {

TEST(ListKind, KnowsTheListsByName) {
  EXPECT_EQ(listKind(u"cboFK01"), 0x01);
  EXPECT_EQ(listKind(u"cboFK2B"), 0x2B);
  EXPECT_EQ(listKind(u"CBOfk2b"), 0x2B);
  EXPECT_EQ(listKind(u"cboFK"), std::nullopt);
  EXPECT_EQ(listKind(u"cboFK1"), std::nullopt);
  EXPECT_EQ(listKind(u"cboFK1G"), std::nullopt);
  EXPECT_EQ(listKind(u"cboFK012"), std::nullopt);
  EXPECT_EQ(listKind(u"drpPBXList"), std::nullopt);
}

TEST(FaultTextTable, KeepsGapsBetweenMessages) {
  FaultTextTable texts;
  texts.setMessage(3, u"three");
  EXPECT_EQ(texts.message(2), nullptr);
  ASSERT_NE(texts.message(3), nullptr);
  EXPECT_EQ(*texts.message(3), u"three");
  EXPECT_EQ(texts.message(4), nullptr);
  EXPECT_EQ(texts.message(-1), nullptr);
}

TEST(FaultTextTable, TakesAMessageArrayAsItIs) {
  FaultTextTable texts;
  texts.setMessage(9, u"old");
  texts.setMessages({u"zero", u""});
  EXPECT_EQ(*texts.message(0), u"zero");
  EXPECT_EQ(*texts.message(1), u"");
  EXPECT_EQ(texts.message(9), nullptr);
}

// What a message is joined with may be set before it, behind it, and anew.
TEST(FaultTextTable, JoinsTheMessagesAsTheyAreNow) {
  FaultTextTable texts;
  texts.setMessage(41, u"Line");
  EXPECT_EQ(texts.find(41)->text, u"Line");
  EXPECT_EQ(texts.find(41)->line, u"Line\r\n");
  EXPECT_EQ(texts.find(41)->opening, u" Line ");
  texts.setMessage(faults::openBracket, u"<");
  EXPECT_EQ(texts.find(41)->opening, u" <Line ");
  EXPECT_EQ(texts.rawDataOpening(), u"\r\n <");
  texts.setMessage(faults::rawDataHeading, u"Bytes");
  EXPECT_EQ(texts.rawDataOpening(), u"\r\nBytes <");
  texts.setMessage(41, u"Port");
  EXPECT_EQ(texts.find(41)->line, u"Port\r\n");
  EXPECT_EQ(texts.find(41)->opening, u" <Port ");
  texts.setMessage(faults::openBracket, u"{");
  EXPECT_EQ(texts.find(41)->opening, u" {Port ");
  EXPECT_EQ(texts.rawDataOpening(), u"\r\nBytes {");
  texts.setMessages({u"", u"", u"", u"", u"", u"Data", u"("});
  EXPECT_EQ(texts.find(1)->opening, u" ( ");
  EXPECT_EQ(texts.rawDataOpening(), u"\r\nData (");
}

TEST(FaultTextTable, TellsAnEmptyListFromNone) {
  FaultTextTable texts;
  texts.setList(0x11, {});
  texts.addItem(0x12, u"zero");
  EXPECT_TRUE(texts.hasList(0x11));
  EXPECT_EQ(texts.item(0x11, 0), nullptr);
  EXPECT_FALSE(texts.hasList(0x13));
  EXPECT_EQ(texts.item(0x13, 0), nullptr);
  EXPECT_EQ(*texts.item(0x12, 0), u"zero");
  EXPECT_EQ(texts.item(0x12, 1), nullptr);
  EXPECT_EQ(texts.item(0x12, -1), nullptr);
  EXPECT_FALSE(texts.hasList(-1));
  EXPECT_FALSE(texts.hasList(256));
}

}  // namespace
}  // namespace vordane
