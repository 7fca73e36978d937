// Whether two traces tell of the same. Times, numbers, identifiers, folders, versions and what others are
// free in are made equal; the rest is compared in its order. Pure; any thread.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "replay/replay_script.h"
#include "replay/replay_trace.h"

namespace vordane::replay {

// What is compared of an event, of an entry or of a list.
struct Item {
  std::size_t line = 0;
  std::string text;  // JSON
};

// Makes items of the events of one process, which it gets in their order.
class Items {
 public:
  std::vector<Item> of(const Event& event);

 private:
  bool keeps(const Event& event);
  void lent(const Event& event);
  Json nameOf(std::int64_t object);
  void number(Json& fields, const char* name, std::map<std::int64_t, std::int64_t>& numbers);
  void equal(Json& value);
  std::string equal(const std::string& text);
  void trim(const Event& event, Json& fields);

  std::map<std::int64_t, std::int64_t> calls_, identifiers_;  // as they are; as first seen
  std::map<std::int64_t, std::string> own_, members_;         // the add-in's objects; of calls that are kept
  int layers_ = 0;
};

struct Difference {
  std::size_t line = 0;   // of the earlier trace
  std::string then, now;  // items; empty: there is none
  bool operator==(const Difference&) const = default;
};

// The first difference; nothing when the later one tells what the earlier one does, and maybe more behind it.
std::optional<Difference> compare(const Recording& then, const Recording& now);

// Follows a conversation that is played again: what is due, and whether it goes as it went.
class Conductor {
 public:
  // Of what `conversation` holds before its line `to`; nothing: of all.
  Conductor(const Recording& conversation, std::vector<Cue> cues, std::optional<std::size_t> to);

  // A line of the new trace. What is no event is passed over.
  void heard(const std::string& line);
  void heard(const Item& item);  // the same, made of it
  // The next cue, once for each, when the add-in has come to it.
  std::optional<Cue> due();
  // It went otherwise here.
  const std::optional<Difference>& difference() const { return difference_; }
  // All of it came, and came as it was.
  bool over() const { return !difference_ && next_ == items_.size(); }
  // What did not come when nothing more does. Only before it is over.
  Difference missing() const;
  std::size_t played() const { return next_; }

 private:
  std::vector<Item> items_;
  std::vector<Cue> cues_;
  std::size_t next_ = 0, given_ = 0;  // items that came, cues that were given
  Items now_;
  std::optional<Difference> difference_;
};

}  // namespace vordane::replay
