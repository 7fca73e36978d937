#include "setup_record.h"

#include <fstream>
#include <iterator>

#include "text/utf8.h"
#include "whole_file.h"

namespace vordane::tools {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view lastLine = "end";

std::string placeText(const fs::path& place) {
  return text::toUtf8(place.generic_u16string());
}

std::string versionText(const Version& version) {
  return std::to_string(version.major) + "." + std::to_string(version.minor) + "." +
         std::to_string(version.revision);
}

// Takes one line over; false when it makes no sense.
bool read(std::string_view key, std::string_view value, SetupRecord& record) {
  if (key == "language") return record.language = value, !value.empty();
  if (key == "everybody") return record.everybody = value == "yes", true;
  if (key == "demonstration") return record.demonstration = value == "yes", true;
  if (key == "crash dumps") return record.crashDumps = value == "yes", true;
  if (key == "removed") return record.removed = value == "yes", true;
  if (key == "situation") {
    record.situation = value == nameOf(Situation::suite) ? Situation::suite : Situation::alone;
    return true;
  }
  if (key == "version") {
    const auto version = versionOf(value);
    return version ? record.version = *version, true : false;
  }
  if (key == "words") {
    const auto words = wordsNamed(value);
    return words ? record.words = *words, true : false;
  }
  auto* const list = key == "file"     ? &record.files
                     : key == "made"   ? &record.made
                     : key == "folder" ? &record.folders
                                       : nullptr;
  if (list == nullptr) return true;  // a later release's
  const fs::path place = toPath(std::string(value));
  // A record never leads out of its suite.
  if (place.is_absolute() || place.empty() || value.find("..") != value.npos) return false;
  list->push_back(place);
  return true;
}

}  // namespace

std::string recordText(const SetupRecord& record) {
  const auto yes = [](bool value) { return value ? "yes" : "no"; };
  std::string out = "version\t" + versionText(record.version) + "\nlanguage\t" + record.language +
                    "\nwords\t" + std::string(nameOf(record.words)) + "\nsituation\t" +
                    std::string(nameOf(record.situation)) + "\neverybody\t" + yes(record.everybody) +
                    "\ndemonstration\t" + yes(record.demonstration) + "\ncrash dumps\t" +
                    yes(record.crashDumps) + "\nremoved\t" + yes(record.removed) + '\n';
  for (const fs::path& place : record.files) out += "file\t" + placeText(place) + '\n';
  for (const fs::path& place : record.made) out += "made\t" + placeText(place) + '\n';
  for (const fs::path& place : record.folders) out += "folder\t" + placeText(place) + '\n';
  return out + std::string(lastLine) + '\n';
}

std::optional<SetupRecord> parseRecord(std::string_view text) {
  SetupRecord record;
  bool version = false;
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    if (end == text.npos) return std::nullopt;
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end + 1);
    if (line == lastLine) return version && !record.language.empty() ? std::optional(record) : std::nullopt;
    const std::size_t tab = line.find('\t');
    if (tab == line.npos) return std::nullopt;
    const std::string_view key = line.substr(0, tab);
    if (!read(key, line.substr(tab + 1), record)) return std::nullopt;
    version = version || key == "version";
  }
  return std::nullopt;
}

void writeRecord(const SetupRecord& record, const fs::path& path) {
  writeFile(path, recordText(record));
}

std::optional<SetupRecord> readRecord(const SuiteLayout& layout) {
  std::ifstream in(layout.root / recordPlace, std::ios::binary);
  if (!in) return std::nullopt;
  return parseRecord(std::string{std::istreambuf_iterator<char>(in), {}});
}

}  // namespace vordane::tools
