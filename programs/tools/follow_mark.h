// How far `follow` has told what is stored: what it keeps between two starts.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "tools/sqlite/fault_feed.h"

namespace vordane::tools {

struct FollowMark {
  struct Told {
    std::int64_t number = 0;
    std::string id;  // identifierOf the fault

    bool operator==(const Told&) const = default;
  };
  struct LampsSeen {
    Lamps lamps;
    std::int64_t sequence = 0;  // how often they have been told

    bool operator==(const LampsSeen&) const = default;
  };

  std::string source;                       // 16 hexadecimal digits: of this mark and no other
  std::int64_t reached = beforeAllFaults;   // the number of the last fault looked at
  std::optional<Told> told;                 // the last one told
  std::map<std::int64_t, LampsSeen> lamps;  // by the exchange's ID
  std::uintmax_t length = 0;                // of the file that was told into, if it was one

  bool operator==(const FollowMark&) const = default;
};

// A mark that has told nothing, with a source of its own.
FollowMark newMark();

std::string textOf(const FollowMark& mark);
// `name` stands in messages. Throws ToolError for a text that is no mark, is cut short, or is one of a later
// version.
FollowMark markFrom(std::string_view text, const std::string& name);

// Nothing when there is no such file. Throws ToolError.
std::optional<FollowMark> readMark(const std::filesystem::path& path);
void keepMark(const std::filesystem::path& path, const FollowMark& mark);

}  // namespace vordane::tools
