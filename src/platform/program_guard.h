// Who besides administrators may put another program in the place of a registered one, or a library beside
// it: whoever may do that runs code in the name of everybody who starts it. The rule is pure; what the
// workstation says of a file is read by its own half (windows/services).
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace vordane::guard {

// A user or group: its security identifier ("S-1-5-32-545"), and what the workstation calls it.
struct Account {
  std::u16string sid;
  std::u16string name;  // empty: nobody knows it any more
};

// One line of a list of rights.
struct Entry {
  bool allows = true;  // false: denies
  Account account;
  std::uint32_t rights = 0;    // the workstation's bits
  bool forOthersOnly = false;  // holds for what is made inside, not for the place itself
};

enum class Kind {
  program,  // the file
  folder,   // that it lies in
  above     // a folder that holds that one
};

struct Place {
  Kind kind = Kind::program;
  std::u16string path;
  Account owner;
  bool unguarded = false;      // no list at all: everybody may do everything
  std::vector<Entry> entries;  // in their order
};

// Somebody who may replace the program by what is open to him at `path`.
struct Finding {
  std::u16string path;
  std::u16string account;
  bool operator==(const Finding&) const = default;
};

// Each account once for each place, in the order of the lists; an unguarded place names "Everyone". Nothing
// for a program that only administrators and the system itself may replace.
std::vector<Finding> whoMayReplace(std::span<const Place> places);

// "NAME may write to PATH": the words that the set-up tools say it in.
std::u16string sentence(const Finding& finding);

}  // namespace vordane::guard
