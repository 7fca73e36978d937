// What of starts, files and unattended runs the system's event log is told, and how often: an entry for each
// cause, none for what goes well. Owns what has been told. Whatever becomes of an entry, nothing else
// changes: no member throws. One thread.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "platform/event_log.h"

namespace vordane::startup {

class EventReports {
 public:
  explicit EventReports(platform::EventLog& log) : log_(log) {}

  // Something that can't be used: told once in the life of the process, however often a step meets it.
  void fileFailed(platform::Event event, std::u16string_view file, std::u16string_view reason,
                  std::u16string_view job = {}) noexcept;

  // --- an unattended run
  void runBegins() noexcept;
  // Something of the run failed; the first counts, since the others mostly follow from it. What failed
  // before it began, or when it was over, does not.
  enum class Failed { store, other };
  void runFailed(std::u16string_view reason, Failed part = Failed::other) noexcept;
  // The run is over. One entry when something of it failed, unless that was the store of the faults and an
  // entry has told of it: then that one is the cause. `file` is the one to look at for more. Ending again
  // does nothing.
  void runEnds(std::u16string_view file, std::u16string_view job) noexcept;

 private:
  bool storeTold() const;

  platform::EventLog& log_;
  std::set<platform::Event> told_;
  bool running_ = false;
  std::optional<std::u16string> failure_;  // of the run under way
  Failed failedPart_ = Failed::other;
};

}  // namespace vordane::startup
