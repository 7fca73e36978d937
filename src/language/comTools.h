// Message boxes by number, and small list helpers.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/database.h"
#include "platform/services.h"
#include "platform/window.h"
#include "settings/comSchedule.h"

namespace vordane::comTools {

inline constexpr int answerNone = 0, answerOk = 1, answerCancel = 2, answerYes = 6, answerNo = 7;

// What the boxes need; the databases may be null (not open), which ends every box without an answer.
struct BoxEnvironment {
  database::Database* ownLanguage;     // VORDANE.LNG
  database::Database* commonLanguage;  // Common.LNG
  platform::MessageBoxes& boxes;
  comSchedule::Environment& runLog;
  std::u16string programDirectory;  // no trailing separator
};

struct BoxRequest {
  std::int16_t selector = 0;  // 1 short form, 10 common message, anything else this program's own
  std::int16_t number = 0;
  std::optional<std::u16string> substitution;  // one blank when missing
  std::optional<std::u16string> helpFile;
  std::optional<std::int32_t> helpContext;
  bool logOnly = false;
  std::u16string titleText;
};

// The button pressed (1 OK ... 7 No); 6 when the box was suppressed, 0 when it could not be built.
int ShowMsgBox(BoxEnvironment& environment, const BoxRequest& request);

// True when a box may be shown; false after logging the text instead.
bool MayShowMsgBox(comSchedule::Environment& runLog, std::u16string_view text, std::int16_t number,
                   bool logOnly);

// The sum of the values of the names joined by "+"; an unknown name counts 0. Throws
// automation::AutomationError (overflow) when the sum exceeds 32 bits.
std::int32_t ParseButtonStyle(std::u16string_view names);
std::int32_t ButtonStyleValue(std::u16string_view name);

// Position of the first entry whose item data equals the value as a 16-bit integer, or -1. Throws
// automation::AutomationError when there are entries and the value is no such integer.
int FindItemDataIndex(const window::Control& list, const automation::Value& value);

}  // namespace vordane::comTools
