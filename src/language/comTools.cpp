#include "language/comTools.h"

#include <algorithm>
#include <array>
#include <limits>

#include "language/comLanguage.h"
#include "language/language_databases.h"
#include "language/row_values.h"
#include "platform/database_numbers.h"
#include "text/numbers.h"
#include "text/text.h"

namespace vordane::comTools {
namespace {

using comLanguage::ExpandEscapes;
using language::textOf;

constexpr std::int16_t shortForm = 1;
constexpr std::int16_t commonMessage = 10;
constexpr std::int16_t runningSchedule = 11;
constexpr std::u16string_view suiteErrorHelp = u"..\\Quil32\\Help\\error.hlp";

struct ButtonStyle {
  std::u16string_view name;
  std::int32_t value;
};

constexpr std::array<ButtonStyle, 20> buttonStyles{{
    {u"vbOKOnly", 0},
    {u"vbOKCancel", 1},
    {u"vbAbortRetryIgnore", 2},
    {u"vbYesNoCancel", 3},
    {u"vbYesNo", 4},
    {u"vbRetryCancel", 5},
    {u"vbCritical", 16},
    {u"vbQuestion", 32},
    {u"vbExclamation", 48},
    {u"vbInformation", 64},
    {u"vbDefaultButton1", 0},
    {u"vbDefaultButton2", 256},
    {u"vbDefaultButton3", 512},
    {u"vbDefaultButton4", 768},
    {u"vbApplicationModal", 0},
    {u"vbSystemModal", 4096},
    {u"vbMsgBoxHelpButton", 16384},
    {u"vbMsgBoxSetForeground", 65536},
    {u"vbMsgBoxRight", 524288},
    {u"vbMsgBoxRtlReading", 1048576},
}};

std::int32_t addStyle(std::int32_t sum, std::u16string_view name) {
  const std::int32_t value = ButtonStyleValue(name);
  if (sum > std::numeric_limits<std::int32_t>::max() - value)
    throw automation::AutomationError(automation::error::runTime(automation::error::overflowNumber));
  return sum + value;
}

// One row of tMsgBox on its way to the screen.
class BoxBuilder {
 public:
  BoxBuilder(const BoxEnvironment& environment, const BoxRequest& request)
      : environment_(environment), request_(request), substitution_(request.substitution.value_or(u" ")) {}

  platform::MessageBoxRequest build() {
    const auto row = openRow();
    box_.prompt = expand(textOf(row->get(u"Prompt")));
    box_.style = ParseButtonStyle(textOf(row->get(u"Buttons")));
    const bool callerNamesTitle = request_.selector == commonMessage;
    box_.title = expand(callerNamesTitle ? request_.titleText : textOf(row->get(u"Title")));
    if (request_.selector == shortForm)
      setCallersHelp();
    else
      setStoredHelp(*row);
    row->close();
    return std::move(box_);
  }

 private:
  std::unique_ptr<database::Recordset> openRow() {
    auto* database =
        request_.selector == commonMessage ? environment_.commonLanguage : environment_.ownLanguage;
    if (database == nullptr)
      throw database::DatabaseError(database::number::fileNotFound, u"no language database");
    using namespace language::statement;
    const auto& statement = request_.selector == shortForm ? shortBox : box;
    return database->openRecordset(statement.with({request_.number}));
  }

  std::u16string expand(std::u16string_view stored) { return ExpandEscapes(stored, substitution_); }

  void setCallersHelp() {
    box_.helpFile = request_.helpFile.value_or(std::u16string(suiteErrorHelp));
    box_.helpContext = request_.helpContext.value_or(0);
  }

  void setStoredHelp(database::Recordset& row) {
    const std::u16string file = textOf(row.get(u"HelpFile"));
    if (file == language::keepDesigned) return;
    box_.helpFile = environment_.programDirectory + u"\\" + expand(file);
    const std::u16string context = textOf(row.get(u"Context"));
    if (!context.empty() && context != language::keepDesigned) box_.helpContext = automation::toLong(context);
  }

  const BoxEnvironment& environment_;
  const BoxRequest& request_;
  std::u16string substitution_;
  platform::MessageBoxRequest box_;
};

}  // namespace

int ShowMsgBox(BoxEnvironment& environment, const BoxRequest& request) {
  int answer = answerNone;
  static_cast<void>(language::trapped([&] {
    const platform::MessageBoxRequest box = BoxBuilder(environment, request).build();
    const bool show = MayShowMsgBox(environment.runLog, box.prompt, request.number, request.logOnly);
    answer = show ? environment.boxes.show(box) : answerYes;
  }));
  return answer;
}

bool MayShowMsgBox(comSchedule::Environment& runLog, std::u16string_view text, std::int16_t, bool logOnly) {
  if (logOnly) {
    comSchedule::WriteRunLog(runLog, text, true, false);
    return false;
  }
  const ScheduleState& state = runLog.state;
  if (state.LogAlways == 1 && state.RunState != runningSchedule)
    comSchedule::WriteRunLog(runLog, text, false, false);
  return state.RunState <= 0;
}

std::int32_t ParseButtonStyle(std::u16string_view names) {
  std::int32_t sum = 0;
  for (const std::u16string& name : text::split(names, u'+')) sum = addStyle(sum, name);
  return sum;
}

std::int32_t ButtonStyleValue(std::u16string_view name) {
  const auto found = std::find_if(buttonStyles.begin(), buttonStyles.end(),
                                  [&](const ButtonStyle& style) { return style.name == name; });
  return found == buttonStyles.end() ? 0 : found->value;
}

int FindItemDataIndex(const window::Control& list, const automation::Value& value) {
  const auto& items = list.items();
  if (items.empty()) return -1;
  const std::int16_t wanted = automation::toInteger(value);
  const auto found =
      std::find_if(items.begin(), items.end(), [&](const auto& item) { return item.itemData == wanted; });
  return found == items.end() ? -1 : static_cast<int>(found - items.begin());
}

}  // namespace vordane::comTools
