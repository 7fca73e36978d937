// The workstation as the application sees it while a trace is wanted: everything that crosses its borders
// goes through something that tells of it. Without a trace none of this is put in. One thread, but for the
// one that writes.
#pragma once

#include <memory>

#include "startup/application.h"
#include "trace/recorder.h"
#include "trace/traced_database.h"
#include "trace/traced_objects.h"
#include "trace/traced_view.h"
#include "trace/wish.h"

namespace vordane::trace {

// What writes a trace of this process into the folder. Throws std::system_error where no thread is to be had.
std::shared_ptr<Recorder> record(std::unique_ptr<Folder> folder, const Wish& wish, Clock clock = systemMoment,
                                 std::size_t ringBytes = Recorder::usualRing);

class TracedStation {
 public:
  // What is given outlives this.
  TracedStation(const startup::Workstation& station, std::shared_ptr<Recorder> recorder);
  ~TracedStation();  // the end of the trace
  TracedStation(const TracedStation&) = delete;
  TracedStation& operator=(const TracedStation&) = delete;

  // To make the application with; then the application, whose timer says what a tick does.
  startup::Workstation station();
  void watch(startup::Application& application);

  // An object that another program has created, as it is to be given to it.
  automation::ObjectRef given(const automation::ObjectRef& object) { return objects_->outwards(object); }

 private:
  class Boxes;
  class Creator;
  class Life;

  const startup::Workstation& plain_;
  std::shared_ptr<Recorder> recorder_;
  std::shared_ptr<TracedObjects> objects_;
  std::unique_ptr<Boxes> boxes_;
  std::unique_ptr<Creator> creator_;
  std::unique_ptr<Life> life_;
  TracedEngine engine_;
  TracedView view_;
};

// As the settings say; null without a trace, or where it can't be had: then everything goes on as without.
// `plain` outlives it.
std::unique_ptr<TracedStation> traceAsWished(const startup::Workstation& plain,
                                             platform::SettingsStore& workstationSettings);

}  // namespace vordane::trace
