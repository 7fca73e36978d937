#include "settings/comSchedule.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <new>

#include "platform/stored_values.h"
#include "settings/suite_databases.h"
#include "text/dates.h"
#include "text/file_names.h"
#include "text/numbers.h"
#include "text/text.h"
#include "text/utf8.h"

namespace vordane::comSchedule {
namespace {

using automation::Value;

constexpr std::int32_t fatalError = 61;  // ends every run, whatever its options say
constexpr std::int16_t stateFatal = 12;
constexpr std::u16string_view logEndMark = u"...";
constexpr std::int16_t noKind = 0;  // for a kind that is no 16-bit number; no job of this kind runs here
constexpr int pollMilliseconds = 50;
constexpr long long millisecondsOfDay = 86'400'000;

std::u16string databaseDirectory(const Environment& environment) {
  return comRegQuil32::GetInstallPath(environment.installation, u"Addins", u"Quilmar32") +
         u"Quil32\\Database";
}

// The hourglass for as long as this lives.
class BusyPointer {
 public:
  explicit BusyPointer(const std::function<void(bool)>& set) : set_(set) { show(true); }
  BusyPointer(const BusyPointer&) = delete;
  BusyPointer& operator=(const BusyPointer&) = delete;
  ~BusyPointer() { show(false); }

 private:
  void show(bool on) const {
    if (set_) set_(on);
  }
  const std::function<void(bool)>& set_;
};

void setDefaults(ScheduleState& state) {
  const ScheduleState fresh;
  state.ScheduleWait = fresh.ScheduleWait;
  state.ScheduleErrorStop = fresh.ScheduleErrorStop;
  state.ScheduleCount = fresh.ScheduleCount;
  state.LogEnabled = fresh.LogEnabled;
  state.LogLimited = fresh.LogLimited;
  state.LogLimitKB = fresh.LogLimitKB;
  state.LogName.clear();
  state.LogFull = false;  // of the log that was loaded before
  state.JobKind = fresh.JobKind;
}

// A database made before jobs had kinds lacks the column.
std::int16_t jobKind(database::Recordset& row, std::int16_t otherwise) try {
  const Value kind = row.get(u"Kind");
  return automation::isNull(kind) ? otherwise : automation::toInteger(kind);
} catch (const database::DatabaseError&) {
  return otherwise;
} catch (const automation::AutomationError&) {
  return noKind;
}

void readOptions(database::Recordset& row, std::u16string_view key, ScheduleState& state) {
  state.ScheduleWait = automation::toInteger(row.get(u"Wait"));
  state.ScheduleErrorStop = automation::toBoolean(row.get(u"ErrorStop")) ? u"True" : u"False";
  state.ScheduleCount = automation::toInteger(row.get(u"Count"));
  state.LogEnabled = automation::toBoolean(row.get(u"Log"));
  state.LogLimited = automation::toBoolean(row.get(u"Log2"));
  state.LogLimitKB = automation::toLong(row.get(u"FileByte"));
  const Value file = row.get(u"File");
  state.LogName = logName(database::textOf(file), key);
  state.JobKind = jobKind(row, state.JobKind);
}

std::u16string timeStamp(const platform::LocalTime& now) {
  return text::isoText(now.year, now.month, now.day, now.hour, now.minute, now.second);
}

// Control characters, among them next line, and the two separators that some readers take for line ends.
bool breaksLine(char16_t character) {
  return character < 0x20 || (character >= 0x7F && character <= 0x9F) || character == 0x2028 ||
         character == 0x2029;
}

// A line stays one line of plain text, whatever a host or an exchange put into it, and none of them can fill
// the disk with a single one.
void appendLine(std::u16string& line, std::u16string_view text) {
  for (std::size_t at = 0; at < text.size() && line.size() < longestLine; ++at) {
    const bool pair = text[at] == u'\r' && at + 1 < text.size() && text[at + 1] == u'\n';
    if (pair) continue;  // its second half becomes the blank
    line += breaksLine(text[at]) ? u' ' : text[at];
  }
}

bool overLimit(Environment& environment, const std::u16string& path) {
  if (!environment.state.LogLimited) return false;
  return environment.files.length(path).value_or(0) > logLimit(environment.state.LogLimitKB);
}

// A part longer than a line can be is not wanted whole.
std::u16string responseLine(std::int32_t index, const LoggedEntry& entry) {
  const auto part = [](std::u16string_view text) { return text.substr(0, longestLine); };
  std::u16string line = u"Response(" + text::decimal(index) + u") = ";
  line.append(part(entry.CMD)).append(u" > ").append(part(entry.FirstData)).append(u" : ");
  return line.append(part(entry.SecondData)).append(u" - ").append(part(entry.ExtraData));
}

void writeLine(Environment& environment, const std::u16string& path, std::u16string_view text,
               bool ignoreLimit) {
  if (overLimit(environment, path)) {
    environment.state.LogFull = true;
    if (!ignoreLimit) return;
  }
  std::u16string line;
  if (!text.empty()) appendLine(line = timeStamp(environment.clock.now()) + u" ", text);
  // A log that can't be written never stops a run.
  static_cast<void>(environment.files.append(path, text::toUtf8(line) + "\r\n"));
}

// A run goes on without a line for which there is no memory.
template <class Step>
void skipWithoutMemory(const Step& step) {
  try {
    step();
  } catch (const std::bad_alloc&) {
  }
}

void writeResponse(Environment& environment, const LoggedAnswer& answer) {
  if (!keepsLog(environment.state)) return;
  std::u16string path;
  skipWithoutMemory([&] {
    path = logPath(environment);
    const auto code = answer.errorCode ? text::decimal(*answer.errorCode) : std::u16string{};
    writeLine(environment, path, u"ErrCode = " + code, false);
  });
  for (std::int32_t index = 0; index < answer.count && !path.empty(); ++index)
    skipWithoutMemory([&] { writeLine(environment, path, responseLine(index, answer.entry(index)), false); });
}

std::int16_t within16Bits(std::int32_t code) {
  using Limits = std::numeric_limits<std::int16_t>;
  return static_cast<std::int16_t>(std::clamp<std::int32_t>(code, Limits::min(), Limits::max()));
}

}  // namespace

std::u16string LoadScheduleOptions(Environment& environment, std::u16string_view key) {
  const BusyPointer pointer(environment.busyPointer);
  setDefaults(environment.state);
  try {
    const auto schedule = environment.engine.open(optionsPath(environment), true);
    const auto row = schedule->openRecordset(settings::statement::options.with({key}));
    if (!row->isEmpty()) readOptions(*row, key, environment.state);
  } catch (const database::DatabaseError& error) {
    return error.description();
  } catch (const automation::AutomationError&) {
    // A value that is Null or too large ends the reading; the options behind it keep their defaults.
  }
  return {};
}

std::u16string logName(std::u16string_view file, std::u16string_view key) {
  std::u16string name(file);
  name += key;
  return text::isPlainFileName(name) ? name : std::u16string(key);
}

std::int64_t logLimit(std::int32_t kilobytes) {
  return std::int64_t{kilobytes} * 1000;
}

std::u16string logPath(const Environment& environment) {
  return databaseDirectory(environment) + u"\\" + environment.state.LogName + u".tlg";
}

bool keepsLog(const ScheduleState& state) {
  return !state.LogName.empty() && state.LogEnabled;
}

std::u16string optionsPath(const Environment& environment) {
  return databaseDirectory(environment) + u"\\Schedule.mdb";
}

void WriteRunLog(Environment& environment, std::u16string_view text, bool forced, bool ignoreLimit) {
  if (!forced && environment.state.LogAlways != 1) return;
  if (!keepsLog(environment.state)) return;
  skipWithoutMemory([&] { writeLine(environment, logPath(environment), text, ignoreLimit); });
}

void writeRunLine(Environment& environment, std::u16string_view text) {
  WriteRunLog(environment, text, true, false);
}

void closeRunLog(ScheduleState& state) {
  state.LogName.clear();
}

void endRunLog(Environment& environment) {
  if (environment.state.LogEnabled) writeRunLine(environment, logEndMark);
  closeRunLog(environment.state);
  environment.state.RunState = 0;
}

bool LogResponse(Environment& environment, const LoggedAnswer& answer) {
  writeResponse(environment, answer);
  const auto& code = answer.errorCode;
  environment.state.LastErrCode = within16Bits(code.value_or(-1));
  if (code == 0) return false;
  if (code == fatalError) {
    environment.state.RunState = stateFatal;
    return true;
  }
  return environment.state.ScheduleErrorStop == u"True";
}

void WaitSeconds(platform::Clock& clock, std::int16_t seconds) {
  // Whole milliseconds: a 32-bit processor keeps more digits of one look at the clock than of another, and a
  // time that seems to go back by the last of them would pass for midnight.
  const auto milliseconds = [&] { return std::llround(clock.secondsSinceMidnight() * 1000); };
  const auto start = milliseconds();
  if (seconds < 1) return;
  const auto elapsed = [&] {
    const auto difference = milliseconds() - start;
    return difference < 0 ? difference + millisecondsOfDay : difference;
  };
  while (elapsed() < seconds * 1000LL) clock.sleep(pollMilliseconds);
}

void CancelScheduleCount(ScheduleState& state) {
  state.ScheduleCount = 0;
}

}  // namespace vordane::comSchedule
