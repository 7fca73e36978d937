#include "platform/access/access_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>

#include "access/recording_visitor.h"
#include "places.h"

namespace vordane::access {
namespace {

using Read = RecordingVisitor;

Read read(const std::string& file) {
  Read result;
  readAccessFile((test::dataFolder() / "access/").string() + file, result);
  return result;
}

std::size_t position(const Table& table, std::u16string_view column) {
  for (std::size_t i = 0; i < table.columns.size(); ++i)
    if (table.columns[i].name == column) return i;
  throw std::runtime_error("no such column");
}

class Faults : public testing::Test {
 protected:
  static void SetUpTestSuite() { content = read("FAULT-10k.MDB"); }
  static const Read::Content& faults() { return content.tables.at(u"FaultDisplay"); }
  static Value at(std::int32_t count, std::u16string_view column) {
    const auto key = position(faults().table, u"Count");
    for (const auto& row : faults().rows)
      if (row[key] == Value(count)) return row[position(faults().table, column)];
    throw std::runtime_error("no such row");
  }
  static std::u16string description(std::int32_t count) {
    return std::get<std::u16string>(at(count, u"Description"));
  }
  static std::size_t howMany(std::u16string_view column, const Value& value) {
    const auto place = position(faults().table, column);
    return static_cast<std::size_t>(std::count_if(faults().rows.begin(), faults().rows.end(),
                                                  [&](const auto& row) { return row[place] == value; }));
  }
  static Read content;
};
Read Faults::content;

TEST_F(Faults, AllRowsArriveAndTheCounterIsKnown) {
  EXPECT_EQ(faults().table.rowCount, 10000U);
  EXPECT_EQ(faults().rows.size(), 10000U);
  EXPECT_EQ(faults().table.lastAutoNumber, 10040);
  EXPECT_EQ(content.tables.at(u"PBXList").rows.size(), 3U);
}

TEST_F(Faults, ColumnsHaveTheirTypes) {
  const Table& table = faults().table;
  EXPECT_EQ(table.columns[position(table, u"ID")].type, ColumnType::integer);
  EXPECT_EQ(table.columns[position(table, u"Description")].type, ColumnType::memo);
  EXPECT_TRUE(table.columns[position(table, u"Count")].autoNumber);
  EXPECT_EQ(table.columns[position(table, u"Fault")].size, 2);
  EXPECT_EQ(table.columns[position(table, u"ID")].size, 0) << "texts alone have one";
  EXPECT_EQ(content.tables.at(u"PBXList").table.columns[3].type, ColumnType::boolean);
}

TEST_F(Faults, CountsAgreeWithWhatTheFileIsKnownToHold) {
  EXPECT_EQ(howMany(u"ID", std::int16_t{1}), 5003U);
  EXPECT_EQ(howMany(u"ID", std::int16_t{2}), 3087U);
  EXPECT_EQ(howMany(u"ID", std::int16_t{3}), 1906U);
  EXPECT_EQ(howMany(u"ID", std::int16_t{99}), 1U);
  EXPECT_EQ(howMany(u"ID", std::int16_t{32767}), 1U);
  EXPECT_EQ(howMany(u"ID", std::int16_t{-32768}), 1U);
  EXPECT_EQ(howMany(u"ID", automation::Null{}), 1U);
  EXPECT_EQ(howMany(u"Fault", automation::Null{}), 1U);
  EXPECT_EQ(howMany(u"Alarm", automation::Null{}), 1640U);
  EXPECT_EQ(howMany(u"CPU", automation::Null{}), 190U);
  EXPECT_EQ(howMany(u"Date", automation::Null{}), 49U);
  EXPECT_EQ(howMany(u"Description", automation::Null{}), 100U);
  EXPECT_EQ(howMany(u"Description", std::u16string{}), 1U);
}

TEST_F(Faults, NullIsNotTheEmptyText) {
  EXPECT_EQ(at(10001, u"Description"), Value(automation::Null{}));
  EXPECT_EQ(at(10002, u"Description"), Value(std::u16string{}));
  EXPECT_EQ(at(10002, u"Fault"), Value(std::u16string{}));
}

TEST_F(Faults, TextsArriveWhole) {
  EXPECT_NE(description(10009).find(u"\U0001F514"), std::u16string::npos);
  EXPECT_NE(description(10010).find(u'\x07'), std::u16string::npos);
  EXPECT_TRUE(description(10007).ends_with(u"\r\n"));
  EXPECT_TRUE(description(10008).starts_with(u' '));
  const std::map<std::int32_t, std::size_t> lengths{
      {10011, 1},    {10012, 2},    {10013, 62},   {10014, 63},    {10015, 1022},
      {10016, 1025}, {10017, 2000}, {10018, 4095}, {10019, 4096},  {10020, 4097},
      {10021, 5000}, {10022, 5000}, {10023, 5000}, {10024, 17000}, {10025, 66000}};
  for (const auto& [count, length] : lengths) EXPECT_EQ(description(count).size(), length) << count;
}

TEST_F(Faults, RowsThatMovedToAnotherPageArriveOnce) {
  const auto place = position(faults().table, u"Date");
  const auto edited = std::count_if(faults().rows.begin(), faults().rows.end(), [&](const auto& row) {
    const auto* date = std::get_if<std::u16string>(&row[place]);
    return date != nullptr && date->starts_with(u"edited");
  });
  EXPECT_EQ(edited, 150);
}

TEST(AccessFile, LanguageAndSuiteFilesAreReadToo) {
  const Read own = read("VORDANE.LNG");
  EXPECT_EQ(own.tables.at(u"tMessages").rows.size(), 165U);
  EXPECT_EQ(own.tables.at(u"tControls").rows.size(), 62U);
  EXPECT_EQ(own.tables.at(u"tComboBoxDT").rows.size(), 24U);
  EXPECT_EQ(own.tables.at(u"tForms").table.columns[3].type, ColumnType::single);
  EXPECT_EQ(read("Common.LNG").tables.at(u"PictureFileName").rows.size(), 12U);
  EXPECT_EQ(read("Register.mdb").tables.at(u"Registry").rows.size(), 5U);
  EXPECT_EQ(read("Schedule.mdb").tables.at(u"Options").rows.size(), 4U);
  EXPECT_EQ(read("FAULT-empty.MDB").tables.at(u"FaultDisplay").rows.size(), 0U);
}

TEST(AccessFile, AnythingElseIsRefused) {
  EXPECT_FALSE(isAccessFile((test::dataFolder() / "access" / "README.txt").string()));
  EXPECT_THROW(read("README.txt"), AccessError);
  EXPECT_THROW(read("missing.mdb"), AccessError);
}

}  // namespace
}  // namespace vordane::access
