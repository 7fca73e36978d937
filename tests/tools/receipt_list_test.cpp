#include "receipt_list.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <sstream>

#include "lines.h"
#include "platform/sqlite/engine.h"
#include "settings/suite_databases.h"
#include "startup/databases.h"
#include "store/fault_database.h"
#include "tools/sqlite/database_writer.h"

namespace vordane::tools {
namespace {

using Form = ListOptions::Form;

class ReceiptList : public testing::Test {
 protected:
  ReceiptList() {
    std::filesystem::create_directory(folder_);
    createDatabase(file_.u16string(), store::faultTables);
    const auto database = sqlite::makeEngine(startup::databases)->open(file_.u16string(), false);
    const auto exchange = database->openRecordset(store::statement::allExchanges);
    exchange->addNew();
    exchange->set(u"PBXName", std::u16string(u"PBX-1"));
    exchange->set(u"MJ", true);
    exchange->update();
    keep(*database,
         {u"2026-11-20 21:14:05", u"PBX-1", u"confirmed", {}, {{u"EA1", u"00", u"CCC", u"OK"}}, 1});
    keep(*database, {u"2026-11-21 08:00:00", u"=Büro\x1B[31m", u"error code", 61, {}, 0});
    keep(*database, {u"2026-11-22 08:00:00",
                     u"PBX-1",
                     u"not confirmed",
                     {},
                     {{u"EA1", u"a\"b", u"", u"-2"}, {u"x", u"", u"", u"DATA\nERROR"}},
                     5});
  }
  // What reads a file leaves its log beside it.
  ~ReceiptList() override { std::filesystem::remove_all(folder_); }

  struct Kept {
    const char16_t *moment, *exchange, *outcome;
    std::optional<std::int32_t> code;
    std::vector<database::ReceiptEntry> entries;
    std::int32_t answered;
  };
  static void keep(database::Database& database, const Kept& kept) {
    database::Receipt receipt;
    receipt.moment = kept.moment;
    receipt.exchange = kept.exchange;
    receipt.person = u"anna";
    receipt.workstation = u"STATION-3";
    receipt.outcome = kept.outcome;
    receipt.code = kept.code;
    receipt.entries = kept.entries;
    receipt.answered = kept.answered;
    database.receipts()->keep(receipt);
  }
  std::string list(Form form, FaultSelection selection = {}) {
    const auto database = sqlite::makeEngine(startup::databases)->open(file_.u16string(), true);
    std::ostringstream out;
    try {
      listReceipts(*database, "FAULT.MDB", {form, std::move(selection)}, out);
    } catch (const ToolError& failure) {
      return failure.what();
    }
    return out.str();
  }

  const std::filesystem::path folder_ =
      std::filesystem::temp_directory_path() / ("vordane-receipts-" + std::to_string(std::random_device{}()));
  const std::filesystem::path file_ = folder_ / "FAULT.MDB";
};

TEST_F(ReceiptList, ForAPersonIsALineForEachAndOneForEachLineOfTheAnswer) {
  EXPECT_EQ(list(Form::lines),
            "2026-11-22 08:00:00  PBX-1: not confirmed, by anna on STATION-3, major alarm, minor clear\n"
            "  EA1  a\"b    -2\n"
            "  x      DATA\\x0AERROR\n"
            "  and 3 more\n"
            "2026-11-21 08:00:00  =Büro\\x1B[31m: error code 61, by anna on STATION-3\n"
            "2026-11-20 21:14:05  PBX-1: confirmed, by anna on STATION-3, major alarm, minor clear\n"
            "  EA1  00  CCC  OK\n");
}

TEST_F(ReceiptList, ForASpreadsheetIsARowForEach) {
  EXPECT_EQ(
      list(Form::csv),
      "Number,Time,Exchange,User,Workstation,Major,Minor,Outcome,Code,Lines,Answer\r\n"
      "3,\"2026-11-22 08:00:00\",\"PBX-1\",\"anna\",\"STATION-3\",1,0,\"not confirmed\",,5,"
      "\"EA1\ta\"\"b\t\t-2\r\nx\t\t\tDATA\nERROR\"\r\n"
      "2,\"2026-11-21 08:00:00\",\"'=Büro\x1B[31m\",\"anna\",\"STATION-3\",,,\"error code\",61,0,\"\"\r\n"
      "1,\"2026-11-20 21:14:05\",\"PBX-1\",\"anna\",\"STATION-3\",1,0,\"confirmed\",,1,"
      "\"EA1\t00\tCCC\tOK\"\r\n");
}

TEST_F(ReceiptList, ForProgramsIsOneDocument) {
  EXPECT_EQ(list(Form::json, {u"pbx-1 ", {}, {}}),
            R"({"format":"vordane receipt list","version":1,"receipts":[
{"event":"reset","number":3,"exchange":"PBX-1","time":"2026-11-22 08:00:00","user":"anna","workstation":"STATION-3","major":true,"minor":false,"confirmed":false,"outcome":"not confirmed","code":null,"lines":5,"answer":[{"command":"EA1","first":"a\"b","second":"","extra":"-2"},{"command":"x","first":"","second":"","extra":"DATA\nERROR"}]},
{"event":"reset","number":1,"exchange":"PBX-1","time":"2026-11-20 21:14:05","user":"anna","workstation":"STATION-3","major":true,"minor":false,"confirmed":true,"outcome":"confirmed","code":null,"lines":1,"answer":[{"command":"EA1","first":"00","second":"CCC","extra":"OK"}]}
]}
)");
}

TEST_F(ReceiptList, IsChosenByExchangeAndTime) {
  const auto count = [&](std::optional<std::u16string> exchange, const char16_t* since,
                         const char16_t* until) {
    FaultSelection selection{std::move(exchange), {}, {}};
    selection.filter.since = since;
    selection.filter.until = until;
    return list(Form::count, selection);
  };
  EXPECT_EQ(count({}, u"", u""), "3\n");
  EXPECT_EQ(count(u"=büro\x1B[31m", u"", u""), "1\n") << "not stored any longer";
  EXPECT_EQ(count({}, u"2026/11/21", u""), "2\n");
  EXPECT_EQ(count({}, u"", u"2026/11/21 08:00"), "2\n");
  EXPECT_EQ(count({}, u"2026/11/21", u"2026/11/21"), "1\n");
  EXPECT_EQ(count(u"PBX-1", u"2027", u""), "0\n");
  EXPECT_EQ(count({}, u"today", u"").substr(0, 13), "--since today");
  EXPECT_EQ(count(u"PBX", u"", u""),
            "FAULT.MDB: there is no exchange \"PBX\". Name one of those stored there: \"PBX-1\", "
            "\"=Büro\\x1B[31m\"");
}

TEST_F(ReceiptList, SaysWhereNoneAreKept) {
  const auto other = file_.u16string() + u".other";
  createDatabase(other, settings::registrationTables);
  const auto database = sqlite::makeEngine(startup::databases)->open(other, true);
  std::ostringstream out;
  EXPECT_THROW(listReceipts(*database, "FAULT.MDB", {Form::lines}, out), ToolError);
  std::filesystem::remove(other);
}

}  // namespace
}  // namespace vordane::tools
