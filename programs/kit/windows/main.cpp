// kit.exe: runs the kit's tests on this workstation and writes the report. Started by run-all.cmd, with its
// arguments; run-all.cmd --help tells what they are and what the exit codes mean.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "kit/core/report.h"
#include "kit/windows/places.h"
#include "kit/windows/registry.h"
#include "kit/windows/workstation.h"
#include "options/options.h"
#include "platform/windows/services/console_output.h"
#include "platform/windows/services/services.h"
#include "text/utf8.h"

namespace vordane::kit {
namespace {

enum Outcome { passed = 0, notPassed = 1, wrongUsage = 2, refused = 3, notPutBack = 4 };

void say(const std::string& words) {
  windows::write(stdout, words);
}

std::string narrow(const Path& path) {
  return text::toUtf8(com::fromWide(path.wstring()));
}

std::string read(const Path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error(narrow(path) + " is missing. Unpack the whole kit");
  return {std::istreambuf_iterator<char>(file), {}};
}

// Whole or not at all, and on the disk before anything else happens.
void keep(const Path& path, const std::string& text) {
  std::filesystem::create_directories(path.parent_path());
  const Path fresh = path.wstring() + L".new";
  com::File file(
      CreateFileW(fresh.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
  DWORD written = 0;
  const bool good = file &&
                    WriteFile(file.get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr) &&
                    written == text.size() && FlushFileBuffers(file.get());
  file.reset();
  if (!good || !MoveFileExW(fresh.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
    throw std::runtime_error(narrow(path) + " can't be written: error " + std::to_string(GetLastError()));
}

// Of this user alone: whoever could write it could have anything registered.
Path stateFile() {
  wchar_t folder[MAX_PATH] = L"";
  if (GetEnvironmentVariableW(L"LOCALAPPDATA", folder, MAX_PATH) == 0)
    throw std::runtime_error("there is no LOCALAPPDATA to keep the registration in");
  return Path(folder) / "Vordane kit" / "registration.json";
}

struct Options {
  std::vector<std::string> only{};
  Path report{};
  bool list = false, putBack = false;
};

// The program stands in x64 or x86 of the kit.
Folders findFolders() {
  const std::u16string own = windows::executablePath();
  const Path kit = Path(std::wstring(own.begin(), own.end())).parent_path().parent_path();
  return {kit, kit / "work", ownSection};
}

// Ctrl+C and the window's close button end the running program; then everything is put back as ever.
WindowsProcesses* running = nullptr;
HANDLE finished = nullptr;
BOOL WINAPI breakOff(DWORD event) {
  if (running != nullptr) running->breakOff();
  // For anything but Ctrl+C this process ends when the handler returns.
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) WaitForSingleObject(finished, 60000);
  return TRUE;
}

class Kit {
 public:
  explicit Kit(Options options) : options_(std::move(options)), folders_(findFolders()) {
    programs_ = parsePrograms(read(folders_.kit / "programs.tsv"));
    held_ = parseHeldBack(read(folders_.kit / "left-out.tsv"));
    report_.checklist = parseChecklist(read(folders_.kit / "sources" / "docs" / "windows-checklist.md"));
    report_.version = options::version();
  }

  Outcome run() {
    if (options_.list) return list();
    const com::Handle only(CreateMutexW(nullptr, FALSE, L"Global\\VordaneKit"));
    if (GetLastError() == ERROR_ALREADY_EXISTS) return refuse("Another run of the kit is under way.");
    if (const std::string reason = reasonToRefuse(folders_); !reason.empty()) return refuse(reason);
    try {
      running = &processes_;
      processes_.cleanUp();  // what a run that was broken off has left; nothing is registered by this one yet
      putBackFormer();
      if (options_.putBack) return passed;
      begin();
    } catch (const std::exception& failure) {
      return refuse(failure.what());
    }
    runAll();
    end();
    write();
    return !report_.putBackDone ? notPutBack : allPassed(report_) ? passed : notPassed;
  }

 private:
  Outcome list() {
    for (const Program& program : programs_) say(program.words + '/' + program.name + '\n');
    return passed;
  }

  static Outcome refuse(const std::string& reason) {
    say("Nothing was run: " + reason + '\n');
    return refused;
  }

  // A run that was broken off has left its file.
  void putBackFormer() {
    if (!std::filesystem::exists(stateFile())) return;
    say("An earlier run was broken off: what was registered before it is put back first.\n");
    putBack(registry_, readState(read(stateFile())));
    std::filesystem::remove(stateFile());
  }

  void begin() {
    state_ = saveState(registry_, writtenPlaces());
    keep(stateFile(), stateText(state_));
    report_.begun = localTime();
    report_.system = describeSystem();
  }

  void runAll() {
    const Choice choice(options_.only);
    for (const Program& program : programs_) {
      if (!choice.takes(program) || report_.brokenOff) continue;
      say(program.words + ' ' + program.name + " ... ");
      ProgramResult result;
      try {
        result = runProgram(program, choice, held_, processes_);
      } catch (const std::exception& failure) {
        result = {.program = program, .problem = failure.what()};
      }
      tell(result);
      report_.brokenOff = result.brokenOff;
      report_.programs.push_back(std::move(result));
    }
    running = nullptr;
  }

  static void tell(const ProgramResult& result) {
    const Sums sums = sumsOf(result);
    std::string words = std::to_string(sums.passed) + " passed";
    if (result.failures() > 0) words += ", " + std::to_string(result.failures()) + " FAILED";
    if (sums.skipped > 0) words += ", " + std::to_string(sums.skipped) + " skipped";
    if (sums.held > 0) words += ", " + std::to_string(sums.held) + " left out";
    say((result.notHere ? result.problem
                        : words + " in " + std::to_string(result.milliseconds / 1000) + " s") +
        '\n');
  }

  // Puts everything back, and tells whether it is.
  void end() {
    try {
      processes_.cleanUp();
      std::filesystem::remove(stateFile());
      report_.putBackDone = true;
      report_.putBack = "is as it was before";
    } catch (const std::exception& failure) {
      report_.putBack = std::string("could not be put back: ") + failure.what() + ". It is kept in " +
                        narrow(stateFile()) + "; the next start tries again.";
    }
    std::error_code ignored;
    std::filesystem::remove_all(folders_.work, ignored);
    report_.ended = localTime();
  }

  void write() {
    const Path folder = options_.report.empty() ? folders_.kit : options_.report;
    keep(folder / "report.json", jsonText(report_));
    keep(folder / "report.html", htmlText(report_));
    say(summaryOf(report_) + ".\nThe registration " + report_.putBack + ".\n" +
        narrow(folder / "report.html") + '\n');
  }

  Options options_;
  Folders folders_;
  std::vector<Program> programs_;
  std::vector<HeldBack> held_;
  WindowsRegistry registry_;
  SavedState state_;  // empty until it is saved
  WindowsProcesses processes_{folders_, [this] { putBack(registry_, state_); }};
  Report report_;
};

Outcome runKit(Options options) {
  finished = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  SetConsoleCtrlHandler(breakOff, TRUE);
  const Outcome outcome = Kit(std::move(options)).run();
  SetEvent(finished);
  return outcome;
}

int run(const options::Words& words) {
  options::Program program(
      "run-all.cmd", "Runs the tests of Vordane on this workstation and writes report.html and report.json.",
      wrongUsage);
  Options given;
  std::string report;
  program.options("--only", "PROGRAM[:TESTS]", given.only,
                  "some of them: x64/com_tests, window*, suite_tests:Starts.*");
  program.option("--report", "FOLDER", report, "where the report goes, else beside run-all.cmd");
  program.flag("--list", given.list, "what there is");
  program.flag("--put-back", given.putBack, "only puts back what a run that was broken off has left");
  program.oneAtMost({"--list", "--put-back"});
  program.notes(
      "Exit code: 0 everything that can run here passed, 1 it did not, 2 wrong usage, 3 refused, 4 what was "
      "registered before could not be put back.");
  program.runs([&] {
    if (!report.empty()) given.report = std::filesystem::absolute(com::wide(text::fromUtf8(report).c_str()));
    return runKit(std::move(given));
  });
  const auto ending = program.read(words);
  if (!ending) return program.perform();
  say(ending->output);
  windows::write(stderr, ending->errors);
  return ending->code;
}

}  // namespace
}  // namespace vordane::kit

int main() {
  using namespace vordane;
  windows::loadFromSystemOnly();
  try {
    return kit::run(windows::programWords());
  } catch (const std::exception& failure) {
    kit::say(std::string("Nothing was run: ") + failure.what() + '\n');
    return kit::refused;
  }
}
