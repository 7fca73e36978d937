#include "devhost/core/report.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>

#include "devhost/fakes.h"
#include "places.h"
#include "platform/sqlite/engine.h"
#include "startup/databases.h"
#include "store/fault_database.h"
#include "tools/sqlite/database_writer.h"
#include "zulsim/core/files.h"

namespace vordane::devhost {
namespace {

using testing::HasSubstr;

class ReportTest : public testing::Test {
 protected:
  ReportTest() {
    std::filesystem::create_directories(directory_);
    layout(
        "{{PBXName}}|{{TimeStamp}}|{{Order}}|{{Faults}}|{{Printed}}|{{#MJ}}MJ{{/MJ}}{{#noMN}}-{{/noMN}}\n"
        "{{#none}}nothing\n{{/none}}"
        "{{#faults}}{{Number}} {{Fault}} {{Alarm}} {{Date}} {{CPU}} {{Count}} "
        "[{{Title}}/{{Detail}}/{{Data}}]\n{{/faults}}");
    content_.addExchange(3, u"PBX-1", true);
    content_.addExchange(4, u"Empty & <quiet>");
    content_.addFault(3, u"01", u"MN", u"2006/11/26 08:00", u"LP 1",
                      std::u16string(u"Line down\r\nUnit 3\r\nData [0C]"));
    content_.addFault(3, u"3B", u"MJ", u"2006/11/27 09:30", u"MP   ", std::u16string(u"Title only"));
    content_.addFault(9, u"05", u"MJ", u"2006/11/28 09:30", u"MP   ", std::u16string(u"another exchange's"));
    content_.addFault(3, u"02", u"MN", u"2006/11/27 09:30", u"LP 2", automation::Null{});
  }
  ~ReportTest() override { std::filesystem::remove_all(directory_); }

  void layout(std::string_view text) { files::writeFile(layoutFile(), text); }
  std::u16string layoutFile() const { return (directory_ / "FAULT.RPT").u16string(); }

  ReportRequest request(std::u16string name, std::u16string sign = u"-") const {
    ReportRequest request{u"FAULT.MDB", layoutFile(), u"{PbxList.PBXName} = '" + name + u"'", 0, {}};
    const char16_t* const columns[] = {u"Date", u"Count", u"Fault", u"Alarm", u"CPU", u"Description"};
    for (std::size_t i = 0; i < 6; ++i) request.sort[i] = sign + u"{FaultDisplay." + columns[i] + u"}";
    return request;
  }

  PrintedReport print(const ReportRequest& wanted) {
    return printReport(engine_, wanted, {{}, u"2006-11-27 10:15"});
  }
  std::string page(const PrintedReport& report) {
    return files::readFile(report.file).value_or("(no file: " + text::toUtf8(report.reason) + ")");
  }

  std::filesystem::path directory_ =
      std::filesystem::temp_directory_path() /
      ("vordane-report-" + std::string(testing::UnitTest::GetInstance()->current_test_info()->name()) +
       std::to_string(std::random_device()()));
  FakeFaultDatabase content_;
  FakeEngine engine_{content_};
};

TEST_F(ReportTest, PrintsTheSelectedExchangeInTheWantedOrder) {
  const PrintedReport report = print(request(u"PBX-1"));
  EXPECT_EQ(report.reason, u"");
  EXPECT_EQ(report.faults, 3U);
  EXPECT_EQ(report.file, (directory_ / "FAULT-PBX-1.html").u16string());
  EXPECT_EQ(page(report),
            "PBX-1|2006-11-27 09:00:00|Date ↓, Count ↓, Fault ↓, Alarm ↓, CPU ↓, Description ↓|3|2006-11-27 "
            "10:15|MJ-\n"
            "1 02 MN 2006/11/27 09:30 LP 2 4 [//]\n"
            "2 3B MJ 2006/11/27 09:30 MP    2 [Title only//]\n"
            "3 01 MN 2006/11/26 08:00 LP 1 1 [Line down/Unit 3/Data [0C]]\n");
}

TEST_F(ReportTest, AscendingIsTheReverse) {
  const std::string text = page(print(request(u"pbx-1 ", u"+")));  // names ignore case and trailing blanks
  EXPECT_LT(text.find("1 01 MN"), text.find("2 3B MJ"));
  EXPECT_LT(text.find("2 3B MJ"), text.find("3 02 MN"));
}

TEST_F(ReportTest, AnExchangeWithoutFaultsIsPrintedToo) {
  const PrintedReport report = print(request(u"Empty & <quiet>"));
  EXPECT_THAT(page(report), HasSubstr("Empty &amp; &lt;quiet&gt;|"));
  EXPECT_THAT(page(report), HasSubstr("|0|2006-11-27 10:15|-\nnothing\n"));
  EXPECT_EQ(std::filesystem::path(report.file).filename(), "FAULT-Empty & %3Cquiet%3E.html");
}

TEST_F(ReportTest, SaysWhyNothingWasPrinted) {
  EXPECT_EQ(print(request(u"PBX-9")).reason, u"There is no exchange \"PBX-9\" in the fault database.");
  EXPECT_EQ(print(request(u"O'Hara")).reason,
            u"The selection formula {PbxList.PBXName} = 'O'Hara' is not understood.");
  ReportRequest wanted = request(u"PBX-1");
  wanted.sort[3] = u"-{FaultDisplay.Colour}";
  EXPECT_EQ(print(wanted).reason, u"The sort formula -{FaultDisplay.Colour} is not understood.");
  wanted = request(u"PBX-1");
  wanted.reportFile = (directory_ / "NONE.RPT").u16string();
  EXPECT_EQ(print(wanted).reason, u"The report file " + wanted.reportFile + u" can't be read.");
  layout("{{#faults}}{{Colour}}{{/faults}}");
  EXPECT_EQ(print(request(u"PBX-1")).reason,
            u"The report's layout is wrong in line 1: there is no value named Colour.");
  engine_.missing = true;
  layout("");
  EXPECT_EQ(print(request(u"PBX-1")).reason, u"Could not find the file.");
}

TEST_F(ReportTest, AReportThatCannotBeWrittenIsNoReport) {
  const PrintedReport report =
      printReport(engine_, request(u"PBX-1"), {(directory_ / "missing").u16string(), {}});
  EXPECT_EQ(report.file, u"");
  EXPECT_THAT(text::toUtf8(report.reason), HasSubstr("can't be written"));
}

TEST_F(ReportTest, ReadsARealDatabase) {
  const std::u16string file = (directory_ / "FAULT.MDB").u16string();
  tools::DatabaseWriter writer(file);
  writer.createTables(store::faultTables);
  const auto textValue = [](std::u16string_view text) { return database::Value(std::u16string(text)); };
  const database::Value exchange[] = {automation::Null{}, textValue(u"Büro \"2\""),
                                      textValue(u"2006-11-27 09:00:00"), true, false};
  writer.insert(u"PBXList", exchange);
  for (const std::u16string_view date : {u"2006/11/26 08:00", u"2006/11/27 08:00"}) {
    const database::Value fault[] = {std::int16_t{1},        textValue(u"01"), textValue(u"MJ"),
                                     textValue(u"LP 1"),     textValue(date),  automation::Null{},
                                     textValue(u"Line down")};
    writer.insert(u"FaultDisplay", fault);
  }
  writer.finish();
  ReportRequest wanted = request(u"BÜRO \"2\"");
  wanted.database = file;
  const auto engine = sqlite::makeEngine(startup::databases);
  const PrintedReport report = printReport(*engine, wanted, {{}, u"now"});
  EXPECT_EQ(report.reason, u"");
  const std::string text = page(report);
  EXPECT_THAT(text,
              HasSubstr("1 01 MJ 2006/11/27 08:00 LP 1 2 [Line down//]\n2 01 MJ 2006/11/26 08:00 LP 1 1"));
}

TEST_F(ReportTest, ALayoutMayNameTheColumnsOfTheOrderItself) {
  layout(
      "{{#order}}{{#further}}, "
      "{{/further}}{{#byFault}}Art{{/byFault}}{{#byAlarm}}Klasse{{/byAlarm}}{{#byDate}}Datum"
      "{{/byDate}}{{#byCount}}Nummer{{/byCount}}{{#byCPU}}Rechner{{/byCPU}}{{#byDescription}}Text{{/"
      "byDescription}}"
      " {{Direction}}{{/order}}");
  EXPECT_EQ(page(print(request(u"PBX-1"))), "Datum ↓, Nummer ↓, Art ↓, Klasse ↓, Rechner ↓, Text ↓");
  EXPECT_EQ(page(print(request(u"PBX-1", u"+"))), "Datum ↑, Nummer ↑, Art ↑, Klasse ↑, Rechner ↑, Text ↑");
}

TEST_F(ReportTest, TheShippedLayoutHoldsEverything) {
  const auto shipped = files::readFile((test::sourceFolder() / "data" / "report" / "FAULT.RPT").u16string());
  ASSERT_TRUE(shipped);
  // The texts of a language name the exchange.
  std::string whole = *shipped;
  const std::string heading = "[[heading]]";
  ASSERT_NE(whole.find(heading), std::string::npos);
  layout(whole.replace(whole.find(heading), heading.size(), "Faults of {{PBXName}}"));
  const std::string text = page(print(request(u"PBX-1")));
  for (const char* part : {"<!DOCTYPE html>", "PBX-1", "2006-11-27 09:00:00", "Line down", "Unit 3",
                           "Data [0C]", "2006/11/27 09:30", "MP   ", "</html>"})
    EXPECT_THAT(text, HasSubstr(part));
  EXPECT_THAT(page(print(request(u"Empty & <quiet>"))), HasSubstr("Empty &amp; &lt;quiet&gt;"));
}

}  // namespace
}  // namespace vordane::devhost
