#include "store/long_step.h"

#include <cmath>

#include "text/numbers.h"

namespace vordane::store {
namespace {

// A step shorter than this shows nothing, a longer one is painted this often.
constexpr double secondsBetweenPaints = 0.1;

}  // namespace

LongStep::LongStep(const Surroundings& around, comSSDataGrid::FaultRows& rows, database::Database& database,
                   Texts texts)
    : around_(around),
      rows_(rows),
      database_(database),
      texts_(texts),
      last_(around.clock.secondsSinceMidnight()) {
  rows_.hold();
  // What the step knows itself stays where the engine knows nothing.
  database_.setProgress([this](std::size_t done, std::size_t of) { of == 0 ? paint() : at(done, of); });
}

LongStep::~LongStep() {
  database_.setProgress({});
  rows_.release();
}

void LongStep::at(std::size_t done, std::size_t of) {
  done_ = done;
  of_ = of;
  paint();
}

// The clock starts anew at midnight, so the distance counts, not the order.
bool LongStep::due() {
  const double now = around_.clock.secondsSinceMidnight();
  if (std::abs(now - last_) < secondsBetweenPaints) return false;
  last_ = now;
  return true;
}

void LongStep::paint() {
  if (!due()) return;
  if (texts_.plain != silent.plain) tell();
  around_.view.paintNow();
}

void LongStep::tell() {
  const auto done = text::decimal(static_cast<std::int64_t>(done_));
  const auto of = text::decimal(static_cast<std::int64_t>(of_));
  const auto pattern = shownText(around_.state, of_ == 0 ? texts_.plain : texts_.counted);
  around_.view.setStatus(window::countPart, fillText(pattern, {done, of}));
}

}  // namespace vordane::store
