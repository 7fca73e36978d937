#include "store/long_step.h"

#include <cmath>

#include "language/message_numbers.h"
#include "text/numbers.h"

namespace vordane::store {
namespace {

// A step shorter than this shows nothing, a longer one is painted this often.
constexpr double secondsBetweenPaints = 0.1;

}  // namespace

LongStep::LongStep(StoreForm& form, comSSDataGrid::FaultRows& rows, database::Database& database,
                   std::size_t pattern)
    : form_(form),
      rows_(rows),
      database_(database),
      pattern_(pattern),
      last_(form.clock().secondsSinceMidnight()) {
  rows_.hold();
  database_.setProgress([this] { paint(); });
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
  const double now = form_.clock().secondsSinceMidnight();
  if (std::abs(now - last_) < secondsBetweenPaints) return false;
  last_ = now;
  return true;
}

void LongStep::paint() {
  if (!due()) return;
  const auto done = text::decimal(static_cast<std::int64_t>(done_));
  const auto of = text::decimal(static_cast<std::int64_t>(of_));
  form_.view().setStatus(window::countPart, fillText(messageText(form_.state(), pattern_), {done, of}));
  form_.view().paintNow();
}

}  // namespace vordane::store
