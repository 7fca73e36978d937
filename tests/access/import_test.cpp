// The suite's Access files brought over: every row and every column, or nothing at all.
#include "import_suite.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <random>

#include "access/recording_visitor.h"
#include "lines.h"
#include "places.h"
#include "platform/access/access_child.h"
#include "platform/engine_choice.h"
#include "platform/sqlite/engine.h"
#include "startup/databases.h"
#include "text/utf8.h"
#include "tools/sqlite/table_reader.h"

namespace vordane::tools {
namespace {

namespace fs = std::filesystem;
using access::RecordingVisitor;
using automation::Value;
using database::FileKind;

const fs::path samples = test::dataFolder() / "access";

std::string bytesOf(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

// A value as a text that tells Null, empty text, number and Yes/No apart, whatever the number's width.
std::string comparable(const Value& value) {
  if (automation::isNull(value)) return "Null";
  if (std::holds_alternative<bool>(value)) return std::get<bool>(value) ? "Yes" : "No";
  if (const auto* words = std::get_if<std::u16string>(&value))
    return "'" + text::toUtf8(*words) + "'" + std::to_string(words->size());
  return text::toUtf8(automation::toText(automation::toDouble(value)));
}

using Rows = std::vector<std::vector<std::string>>;
Rows comparable(const std::vector<std::vector<Value>>& rows) {
  Rows all;
  for (const auto& row : rows) {
    auto& out = all.emplace_back();
    for (const Value& value : row) out.push_back(comparable(value));
  }
  std::sort(all.begin(), all.end());
  return all;
}

class ImportSuite : public testing::Test {
 protected:
  ImportSuite() {
    fs::create_directories(suite / "ADDINS" / "DATABASE");
    fs::create_directories(suite / "QUIL32" / "DATABASE");
  }
  ~ImportSuite() override { fs::remove_all(suite); }

  fs::path own(const char* name) const { return suite / "ADDINS" / "DATABASE" / name; }
  fs::path shared(const char* name) const { return suite / "QUIL32" / "DATABASE" / name; }
  void lay(const char* sample, const fs::path& place) const { fs::copy_file(samples / sample, place); }
  void layAll() const {
    lay("FAULT-10k.MDB", own("FAULT.MDB"));
    lay("VORDANE.LNG", own("VORDANE.LNG"));
    for (const char* name : {"Common.LNG", "Register.mdb", "Schedule.mdb"}) lay(name, shared(name));
  }
  static void read(const fs::path& path, access::Visitor& visitor) {
    access::readAccessFileInChild(path.string(), visitor, 10000);
  }
  // Every file below the suite with its bytes.
  std::map<std::string, std::string> everything() const {
    std::map<std::string, std::string> all;
    for (const auto& entry : fs::recursive_directory_iterator(suite))
      if (entry.is_regular_file()) all[entry.path().string()] = bytesOf(entry.path());
    return all;
  }
  static RecordingVisitor embedded(const fs::path& path) {
    RecordingVisitor visitor;
    tools::readTables(path.u16string(), visitor);
    return visitor;
  }

  fs::path suite = fs::temp_directory_path() / ("vordane-import-" + std::to_string(std::random_device()()));
};

TEST_F(ImportSuite, BringsOverEveryRowAndColumnOfEveryFile) {
  layAll();
  const auto files = importSuite(suite, read);
  EXPECT_EQ(files.size(), 5U);
  for (const ImportedFile& file : files) {
    RecordingVisitor before;
    access::readAccessFile(file.kept.string(), before);
    const RecordingVisitor after = embedded(file.path);
    ASSERT_EQ(after.tables.size(), before.tables.size()) << file.path;
    for (const auto& [name, table] : before.tables) {
      const auto& brought = after.tables.at(name);
      ASSERT_EQ(brought.table.columns.size(), table.table.columns.size());
      for (std::size_t i = 0; i < table.table.columns.size(); ++i)
        EXPECT_EQ(brought.table.columns[i].name, table.table.columns[i].name);
      EXPECT_EQ(brought.table.lastAutoNumber, table.table.lastAutoNumber);
      EXPECT_TRUE(comparable(brought.rows) == comparable(table.rows))
          << file.path << " " << text::toUtf8(name);
    }
  }
}

TEST_F(ImportSuite, TheCountsAreThoseTheFilesAreKnownToHave) {
  layAll();
  std::map<std::string, std::uint32_t> counts;
  for (const ImportedFile& file : importSuite(suite, read))
    for (const ImportedTable& table : file.tables)
      counts[file.path.filename().string() + " " + table.name] = table.rows;
  EXPECT_EQ(counts, (std::map<std::string, std::uint32_t>{{"FAULT.MDB PBXList", 3},
                                                          {"FAULT.MDB FaultDisplay", 10000},
                                                          {"VORDANE.LNG tForms", 5},
                                                          {"VORDANE.LNG tControls", 62},
                                                          {"VORDANE.LNG tComboBoxDT", 24},
                                                          {"VORDANE.LNG tSSGridsHD", 21},
                                                          {"VORDANE.LNG tProject", 1},
                                                          {"VORDANE.LNG tMessages", 165},
                                                          {"VORDANE.LNG tMsgBox", 20},
                                                          {"VORDANE.LNG tPicture", 8},
                                                          {"Common.LNG PictureFileName", 12},
                                                          {"Common.LNG tMsgBox", 10},
                                                          {"Register.mdb Registry", 5},
                                                          {"Schedule.mdb Options", 4}}));
}

// Another program's reading of a table: the rows as text, field by field, in no order.
Rows exportedRows(const fs::path& file, const std::string& table) {
  const std::string command =
      "mdb-export -H -Q -0 '<NULL>' -d '<F>' -R '<R>' '" + file.string() + "' '" + table + "'";
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(popen(command.c_str(), "r"), pclose);
  std::string all;
  char buffer[65536];
  for (std::size_t n = 0; (n = std::fread(buffer, 1, sizeof buffer, pipe.get())) > 0;) all.append(buffer, n);
  Rows rows;
  for (std::size_t at = 0, end = 0; (end = all.find("<R>", at)) != std::string::npos; at = end + 3) {
    auto& fields = rows.emplace_back();
    const std::string row = all.substr(at, end - at) + "<F>";
    for (std::size_t f = 0, stop = 0; (stop = row.find("<F>", f)) != std::string::npos; f = stop + 3)
      fields.push_back(row.substr(f, stop - f));
  }
  std::sort(rows.begin(), rows.end());
  return rows;
}

// As the other program would show what was brought over: it takes an empty text for Null, and has no
// character beyond the Basic Multilingual Plane, which `bells` counts.
Rows asExported(const std::vector<std::vector<Value>>& rows, int& bells) {
  Rows all;
  for (const auto& row : rows) {
    auto& out = all.emplace_back();
    for (const Value& value : row) {
      const auto* yes = std::get_if<bool>(&value);
      std::string field = automation::isNull(value) ? "" : text::toUtf8(automation::toText(value));
      if (yes != nullptr) field = *yes ? "1" : "0";
      if (field.empty()) field = "<NULL>";
      if (const auto bell = field.find("\xF0\x9F\x94\x94"); bell != std::string::npos) {
        field.replace(bell, 4, "??");
        ++bells;
      }
      out.push_back(field);
    }
  }
  std::sort(all.begin(), all.end());
  return all;
}

TEST_F(ImportSuite, EveryRowOfEveryTableIsWhatAnotherProgramReads) {
  layAll();
  int tables = 0, bells = 0;
  std::size_t rows = 0;
  for (const ImportedFile& file : importSuite(suite, read)) {
    const RecordingVisitor imported = embedded(file.path);
    EXPECT_EQ(imported.tables.size(), file.tables.size());
    for (const auto& [name, content] : imported.tables) {
      SCOPED_TRACE(file.path.filename().string() + " " + text::toUtf8(name));
      const Rows expected = exportedRows(file.kept, text::toUtf8(name));
      const Rows ours = asExported(content.rows, bells);
      ASSERT_EQ(ours.size(), expected.size());
      for (std::size_t i = 0; i < ours.size(); ++i) ASSERT_EQ(ours[i], expected[i]) << "row " << i;
      rows += ours.size();
      ++tables;
    }
  }
  EXPECT_EQ(tables, 14);
  EXPECT_EQ(rows, 10340U);
  EXPECT_EQ(bells, 1);
}

TEST_F(ImportSuite, TheNextFaultGetsANumberNeverGiven) {
  lay("FAULT-10k.MDB", own("FAULT.MDB"));
  importSuite(suite, read);
  const auto database = sqlite::makeEngine(startup::databases)->open(own("FAULT.MDB").u16string(), false);
  const auto rows = database->openRecordset(u"Select * from FaultDisplay");
  rows->addNew();
  EXPECT_EQ(automation::toLong(rows->get(u"Count")), 10041);
}

TEST_F(ImportSuite, KeepsTheAccessFileAndDoesNothingTheSecondTime) {
  lay("FAULT-empty.MDB", own("fault.mdb"));
  lay("FAULT-empty.MDB", own("other.mdb"));
  const std::string access = bytesOf(own("fault.mdb"));
  const auto files = importSuite(suite, read);
  ASSERT_EQ(files.size(), 1U) << "only the suite's own files are brought over";
  EXPECT_EQ(files[0].kept, own("fault.mdb.access"));
  EXPECT_EQ(bytesOf(files[0].kept), access);
  EXPECT_EQ(database::fileKind(own("fault.mdb").u16string()), FileKind::embedded);
  const auto before = everything();
  EXPECT_TRUE(importSuite(suite, read).empty());
  EXPECT_EQ(everything(), before);
}

TEST_F(ImportSuite, AnOlderKeptFileIsNeverReplaced) {
  lay("FAULT-empty.MDB", own("FAULT.MDB"));
  std::ofstream(own("FAULT.MDB.access")) << "older";
  EXPECT_EQ(importSuite(suite, read).at(0).kept, own("FAULT.MDB.access-2"));
  EXPECT_EQ(bytesOf(own("FAULT.MDB.access")), "older");
}

TEST_F(ImportSuite, OneDamagedFileLeavesAllAsTheyWere) {
  layAll();
  std::ofstream(shared("Schedule.mdb"), std::ios::binary | std::ios::in).seekp(4096)
      << std::string(60000, 'x');
  const auto before = everything();
  EXPECT_THROW(importSuite(suite, read), ToolError);
  EXPECT_EQ(everything(), before);
}

TEST_F(ImportSuite, AFileThatCannotTakeItsPlaceTakesTheOthersBack) {
  layAll();
  // What was written for the fourth of the five is gone when its turn comes.
  const auto before = everything();
  const auto blocked = [&](const fs::path& path, access::Visitor& visitor) {
    read(path, visitor);
    if (path.filename() == "Schedule.mdb") fs::remove(shared("Register.mdb.import"));
  };
  EXPECT_THROW(importSuite(suite, blocked), ToolError);
  EXPECT_EQ(everything(), before);
}

TEST_F(ImportSuite, ANameTooLongForItsCompanionsLeavesAllAsItWas) {
  // The folders above leave room for the file's name, but for none behind which ".import" stands.
  fs::path deep = suite;
  while (deep.string().size() + 201 < 4080) deep /= std::string(200, 'd');
  deep /= std::string(4095 - deep.string().size() - 12, 'd');
  fs::create_directories(deep);
  lay("FAULT-empty.MDB", deep / "FAULT.MDB");
  lay("FAULT-empty.MDB", own("FAULT.MDB"));
  const auto before = everything();
  EXPECT_ANY_THROW(importSuite(suite, read));
  EXPECT_EQ(everything(), before);
}

// A damaged list of tables hides one and says nothing else.
TEST_F(ImportSuite, AMissingTableIsDamage) {
  lay("FAULT-empty.MDB", own("FAULT.MDB"));
  const auto before = everything();
  const auto hidden = [&](const fs::path&, access::Visitor& visitor) {
    visitor.beginTable({u"FaultDisplay", {{u"ID", access::ColumnType::integer, 0, false}}, 0, 0});
    visitor.endTable();
  };
  EXPECT_THROW(importSuite(suite, hidden), ToolError);
  EXPECT_THROW(importSuite(suite, [](const fs::path&, access::Visitor&) {}), ToolError);
  EXPECT_EQ(everything(), before);
}

TEST_F(ImportSuite, AFileInUseIsNotBroughtOver) {
  lay("FAULT-empty.MDB", own("FAULT.MDB"));
  std::ofstream(own("FAULT.ldb")) << "somebody";
  const auto before = everything();
  EXPECT_THROW(importSuite(suite, read), ToolError);
  EXPECT_EQ(everything(), before);
}

TEST_F(ImportSuite, AFullDiskLeavesAllAsItWas) {
  lay("FAULT-empty.MDB", own("FAULT.MDB"));
  const auto before = everything();
  const auto full = [&](const fs::path&, access::Visitor& visitor) {
    visitor.beginTable({u"PBXList", {{u"ID", access::ColumnType::longInteger, 0, true}}, 2, 2});
    throw database::DatabaseError(3026, u"Not enough space on disk.");
  };
  try {
    importSuite(suite, full);
    ADD_FAILURE();
  } catch (const ToolError& failure) {
    EXPECT_EQ(failure.what(),
              own("FAULT.MDB").string() +
                  ": there is no room on its disk. Make room, then try again. Nothing was changed");
  }
  EXPECT_EQ(everything(), before);
  EXPECT_THROW(importSuite(suite / "missing", read), ToolError);
}

// Random damage: an error or a result as whole as the file says, and the file itself as it was. The number of
// rounds comes from VORDANE_DAMAGE_ROUNDS.
TEST_F(ImportSuite, DamageIsAnErrorOrACorrectResultAndNeverACrash) {
  const char* wanted = std::getenv("VORDANE_DAMAGE_ROUNDS");
  const int rounds = wanted != nullptr ? std::atoi(wanted) : 100;
  const std::pair<const char*, const char*> kinds[] = {{"Schedule.mdb", "Schedule.mdb"},
                                                       {"Register.mdb", "Register.mdb"},
                                                       {"FAULT-empty.MDB", "FAULT.MDB"},
                                                       {"Common.LNG", "Common.LNG"}};
  std::mt19937 random(20061127);
  int refused = 0, read = 0;
  for (int round = 0; round < rounds; ++round) {
    const auto& [sample, name] = kinds[static_cast<std::size_t>(round) % std::size(kinds)];
    std::string bytes = bytesOf(samples / sample);
    for (unsigned i = 0, count = 1 + random() % 300; i < count; ++i)
      bytes[20 + random() % (bytes.size() - 20)] = static_cast<char>(random());
    const fs::path file = own(name);
    std::ofstream(file, std::ios::binary) << bytes;
    try {
      const auto files = importSuite(suite, ImportSuite::read);
      ++read;
      ASSERT_TRUE(bytesOf(files.at(0).kept) == bytes);
      RecordingVisitor after = embedded(file);
      for (const ImportedTable& table : files.at(0).tables)
        EXPECT_EQ(after.tables.at(text::fromUtf8(table.name)).rows.size(), table.rows);
    } catch (const ToolError& failure) {
      ++refused;
      ASSERT_TRUE(bytesOf(file) == bytes) << failure.what();
      ASSERT_TRUE(std::string(failure.what()).starts_with(file.string() + ":")) << failure.what();
    }
    ASSERT_FALSE(fs::exists(file.string() + ".import"));
    for (const auto& entry : fs::directory_iterator(file.parent_path())) fs::remove(entry);
  }
  EXPECT_EQ(read + refused, rounds);
  EXPECT_GT(refused, 0);
  std::printf("damaged copies: %d, refused %d, read whole %d\n", rounds, refused, read);
}

}  // namespace
}  // namespace vordane::tools
