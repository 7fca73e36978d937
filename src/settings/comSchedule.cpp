#include "settings/comSchedule.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>

#include "text/numbers.h"
#include "text/text.h"
#include "text/utf8.h"

namespace vordane::comSchedule {
namespace {

using automation::Value;

constexpr std::int32_t fatalError = 61;  // ends every run, whatever its options say
constexpr std::int16_t stateFatal = 12;
constexpr std::int16_t noKind = 0;  // what is no 16-bit number is no kind of job that runs here
constexpr int pollMilliseconds = 50;
constexpr double secondsOfDay = 86'400;

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
  state.LogName = automation::isNull(file) ? std::u16string{} : automation::toText(file);
  state.LogName += key;
  state.JobKind = jobKind(row, state.JobKind);
}

std::u16string timeStamp(const platform::LocalTime& now) {
  const auto two = [](int value) { return text::decimalPadded(value, 2); };
  return text::decimalPadded(now.year, 4) + u"-" + two(now.month) + u"-" + two(now.day) + u" " +
         two(now.hour) + u":" + two(now.minute) + u":" + two(now.second);
}

// A line stays one line, whatever a host or an exchange put into its text.
std::u16string withoutBreaks(std::u16string_view text) {
  std::u16string line;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const bool pair = text[at] == u'\r' && at + 1 < text.size() && text[at + 1] == u'\n';
    if (pair) continue;  // its second half becomes the blank
    line += text[at] == u'\r' || text[at] == u'\n' ? u' ' : text[at];
  }
  return line;
}

bool overLimit(Environment& environment, const std::u16string& path) {
  if (!environment.state.LogLimited) return false;
  const std::int64_t limit = std::int64_t{environment.state.LogLimitKB} * 1000;
  return environment.files.length(path).value_or(0) > limit;
}

// Nothing when the record or its process does not give it.
std::optional<Value> tryRead(automation::Object& record, std::u16string_view member,
                             std::initializer_list<automation::Argument> index = {}) try {
  return automation::get(record, member, index);
} catch (const automation::AutomationError&) {
  return std::nullopt;
}

std::optional<std::int32_t> tryNumber(automation::Object& record, std::u16string_view member) try {
  const auto value = tryRead(record, member);
  return value ? std::optional(automation::toLong(*value)) : std::nullopt;
} catch (const automation::AutomationError&) {
  return std::nullopt;
}

std::u16string entryText(automation::Object& record, std::u16string_view member, std::int32_t index) try {
  const auto value = tryRead(record, member, {automation::byVal(index)});
  return value ? automation::toText(*value) : std::u16string{};
} catch (const automation::AutomationError&) {
  return {};
}

std::u16string responseLine(automation::Object& record, std::int32_t index) {
  return u"Response(" + text::decimal(index) + u") = " + entryText(record, u"CMD", index) + u" > " +
         entryText(record, u"FirstData", index) + u" : " + entryText(record, u"SecondData", index) + u" - " +
         entryText(record, u"ExtraData", index);
}

std::int16_t within16Bits(std::int32_t code) {
  using Limits = std::numeric_limits<std::int16_t>;
  return static_cast<std::int16_t>(std::clamp<std::int32_t>(code, Limits::min(), Limits::max()));
}

}  // namespace

void LoadScheduleOptions(Environment& environment, std::u16string_view key) {
  const BusyPointer pointer(environment.busyPointer);
  setDefaults(environment.state);
  try {
    const auto schedule = environment.engine.open(databaseDirectory(environment) + u"\\Schedule.mdb", true);
    const auto row = schedule->openRecordset(u"SELECT * FROM Options WHERE Key = " + std::u16string(key));
    if (!row->isEmpty()) readOptions(*row, key, environment.state);
  } catch (const database::DatabaseError&) {
  } catch (const automation::AutomationError&) {
    // A value that is Null or too large ends the reading; the options behind it keep their defaults.
  }
}

std::u16string LogPath(const Environment& environment) {
  return databaseDirectory(environment) + u"\\" + environment.state.LogName + u".tlg";
}

void WriteRunLog(Environment& environment, std::u16string_view text, bool forced, bool ignoreLimit) {
  ScheduleState& state = environment.state;
  if (!forced && state.LogAlways != 1) return;
  if (state.LogName.empty() || !state.LogEnabled) return;
  const std::u16string path = LogPath(environment);
  if (overLimit(environment, path)) {
    state.LogFull = true;
    if (!ignoreLimit) return;
  }
  const std::u16string line =
      text.empty() ? std::u16string{} : timeStamp(environment.clock.now()) + u" " + withoutBreaks(text);
  // A log that can't be written never stops a run.
  static_cast<void>(environment.files.append(path, text::toUtf8(line) + "\r\n"));
}

bool LogResponse(Environment& environment, automation::Object& response) {
  const auto code = tryNumber(response, u"ErrCode");
  WriteRunLog(environment, u"ErrCode = " + (code ? text::decimal(*code) : std::u16string{}), true, false);
  const std::int32_t count = tryNumber(response, u"Count").value_or(0);
  for (std::int32_t index = 0; index < count; ++index)
    WriteRunLog(environment, responseLine(response, index), true, false);
  environment.state.LastErrCode = within16Bits(code.value_or(-1));
  if (code == 0) return false;
  if (code == fatalError) {
    environment.state.RunState = stateFatal;
    return true;
  }
  return environment.state.ScheduleErrorStop == u"True";
}

void WaitSeconds(platform::Clock& clock, std::int16_t seconds) {
  const double start = clock.secondsSinceMidnight();
  if (seconds < 1) return;
  const auto elapsed = [&] {
    const double difference = clock.secondsSinceMidnight() - start;
    return difference < 0 ? difference + secondsOfDay : difference;
  };
  while (elapsed() < seconds) clock.sleep(pollMilliseconds);
}

void CancelScheduleCount(ScheduleState& state) {
  state.ScheduleCount = 0;
}

}  // namespace vordane::comSchedule
