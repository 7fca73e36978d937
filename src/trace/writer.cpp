#include "trace/writer.h"

#include <exception>
#include <string_view>
#include <utility>

namespace vordane::trace {
namespace {

constexpr std::size_t pieceOfFile = 256 * 1024;  // bytes that are written at once
constexpr std::size_t longLine = 16 * 1024;      // one that is written by itself, as it lies there

}  // namespace

void Writer::Work::wake() noexcept {
  if (!sleeping.load(std::memory_order_seq_cst)) return;
  const std::lock_guard<std::mutex> lock(mutex);
  something.notify_one();
}

void Writer::Work::writeLines() {
  if (lines > 0) files.write(out, lines, clock());
  out.clear();
  lines = 0;
}

void Writer::Work::writeAll() {
  while (const auto line = ring.front()) {
    if (line->size() >= longLine) {
      writeLines();
      files.write(*line, 1, clock());
    } else {
      out += *line;
      ++lines;
    }
    ring.pop();
    if (out.size() > pieceOfFile) writeLines();
  }
  writeLines();
}

void Writer::Work::run() noexcept {
  std::unique_lock<std::mutex> lock(mutex);
  for (;;) {
    const bool ending = stop || flush;
    lock.unlock();
    try {
      writeAll();
    } catch (const std::exception&) {
      // Without memory for them lines are lost; those behind them are written again.
      out.clear();
      lines = 0;
    }
    lock.lock();
    sleeping.store(true, std::memory_order_seq_cst);
    if (!ring.empty() || (!ending && (stop || flush))) {
      sleeping.store(false, std::memory_order_seq_cst);
      continue;
    }
    flush = false;
    idle = true;
    nothingLeft.notify_all();
    if (stop) return;
    something.wait(lock, [this] { return stop || flush || !ring.empty(); });
    idle = false;
    sleeping.store(false, std::memory_order_seq_cst);
  }
}

Writer::Writer(TraceFiles files, Clock clock, std::size_t ringBytes)
    : work_(std::make_shared<Work>(std::move(files), std::move(clock), ringBytes)) {
  thread_ = std::thread([work = work_] { work->run(); });
}

bool Writer::waitUntilWritten(std::chrono::milliseconds most) noexcept {
  std::unique_lock<std::mutex> lock(work_->mutex);
  work_->flush = true;
  work_->something.notify_one();
  return work_->nothingLeft.wait_for(lock, most, [this] { return !work_->flush && work_->idle; });
}

Writer::~Writer() {
  const bool written = waitUntilWritten(patience);
  {
    const std::lock_guard<std::mutex> lock(work_->mutex);
    work_->stop = true;
    work_->something.notify_one();
  }
  if (written)
    thread_.join();
  else
    thread_.detach();
}

}  // namespace vordane::trace
