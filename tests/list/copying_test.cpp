#include "list/copying.h"

#include <gtest/gtest.h>

#include "fakes/memory_rows.h"

namespace vordane::list {
namespace {

using fakes::MemoryRow;
using fakes::MemoryRows;
using State = Copying::State;

class CopyingTest : public testing::Test {
 protected:
  void SetUp() override {
    for (int i = 0; i < 6; ++i)
      rows.rows.push_back({u"0A", u"MJ", u"", u"", std::u16string(1, static_cast<char16_t>(u'a' + i)), i});
    desk.setStored(&rows, u"PBX-1");
  }
  static State finish(Copying& copying) {
    State state;
    do state = copying.work([] { return false; });
    while (state == State::atWork);
    return state;
  }

  MemoryRows rows;
  Desk desk;
  Sheet sheet{{}, {}, {}, {}, {u"K", u"C", u"D", u"P", u"F", u"N"}, 6, {u"T", u"A", u"M"}, u"({1}, {2})"};
};

TEST_F(CopyingTest, GathersStretchesAsLinesAndAsATable) {
  Copying copying(desk, {{1, 3}, {5, 6}}, RowForm::lines, sheet);
  EXPECT_EQ(copying.work([] { return false; }), State::atWork);
  EXPECT_EQ(copying.progress().done, 1U);
  EXPECT_EQ(copying.progress().of, 3U);
  EXPECT_EQ(finish(copying), State::complete);
  EXPECT_EQ(copying.text(),
            u"K\tC\tD\tP\tF\tN\tT\tA\tM\r\n0A\tMJ\t\t\tb\t1\t\t\t\r\n0A\tMJ\t\t\tc\t2\t\t\t\r\n0A\tMJ\t\t\tf"
            u"\t5\t\t\t\r\n");
  EXPECT_TRUE(copying.table().starts_with("<table>"));
  EXPECT_TRUE(copying.table().ends_with("</table>\r\n"));
  EXPECT_NE(copying.table().find("<td class=\"n\">5</td>"), std::string::npos);
  EXPECT_EQ(rows.fetched, 3U) << "no other row is read";
}

TEST_F(CopyingTest, OtherFormsHaveNoTable) {
  Copying copying(desk, {{0, 2}}, RowForm::messages, sheet);
  EXPECT_EQ(finish(copying), State::complete);
  EXPECT_EQ(copying.text(), u"a\r\n\r\nb\r\n");
  EXPECT_TRUE(copying.table().empty());
}

TEST_F(CopyingTest, ARowsOwnTextIsALineOfItsOwnAndAnEmptyOneIsNone) {
  Copying copying(desk, {{0, 3}}, [](std::size_t shown, const window::GridRow& row) {
    return shown == 1 ? std::u16string{} : row.description + row.description;
  });
  EXPECT_EQ(finish(copying), State::complete);
  EXPECT_EQ(copying.text(), u"aa\r\ncc\r\n");
}

TEST_F(CopyingTest, NotesGoWithTheirFaults) {
  rows.kept.notes[2] = {u"anna", u"2026/11/21 08:15", u"cable"};
  Copying lines(desk, {{1, 3}}, RowForm::lines, sheet);
  EXPECT_EQ(finish(lines), State::complete);
  EXPECT_EQ(lines.text(),
            u"K\tC\tD\tP\tF\tN\tT\tA\tM\r\n0A\tMJ\t\t\tb\t1\t\t\t\r\n"
            u"0A\tMJ\t\t\tc\t2\tcable\tanna\t2026/11/21 08:15\r\n");
  EXPECT_NE(lines.table().find("<td class=\"d\">cable<span><br>anna · 2026/11/21 08:15</span></td>"),
            std::string::npos);
  Copying messages(desk, {{1, 3}}, RowForm::messages, sheet);
  EXPECT_EQ(finish(messages), State::complete);
  EXPECT_EQ(messages.text(), u"b\r\n\r\nc\r\n(anna, 2026/11/21 08:15) cable\r\n");
}

TEST_F(CopyingTest, WhereNoNotesAreKeptTheirFieldsAreEmpty) {
  rows.kept.notes[2] = {u"anna", u"2026/11/21 08:15", u"cable"};
  rows.keepsNotes = false;
  Copying lines(desk, {{2, 3}}, RowForm::lines, sheet);
  EXPECT_EQ(finish(lines), State::complete);
  EXPECT_EQ(lines.text(), u"0A\tMJ\t\t\tc\t2\t\t\t\r\n");
}

TEST_F(CopyingTest, RowsThatHaveGoneAreLeftOut) {
  rows.rows[1].gone = true;
  Copying copying(desk, {{0, 3}}, RowForm::messages, sheet);
  EXPECT_EQ(finish(copying), State::complete);
  EXPECT_EQ(copying.text(), u"a\r\n\r\nc\r\n");
}

TEST_F(CopyingTest, AnErrorOfTheDatabaseEndsIt) {
  rows.failAtFetch = 1;
  Copying copying(desk, {{0, 3}}, RowForm::lines, sheet);
  EXPECT_EQ(finish(copying), State::failed);
  EXPECT_EQ(copying.failure(), u"damaged");
}

}  // namespace
}  // namespace vordane::list
