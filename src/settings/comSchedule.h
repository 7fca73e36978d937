// Options of scheduled jobs and the run log.
#pragma once

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
};

// Loads the options of job `key`; a missing database, table or row leaves the defaults.
void LoadScheduleOptions(Environment& environment, std::u16string_view key);

// Appends a line (date and time, a blank, the text) unless the job's options forbid it. Never fails.
void WriteRunLog(Environment& environment, std::u16string_view text, bool forced, bool ignoreLimit);

// Writes the answer's response lines; true when the run must stop. `response` is read late-bound, since it
// may live in the exchange server's process.
bool LogResponse(Environment& environment, automation::Object& response);

// Returns after that many seconds of wall-clock time, across midnight too; serves no messages.
void WaitSeconds(platform::Clock& clock, std::int16_t seconds);

void CancelScheduleCount(ScheduleState& state);

// The run log of the loaded job.
std::u16string LogPath(const Environment& environment);

}  // namespace vordane::comSchedule
