#include "startup/event_reports.h"

#include <utility>

#include "startup/window_end.h"

namespace vordane::startup {

using platform::Event;

void EventReports::fileFailed(Event event, std::u16string_view file, std::u16string_view reason,
                              std::u16string_view job) noexcept {
  attempt([&] {
    if (!told_.insert(event).second) return;
    log_.write({event, std::u16string(file), std::u16string(reason), std::u16string(job)});
  });
}

bool EventReports::storeTold() const {
  return told_.contains(Event::faultsNotOpened) || told_.contains(Event::faultsUnreadable);
}

void EventReports::runBegins() noexcept {
  running_ = true;
  failure_.reset();
}

void EventReports::runFailed(std::u16string_view reason, Failed part) noexcept {
  if (failure_) return;
  failedPart_ = part;
  attempt([&] { failure_ = std::u16string(reason); });
}

void EventReports::runEnds(std::u16string_view file, std::u16string_view job) noexcept {
  if (!std::exchange(running_, false)) return;
  if (!failure_ || (failedPart_ == Failed::store && storeTold())) return;
  attempt([&] { log_.write({Event::runFailed, std::u16string(file), *failure_, std::u16string(job)}); });
}

}  // namespace vordane::startup
