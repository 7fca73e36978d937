#include "platform/run_time_errors.h"

#include <gtest/gtest.h>

namespace vordane::automation {
namespace {

TEST(RunTimeErrors, RefusedCallsHaveTheNumbersThatHostsKnow) {
  EXPECT_EQ(refusedCallNumber(error::unknownName), 438);
  EXPECT_EQ(refusedCallNumber(error::memberNotFound), 438);
  EXPECT_EQ(refusedCallNumber(error::typeMismatch), 13);
  EXPECT_EQ(refusedCallNumber(error::overflow), 6);
  EXPECT_EQ(refusedCallNumber(error::badParameterCount), 450);
  EXPECT_EQ(refusedCallNumber(error::parameterNotOptional), 449);
  EXPECT_EQ(refusedCallNumber(error::exception), std::nullopt);
  EXPECT_EQ(refusedCallNumber(0), std::nullopt);
  EXPECT_EQ(refusedCallNumber(error::runTime(13)), std::nullopt);
}

TEST(RunTimeErrors, ACodeCarriesItsNumber) {
  EXPECT_EQ(runTimeNumber(error::runTime(3024)), 3024);
  EXPECT_EQ(runTimeNumber(error::runTime(65535)), 65535);
  EXPECT_EQ(runTimeNumber(error::typeMismatch), std::nullopt);
  EXPECT_EQ(runTimeNumber(0), std::nullopt);
  EXPECT_EQ(runTimeNumber(13), std::nullopt);
}

}  // namespace
}  // namespace vordane::automation
