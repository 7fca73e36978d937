#include "devhost/core/script.h"

#include <limits>

#include "text/numbers.h"
#include "text/text.h"

namespace vordane::devhost {
namespace {

using lines::LineError;
using lines::LineReader;

constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t longestWait = 24 * 60 * 60 * 1000;
constexpr int usualWait = 30000;
constexpr std::u16string_view usualServer = u"CalderinProj30001.cPBXOLE";
constexpr std::u16string_view usualClass = u"Vordane10013.cOLELayer";
constexpr std::u16string_view usualLabel = u"layer";

void none(LineReader&, Statement&) {}

std::u16string member(LineReader& line) {
  std::u16string name = line.word(u"the member's name");
  if (!Host::knowsMember(name)) throw LineError(u"\"" + name + u"\" is no member of a host");
  return name;
}

int milliseconds(LineReader& line) {
  return line.number(u"the time in milliseconds", 0, longestWait);
}

void pbx(LineReader& line, Statement& statement) {
  const std::u16string word = line.atEnd() ? std::u16string(u"create") : line.word(u"");
  if (word == u"in-process") {
    statement.verb = Verb::pbxInProcess;
    statement.name = line.word(u"the scenario's file");
  } else if (word == u"none") {
    statement.verb = Verb::noPbx;
  } else if (word == u"create") {
    statement.text = line.atEnd() ? std::u16string(usualServer) : line.word(u"the ProgID");
  } else {
    throw LineError(u"pbx is followed by create, in-process or none");
  }
}

void create(LineReader& line, Statement& statement) {
  statement.name = line.atEnd() ? std::u16string(usualLabel) : line.word(u"the label");
  statement.text = line.atEnd() ? std::u16string(usualClass) : line.word(u"the ProgID");
}

void optionalLabel(LineReader& line, Statement& statement) {
  if (!line.atEnd()) statement.name = line.word(u"the label");
}

void label(LineReader& line, Statement& statement) {
  statement.name = line.word(u"the label");
}

// A text in quotes, True, False, a number (16 bits if it fits), or a text without blanks.
automation::Value value(LineReader& line) {
  const bool quoted = line.atQuote();
  std::u16string word = line.word(u"a value");
  if (quoted) return word;
  if (word == u"True" || word == u"False") return word == u"True";
  if (const auto number = text::parseInteger(word)) {
    if (*number >= INT16_MIN && *number <= INT16_MAX) return static_cast<std::int16_t>(*number);
    return *number;
  }
  return word;
}

void freeCall(LineReader& line, Statement& statement) {
  statement.name = line.word(u"the label");
  statement.text = line.word(u"the member's name");
  while (!line.atEnd()) statement.values.push_back(value(line));
}

void put(LineReader& line, Statement& statement) {
  freeCall(line, statement);
  if (statement.values.empty()) throw LineError(u"the value is missing");
}

void registerExchange(LineReader& line, Statement& statement) {
  statement.name = line.word(u"the exchange's name");
  statement.number = line.atEnd() ? 1 : line.number(u"the ID", INT16_MIN, INT16_MAX);
}

void createSchedule(LineReader& line, Statement& statement) {
  statement.number = line.number(u"the key", lowest, highest);
  statement.second = line.atEnd() ? 0 : line.number(u"the action", INT16_MIN, INT16_MAX);
}

void run(LineReader& line, Statement& statement) {
  statement.name = line.word(u"the key");
}

void background(LineReader& line, Statement& statement) {
  statement.number = line.number(u"the picture set", INT16_MIN, INT16_MAX);
}

// "EndProcess \"7\" 0 within 60000": the notification as the trace writes it, then the time.
void awaited(LineReader& line, Statement& statement) {
  statement.name = line.word(u"the notification's name");
  const std::u16string_view plain = text::startsWith(statement.name, u"oPBX.")
                                        ? std::u16string_view(statement.name).substr(5)
                                        : std::u16string_view(statement.name);
  if (!Host::knowsMember(plain)) throw LineError(u"\"" + statement.name + u"\" is no notification");
  statement.text = statement.name;
  statement.milliseconds = usualWait;
  while (!line.atEnd()) {
    const bool quoted = line.atQuote();
    const std::u16string word = line.word(u"");
    if (!quoted && word == u"within") {
      statement.milliseconds = line.remaining() == u"forever" ? forever : milliseconds(line);
      if (statement.milliseconds == forever) line.rest();
      return;
    }
    statement.text += u" " + (quoted ? written(automation::Value(word)) : word);
  }
}

void sleep(LineReader& line, Statement& statement) {
  statement.milliseconds = milliseconds(line);
}

void setting(LineReader& line, Statement& statement) {
  const std::u16string what = line.word(u"what is set");
  if (what == u"sysinfo") {
    statement.verb = Verb::systemInfo;
    statement.number = line.number(u"the system information", lowest, highest);
  } else if (what == u"version") {
    statement.verb = Verb::version;
    statement.text = line.rest();
  } else if (what == u"data") {
    statement.verb = Verb::data;
    statement.name = line.word(u"the key");
    statement.text = line.rest();
  } else {
    throw LineError(u"\"" + what + u"\" can't be set; sysinfo, version and data can");
  }
}

void memberOnly(LineReader& line, Statement& statement) {
  statement.name = member(line);
}

void raised(LineReader& line, Statement& statement) {
  statement.number = static_cast<std::int32_t>(0x800A01BD);  // object doesn't support this action
  if (!line.atEnd()) statement.number = lines::errorCode(line.word(u""), u"the error's number");
  statement.text = line.rest();
}

void raise(LineReader& line, Statement& statement) {
  statement.name = member(line);
  raised(line, statement);
}

// "next MEMBER", "next MEMBER answer VALUE", "next MEMBER nothing", "next MEMBER raise [NUMBER [TEXT]]".
void next(LineReader& line, Statement& statement) {
  statement.name = member(line);
  if (line.atEnd()) return;
  const std::u16string word = line.word(u"");
  if (word == u"answer") {
    statement.answer = value(line);
  } else if (word == u"nothing") {
    statement.answer = automation::Value(automation::ObjectRef{});
  } else if (word == u"raise") {
    raised(line, statement);
    statement.answer = automation::AutomationError(statement.number, statement.text, u"devhost");
  } else {
    throw LineError(u"behind the member stands nothing, or answer VALUE, nothing or raise");
  }
}

void slow(LineReader& line, Statement& statement) {
  statement.name = member(line);
  statement.milliseconds = milliseconds(line);
}

void die(LineReader& line, Statement& statement) {
  if (line.atEnd()) return;
  statement.verb = Verb::dieOn;
  statement.name = member(line);
}

std::u16string givenWord(LineReader& line) {
  std::u16string name = line.word(u"the word");
  if (name.find_first_of(u"\\/:*?\"<>|") != std::u16string::npos)
    throw LineError(u"a word can't hold \\ / : * ? \" < > or |");
  return name;
}

// "give WORD" at once, "give WORD on MEMBER [TEXT]" at each call of it whose first argument begins so.
void give(LineReader& line, Statement& statement) {
  statement.word = givenWord(line);
  if (line.atEnd()) return;
  if (line.word(u"") != u"on") throw LineError(u"behind the word stands nothing, or on MEMBER");
  statement.verb = Verb::giveOn;
  statement.name = member(line);
  statement.text = line.rest();
}

void hold(LineReader& line, Statement& statement) {
  statement.name = member(line);
  if (line.word(u"until") != u"until") throw LineError(u"behind the member stands until WORD");
  statement.word = givenWord(line);
  statement.text = line.rest();
}

void when(LineReader& line, Statement& statement) {
  statement.word = givenWord(line);
}

void note(LineReader& line, Statement& statement) {
  statement.text = line.rest();
}

void repeat(LineReader& line, Statement& statement) {
  statement.number = line.number(u"the number of rounds", 1, 10000000);
}

struct Word {
  std::u16string_view word;
  Verb verb;
  void (*read)(LineReader&, Statement&);
};

constexpr Word words[] = {
    {u"pbx", Verb::pbx, pbx},
    {u"create", Verb::create, create},
    {u"use", Verb::use, label},
    {u"release", Verb::release, optionalLabel},
    {u"call", Verb::call, freeCall},
    {u"get", Verb::get, freeCall},
    {u"put", Verb::put, put},
    {u"register", Verb::registerExchange, registerExchange},
    {u"show", Verb::show, none},
    {u"hide", Verb::hide, none},
    {u"visible", Verb::visible, none},
    {u"create-schedule", Verb::createSchedule, createSchedule},
    {u"run", Verb::run, run},
    {u"cancel", Verb::cancel, none},
    {u"background", Verb::background, background},
    {u"wait", Verb::wait, awaited},
    {u"never", Verb::never, awaited},
    {u"when", Verb::when, when},
    {u"sleep", Verb::sleep, sleep},
    {u"set", Verb::data, setting},
    {u"omit", Verb::omit, memberOnly},
    {u"raise", Verb::raise, raise},
    {u"next", Verb::next, next},
    {u"slow", Verb::slow, slow},
    {u"restore", Verb::restore, memberOnly},
    {u"die", Verb::die, die},
    {u"give", Verb::give, give},
    {u"hold", Verb::hold, hold},
    {u"note", Verb::note, note},
    {u"quiet", Verb::quiet, none},
    {u"loud", Verb::loud, none},
    {u"repeat", Verb::repeat, repeat},
};

class Parser {
 public:
  ParsedScript parse(std::string_view utf8) {
    for (const lines::Line& line : lines::linesOf(utf8)) {
      try {
        read(line);
      } catch (const LineError& failure) {
        problems_.push_back({line.number, failure.text()});
      }
    }
    for (; open_.size() > 1; close())
      problems_.push_back({open_.back().line, u"the line \"end\" of this repetition is missing"});
    return {std::move(open_.front().block), std::move(problems_)};
  }

 private:
  void read(const lines::Line& line) {
    if (line.text.find(u'\uFFFD') != std::u16string::npos) throw LineError(u"the line is not UTF-8");
    LineReader reader(line.text);
    Statement statement;
    statement.line = line.number;
    std::u16string word = reader.word(u"a word");
    if (word == u"try") {
      statement.tolerated = true;
      word = reader.word(u"what is tried");
    }
    statement.words = reader.atEnd() ? word : word + u" " + reader.remaining();
    if (word == u"end") return endOfRepetition(reader);
    for (const Word& known : words) {
      if (known.word != word) continue;
      statement.verb = known.verb;
      keep(statement, known, reader);
      return;
    }
    throw LineError(u"\"" + word + u"\" is no word of a script");
  }

  void keep(Statement& statement, const Word& known, LineReader& reader) {
    if (statement.verb == Verb::repeat)
      open_.push_back(statement);  // its end belongs to it, even if it is wrong
    Statement& target = statement.verb == Verb::repeat ? open_.back() : statement;
    known.read(reader, target);
    reader.expectEnd();
    if (statement.verb != Verb::repeat) open_.back().block.push_back(std::move(statement));
  }

  void endOfRepetition(const LineReader& reader) {
    reader.expectEnd();
    if (open_.size() == 1) throw LineError(u"there is no repetition to end");
    close();
  }

  void close() {
    Statement repetition = std::move(open_.back());
    open_.pop_back();
    open_.back().block.push_back(std::move(repetition));
  }

  std::vector<Statement> open_{1};  // the whole script, then the repetitions that are open
  std::vector<lines::Problem> problems_;
};

}  // namespace

ParsedScript parseScript(std::string_view utf8) {
  return Parser().parse(utf8);
}

}  // namespace vordane::devhost
