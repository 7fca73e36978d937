// Options of scheduled jobs and the run log.
#pragma once

#include <functional>
#include <optional>
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

// Loads the options of job `key`; a missing database, table or row leaves the defaults. A `File` that is more
// than the name of a file counts as empty: the log stays in its folder. The engine's text when database,
// table or a column could not be read; else empty.
std::u16string LoadScheduleOptions(Environment& environment, std::u16string_view key);

inline constexpr std::size_t longestLine = 4096;  // characters, its time included; the rest is cut

// Appends a line (date and time, a blank, the text; an empty text gives an empty line) unless the job's
// options forbid it. Control characters and line breaks of every kind in the text become blanks. Never
// throws: what can't be written is skipped.
void WriteRunLog(Environment& environment, std::u16string_view text, bool forced, bool ignoreLimit);

// A line of the run's own, which is forced.
void writeRunLine(Environment& environment, std::u16string_view text);

// Behind the last line of a run: nothing more is written until the next job is loaded.
void closeRunLog(ScheduleState& state);
// The run is over: behind its end mark stands no line of it, whoever calls or waits from here on.
void endRunLog(Environment& environment);

// An answer as it was copied: the exchange server's own record is not read for the log.
struct LoggedEntry {
  std::u16string_view CMD, FirstData, SecondData, ExtraData;
};
struct LoggedAnswer {
  std::optional<std::int32_t> errorCode;  // nothing when it could not be read, which counts as an error
  std::int32_t count = 0;
  std::function<LoggedEntry(std::int32_t index)> entry;  // asked only for a log that keeps something
};

// Writes the answer's response lines; true when the run must stop. Never throws.
bool LogResponse(Environment& environment, const LoggedAnswer& answer);

// Returns after that many seconds of wall-clock time, across midnight too; serves no messages.
void WaitSeconds(platform::Clock& clock, std::int16_t seconds);

void CancelScheduleCount(ScheduleState& state);

// What the options `file` and `key` of a job make the name of its log, without the ending. A name that leads
// out of the log's folder, to a device or to a stream beside a file counts as none.
std::u16string logName(std::u16string_view file, std::u16string_view key);

// The most bytes of a limited log that a line is still added to. `kilobytes` is the option FileByte.
std::int64_t logLimit(std::int32_t kilobytes);

// The run log of the loaded job, and whether it has one; the database with the options.
std::u16string logPath(const Environment& environment);
bool keepsLog(const ScheduleState& state);
std::u16string optionsPath(const Environment& environment);

}  // namespace vordane::comSchedule
