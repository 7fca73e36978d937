// What a person writes to a fault: one line, by whom and when. An engine that keeps notes keeps them beside
// the faults, in a table of its own; the documented tables and statements know nothing of them. One thread;
// failures are DatabaseErrors.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vordane::database {

struct Note {
  std::u16string author, moment, text;  // the moment as YYYY/MM/DD HH:MM; without a text there is no note

  bool operator==(const Note&) const = default;
};

// In UTF-16 units.
inline constexpr std::size_t longestNote = 500;

// `written` as one line: line ends, tabs and characters that only steer the drawing become blanks, those at
// both ends go. Of any length.
std::u16string noteLine(std::u16string_view written);
// Whether it becomes another text than it is, the blanks at its ends aside.
bool isSteered(std::u16string_view written);

// The notes to the faults of one store. A fault is meant by its number, which no other fault of the store
// has.
class Notes {
 public:
  virtual ~Notes() = default;
  // Whether there can be any: no fault has one where there is none.
  virtual bool any() { return true; }
  // Nothing where there is none, or no such fault.
  virtual std::optional<Note> of(std::int64_t fault) = 0;

  enum class Put {
    kept,
    faultGone,  // nothing was written
    changed,  // somebody else has written meanwhile: `before` is no longer what is kept; nothing was written
    notOneLine,  // the text is too long, or not as `noteLine` makes it; nothing was written
  };
  // In the place of `before`, which is what `of` told; a note without a text takes it away. It is safe when
  // this returns. A failure leaves what was there.
  virtual Put put(std::int64_t fault, const Note& before, const Note& now) = 0;
};

// Why a list's faults have no notes.
enum class NoNotes {
  accessFile,    // another engine's file, in which nothing but the documented tables stands
  server,        // a store on a server that was made before there were notes
  foreignTable,  // a file whose tables somebody else has declared in another way
};

}  // namespace vordane::database
