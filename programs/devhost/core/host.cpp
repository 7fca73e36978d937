#include "devhost/core/host.h"

#include "text/text.h"

namespace vordane::devhost {
namespace {

using automation::Argument;
using automation::AutomationError;
using automation::CallKind;
using automation::Value;

using Arguments = std::span<Argument>;
using Handler = Value (*)(HostState&, Arguments);

Value nothing(HostState&, Arguments) {
  return automation::Empty{};
}

std::u16string textAt(Arguments arguments, std::size_t position) {
  return automation::toText(arguments[position].value);
}

Value printReport(HostState& state, Arguments arguments) {
  ReportRequest request{textAt(arguments, 0),
                        textAt(arguments, 1),
                        textAt(arguments, 2),
                        automation::toInteger(arguments[4].value),
                        {}};
  constexpr std::size_t sortArguments[] = {3, 5, 6, 7, 8, 9};
  for (std::size_t i = 0; i < 6; ++i) request.sort[i] = textAt(arguments, sortArguments[i]);
  std::u16string reason = state.report ? state.report(request) : u"This host prints no reports.";
  state.trace.line(u"PrintReport = " + written(reason));
  return reason;
}

Value keepCommonData(HostState& state, Arguments arguments) {
  state.commonData[{textAt(arguments, 0), textAt(arguments, 1)}] = textAt(arguments, 2);
  return automation::Empty{};
}

Value readCommonData(HostState& state, Arguments arguments) {
  const auto found = state.commonData.find({textAt(arguments, 0), textAt(arguments, 1)});
  arguments[2].value = found == state.commonData.end() ? std::u16string{} : found->second;
  return automation::Empty{};
}

Value systemInfo(HostState& state, Arguments) {
  // As wide as it has to be: hosts differ in what they hand out.
  const std::int32_t info = state.systemInfo;
  if (info >= INT16_MIN && info <= INT16_MAX) return static_cast<std::int16_t>(info);
  return info;
}

Value version(HostState& state, Arguments) {
  return state.version;
}

struct Member {
  std::u16string_view name;
  std::size_t arguments;
  Handler handler;
};

constexpr Member hostMembers[] = {
    {u"ShowMessage", 1, nothing}, {u"ShowCode", 1, nothing},          {u"TurnOnFlow", 0, nothing},
    {u"TurnOffFlow", 0, nothing}, {u"DisplayHelp", 1, nothing},       {u"PrintReport", 10, printReport},
    {u"UnloadChild", 1, nothing}, {u"UnloadChild2", 1, nothing},      {u"EndCreateSchedule", 1, nothing},
    {u"EndProcess", 2, nothing},  {u"REGComData", 3, keepCommonData}, {u"GetComData", 3, readCommonData},
};

constexpr Member accessMembers[] = {
    {u"getsysinfo", 1, systemInfo},
    {u"GetMPVersion", 1, version},
};

constexpr std::u16string_view lentObjects[] = {u"oPBX", u"oZUL"};
constexpr std::u16string_view serverMembers[] = {u"Login", u"SendRequest", u"LogOut", u"CancelRequest"};

const Member* find(std::span<const Member> members, std::u16string_view name) {
  for (const Member& member : members)
    if (text::equalIgnoringCase(member.name, name)) return &member;
  return nullptr;
}

bool contains(std::span<const std::u16string_view> names, std::u16string_view name) {
  for (const std::u16string_view known : names)
    if (text::equalIgnoringCase(known, name)) return true;
  return false;
}

constexpr int longestHold = 10 * 60 * 1000;

bool isMeant(const std::optional<Behaviour::Word>& word, Arguments arguments) {
  if (!word) return false;
  return word->text.empty() || (!arguments.empty() && text::startsWith(textAt(arguments, 0), word->text));
}

// What the script has laid down for this call of the member; nothing: its service.
std::optional<Value> laidDown(HostState& state, std::u16string_view member) {
  auto& next = state.behaviour(member).next;
  if (next.empty()) return std::nullopt;
  const std::optional<Answer> answer = std::move(next.front());
  next.pop_front();
  if (!answer) return std::nullopt;
  if (const auto* const failure = std::get_if<AutomationError>(&*answer)) throw AutomationError(*failure);
  return std::get<Value>(*answer);
}

// What the script wants of this member before, or in place of, its service.
void depart(HostState& state, std::u16string_view member, Arguments arguments) {
  const Behaviour behaviour = state.behaviour(member);
  if (behaviour.dies) state.environment.vanish();
  if (isMeant(behaviour.gives, arguments)) state.environment.give(behaviour.gives->name);
  if (isMeant(behaviour.holds, arguments))
    state.environment.waitUntil([&] { return state.environment.taken(behaviour.holds->name); }, longestHold);
  if (behaviour.pause > 0) state.environment.pause(behaviour.pause);
  if (behaviour.raises) throw AutomationError(*behaviour.raises);
}

constexpr auto disconnected = static_cast<std::int32_t>(0x80010108);

void ensureOpen(const HostState& state) {
  if (state.closed) throw AutomationError(disconnected);
}

// The state behind an object that others may hold for longer.
std::shared_ptr<HostState> open(const std::weak_ptr<HostState>& held) {
  std::shared_ptr<HostState> state = held.lock();
  if (!state) throw AutomationError(disconnected);
  ensureOpen(*state);
  return state;
}

Value serve(HostState& state, const Member& member, Arguments arguments) {
  ensureOpen(state);
  state.trace.notification(member.name, written(arguments));
  if (arguments.size() != member.arguments) throw AutomationError(automation::error::badParameterCount);
  depart(state, member.name, arguments);
  const std::optional<Value> answer = laidDown(state, member.name);
  if (!answer) return member.handler(state, arguments);
  if (member.handler != readCommonData) return *answer;
  arguments[2].value = *answer;
  return automation::Empty{};
}

// oZUL, the exchange access component.
class ExchangeAccess : public automation::Object {
 public:
  explicit ExchangeAccess(std::shared_ptr<HostState> state) : state_(std::move(state)) {}

  Value invoke(std::u16string_view name, CallKind, Arguments arguments) override {
    const Member* member = find(accessMembers, name);
    if (!member || state_->omitted(name)) throw AutomationError(automation::error::unknownName);
    return serve(*state_, *member, arguments);
  }
  bool hasMember(std::u16string_view name) const override {
    return find(accessMembers, name) && !state_->omitted(name);
  }

 private:
  std::shared_ptr<HostState> state_;
};

}  // namespace

Behaviour& HostState::behaviour(std::u16string_view member) {
  return behaviours[text::toLower(member)];
}

bool HostState::omitted(std::u16string_view member) const {
  const auto found = behaviours.find(text::toLower(member));
  return found != behaviours.end() && found->second.omitted;
}

Host::Host(std::shared_ptr<HostState> state)
    : state_(std::move(state)), access_(std::make_shared<ExchangeAccess>(state_)) {}

bool Host::knowsMember(std::u16string_view member) {
  return find(hostMembers, member) || find(accessMembers, member) || contains(lentObjects, member) ||
         contains(serverMembers, member);
}

bool Host::hasMember(std::u16string_view member) const {
  return (find(hostMembers, member) || contains(lentObjects, member)) && !state_->omitted(member);
}

Value Host::invoke(std::u16string_view name, CallKind kind, Arguments arguments) {
  if (!hasMember(name)) throw AutomationError(automation::error::unknownName);
  if (const Member* member = find(hostMembers, name)) return serve(*state_, *member, arguments);
  ensureOpen(*state_);
  if (automation::isPut(kind)) throw AutomationError(automation::error::memberNotFound);
  depart(*state_, name, arguments);  // reading an object is no notification
  if (const auto answer = laidDown(*state_, name)) return *answer;
  return text::equalIgnoringCase(name, u"oZUL") ? access_ : state_->exchangeServer;
}

bool TracedServer::hasMember(std::u16string_view member) const {
  const std::shared_ptr<HostState> state = state_.lock();
  return state && !state->omitted(member) && server_->hasMember(member);
}

Value TracedServer::invoke(std::u16string_view member, CallKind kind, Arguments arguments) {
  const std::shared_ptr<HostState> state = open(state_);
  if (state->omitted(member)) throw AutomationError(automation::error::unknownName);
  const std::u16string name = u"oPBX." + std::u16string(member);
  state->trace.notification(name, written(arguments));
  depart(*state, member, arguments);
  try {
    Value result = server_->invoke(member, kind, arguments);
    if (!automation::isEmpty(result)) state->trace.line(name + u" = " + written(result));
    return result;
  } catch (const AutomationError& failure) {
    state->trace.line(name + u" ! " + written(failure));
    throw;
  }
}

}  // namespace vordane::devhost
