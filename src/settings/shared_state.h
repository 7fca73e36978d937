// State that the whole process shares: one set, owned by the application, handed to whoever reads it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vordane {

inline constexpr std::u16string_view programName = u"VORDANE";

// Load step and request kind: one code, reported to the host when a scheduled run ends.
namespace step {
inline constexpr std::int16_t loading = 10002;
inline constexpr std::int16_t loaded = 10003;
inline constexpr std::int16_t faultListRequest = 20000;
inline constexpr std::int16_t alarmStateRequest = 20001;
inline constexpr std::int16_t alarmClearRequest = 20002;
}  // namespace step

enum class RunMode : std::int16_t { interactive = 0, creatingSchedule = 1, scheduledRun = 2 };

// The options of the job that runs and the state of its log.
struct ScheduleState {
  std::int16_t ScheduleWait = 0;
  std::u16string ScheduleErrorStop = u"True";  // the Boolean as text; tested by converting back
  std::int16_t ScheduleCount = 1;              // 0 cancels the remaining repetitions
  bool LogEnabled = true;
  bool LogLimited = true;
  std::int32_t LogLimitKB = 100;
  std::int16_t JobKind = 2;  // 2: fetch the fault list, the one kind this add-in runs
  std::u16string LogName;    // empty: no log is written
  bool LogFull = false;
  std::int16_t LastErrCode = 0;
  std::int16_t RunState = 0;   // 0 interactive, 11 scheduled run, 12 after the fatal exchange error
  std::int16_t LogAlways = 0;  // 1: every shown box is logged too
};

struct SharedState {
  std::u16string AddinsSection;
  std::u16string BackGroundDir;
  std::vector<std::u16string> Messages;  // by message number
  // The same in the language that a person reads the window in, while that is another one; else empty. For
  // what is shown in the window alone.
  std::vector<std::u16string> ShownMessages;
  bool StandAlone = false;
  bool WideFaultFields = true;
  RunMode runMode = RunMode::interactive;
  std::int16_t stepCode = 0;
  bool busy = false;
  std::int16_t RAction = 0;  // kept for the host, read by nothing
  std::int16_t SysInfo = 0;
  bool SysInfoBit2 = false, SysInfoBit4 = false, SysInfoBit8 = false;
  ScheduleState schedule;
};

// Entry n of the message texts; the empty text where there is none.
inline std::u16string messageText(const SharedState& state, std::size_t number) {
  return number < state.Messages.size() ? state.Messages[number] : std::u16string{};
}

// The same as the window shows it.
inline std::u16string shownText(const SharedState& state, std::size_t number) {
  return number < state.ShownMessages.size() ? state.ShownMessages[number] : messageText(state, number);
}

// For whoever words a whole sentence of the window: `tell` gets a state whose messages are the shown ones.
template <typename Tell>
std::u16string inShownWords(const SharedState& state, Tell&& tell) {
  if (state.ShownMessages.empty()) return tell(state);
  SharedState shown = state;
  shown.Messages = state.ShownMessages;
  return tell(shown);
}

}  // namespace vordane
