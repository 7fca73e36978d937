// A traced story, for the tests of a trace and for those of everything else when they are to be traced.
#pragma once

#include <memory>
#include <utility>

#include "startup/story.h"
#include "trace/traced_station.h"

namespace vordane::trace {

class TracedBetween final : public startup::Between {
 public:
  TracedBetween(const startup::Workstation& plain, std::shared_ptr<Recorder> recorder)
      : traced_(plain, std::move(recorder)) {}
  startup::Workstation station() override { return traced_.station(); }
  void watch(startup::Application& application) override { traced_.watch(application); }
  automation::ObjectRef given(const automation::ObjectRef& own) override { return traced_.given(own); }

 private:
  TracedStation traced_;
};

}  // namespace vordane::trace
