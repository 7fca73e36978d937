// Programs of the kit in processes that end with it: each in a job of its own, in a folder of its own, with
// the surroundings that the tests ask for. One thread; `breakOff` from any.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "kit/core/running.h"
#include "platform/windows/com/owned.h"

namespace vordane::kit {

using Path = std::filesystem::path;

struct Folders {
  Path kit;      // what was unpacked: x64, x86, sources
  Path work;     // of this run; emptied with it
  Path section;  // the suite's version: QUILMAR32\SECTION stands in the work folder
};

// The processes, this one left out, whose file lies below the folder, by number and file.
std::vector<std::pair<DWORD, std::wstring>> processesBelow(const Path& folder);
// Every running process of one of those names.
std::vector<std::pair<DWORD, std::wstring>> processesNamed(const std::vector<std::wstring>& names);

class WindowsProcesses : public Processes {
 public:
  // `cleaned` is called when the processes of a program have gone.
  WindowsProcesses(Folders folders, std::function<void()> cleaned);

  Ended run(const Program& program, const std::vector<std::string>& arguments, int seconds) override;
  void cleanUp() override;
  // The running program is ended, and no other is started.
  void breakOff() { SetEvent(stop_.get()); }

 private:
  Path prepareFolder(const Program& program) const;
  std::wstring surroundings(const Program& program, const Path& folder) const;
  void endLeftOvers() const;

  Folders folders_;
  std::function<void()> cleaned_;
  com::Handle stop_;
};

}  // namespace vordane::kit
