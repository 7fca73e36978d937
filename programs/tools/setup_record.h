// What an installation has done, kept beside its remover: what an upgrade goes on from, and what a removal
// takes away.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "setup_rules.h"

namespace vordane::tools {

struct SetupRecord {
  Version version;
  std::string language;  // of the folder of texts: "en"
  Words words = Words::x64;
  Situation situation = Situation::alone;
  bool everybody = false;      // registered for every user
  bool demonstration = false;  // the simulated exchange came with it
  bool crashDumps = false;     // crashes of the add-in leave an image of its memory
  bool removed = false;        // what users' work has made is still there, the programs are gone
  std::vector<std::filesystem::path> files;    // places of this release's files
  std::vector<std::filesystem::path> made;     // places of files that it made and users' work goes into
  std::vector<std::filesystem::path> folders;  // that were not there before, the outermost first
};

// Below a version directory.
inline const std::filesystem::path recordPlace = places.setup() / "installed.tsv";

std::string recordText(const SetupRecord& record);
// Nothing for a text that is no whole record.
std::optional<SetupRecord> parseRecord(std::string_view text);
// Throws UnwritableFile.
void writeRecord(const SetupRecord& record, const std::filesystem::path& path);
// Nothing where none is, or a damaged one.
std::optional<SetupRecord> readRecord(const SuiteLayout& layout);

}  // namespace vordane::tools
