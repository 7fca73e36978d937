#include "faults/stored_words.h"

#include <gtest/gtest.h>

#include "faults/kind_lists.h"

namespace vordane {
namespace {

FaultTextTable texts() {
  FaultTextTable table;
  for (int number = 0; number <= 170; ++number)
    table.setMessage(number, u"m" + std::u16string(1, static_cast<char16_t>(u'0' + number)));
  for (const KindList& list : kindLists)
    for (int item = 0; item < 3; ++item) table.addItem(list.kind, u"item");
  return table;
}

// Kept in stores, so it must stay what it is.
TEST(StoredWords, HaveAMarkThatNeverChanges) {
  EXPECT_EQ(markOfStoredWords(FaultTextTable{}), u"a38e3beab378e8d5");
  EXPECT_EQ(markOfStoredWords(texts()), u"dda97513b128d246");
}

TEST(StoredWords, AreMessages5To164AndTheLists) {
  const std::u16string mark = markOfStoredWords(texts());
  for (int number = 0; number <= 170; ++number) {
    FaultTextTable other = texts();
    other.setMessage(number, u"other");
    EXPECT_EQ(markOfStoredWords(other) != mark, number >= 5 && number <= 164) << number;
  }
  for (const KindList& list : kindLists) {
    FaultTextTable longer = texts();
    longer.addItem(list.kind, u"");
    EXPECT_NE(markOfStoredWords(longer), mark) << list.kind;
    FaultTextTable other = texts();
    other.setList(list.kind, {u"item", u"item", u"Item"});
    EXPECT_NE(markOfStoredWords(other), mark) << list.kind;
  }
}

TEST(StoredWords, TellAnEmptyTextFromNoneAndWhereOneEnds) {
  FaultTextTable none, empty, joined, apart;
  empty.setMessage(5, u"");
  EXPECT_NE(markOfStoredWords(none), markOfStoredWords(empty));
  joined.setMessage(5, u"ab");
  joined.setMessage(6, u"c");
  apart.setMessage(5, u"a");
  apart.setMessage(6, u"bc");
  EXPECT_NE(markOfStoredWords(joined), markOfStoredWords(apart));
}

}  // namespace
}  // namespace vordane
