#include "probe.h"

#include <windows.h>

#include <utility>

#include "platform/windows/com/apartment.h"

namespace vordane::test {

using automation::Argument;
using automation::Value;

namespace {

std::u16string textOf(const Argument& argument) {
  return automation::isMissing(argument.value) ? u"(left out)" : automation::toText(argument.value);
}

Value element(std::vector<std::u16string>& items, bool put, std::span<Argument> arguments) {
  const auto index = static_cast<std::size_t>(std::get<std::int16_t>(arguments[0].value));
  if (index >= items.size()) return put ? Value{} : Value{std::u16string{}};
  if (!put) return items[index];
  items[index] = std::get<std::u16string>(arguments[1].value);
  return {};
}

template <class Field>
Value field(Field& value, bool put, std::span<Argument> arguments) {
  if (!put) return value;
  value = std::get<Field>(arguments[0].value);
  return {};
}

// The call that the process makes by itself, from its message loop.
struct LaterCall {
  automation::ObjectRef host;
  std::u16string member;
} later;

void CALLBACK callLater(HWND, UINT, UINT_PTR timer, DWORD) {
  KillTimer(nullptr, timer);
  const LaterCall now = std::exchange(later, {});
  try {
    automation::call(*now.host, now.member);
  } catch (const automation::AutomationError&) {
  }
}

}  // namespace

Value Bag::invokeMember(std::size_t member, automation::CallKind kind, std::span<Argument> arguments) {
  if (member == 0) return static_cast<std::int16_t>(items.size());
  if (member == 1) return element(items, automation::isPut(kind), arguments);
  if (member == 3) return static_cast<std::int32_t>(GetCurrentProcessId());
  items.push_back(std::get<std::u16string>(arguments[0].value));
  return {};
}

Value Probe::invokeMember(std::size_t member, automation::CallKind kind, std::span<Argument> arguments) {
  const auto which = static_cast<ProbeMember>(member);
  return which <= ProbeMember::fixed ? property(which, automation::isPut(kind), arguments)
                                     : method(which, arguments);
}

Value Probe::property(ProbeMember member, bool put, std::span<Argument> arguments) {
  switch (member) {
    case ProbeMember::processId:
      return static_cast<std::int32_t>(GetCurrentProcessId());
    case ProbeMember::flag:
      return field(flag_, put, arguments);
    case ProbeMember::text:
      return field(text, put, arguments);
    case ProbeMember::number:
      return field(number_, put, arguments);
    case ProbeMember::octet:
      return field(octet_, put, arguments);
    case ProbeMember::item:
      return element(items_, put, arguments);
    default:
      return std::u16string(u"fixed");
  }
}

Value Probe::method(ProbeMember member, std::span<Argument> arguments) {
  switch (member) {
    case ProbeMember::add:
      return std::get<std::int16_t>(arguments[0].value) + std::get<std::int32_t>(arguments[1].value);
    case ProbeMember::join:
      return textOf(arguments[0]) + u"|" + textOf(arguments[1]) + u"|" + textOf(arguments[2]);
    case ProbeMember::echo:
      return arguments[0].value;
    case ProbeMember::isSame:
      return automation::toObject(arguments[0].value).get() == this;
    case ProbeMember::makeBag:
      return automation::ObjectRef(std::make_shared<Bag>());
    case ProbeMember::setHost:
    case ProbeMember::hold:
      host = automation::toObject(arguments[0].value);
      return {};
    case ProbeMember::callHost:
      return automation::call(*host, automation::toText(arguments[0].value),
                              {automation::byVal(arguments[1].value)});
    case ProbeMember::callHostReference: {
      Argument passed{arguments[1].value, true};
      automation::call(*host, automation::toText(arguments[0].value), std::span(&passed, 1));
      return automation::toText(passed.value);
    }
    case ProbeMember::getHost:
      return automation::get(*host, automation::toText(arguments[0].value));
    case ProbeMember::raise:
      throw automation::AutomationError(std::get<std::int32_t>(arguments[0].value),
                                        automation::toText(arguments[1].value));
    case ProbeMember::pause:
      com::serveMessagesUntil([] { return false; }, std::get<std::int32_t>(arguments[0].value));
      return {};
    case ProbeMember::letGo:
      host = nullptr;
      return {};
    case ProbeMember::watch:
      host = automation::toObject(arguments[0].value);
      process_->watchHost(*this, host);
      return {};
    case ProbeMember::callHostLater:
      later = {host, automation::toText(arguments[0].value)};
      SetTimer(nullptr, 0, 20, callLater);
      return {};
    default:
      return {};
  }
}

}  // namespace vordane::test
