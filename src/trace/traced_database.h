// Databases in front of others, so that what fails is told in a line; what goes well costs a call. One
// thread.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "platform/database.h"
#include "trace/recorder.h"

namespace vordane::trace {

// Outlives the databases that it opens, and their recordsets.
class TracedEngine final : public database::Engine {
 public:
  TracedEngine(std::shared_ptr<Recorder> recorder, database::Engine& engine);
  ~TracedEngine() override;
  std::unique_ptr<database::Database> open(std::u16string_view path, bool readOnly) override;

  class Failures;

 private:
  std::shared_ptr<Recorder> recorder_;
  database::Engine& engine_;
  std::map<std::u16string, std::unique_ptr<Failures>, std::less<>> files_;
};

}  // namespace vordane::trace
