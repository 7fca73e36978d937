#include "startup/cOLELayer.h"

#include <utility>

#include "platform/run_time_errors.h"
#include "startup/basMain.h"
#include "startup/dlgFaultDisplay.h"
#include "startup/library.h"
#include "text/numbers.h"
#include "text/text.h"

namespace vordane {
namespace {

using automation::AutomationError;
using automation::Value;
using startup::LayerMember;

constexpr std::int16_t runStarted = 0;
constexpr std::int16_t runError = 10000;
constexpr std::int16_t runBusy = 10001;

constexpr int objectNotSet = 91;

[[noreturn]] void raise(std::int32_t code, const std::u16string& description) {
  throw AutomationError(code, description, u"Vordane10013");
}

// A kind of host that numbers its errors expects 0x800A0000 + number.
[[noreturn]] void raiseHostError(const AutomationError& failure) {
  const auto number = automation::refusedCallNumber(failure.code());
  raise(number ? automation::error::runTime(*number) : failure.code(), failure.description());
}

}  // namespace

cOLELayer::cOLELayer(startup::Application& application) : application_(application) {
  basMain::RegisterAddin(application_);
  application_.form().life().IncrementCount();
  counted_ = true;
}

void cOLELayer::released() noexcept {
  if (!std::exchange(counted_, false)) return;
  application_.form().userReleased();
}

bool cOLELayer::RegisterPBX(const std::u16string& PBX, const automation::ObjectRef& Parent, std::int16_t ID) {
  dlgFaultDisplay& form = application_.form();
  const auto entry = form.enter();
  application_.station().process.watchHost(*this, Parent);
  if (!form.alive()) return true;
  form.place().FrmMove(Parent);
  if (!form.alive()) return true;
  form.setParent(Parent);
  form.setPBXName(PBX);
  if (!form.alive()) return true;
  addTitle(PBX);
  readSysInfo(PBX, Parent);
  if (!form.alive()) return true;
  form.host().setID(ID);
  return form.life().CheckLoadError();
}

void cOLELayer::addTitle(const std::u16string& PBX) {
  if (PBX.empty()) return;
  std::u16string& title = application_.texts.Title;
  const std::u16string suffix = u"(" + PBX + u")";
  if (!text::contains(title, suffix)) title += u" " + suffix;
}

void cOLELayer::readSysInfo(const std::u16string& PBX, const automation::ObjectRef& Parent) {
  SharedState& state = application_.state();
  if (PBX.empty()) {
    state.SysInfoBit2 = state.SysInfoBit4 = state.SysInfoBit8 = false;
    return;
  }
  if (!Parent) raise(automation::error::runTime(objectNotSet), {});
  try {
    const auto access = automation::toObject(automation::get(*Parent, u"oZUL"));
    if (!access) raise(automation::error::runTime(objectNotSet), {});
    state.SysInfo = automation::toInteger(automation::call(*access, u"getsysinfo", {automation::byRef(PBX)}));
  } catch (const AutomationError& failure) {
    raiseHostError(failure);
  }
  state.SysInfoBit2 = (state.SysInfo & 2) != 0;
  state.SysInfoBit4 = (state.SysInfo & 4) != 0;
  // Bit 8 means something only beside bit 4; without it the flag keeps what it was.
  if (state.SysInfoBit4) state.SysInfoBit8 = (state.SysInfo & 8) != 0;
}

bool cOLELayer::Visible() {
  return application_.form().visible();
}

void cOLELayer::setVisible(bool visible) {
  application_.form().setVisible(visible);
}

bool cOLELayer::CreateSchedule(std::int32_t Key, std::int16_t RAction) {
  dlgFaultDisplay& form = application_.form();
  const auto entry = form.enter();
  if (!form.alive() || application_.state().runMode == RunMode::scheduledRun) return true;
  application_.state().RAction = RAction;
  form.job().setKey(text::decimal(Key));
  form.runs().CreateSchedule();
  return true;
}

std::int16_t cOLELayer::RunSchedule(const std::u16string& Key) {
  dlgFaultDisplay& form = application_.form();
  const auto entry = form.enter();
  if (!form.alive()) return runError;
  if (application_.state().busy || application_.state().runMode == RunMode::scheduledRun) return runBusy;
  try {
    form.job().setKey(text::decimal(automation::toLong(Key)));
    form.runs().RunSchedule();
    return runStarted;
  } catch (const std::exception&) {
    form.runs().reportRefusal(Key);
    return runError;
  }
}

std::int16_t cOLELayer::CancelSchedule() {
  try {
    return application_.form().runs().CancelSchedule();
  } catch (const std::exception&) {
    return 0;  // whatever failed on the way, the host has its answer
  }
}

void cOLELayer::SetBackGround(std::int16_t Index) {
  application_.form().BackGround(Index);
}

Value cOLELayer::invokeMember(std::size_t member, automation::CallKind kind,
                              std::span<automation::Argument> arguments) {
  const auto text = [&](std::size_t i) { return std::get<std::u16string>(arguments[i].value); };
  const auto integer = [&](std::size_t i) { return std::get<std::int16_t>(arguments[i].value); };
  switch (static_cast<LayerMember>(member)) {
    case LayerMember::registering:
      return RegisterPBX(text(0), std::get<automation::ObjectRef>(arguments[1].value), integer(2));
    case LayerMember::visibility:
      if (!automation::isPut(kind)) return Visible();
      setVisible(std::get<bool>(arguments[0].value));
      return {};
    case LayerMember::creating:
      return CreateSchedule(std::get<std::int32_t>(arguments[0].value), integer(1));
    case LayerMember::running:
      return RunSchedule(text(0));
    case LayerMember::cancelling:
      return CancelSchedule();
    case LayerMember::background:
      SetBackGround(integer(0));
      return {};
  }
  return {};
}

}  // namespace vordane
