#include "right_host.h"

#include <algorithm>
#include <regex>
#include <stdexcept>
#include <utility>

#include "desk.h"
#include "patience.h"
#include "platform/windows/com/apartment.h"
#include "platform/windows/services/services.h"
#include "program.h"
#include "text/utf8.h"
#include "zulsim/core/exchange_server.h"

namespace vordane::hostile {
namespace {

using automation::AutomationError;
using automation::byVal;
using automation::ObjectRef;

constexpr std::int16_t runError = 10000;

constexpr std::string_view scenario = R"(
exchange RIGHT
  alarm 10
  answer LEA0
    fault 11 MJ LP 0C | 06/11/27 10:15 | 02 00 00 | 00
    fault 01 MN MP 00 | 06/11/27 10:20 | 0C
    fault 48 MN LP 15 | 06/11/01 06:57 | 00 02 01 00 02 00 00 00 | 8F 1C 3B
    delay 1
  answer EA1/00
    lamps 10
    delay 1
)";

std::string masked(std::string_view line) {
  static const std::regex identifier("(SIM|ACCEPTED)-[0-9]+");
  return std::regex_replace(std::string(line), identifier, "$1-N");
}

std::string joined(const Lines& lines) {
  std::string all;
  for (const std::string& line : lines) all += "\n  " + line;
  return all;
}

}  // namespace

RightHost::RightHost(std::function<void(std::string_view)> note)
    : note_(std::move(note)),
      scenario_(zulsim::parseScenario(scenario)),
      trace_([this](std::string_view line) { told(line); }),
      state_(std::make_shared<devhost::HostState>(devhost::HostState{*this, trace_})),
      host_(std::make_shared<devhost::Host>(state_)) {
  if (!scenario_.problems.empty()) throw std::logic_error("the scenario is wrong");
  const auto simulation = std::make_shared<zulsim::Simulation>(scenario_.scenario, *this);
  state_->exchangeServer =
      std::make_shared<devhost::TracedServer>(state_, std::make_shared<zulsim::ExchangeServer>(simulation));
  state_->systemInfo = 4;  // bit 8 of somebody else goes only with bit 4 set
  state_->version = u"SC-1000 N1";
}

void RightHost::told(std::string_view line) {
  lines_.push_back(masked(line));
  note_(lines_.back());
  if (lines_.back() != "TurnOnFlow") return;
  for (auto& answer : std::exchange(answers_, {})) timers_.after(1, std::move(answer));
}

ObjectRef RightHost::create(std::u16string_view progId) {
  return windows::ComObjectCreator().create(progId);
}

bool RightHost::waitUntil(const std::function<bool()>& done, int milliseconds) {
  return com::serveMessagesUntil(done, milliseconds);
}

bool RightHost::take() {
  try {
    if (!layer_) layer_ = createPatiently(u"Vordane10013.cOLELayer", &creationsTriedAgain_);
  } catch (const AutomationError& failure) {
    throw std::runtime_error("a creation by the host that behaves failed: " + std::string(failure.what()));
  }
  return registerIt();
}

automation::Value RightHost::call(std::u16string_view member, std::vector<automation::Argument> given) {
  try {
    return layer_->invoke(member, automation::CallKind::method, given);
  } catch (const AutomationError& failure) {
    throw std::runtime_error(text::toUtf8(member) + " of the host that behaves failed: " + failure.what());
  }
}

bool RightHost::registerIt() {
  return !automation::toBoolean(
      call(u"RegisterPBX", {byVal(std::u16string(u"RIGHT")), byVal(host_), byVal(std::int16_t{7})}));
}

bool RightHost::idle() {
  return automation::toInteger(call(u"RunSchedule", {byVal(std::u16string(u"no key"))})) == runError;
}

void RightHost::cancel() {
  call(u"CancelSchedule");
}

// The list, then the alarm state: each ends with the flow turned off. What was pressed before may come to its
// turn first, and a question that comes before the log-in may be answered with No: then it is pressed again.
Lines RightHost::converse() {
  const auto ends = [this] {
    if (!idle()) return false;
    if (std::count(lines_.begin(), lines_.end(), "TurnOffFlow") >= 2) return true;
    lines_.clear();
    pressButton(addInWindow(), Action::request);
    return false;
  };
  lines_.clear();
  if (!waitUntil(ends, patience()))
    throw std::runtime_error("the conversation does not end:" + joined(lines_));
  return takeLines();
}

Lines RightHost::takeLines() {
  return std::exchange(lines_, {});
}

}  // namespace vordane::hostile
