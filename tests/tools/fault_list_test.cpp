#include "fault_list.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <sstream>

#include "export_csv.h"
#include "fault_json.h"
#include "lines.h"
#include "platform/sqlite/engine.h"
#include "startup/databases.h"
#include "store/fault_database.h"
#include "text/csv.h"
#include "tools/sqlite/database_writer.h"

namespace vordane::tools {
namespace {

using Form = ListOptions::Form;

class FaultList : public testing::Test {
 protected:
  FaultList() {
    DatabaseWriter writer(file_.u16string(), true);
    writer.createTables(store::faultTables);
    addExchange(writer, 1, u"PBX-1", u"2006-11-27 09:00:00", true);
    addExchange(writer, 2, u"Büro\x1B[31m \u202E\"2\"", u"2006-11-26 09:00:00", false);
    addExchange(writer, 3, u"=HYPERLINK(\"x\")", u"2006-11-25 09:00:00", false);
    addFault(writer, 1, u"01", u"LP 1", u"2006/11/26 08:00", u"Line down\r\nUnit 3\r\nData [0C]");
    addFault(writer, 1, u"3B", u"@MP", u"2006/11/27 08:00", u"-2+3");
    addFault(writer, 2, u"02", u"LP 2", u"2006/11/26 08:00",
             u"Title\x9B"
             u"2J\rx");
    writer.finish();
  }
  ~FaultList() override { std::filesystem::remove(file_); }

  static database::Value text(std::u16string_view words) { return std::u16string(words); }
  static void addExchange(DatabaseWriter& writer, std::int32_t id, std::u16string_view name,
                          std::u16string_view time, bool major) {
    const database::Value row[] = {id, text(name), text(time), major, false};
    writer.insert(u"PBXList", row);
  }
  static void addFault(DatabaseWriter& writer, std::int32_t id, std::u16string_view kind,
                       std::u16string_view processor, std::u16string_view date,
                       std::u16string_view description) {
    const database::Value row[] = {id,         text(kind),         text(u"MN"),      text(processor),
                                   text(date), automation::Null{}, text(description)};
    writer.insert(u"FaultDisplay", row);
  }
  std::string list(Form form, std::optional<std::u16string> exchange = std::nullopt) {
    const auto database = sqlite::makeEngine(startup::databases)->open(file_.u16string(), true);
    std::ostringstream out;
    listFaults(*database, "FAULT.MDB", {form, {std::move(exchange), {}, {}}}, out);
    return out.str();
  }
  // How many a filter leaves.
  std::string count(const std::function<void(list::Filter&)>& change) {
    return countSelected([&](FaultSelection& selection) { change(selection.filter); });
  }
  std::string countSelected(const std::function<void(FaultSelection&)>& change) {
    ListOptions options{Form::count};
    change(options.selection);
    const auto database = sqlite::makeEngine(startup::databases)->open(file_.u16string(), true);
    std::ostringstream out;
    try {
      listFaults(*database, "FAULT.MDB", options, out);
    } catch (const ToolError& failure) {
      return failure.what();
    }
    return out.str();
  }
  std::string refusal(Form form, const char16_t* exchange) {
    try {
      return "no refusal: " + list(form, exchange);
    } catch (const ToolError& failure) {
      return failure.what();
    }
  }

  std::filesystem::path file_ = std::filesystem::temp_directory_path() /
                                ("vordane-fault-list-" + std::to_string(std::random_device()()) + ".mdb");
};

TEST_F(FaultList, LinesForAPerson) {
  EXPECT_EQ(list(Form::lines, u"PBX-1"),
            "PBX-1: list received 2006-11-27 09:00:00, major alarm, minor clear\n"
            "  2  2006/11/27 08:00  MN  @MP  3B  -2+3\n"
            "  1  2006/11/26 08:00  MN  LP 1  01  Line down - Unit 3\n");
}

TEST_F(FaultList, NothingInALineIsObeyedByATerminal) {
  const std::string whole = list(Form::lines);
  EXPECT_NE(whole.find("Büro\\x1B[31m \\u202E\"2\": list received"), std::string::npos) << whole;
  EXPECT_NE(whole.find("02  Title\\x9B2J\\x0Dx\n"), std::string::npos) << whole;
}

TEST_F(FaultList, CsvForASpreadsheet) {
  EXPECT_EQ(list(Form::csv),
            "Exchange,Fault,Alarm,Date,CPU,Description,Count\r\n"
            "\"PBX-1\",\"3B\",\"MN\",\"2006/11/27 08:00\",\"'@MP\",\"'-2+3\",2\r\n"
            "\"PBX-1\",\"01\",\"MN\",\"2006/11/26 08:00\",\"LP 1\",\"Line down\r\nUnit 3\r\nData [0C]\",1\r\n"
            "\"Büro\x1B[31m \u202E\"\"2\"\"\",\"02\",\"MN\",\"2006/11/26 08:00\",\"LP "
            "2\",\"Title\u009B2J\rx\",3\r\n");
}

TEST_F(FaultList, JsonForPrograms) {
  EXPECT_EQ(list(Form::json, u"pbx-1"),
            R"j({"format":"vordane fault list","version":1,"exchanges":[
{"exchange":"PBX-1","received":"2006-11-27 09:00:00","major":true,"minor":false}
],"faults":[
{"event":"fault","id":"2-d982b05d7b64e721","exchange":"PBX-1","number":2,"kind":"3B","class":"MN","time":"2006/11/27 08:00","processor":"@MP","description":"-2+3"},
{"event":"fault","id":"1-5ba1dfb1f63dbc3e","exchange":"PBX-1","number":1,"kind":"01","class":"MN","time":"2006/11/26 08:00","processor":"LP 1","description":"Line down\r\nUnit 3\r\nData [0C]"}
]}
)j");
  EXPECT_EQ(list(Form::json, u"=hyperlink(\"x\")"),
            R"j({"format":"vordane fault list","version":1,"exchanges":[
{"exchange":"=HYPERLINK(\"x\")","received":"2006-11-25 09:00:00","major":false,"minor":false}
],"faults":[
]}
)j");
}

TEST(FaultJson, AFaultIsKnownAgainWhenItsYearWasWidened) {
  const StoredFault fault{7, u"PBX-1", u"01", u"MJ", u"06/11/27 08:00", u"LP 1", u"Line down"};
  const auto changed = [&](std::u16string StoredFault::*column, const char16_t* to) {
    StoredFault other = fault;
    other.*column = to;
    return identifierOf(other);
  };
  EXPECT_EQ(changed(&StoredFault::time, u"2006/11/27 08:00"), identifierOf(fault));
  for (const auto column : {&StoredFault::exchange, &StoredFault::kind, &StoredFault::alarm,
                            &StoredFault::processor, &StoredFault::description})
    EXPECT_NE(changed(column, u"x"), identifierOf(fault));
  StoredFault shifted = fault;  // no character belongs to two texts
  shifted.kind = u"01M", shifted.alarm = u"J";
  EXPECT_NE(identifierOf(shifted), identifierOf(fault));
  shifted = fault;
  shifted.number = 8;
  EXPECT_NE(identifierOf(shifted), identifierOf(fault));
}

TEST_F(FaultList, CountsAlone) {
  EXPECT_EQ(list(Form::count), "3\n");
  EXPECT_EQ(list(Form::count, u"PBX-1"), "2\n");
  EXPECT_EQ(list(Form::count, u"=hyperlink(\"x\")"), "0\n");
}

TEST_F(FaultList, AFilterChoosesByTimeClassKindAndProcessor) {
  const auto during = [&](const char16_t* since, const char16_t* until) {
    return count([&](list::Filter& filter) { filter.since = since, filter.until = until; });
  };
  EXPECT_EQ(during(u"2006/11/27", u""), "1\n");
  EXPECT_EQ(during(u"", u"2006/11/26 07:59"), "0\n");
  EXPECT_EQ(during(u"", u"2006/11/26 08:00"), "2\n");
  EXPECT_EQ(during(u"2006/11/26 08:01", u"2006/11"), "1\n");
  EXPECT_EQ(count([](list::Filter& filter) { filter.minor = false; }), "0\n");
  EXPECT_EQ(count([](list::Filter& filter) { filter.major = false; }), "3\n");
  EXPECT_EQ(count([](list::Filter& filter) { filter.kinds = {list::KindRule::Way::only, {u"3b"}}; }), "1\n");
  EXPECT_EQ(count([](list::Filter& filter) { filter.processor = u"lp 2"; }), "1\n");
}

TEST_F(FaultList, AClassIsChosenByItsName) {
  const auto ofClasses = [&](std::set<std::u16string> classes) {
    return countSelected([&](FaultSelection& selection) { selection.classes = std::move(classes); });
  };
  EXPECT_EQ(ofClasses({}), "3\n");
  EXPECT_EQ(ofClasses({u"mn"}), "3\n");
  EXPECT_EQ(ofClasses({u"mj"}), "0\n");
  EXPECT_EQ(ofClasses({u"mj", u"mn"}), "3\n");
}

TEST_F(FaultList, ADateOfAnotherFormLiesWithinNoLimits) {
  {
    DatabaseWriter writer(file_.u16string(), true);
    writer.createTables(store::faultTables);
    addExchange(writer, 1, u"PBX-1", u"2006-11-27 09:00:00", true);
    addFault(writer, 1, u"01", u"LP 1", u"27.11.2006", u"Line down");
    addFault(writer, 1, u"01", u"LP 1", u"2006/11/27 10:00", u"Line down");
    writer.finish();
  }
  EXPECT_EQ(count([](list::Filter&) {}), "2\n");
  EXPECT_EQ(count([](list::Filter& filter) { filter.since = u"0001"; }), "1\n");
  EXPECT_EQ(count([](list::Filter& filter) { filter.until = u"9999"; }), "1\n");
}

TEST_F(FaultList, TimesThatCantBeFollowedAreRefused) {
  const std::string form =
      ": write the time as YYYY/MM/DD HH:MM, or its beginning as far as the year, the month, the day or the "
      "hour";
  EXPECT_EQ(count([](list::Filter& filter) { filter.since = u"yesterday\x1B"; }),
            "--since yesterday\\x1B" + form);
  EXPECT_EQ(count([](list::Filter& filter) { filter.until = u"27.11.2006"; }), "--until 27.11.2006" + form);
  EXPECT_EQ(count([](list::Filter& filter) { filter.since = u"2007", filter.until = u"2006"; }),
            "--since 2007 lies behind --until 2006: no fault can lie between them");
}

TEST_F(FaultList, ExchangesIgnoreCaseAndBlanksBehind) {
  EXPECT_EQ(list(Form::count, u"pbx-1"), "2\n");
  EXPECT_EQ(list(Form::count, u"Pbx-1  "), "2\n");
  EXPECT_EQ(refusal(Form::count, u" PBX-1").substr(0, 9), "FAULT.MDB");
}

TEST_F(FaultList, AnUnknownExchangeIsAnErrorThatNamesTheKnownOnes) {
  for (const Form form : {Form::lines, Form::csv, Form::count})
    EXPECT_EQ(refusal(form, u"PBX-9\x1B"),
              "FAULT.MDB: there is no exchange \"PBX-9\\x1B\". Name one of those stored there: \"PBX-1\", "
              "\"Büro\\x1B[31m \\u202E\"2\"\", \"=HYPERLINK(\"x\")\"");
  createDatabase(file_.u16string(), store::faultTables, true);
  EXPECT_EQ(refusal(Form::count, u"PBX-1"),
            "FAULT.MDB: there is no exchange \"PBX-1\". No exchange is stored there");
  EXPECT_EQ(list(Form::count), "0\n");
}

TEST(ForSpreadsheet, AnApostropheStandsBeforeWhatWouldBeAFormula) {
  for (const char16_t* formula :
       {u"=1", u"+1", u"-1", u"@SUM", u"\tx", u"\rx", u"\nx", u"＝1", u"＋1", u"－1", u"＠x"})
    EXPECT_EQ(text::forSpreadsheet(formula), u"'" + std::u16string(formula));
  for (const char16_t* plain : {u"", u"a=1", u" =1", u"'=1", u"1-2", u"日"})
    EXPECT_EQ(text::forSpreadsheet(plain), plain);
}

TEST(CsvExport, TextsForASpreadsheetAreMadeHarmlessWhenThatIsWanted) {
  const access::Value formula = std::u16string(u"=1+1"), number = std::int32_t{-5};
  EXPECT_EQ(csvField(formula), "=1+1");
  EXPECT_EQ(csvField(formula, CsvUse::spreadsheet), "'=1+1");
  EXPECT_EQ(csvField(std::u16string(u"-\"x\""), CsvUse::spreadsheet), "\"'-\"\"x\"\"\"");
  EXPECT_EQ(csvField(number, CsvUse::spreadsheet), "-5");
  EXPECT_EQ(csvField(std::u16string{}, CsvUse::spreadsheet), "\"\"");
}

}  // namespace
}  // namespace vordane::tools
