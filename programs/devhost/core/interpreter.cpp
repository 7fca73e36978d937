#include "devhost/core/interpreter.h"

#include "devhost/core/report.h"
#include "text/numbers.h"
#include "text/text.h"
#include "zulsim/core/files.h"
#include "zulsim/core/scenario_parser.h"

namespace vordane::devhost {
namespace {

using automation::AutomationError;
using automation::byVal;
using automation::ObjectRef;
using automation::Value;

constexpr std::u16string_view application = u"VORDANE";

std::vector<automation::Argument> argumentsOf(const std::vector<Value>& values) {
  std::vector<automation::Argument> arguments;
  for (const Value& value : values) arguments.push_back(byVal(value));
  return arguments;
}

}  // namespace

const Interpreter::Action Interpreter::actions[] = {
    {Verb::pbx, &Interpreter::usePbx},
    {Verb::pbxInProcess, &Interpreter::simulatePbx},
    {Verb::noPbx, &Interpreter::dropPbx},
    {Verb::create, &Interpreter::create},
    {Verb::use, &Interpreter::use},
    {Verb::release, &Interpreter::release},
    {Verb::call, &Interpreter::call},
    {Verb::get, &Interpreter::get},
    {Verb::put, &Interpreter::put},
    {Verb::registerExchange, &Interpreter::registerExchange},
    {Verb::show, &Interpreter::show},
    {Verb::hide, &Interpreter::hide},
    {Verb::visible, &Interpreter::visible},
    {Verb::createSchedule, &Interpreter::createSchedule},
    {Verb::run, &Interpreter::runSchedule},
    {Verb::cancel, &Interpreter::cancel},
    {Verb::background, &Interpreter::background},
    {Verb::wait, &Interpreter::wait},
    {Verb::never, &Interpreter::never},
    {Verb::when, &Interpreter::when},
    {Verb::sleep, &Interpreter::sleep},
    {Verb::systemInfo, &Interpreter::set},
    {Verb::version, &Interpreter::set},
    {Verb::data, &Interpreter::set},
    {Verb::omit, &Interpreter::depart},
    {Verb::raise, &Interpreter::depart},
    {Verb::slow, &Interpreter::depart},
    {Verb::next, &Interpreter::depart},
    {Verb::dieOn, &Interpreter::depart},
    {Verb::giveOn, &Interpreter::depart},
    {Verb::hold, &Interpreter::depart},
    {Verb::restore, &Interpreter::depart},
    {Verb::give, &Interpreter::give},
    {Verb::die, &Interpreter::die},
    {Verb::note, &Interpreter::note},
    {Verb::quiet, &Interpreter::loudness},
    {Verb::loud, &Interpreter::loudness},
    {Verb::repeat, &Interpreter::repeat},
};

Interpreter::Interpreter(Environment& environment, Settings settings)
    : environment_(environment),
      settings_(std::move(settings)),
      trace_([this](std::string_view line) { environment_.print(line); }),
      state_(std::make_shared<HostState>(HostState{environment_, trace_})),
      host_(std::make_shared<Host>(state_)) {
  state_->report = [this](const ReportRequest& request) { return print(request); };
}

// The add-in's objects go before the host that they know, and the exchange server, which may hold the
// add-in's window, before the host is closed to it.
Interpreter::~Interpreter() {
  objects_.clear();
  automation::ObjectRef server = std::move(state_->exchangeServer);
  server.reset();
  state_->closed = true;
}

Outcome Interpreter::run(const std::vector<Statement>& statements) {
  for (const Statement& statement : statements)
    if (const Outcome outcome = runOne(statement); outcome != Outcome::done) return outcome;
  return Outcome::done;
}

Outcome Interpreter::runOne(const Statement& statement) {
  if (statement.verb != Verb::note && statement.verb != Verb::repeat) trace_.line(u"> " + statement.words);
  for (const Action& action : actions)
    if (action.verb == statement.verb) return (this->*action.run)(statement);
  return Outcome::scriptWrong;
}

// A call on another object: its result in the trace, or the error it raised.
template <class Call>
Outcome Interpreter::attempt(const Statement& statement, const Call& call) {
  try {
    const Value result = call();
    if (!automation::isEmpty(result)) trace_.line(u"= " + written(result));
    return Outcome::done;
  } catch (const AutomationError& failure) {
    trace_.line(u"! " + written(failure));
    return statement.tolerated ? Outcome::done : Outcome::callFailed;
  }
}

automation::Object& Interpreter::labelled(const std::u16string& label) {
  const auto found = objects_.find(label);
  if (found == objects_.end() || !found->second)
    throw AutomationError(automation::error::runTime(91), u"there is no object \"" + label + u"\"");
  return *found->second;
}

automation::Object& Interpreter::current() {
  return labelled(label_);
}

std::u16string Interpreter::print(const ReportRequest& request) {
  if (!settings_.engine) return u"This host prints no reports.";
  const PrintedReport report =
      printReport(*settings_.engine, request, {settings_.reportDirectory, environment_.now()});
  if (!report.file.empty())
    trace_.line(u"report " + written(Value(report.file)) + u" " +
                text::decimal(static_cast<std::int64_t>(report.faults)));
  return report.reason;
}

Outcome Interpreter::usePbx(const Statement& statement) {
  return attempt(statement, [&]() -> Value {
    state_->exchangeServer = std::make_shared<TracedServer>(state_, environment_.create(statement.text));
    return automation::Empty{};
  });
}

Outcome Interpreter::simulatePbx(const Statement& statement) {
  const std::u16string file = settings_.scenarioDirectory.empty()
                                  ? statement.name
                                  : files::besideFile({}, settings_.scenarioDirectory, statement.name);
  const auto bytes = files::readFile(file);
  if (!bytes) {
    trace_.line(u"! " + file + u" can't be read");
    return Outcome::scriptWrong;
  }
  zulsim::ParsedScenario parsed = zulsim::parseScenario(*bytes);
  if (!parsed.problems.empty()) {
    trace_.line(lines::listing(file, parsed.problems));
    return Outcome::scriptWrong;
  }
  scenarios_.push_back(std::make_unique<zulsim::Scenario>(std::move(parsed.scenario)));
  const auto simulation = std::make_shared<zulsim::Simulation>(*scenarios_.back(), environment_);
  state_->exchangeServer =
      std::make_shared<TracedServer>(state_, std::make_shared<zulsim::ExchangeServer>(simulation));
  return Outcome::done;
}

Outcome Interpreter::dropPbx(const Statement&) {
  state_->exchangeServer = nullptr;
  return Outcome::done;
}

Outcome Interpreter::create(const Statement& statement) {
  return attempt(statement, [&]() -> Value {
    objects_[statement.name] = environment_.create(statement.text);
    label_ = statement.name;
    return automation::Empty{};
  });
}

Outcome Interpreter::use(const Statement& statement) {
  return attempt(statement, [&]() -> Value {
    labelled(statement.name);
    label_ = statement.name;
    return automation::Empty{};
  });
}

Outcome Interpreter::release(const Statement& statement) {
  const std::u16string label = statement.name.empty() ? label_ : statement.name;
  return attempt(statement, [&]() -> Value {
    labelled(label);
    objects_.erase(label);
    return automation::Empty{};
  });
}

Outcome Interpreter::call(const Statement& statement) {
  return attempt(statement, [&] {
    auto arguments = argumentsOf(statement.values);
    return automation::call(labelled(statement.name), statement.text, arguments);
  });
}

Outcome Interpreter::get(const Statement& statement) {
  return attempt(statement, [&] {
    auto arguments = argumentsOf(statement.values);
    return labelled(statement.name).invoke(statement.text, automation::CallKind::methodOrGet, arguments);
  });
}

Outcome Interpreter::put(const Statement& statement) {
  return attempt(statement, [&]() -> Value {
    auto arguments = argumentsOf(statement.values);
    labelled(statement.name).invoke(statement.text, automation::CallKind::put, arguments);
    return automation::Empty{};
  });
}

Outcome Interpreter::registerExchange(const Statement& statement) {
  return attempt(statement, [&] {
    return automation::call(
        current(), u"RegisterPBX",
        {byVal(statement.name), byVal(ObjectRef(host_)), byVal(static_cast<std::int16_t>(statement.number))});
  });
}

Outcome Interpreter::show(const Statement& statement) {
  return attempt(statement, [&]() -> Value {
    automation::put(current(), u"Visible", true);
    return automation::Empty{};
  });
}

Outcome Interpreter::hide(const Statement& statement) {
  return attempt(statement, [&]() -> Value {
    automation::put(current(), u"Visible", false);
    return automation::Empty{};
  });
}

Outcome Interpreter::visible(const Statement& statement) {
  return attempt(statement, [&] { return automation::get(current(), u"Visible"); });
}

Outcome Interpreter::createSchedule(const Statement& statement) {
  return attempt(statement, [&] {
    return automation::call(current(), u"CreateSchedule",
                            {byVal(statement.number), byVal(static_cast<std::int16_t>(statement.second))});
  });
}

Outcome Interpreter::runSchedule(const Statement& statement) {
  return attempt(statement,
                 [&] { return automation::call(current(), u"RunSchedule", {byVal(statement.name)}); });
}

Outcome Interpreter::cancel(const Statement& statement) {
  return attempt(statement, [&] { return automation::call(current(), u"CancelSchedule"); });
}

Outcome Interpreter::background(const Statement& statement) {
  return attempt(statement, [&] {
    return automation::call(current(), u"SetBackGround",
                            {byVal(static_cast<std::int16_t>(statement.number))});
  });
}

Outcome Interpreter::wait(const Statement& statement) {
  const bool came = environment_.waitUntil([&] { return trace_.find(statement.text, heard_) != 0; },
                                           statement.milliseconds);
  if (!came) {
    trace_.line(u"! " + statement.text + u" did not come");
    return Outcome::waitFailed;
  }
  heard_ = trace_.find(statement.text, heard_);
  return Outcome::done;
}

Outcome Interpreter::never(const Statement& statement) {
  const bool came = environment_.waitUntil([&] { return trace_.find(statement.text, heard_) != 0; },
                                           statement.milliseconds);
  if (!came) return Outcome::done;
  trace_.line(u"! " + statement.text + u" came");
  return Outcome::waitFailed;
}

Outcome Interpreter::when(const Statement& statement) {
  environment_.waitUntil([&] { return environment_.taken(statement.word); }, forever);
  return Outcome::done;
}

Outcome Interpreter::sleep(const Statement& statement) {
  environment_.waitUntil([] { return false; }, statement.milliseconds);
  return Outcome::done;
}

Outcome Interpreter::set(const Statement& statement) {
  if (statement.verb == Verb::systemInfo) state_->systemInfo = statement.number;
  if (statement.verb == Verb::version) state_->version = statement.text;
  if (statement.verb == Verb::data)
    state_->commonData[{std::u16string(application), statement.name}] = statement.text;
  return Outcome::done;
}

Outcome Interpreter::depart(const Statement& statement) {
  Behaviour& behaviour = state_->behaviour(statement.name);
  switch (statement.verb) {
    case Verb::omit:
      behaviour.omitted = true;
      break;
    case Verb::raise:
      behaviour.raises.emplace(statement.number, statement.text, u"devhost");
      break;
    case Verb::slow:
      behaviour.pause = statement.milliseconds;
      break;
    case Verb::giveOn:
      behaviour.gives = Behaviour::Word{statement.word, statement.text};
      break;
    case Verb::hold:
      behaviour.holds = Behaviour::Word{statement.word, statement.text};
      break;
    case Verb::next:
      behaviour.next.push_back(statement.answer);
      break;
    case Verb::dieOn:
      behaviour.dies = true;
      break;
    default:
      behaviour = {};
      break;
  }
  return Outcome::done;
}

Outcome Interpreter::give(const Statement& statement) {
  environment_.give(statement.word);
  return Outcome::done;
}

Outcome Interpreter::die(const Statement&) {
  environment_.vanish();
  return Outcome::done;
}

Outcome Interpreter::note(const Statement& statement) {
  trace_.line(u"# " + statement.text);
  return Outcome::done;
}

Outcome Interpreter::loudness(const Statement& statement) {
  trace_.setQuiet(statement.verb == Verb::quiet);
  return Outcome::done;
}

Outcome Interpreter::repeat(const Statement& statement) {
  for (std::int32_t round = 0; round < statement.number; ++round)
    if (const Outcome outcome = run(statement.block); outcome != Outcome::done) return outcome;
  return Outcome::done;
}

}  // namespace vordane::devhost
