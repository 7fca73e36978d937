// What people have written to events, in a table of the engine's own beside the documented ones:
//
//   VordaneNotes     Count (the event's key), ID (its owner), Author, Moment, Text
//   VordaneNoteGone  a trigger: a note goes with its event, whoever removes that. This engine switches
//   triggers
//                    off for itself and does the same within the step that removes events.
//
// Both are made with the first note. A note counts only while its event is there and has the same owner, so
// that what triggers were switched off for shows nothing wrong. Something else under the name is left alone:
// such a file is offered no notes.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/notes.h"
#include "platform/sqlite/connection.h"
#include "platform/sqlite/text_rules.h"

namespace vordane::sqlite {

class EventNotes final : public database::Notes {
 public:
  explicit EventNotes(Connection& connection) : connection_(connection) {}

  // Whether the file's events can have notes: only keys that are never given twice mean an event for good.
  bool offered();

  std::optional<database::Note> of(std::int64_t event) override;
  Put put(std::int64_t event, const database::Note& before, const database::Note& now) override;

  // For a walk over many events, in one transaction: whether there are notes at all, and then, of each,
  // whether it has one; with a needle, one whose text holds it.
  bool any() override;
  bool has(std::int64_t event, const FoldedNeedle* needle = nullptr);

  // Inside the step that removes events: the notes of those that are gone.
  void removeGone();

 private:
  enum class Found { nothing, own, foreign };
  Found look();
  bool findTable();
  void make();
  void remove(std::int64_t event);
  void write(std::int64_t event, const database::Note& note);
  void requireStorable(const database::Note& note) const;
  bool isThere(std::int64_t event);
  Statement& prepared(Statement& statement, std::string_view sql);

  Connection& connection_;
  const Table* table_ = nullptr;  // of events
  std::uint64_t tablesChanged_ = 0;
  Statement look_, read_;
  std::u16string copy_;
};

}  // namespace vordane::sqlite
