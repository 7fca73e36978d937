// The embedded engine fails with the numbers that callers of any engine look at.
#include "platform/database_numbers.h"

#include <gtest/gtest.h>

#include "platform/sqlite/errors.h"

namespace vordane {
namespace {

namespace any = database::number;
namespace embedded = sqlite::number;

TEST(ErrorNumbers, AreThoseOfAnyEngine) {
  EXPECT_EQ(embedded::noCurrentRecord, any::noCurrentRecord);
  EXPECT_EQ(embedded::fileNotFound, any::fileNotFound);
  EXPECT_EQ(embedded::diskFull, any::diskFull);
  EXPECT_EQ(embedded::readOnly, any::readOnly);
  EXPECT_EQ(embedded::outOfMemory, any::outOfMemory);
  EXPECT_EQ(embedded::diskError, any::diskError);
  EXPECT_EQ(embedded::damaged, any::damaged);
  EXPECT_EQ(embedded::noPermission, any::noPermission);
  EXPECT_EQ(embedded::unknownName, any::unknownName);
  EXPECT_EQ(embedded::unknownTable, any::unknownTable);
  EXPECT_EQ(embedded::recordGone, any::recordGone);
  EXPECT_EQ(embedded::locked, any::locked);
  EXPECT_EQ(embedded::notADatabase, any::notADatabase);
  EXPECT_EQ(embedded::closed, any::closed);
}

}  // namespace
}  // namespace vordane
