// One table for each public class: it drives the in-process call, the COM dispatch and the type library.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "platform/automation.h"

namespace vordane::automation {

enum class Type : std::uint8_t { none, boolean, byte, integer, longInteger, text, object, variant };

struct Parameter {
  std::u16string_view name;
  Type type = Type::text;
  bool optional = false;
  // A Null is taken as the empty text; elsewhere it does not convert.
  bool nullIsEmpty = false;
};

enum class MemberKind : std::uint8_t { method, readOnly, writeOnly, readWrite };

struct Member {
  std::u16string_view name;
  std::int32_t dispid;
  MemberKind kind;
  Type type;                                   // the result, or the property's type
  std::span<const Parameter> parameters = {};  // a property's are its indexes
};

struct ClassTable {
  std::u16string_view name;         // "cListRequest"
  std::u16string_view progId;       // "Vordane10013.cListRequest"
  std::u16string_view description;  // the help text of the type library
  std::string_view clsid;           // "{...}", upper case
  std::string_view iid;             // empty: outside the type library, without type information
  std::span<const Member> members;  // in type-library order
};

// Position of a member that the class itself names, found while compiling: a wrong name does not compile.
consteval std::size_t positionOf(std::span<const Member> members, std::u16string_view name) {
  for (std::size_t i = 0; i < members.size(); ++i)
    if (members[i].name == name) return i;
  throw "no such member";
}

// Whether each member has a number of its own, for a static_assert beside its table.
consteval bool numbersDiffer(std::span<const Member> members) {
  for (std::size_t i = 0; i < members.size(); ++i)
    for (std::size_t k = 0; k < i; ++k)
      if (members[i].dispid == members[k].dispid) return false;
  return true;
}

// Position in the table, without regard to case; -1 for an unknown name.
int findMember(const ClassTable& table, std::u16string_view name);

// An object whose members are those of a table. Arguments reach `invokeMember` already converted to the
// declared types (an omitted optional one as Missing), in declaration order, a put's value last.
class TableObject : public Object {
 public:
  virtual const ClassTable& table() const = 0;
  Value invoke(std::u16string_view member, CallKind kind, std::span<Argument> arguments) override;
  bool hasMember(std::u16string_view member) const override { return findMember(table(), member) >= 0; }
  // The same for a member already looked up: what a name table in front of this object caches.
  Value invoke(std::size_t member, CallKind kind, std::span<Argument> arguments);

 protected:
  virtual Value invokeMember(std::size_t member, CallKind kind, std::span<Argument> arguments) = 0;
};

// Converts one value to a declared type; throws AutomationError.
Value coerce(const Value& value, const Parameter& to, int position);

}  // namespace vordane::automation
