// The tables of a database with a choice of its faults, as JSON files.
#include "selected_tables.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include "export_json.h"
#include "lines.h"
#include "platform/automation.h"

namespace vordane::tools {
namespace {

namespace fs = std::filesystem;
using access::ColumnType;
using automation::Null;
using automation::Value;
using Rows = std::vector<std::vector<Value>>;

Value words(const char16_t* text) {
  return std::u16string(text);
}

class SelectedTables : public testing::Test {
 protected:
  SelectedTables() {
    exchanges.name = u"PBXList";
    exchanges.columns = {{u"ID"}, {u"PBXName"}, {u"TimeStamp"}, {u"MJ"}};
    faults.name = u"FaultDisplay";
    faults.columns = {{u"ID"}, {u"Fault"}, {u"Alarm"}, {u"CPU"}, {u"Date"}, {u"Count"}, {u"Description"}};
    other.name = u"Further";
    other.columns = {{u"X"}};
  }
  ~SelectedTables() override { fs::remove_all(folder); }

  // The order of tables in a file is anybody's: the faults stand before their exchanges.
  void read(access::Visitor& visitor) {
    ++timesRead;
    tell(visitor, faults,
         {{1, words(u"01"), words(u"MJ"), words(u"MP   "), words(u"2026/11/20 10:00"), 1, words(u"a")},
          {2, words(u"02"), words(u"MN"), words(u"LP 1"), words(u"2026/11/21 10:00"), 2, words(u"\"b\"\r\n")},
          {1, words(u"02"), words(u"MN"), Null{}, words(u"21.11.2026"), 3.5, Null{}}});
    tell(visitor, exchanges, {{1, words(u"PBX-1"), words(u"t"), true}, {2, words(u"PBX-2"), Null{}, false}});
    tell(visitor, other, {{words(u"x")}});
  }
  static void tell(access::Visitor& visitor, const access::Table& table, const Rows& rows) {
    if (table.name.empty()) return;
    visitor.beginTable(table);
    for (const auto& row : rows) visitor.row(row);
    visitor.endTable();
  }
  void select(const FaultSelection& selection) {
    JsonExport out(folder);
    readSelected([&](access::Visitor& visitor) { read(visitor); }, "FAULT.MDB", selection, out);
  }
  std::string refusal(const FaultSelection& selection) {
    try {
      select(selection);
    } catch (const ToolError& failure) {
      return failure.what();
    }
    return "no refusal";
  }
  std::string file(const char* name) const {
    std::ifstream in(folder / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }

  static constexpr const char* faultHead =
      R"({"format":"vordane table","version":1,"table":"FaultDisplay","columns":["ID","Fault","Alarm","CPU","Date","Count","Description"],"rows":[)";
  static constexpr const char* exchangeHead =
      R"({"format":"vordane table","version":1,"table":"PBXList","columns":["ID","PBXName","TimeStamp","MJ"],"rows":[)";
  static constexpr const char* first = "\n[1,\"01\",\"MJ\",\"MP   \",\"2026/11/20 10:00\",1,\"a\"]";
  static constexpr const char* second =
      "\n[2,\"02\",\"MN\",\"LP 1\",\"2026/11/21 10:00\",2,\"\\\"b\\\"\\r\\n\"]";
  static constexpr const char* third = "\n[1,\"02\",\"MN\",null,\"21.11.2026\",3.5,null]";

  access::Table exchanges, faults, other;
  fs::path folder =
      fs::temp_directory_path() / ("vordane-selected-tables-" + std::to_string(std::random_device()()));
  int timesRead = 0;
};

TEST_F(SelectedTables, WithoutAChoiceEveryRowOfEveryTableIsRead) {
  select({});
  EXPECT_EQ(file("FaultDisplay.json"),
            std::string(faultHead) + first + ',' + second + ',' + third + "\n]}\n");
  EXPECT_EQ(file("PBXList.json"),
            std::string(exchangeHead) + "\n[1,\"PBX-1\",\"t\",true],\n[2,\"PBX-2\",null,false]\n]}\n");
  EXPECT_EQ(file("Further.json"),
            R"({"format":"vordane table","version":1,"table":"Further","columns":["X"],"rows":[)"
            "\n[\"x\"]\n]}\n");
  EXPECT_EQ(timesRead, 1);
}

TEST_F(SelectedTables, AnExchangeIsWrittenWithItsOwnFaultsAlone) {
  select({u"pbx-2 ", {}, {}});
  EXPECT_EQ(file("FaultDisplay.json"), std::string(faultHead) + second + "\n]}\n");
  EXPECT_EQ(file("PBXList.json"), std::string(exchangeHead) + "\n[2,\"PBX-2\",null,false]\n]}\n");
  EXPECT_TRUE(file("Further.json").ends_with("\n[\"x\"]\n]}\n"));
}

TEST_F(SelectedTables, ClassKindAndTimeChooseFaultsAndLeaveTheExchanges) {
  FaultSelection selection;
  selection.classes = {u"mn"};
  select(selection);
  EXPECT_EQ(file("FaultDisplay.json"), std::string(faultHead) + second + ',' + third + "\n]}\n");
  selection.filter.since = u"2026/11/21";
  select(selection);
  EXPECT_EQ(file("FaultDisplay.json"), std::string(faultHead) + second + "\n]}\n");
  selection.filter.kinds = {list::KindRule::Way::only, {u"01"}};
  select(selection);
  EXPECT_EQ(file("FaultDisplay.json"), std::string(faultHead) + "\n]}\n");
  EXPECT_TRUE(file("PBXList.json").ends_with("\n[1,\"PBX-1\",\"t\",true],\n[2,\"PBX-2\",null,false]\n]}\n"));
}

TEST_F(SelectedTables, WhatCantBeChosenIsRefusedBeforeAnythingIsWritten) {
  EXPECT_EQ(refusal({u"PBX-9", {}, {}}),
            R"(FAULT.MDB: there is no exchange "PBX-9". Name one of those stored there: "PBX-1", "PBX-2")");
  FaultSelection selection;
  selection.filter.until = u"now";
  EXPECT_TRUE(refusal(selection).starts_with("--until now: write the time as YYYY/MM/DD HH:MM"));
  faults.name.clear();
  selection.filter.until = u"2026";
  EXPECT_EQ(refusal(selection),
            "FAULT.MDB: no faults are stored in it, so none of them can be chosen. Name a FAULT.MDB");
  EXPECT_TRUE(fs::is_empty(folder));
}

}  // namespace
}  // namespace vordane::tools
