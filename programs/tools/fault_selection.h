// Which of the stored faults a command is asked for.
#pragma once

#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>

#include "list/filter.h"

namespace vordane::tools {

struct FaultSelection {
  std::optional<std::u16string> exchange;  // nothing: all of them
  std::set<std::u16string> classes;        // by their keys (list::keyOf); none: all of them
  list::Filter filter;                     // its text is not asked for

  // Whether it may leave a fault out.
  bool isOn() const;
  // A name ignores case and blanks behind it, as everywhere in the suite.
  bool hasExchange(std::u16string_view name) const;
};

// Throws ToolError when the times can't be followed.
void requireTimes(const list::Filter& filter);

// That none of the exchanges `known` has the name asked for. `file` is the database's name for messages.
[[noreturn]] void noSuchExchange(const std::string& file, std::u16string_view name,
                                 std::span<const std::u16string> known);

// Tells faults apart, of whatever exchange. One whose date has another form than "YYYY/MM/DD HH:MM" lies
// within no limits. `selection` has no mistake and must live as long.
class WantedFaults {
 public:
  explicit WantedFaults(const FaultSelection& selection) : selection_(selection), limits_(selection.filter) {}
  bool has(std::u16string_view kind, std::u16string_view alarm, std::u16string_view processor,
           std::u16string_view time) const;

 private:
  const FaultSelection& selection_;
  list::Limits limits_;
};

}  // namespace vordane::tools
