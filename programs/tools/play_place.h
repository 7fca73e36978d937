// Where a recorded conversation is played again: a folder with a suite of its own, its host's script and its
// exchange's scenario.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "replay/replay_script.h"
#include "suite_files.h"

namespace vordane::tools {

struct PlayPlace {
  std::filesystem::path folder;
  // The version of the suite, under which nothing stands in anybody's settings. The add-in finds them by the
  // names of the folders.
  static constexpr const char* version = "38000";
  SuiteLayout suite() const { return {folder / "QUILMAR32" / version}; }
  // Scenario, script and words.
  std::filesystem::path stage() const { return folder / "stage"; }
  std::filesystem::path scenario() const { return stage() / replay::scenarioFile; }
  std::filesystem::path script() const { return stage() / "host.txt"; }
  std::filesystem::path hostLines() const { return stage() / "host.log"; }  // what the host prints
  std::filesystem::path simulator() const { return stage() / "Zulsim.exe"; }
  // The language databases that the suite gets.
  std::filesystem::path texts() const { return folder / "texts"; }
  std::filesystem::path trace() const { return folder / "trace"; }  // of the play
};

// Traces, each of one process: the file named, or all files of a trace in the folder named, those of a
// process together, in the order of their names. Throws ToolError.
struct TraceOfProcess {
  std::string name;  // of its first file
  std::vector<std::string> lines;
};
std::vector<TraceOfProcess> readTraces(const std::filesystem::path& named);

// Whether two files of traces, by their names, tell of the same process.
bool ofOneProcess(const std::string& one, const std::string& other);

// Takes `named`, which must be missing, empty or such a folder already; then what it held goes. Throws
// ToolError.
PlayPlace takePlace(const std::filesystem::path& named);

// Makes the suite: its texts from `languages` (VORDANE.LNG, Common.LNG), its databases empty.
void makePlaySuite(const PlayPlace& place, const std::filesystem::path& ownTexts,
                   const std::filesystem::path& sharedTexts);

// Writes scenario, script and jobs; what stands there goes. A trace that was left there goes as well.
void writePlay(const PlayPlace& place, const replay::Play& play);

}  // namespace vordane::tools
