#include "library/run_log.h"

#include <regex>

#include "library/text_files.h"
#include "library/waiting.h"

namespace vordane::suite {
namespace {

constexpr std::size_t timeLength = 20;  // "2006-11-27 10:15:00 "

bool isNamed(const Path& file, const std::wstring& name) {
  return _wcsicmp(file.extension().c_str(), L".tlg") == 0 &&
         (name == L"*" || _wcsicmp(file.stem().c_str(), name.c_str()) == 0);
}

std::vector<std::string> timedLines(const std::string& name) {
  static const std::regex timed("[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2} .*");
  const auto file = findRunLog(name);
  if (!file) throw Failure("no log " + name + ".tlg");
  std::vector<std::string> lines = linesOf(readText(*file));
  for (const std::string& line : lines)
    if (!std::regex_match(line, timed)) throw Failure("a line without its time in " + name + ".tlg: " + line);
  return lines;
}

}  // namespace

std::optional<Path> findRunLog(const std::string& name) {
  for (const auto& entry : std::filesystem::recursive_directory_iterator(layout().root))
    if (isNamed(entry.path(), wide(name))) return entry.path();
  return std::nullopt;
}

std::vector<std::string> runLog(const std::string& name) {
  std::vector<std::string> lines = timedLines(name);
  for (std::string& line : lines) line.erase(0, timeLength);
  return lines;
}

std::string timeless(const std::string& name) {
  std::string text;
  for (const std::string& line : runLog(name)) text += "TIME " + line + "\n";
  return text;
}

std::vector<int> runLogSeconds(const std::string& name) {
  std::vector<int> times;
  for (const std::string& line : timedLines(name))
    times.push_back(3600 * std::stoi(line.substr(11, 2)) + 60 * std::stoi(line.substr(14, 2)) +
                    std::stoi(line.substr(17, 2)));
  return times;
}

}  // namespace vordane::suite
