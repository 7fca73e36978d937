#include "platform/description.h"

#include <gtest/gtest.h>

namespace vordane::database {
namespace {

TEST(StatementPattern, TakesItsValuesInOrderAndAsTheyCome) {
  constexpr StatementPattern found{u"select * from T where A = '{}' AND B = {} AND C = \"{}\""};
  EXPECT_EQ(found.with({u"it's", u"-5", u""}), u"select * from T where A = 'it's' AND B = -5 AND C = \"\"");
  EXPECT_EQ(found.with({u"{}", u"1", u"x"}), u"select * from T where A = '{}' AND B = 1 AND C = \"x\"")
      << "a value is no mark";
}

TEST(StatementPattern, ItsEndingStandsBehind) {
  constexpr StatementPattern ordered{u"select * from T where A = {}", u" order by B"};
  EXPECT_EQ(ordered.with({u"7"}), u"select * from T where A = 7 order by B");
  EXPECT_EQ(ordered.sample(), u"select * from T where A = 0 order by B");
}

TEST(StatementPattern, WithoutAValueIsItsText) {
  constexpr StatementPattern all{u"select * from T"};
  EXPECT_EQ(all.with({}), u"select * from T");
}

}  // namespace
}  // namespace vordane::database
