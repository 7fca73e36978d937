// What a program prints, line by line as it comes: a host's trace. A thread of its own reads the pipe;
// everything here may be called on any thread.
#pragma once

#include <windows.h>

#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "platform/windows/com/owned.h"

namespace vordane::suite {

class Output {
 public:
  Output() = default;
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;
  // Waits for the end of the pipe: whoever writes must have ended by now.
  ~Output();

  // The end that a program writes to; inherited by the program that is started with it. Once.
  com::Handle open();
  // Done on the reading thread at each line that begins so, from then on.
  void whenever(std::string beginning, std::function<void()> deed);

  std::vector<std::string> lines() const;
  std::string text() const;
  std::size_t count(std::string_view beginning) const;
  // Whether that many lines begin so, waited for until the pipe ends or patience does.
  bool await(std::string_view beginning, std::size_t times = 1) const;

 private:
  void read();
  void take(std::string line);

  com::Handle pipe_;
  std::thread reader_;
  mutable std::mutex mutex_;
  mutable std::condition_variable news_;
  std::vector<std::string> lines_;
  bool ended_ = false;
  std::vector<std::pair<std::string, std::function<void()>>> deeds_;
};

}  // namespace vordane::suite
