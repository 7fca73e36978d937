#include "platform/sqlite/event_counts.h"

namespace vordane::sqlite {

std::optional<std::int64_t> EventCounts::of(std::int64_t owner) {
  Statement count(connection_, "SELECT Faults FROM VordaneFaultCounts WHERE ID = ?");
  count.bind(1, owner);
  return count.step() ? std::optional(count.integer(0)) : std::nullopt;
}

void EventCounts::countAll() {
  undone();
  connection_.run("DELETE FROM VordaneFaultCounts");
  connection_.run(
      "INSERT INTO VordaneFaultCounts(ID, Faults) SELECT ID, count(*) FROM VordaneFaultIndex GROUP BY ID");
}

void EventCounts::beforeCommit() {
  for (const auto& [owner, change] : pending_) write(owner, change);
  pending_.clear();
}

void EventCounts::write(std::int64_t owner, const Change& change) {
  if (!change.anew && change.by > 0) {
    if (!add_)
      add_ =
          Statement(connection_,
                    "INSERT INTO VordaneFaultCounts(ID, Faults) VALUES (?1, ?2) ON CONFLICT (ID) DO UPDATE "
                    "SET Faults = Faults + ?2");
    const Running running(add_);
    add_.bind(1, owner);
    add_.bind(2, change.by);
    add_.run();
  } else if (change.anew || change.by < 0) {
    for (const char* sql : {"DELETE FROM VordaneFaultCounts WHERE ID = ?1",
                            "INSERT INTO VordaneFaultCounts(ID, Faults) SELECT ?1, count(*) FROM "
                            "VordaneFaultIndex WHERE ID = ?1 HAVING count(*) > 0"}) {
      Statement step(connection_, sql);
      step.bind(1, owner);
      step.run();
    }
  }
}

void EventCounts::undone() noexcept {
  for (auto& [owner, change] : pending_) change.anew = true;
}

}  // namespace vordane::sqlite
