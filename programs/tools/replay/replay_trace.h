// What a trace tells, line by line, as events that a conversation can be played again from. Pure; any thread.
#pragma once

#include <nlohmann/json.hpp>

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace vordane::replay {

using Json = nlohmann::json;

// One event, its fields checked: what docs/schemas/trace.schema.json says each event has is there, of its
// type.
struct Event {
  std::size_t line = 0;  // of the trace, from 1
  std::string name;      // "call"
  Json fields;
};

// What can't be played, or not as it was, and why: a sentence for a person.
struct Note {
  std::size_t line = 0;
  std::string text;
  bool ends = false;  // nothing from this line on can be played
  bool operator==(const Note&) const = default;
};
using Notes = std::vector<Note>;
std::string listed(const Notes& notes);  // "line 7: ...", each on a line of its own

// What can be wrong with a line, or with a trace.
struct BadLine : std::runtime_error {
  using runtime_error::runtime_error;
};
struct UnknownEvent : std::runtime_error {  // of a later program
  using runtime_error::runtime_error;
};
struct NewerFormat : std::runtime_error {
  using runtime_error::runtime_error;
};

// The event of one line. Throws BadLine or UnknownEvent.
Event readLine(std::string_view line, std::size_t number);

// One process of the add-in, from its start on.
struct Recording {
  std::vector<Event> events;
  Notes notes;
};

// The processes that the lines tell of, in the order of their starts, each with notes of what is no whole
// line or no known event, and is left out. `notes` gets those of lines before the first start. Throws
// NewerFormat.
std::vector<Recording> readTrace(const std::vector<std::string>& lines, Notes& notes);

// --- fields, by the names that stand in a line

bool hosted(const Recording& conversation);
std::int64_t numberOf(const Event& event, const char* name);  // 0 where there is none
std::string wordOf(const Event& event, const char* name);     // "" where there is no text
const Json& valueOf(const Event& event, const char* name);    // null where there is none
bool failed(const Event& answer);                             // with a code that can be raised again
bool isMember(const Event& call, std::string_view name);      // whatever the case of its letters

// A value's text. Of a text that was cut the beginning, filled up to its length. Nothing for what is none.
bool isText(const Json& value);
std::string textOf(const Json& value);
inline constexpr std::int64_t longestFilled = 4'000'000;  // characters; a longer one stays cut

// The object that a value is, 0 for any other.
std::int64_t objectOf(const Json& value);

// --- texts of scenarios and scripts

// In quotes, so that it stays in its place on its line whatever it holds: docs/scenarios.md.
std::string lineText(std::string_view text);

}  // namespace vordane::replay
