#include "replay/replay_trace.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <vector>

namespace vordane::replay {
namespace {

constexpr int ownFormat = 1;

// What an event must have, by a letter for its type: number, text, value, boolean, array.
struct Field {
  const char* name;
  char type;
};
struct Kind {
  const char* name;
  std::vector<Field> fields;
};
const std::array kinds{
    Kind{"start", {{"format", 'n'}, {"hosted", 'b'}, {"interactive", 'b'}, {"exchange", 'v'}}},
    Kind{"end", {}},
    Kind{"stops serving", {}},
    Kind{"ends", {}},
    Kind{"ends at once", {}},
    Kind{"call", {{"number", 'n'}, {"object", 'n'}, {"member", 't'}, {"arguments", 'a'}}},
    Kind{"answer", {{"number", 'n'}}},
    Kind{"called", {{"number", 'n'}, {"object", 'n'}, {"member", 't'}, {"arguments", 'a'}}},
    Kind{"returned", {{"number", 'n'}}},
    Kind{"entries", {{"object", 'n'}, {"first", 'n'}, {"entries", 'a'}}},
    Kind{"created", {{"class", 'v'}, {"object", 'n'}}},
    Kind{"not created", {{"class", 'v'}, {"error", 't'}}},
    Kind{"lent", {{"object", 'n'}, {"class", 't'}}},
    Kind{"released", {{"object", 'n'}}},
    Kind{"let go", {{"object", 'n'}}},
    Kind{"box", {{"number", 'n'}, {"prompt", 'v'}, {"style", 'n'}}},
    Kind{"box answer", {{"number", 'n'}, {"answer", 'n'}}},
    Kind{"database failed", {{"step", 't'}, {"code", 'n'}}},
    Kind{"timer", {{"milliseconds", 'n'}}},
    Kind{"tick", {{"number", 'n'}, {"action", 't'}}},
    Kind{"done", {{"number", 'n'}}},
    Kind{"person", {{"what", 't'}, {"which", 'n'}}},
    Kind{"window", {{"visible", 'b'}}},
    Kind{"left out", {{"why", 't'}, {"count", 'n'}}},
};

bool isOf(const Json& value, char type) {
  switch (type) {
    case 'n':
      return value.is_number_integer();
    case 't':
      return value.is_string();
    case 'b':
      return value.is_boolean();
    case 'a':
      return value.is_array();
    default:
      return !value.is_null();
  }
}

// Half of a character beyond the basic plane, which JSON can't hold alone, is kept in a plane of private use
// meanwhile.
constexpr char32_t halvesFrom = 0x10D800;

bool isHex(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

// The unit of "\uXXXX" at `at`; 0 when there is none.
unsigned unitAt(std::string_view line, std::size_t at) {
  if (at + 6 > line.size() || line[at] != '\\' || line[at + 1] != 'u') return 0;
  if (!std::all_of(line.begin() + static_cast<std::ptrdiff_t>(at) + 2,
                   line.begin() + static_cast<std::ptrdiff_t>(at) + 6, isHex))
    return 0;
  return static_cast<unsigned>(std::stoul(std::string(line.substr(at + 2, 4)), nullptr, 16));
}

std::string escaped(unsigned unit) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string text = "\\u";
  for (const unsigned shift : {12U, 8U, 4U, 0U}) text += digits[(unit >> shift) & 15U];
  return text;
}

std::string withoutHalves(std::string_view line) {
  std::string whole;
  for (std::size_t at = 0; at < line.size();) {
    const unsigned unit = unitAt(line, at);
    if (unit >= 0xD800 && unit <= 0xDFFF) {
      const unsigned next = unitAt(line, at + 6);
      const bool pair = unit < 0xDC00 && next >= 0xDC00 && next <= 0xDFFF;
      if (pair) {
        whole += line.substr(at, 12);
        at += 12;
      } else {
        const unsigned place = static_cast<unsigned>(halvesFrom) + (unit - 0xD800) - 0x10000;
        whole += escaped(0xD800 + (place >> 10U)) + escaped(0xDC00 + (place & 0x3FFU));
        at += 6;
      }
    } else if (line[at] == '\\' && at + 1 < line.size()) {
      whole += line.substr(at, 2);
      at += 2;
    } else {
      whole += line[at++];
    }
  }
  return whole;
}

const Kind* kindOf(std::string_view name) {
  for (const Kind& kind : kinds)
    if (name == kind.name) return &kind;
  return nullptr;
}

std::string inQuotes(std::string_view text) {
  return "\"" + std::string(text.substr(0, 80)) + "\"";
}

char lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// The character that begins at `at`, which is moved behind it; `text` is UTF-8.
char32_t nextCharacter(std::string_view text, std::size_t& at) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(i < text.size() ? text[i] : 0); };
  const unsigned first = byte(at);
  const int more = first < 0x80 ? 0 : first < 0xE0 ? 1 : first < 0xF0 ? 2 : 3;
  char32_t character = more == 0 ? first : first & (0x3FU >> static_cast<unsigned>(more));
  for (int i = 1; i <= more; ++i)
    character = (character << 6U) | (byte(at + static_cast<std::size_t>(i)) & 0x3FU);
  at += static_cast<std::size_t>(more) + 1;
  return character;
}

bool standsPlain(char32_t character) {
  return character >= 0x20 && character != 0x7F && character != 0xFFFD &&
         (character < halvesFrom || character > halvesFrom + 0x7FF);
}

bool allPlain(std::string_view text) {
  for (std::size_t at = 0; at < text.size();)
    if (!standsPlain(nextCharacter(text, at))) return false;
  return true;
}

// The characters of a text, as the add-in counts them: 16 bits each.
std::int64_t unitsOf(std::string_view text) {
  std::int64_t units = 0;
  for (std::size_t at = 0; at < text.size();) {
    const char32_t character = nextCharacter(text, at);
    units += character < 0x10000 || !standsPlain(character) ? 1 : 2;
  }
  return units;
}

const Json nothing;

}  // namespace

std::string listed(const Notes& notes) {
  std::string text;
  for (const Note& note : notes) text += "line " + std::to_string(note.line) + ": " + note.text + "\n";
  return text;
}

Event readLine(std::string_view line, std::size_t number) {
  Json fields = Json::parse(withoutHalves(line), nullptr, false);
  if (!fields.is_object()) throw BadLine("this is no whole line of a trace");
  const auto name = fields.find("event");
  if (name == fields.end() || !name->is_string()) throw BadLine("the line names no event");
  const Kind* const kind = kindOf(name->get_ref<const std::string&>());
  if (kind == nullptr)
    throw UnknownEvent("the event " + inQuotes(name->get_ref<const std::string&>()) +
                       " is not known to this program");
  for (const Field& field : kind->fields) {
    const auto found = fields.find(field.name);
    if (found == fields.end() || !isOf(*found, field.type))
      throw BadLine("the event " + inQuotes(kind->name) + " lacks its field " + inQuotes(field.name));
  }
  return {number, kind->name, std::move(fields)};
}

std::vector<Recording> readTrace(const std::vector<std::string>& lines, Notes& notes) {
  std::vector<Recording> conversations;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    Notes& told = conversations.empty() ? notes : conversations.back().notes;
    try {
      Event event = readLine(lines[i], i + 1);
      if (event.name == "start") {
        if (const std::int64_t format = numberOf(event, "format"); format != ownFormat)
          throw NewerFormat("line " + std::to_string(i + 1) + ": the trace has the format " +
                            std::to_string(format) + ", and this program reads format 1. Use a newer one");
        conversations.emplace_back();
      } else if (conversations.empty()) {
        if (told.empty())
          told.push_back({i + 1, "what comes before the first start of the add-in can't be played"});
        continue;
      }
      if (event.name == "left out")
        told.push_back({i + 1, std::to_string(numberOf(event, "count")) + " events are missing here", true});
      conversations.back().events.push_back(std::move(event));
    } catch (const UnknownEvent& unknown) {
      told.push_back({i + 1, unknown.what()});
    } catch (const BadLine& bad) {
      told.push_back({i + 1, bad.what(), true});
    }
  }
  return conversations;
}

bool hosted(const Recording& conversation) {
  return !conversation.events.empty() && valueOf(conversation.events.front(), "hosted") == Json(true);
}

const Json& valueOf(const Event& event, const char* name) {
  const auto found = event.fields.find(name);
  return found == event.fields.end() ? nothing : *found;
}

std::int64_t numberOf(const Event& event, const char* name) {
  const Json& value = valueOf(event, name);
  return value.is_number_integer() ? value.get<std::int64_t>() : 0;
}

std::string wordOf(const Event& event, const char* name) {
  const Json& value = valueOf(event, name);
  return value.is_string() ? value.get<std::string>() : std::string{};
}

bool failed(const Event& answer) {
  return wordOf(answer, "error").starts_with("0x");
}

bool isMember(const Event& call, std::string_view name) {
  const std::string member = wordOf(call, "member");
  return std::equal(member.begin(), member.end(), name.begin(), name.end(),
                    [](char a, char b) { return lower(a) == lower(b); });
}

bool isText(const Json& value) {
  return value.is_string() || (value.is_object() && value.contains("cut") && value["cut"].is_string());
}

std::string textOf(const Json& value) {
  if (value.is_string()) return value.get<std::string>();
  if (!isText(value)) return {};
  std::string text = value["cut"].get<std::string>();
  const auto length = value.find("length");
  if (length == value.end() || !length->is_number_integer()) return text;
  const std::int64_t wanted = length->get<std::int64_t>();
  if (wanted > longestFilled) return text;
  if (const std::int64_t there = unitsOf(text); wanted > there)
    text.append(static_cast<std::size_t>(wanted - there), '?');
  return text;
}

std::int64_t objectOf(const Json& value) {
  if (!value.is_object()) return 0;
  const auto found = value.find("object");
  return found == value.end() || !found->is_number_integer() ? 0 : found->get<std::int64_t>();
}

std::string lineText(std::string_view text) {
  const bool plain = allPlain(text);
  std::string out = plain ? "\"" : "\\\"";
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t from = at;
    const char32_t character = nextCharacter(text, at);
    const std::string_view bytes = text.substr(from, at - from);
    if (character == U'"')
      out += plain ? "\"\"" : "\\\"";
    else if (!plain && character == U'\\')
      out += "\\\\";
    else if (standsPlain(character))
      out += bytes;
    else
      out += escaped(
          static_cast<unsigned>(character >= halvesFrom ? character - halvesFrom + 0xD800 : character));
  }
  return out + "\"";
}

}  // namespace vordane::replay
