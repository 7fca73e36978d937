// How statements are taken apart, and which are refused.
#include <gtest/gtest.h>

#include "platform/database.h"
#include "platform/jet.h"
#include "startup/databases.h"

namespace vordane::jet {
namespace {

bool runs(std::u16string_view statement) {
  try {
    Lifted lifted;
    Documented(startup::databases).require(statement, lifted);
    return true;
  } catch (const database::DatabaseError& error) {
    EXPECT_EQ(error.number(), 3075);
    return false;
  }
}

TEST(Statements, AShapeHoldsNoValue) {
  Lifted lifted;
  lift(u"Select * FROM PBXList WHERE PBXName = \"a \"\"b\"\" 'c'\" ;", lifted);
  EXPECT_EQ(lifted.shape, u"select * from [pbxlist] where [pbxname] = '");
  ASSERT_EQ(lifted.literals.size(), 1U);
  EXPECT_EQ(lifted.literals[0].text, u"a \"b\" 'c'");
  lift(u"DELETE FROM FaultDisplay WHERE ID = -12", lifted);
  EXPECT_EQ(lifted.literals[0].number, -12);
}

TEST(Statements, EveryDocumentedOneRuns) {
  for (const char16_t* statement :
       {u"Select * FROM PBXList WHERE PBXName = \"x\"",
        u"Select * FROM PBXList",
        u"Select * from FaultDisplay",
        u"Select * FROM FaultDisplay WHERE ID = 1 AND Fault = '01' AND CPU = 'MP   ' AND Alarm = 'MJ' AND "
        u"Date = "
        u"'2006' AND Description = \"a\r\nb\"",
        u"SELECT * FROM PBXList Order by [TimeStamp] Desc",
        u"SELECT * FROM PBXList WHERE PBXName = 'x' AND ID = 1",
        u"SELECT * FROM FaultDisplay Order by [Date] Desc",
        u"SELECT * FROM FaultDisplay WHERE ID = 5 Order by [CPU] Desc ,[Fault] Desc, [Alarm] Desc, [Date] "
        u"Desc, "
        u"[Count] Desc, [Description] Desc",
        u"DELETE FROM PBXList WHERE ID = 1",
        u"DELETE FROM FaultDisplay WHERE ID = 1",
        u"select Caption,FontName,FontSize from tForms where ObjectName = 'dlgFaultDisplay'",
        u"select ObjectName,Index,Caption,FontName,FontSize,ToolTipText from tControls where FormName = 'x'",
        u"select ObjectName,Index,List,ItemData,Visible from tComboBoxDT where FormName = 'x' ORDER BY "
        u"ListIndex",
        u"select ObjectName,Index,ColIndex,Caption from tSSGridsHD where FormName = 'x'",
        u"select * from tProject where EXEName = 'VORDANE'",
        u"SELECT * FROM tMessages UNION SELECT -1, COUNT(*) FROM tMessages ORDER BY ID",
        u"select Prompt,Buttons,Title from tMsgBox where MsgNo = 102",
        u"select Prompt, Buttons, Title, HelpFile, Context from tMsgBox where MsgNo = 102",
        u"select ObjectName,Index,FileName,BasePanel,BasePanelIndex from tPicture where FormName = 'x'",
        u"Select * From PictureFileName Where  ID = 3",
        u"SELECT * FROM Registry WHERE AppName = \"VORDANE.WRX\"",
        u"SELECT * FROM Options WHERE Key = 7",
        u"SELECT * FROM Options WHERE Key = +7;"})
    EXPECT_TRUE(runs(statement));
}

TEST(Statements, EverythingElseIsASyntaxError) {
  for (const char16_t* statement :
       {u"",
        u";",
        u"Select",
        u"Select * FROM",
        u"Select * FROM PBXList WHERE",
        u"Select * FROM PBXList;;",
        u"Select * FROM PBXList; DELETE FROM PBXList WHERE ID = 1",
        u"Select * FROM PBXList -- x",
        u"Select * FROM PBXList WHERE PBXName = \"x",
        u"Select * FROM PBXList WHERE PBXName = \"x\" OR ID = 1",
        u"Select * FROM PBXList WHERE PBXName = \"x\" AND PBXName = \"y\"",
        u"Select * FROM PBXList WHERE PBXName = x",
        u"Select * FROM PBXList WHERE PBXName = 5",
        u"Select * FROM PBXList WHERE ID = 1",
        u"SELECT * FROM Options WHERE Key = ",
        u"SELECT * FROM Options WHERE Key = 1x",
        u"SELECT * FROM Options WHERE Key = 1.5",
        u"SELECT * FROM Options WHERE Key = - 1",
        u"SELECT * FROM Options WHERE Key = 1 ORDER BY Key",
        u"SELECT * FROM Options WHERE Key = 1; x",
        u"SELECT * FROM Options WHERE Key = '1'",
        u"SELECT * FROM Options WHERE Key = --1",
        u"DELETE FROM FaultDisplay",
        u"DELETE FROM FaultDisplay WHERE Count = 1",
        u"DELETE FROM Options WHERE Key = 1",
        u"DROP TABLE PBXList",
        u"UPDATE PBXList SET MJ = 1",
        u"PRAGMA encoding",
        u"ATTACH 'x' AS y",
        u"SELECT * FROM tMessages UNION SELECT -2, COUNT(*) FROM tMessages ORDER BY ID",
        u"SELECT * FROM tMessages UNION SELECT -1, COUNT(*) FROM tForms ORDER BY ID",
        u"SELECT * FROM [PBXList",
        u"SELECT * FROM []",
        u"Select * FROM PBXList WHERE PBXName = #1#"})
    EXPECT_FALSE(runs(statement)) << testing::PrintToString(std::u16string(statement));
}

TEST(Statements, AKnownSkeletonIsTakenForTheSameOnlyWhenItIs) {
  const std::u16string first = u"SELECT * FROM PBXList WHERE PBXName = 'a' AND ID = 1";
  Lifted lifted;
  lift(first, lifted);
  const Skeleton skeleton(first, lifted);
  std::vector<Literal> literals;
  ASSERT_TRUE(
      skeleton.match(u"SELECT * FROM PBXList WHERE PBXName = 'PBX \"2\"; --' AND ID = -17", literals));
  EXPECT_EQ(literals[0].text, u"PBX \"2\"; --");
  EXPECT_EQ(literals[1].number, -17);
  ASSERT_TRUE(skeleton.match(u"SELECT * FROM PBXList WHERE PBXName = '' AND ID = 0", literals));
  for (const char16_t* other :
       {u"SELECT * FROM PBXList WHERE PBXName = 'it''s' AND ID = 1",
        u"SELECT * FROM PBXList WHERE PBXName = 'it's' AND ID = 1",
        u"SELECT * FROM PBXList WHERE PBXName = 'a' AND ID = ",
        u"SELECT * FROM PBXList WHERE PBXName = 'a' AND ID = -",
        u"SELECT * FROM PBXList WHERE PBXName = 'a' AND ID = 1x",
        u"SELECT * FROM PBXList WHERE PBXName = 'a' AND ID = 1.5",
        u"SELECT * FROM PBXList WHERE PBXName = 'a",
        u"SELECT * FROM PBXList WHERE PBXName = 'a' AND ID = 1 OR ID = 2",
        u"SELECT * FROM PBXList WHERE PBXName = 'a' OR 'x' AND ID = 1", u"SELECT * FROM PBXList", u""})
    EXPECT_FALSE(skeleton.match(other, literals)) << testing::PrintToString(std::u16string(other));
}

}  // namespace
}  // namespace vordane::jet
