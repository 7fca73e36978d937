#include "replay/replay_script.h"

#include <algorithm>
#include <limits>
#include <map>
#include <set>

namespace vordane::replay {
namespace {

// The members of a host whose answers nobody reads.
constexpr const char* told[] = {"ShowMessage", "ShowCode",         "TurnOnFlow",   "TurnOffFlow",
                                "DisplayHelp", "UnloadChild",      "UnloadChild2", "EndProcess",
                                "REGComData",  "EndCreateSchedule"};
// Those whose answers count.
constexpr const char* asked[] = {"getsysinfo", "GetMPVersion", "GetComData", "PrintReport", "oPBX", "oZUL"};

bool fits(const Json& value) {
  return value.is_number_integer() && value >= std::numeric_limits<std::int32_t>::min() &&
         value <= std::numeric_limits<std::int32_t>::max();
}

// A value as a script writes it; nothing where it can't.
std::optional<std::string> written(const Json& value) {
  if (isText(value)) return lineText(textOf(value));
  if (value.is_boolean()) return value.get<bool>() ? "True" : "False";
  if (fits(value)) return std::to_string(value.get<std::int64_t>());
  return std::nullopt;
}

std::string hostWord(std::size_t line) {
  return "host-" + std::to_string(line);
}

class HostWalk {
 public:
  explicit HostWalk(const Recording& conversation) : events_(conversation.events) {
    for (const Event& event : events_)
      if (event.name == "answer" || event.name == "returned" || event.name == "done")
        ends_[numberOf(event, "number")] = &event;
  }

  Play run(Play play) {
    play_ = std::move(play);
    for (const Event& event : events_) read(event);
    for (const Run& run : runs_) play_.jobs.push_back(jobOf(run));
    std::string head = "pbx in-process " + lineText(scenarioFile) + "\n";
    for (const auto& [member, answers] : answers_) head += nextOf(member, answers);
    play_.script = head + script_ + "when " + endWord + "\n";
    return std::move(play_);
  }

 private:
  struct Run {
    std::int32_t key;
    std::int64_t requests = 0, steps = 0;
    bool stopped = false;
  };

  void read(const Event& event);
  void call(const Event& event);
  void called(const Event& event);
  void lent(const Event& event);
  void hostDoes(const Event& event, const std::string& statement);
  void registers(const Event& event, const std::string& label);
  std::string answerOf(const Event& call);
  static Job jobOf(const Run& run);
  static std::string nextOf(const std::string& member, std::vector<std::string> answers);
  void person(const Event& event, Cue::Kind kind, std::string what, std::int64_t which);
  void end(const Event& event, std::string why) { play_.notes.push_back({event.line, std::move(why), true}); }
  void stepOf(const Event& tick);

  const std::vector<Event>& events_;
  Play play_;
  std::string script_;
  std::map<std::int64_t, const Event*> ends_;
  std::map<std::string, std::vector<std::string>> answers_;  // of the host, by member, call by call
  std::map<std::int64_t, std::string> layers_;               // their labels
  std::set<std::int64_t> open_;                              // calls of the add-in that have not come back
  std::vector<Run> runs_;
};

void HostWalk::read(const Event& event) {
  if (event.name == "call") call(event);
  if (event.name == "answer") open_.erase(numberOf(event, "number"));
  if (event.name == "called") called(event);
  if (event.name == "lent") lent(event);
  if (event.name == "tick") stepOf(event);
  if (event.name == "released")
    if (const auto layer = layers_.find(numberOf(event, "object")); layer != layers_.end())
      hostDoes(event, "try release " + layer->second);
  if (event.name == "person")
    person(event, Cue::Kind::person, wordOf(event, "what"), numberOf(event, "which"));
  if (event.name == "box answer") person(event, Cue::Kind::box, {}, numberOf(event, "answer"));
}

void HostWalk::call(const Event& event) {
  open_.insert(numberOf(event, "number"));
  for (const char* const member : told)
    if (isMember(event, member)) answers_[member].push_back(answerOf(event));
  for (const char* const member : asked)
    if (isMember(event, member)) answers_[member].push_back(answerOf(event));
}

// What stands behind "next MEMBER"; empty where the host does what is usual.
std::string HostWalk::answerOf(const Event& call) {
  const auto found = ends_.find(numberOf(call, "number"));
  if (found == ends_.end() || wordOf(*found->second, "error") == "broken off") {
    end(call, "this call of the host never came to its end");
    return {};
  }
  const Event& end = *found->second;
  if (failed(end)) {
    const std::string why = textOf(valueOf(end, "description"));
    return "raise " + wordOf(end, "error") + (why.empty() ? "" : " " + lineText(why));
  }
  for (const char* const member : told)
    if (isMember(call, member)) return {};
  Json answer = valueOf(end, "answer");
  if (isMember(call, "GetComData")) {
    const Json& changed = valueOf(end, "changed");
    answer = changed.is_object() && changed.contains("2") ? changed["2"] : Json("");
  }
  if (objectOf(answer) != 0) return {};
  if (isMember(call, "oPBX") || isMember(call, "oZUL")) return "nothing";
  if (answer.is_null()) answer = "";
  if (const auto value = written(answer)) return "answer " + *value;
  this->end(call, "the host answered with a value that can't be played");
  return {};
}

// A line for each call, or none where each brings what is usual.
std::string HostWalk::nextOf(const std::string& member, std::vector<std::string> answers) {
  while (!answers.empty() && answers.back().empty()) answers.pop_back();
  std::string text;
  for (const std::string& answer : answers)
    text.append("next ").append(member).append(answer.empty() ? "" : " ").append(answer).append("\n");
  return text;
}

// What the host does, it does when its word has been given.
void HostWalk::hostDoes(const Event& event, const std::string& statement) {
  if (!open_.empty()) return end(event, "the host called in the middle of a call that it was asked to serve");
  script_ += "when " + hostWord(event.line) + "\n" + statement + "\n";
  play_.cues.push_back({Cue::Kind::word, event.line, hostWord(event.line), 0});
}

void HostWalk::lent(const Event& event) {
  if (wordOf(event, "class") != "cOLELayer") return;
  const std::int64_t object = numberOf(event, "object");
  const std::string label = "layer-" + std::to_string(object);
  layers_[object] = label;
  hostDoes(event, "try create " + label);
}

void HostWalk::called(const Event& event) {
  const auto layer = layers_.find(numberOf(event, "object"));
  if (layer == layers_.end()) return;
  if (isMember(event, "RegisterPBX")) return registers(event, layer->second);
  const Json& arguments = valueOf(event, "arguments");
  const std::string as = wordOf(event, "as");
  std::string statement = as.starts_with("put") ? "try put " : as == "method" ? "try call " : "try get ";
  statement += layer->second + " " + lineText(wordOf(event, "member"));
  for (const Json& argument : arguments) {
    const auto value = written(argument);
    if (!value) return end(event, "the host passed a value that can't be played");
    statement += " " + *value;
  }
  if (isMember(event, "RunSchedule") && !arguments.empty() && isText(arguments[0])) {
    const std::string key = textOf(arguments[0]);
    const bool number = !key.empty() && key.size() < 10 &&
                        std::all_of(key.begin(), key.end(), [](char c) { return c >= '0' && c <= '9'; });
    if (number) runs_.push_back({static_cast<std::int32_t>(std::stol(key))});
  }
  hostDoes(event, statement);
}

void HostWalk::registers(const Event& event, const std::string& label) {
  const Json& arguments = valueOf(event, "arguments");
  if (arguments.size() != 3 || !isText(arguments[0]) || objectOf(arguments[1]) == 0 || !fits(arguments[2]))
    return end(event, "the host registered an exchange in a way that can't be played");
  hostDoes(event, "use " + label + "\ntry register " + lineText(textOf(arguments[0])) + " " +
                      std::to_string(arguments[2].get<std::int64_t>()));
}

// A press in the middle of a call is dropped, and calls are over too soon here to be pressed in.
void HostWalk::person(const Event& event, Cue::Kind kind, std::string what, std::int64_t which) {
  if (!open_.empty() && kind == Cue::Kind::person)
    return end(event, "the person did something in the middle of a call, which can't be met again");
  play_.cues.push_back({kind, event.line, std::move(what), which});
}

// What a run did tells the job that it was of.
void HostWalk::stepOf(const Event& tick) {
  if (runs_.empty()) return;
  const std::string action = wordOf(tick, "action");
  if (action == "request") ++runs_.back().requests;
  if (action == "run step") ++runs_.back().steps;
  if (action == "stop run") runs_.back().stopped = true;
}

Job HostWalk::jobOf(const Run& run) {
  const bool ours = run.requests > 0 || run.steps < 2;
  return {run.key, run.stopped, std::max<std::int64_t>(1, ours ? run.requests : run.steps - 1), ours};
}

}  // namespace

Play playOf(const Recording& conversation) {
  Play play;
  play.notes = conversation.notes;
  Scenario scenario = scenarioOf(conversation, play.notes);
  play.scenario = std::move(scenario.text);
  play.identifiersShown = scenario.identifiersShown;
  const bool byHand = !hosted(conversation);
  play = HostWalk(conversation).run(std::move(play));
  for (const std::size_t line : scenario.answers)
    play.cues.push_back({Cue::Kind::word, line, answerWord(line), 0});
  std::stable_sort(play.cues.begin(), play.cues.end(),
                   [](const Cue& a, const Cue& b) { return a.line < b.line; });
  for (const Event& event : conversation.events) {
    if (event.name == "start" && byHand) play.exchange = textOf(valueOf(event, "exchange"));
    if (event.name == "start" && !event.fields.value("interactive", true))
      play.notes.push_back(
          {event.line, "nobody could see its windows; here they are before somebody", false});
    if (event.name == "created") play.simulated = true;
  }
  if (byHand) play.script.clear();
  for (const Note& note : play.notes)
    if (note.ends) play.playedTo = std::min(play.playedTo.value_or(note.line), note.line);
  std::stable_sort(play.notes.begin(), play.notes.end(),
                   [](const Note& a, const Note& b) { return a.line < b.line; });
  return play;
}

}  // namespace vordane::replay
