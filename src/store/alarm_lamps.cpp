// The lamps: what the exchange answered, kept with its row and painted from there.
#include "language/message_numbers.h"
#include "pbx/response_codes.h"
#include "platform/stored_values.h"
#include "store/fault_store.h"
#include "store/reset_receipts.h"
#include "store/statements.h"
#include "store/trap.h"
#include "text/numbers.h"
#include "text/text.h"

namespace vordane::store {
namespace {

constexpr std::int32_t red = 255, white = 16777215, black = 0;

struct LampState {
  bool major, minor;
};

// Two characters 0 to 9; nothing else is a lamp state.
std::optional<LampState> lampState(std::u16string_view text) {
  if (text.size() != 2 || !text::isDecimalDigit(text[0]) || !text::isDecimalDigit(text[1])) return {};
  return LampState{text[0] != u'0', text[1] != u'0'};
}

// Every entry says that it was done; an answer without entries passes.
bool clearConfirmed(const cListRequest& answer) {
  for (std::int32_t i = 0; i < answer.Count(); ++i)
    if (pbx::GetResponseCode(text::toUpper(answer.ExtraData(i))) != pbx::responseOk) return false;
  return true;
}

}  // namespace

bool FaultStore::UpDateAlarm(const pbx::ReceivedList& received) {
  if (openDatabase() == nullptr) return true;
  const auto state = lampState(text::trim(received.entries.SecondData(0)));
  if (!state) {
    form_.showBox(box::stepFailed);
    return false;
  }
  storeLamps(received.exchange, state->major, state->minor);
  return true;
}

bool FaultStore::ClearAlarm(const pbx::ReceivedList& received) {
  if (openDatabase() == nullptr) return true;
  const bool confirmed = clearConfirmed(received.entries);
  around_.receipts.answered(received, confirmed);
  if (!confirmed) {
    form_.showBox(box::stepFailed);
    return false;
  }
  form_.showBox(box::alarmsReset);
  if (form_.alive()) storeLamps(received.exchange, false, false);
  return true;
}

void FaultStore::storeLamps(std::u16string_view name, bool major, bool minor) {
  // The box before may have let the database be closed.
  database::Database* database = form_.faultDatabase();
  if (database == nullptr) return;
  const auto failure = trap([&] {
    const auto exchange = database->openRecordset(findExchange(name));
    if (exchange->recordCount() > 0) {
      exchange->edit();
      exchange->set(u"MJ", major);
      exchange->set(u"MN", minor);
      exchange->update();
    }
    exchange->close();
  });
  if (failure) showError(*failure);
}

void FaultStore::paintLamps(database::Database& database) {
  const auto shown = chosen();
  around_.receipts.show(shown ? shown->name : std::u16string{});
  if (!shown) return showLamps(false, false);
  const auto exchange = database.openRecordset(findExchange(shown->name));
  const bool found = exchange->recordCount() > 0;
  showLamps(found && database::flagOf(exchange->get(u"MJ")), found && database::flagOf(exchange->get(u"MN")));
  exchange->close();
}

void FaultStore::showLamps(bool major, bool minor) {
  const auto paint = [&](std::u16string_view label, bool isMajor, bool on) {
    window::Control& lamp = around_.form.control(label);
    lamp.set(u"BackColor", on ? red : white);
    lamp.set(u"ForeColor", black);
    around_.view.setLamp(isMajor, on);
  };
  paint(u"lblMJ", true, major);
  paint(u"lblMN", false, minor);
}

}  // namespace vordane::store
