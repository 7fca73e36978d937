#include "setup_rules.h"

#include <algorithm>
#include <charconv>
#include <vector>

#include "platform/engine_choice.h"

namespace vordane::tools {
namespace {

namespace fs = std::filesystem;

std::vector<fs::path> suiteDatabases(const SuiteLayout& layout) {
  return {layout.sharedTexts(), layout.registration(), layout.schedule()};
}

std::vector<fs::path> databasesOf(const SuiteLayout& layout) {
  std::vector<fs::path> files = suiteDatabases(layout);
  files.insert(files.end(), {layout.faults(), layout.texts()});
  return files;
}

}  // namespace

std::string_view nameOf(Words words) {
  return words == Words::x64 ? "x64" : "x86";
}

std::optional<Words> wordsNamed(std::string_view name) {
  for (const Words words : {Words::x64, Words::x86})
    if (nameOf(words) == name) return words;
  return std::nullopt;
}

std::string_view nameOf(Situation situation) {
  return situation == Situation::suite ? "suite" : "alone";
}

bool suiteStands(const SuiteLayout& layout) {
  const std::vector<fs::path> files = suiteDatabases(layout);
  return std::any_of(files.begin(), files.end(), [](const fs::path& file) { return fs::exists(file); });
}

Words wordsFor(const SuiteLayout& layout, Words system) {
  for (const fs::path& file : databasesOf(layout))
    if (database::fileKind(toText(file)) == database::FileKind::access) return Words::x86;
  return system;
}

std::optional<Version> versionOf(std::string_view text) {
  Version version;
  const char* at = text.data();
  const char* const end = at + text.size();
  for (int* const part : {&version.major, &version.minor, &version.revision}) {
    const auto [rest, failure] = std::from_chars(at, end, *part);
    if (failure != std::errc{} || *part < 0) return std::nullopt;
    const bool last = part == &version.revision;
    if (last ? rest != end : rest == end || *rest != '.') return std::nullopt;
    at = last ? rest : rest + 1;
  }
  return version;
}

}  // namespace vordane::tools
