#include "platform/dao/dao_reader.h"

#include <filesystem>
#include <fstream>
#include <iterator>

#include "access/recording_visitor.h"
#include "dao/dao_under_test.h"
#include "tools/sqlite/table_reader.h"

namespace vordane::dao {
namespace {

using database::Layout;
using database::Value;

std::u16string words(const char16_t* text) {
  return text;
}

class DaoReader : public testing::Test {
 protected:
  access::RecordingVisitor read(const std::u16string& path) {
    access::RecordingVisitor visitor;
    readAccessFile(under.workstation, path, visitor);
    return visitor;
  }

  fakes::DaoUnderTest under;
};

std::string bytesOf(const std::u16string& path) {
  std::ifstream in(std::filesystem::path(path), std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

TEST_F(DaoReader, TellsEveryTableAndLeavesTheFileAlone) {
  const auto file =
      under.make(Layout::faults, {{u"PBXList", {1, words(u"A"), words(u"2006-11-27 10:15:00"), true, false}},
                                  {u"PBXList", {3, words(u"Отказ"), automation::Null{}, false, true}},
                                  {u"FaultDisplay",
                                   {1, words(u"01"), words(u""), automation::Null{}, words(u"06/11/27"), 7,
                                    words(u"a\r\nb \U0001F514")}}});
  const std::string before = bytesOf(file);
  const auto read = this->read(file);
  EXPECT_EQ(bytesOf(file), before);
  ASSERT_EQ(read.tables.size(), 2U) << "the engine's own tables are not the user's";
  const auto& exchanges = read.tables.at(u"PBXList");
  EXPECT_TRUE(exchanges.ended);
  EXPECT_EQ(exchanges.table.rowCount, 2U);
  EXPECT_EQ(exchanges.rows,
            (std::vector<std::vector<Value>>{{1, words(u"A"), words(u"2006-11-27 10:15:00"), true, false},
                                             {3, words(u"Отказ"), automation::Null{}, false, true}}));
  EXPECT_EQ(exchanges.table.columns[2].type, access::ColumnType::dateTime);
  EXPECT_TRUE(exchanges.table.columns[0].autoNumber);
  EXPECT_EQ(exchanges.table.lastAutoNumber, 3);
  EXPECT_EQ(read.tables.at(u"FaultDisplay").rows,
            (std::vector<std::vector<Value>>{{std::int16_t{1}, words(u"01"), words(u""), automation::Null{},
                                              words(u"06/11/27"), 7, words(u"a\r\nb \U0001F514")}}));
}

TEST_F(DaoReader, CarriesTheCounterOfRowsThatWereDeleted) {
  const auto file =
      under.make(Layout::faults, {{u"PBXList", {1, words(u"A"), automation::Null{}, false, false}},
                                  {u"PBXList", {9, words(u"B"), automation::Null{}, false, false}}});
  under.engine().open(file, false)->execute(u"DELETE FROM PBXList WHERE ID = 9");
  EXPECT_EQ(read(file).tables.at(u"PBXList").table.lastAutoNumber, 9);
}

TEST_F(DaoReader, AMissingFileIsAnError) {
  EXPECT_THROW(read(under.make(Layout::faults) + u"-missing"), access::AccessError);
}

}  // namespace
}  // namespace vordane::dao
