// Telling each new fault and lamp once, from a mark on: the rule, without the file, the outlet and the clock.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

#include "fault_json.h"
#include "follow_mark.h"
#include "lines.h"

namespace vordane::tools {

using Event = std::variant<StoredFault, LampsTold>;
std::string jsonOf(const Event& event);

// What was to be told has not reached its end, or nobody knows. It is told again. The text says why.
class NotTold : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The mark is not of the file that is followed: trying again mends nothing.
class ForeignMark : public ToolError {
 public:
  using ToolError::ToolError;
};

// Where events go.
class Outlet {
 public:
  virtual ~Outlet() = default;
  // Before anything else: what it has that a mark which was kept too early does not know of.
  virtual void recall(FollowMark&) {}
  // In their order. When it returns they are there for good; `mark` tells how far that is. Throws NotTold.
  virtual void tell(std::span<const Event> events, FollowMark& mark) = 0;
};

class Following {
 public:
  // What is stored behind a fault, with the fault last told; throws DatabaseError.
  using Read = std::function<FeedPiece(std::int64_t behind, std::int64_t witness)>;
  using Keep = std::function<void(const FollowMark& mark)>;

  // `file` is the database's name for messages. The others must live as long.
  Following(std::string file, Read read, Keep keep, Outlet& outlet);

  // Once, before the first round: a mark that was kept, or a new one, which with `fromNow` stands behind all
  // that is stored. Keeps it.
  void begin(FollowMark mark);
  void beginFromNow(FollowMark mark);

  // Tells what has come, or a part of it: true when there may be more at once. Throws what reading, telling
  // and keeping throw, after which a round may be tried again; and ForeignMark.
  bool round();

 private:
  void requireSameFile(const FeedPiece& piece) const;
  void keep();

  const std::string file_;
  const Read read_;
  const Keep keep_;
  Outlet& outlet_;
  FollowMark mark_;
  bool kept_ = true;  // what `mark_` says
};

}  // namespace vordane::tools
