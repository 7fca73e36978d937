// A second run of this test program, which can be killed at any moment: kill -9 or TerminateProcess.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace vordane::crash {

class Process {
 public:
  // Starts this program once more with these arguments (UTF-8, no quotes in them). Throws std::runtime_error.
  explicit Process(const std::vector<std::string>& arguments);
  ~Process();  // kills
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  void kill();
  // Waits for its end; its exit code, below 0 when it was killed.
  int wait();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace vordane::crash
