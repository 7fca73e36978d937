#include "platform/idl.h"

#include <array>
#include <string>

#include "text/utf8.h"

namespace vordane::automation {
namespace {

struct TypeName {
  Type type;
  std::string_view name;
};
constexpr std::array typeNames{
    TypeName{Type::none, "void"},          TypeName{Type::boolean, "VARIANT_BOOL"},
    TypeName{Type::byte, "unsigned char"}, TypeName{Type::integer, "short"},
    TypeName{Type::longInteger, "long"},   TypeName{Type::text, "BSTR"},
    TypeName{Type::object, "IDispatch*"},  TypeName{Type::variant, "VARIANT"},
};

std::string_view nameOf(Type type) {
  for (const TypeName& entry : typeNames)
    if (entry.type == type) return entry.name;
  return "void";
}

std::string quoted(std::u16string_view text) {
  return '"' + text::toUtf8(text) + '"';
}

std::string uuid(std::string_view braced) {
  return "uuid(" + std::string(braced.substr(1, braced.size() - 2)) + ')';
}

// A parameter that takes Null must be a VARIANT: no other type can carry one. The other optional ones keep
// their type, with the value that stands for leaving them out.
std::string parameterText(const Parameter& parameter) {
  std::string out = "[in";
  if (parameter.optional) out += ", optional";
  if (parameter.optional && !parameter.nullIsEmpty && parameter.type == Type::text)
    out += ", defaultvalue(\"\")";
  out += "] ";
  out += nameOf(parameter.nullIsEmpty ? Type::variant : parameter.type);
  return out + ' ' + text::toUtf8(parameter.name);
}

std::string parameterList(const Member& member, bool put) {
  std::string out;
  for (const Parameter& parameter : member.parameters)
    out += (out.empty() ? "" : ", ") + parameterText(parameter);
  if (put) out += (out.empty() ? "" : ", ") + parameterText({.name = u"Value", .type = member.type});
  return out;
}

std::string memberLine(const Member& member, std::string_view attribute, Type result, bool put) {
  return "      [id(" + std::to_string(member.dispid) + ')' + std::string(attribute) + "] " +
         std::string(nameOf(result)) + ' ' + text::toUtf8(member.name) + '(' + parameterList(member, put) +
         ");\n";
}

std::string memberText(const Member& member) {
  if (member.kind == MemberKind::method) return memberLine(member, "", member.type, false);
  std::string out;
  if (member.kind != MemberKind::writeOnly) out += memberLine(member, ", propget", member.type, false);
  if (member.kind != MemberKind::readOnly) out += memberLine(member, ", propput", Type::none, true);
  return out;
}

std::string classText(const ClassTable& table) {
  const std::string name = text::toUtf8(table.name);
  const std::string help = "helpstring(" + quoted(table.description) + ')';
  std::string out = "\n  [" + uuid(table.iid) + ", " + help + "]\n  dispinterface _" + name +
                    "\n  {\n    properties:\n    methods:\n";
  for (const Member& member : table.members) out += memberText(member);
  out += "  };\n\n  [" + uuid(table.clsid) + ", " + help + "]\n  coclass " + name +
         "\n  {\n    [default] dispinterface _" + name + ";\n  };\n";
  return out;
}

}  // namespace

std::string idlText(const LibraryTable& library) {
  std::string out = "import \"oaidl.idl\";\n\n[" + uuid(library.libid) + ", version(" +
                    std::string(library.version) + "), helpstring(" + quoted(library.description) +
                    ")]\nlibrary " + text::toUtf8(library.name) + "\n{\n  importlib(\"stdole2.tlb\");\n";
  for (const ClassTable* table : library.classes) out += classText(*table);
  return out + "};\n";
}

}  // namespace vordane::automation
