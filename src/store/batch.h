// The additions and changes of one step. What was saved stays saved when the step fails.
#pragma once

#include "platform/database.h"

namespace vordane::store {

class Batch {
 public:
  explicit Batch(database::Database& database) : database_(database) { database_.beginBatch(); }
  ~Batch() { abandon(); }
  Batch(const Batch&) = delete;
  Batch& operator=(const Batch&) = delete;

  // Throws DatabaseError when what is left can't be saved.
  void end() {
    open_ = false;
    database_.endBatch();
  }

 private:
  // A step that failed has an error to report already.
  void abandon() noexcept {
    if (!open_) return;
    try {
      database_.endBatch();
    } catch (const database::DatabaseError&) {
      open_ = false;
    }
  }

  database::Database& database_;
  bool open_ = true;
};

}  // namespace vordane::store
