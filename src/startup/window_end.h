// The ends of the window: the unload, the ending of a run or a creation, the last release. Boxes and outgoing
// calls serve other calls while they wait, an ending included: whoever comes back from one looks at
// WindowLife::alive and touches neither window nor database when it is false. One thread.
#pragma once

#include <exception>
#include <memory>
#include <utility>

#include "platform/database.h"
#include "startup/window_life.h"

namespace vordane::startup {

struct WindowParts;

class WindowEnd {
 public:
  explicit WindowEnd(const WindowParts& parts) : parts_(parts) {}

  // Once: closes the databases, tells the host by the run mode; every step runs, nothing is thrown.
  void Unload();
  // Of a run or a job's creation: the host is told, then the window unloads.
  void Ending();
  // One user less; the last one saves the place, lets the host go, unloads and ends the process. A step that
  // fails hinders none of the others.
  void userReleased() noexcept;

 private:
  void beginEnding();
  void withdraw();
  void notifyEnding();
  void notifyUnload();
  void runLetGo();
  void endProcess();

  const WindowParts& parts_;
};

// A step of an ending: whatever fails in it, the next one runs.
template <class Step>
void attempt(Step step) noexcept {
  try {
    step();
  } catch (const std::exception&) {
  }
}

// A step that waits further down the stack may still name a database: what is closed lives until it returns.
inline void closeLater(WindowLife& life, std::unique_ptr<database::Database>& database) {
  if (!database) return;
  database->close();
  life.retire(std::shared_ptr<database::Database>(std::move(database)));
}

}  // namespace vordane::startup
