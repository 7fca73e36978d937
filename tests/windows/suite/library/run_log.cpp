#include "library/run_log.h"

#include "library/text_files.h"
#include "library/waiting.h"

namespace vordane::suite {
namespace {

constexpr std::size_t timeLength = 20;  // "2006-11-27 10:15:00 "

bool isNamed(const Path& file, const std::wstring& name) {
  return _wcsicmp(file.extension().c_str(), L".tlg") == 0 &&
         (name == L"*" || _wcsicmp(file.stem().c_str(), name.c_str()) == 0);
}

}  // namespace

std::optional<Path> findRunLog(const std::string& name) {
  for (const auto& entry : std::filesystem::recursive_directory_iterator(layout().root))
    if (isNamed(entry.path(), wide(name))) return entry.path();
  return std::nullopt;
}

std::vector<std::string> runLog(const std::string& name) {
  const auto file = findRunLog(name);
  if (!file) throw Failure("no log " + name + ".tlg");
  std::vector<std::string> lines = linesOf(readText(*file));
  for (std::string& line : lines) line.erase(0, timeLength);
  return lines;
}

}  // namespace vordane::suite
