// Databases in front of others, so that what fails is told in a line; what goes well costs a call. One
// thread.
#pragma once

#include <memory>

#include "platform/database.h"
#include "trace/recorder.h"

namespace vordane::trace {

class TracedEngine final : public database::Engine {
 public:
  TracedEngine(std::shared_ptr<Recorder> recorder, database::Engine& engine)
      : recorder_(std::move(recorder)), engine_(engine) {}
  std::unique_ptr<database::Database> open(std::u16string_view path, bool readOnly) override;

 private:
  std::shared_ptr<Recorder> recorder_;
  database::Engine& engine_;
};

}  // namespace vordane::trace
