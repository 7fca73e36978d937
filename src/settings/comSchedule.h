// Options of scheduled jobs and the run log.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "platform/automation.h"
#include "platform/database.h"
#include "platform/services.h"
#include "settings/comRegQuil32.h"
#include "settings/shared_state.h"

namespace vordane::comSchedule {

// Everything the run log and the options need; all references outlive it.
struct Environment {
  const comRegQuil32::Installation& installation;
  database::Engine& engine;
  platform::Clock& clock;
  platform::Files& files;
  ScheduleState& state;
  std::function<void(bool on)> busyPointer = {};  // the hourglass while options are read; may be empty
};

// Loads the options of job `key`; a missing database, table or row leaves the defaults.
void LoadScheduleOptions(Environment& environment, std::u16string_view key);

// Appends a line (date and time, a blank, the text; an empty text gives an empty line) unless the job's
// options forbid it. Line breaks in the text become blanks. Never fails: what can't be written is skipped.
void WriteRunLog(Environment& environment, std::u16string_view text, bool forced, bool ignoreLimit);

// Writes the answer's response lines; true when the run must stop. `response` is read late-bound, since it
// may live in the exchange server's process. Never throws: a value that can't be read is empty, and an
// unreadable code counts as an error.
bool LogResponse(Environment& environment, automation::Object& response);

// Returns after that many seconds of wall-clock time, across midnight too; serves no messages.
void WaitSeconds(platform::Clock& clock, std::int16_t seconds);

void CancelScheduleCount(ScheduleState& state);

// The run log of the loaded job.
std::u16string LogPath(const Environment& environment);

}  // namespace vordane::comSchedule
