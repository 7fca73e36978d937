// A capsule: what happened at a workstation, in one file that can be sent and opened on another desk
// (docs/capsules.md). It is a file of the embedded engine, so that the plain shell of SQLite reads it too.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/access/access_file.h"
#include "tools/sqlite/database_writer.h"

namespace vordane::tools {

inline constexpr std::int32_t capsuleFormat = 1;

// Writes one, whole or not at all: until `finish` nothing stands under its name.
class CapsuleWriter {
 public:
  // Throws DatabaseError when `path` exists or can't be written, as all of these do.
  explicit CapsuleWriter(const std::filesystem::path& path);

  void about(std::string_view name, std::string_view value);     // UTF-8
  void traceLine(std::string_view file, std::string_view text);  // without its end
  void setting(std::u16string_view section, std::u16string_view key, std::u16string_view value);
  void receipt(std::string_view json);
  void reportLine(std::string_view text);
  // The tables of a database of the suite, heard as they are read: each becomes "TABLE in FILE".
  access::Visitor& tablesOf(std::string_view file);
  void finish();

 private:
  class Tables : public access::Visitor {
   public:
    explicit Tables(DatabaseWriter& writer) : writer_(writer) {}
    void beginTable(const access::Table& table) override;
    void row(const std::vector<access::Value>& values) override;
    void endTable() override;
    std::u16string file;

   private:
    DatabaseWriter& writer_;
    std::u16string name_;
    std::vector<access::Value> values_;
    std::int32_t lastAutoNumber_ = 0;  // 0: the table counts nothing
  };

  void insert(std::u16string_view table, std::initializer_list<std::string_view> texts);

  DatabaseWriter writer_;
  Tables tables_{writer_};
  std::int32_t lines_ = 0;
};

struct CapsuleLine {
  std::string file, text;
};

// What a capsule says of itself, and its trace.
struct Capsule {
  std::map<std::string, std::string> about;  // Format, Made, Version, Exchange, Since, Anonymous, ...
  std::vector<CapsuleLine> trace;            // by process, in the order in which things happened
  std::vector<std::string> report;
  std::map<std::string, std::size_t> rows;  // of each table of the suite's, "TABLE in FILE"
};

// Throws ToolError with what is wrong: no capsule, cut short, changed, of a newer version.
Capsule readCapsule(const std::filesystem::path& path);

// Makes the databases of the capsule in a folder that is there: FAULT.MDB, VORDANE.LNG and the others, as
// many as it holds, by these names and no others. None of them may be there. Answers their paths. Throws
// ToolError.
std::vector<std::filesystem::path> unpackDatabases(const std::filesystem::path& capsule,
                                                   const std::filesystem::path& folder);

}  // namespace vordane::tools
