#include "capsule/capsule.h"

#include <gmock/gmock.h>
#include <sqlite3.h>

#include <filesystem>
#include <fstream>
#include <random>

#include "capsule/capsule_pack.h"
#include "lines.h"
#include "platform/sqlite/engine.h"
#include "settings/suite_databases.h"
#include "startup/databases.h"
#include "store/fault_database.h"
#include "text/utf8.h"
#include "tools/sqlite/database_writer.h"
#include "tools/sqlite/table_reader.h"

namespace vordane::tools {
namespace {

using testing::ElementsAre, testing::HasSubstr, testing::IsEmpty;
namespace fs = std::filesystem;

constexpr const char* mark = "trace-20261123-064512-0123abcd-0001.jsonl";

std::string bytesOf(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

// A suite with two exchanges, a receipt and a trace.
class CapsuleFile : public testing::Test {
 protected:
  CapsuleFile() {
    request.layout.root = folder / "30000";
    fs::create_directories(request.layout.ownDatabases());
    fs::create_directories(request.layout.sharedDatabases());
    request.exchange = u"hamburg";
    request.trace = folder / "trace";
    request.made = "2026-11-23T08:00:00.000000Z";
    request.read = [](const std::string& file, access::Visitor& visitor) {
      try {
        readTables(text::fromUtf8(file), visitor);
      } catch (const database::DatabaseError& failure) {
        throw ToolError(text::toUtf8(failure.description()));
      }
    };
    makeFaults();
    DatabaseWriter jobs(request.layout.schedule().u16string());
    jobs.createTables(settings::scheduleTables);
    jobs.finish();
    fs::create_directories(request.trace);
    trace(mark, R"({"at":"2026-11-23T06:45:12.000001Z","event":"start","exchange":"Hamburg"})"
                "\n"
                R"({"at":"2026-11-23T06:45:13.000001Z","event":"person","which":0})"
                "\n");
  }
  ~CapsuleFile() override { fs::remove_all(folder); }

  void makeFaults() {
    DatabaseWriter writer(request.layout.faults().u16string());
    writer.createTables(store::faultTables);
    for (const char16_t* name : {u"Hamburg", u"Kassel"}) {
      const database::Value row[] = {automation::Null{}, std::u16string(name),
                                     std::u16string(u"2026-11-23 06:45:00"), true, false};
      writer.insert(u"PBXList", row);
    }
    for (int i = 1; i <= 5; ++i) {
      const database::Value row[] = {i == 3 ? 2 : 1,
                                     std::u16string(u"3B"),
                                     std::u16string(u"MN"),
                                     std::u16string(u"LP 12"),
                                     std::u16string(u"2026/11/23 05:13"),
                                     automation::Null{},
                                     std::u16string(u"Hamburg fault \xD83D 00")};
      writer.insert(u"FaultDisplay", row);
    }
    writer.setLastAutoNumber(u"FaultDisplay", 17);
    writer.finish();
    const auto database = engine->open(request.layout.faults().u16string(), false);
    for (const char16_t* name : {u"Hamburg", u"Kassel"}) {
      database::Receipt receipt;
      receipt.moment = u"2026-11-23 06:45:00";
      receipt.exchange = name;
      receipt.person = u"anna";
      receipt.workstation = u"STATION-3";
      receipt.outcome = u"confirmed";
      database->receipts()->keep(receipt);
    }
  }
  void trace(const std::string& name, const std::string& lines) {
    std::ofstream(request.trace / name, std::ios::binary) << lines;
  }
  Packed pack() { return packCapsule(request, *engine, out); }
  static std::vector<std::string> linesOf(const Capsule& capsule) {
    std::vector<std::string> lines;
    for (const CapsuleLine& line : capsule.trace) lines.push_back(line.text);
    return lines;
  }
  // What the plain shell would say.
  std::string ask(const std::string& sql) {
    sqlite3* handle = nullptr;
    sqlite3_open_v2(out.string().c_str(), &handle, SQLITE_OPEN_READONLY, nullptr);
    std::string answer;
    sqlite3_exec(
        handle, sql.c_str(),
        [](void* to, int columns, char** values, char**) {
          for (int i = 0; i < columns; ++i)
            *static_cast<std::string*>(to) +=
                (i == 0 ? "" : "|") + std::string(values[i] ? values[i] : "NULL");
          *static_cast<std::string*>(to) += '\n';
          return 0;
        },
        &answer, nullptr);
    sqlite3_close(handle);
    return answer;
  }
  void change(const std::string& sql) {
    sqlite3* handle = nullptr;
    sqlite3_open_v2(out.string().c_str(), &handle, SQLITE_OPEN_READWRITE, nullptr);
    ASSERT_EQ(sqlite3_exec(handle, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
        << sqlite3_errmsg(handle);
    sqlite3_close(handle);
  }
  std::string refusal() {
    try {
      readCapsule(out);
    } catch (const ToolError& failure) {
      return failure.what();
    }
    return "none";
  }

  fs::path folder = fs::temp_directory_path() / ("vordane-capsule-" + std::to_string(std::random_device()()));
  fs::path out = folder / "it.capsule";
  std::unique_ptr<database::Engine> engine = sqlite::makeEngine(startup::databases);
  PackRequest request;
};

TEST_F(CapsuleFile, HoldsWhatHappenedWithTheExchange) {
  request.report = {"incomplete: something"};
  request.settings = {{u"InstallPath", u"C:\\QUILMAR32\\30000\\"}};
  const Packed packed = pack();
  EXPECT_EQ(packed.faults, 4U);
  EXPECT_EQ(packed.traceLines, 2U);
  EXPECT_EQ(packed.traceFiles, 1U);
  EXPECT_EQ(packed.halfLines, 0U);
  EXPECT_EQ(ask("SELECT PBXName, TimeStamp, MJ, MN FROM \"PBXList in FAULT.MDB\""),
            "Hamburg|2026-11-23 06:45:00|-1|0\n");
  EXPECT_EQ(ask("SELECT ID, Fault, Alarm, CPU, Date, Count FROM \"FaultDisplay in FAULT.MDB\""),
            "1|3B|MN|LP 12|2026/11/23 05:13|1\n1|3B|MN|LP 12|2026/11/23 05:13|2\n"
            "1|3B|MN|LP 12|2026/11/23 05:13|4\n1|3B|MN|LP 12|2026/11/23 05:13|5\n");
  EXPECT_EQ(ask("SELECT Line, File, Text FROM Trace ORDER BY Line"),
            std::string("1|") + mark +
                R"(|{"at":"2026-11-23T06:45:12.000001Z","event":"start","exchange":"Hamburg"})"
                "\n2|" +
                mark +
                R"(|{"at":"2026-11-23T06:45:13.000001Z","event":"person","which":0})"
                "\n");
  EXPECT_THAT(ask("SELECT Text FROM Receipts"),
              testing::AllOf(HasSubstr("Hamburg"), HasSubstr("anna"), testing::Not(HasSubstr("Kassel"))));
  EXPECT_EQ(ask("SELECT * FROM Report"), "incomplete: something\n");
  EXPECT_EQ(ask("SELECT * FROM Settings"), "QUILMAR32|InstallPath|C:\\QUILMAR32\\30000\\\n");
  EXPECT_EQ(
      ask("SELECT Value FROM About WHERE Name IN ('Exchange','Anonymous','Made','Complete') ORDER BY Name"),
      "0\n1\nhamburg\n2026-11-23T08:00:00.000000Z\n");
  EXPECT_THAT(packed.leftOut, ElementsAre(HasSubstr("VORDANE.LNG: "), HasSubstr("Common.LNG: "),
                                          HasSubstr("Register.mdb: ")));
}

TEST_F(CapsuleFile, IsReadAndUnpackedAsItWasPacked) {
  pack();
  const Capsule capsule = readCapsule(out);
  EXPECT_EQ(capsule.about.at("Faults"), "4");
  EXPECT_EQ(capsule.trace.size(), 2U);
  EXPECT_EQ(capsule.trace[1].file, mark);
  EXPECT_THAT(capsule.trace[1].text, HasSubstr("person"));
  EXPECT_EQ(capsule.rows.at("FaultDisplay in FAULT.MDB"), 4U);
  EXPECT_EQ(capsule.rows.at("Options in Schedule.mdb"), 0U);
  fs::create_directory(folder / "there");
  EXPECT_THAT(unpackDatabases(out, folder / "there"),
              ElementsAre(folder / "there" / "FAULT.MDB", folder / "there" / "Schedule.mdb"));
  const auto before = describeTables(request.layout.faults().u16string());
  const auto after = describeTables((folder / "there" / "FAULT.MDB").u16string());
  ASSERT_EQ(after.size(), before.size());
  for (std::size_t i = 0; i < after.size(); ++i) {
    EXPECT_EQ(after[i].name, before[i].name);
    EXPECT_EQ(after[i].lastAutoNumber, before[i].lastAutoNumber);
    ASSERT_EQ(after[i].columns.size(), before[i].columns.size());
    for (std::size_t c = 0; c < after[i].columns.size(); ++c) {
      EXPECT_EQ(after[i].columns[c].name, before[i].columns[c].name);
      EXPECT_EQ(after[i].columns[c].type, before[i].columns[c].type);
    }
  }
  const auto faults = engine->open((folder / "there" / "FAULT.MDB").u16string(), true)
                          ->openRecordset(u"Select * from FaultDisplay");
  EXPECT_EQ(automation::toText(faults->get(u"Description")), u"Hamburg fault \xD83D 00");
  EXPECT_THROW(unpackDatabases(out, folder / "there"), ToolError) << "they are there already";
}

// Its first list may never have come: the trace tells why.
TEST_F(CapsuleFile, OfAnExchangeThatIsNotStoredTheTraceIsPacked) {
  request.exchange = u"Bremen";
  const Packed packed = pack();
  EXPECT_EQ(packed.faults, 0U);
  EXPECT_EQ(packed.traceLines, 2U);
  EXPECT_THAT(packed.leftOut, testing::Contains(HasSubstr("there is no exchange \"Bremen\"")));
  EXPECT_EQ(readCapsule(out).about.at("Exchange"), "Bremen");
}

TEST_F(CapsuleFile, OneThatIsThereStays) {
  pack();
  const std::string before = bytesOf(out);
  request.exchange = u"Kassel";
  EXPECT_THROW(pack(), database::DatabaseError);
  EXPECT_EQ(bytesOf(out), before);
  fs::remove(out);
  EXPECT_EQ(pack().faults, 1U);
}

TEST_F(CapsuleFile, WhatCanNotBeReadIsLeftOutAndSaid) {
  std::ofstream(request.layout.faults(), std::ios::binary) << "no database at all";
  fs::remove_all(request.trace);
  const Packed packed = pack();
  EXPECT_THAT(packed.leftOut, testing::Contains(HasSubstr("the stored faults: ")));
  EXPECT_THAT(packed.leftOut, testing::Contains(HasSubstr("the receipts: ")));
  EXPECT_THAT(packed.leftOut, testing::Contains(HasSubstr("the trace: there is none in ")));
  EXPECT_THAT(readCapsule(out).about.at("Left out"), HasSubstr("the stored faults: "));
}

TEST_F(CapsuleFile, OfATraceWholeLinesAndTheProcessesSinceAreTaken) {
  trace("trace-20261122-230000-aaaaaaaa-0001.jsonl", R"({"at":"2026-11-22T23:00:00.000000Z","event":"start"})"
                                                     "\n");
  trace("trace-20261123-000000-aaaaaaaa-0002.jsonl", R"({"at":"2026-11-23T06:00:00.000000Z","event":"end"})"
                                                     "\n{\"at\":\"2026-11-23T06:00:01.0");
  trace("trace-20261122-220000-bbbbbbbb-0001.jsonl", R"({"at":"2026-11-22T22:00:00.000000Z","event":"start"})"
                                                     "\n");
  trace("notes.jsonl", R"({"at":"2026-11-23T07:00:00.000000Z"})"
                       "\n");
  request.since = "2026-11-23T06:00";
  const Packed packed = pack();
  EXPECT_EQ(packed.halfLines, 1U);
  EXPECT_EQ(ask("SELECT substr(File, 23, 13), substr(Text, 8, 16) FROM Trace"),
            "aaaaaaaa-0001|2026-11-22T23:00\naaaaaaaa-0002|2026-11-23T06:00\n"
            "0123abcd-0001|2026-11-23T06:45\n0123abcd-0001|2026-11-23T06:45\n");
}

TEST_F(CapsuleFile, AnonymousNamesNobody) {
  request.anonymous = true;
  request.people = {u"theodora"};
  request.workstations = {u"DESK-77"};
  request.report = {R"(unsafe: C:\Users\bertram\QUILMAR32 on DESK-77)"};
  request.settings = {{u"InstallPath", u"C:\\Users\\theodora\\30000\\"}};
  trace(
      mark,
      R"({"at":"2026-11-23T06:45:12.000001Z","event":"called","number":3,"member":"RegisterPBX","arguments":["Lübeck"]})"
      "\n"
      R"({"at":"2026-11-23T06:45:13.000001Z","event":"box","text":"kassel for ANNA"})"
      "\n");
  pack();
  const std::string bytes = bytesOf(out);
  for (const char16_t* name : {u"Kassel", u"kassel", u"Lübeck", u"anna", u"ANNA", u"STATION-3", u"theodora",
                               u"DESK-77", u"bertram"}) {
    const std::u16string wide(name);
    EXPECT_EQ(bytes.find(std::string(reinterpret_cast<const char*>(wide.data()), 2 * wide.size())),
              bytes.npos)
        << text::toUtf8(wide);
    EXPECT_EQ(bytes.find(text::toUtf8(wide)), bytes.npos) << text::toUtf8(wide);
  }
  EXPECT_EQ(ask("SELECT PBXName FROM \"PBXList in FAULT.MDB\""), "Exchange-1\n");
  EXPECT_THAT(linesOf(readCapsule(out)), ElementsAre(HasSubstr(R"("arguments":["Exchange-3"])"),
                                                     HasSubstr(R"("text":"Exchange-2 for Person-2")")));
  EXPECT_EQ(readCapsule(out).about.at("Exchange"), "Exchange-1");
  EXPECT_EQ(ask("SELECT Description FROM \"FaultDisplay in FAULT.MDB\" WHERE Count = 1").substr(0, 13),
            "Hamburg fault")
      << "what is decoded of a fault stays as it is";
}

TEST_F(CapsuleFile, OneThatIsNotRightIsRefused) {
  pack();
  const std::string whole = bytesOf(out);
  const auto lay = [&](const std::string& bytes) {
    fs::remove(out);
    std::ofstream(out, std::ios::binary) << bytes;
  };
  EXPECT_EQ(refusal(), "none");
  change("UPDATE About SET Value = '2' WHERE Name = 'Format'");
  EXPECT_THAT(refusal(), HasSubstr("format 2"));
  lay(whole);
  change("DELETE FROM About WHERE Name = 'Complete'");
  EXPECT_THAT(refusal(), HasSubstr("not whole"));
  lay(whole);
  change("DROP TABLE About");
  EXPECT_THAT(refusal(), HasSubstr("no capsule"));
  for (const char* name :
       {"t in ..\\..\\evil.exe", "t in /etc/passwd", "t in C:\\x.LNG", "t in VORDANE.../../x.LNG", "t in NUL",
        "t in FAULT.MDB:stream", "t in VORDANE..LNG", "t in VORDANE.toolonglong.LNG", "t in vordane.lng"}) {
    lay(whole);
    change("CREATE TABLE \"" + std::string(name) + "\" (a TEXT)");
    EXPECT_THAT(refusal(), HasSubstr("no file of a suite")) << name;
    fs::create_directories(folder / "in" / "side");
    EXPECT_THROW(unpackDatabases(out, folder / "in" / "side"), ToolError);
    EXPECT_TRUE(fs::is_empty(folder / "in" / "side"));
  }
  lay(whole);
  change("CREATE TABLE \"x in VORDANE.pt-BR.LNG\" (a TEXT)");
  EXPECT_EQ(refusal(), "none");
  lay(whole);
  change("DROP TABLE Trace; CREATE TABLE Trace (Line INTEGER)");
  EXPECT_THAT(refusal(), HasSubstr("columns of a capsule"));
  lay("no capsule");
  EXPECT_THAT(refusal(), HasSubstr("no capsule"));
  for (const std::size_t length : {whole.size() / 2, std::size_t{4096}, std::size_t{100}, std::size_t{0}}) {
    lay(whole.substr(0, length));
    EXPECT_NE(refusal(), "none") << length;
  }
  std::mt19937 random(7);
  for (int i = 0; i < 300; ++i) {
    std::string bytes = whole;
    for (int n = 0; n < 8; ++n) bytes[random() % bytes.size()] = static_cast<char>(random());
    lay(bytes);
    refusal();  // a sentence or an answer, never an end
  }
}

}  // namespace
}  // namespace vordane::tools
