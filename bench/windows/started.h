// A process started for the time of a measurement. Failures are std::runtime_errors.
#pragma once

#include <windows.h>

#include <stdexcept>
#include <string>

#include "platform/windows/com/owned.h"

namespace vordane::bench {

class Started {
 public:
  explicit Started(std::wstring commandLine) {
    STARTUPINFOW start{};
    start.cb = sizeof start;
    PROCESS_INFORMATION made{};
    if (!CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start,
                        &made))
      throw std::runtime_error("CreateProcess");
    CloseHandle(made.hThread);
    process_ = com::Handle(made.hProcess);
  }
  ~Started() {
    if (WaitForSingleObject(process_.get(), 0) == WAIT_TIMEOUT) TerminateProcess(process_.get(), 1);
  }
  Started(const Started&) = delete;
  Started& operator=(const Started&) = delete;
  void waitForEnd() const { WaitForSingleObject(process_.get(), 20000); }

 private:
  com::Handle process_;
};

}  // namespace vordane::bench
