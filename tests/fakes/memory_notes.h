// Notes to faults in memory, as a store keeps them.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <utility>

#include "platform/database.h"

namespace vordane::fakes {

// Of the faults that `exists` knows.
class MemoryNotes final : public database::Notes {
 public:
  explicit MemoryNotes(std::function<bool(std::int64_t fault)> exists) : exists_(std::move(exists)) {}
  std::optional<database::Note> of(std::int64_t fault) override {
    const auto found = notes.find(fault);
    if (found == notes.end() || !exists_(fault)) return {};
    return found->second;
  }
  Put put(std::int64_t fault, const database::Note& before, const database::Note& now) override {
    if (fails) throw database::DatabaseError(3027, u"read-only");
    if (now.text.size() > database::longestNote || database::noteLine(now.text) != now.text)
      return Put::notOneLine;
    if (!exists_(fault)) return Put::faultGone;
    if (of(fault).value_or(database::Note{}) != before) return Put::changed;
    if (now.text.empty())
      notes.erase(fault);
    else
      notes[fault] = now;
    return Put::kept;
  }

  std::map<std::int64_t, database::Note> notes;
  bool fails = false;

 private:
  std::function<bool(std::int64_t fault)> exists_;
};

}  // namespace vordane::fakes
