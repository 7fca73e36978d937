// The thread that turns what was traced into lines and writes them, so that whoever traces waits for no disk.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "trace/ring.h"
#include "trace/trace_files.h"

namespace vordane::trace {

using Clock = std::function<Moment()>;  // called by both threads

class Writer {
 public:
  // Throws std::system_error when there is no thread to be had.
  Writer(TraceFiles files, Clock clock, std::size_t ringBytes);
  // What is not written within `patience` is given up: a disk that does not answer holds no process.
  ~Writer();
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;

  Ring& ring() { return work_->ring; }
  // Something was committed that shall be written soon.
  void wake() noexcept { work_->wake(); }
  // Waits until all that was committed is written, at most so long; false when it is not.
  bool waitUntilWritten(std::chrono::milliseconds patience) noexcept;

  static constexpr std::chrono::milliseconds patience{1000};

 private:
  // Outlives the writer where the thread hangs in a disk.
  struct Work {
    Work(TraceFiles given, Clock time, std::size_t ringBytes)
        : ring(ringBytes), files(std::move(given)), clock(std::move(time)) {}
    void wake() noexcept;
    void run() noexcept;
    void writeAll();
    void writeLines();

    Ring ring;
    TraceFiles files;
    Clock clock;
    std::string out;
    std::size_t lines = 0;  // in `out`

    std::mutex mutex;
    std::condition_variable something, nothingLeft;
    std::atomic<bool> sleeping{false};
    bool stop = false, flush = false, idle = false;  // guarded by the mutex
  };

  std::shared_ptr<Work> work_;
  std::thread thread_;
};

}  // namespace vordane::trace
