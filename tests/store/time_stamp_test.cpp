#include "store/time_stamp.h"

#include <gtest/gtest.h>

#include <map>

#include "fakes/set_clock.h"

namespace vordane::store {
namespace {

// One row whose columns are dates or texts.
class OneRow : public database::Recordset {
 public:
  explicit OneRow(bool dated) : dated_(dated) {}
  bool atEnd() override { return false; }
  bool isEmpty() override { return false; }
  std::int32_t recordCount() override { return 1; }
  void moveFirst() override {}
  void moveNext() override {}
  database::Value get(std::u16string_view column) override { return values[std::u16string(column)]; }
  database::Value get(std::size_t) override { return {}; }
  bool isDate(std::u16string_view) override { return dated_; }
  void set(std::u16string_view column, database::Value value) override {
    values[std::u16string(column)] = value;
  }
  void addNew() override {}
  void edit() override {}
  void update() override {}
  void close() override {}

  std::map<std::u16string, database::Value> values;

 private:
  bool dated_;
};

TEST(TimeStamp, IsUnmistakableInADateColumn) {
  fakes::SetClock clock;
  OneRow row(true);
  stampNow(row, clock);
  EXPECT_EQ(row.values[u"TimeStamp"], database::Value(std::u16string(u"2026-11-20 21:14:05")));
}

TEST(TimeStamp, IsRegionalInATextColumn) {
  fakes::SetClock clock;
  OneRow row(false);
  stampNow(row, clock);
  EXPECT_EQ(row.values[u"TimeStamp"], database::Value(std::u16string(u"20.11.2026 21:14:05")));
}

TEST(TimeStamp, IsShownInTheRegionalForm) {
  fakes::SetClock clock;
  EXPECT_EQ(shownTimeStamp(u"2020-02-03 04:05:06", true, clock), u"03.02.2020 04:05:06");
  EXPECT_EQ(shownTimeStamp(u"2/3/2020 4:05 AM", false, clock), u"2/3/2020 4:05 AM");
  EXPECT_EQ(shownTimeStamp(u"2020-02-03", true, clock), u"2020-02-03");
  EXPECT_EQ(shownTimeStamp(u"2020-02-03 04.05.06", true, clock), u"2020-02-03 04.05.06");
  EXPECT_EQ(shownTimeStamp(u"", true, clock), u"");
}

}  // namespace
}  // namespace vordane::store
