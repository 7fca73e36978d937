#include "platform/automation.h"

#include <charconv>
#include <cmath>
#include <limits>

#include "platform/member_table.h"
#include "text/dates.h"
#include "text/numbers.h"
#include "text/text.h"
#include "text/utf8.h"

namespace vordane::automation {
namespace {

[[noreturn]] void mismatch() {
  throw AutomationError(error::typeMismatch);
}

// A numeric text as late-bound calls take it: decimal, "." as decimal sign, surrounding blanks.
double numberOf(std::u16string_view text) {
  const std::string narrow = text::toUtf8(text::trim(text));
  const char* begin = narrow.data() + (narrow.starts_with('+') ? 1 : 0);
  double value = 0;
  const auto [end, failure] = std::from_chars(begin, narrow.data() + narrow.size(), value);
  if (failure != std::errc{} || end != narrow.data() + narrow.size() || narrow.empty()) mismatch();
  return value;
}

template <class Integral>
Integral toIntegral(const Value& value) {
  // Half to even is the default rounding mode of nearbyint.
  const double rounded = std::nearbyint(toDouble(value));
  if (!(rounded >= std::numeric_limits<Integral>::min() && rounded <= std::numeric_limits<Integral>::max()))
    throw AutomationError(error::overflow);
  return static_cast<Integral>(rounded);
}

std::u16string textOf(double value) {
  char buffer[32];
  const auto [end, failure] = std::to_chars(buffer, buffer + sizeof buffer, value);
  return failure == std::errc{} ? text::fromUtf8({buffer, static_cast<std::size_t>(end - buffer)})
                                : std::u16string{};
}

std::u16string textOf(float value) {
  char buffer[32];
  const auto [end, failure] = std::to_chars(buffer, buffer + sizeof buffer, value);
  return failure == std::errc{} ? text::fromUtf8({buffer, static_cast<std::size_t>(end - buffer)})
                                : std::u16string{};
}

template <class... Cases>
struct Overloaded : Cases... {
  using Cases::operator()...;
};
template <class... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

std::string describe(std::int32_t code, const std::u16string& description) {
  char buffer[16];
  const auto end = std::to_chars(buffer, buffer + sizeof buffer, static_cast<std::uint32_t>(code), 16).ptr;
  return "automation error 0x" + std::string(buffer, end) + ": " + text::toUtf8(description);
}

}  // namespace

AutomationError::AutomationError(std::int32_t code, std::u16string description, std::u16string source,
                                 int argument)
    : code_(code),
      description_(std::move(description)),
      source_(std::move(source)),
      argument_(argument),
      what_(describe(code_, description_)) {}

Value call(Object& object, std::u16string_view member, std::span<Argument> arguments) {
  return object.invoke(member, CallKind::method, arguments);
}

Value call(Object& object, std::u16string_view member, std::initializer_list<Argument> arguments) {
  std::vector<Argument> copy(arguments);
  return object.invoke(member, CallKind::method, copy);
}

Value get(Object& object, std::u16string_view member, std::initializer_list<Argument> arguments) {
  std::vector<Argument> copy(arguments);
  return object.invoke(member, CallKind::methodOrGet, copy);
}

void put(Object& object, std::u16string_view member, Value value) {
  Argument argument{std::move(value)};
  object.invoke(member, CallKind::put, {&argument, 1});
}

double toDouble(const Value& value) {
  return std::visit(
      Overloaded{[](Empty) { return 0.0; }, [](Null) -> double { mismatch(); },
                 [](Missing) -> double { throw AutomationError(error::parameterNotOptional); },
                 [](bool flag) { return flag ? -1.0 : 0.0; },
                 [](const std::u16string& text) { return numberOf(text); },
                 [](const ObjectRef&) -> double { mismatch(); }, [](Date moment) { return moment.days; },
                 [](auto number) { return static_cast<double>(number); }},
      value);
}

std::int16_t toInteger(const Value& value) {
  return toIntegral<std::int16_t>(value);
}
std::int32_t toLong(const Value& value) {
  return toIntegral<std::int32_t>(value);
}
std::uint8_t toByte(const Value& value) {
  if (const bool* flag = std::get_if<bool>(&value)) return *flag ? 255 : 0;
  return toIntegral<std::uint8_t>(value);
}

bool toBoolean(const Value& value) {
  if (const auto* text = std::get_if<std::u16string>(&value)) {
    if (text::equalIgnoringCase(*text, u"True")) return true;
    if (text::equalIgnoringCase(*text, u"False")) return false;
  }
  return toDouble(value) != 0;
}

std::u16string toText(const Value& value) {
  return std::visit(
      Overloaded{[](Empty) { return std::u16string{}; }, [](Null) -> std::u16string { mismatch(); },
                 [](Missing) -> std::u16string { throw AutomationError(error::parameterNotOptional); },
                 [](bool flag) { return std::u16string(flag ? u"True" : u"False"); },
                 [](const std::u16string& text) { return text; },
                 [](const ObjectRef&) -> std::u16string { mismatch(); },
                 [](Date moment) { return text::isoMoment(moment.days); },
                 [](float number) { return textOf(number); }, [](double number) { return textOf(number); },
                 [](auto integer) { return text::decimal(integer); }},
      value);
}

ObjectRef toObject(const Value& value) {
  if (const auto* object = std::get_if<ObjectRef>(&value)) return *object;
  mismatch();
}

Value coerce(const Value& value, const Parameter& to, int position) {
  if (isMissing(value)) {
    if (to.optional) return value;
    throw AutomationError(error::parameterNotOptional, {}, {}, position);
  }
  if (to.nullIsEmpty && isNull(value)) return std::u16string{};
  try {
    switch (to.type) {
      case Type::boolean:
        return toBoolean(value);
      case Type::byte:
        return toByte(value);
      case Type::integer:
        return toInteger(value);
      case Type::longInteger:
        return toLong(value);
      case Type::text:
        return toText(value);
      case Type::object:
        return toObject(value);
      case Type::none:
      case Type::variant:
        break;
    }
    return value;
  } catch (const AutomationError& failure) {
    throw AutomationError(failure.code(), failure.description(), failure.source(), position);
  }
}

int findMember(const ClassTable& table, std::u16string_view name) {
  for (std::size_t i = 0; i < table.members.size(); ++i)
    if (text::equalIgnoringCase(table.members[i].name, name)) return static_cast<int>(i);
  return -1;
}

Value TableObject::invoke(std::u16string_view member, CallKind kind, std::span<Argument> arguments) {
  const int position = findMember(table(), member);
  if (position < 0) throw AutomationError(error::unknownName);
  return invoke(static_cast<std::size_t>(position), kind, arguments);
}

Value TableObject::invoke(std::size_t member, CallKind kind, std::span<Argument> arguments) {
  const Member& entry = table().members[member];
  const bool readable = entry.kind != MemberKind::writeOnly;
  const bool writable = entry.kind == MemberKind::readWrite || entry.kind == MemberKind::writeOnly;
  if (isPut(kind) ? !writable : !readable) throw AutomationError(error::memberNotFound);

  const std::size_t expected = entry.parameters.size() + (isPut(kind) ? 1 : 0);
  if (arguments.size() > expected || (isPut(kind) && arguments.size() != expected))
    throw AutomationError(error::badParameterCount);
  std::vector<Argument> converted(expected);
  for (std::size_t i = 0; i < expected; ++i) {
    const bool isNewValue = i == entry.parameters.size();
    const Parameter parameter = isNewValue ? Parameter{entry.name, entry.type} : entry.parameters[i];
    if (i >= arguments.size()) {
      if (!parameter.optional) throw AutomationError(error::badParameterCount);
      converted[i].value = Missing{};
      continue;
    }
    converted[i] = {coerce(arguments[i].value, parameter, static_cast<int>(i)), arguments[i].byReference};
  }
  return invokeMember(member, kind, converted);
}

}  // namespace vordane::automation
