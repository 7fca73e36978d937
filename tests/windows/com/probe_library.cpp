#include "probe_library.h"

namespace vordane::test {
namespace {

using automation::Member;
using automation::MemberKind;
using automation::Parameter;
using automation::Type;

constexpr Parameter index[] = {{u"Index", Type::integer}};
constexpr Parameter numbers[] = {{u"A", Type::integer}, {u"B", Type::longInteger}};
constexpr Parameter texts[] = {
    {u"First", Type::text}, {u"Second", Type::text, true}, {u"Third", Type::text, true, true}};
constexpr Parameter anything[] = {{u"Value", Type::variant}};
constexpr Parameter object[] = {{u"Object", Type::object}};
constexpr Parameter name[] = {{u"Name", Type::text}};
constexpr Parameter nameAndText[] = {{u"Name", Type::text}, {u"Text", Type::text}};
constexpr Parameter code[] = {{u"Code", Type::longInteger}, {u"Text", Type::text}};
constexpr Parameter milliseconds[] = {{u"Milliseconds", Type::longInteger}};

constexpr Member probeMembers[] = {
    {u"ProcessId", 1, MemberKind::readOnly, Type::longInteger},
    {u"Flag", 2, MemberKind::readWrite, Type::boolean},
    {u"Text", 3, MemberKind::readWrite, Type::text},
    {u"Number", 4, MemberKind::readWrite, Type::integer},
    {u"Octet", 5, MemberKind::readWrite, Type::byte},
    {u"Item", 6, MemberKind::readWrite, Type::text, index},
    {u"Fixed", 7, MemberKind::readOnly, Type::text},
    {u"Add", 8, MemberKind::method, Type::longInteger, numbers},
    {u"Join", 9, MemberKind::method, Type::text, texts},
    {u"Echo", 10, MemberKind::method, Type::variant, anything},
    {u"IsSame", 11, MemberKind::method, Type::boolean, object},
    {u"MakeBag", 12, MemberKind::method, Type::object},
    {u"SetHost", 13, MemberKind::method, Type::none, object},
    {u"CallHost", 14, MemberKind::method, Type::variant, nameAndText},
    {u"CallHostReference", 15, MemberKind::method, Type::text, nameAndText},
    {u"GetHost", 16, MemberKind::method, Type::variant, name},
    {u"Raise", 17, MemberKind::method, Type::none, code},
    {u"Pause", 18, MemberKind::method, Type::none, milliseconds},
    {u"LetGo", 19, MemberKind::method, Type::none},
    {u"Hold", 20, MemberKind::method, Type::none, object},
    {u"Watch", 21, MemberKind::method, Type::none, object},
    {u"CallHostLater", 22, MemberKind::method, Type::none, name},
};

constexpr Member bagMembers[] = {
    {u"Count", 1, MemberKind::readOnly, Type::integer},
    {u"Item", 2, MemberKind::readWrite, Type::text, index},
    {u"Put", 3, MemberKind::method, Type::none, name},
    {u"ProcessId", 4, MemberKind::readOnly, Type::longInteger},
};

}  // namespace

const automation::ClassTable& probeTable() {
  static constexpr automation::ClassTable table{u"cProbe",
                                                u"VordaneProbe.cProbe",
                                                u"Does what a test asks.",
                                                "{0D27247A-1D54-41F0-8C3E-3582AD75C16C}",
                                                "{A9C3D948-BED4-4725-BB1C-B3B3521EC5B2}",
                                                probeMembers};
  return table;
}

const automation::ClassTable& bagTable() {
  static constexpr automation::ClassTable table{u"cBag",
                                                u"VordaneProbe.cBag",
                                                u"Holds texts.",
                                                "{3BB4DC1D-10A5-4162-8F31-E5FBE14D3FE3}",
                                                "{DA0FB8E4-D018-4C98-BD9F-5CEF5132B1B5}",
                                                bagMembers};
  return table;
}

const automation::LibraryTable& probeLibrary() {
  static const automation::ClassTable* const classes[] = {&probeTable(), &bagTable()};
  static const automation::LibraryTable library{u"VordaneProbe", u"What the tests call.",
                                                "{35CA383C-1DDB-4BA5-9502-5DA532EB05BE}", "1.0", classes};
  return library;
}

}  // namespace vordane::test
