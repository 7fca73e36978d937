// Beside the test: answers boxes as a person would, ends programs that hang, and remembers how every add-in
// ended; writes the log, if VORDANE_HOSTILE_LOG names a file. A thread of its own, since the director's waits
// for what it ordered.
#pragma once

#include <windows.h>

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "board.h"

namespace vordane::hostile {

class Watcher {
 public:
  explicit Watcher(const Board& board);
  ~Watcher();
  Watcher(const Watcher&) = delete;
  Watcher& operator=(const Watcher&) = delete;

  // The boxes that came up since the last time, by their texts.
  std::vector<std::wstring> takeBoxes();
  // Add-ins that ended since the last time with another code than 0.
  std::vector<DWORD> takeBadEnds();
  int addIns() const { return addIns_; }  // that have ever run
  int killed() const { return killed_; }  // programs that hung

 private:
  void run();
  void lookAtBoxes();
  void lookAtAddIns();
  bool isAddIns(HWND window);
  void answer(HWND box);
  void remember(HWND box);
  void endHanging();
  void writeLog();

  const Board& board_;
  std::mutex mutex_;
  std::vector<std::wstring> boxes_;
  std::vector<DWORD> badEnds_;
  HWND answered_ = nullptr;  // the last one
  ULONGLONG answeredAt_ = 0;
  std::map<DWORD, com::Handle> running_;
  com::Handle over_;
  std::atomic<int> addIns_ = 0, killed_ = 0;
  unsigned next_ = 0;
  std::uint32_t logged_ = 1;
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> log_;
  std::thread thread_;
};

}  // namespace vordane::hostile
