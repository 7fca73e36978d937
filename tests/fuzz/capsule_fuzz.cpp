// A capsule of which any bytes have been changed: it is refused with a sentence or it is read, and what is
// unpacked are databases of a suite, in the folder that was named.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>

#include "capsule/capsule.h"
#include "check.h"
#include "lines.h"

namespace {

namespace fs = std::filesystem;
using namespace vordane;

const fs::path& place() {
  static const fs::path folder = [] {
    const fs::path made = fs::temp_directory_path() / ("vordane-fuzz-capsule-" + std::to_string(getpid()));
    fs::create_directories(made);
    return made;
  }();
  return folder;
}

std::string wholeCapsule() {
  const fs::path file = place() / "whole";
  fs::remove(file);
  tools::CapsuleWriter writer(file);
  access::Table table{u"PBXList", {{u"ID", access::ColumnType::longInteger, 0, true}, {u"PBXName"}}, 1, 7};
  access::Visitor& tables = writer.tablesOf("FAULT.MDB");
  tables.beginTable(table);
  tables.row({std::int32_t{1}, std::u16string(u"PBX-1")});
  tables.endTable();
  writer.traceLine("trace-20261123-064512-0123abcd-0001.jsonl",
                   R"({"at":"2026-11-23T06:45:12.000001Z","event":"start"})");
  writer.finish();
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

}  // namespace

// Three bytes are a change: where, in steps of the file's length divided by 65,536, and what stands there
// then.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static const std::string whole = wholeCapsule();
  std::string changed = whole;
  for (std::size_t i = 0; i + 2 < size; i += 3)
    changed[(bytes[i] * 256U + bytes[i + 1]) * changed.size() / 65536] = static_cast<char>(bytes[i + 2]);
  const fs::path file = place() / "changed", folder = place() / "unpacked";
  std::ofstream(file, std::ios::binary | std::ios::trunc) << changed;
  fs::remove_all(folder);
  fs::create_directory(folder);
  const std::set<std::string> around{"changed", "unpacked", "whole"};
  try {
    for (const fs::path& made : tools::unpackDatabases(file, folder))
      fuzz::require(made.parent_path() == folder);
  } catch (const tools::ToolError&) {
  }
  for (const auto& entry : fs::directory_iterator(place()))
    fuzz::require(around.contains(entry.path().filename().string()));
  return 0;
}
