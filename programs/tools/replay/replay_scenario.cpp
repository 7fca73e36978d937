#include "replay/replay_scenario.h"

#include <array>
#include <map>
#include <optional>
#include <utility>

namespace vordane::replay {
namespace {

constexpr std::int64_t mostEntries = 100'000;
constexpr std::array<const char*, 3> texts{"FirstData", "SecondData", "ExtraData"};

struct Command {
  const char *key, *tag;
};
constexpr Command commands[] = {{"LEA0", "10"}, {"EA1/00", "12"}, {"EA1/00/CCC", "11"}};

const char* tagOf(const std::string& key) {
  for (const Command& command : commands)
    if (key == command.key) return command.tag;
  return "";
}

const char* keyOfTag(const std::string& tag) {
  for (const Command& command : commands)
    if (tag == command.tag) return command.key;
  return "";
}

bool isRefusal(const std::string& answer) {
  return answer.empty() || answer == "BUSY" || answer == "ERROR";
}

// "3" of "(identifier 3)"; empty for what a trace does not hide.
std::string hiddenNumber(const std::string& identifier) {
  constexpr std::string_view begins = "(identifier ";
  if (!identifier.starts_with(begins) || !identifier.ends_with(")")) return {};
  const std::string number = identifier.substr(begins.size(), identifier.size() - begins.size() - 1);
  return number.find_first_not_of("0123456789") == std::string::npos ? number : std::string{};
}

// An answered record, as the add-in read it.
struct Answered {
  std::size_t line = 0;
  std::int64_t count = 0;
  std::map<std::int64_t, std::array<std::string, texts.size()>> entries;
  std::map<std::string, std::string> fields;  // statements by their words
  std::set<std::string> omitted;
  std::string tag;
  bool early = false, twice = false, sentRecord = false;
};

struct Asked {
  std::int64_t record = 0, call = 0;
  std::string login;
  bool open = true;  // SendRequest has not returned
  bool accepted = false;
  std::optional<Answered> answered;
};

struct Exchange {
  std::string name;
  std::size_t line = 0;                                  // of its first call
  std::vector<std::string> login, send, logout, cancel;  // replies
  std::vector<Asked> asked;
  std::string lastLogin;
};

// A record of the add-in's own class that others have filled.
struct Filled {
  std::vector<std::array<std::string, texts.size()>> entries;
  std::map<std::string, Json> fields;
};

class ExchangeWalk {
 public:
  ExchangeWalk(const Recording& conversation, Notes& notes) : events_(conversation.events), notes_(notes) {
    for (const Event& event : events_)
      if (event.name == "answer" || event.name == "returned") ends_[numberOf(event, "number")] = &event;
  }

  Scenario run() {
    for (const Event& event : events_) read(event);
    for (Exchange& exchange : exchanges_) write(exchange);
    if (exchanges_.empty()) scenario_.text += "exchange *\n";
    return std::move(scenario_);
  }

 private:
  void read(const Event& event);
  void call(const Event& event);
  void called(const Event& event);
  void login(const Event& event, const Event* end);
  void sendRequest(const Event& event, const Event* end);
  void readRecord(const Event& call);
  void readEntry(const Event& call, const Event& end, std::size_t column);
  void takeFilled(Answered& answered, std::int64_t record);
  void fill(const Event& event);
  void ask(const Event& event);
  void callBack(const Event& event);
  void endAnswer();
  void conclude(Answered& answered, Asked& asked);

  std::string reply(const Event& event, const Event* end, const char* plain);
  Exchange* exchangeOf(const Event& call);
  Exchange& lastExchange();
  void note(const Event& event, std::string text) { notes_.push_back({event.line, std::move(text), true}); }

  void write(const Exchange& exchange);
  void write(const char* word, std::vector<std::string> replies);
  void write(const Asked& asked);

  const std::vector<Event>& events_;
  Notes& notes_;
  Scenario scenario_;
  std::map<std::int64_t, const Event*> ends_;
  std::vector<Exchange> exchanges_;
  std::size_t last_ = 0;  // the exchange that was called last
  std::map<std::int64_t, std::string> lent_;
  std::set<std::int64_t> open_;  // calls of the add-in that have not come back
  std::map<std::int64_t, Filled> filled_;
  std::map<std::int64_t, std::map<std::string, std::string>> asks_;  // what others read of a request
  std::optional<Answered> answered_;                                 // the answer that is being read
  std::int64_t answeredBy_ = 0, answeredRecord_ = 0;                 // its call, its record
};

void ExchangeWalk::read(const Event& event) {
  if (event.name == "lent") {
    lent_[numberOf(event, "object")] = wordOf(event, "class");
  } else if (event.name == "call") {
    open_.insert(numberOf(event, "number"));
    call(event);
  } else if (event.name == "called") {
    called(event);
  } else if (event.name == "answer") {
    open_.erase(numberOf(event, "number"));
    for (Exchange& exchange : exchanges_)
      for (Asked& asked : exchange.asked)
        if (asked.open && asked.call == numberOf(event, "number")) asked.open = false;
  } else if (event.name == "returned" && answered_ && numberOf(event, "number") == answeredBy_) {
    endAnswer();
  } else if (event.name == "entries" && answered_ && numberOf(event, "object") == answeredRecord_) {
    const std::int64_t first = numberOf(event, "first");
    const Json& rows = valueOf(event, "entries");
    for (std::size_t i = 0; i < rows.size(); ++i)
      for (std::size_t column = 0; column < texts.size(); ++column)
        if (rows[i].is_array() && rows[i].size() == texts.size() + 1 && rows[i][column + 1].is_string())
          answered_->entries[first + static_cast<std::int64_t>(i)][column] = rows[i][column + 1];
  }
}

void ExchangeWalk::call(const Event& event) {
  const auto found = ends_.find(numberOf(event, "number"));
  const Event* const end = found == ends_.end() ? nullptr : found->second;
  if (answered_ && numberOf(event, "object") == answeredRecord_) return readRecord(event);
  if (isMember(event, "Login")) return login(event, end);
  if (isMember(event, "SendRequest")) return sendRequest(event, end);
  if (isMember(event, "LogOut")) {
    if (Exchange* const exchange = exchangeOf(event)) exchange->logout.push_back(reply(event, end, "accept"));
  } else if (isMember(event, "CancelRequest")) {
    // The answer that the trace tells of comes all the same.
    if (Exchange* const exchange = exchangeOf(event)) exchange->cancel.push_back(reply(event, end, "ignore"));
  }
}

// What the exchange said to a call. `plain` for a call whose answer nobody reads; null where it is a text.
std::string ExchangeWalk::reply(const Event& event, const Event* end, const char* plain) {
  std::string usual = plain == nullptr ? "accept" : plain;
  if (end == nullptr || wordOf(*end, "error") == "broken off") {
    note(event, "this call of the exchange never came to its end");
    return usual;
  }
  if (failed(*end)) {
    std::string said = "raise " + wordOf(*end, "error");
    if (const std::string why = textOf(valueOf(*end, "description")); !why.empty())
      said += " " + lineText(why);
    return said;
  }
  if (plain != nullptr) return usual;
  const Json& answer = valueOf(*end, "answer");
  if (isText(answer)) return "answer " + lineText(textOf(answer));
  note(event, "the exchange answered with something that is no text");
  return "empty";
}

Exchange* ExchangeWalk::exchangeOf(const Event& call) {
  const Json& arguments = valueOf(call, "arguments");
  if (arguments.empty() || !isText(arguments[0])) {
    note(call, "this call names no exchange, so it can't be played");
    return nullptr;
  }
  const std::string name = textOf(arguments[0]);
  for (last_ = 0; last_ < exchanges_.size(); ++last_)
    if (exchanges_[last_].name == name) return &exchanges_[last_];
  exchanges_.push_back({name, call.line, {}, {}, {}, {}, {}, {}});
  return &exchanges_.back();
}

void ExchangeWalk::login(const Event& event, const Event* end) {
  Exchange* const exchange = exchangeOf(event);
  if (exchange == nullptr) return;
  const std::string identifier = end == nullptr ? std::string{} : textOf(valueOf(*end, "answer"));
  exchange->lastLogin = identifier;
  // An exchange may give the same identifier twice.
  if (const std::string number = hiddenNumber(identifier); !number.empty())
    return exchange->login.push_back("accept PLAY-" + number);
  scenario_.identifiersShown = scenario_.identifiersShown || !isRefusal(identifier);
  exchange->login.push_back(reply(event, end, nullptr));
}

void ExchangeWalk::sendRequest(const Event& event, const Event* end) {
  if (exchanges_.empty()) return note(event, "this request was sent without a log-in, so it can't be played");
  Exchange& exchange = exchanges_[last_];
  exchange.send.push_back(reply(event, end, nullptr));
  Asked asked;
  const Json& arguments = valueOf(event, "arguments");
  asked.record = arguments.empty() ? 0 : objectOf(arguments[0]);
  asked.call = numberOf(event, "number");
  asked.login = exchange.lastLogin;
  asked.accepted = end != nullptr && !failed(*end) && !isRefusal(textOf(valueOf(*end, "answer")));
  exchange.asked.push_back(std::move(asked));
}

void ExchangeWalk::called(const Event& event) {
  const std::int64_t object = numberOf(event, "object");
  const auto found = lent_.find(object);
  if (found == lent_.end()) return;
  if (found->second == "dlgFaultDisplay" && isMember(event, "CallBack")) return callBack(event);
  if (found->second != "cListRequest") return;
  ask(event);
  fill(event);
}

// What others read of a record tells what it asks for.
void ExchangeWalk::ask(const Event& event) {
  const auto end = ends_.find(numberOf(event, "number"));
  if (end == ends_.end()) return;
  const Json& answer = valueOf(*end->second, "answer");
  if (!isText(answer)) return;
  for (const char* const member : {"CMD", "FirstData", "SecondData", "Tag"})
    if (isMember(event, member)) asks_[numberOf(event, "object")].try_emplace(member, textOf(answer));
}

// What others write into a record is what it may be answered with.
void ExchangeWalk::fill(const Event& event) {
  Filled& filled = filled_[numberOf(event, "object")];
  const Json& arguments = valueOf(event, "arguments");
  if (isMember(event, "Clear")) filled.entries.clear();
  if (isMember(event, "AddToList")) {
    auto& entry = filled.entries.emplace_back();
    for (std::size_t i = 0; i < texts.size() && i + 1 < arguments.size(); ++i)
      entry[i] = textOf(arguments[i + 1]);
  }
  if (!wordOf(event, "as").starts_with("put") || arguments.empty()) return;
  for (const char* const member : {"ErrCode", "Tag", "LoginID"})
    if (isMember(event, member)) filled.fields[member] = arguments.back();
  for (std::size_t column = 0; column < texts.size(); ++column)
    if (isMember(event, texts[column]) && arguments.size() > 1 && arguments[0].is_number_unsigned() &&
        arguments[0] < filled.entries.size())
      filled.entries[arguments[0].get<std::size_t>()][column] = textOf(arguments[1]);
}

void ExchangeWalk::callBack(const Event& event) {
  // Only SendRequest itself can be answered before it returns; other calls are over too soon here.
  const bool asking =
      !exchanges_.empty() && !lastExchange().asked.empty() && lastExchange().asked.back().open;
  if (open_.size() > (asking ? 1U : 0U)) return note(event, "the answer came in the middle of another call");
  const Json& arguments = valueOf(event, "arguments");
  answered_.emplace();
  answered_->line = event.line;
  answeredBy_ = numberOf(event, "number");
  answeredRecord_ = arguments.empty() ? 0 : objectOf(arguments[0]);
  if (!lent_.contains(answeredRecord_)) return;
  takeFilled(*answered_, answeredRecord_);
}

void ExchangeWalk::takeFilled(Answered& answered, std::int64_t record) {
  answered.sentRecord = true;
  const Filled& filled = filled_[record];
  answered.count = static_cast<std::int64_t>(filled.entries.size());
  for (std::size_t i = 0; i < filled.entries.size(); ++i)
    answered.entries[static_cast<std::int64_t>(i)] = filled.entries[i];
  for (const auto& [member, value] : filled.fields) {
    if (member == "ErrCode" && value.is_number_integer())
      answered.fields["errcode"] = std::to_string(value.get<std::int64_t>());
    if (member == "Tag") answered.tag = textOf(value);
    if (member == "LoginID") answered.fields["login-id"] = textOf(value);
  }
}

void ExchangeWalk::readRecord(const Event& call) {
  const auto found = ends_.find(numberOf(call, "number"));
  if (found == ends_.end()) return;
  const Event& end = *found->second;
  for (std::size_t column = 0; column < texts.size(); ++column)
    if (isMember(call, texts[column])) return readEntry(call, end, column);
  const std::string member = wordOf(call, "member");
  if (failed(end)) {
    if (wordOf(call, "as").starts_with("put")) return;
    if (member == "CMD") return note(call, "an entry that can't be read can't be played");
    answered_->omitted.insert(member);
    return;
  }
  const Json& answer = valueOf(end, "answer");
  if (member == "Count" && answer.is_number_integer()) answered_->count = answer.get<std::int64_t>();
  if (member == "ErrCode" && answer.is_number_integer())
    answered_->fields["errcode"] = std::to_string(answer.get<std::int64_t>());
  if (member == "Tag") answered_->tag = textOf(answer);
  if (member == "LoginID") answered_->fields["login-id"] = textOf(answer);
  if (member == "Message") answered_->fields.try_emplace("message", textOf(answer));
}

// One that is no text, or a very long one.
void ExchangeWalk::readEntry(const Event& call, const Event& end, std::size_t column) {
  const Json& arguments = valueOf(call, "arguments");
  const Json& answer = valueOf(end, "answer");
  if (!isText(answer) || arguments.empty() || !arguments[0].is_number_integer())
    return note(call, "an entry that is no text can't be played");
  answered_->entries[arguments[0].get<std::int64_t>()][column] = textOf(answer);
}

Exchange& ExchangeWalk::lastExchange() {
  return exchanges_[last_ < exchanges_.size() ? last_ : 0];
}

void ExchangeWalk::endAnswer() {
  Answered answered = std::move(*answered_);
  answered_.reset();
  const auto unasked = [&] {
    notes_.push_back({answered.line, "nobody had asked for this answer, so it can't be played", true});
  };
  if (exchanges_.empty() || lastExchange().asked.empty()) return unasked();
  Asked& asked = lastExchange().asked.back();
  if (!asked.accepted) return unasked();
  if (!asked.answered) return conclude(answered, asked);
  if (asked.answered->entries == answered.entries && asked.answered->fields == answered.fields) {
    asked.answered->twice = true;
    return;
  }
  notes_.push_back(
      {answered.line, "a second answer to the same request can't be played when it is another one", true});
}

// Only what an answer has besides the usual is said.
void ExchangeWalk::conclude(Answered& answered, Asked& asked) {
  answered.early = asked.open;
  if (answered.omitted.contains("Message")) answered.fields.erase("message");
  if (answered.count > mostEntries) {
    notes_.push_back({answered.line, "the answer names more entries than can be played", true});
    answered.count = 0;
  }
  if (!answered.early) scenario_.answers.insert(answered.line);
  asked.answered = std::move(answered);
}

void ExchangeWalk::write(const Exchange& exchange) {
  // Braces mean a range of names.
  const bool range = exchange.name.find('{') != std::string::npos;
  if (range && exchanges_.size() > 1)
    notes_.push_back(
        {exchange.line,
         "the exchange " + lineText(exchange.name) + " has a name that can't stand beside others", true});
  scenario_.text += "exchange " + (range ? "*" : lineText(exchange.name)) + "\n";
  write("login", exchange.login);
  write("send", exchange.send);
  write("logout", exchange.logout);
  write("cancel", exchange.cancel);
  for (const Asked& asked : exchange.asked)
    if (asked.accepted) write(asked);
}

// The last one holds for all that come behind it.
void ExchangeWalk::write(const char* word, std::vector<std::string> replies) {
  while (replies.size() > 1 && replies.back() == replies[replies.size() - 2]) replies.pop_back();
  if (replies == std::vector<std::string>{"accept"}) return;
  for (const std::string& one : replies) scenario_.text += std::string("  ") + word + " " + one + "\n";
}

void ExchangeWalk::write(const Asked& asked) {
  std::map<std::string, std::string>& said = asks_[asked.record];
  std::string key = said["CMD"];
  if (const std::string& second = said["SecondData"]; !said["FirstData"].empty() || !second.empty())
    key += "/" + said["FirstData"] + (second.empty() ? "" : "/" + second);
  if (key.empty()) key = keyOfTag(said["Tag"]);
  if (key.empty() && asked.answered) key = keyOfTag(asked.answered->tag);
  if (key.empty()) {
    notes_.push_back({asked.answered ? asked.answered->line : exchanges_.front().line,
                      "the trace does not tell what was asked for, so the answer can't be played", true});
    if (asked.answered) scenario_.answers.erase(asked.answered->line);
    return;
  }
  std::string& text = scenario_.text;
  text += "  answer " + lineText(key) + "\n";
  if (!asked.answered) {
    text += "    never\n";
    return;
  }
  const Answered& answered = *asked.answered;
  for (std::int64_t i = 0; i < answered.count; ++i) {
    const auto found = answered.entries.find(i);
    text += "    entry";
    if (found != answered.entries.end())
      for (std::size_t column = 0; column < texts.size(); ++column)
        text += (column == 0 ? " " : " | ") + lineText(found->second[column]);
    text += "\n";
  }
  for (const auto& [word, value] : answered.fields) {
    if (word == "login-id" && value == asked.login) continue;
    if (word == "errcode" && value == "0") continue;
    if (word == "message" && value.empty()) continue;
    text += "    " + word + " " + (word == "errcode" ? value : lineText(value)) + "\n";
  }
  if (!answered.sentRecord && !answered.omitted.contains("Tag") && answered.tag != tagOf(key))
    text += "    tag " + lineText(answered.tag) + "\n";
  for (const std::string& member : answered.omitted) text += "    omit " + lineText(member) + "\n";
  if (answered.sentRecord) text += "    sent-record\n";
  if (answered.twice) text += "    twice\n";
  text += answered.early ? "    early\n" : "    when " + answerWord(answered.line) + "\n";
}

}  // namespace

std::string answerWord(std::size_t line) {
  return "answer-" + std::to_string(line);
}

Scenario scenarioOf(const Recording& conversation, Notes& notes) {
  return ExchangeWalk(conversation, notes).run();
}

}  // namespace vordane::replay
