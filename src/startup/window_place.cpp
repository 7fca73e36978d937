#include "startup/window_place.h"

#include <cmath>

#include "text/numbers.h"
#include "text/text.h"

namespace vordane::startup {
namespace {

// A stored coordinate, "." as decimal mark; nothing for what is no number or lies nowhere near a screen.
std::optional<std::int32_t> coordinate(std::u16string_view text) {
  try {
    const double value = automation::toDouble(std::u16string(text::trim(text)));
    constexpr double limit = 10'000'000;
    if (!(std::abs(value) < limit)) return std::nullopt;
    return static_cast<std::int32_t>(std::lround(value));
  } catch (const automation::AutomationError&) {
    return std::nullopt;
  }
}

}  // namespace

void WindowPlace::FrmMove(const automation::ObjectRef& host) {
  const WindowLife::Entry entry(life_);
  if (!life_.alive() || host_.ref()) return;
  auto place = saved(host);
  if (!life_.alive()) return;
  if (!place) {
    const auto screen = station_.view.screenSize();
    const auto own = station_.view.windowSize();
    place = {(screen.width - own.width) / 2, (screen.height - own.height) / 2};
  }
  station_.view.moveTo(place->first, place->second);
}

std::optional<WindowPlace::Place> WindowPlace::saved(const automation::ObjectRef& host) {
  const auto pieces = GetJobParameter(station_, host, u"MOVE");
  if (pieces.size() < 2) return std::nullopt;
  const auto left = coordinate(pieces[0]);
  const auto top = coordinate(pieces[1]);
  if (!left || !top) return std::nullopt;
  return Place(*left, *top);
}

void WindowPlace::FrmPositionSave() {
  const WindowLife::Entry entry(life_);
  if (!life_.drawn() && !last_) return;
  const auto [left, top] = life_.drawn() ? station_.view.position() : *last_;
  StoreJobParameter(host_, u"MOVE", text::decimal(left) + u"," + text::decimal(top));
}

void WindowPlace::remember() {
  last_ = Place(0, 0);
  last_ = station_.view.position();
}

}  // namespace vordane::startup
