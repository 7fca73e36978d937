// What the host's scheduler asks of the window: creating a job, running one unattended, giving up either. One
// thread.
#pragma once

#include <cstdint>

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

 private:
  bool startJob();
  void showButtonsDead();

  const WindowParts& parts_;
};

}  // namespace vordane::startup
