#include "hostile/attack.h"

#include <functional>
#include <utility>

#include "text/numbers.h"

namespace vordane::hostile {
namespace {

using automation::AutomationError;
using automation::byVal;
using automation::ObjectRef;
using automation::Value;

constexpr std::size_t mostLayers = 20;

// What stands in the log of each.
constexpr std::string_view layerCalls[] = {
    "layer RegisterPBX",   "layer RegisterPBX",    "layer Visible =",   "layer Visible",
    "layer SetBackGround", "layer CreateSchedule", "layer RunSchedule", "layer CancelSchedule"};
constexpr std::string_view windowCalls[] = {
    "window PBXName =", "window Parent =", "window Key =",  "window position", "window ShowWhatsThis",
    "window CallBack",  "window FrmMove",  "window answer", "window answer"};
constexpr std::string_view deeds[] = {"person: help key", "person: heading", "person: exchange",
                                      "person: close",    "person: boxes",   "person: button",
                                      "person: button",   "person: button"};

// Whatever a layer's member or the window does for somebody outside may fail as a call, and in no other way.
void attempt(const std::function<void()>& step) {
  try {
    step();
  } catch (const AutomationError&) {
  }
}

void registerEvil(automation::Object& layer, const ObjectRef& host) {
  automation::call(layer, u"RegisterPBX",
                   {byVal(std::u16string(u"EVIL")), byVal(host), byVal(std::int16_t{3})});
}

}  // namespace

void Attack::lieInWait() {
  plot_.meddle = [this] {
    if (!scene_.over()) outside(true);
  };
}

void Attack::begin() {
  hasLayers_ = true;
  if (!plot_.meddle) lieInWait();
  host = plot_.lend(plot_.makePeer());
  addLayer();
  if (!layers.empty()) attempt([&] { registerEvil(*layers.front(), host); });
}

void Attack::addLayer() {
  plot_.tell("creates a layer");
  ++unregistered_;
  try {
    const ObjectRef made = scene_.createLayer();
    layers.push_back(made);
    if (faithful) registerEvil(*made, host);
  } catch (const AutomationError&) {
    // Whether there is one can be seen.
  }
  --unregistered_;
}

ObjectRef Attack::someHost() {
  return !faithful && plot_.whims.once(6) ? plot_.anyObject() : host;
}

// A release may lead to others that are made or let go of meanwhile.
void Attack::keepLayers(std::size_t count) {
  if (layers.size() <= count) return;
  std::vector<ObjectRef> gone(std::make_move_iterator(layers.begin() + static_cast<std::ptrdiff_t>(count)),
                              std::make_move_iterator(layers.end()));
  layers.resize(count);
}

ObjectRef Attack::someLayer() {
  Whims& whims = plot_.whims;
  if (layers.empty() || (layers.size() < mostLayers && whims.once(30))) addLayer();
  return layers.empty() ? ObjectRef{} : layers[whims.below(layers.size())];
}

void Attack::callLayer() {
  Whims& whims = plot_.whims;
  const ObjectRef held = someLayer();
  if (!held) return;
  const std::size_t deed = whims.below(8);
  plot_.tell(layerCalls[deed]);
  switch (deed) {
    case 0:
    case 1:
      return attempt([&] {
        automation::call(
            *held, u"RegisterPBX",
            {byVal(whims.once(3) ? whims.text() : u"EVIL"), byVal(someHost()), byVal(std::int16_t{3})});
      });
    case 2:
      return attempt([&] { automation::put(*held, u"Visible", whims.value()); });
    case 3:
      return attempt([&] { automation::get(*held, u"Visible"); });
    case 4:
      return attempt([&] { automation::call(*held, u"SetBackGround", {byVal(whims.value())}); });
    case 5:
      if (!whims.once(8) || !endings) return;
      scene_.makesAJob();
      return attempt([&] {
        automation::call(*held, u"CreateSchedule", {byVal(whims.number()), byVal(std::int16_t{1})});
      });
    case 6:
      if (whims.once(8) && endings) runSchedule(*held);
      return;
    case 7:
      if (!whims.once(12) || !endings) return;
      try {
        if (automation::toInteger(automation::call(*held, u"CancelSchedule")) != 0)
          scene_.wrong("CancelSchedule answers something else than 0");
      } catch (const AutomationError& failure) {
        if (!scene_.isGone(failure.code())) scene_.wrong(std::string("CancelSchedule: ") + failure.what());
      }
  }
}

void Attack::runSchedule(automation::Object& layer) {
  Whims& whims = plot_.whims;
  const std::u16string key =
      whims.once(3) ? whims.text() : text::decimal(static_cast<std::int64_t>(1 + whims.below(9)));
  try {
    const auto answer = automation::toInteger(automation::call(layer, u"RunSchedule", {byVal(key)}));
    if (answer != 0 && answer != 10001 && answer != 10000)
      scene_.wrong("RunSchedule answers " + std::to_string(answer));
  } catch (const AutomationError& failure) {
    if (!scene_.isGone(failure.code())) scene_.wrong(std::string("RunSchedule: ") + failure.what());
  }
}

void Attack::callWindow() {
  Whims& whims = plot_.whims;
  if (!plot_.caller) return;
  const ObjectRef window = plot_.caller;
  const auto call = [&](std::u16string_view member, Value value) {
    attempt([&] { automation::call(*window, member, {byVal(std::move(value))}); });
  };
  const std::size_t deed = whims.below(9);
  plot_.tell(windowCalls[deed]);
  switch (deed) {
    case 0:
      return attempt([&] { automation::put(*window, u"PBXName", whims.knownText()); });
    case 1:
      return attempt(
          [&] { automation::put(*window, u"Parent", host && whims.once(2) ? host : plot_.anyObject()); });
    case 2:
      return attempt([&] { automation::put(*window, u"Key", whims.value()); });
    case 3:
      return attempt([&] { automation::call(*window, u"FrmPositionSave"); });
    case 4:
      return call(u"ShowWhatsThis", whims.oneOf<std::u16string>({u"lblMJ", u"grdDisplayFault", u"", u"x"}));
    case 5:
      return call(u"CallBack", whims.value());
    case 6:
      return call(u"FrmMove", whims.once(2) ? Value(plot_.anyObject()) : whims.value());
    default:
      return callBack();
  }
}

// The server never hears of an error of ours.
void Attack::answerWith(automation::Object& window, const ObjectRef& record) {
  plot_.tell("answers");
  try {
    automation::call(window, u"CallBack", {byVal(record)});
  } catch (const AutomationError& failure) {
    if (!scene_.isGone(failure.code())) scene_.wrong(std::string("CallBack: ") + failure.what());
  }
}

void Attack::answer() {
  if (const ObjectRef window = plot_.caller) answerWith(*window, plot_.lend(plot_.makeRecord()));
}

void Attack::answerLate(automation::Object& window) {
  for (const ObjectRef& record : std::exchange(plot_.late, {})) answerWith(window, record);
}

void Attack::answerLate() {
  if (const ObjectRef window = plot_.caller) answerLate(*window);
}

void Attack::callBack() {
  if (!plot_.caller) return;
  const ObjectRef window = plot_.caller;
  const ObjectRef record = plot_.whims.once(5) ? plot_.anyObject() : plot_.lend(plot_.makeRecord());
  if (plot_.whims.once(10)) plot_.late.push_back(record);
  const bool twice = plot_.whims.once(5);
  answerWith(*window, record);
  if (twice) answerWith(*window, record);
}

void Attack::person() {
  Whims& whims = plot_.whims;
  const std::size_t deed = whims.below(8);
  plot_.tell(deeds[deed]);
  switch (deed) {
    case 0:
      return scene_.pressKey(112);
    case 1:
      return scene_.clickHeading(static_cast<int>(whims.below(6)));
    case 2:
      return scene_.chooseExchange(whims.next());
    case 3:
      if (whims.once(4) && endings) scene_.closeWindow();
      return;
    case 4:
      return scene_.answerBoxesWith(whims.oneOf({1, 2, 4, 6, 7, 0}));
    default:
      scene_.press(whims.once(2) ? 0 : static_cast<int>(whims.below(6)));
  }
}

void Attack::whileABoxStands() {
  if (plot_.whims.once(8) && !scene_.over()) outside(true);
}

// The last release, or the death of whoever held the layers.
void Attack::leave() {
  plot_.tell("leaves");
  if (plot_.whims.once(2) && plot_.mortal && isWatched()) scene_.die();
  keepLayers(0);
}

// `inside` a call it may also be the end.
void Attack::outside(bool inside) {
  Whims& whims = plot_.whims;
  switch (whims.below(10)) {
    case 0:
    case 1:
    case 2:
      return hasLayers_ ? callLayer() : callBack();
    case 3:
    case 4:
      return callWindow();
    case 5:
      return callBack();
    case 6:
      return inside && whims.once(plot_.oneDeathIn) ? leave() : person();
    default:
      if (!inside || whims.once(4)) person();
      scene_.tick();
  }
}

}  // namespace vordane::hostile
