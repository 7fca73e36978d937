// Late-bound automation: values, objects and calls by member name, as hosts, the exchange server and
// this program exchange them. Portable; the Windows folder maps it to and from IDispatch. Everything here
// belongs to the one user-interface thread.
#pragma once

#include <cstdint>
#include <exception>
#include <initializer_list>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace vordane::automation {

class Object;
// Shared ownership across the process boundary: the last reference lets the object go.
using ObjectRef = std::shared_ptr<Object>;

struct Empty {
  bool operator==(const Empty&) const = default;
};
struct Null {
  bool operator==(const Null&) const = default;
};
// An optional argument that the caller left out.
struct Missing {
  bool operator==(const Missing&) const = default;
};
// A moment: days since 1899-12-30, local time. Its text is "YYYY-MM-DD HH:MM:SS".
struct Date {
  double days = 0;
  bool operator==(const Date&) const = default;
};

// Integer is 16-bit, Long is 32-bit; a null ObjectRef is "nothing".
using Value = std::variant<Empty, Null, Missing, bool, std::uint8_t, std::int16_t, std::int32_t, float,
                           double, std::u16string, ObjectRef, Date>;

// A value passed to a call. By-reference arguments hold the callee's last assignment after the call.
struct Argument {
  Value value;
  bool byReference = false;
};
inline Argument byRef(Value value) {
  return {std::move(value), true};
}
inline Argument byVal(Value value) {
  return {std::move(value), false};
}

// How a member is called; a reader may come as get, method or both.
enum class CallKind : unsigned {
  method = 1,
  get = 2,
  methodOrGet = 3,
  put = 4,
  putRef = 8,
  putOrPutRef = 12
};
inline bool isPut(CallKind kind) {
  return (static_cast<unsigned>(kind) & 12U) != 0;
}

// The standard automation errors this system raises or meets (HRESULT values).
namespace error {
inline constexpr std::int32_t unknownName = static_cast<std::int32_t>(0x80020006);
inline constexpr std::int32_t memberNotFound = static_cast<std::int32_t>(0x80020003);
inline constexpr std::int32_t typeMismatch = static_cast<std::int32_t>(0x80020005);
inline constexpr std::int32_t overflow = static_cast<std::int32_t>(0x8002000A);
inline constexpr std::int32_t badParameterCount = static_cast<std::int32_t>(0x8002000E);
inline constexpr std::int32_t parameterNotOptional = static_cast<std::int32_t>(0x8002000F);
inline constexpr std::int32_t exception = static_cast<std::int32_t>(0x80020009);
// Run-time errors travel as 0x800A0000 + their number.
inline constexpr std::int32_t runTime(int number) {
  return static_cast<std::int32_t>(0x800A0000U + static_cast<unsigned>(number));
}
inline constexpr int overflowNumber = 6;
}  // namespace error

// A failed automation call, on either side of the process boundary.
class AutomationError : public std::exception {
 public:
  explicit AutomationError(std::int32_t code, std::u16string description = {}, std::u16string source = {},
                           int argument = -1);
  const char* what() const noexcept override { return what_.c_str(); }
  std::int32_t code() const { return code_; }
  const std::u16string& description() const { return description_; }
  const std::u16string& source() const { return source_; }
  // Position (from 0) of the argument that did not fit, -1 when none is to blame.
  int argument() const { return argument_; }

 private:
  std::int32_t code_;
  std::u16string description_;
  std::u16string source_;
  int argument_;
  std::string what_;
};

// Anything that can be called by member name.
class Object {
 public:
  Object() = default;
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;
  virtual ~Object() = default;

  // Performs the call. For a put the new value is the last argument, behind any index. Throws
  // AutomationError. `arguments` is written back for by-reference ones.
  virtual Value invoke(std::u16string_view member, CallKind kind, std::span<Argument> arguments) = 0;

  // Whether a caller that asks for the name's number gets one. An object that can't tell says yes, and the
  // call itself then fails with unknownName.
  virtual bool hasMember(std::u16string_view) const { return true; }
};

// Calls in the caller's own words.
Value call(Object& object, std::u16string_view member, std::span<Argument> arguments);
Value call(Object& object, std::u16string_view member, std::initializer_list<Argument> arguments = {});
Value get(Object& object, std::u16string_view member, std::initializer_list<Argument> arguments = {});
void put(Object& object, std::u16string_view member, Value value);

// Conversions by the rules of late-bound calls: numbers round half to even, numeric texts are numbers,
// True is -1, Empty is "" or 0. They throw AutomationError (typeMismatch, overflow); Null never converts.
std::u16string toText(const Value& value);
std::int16_t toInteger(const Value& value);
std::int32_t toLong(const Value& value);
std::uint8_t toByte(const Value& value);
double toDouble(const Value& value);
bool toBoolean(const Value& value);
ObjectRef toObject(const Value& value);

inline bool isNull(const Value& value) {
  return std::holds_alternative<Null>(value);
}
inline bool isEmpty(const Value& value) {
  return std::holds_alternative<Empty>(value);
}
inline bool isMissing(const Value& value) {
  return std::holds_alternative<Missing>(value);
}

}  // namespace vordane::automation
