// Looks for the latest flood of the exchange whose rows are on the desk, and tells what it consists of. Done
// in pieces between messages as the desk's own work; other rows begin it anew. One thread; the desk outlives
// it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "list/desk.h"
#include "list/flood.h"

namespace vordane::list {

class FloodDigest {
 public:
  explicit FloodDigest(Desk& desk) : desk_(desk) {}

  // The desk has other rows, newest first. Until it is done the flood of the former ones is told.
  void begin();
  void forget();  // nobody looks, or there are no rows

  bool done() const { return step_ == Step::done; }
  // While a long step runs it waits.
  bool busy() const { return step_ != Step::done && desk_.list() != nullptr; }
  // Goes on while `again` says so, one piece at least; true when it has come to the end with this. Never
  // throws: where the database can't be read there is no flood.
  bool work(const std::function<bool()>& again);
  const std::optional<Flood>& flood() const { return flood_; }

 private:
  enum class Step { times, faults, names, done };
  // Faults that agree in kind, class and processor.
  struct Group {
    std::size_t faults = 0, position = 0;
    std::u16string fault, processor, title;
  };
  class Tally;
  void piece(database::RowList& rows, const std::function<bool()>& again);
  void lookAtTimes(database::RowList& rows);
  void lookAtFaults(database::RowList& rows);
  bool name(Group& group, database::RowList& rows);
  void end(std::optional<Flood> found);
  Flood told() const;

  Desk& desk_;
  std::optional<Flood> flood_;
  Step step_ = Step::done;
  FloodSearch search_;
  std::unique_ptr<database::TimeWalk> times_;
  std::unique_ptr<database::Survey> survey_;
  std::vector<Group> groups_;
  // Of the earliest fault and the latest: its place in the list, and its group.
  struct Edge {
    std::size_t position = 0, group = 0;
  };
  std::optional<Edge> first_, last_;
  std::size_t named_ = 0;
  std::vector<database::Value> row_;
};

}  // namespace vordane::list
