#include "attention/attention.h"

namespace vordane::attention {

void Attention::shown(std::u16string_view exchange, Lamp lamp, bool lit) {
  if (exchange != exchange_) {
    exchange_ = exchange;
    lamps_ = {};
  }
  State& state = of(lamp);
  state.news = lit && (state.news || state.lit == false);
  state.lit = lit;
}

Call Attention::take(const Around& around) {
  std::optional<Lamp> news;
  for (const Lamp lamp : {Lamp::minor, Lamp::major}) {
    if (of(lamp).news) news = lamp;
    of(lamp).news = false;
  }
  Call call;
  if (!around.attended || !around.seen) return call;
  call.overlay = lit(Lamp::major) ? Overlay::major : lit(Lamp::minor) ? Overlay::minor : Overlay::none;
  if (!news) return call;
  call.flash = !around.inFront;
  call.announcement = around.inFront ? Announcement::inPlace : Announcement::alert;
  call.announced = news;
  if (around.soundWanted) call.sound = news;
  return call;
}

}  // namespace vordane::attention
