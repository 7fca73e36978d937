// The system's event log, in memory.
#pragma once

#include <new>
#include <string>
#include <vector>

#include "platform/event_log.h"
#include "text/utf8.h"

namespace vordane::fakes {

class MemoryEventLog : public platform::EventLog {
 public:
  enum class State {
    works,
    refuses,  // as where the system's service is stopped
    starves,  // runs out of memory
  };

  bool write(const platform::EventEntry& entry) override {
    ++asked;
    if (state == State::starves) throw std::bad_alloc();
    if (state == State::refuses) return false;
    entries.push_back(entry);
    return true;
  }

  // "18 C:\\NIGHT1.tlg | busy | job 1", each once.
  std::vector<std::string> lines() const {
    std::vector<std::string> lines;
    for (const auto& entry : entries)
      lines.push_back(std::to_string(static_cast<int>(entry.event)) + " " + text::toUtf8(entry.file) + " | " +
                      text::toUtf8(entry.reason) +
                      (entry.job.empty() ? "" : " | job " + text::toUtf8(entry.job)));
    return lines;
  }

  State state = State::works;
  int asked = 0;
  std::vector<platform::EventEntry> entries;
};

}  // namespace vordane::fakes
