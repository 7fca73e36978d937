#include "platform/cpp_header.h"

#include <array>
#include <vector>

#include "text/utf8.h"

namespace vordane::automation {
namespace {

struct TypeNames {
  Type type;
  std::string_view result;
  std::string_view argument;
  std::string_view code;  // what the type library calls it
};
constexpr std::array typeNames{
    TypeNames{Type::none, "void", "", "VT_VOID"},
    TypeNames{Type::boolean, "bool", "bool ", "VT_BOOL"},
    TypeNames{Type::byte, "unsigned char", "unsigned char ", "VT_UI1"},
    TypeNames{Type::integer, "short", "short ", "VT_I2"},
    TypeNames{Type::longInteger, "long", "long ", "VT_I4"},
    TypeNames{Type::text, "std::wstring", "const std::wstring& ", "VT_BSTR"},
    TypeNames{Type::object, "dispatch::Object", "IDispatch* ", "VT_DISPATCH"},
    TypeNames{Type::variant, "dispatch::Value", "const dispatch::Value& ", "VT_VARIANT"},
};

const TypeNames& namesOf(Type type) {
  for (const TypeNames& names : typeNames)
    if (names.type == type) return names;
  return typeNames.front();
}

// "{3CF3E9A4-E2A4-4AE1-8329-337153D4646E}" as the parts of a GUID.
std::string guid(std::string_view braced) {
  const auto part = [&](std::size_t at, std::size_t length) {
    return "0x" + std::string(braced.substr(at, length));
  };
  std::string out = '{' + part(1, 8) + ", " + part(10, 4) + ", " + part(15, 4) + ", {";
  for (const std::size_t at : {20U, 22U, 25U, 27U, 29U, 31U, 33U, 35U})
    out += (at == 20 ? "" : ", ") + part(at, 2);
  return out + "}}";
}

// What takes Null is a VARIANT in the library.
Type libraryType(const Parameter& parameter) {
  return parameter.nullIsEmpty ? Type::variant : parameter.type;
}

std::string argumentText(const Parameter& parameter) {
  const Type type = libraryType(parameter);
  std::string out = std::string(namesOf(type).argument) + text::toUtf8(parameter.name);
  if (parameter.optional) out += type == Type::variant ? " = dispatch::Value::missing()" : " = {}";
  return out;
}

// One way to call a member: a property has up to two.
struct Way {
  std::string_view prefix;  // of the function's name
  std::string_view call;
  std::string_view kind;
  Type result;
  bool put;
};

std::vector<Parameter> parametersOf(const Member& member, const Way& way) {
  std::vector<Parameter> all(member.parameters.begin(), member.parameters.end());
  if (way.put) all.push_back({.name = u"Value", .type = member.type});
  return all;
}

std::vector<Way> waysOf(const Member& member) {
  if (member.kind == MemberKind::method) return {{"", "method", "DISPATCH_METHOD", member.type, false}};
  std::vector<Way> ways;
  if (member.kind != MemberKind::writeOnly)
    ways.push_back({"Get", "get", "DISPATCH_PROPERTYGET", member.type, false});
  if (member.kind != MemberKind::readOnly)
    ways.push_back({"Put", "put", "DISPATCH_PROPERTYPUT", Type::none, true});
  return ways;
}

std::string rowText(const Member& member, const Way& way) {
  std::string types;
  for (const Parameter& parameter : parametersOf(member, way))
    types += (types.empty() ? "" : ", ") + std::string(namesOf(libraryType(parameter)).code);
  return "      {" + std::to_string(member.dispid) + ", " + std::string(way.kind) + ", " +
         std::string(namesOf(way.result).code) + ", L\"" + text::toUtf8(member.name) + "\", {" + types +
         "}},\n";
}

std::string functionText(const Member& member, const Way& way) {
  std::string arguments;
  std::string passed = std::to_string(member.dispid);
  for (const Parameter& parameter : parametersOf(member, way)) {
    arguments += (arguments.empty() ? "" : ", ") + argumentText(parameter);
    passed += ", " + text::toUtf8(parameter.name);
  }
  const std::string result(namesOf(way.result).result);
  const std::string typed = way.put ? "" : '<' + result + '>';
  const std::string name = std::string(way.prefix) + text::toUtf8(member.name);
  return "  " + result + ' ' + name + '(' + arguments + ") const { " +
         (way.result == Type::none ? "" : "return ") + std::string(way.call) + typed + '(' + passed +
         "); }\n";
}

std::string classText(const ClassTable& table) {
  std::string rows;
  std::string functions;
  for (const Member& member : table.members)
    for (const Way& way : waysOf(member)) {
      rows += rowText(member, way);
      functions += functionText(member, way);
    }
  return "\n// " + text::toUtf8(table.description) + "\nclass " + text::toUtf8(table.name) +
         " : public dispatch::Object {\n public:\n  static constexpr GUID clsid" + guid(table.clsid) +
         ";\n  static constexpr GUID iid" + guid(table.iid) +
         ";\n  static constexpr dispatch::Member members[] = {\n" + rows +
         "  };\n\n  using Object::Object;\n" + functions + "};\n";
}

}  // namespace

std::string cppHeaderText(const LibraryTable& library) {
  const std::string name = text::toUtf8(library.name);
  std::string out =
      "// The library " + name + ' ' + std::string(library.version) + ", \"" +
      text::toUtf8(library.description) +
      "\", for hosts in C++:\n// its classes, their identifiers, and each member by its number. Written from "
      "the "
      "tables that the library is made of.\n#pragma once\n\n#include \"early_bound.h\"\n\nnamespace " +
      name + " {\n\ninline constexpr GUID libid" + guid(library.libid) + ";\n";
  for (const ClassTable* table : library.classes) out += classText(*table);
  return out + "\n}  // namespace " + name + "\n";
}

}  // namespace vordane::automation
