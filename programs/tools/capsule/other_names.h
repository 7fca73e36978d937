// Other names for whom a capsule shall not name: exchanges, people, workstations, log-in identifiers. The
// same name always gets the same other.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vordane::tools {

class OtherNames {
 public:
  enum class Kind : std::uint8_t { exchange, person, workstation, identifier };

  // Blanks around it and its case do not count; an empty one is none. Known names stay what they are.
  void add(Kind kind, std::u16string_view name);
  // The person whose folder a path leads into ("C:\Users\anna\...", "/home/anna/..."), however often one
  // stands in the text.
  void addFolders(std::u16string_view text);
  // What of a line of a trace names somebody: registered exchanges, those that a log-in is for, identifiers.
  void addFromTrace(std::string_view line);

  // Every name of four characters or more, wherever it stands in the text, the longest first. One of fewer
  // counts only where it is all of the text, since a "10" among other words is more often no name.
  std::u16string in(std::u16string_view text) const;
  // The same in each text value of a JSON object; its names, and the words of the trace itself, stay. What is
  // no JSON is taken as a text.
  std::string inJson(std::string_view line) const;

  bool any() const { return !names_.empty(); }

 private:
  struct Name {
    std::u16string folded, other;
  };
  void addIdentifier(std::u16string_view name);
  const std::u16string* whole(std::u16string_view text) const;

  std::vector<Name> names_;  // the longest first
  std::int64_t asked_ = 0;   // the trace's number of the last call that asks for an identifier
  std::array<int, 4> given_{};
};

}  // namespace vordane::tools
