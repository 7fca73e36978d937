#include "zulsim/core/scenario_parser.h"

#include <algorithm>
#include <limits>

#include "text/numbers.h"
#include "text/text.h"
#include "zulsim/core/generator.h"

namespace vordane::zulsim {
namespace {

using lines::LineError;
using lines::LineReader;

constexpr std::int32_t longestWait = 24 * 60 * 60 * 1000;
constexpr std::int32_t mostFaults = 100000;
constexpr std::int32_t mostExchanges = 10000;

// The names that "PBX-{01..40}" stands for; a text without braces is its own only name.
std::vector<std::u16string> namesOf(const std::u16string& pattern) {
  const std::size_t open = pattern.find(u'{'), dots = pattern.find(u".."), close = pattern.find(u'}');
  if (open == std::u16string::npos) return {pattern};
  if (dots == std::u16string::npos || close == std::u16string::npos || !(open < dots && dots < close))
    throw LineError(u"a range of names is written {1..40}");
  const std::u16string from = pattern.substr(open + 1, dots - open - 1),
                       to = pattern.substr(dots + 2, close - dots - 2);
  const auto first = text::parseInteger(from), last = text::parseInteger(to);
  if (!first || !last || *first < 0 || *last < *first || *last - *first >= mostExchanges)
    throw LineError(u"a range of names runs from a number to a greater one, at most " +
                    text::decimal(mostExchanges) + u" names");
  const int digits = from.starts_with(u'0') ? static_cast<int>(from.size()) : 1;
  std::vector<std::u16string> names;
  for (std::int32_t number = *first; number <= *last; ++number)
    names.push_back(pattern.substr(0, open) + text::decimalPadded(number, digits) +
                    pattern.substr(close + 1));
  return names;
}

Reply reply(LineReader& line, bool mayIgnore = false) {
  Reply reply;
  std::u16string word = line.word(u"what the call answers");
  if (word == u"after") {
    reply.pause = line.number(u"the pause in milliseconds", 0, longestWait);
    word = line.word(u"what the call answers");
  }
  if (word == u"accept" || word == u"answer") {
    reply.kind = word == u"accept" ? Reply::Kind::accept : Reply::Kind::text;
    if (word == u"answer" && line.atEnd())
      throw LineError(u"the answer's text is missing (\"\" is the empty one)");
    reply.text = line.rest();
  } else if (word == u"empty") {
    reply.kind = Reply::Kind::text;
  } else if (word == u"ignore" && mayIgnore) {
    reply.kind = Reply::Kind::ignore;
  } else if (word == u"raise") {
    reply.kind = Reply::Kind::raise;
    reply.code = static_cast<std::int32_t>(0x800A01BD);  // object doesn't support this action
    if (!line.atEnd()) reply.code = lines::errorCode(line.word(u"the error's number"), u"the error's number");
    reply.text = line.rest();
  } else {
    throw LineError(u"\"" + word + u"\" is no answer; it is accept, answer TEXT, empty" +
                    (mayIgnore ? u", ignore or raise" : u" or raise"));
  }
  line.expectEnd();
  return reply;
}

std::u16string lampText(LineReader& line) {
  std::u16string lamps = line.word(u"the lamp text");
  line.expectEnd();
  return lamps;
}

std::int64_t minute(LineReader& line, std::u16string_view what) {
  std::u16string text = line.word(what);
  const auto value = parseMinute(text);
  if (!value)
    throw LineError(std::u16string(what) + u" is written YY/MM/DD or \"YY/MM/DD HH:MM\", not \"" + text +
                    u"\"");
  return *value;
}

Generation::Order order(LineReader& line) {
  const std::u16string word = line.word(u"the order");
  if (word == u"newest-last") return Generation::Order::newestLast;
  if (word == u"newest-first") return Generation::Order::newestFirst;
  if (word == u"mixed") return Generation::Order::mixed;
  throw LineError(u"\"" + word + u"\" is no order; it is newest-last, newest-first or mixed");
}

std::vector<std::uint8_t> kinds(LineReader& line) {
  const std::vector<std::uint8_t> known = knownKinds();
  std::vector<std::uint8_t> chosen;
  for (const std::u16string& kind : text::split(line.word(u"the list of kinds"), u',')) {
    const auto value = static_cast<std::uint8_t>(text::hexField(kind));
    if (kind.size() != 2 || std::find(known.begin(), known.end(), value) == known.end())
      throw LineError(u"\"" + kind + u"\" is no kind that can be generated");
    chosen.push_back(value);
  }
  if (chosen.empty()) throw LineError(u"the list of kinds is empty");
  return chosen;
}

class Parser {
 public:
  ParsedScenario parse(std::string_view utf8) {
    for (const lines::Line& line : lines::linesOf(utf8)) {
      try {
        if (line.text.find(u'\uFFFD') != std::u16string::npos) throw LineError(u"the line is not UTF-8");
        LineReader reader(line.text);
        statement(reader);
      } catch (const LineError& failure) {
        parsed_.problems.push_back({line.number, failure.text()});
      }
    }
    finishExchange();
    if (parsed_.scenario.exchanges.empty() && parsed_.problems.empty())
      parsed_.problems.push_back({1, u"the scenario has no exchange"});
    return std::move(parsed_);
  }

 private:
  using Handler = void (Parser::*)(LineReader&);
  struct Keyword {
    std::u16string_view word;
    enum Place { top, exchange, answer } place;
    Handler handler;
  };
  static const Keyword keywords[];

  void statement(LineReader& line);
  const Keyword* find(std::u16string_view word) const;

  void exchange(LineReader& line) {
    finishExchange();
    exchanges_ = {{}};  // whatever is wrong with the name, the lines below it belong to it
    current_ = {};
    const std::vector<std::u16string> names = namesOf(line.word(u"the exchange's name"));
    line.expectEnd();
    for (const std::u16string& name : names)
      for (const Exchange& other : parsed_.scenario.exchanges)
        if (other.name == name) throw LineError(u"the exchange \"" + name + u"\" stands here a second time");
    exchanges_ = names;
  }

  // The exchanges of a range share what was written and differ in name and number.
  void finishExchange() {
    for (std::size_t i = 0; i < exchanges_.size(); ++i) {
      current_.name = exchanges_[i];
      current_.number = i;
      parsed_.scenario.exchanges.push_back(current_);
    }
    exchanges_.clear();
    answer_ = nullptr;
  }

  void login(LineReader& line) { current_.login.push_back(reply(line)); }
  void send(LineReader& line) { current_.send.push_back(reply(line)); }
  void logOut(LineReader& line) { current_.logOut.push_back(reply(line)); }
  void cancel(LineReader& line) { current_.cancel.push_back(reply(line, true)); }
  void alarm(LineReader& line) { current_.alarm = lampText(line); }

  void repeat(LineReader& line) {
    const std::u16string word = line.word(u"all or last");
    if (word != u"all" && word != u"last") throw LineError(u"repeat is followed by all or last");
    current_.repeatAll = word == u"all";
    line.expectEnd();
  }

  void answer(LineReader& line) {
    const std::u16string key = line.word(u"the command");
    line.expectEnd();
    auto command =
        std::find_if(current_.commands.begin(), current_.commands.end(),
                     [&](const Command& other) { return text::equalIgnoringCase(other.key, key); });
    if (command == current_.commands.end()) command = current_.commands.insert(command, {key, {}});
    answer_ = &command->answers.emplace_back();
  }

  void entry(LineReader& line) {
    const std::vector<std::u16string> fields = line.fields();
    if (fields.size() > 4) throw LineError(u"an entry has at most four fields");
    Entry entry;
    std::u16string* const places[] = {&entry.FirstData, &entry.SecondData, &entry.ExtraData,
                                      &entry.DescriptionData};
    for (std::size_t i = 0; i < fields.size(); ++i) *places[i] = fields[i];
    answer_->parts.emplace_back(std::move(entry));
  }

  void fault(LineReader& line) {
    std::vector<std::u16string> fields = line.fields();
    if (fields.size() < 2 || fields.size() > 4)
      throw LineError(u"a fault is written RECORD | DATE | DATA | DATA, the data texts may be left out");
    fields.resize(4);
    for (std::u16string& field : fields) answer_->parts.emplace_back(Entry{std::move(field), {}, {}, {}});
  }

  void generateFaults(LineReader& line) {
    Generation generation;
    generation.count = line.number(u"the number of faults", 1, mostFaults);
    generation.fromMinute = *parseMinute(u"06/01/01");
    generation.toMinute = *parseMinute(u"06/11/27 23:59");
    while (!line.atEnd()) {
      const std::u16string option = line.word(u"an option");
      if (option == u"seed")
        generation.seed =
            static_cast<std::uint64_t>(line.number(u"the seed", 0, std::numeric_limits<std::int32_t>::max()));
      else if (option == u"from")
        generation.fromMinute = minute(line, u"the first date");
      else if (option == u"to")
        generation.toMinute = minute(line, u"the last date");
      else if (option == u"order")
        generation.order = order(line);
      else if (option == u"kinds")
        generation.kinds = kinds(line);
      else
        throw LineError(u"\"" + option + u"\" is no option; they are seed, from, to, order and kinds");
    }
    if (generation.toMinute < generation.fromMinute) throw LineError(u"the last date lies before the first");
    answer_->parts.emplace_back(std::move(generation));
  }

  void single(Entry entry) { answer_->parts.emplace_back(std::move(entry)); }
  void notFound(LineReader& line) {
    line.expectEnd();
    single({u"DATA NOT FOUND", {}, {}, {}});
  }
  void cut(LineReader& line) {
    const std::u16string text = line.rest();
    single({text.empty() ? u"ZUL_TIMEOUT" : text, {}, {}, {}});
  }
  void lamps(LineReader& line) { single({u"00", lampText(line), u"OK", {}}); }
  void done(LineReader& line) {
    const std::u16string text = line.rest();
    single({u"00", u"CCC", text.empty() ? u"OK" : text, {}});
  }
  void dropLast(LineReader& line) {
    answer_->dropLast = line.number(u"the number of entries", 1, 4 * mostFaults);
  }

  void errCode(LineReader& line) {
    answer_->errCode = line.number(u"the error code", std::numeric_limits<std::int32_t>::min(),
                                   std::numeric_limits<std::int32_t>::max());
  }
  void message(LineReader& line) { answer_->message = line.rest(); }
  void delay(LineReader& line) { answer_->delay = line.number(u"the delay in milliseconds", 0, longestWait); }
  static std::u16string word(LineReader& line) {
    std::u16string name = line.word(u"the word");
    if (name.find_first_of(u"\\/:*?\"<>|") != std::u16string::npos)
      throw LineError(u"a word can't hold \\ / : * ? \" < > or |");
    return name;
  }
  static std::u16string onlyWord(LineReader& line) {
    std::u16string name = word(line);
    line.expectEnd();
    return name;
  }
  void when(LineReader& line) {
    do answer_->when.push_back(word(line));
    while (!line.atEnd());
  }
  void then(LineReader& line) { answer_->then = onlyWord(line); }
  void cancelledWhen(LineReader& line) { current_.cancelledWhen = onlyWord(line); }
  void never(LineReader& line) { flag(line, answer_->never); }
  void early(LineReader& line) { flag(line, answer_->early); }
  void twice(LineReader& line) { flag(line, answer_->twice); }
  void sentRecord(LineReader& line) { flag(line, answer_->sentRecord); }
  static void flag(const LineReader& line, bool& value) {
    line.expectEnd();
    value = true;
  }
  void loginId(LineReader& line) { answer_->loginId = line.rest(); }
  void tag(LineReader& line) { answer_->tag = line.rest(); }
  void answerAlarm(LineReader& line) { answer_->alarm = lampText(line); }
  void omit(LineReader& line) { answer_->omitted.push_back(line.word(u"the member's name")); }
  void vanish(LineReader& line) {
    answer_->vanishAfter =
        line.atEnd() ? 0 : line.number(u"the number of reads", 0, std::numeric_limits<int>::max());
  }

  ParsedScenario parsed_;
  std::vector<std::u16string> exchanges_;  // the names that current_ stands for
  Exchange current_;
  Answer* answer_ = nullptr;  // of current_; answers are only ever added behind it
};

const Parser::Keyword Parser::keywords[] = {
    {u"exchange", Keyword::top, &Parser::exchange},
    {u"login", Keyword::exchange, &Parser::login},
    {u"send", Keyword::exchange, &Parser::send},
    {u"logout", Keyword::exchange, &Parser::logOut},
    {u"cancel", Keyword::exchange, &Parser::cancel},
    {u"cancelled-when", Keyword::exchange, &Parser::cancelledWhen},
    {u"alarm", Keyword::exchange, &Parser::alarm},
    {u"repeat", Keyword::exchange, &Parser::repeat},
    {u"answer", Keyword::exchange, &Parser::answer},
    {u"fault", Keyword::answer, &Parser::fault},
    {u"entry", Keyword::answer, &Parser::entry},
    {u"generate", Keyword::answer, &Parser::generateFaults},
    {u"not-found", Keyword::answer, &Parser::notFound},
    {u"cut", Keyword::answer, &Parser::cut},
    {u"lamps", Keyword::answer, &Parser::lamps},
    {u"done", Keyword::answer, &Parser::done},
    {u"drop-last", Keyword::answer, &Parser::dropLast},
    {u"errcode", Keyword::answer, &Parser::errCode},
    {u"message", Keyword::answer, &Parser::message},
    {u"delay", Keyword::answer, &Parser::delay},
    {u"when", Keyword::answer, &Parser::when},
    {u"then", Keyword::answer, &Parser::then},
    {u"never", Keyword::answer, &Parser::never},
    {u"early", Keyword::answer, &Parser::early},
    {u"twice", Keyword::answer, &Parser::twice},
    {u"sent-record", Keyword::answer, &Parser::sentRecord},
    {u"login-id", Keyword::answer, &Parser::loginId},
    {u"tag", Keyword::answer, &Parser::tag},
    {u"alarm", Keyword::answer, &Parser::answerAlarm},
    {u"omit", Keyword::answer, &Parser::omit},
    {u"vanish", Keyword::answer, &Parser::vanish},
};

const Parser::Keyword* Parser::find(std::u16string_view word) const {
  const Keyword* found = nullptr;
  // `alarm` stands in two places; behind "answer COMMAND" it belongs to the answer.
  for (const Keyword& keyword : keywords)
    if (keyword.word == word && (!found || answer_)) found = &keyword;
  return found;
}

void Parser::statement(LineReader& line) {
  const std::u16string word = line.word(u"a word");
  const Keyword* found = find(word);
  if (!found) throw LineError(u"\"" + word + u"\" is no word of a scenario");
  if (found->place != Keyword::top && exchanges_.empty())
    throw LineError(u"\"" + word + u"\" needs a line \"exchange NAME\" before it");
  if (found->place == Keyword::answer && !answer_)
    throw LineError(u"\"" + word + u"\" needs a line \"answer COMMAND\" before it");
  (this->*found->handler)(line);
}

}  // namespace

ParsedScenario parseScenario(std::string_view utf8) {
  return Parser().parse(utf8);
}

}  // namespace vordane::zulsim
