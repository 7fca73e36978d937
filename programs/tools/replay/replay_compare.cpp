#include "replay/replay_compare.h"

#include <algorithm>

namespace vordane::replay {
namespace {

constexpr const char *layerClass = "cOLELayer", *windowClass = "dlgFaultDisplay";
constexpr const char* leftOut[] = {"end", "lent", "released", "let go", "left out"};
constexpr const char* follows[] = {"answer", "returned", "done", "box answer"};
// Fields that are another time's, another place's or another program's.
constexpr const char* foreign[] = {"at",    "took",   "format", "version", "words",
                                   "class", "reason", "source", "changed"};

constexpr const char* readings[] = {"method", "get", "method or get"};

template <class Names>
bool isOneOf(const Names& names, const std::string& name) {
  return std::find(std::begin(names), std::end(names), name) != std::end(names);
}

std::int64_t renumbered(std::map<std::int64_t, std::int64_t>& numbers, std::int64_t number) {
  if (number == 0) return 0;
  return numbers.try_emplace(number, static_cast<std::int64_t>(numbers.size()) + 1).first->second;
}

// The members of a host and of an exchange whose answers nobody reads.
bool answerCounts(const std::string& member) {
  constexpr const char* told[] = {"ShowMessage",  "ShowCode",    "TurnOnFlow",        "TurnOffFlow",
                                  "DisplayHelp",  "UnloadChild", "UnloadChild2",      "EndProcess",
                                  "REGComData",   "GetComData",  "EndCreateSchedule", "LogOut",
                                  "CancelRequest"};
  return !isOneOf(told, member);
}

bool endsPath(char c) {
  return c == '"' || c == '<' || c == '>' || c == '|' || c == '*' || c == '?' || c == '\r' || c == '\n' ||
         c == ':';
}

bool isLetter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

// Where the file's name of a path begins that begins at `at`; `at` where none does.
std::size_t behindFolders(const std::string& text, std::size_t at) {
  const bool drive = at + 2 < text.size() && isLetter(text[at]) && text[at + 1] == ':' &&
                     text[at + 2] == '\\' && (at == 0 || !isLetter(text[at - 1]));
  const bool share = text.compare(at, 2, "\\\\") == 0;
  if (!drive && !share) return at;
  std::size_t name = at;
  for (std::size_t i = at + 2; i < text.size() && !endsPath(text[i]); ++i)
    if (text[i] == '\\') name = i + 1;
  return name;
}

}  // namespace

bool Items::keeps(const Event& event) {
  if (event.name == "lent") lent(event);
  if (isOneOf(leftOut, event.name)) return false;
  if (event.name == "tick" && wordOf(event, "action") == "none") return false;
  if (event.name == "called") {
    // What others read of a request is theirs to choose.
    const std::string of = nameOf(numberOf(event, "object"));
    if (!of.starts_with(layerClass) && of != windowClass) return false;
  }
  return !isOneOf(follows, event.name) || calls_.contains(numberOf(event, "number"));
}

// One window and one request after another have other numbers, as long as anybody holds the last one.
void Items::lent(const Event& event) {
  std::string name = wordOf(event, "class");
  if (name == layerClass) name += " " + std::to_string(++layers_);
  own_[numberOf(event, "object")] = name;
}

// Others' objects come and go as others like; what is called of them tells them apart.
Json Items::nameOf(std::int64_t object) {
  const auto found = own_.find(object);
  return found == own_.end() ? Json("other") : Json(found->second);
}

void Items::number(Json& fields, const char* name, std::map<std::int64_t, std::int64_t>& numbers) {
  const auto found = fields.find(name);
  if (found != fields.end() && found->is_number_integer())
    *found = renumbered(numbers, found->get<std::int64_t>());
}

std::string Items::equal(const std::string& text) {
  constexpr std::string_view begins = "(identifier ";
  std::string out;
  for (std::size_t at = 0; at < text.size();) {
    if (text.compare(at, begins.size(), begins) == 0) {
      const std::size_t from = at + begins.size(), end = text.find(')', from);
      if (end != std::string::npos && end > from && end - from < 10 &&
          std::all_of(text.begin() + static_cast<std::ptrdiff_t>(from),
                      text.begin() + static_cast<std::ptrdiff_t>(end),
                      [](char c) { return c >= '0' && c <= '9'; })) {
        out += std::string(begins) +
               std::to_string(renumbered(identifiers_, std::stoll(text.substr(from, end - from)))) + ")";
        at = end + 1;
        continue;
      }
    }
    const std::size_t name = behindFolders(text, at);
    if (name == at)
      out += text[at++];
    else
      at = name;
  }
  return out;
}

void Items::equal(Json& value) {
  if (value.is_string()) value = equal(value.get<std::string>());
  if (value.is_array())
    for (Json& one : value) equal(one);
  if (!value.is_object()) return;
  if (objectOf(value) != 0) value["object"] = nameOf(objectOf(value));
  for (auto& [name, one] : value.items())
    if (one.is_string()) one = equal(one.get<std::string>());
}

void Items::trim(const Event& event, Json& fields) {
  for (const char* const name : foreign) fields.erase(name);
  if (event.name == "start") {
    const Json hosted = fields["hosted"], exchange = fields["exchange"];
    fields = {{"event", "start"}, {"hosted", hosted}, {"exchange", exchange}};
  }
  // Which of the two ways of reading a host chooses is its language's.
  if (event.name == "called" && isOneOf(readings, wordOf(event, "as"))) fields.erase("as");
  if (event.name == "answer") {
    fields.erase("description");
    if (!answerCounts(members_[numberOf(event, "number")])) fields.erase("answer");
  }
  if (event.name == "not created") fields.erase("description");
  // The window's place is the desk's.
  const auto arguments = fields.find("arguments");
  if (arguments != fields.end() && arguments->size() == 3 && (*arguments)[1] == Json("MOVE"))
    (*arguments)[2] = "";
}

std::vector<Item> Items::of(const Event& event) {
  if (!keeps(event)) return {};
  Json fields = event.fields;
  if (event.name == "call") members_[numberOf(event, "number")] = wordOf(event, "member");
  trim(event, fields);
  number(fields, "number", calls_);
  for (auto& [name, value] : fields.items())
    if (name != "event" && name != "member") equal(value);
  if (objectOf(fields) != 0) fields["object"] = nameOf(objectOf(fields));
  if (event.name != "entries") return {{event.line, fields.dump()}};
  std::vector<Item> items;
  std::int64_t index = numberOf(event, "first");
  for (Json& entry : fields["entries"]) {
    // The command stands in the run's log and nowhere else; the simulated exchange gives back what was asked.
    if (entry.is_array() && !entry.empty()) entry.erase(0);
    items.push_back({event.line, Json{{"event", "entries"}, {"entry", index++}, {"holds", entry}}.dump()});
  }
  return items;
}

std::optional<Difference> compare(const Recording& then, const Recording& now) {
  Conductor conductor(then, {}, std::nullopt);
  Items items;
  for (const Event& event : now.events)
    for (const Item& item : items.of(event)) conductor.heard(item);
  if (conductor.difference()) return conductor.difference();
  if (conductor.over()) return std::nullopt;
  return conductor.missing();
}

Conductor::Conductor(const Recording& conversation, std::vector<Cue> cues, std::optional<std::size_t> to)
    : cues_(std::move(cues)) {
  Items items;
  for (const Event& event : conversation.events) {
    if (to && event.line >= *to) break;
    for (Item& item : items.of(event)) items_.push_back(std::move(item));
  }
  if (to) std::erase_if(cues_, [&](const Cue& cue) { return cue.line >= *to; });
}

void Conductor::heard(const Item& item) {
  if (difference_ || next_ == items_.size()) return;
  if (items_[next_].text == item.text)
    ++next_;
  else
    difference_ = Difference{items_[next_].line, items_[next_].text, item.text};
}

void Conductor::heard(const std::string& line) {
  try {
    for (const Item& item : now_.of(readLine(line, 0))) heard(item);
  } catch (const std::runtime_error&) {
    // A later program may tell more.
  }
}

std::optional<Cue> Conductor::due() {
  if (difference_ || given_ == cues_.size()) return std::nullopt;
  const Cue& cue = cues_[given_];
  const bool before = next_ < items_.size() && items_[next_].line < cue.line;
  if (before) return std::nullopt;
  ++given_;
  return cue;
}

Difference Conductor::missing() const {
  return {items_[next_].line, items_[next_].text, {}};
}

}  // namespace vordane::replay
