// What the host's scheduler asks of the window: creating a job, running one unattended, giving up either. One
// thread.
#pragma once

#include <cstdint>
#include <string_view>

namespace vordane::startup {

struct WindowParts;

class ScheduledRuns {
 public:
  explicit ScheduledRuns(const WindowParts& parts) : parts_(parts) {}

  void CreateSchedule();
  std::int16_t RunSchedule();     // of the job `Key`; 0
  std::int16_t CancelSchedule();  // 0
  // False in a scheduled run, whose pending request is then cancelled.
  bool QueryCancelRun();
  // The run's next iteration, or its ending.
  void step();
  // The run is over, or given up by the host: the system's event log is told when something of it failed.
  void reportOutcome() noexcept;
  // The job of this key could not be started.
  void reportRefusal(std::u16string_view key) noexcept;

 private:
  void loadOptions();
  bool startJob();
  void showButtonsDead();

  const WindowParts& parts_;
};

}  // namespace vordane::startup
