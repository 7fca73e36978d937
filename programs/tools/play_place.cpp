#include "play_place.h"

#include <algorithm>
#include <map>
#include <sstream>

#include "platform/file_moves.h"
#include "text/utf8.h"
#include "tools/sqlite/database_writer.h"
#include "whole_file.h"

namespace vordane::tools {
namespace {

namespace fs = std::filesystem;

constexpr const char* mark = "a conversation played again";

std::string shown(const fs::path& path) {
  return text::toUtf8(toText(path));
}

// "trace-YYYYMMDD-HHMMSS-xxxxxxxx-0001.jsonl": the eight digits are the process.
constexpr std::size_t nameLength = 41, markAt = 22, markLength = 8;

bool isTraceFile(const std::string& name) {
  return name.size() == nameLength && name.starts_with("trace-") && name.ends_with(".jsonl");
}

// What the programs of the play before have held may still be held for a moment, as by a scanner.
void requireRemoved(const fs::path& what, const std::error_code& failure) {
  if (failure) throw ToolError(shown(what) + " can't be removed. Close what holds it, and play again");
}
void clear(const fs::path& file) {
  requireRemoved(file, platform::removeFile(file));
}
void clearFolder(const fs::path& folder) {
  const auto attempt = [&] {
    std::error_code failure;
    fs::remove_all(folder, failure);
    return failure;
  };
  requireRemoved(folder, platform::tryPatiently(attempt, platform::sleepFor));
}

void append(const fs::path& file, std::vector<std::string>& lines) {
  std::istringstream all(readFile(file));
  for (std::string line; std::getline(all, line);) {
    if (line.ends_with('\r')) line.pop_back();
    lines.push_back(std::move(line));
  }
}

void makeJobs(const fs::path& path, const std::vector<replay::Job>& jobs) {
  constexpr std::int32_t fetches = 2, other = 1, thousands = 100;
  std::map<std::int32_t, replay::Job> byKey;
  for (const replay::Job& job : jobs) byKey.try_emplace(job.key, job);
  DatabaseWriter writer(toText(path));
  writer.createTables(settings::scheduleTables);
  for (const auto& [key, job] : byKey)
    writer.insert(u"Options", std::vector<database::Value>{
                                  key, std::int32_t{0}, job.errorStop,
                                  static_cast<std::int32_t>(std::min<std::int64_t>(job.runs, INT16_MAX)),
                                  false, true, thousands, std::u16string{}, job.ours ? fetches : other});
  writer.finish();
}

}  // namespace

bool ofOneProcess(const std::string& one, const std::string& other) {
  return isTraceFile(one) && isTraceFile(other) &&
         one.substr(markAt, markLength) == other.substr(markAt, markLength);
}

std::vector<TraceOfProcess> readTraces(const fs::path& named) {
  std::vector<TraceOfProcess> traces;
  if (!fs::is_directory(named)) {
    traces.push_back({shown(named.filename()), {}});
    append(named, traces.back().lines);
    return traces;
  }
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(named))
    if (const std::string name = shown(entry.path().filename()); isTraceFile(name)) names.push_back(name);
  std::sort(names.begin(), names.end());
  std::map<std::string, std::size_t> byMark;
  for (const std::string& name : names) {
    const auto [found, first] = byMark.try_emplace(name.substr(markAt, markLength), traces.size());
    if (first) traces.push_back({name, {}});
    append(named / toPath(name), traces[found->second].lines);
  }
  if (traces.empty())
    throw ToolError(shown(named) + ": no trace lies in this folder. Name a trace, or the folder of one");
  return traces;
}

PlayPlace takePlace(const fs::path& named) {
  PlayPlace place{fs::absolute(named).lexically_normal()};
  if (fs::exists(place.folder) && !fs::is_directory(place.folder))
    throw ToolError(shown(place.folder) + " is a file. Name a folder");
  fs::create_directories(place.folder);
  if (!fs::exists(place.folder / mark) && !fs::is_empty(place.folder))
    throw ToolError(shown(place.folder) + " holds something else. Name another folder, or an empty one");
  writeFile(place.folder / mark, {});
  for (const fs::path& own : {place.suite().root, place.stage(), place.texts(), place.trace()}) {
    if (fs::is_symlink(own)) throw ToolError(shown(own) + " leads elsewhere. Remove it");
    clearFolder(own);
    fs::create_directories(own);
  }
  return place;
}

void makePlaySuite(const PlayPlace& place, const fs::path& ownTexts, const fs::path& sharedTexts) {
  const LanguageSource none;
  const SuiteLayout suite = place.suite();
  for (const DataFile& file : dataFiles(none)) {
    if (file.keeper != Keeper::faults && file.keeper != Keeper::jobs) continue;
    fs::create_directories((suite.root / file.place).parent_path());
    file.make(suite.root / file.place);
  }
  writeFile(suite.texts(), readFile(ownTexts));
  writeFile(suite.sharedTexts(), readFile(sharedTexts));
}

void writePlay(const PlayPlace& place, const replay::Play& play) {
  for (const auto& entry : fs::directory_iterator(place.stage()))
    if (entry.path().filename() != place.simulator().filename()) clear(entry.path());
  for (const auto& entry : fs::directory_iterator(place.trace())) clear(entry.path());
  writeFile(place.scenario(), play.scenario);
  writeFile(place.script(), play.script);
  clear(place.suite().schedule());
  makeJobs(place.suite().schedule(), play.jobs);
}

}  // namespace vordane::tools
