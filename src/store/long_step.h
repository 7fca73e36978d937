// A step that may take long: while it is alive the window says what is being done and keeps painting, the
// grid from the rows it has painted before, since the engine can't be asked inside its own step. Input, timer
// and automation stay outside.
#pragma once

#include <cstddef>
#include <string>

#include "language/message_numbers.h"
#include "store/comSSDataGrid.h"
#include "store/store_form.h"

namespace vordane::store {

class LongStep {
 public:
  // What the step is called while nobody knows how far it is, and where a place {1} takes what is done, {2}
  // what there is to do. Both are messages.
  struct Texts {
    std::size_t plain, counted;
  };
  static constexpr Texts storing{message::noticeStoring, message::noticeStoring};
  static constexpr Texts reading{message::noticeReading, message::noticeReadingOf};
  static constexpr Texts deleting{message::noticeDeleting, message::noticeDeletingOf};
  static constexpr Texts silent{0, 0};  // only paints

  LongStep(const Surroundings& around, comSSDataGrid::FaultRows& rows, database::Database& database,
           Texts texts);
  ~LongStep();
  LongStep(const LongStep&) = delete;
  LongStep& operator=(const LongStep&) = delete;

  // Paints when the last time was long enough ago.
  void at(std::size_t done, std::size_t of);

 private:
  void paint();
  void tell();
  bool due();

  Surroundings around_;
  comSSDataGrid::FaultRows& rows_;
  database::Database& database_;
  Texts texts_;
  std::size_t done_ = 0, of_ = 0;
  double last_;
};

}  // namespace vordane::store
