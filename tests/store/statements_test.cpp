#include "store/statements.h"

#include <gtest/gtest.h>

namespace vordane::store {
namespace {

TEST(Statements, AreBuiltByPlainConcatenation) {
  EXPECT_EQ(findExchange(u"PBX-1"), u"Select * FROM PBXList WHERE PBXName = \"PBX-1\"");
  EXPECT_EQ(allExchanges, u"Select * FROM PBXList");
  EXPECT_EQ(addFaults, u"Select * from FaultDisplay");
  EXPECT_EQ(exchangesNewestFirst, u"SELECT * FROM PBXList Order by [TimeStamp] Desc");
  EXPECT_EQ(selectExchange(u"PBX-1", 7), u"SELECT * FROM PBXList WHERE PBXName = 'PBX-1' AND ID = 7");
  EXPECT_EQ(faultsNewestFirst, u"SELECT * FROM FaultDisplay Order by [Date] Desc");
  EXPECT_EQ(deleteExchange(12), u"DELETE FROM PBXList WHERE ID = 12");
  EXPECT_EQ(deleteFaults(12), u"DELETE FROM FaultDisplay WHERE ID = 12");
}

TEST(Statements, LookForTheSameFaultByAllItsColumns) {
  EXPECT_EQ(findFault(3, {u"0A", u"MN", u"MP   ", u"2026/11/20 10:00", u"first\r\nsecond"}),
            u"Select * FROM FaultDisplay WHERE ID = 3 AND Fault = '0A' AND CPU = 'MP   ' AND Alarm = 'MN' "
            u"AND Date = '2026/11/20 10:00' AND Description = \"first\r\nsecond\"");
}

TEST(Statements, JoinTheIdWithoutABlank) {
  EXPECT_EQ(deleteFaults(-1), u"DELETE FROM FaultDisplay WHERE ID = -1");
  EXPECT_EQ(deleteFaults(32767), u"DELETE FROM FaultDisplay WHERE ID = 32767");
}

TEST(Statements, EscapeNothing) {
  EXPECT_EQ(findExchange(u"a\"b"), u"Select * FROM PBXList WHERE PBXName = \"a\"b\"");
  EXPECT_EQ(selectExchange(u"O'Hara", 1), u"SELECT * FROM PBXList WHERE PBXName = 'O'Hara' AND ID = 1");
}

TEST(Statements, HaveATenOfSortClauses) {
  const std::u16string_view clauses[] = {
      u" Order by [Fault] Asc, [Alarm] Asc, [Date] Asc, [Count] Asc, [CPU] Asc, [Description] Asc",
      u" Order by [Alarm] Asc, [Fault] Asc, [Date] Asc, [Count] Asc, [CPU] Asc, [Description] Asc",
      u" Order by [Date] Asc, [Count] Asc, [Fault] Asc, [Alarm] Asc, [CPU] Asc, [Description] Asc",
      u" Order by [CPU] Asc ,[Fault] Asc, [Alarm] Asc, [Date] Asc, [Count] Asc, [Description] Asc",
      u" Order by [Description] Asc, [Fault] Asc, [Alarm] Asc, [Date] Asc, [Count] Asc, [CPU] Asc",
      u" Order by [Fault] Desc, [Alarm] Desc, [Date] Desc, [Count] Desc, [CPU] Desc, [Description] Desc",
      u" Order by [Alarm] Desc, [Fault] Desc, [Date] Desc, [Count] Desc, [CPU] Desc, [Description] Desc",
      u" Order by [Date] Desc, [Count] Desc, [Fault] Desc, [Alarm] Desc, [CPU] Desc, [Description] Desc",
      u" Order by [CPU] Desc ,[Fault] Desc, [Alarm] Desc, [Date] Desc, [Count] Desc, [Description] Desc",
      u" Order by [Description] Desc, [Fault] Desc, [Alarm] Desc, [Date] Desc, [Count] Desc, [CPU] Desc",
  };
  for (SortKey key = 0; key < 10; ++key)
    EXPECT_EQ(faultsOfExchange(5, key),
              u"SELECT * FROM FaultDisplay WHERE ID = 5" + std::u16string(clauses[key]));
}

}  // namespace
}  // namespace vordane::store
