// What the system's own event log is told: what ended without a word, a file that could not be used, an
// unattended run that failed. Whoever looks after the workstation finds it there; nobody at the screen, no
// host and no file of the suite notices any of it.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace vordane::platform {

// The numbers are for good: a workstation's rules and its administrator's notes name them. The texts stand in
// data/language/*/events.tsv, what each means for the program in docs/reliability.md.
enum class Event : std::uint16_t {
  startBroken = 10,          // the program could not begin at all
  sharedTextsUnusable = 11,  // Common.LNG
  ownTextsUnusable = 12,     // VORDANE.LNG, or it lacks the texts that nothing works without
  notRegistered = 13,        // Register.mdb: a creation was refused
  faultsNotOpened = 14,      // FAULT.MDB
  faultsUnreadable = 15,     // FAULT.MDB has been opened
  textsIncomplete = 16,      // VORDANE.LNG lacks texts of the window
  jobOptionsUnusable = 17,   // Schedule.mdb
  runFailed = 18,            // an unattended run
};

enum class EventWeight { error, warning };  // a warning: the program goes on without

struct EventKind {
  Event event;
  EventWeight weight;
};
inline constexpr std::array eventKinds{
    EventKind{Event::startBroken, EventWeight::error},
    EventKind{Event::sharedTextsUnusable, EventWeight::error},
    EventKind{Event::ownTextsUnusable, EventWeight::error},
    EventKind{Event::notRegistered, EventWeight::error},
    EventKind{Event::faultsNotOpened, EventWeight::error},
    EventKind{Event::faultsUnreadable, EventWeight::error},
    EventKind{Event::textsIncomplete, EventWeight::warning},
    EventKind{Event::jobOptionsUnusable, EventWeight::warning},
    EventKind{Event::runFailed, EventWeight::error},
};

constexpr EventWeight weightOf(Event event) {
  for (const EventKind& kind : eventKinds)
    if (kind.event == event) return kind.weight;
  return EventWeight::error;
}

// The number with its weight in the uppermost bits: by it the system finds the text in the program.
constexpr std::uint32_t eventIdentifier(Event event) {
  constexpr std::uint32_t error = 0xC0000000U, warning = 0x80000000U;
  return static_cast<std::uint32_t>(event) | (weightOf(event) == EventWeight::error ? error : warning);
}

struct EventEntry {
  Event event{};
  std::u16string file{};    // the one to look at, with its folder
  std::u16string reason{};  // as the screen or the run's log would say it, or the engine
  std::u16string job{};     // of an unattended run: its key
};

// The name that the entries stand under, in the system's log "Application".
inline constexpr std::u16string_view eventSource = u"Vordane";

class EventLog {
 public:
  virtual ~EventLog() = default;
  // False when the entry could not be written, which changes nothing for anybody. May run out of memory.
  virtual bool write(const EventEntry& entry) = 0;
};

// The values of an entry's text in their order: {1} the file, {2} the reason, {3} the job. Each is one line
// of bearable length, and holds nothing that the system takes for a place of another value.
std::array<std::u16string, 3> valuesOf(const EventEntry& entry);

}  // namespace vordane::platform
