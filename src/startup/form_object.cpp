#include "startup/form_object.h"

#include <string>

#include "startup/dlgFaultDisplay.h"

namespace vordane::startup {
namespace {

using automation::Argument;
using automation::Member;
using automation::MemberKind;
using automation::ObjectRef;
using automation::Parameter;
using automation::Type;
using automation::Value;

constexpr Parameter response[] = {{u"Response", Type::object}};
constexpr Parameter host[] = {{u"Host", Type::object}};
constexpr Parameter control[] = {{u"Control", Type::text}};
constexpr Parameter index[] = {{u"Index", Type::integer}};

struct FormMember {
  Member member;
  Value (*run)(dlgFaultDisplay& form, std::span<Argument> arguments, bool put);
};

std::u16string textOf(const Argument& argument) {
  return std::get<std::u16string>(argument.value);
}
std::int16_t integerOf(const Argument& argument) {
  return std::get<std::int16_t>(argument.value);
}
ObjectRef objectOf(const Argument& argument) {
  return std::get<ObjectRef>(argument.value);
}

constexpr FormMember formMembers[] = {
    {{u"CallBack", 1, MemberKind::method, Type::none, response},
     [](dlgFaultDisplay& form, std::span<Argument> arguments, bool) -> Value {
       form.CallBack(objectOf(arguments[0]));
       return {};
     }},
    {{u"PBXName", 2, MemberKind::writeOnly, Type::text},
     [](dlgFaultDisplay& form, std::span<Argument> arguments, bool) -> Value {
       form.setPBXName(textOf(arguments[0]));
       return {};
     }},
    {{u"Parent", 3, MemberKind::writeOnly, Type::object},
     [](dlgFaultDisplay& form, std::span<Argument> arguments, bool) -> Value {
       form.setParent(objectOf(arguments[0]));
       return {};
     }},
    {{u"ID", 4, MemberKind::writeOnly, Type::integer},
     [](dlgFaultDisplay& form, std::span<Argument> arguments, bool) -> Value {
       form.host().setID(integerOf(arguments[0]));
       return {};
     }},
    {{u"Key", 5, MemberKind::readWrite, Type::text},
     [](dlgFaultDisplay& form, std::span<Argument> arguments, bool put) -> Value {
       if (!put) return form.job().Key();
       form.job().setKey(textOf(arguments[0]));
       return {};
     }},
    {{u"CheckLoadError", 6, MemberKind::method, Type::boolean},
     [](dlgFaultDisplay& form, std::span<Argument>, bool) -> Value { return form.life().CheckLoadError(); }},
    {{u"FrmMove", 7, MemberKind::method, Type::none, host},
     [](dlgFaultDisplay& form, std::span<Argument> arguments, bool) -> Value {
       form.place().FrmMove(objectOf(arguments[0]));
       return {};
     }},
    {{u"FrmPositionSave", 8, MemberKind::method, Type::none},
     [](dlgFaultDisplay& form, std::span<Argument>, bool) -> Value {
       form.place().FrmPositionSave();
       return {};
     }},
    {{u"IncrementCount", 9, MemberKind::method, Type::none},
     [](dlgFaultDisplay& form, std::span<Argument>, bool) -> Value {
       form.life().IncrementCount();
       return {};
     }},
    {{u"DecrementCount", 10, MemberKind::method, Type::integer},
     [](dlgFaultDisplay& form, std::span<Argument>, bool) -> Value { return form.life().DecrementCount(); }},
    {{u"CreateSchedule", 11, MemberKind::method, Type::none},
     [](dlgFaultDisplay& form, std::span<Argument>, bool) -> Value {
       form.runs().CreateSchedule();
       return {};
     }},
    {{u"RunSchedule", 12, MemberKind::method, Type::integer},
     [](dlgFaultDisplay& form, std::span<Argument>, bool) -> Value { return form.runs().RunSchedule(); }},
    {{u"CancelSchedule", 13, MemberKind::method, Type::integer},
     [](dlgFaultDisplay& form, std::span<Argument>, bool) -> Value { return form.runs().CancelSchedule(); }},
    {{u"BackGround", 14, MemberKind::method, Type::none, index},
     [](dlgFaultDisplay& form, std::span<Argument> arguments, bool) -> Value {
       form.BackGround(integerOf(arguments[0]));
       return {};
     }},
    {{u"ShowWhatsThis", 15, MemberKind::method, Type::none, control},
     [](dlgFaultDisplay& form, std::span<Argument> arguments, bool) -> Value {
       if (window::Control* found = form.form().find(textOf(arguments[0]))) form.help().ShowWhatsThis(*found);
       return {};
     }},
};
constexpr std::size_t callBack = 0;

constexpr auto members = [] {
  std::array<Member, std::size(formMembers)> table{};
  for (std::size_t i = 0; i < table.size(); ++i) table[i] = formMembers[i].member;
  return table;
}();
static_assert(automation::numbersDiffer(members));

}  // namespace

const automation::ClassTable& FormObject::table() const {
  static constexpr automation::ClassTable form{u"dlgFaultDisplay", {}, {}, {}, {}, members};
  return form;
}

Value FormObject::invokeMember(std::size_t member, automation::CallKind kind, std::span<Argument> arguments) {
  if (form_ == nullptr || (!form_->alive() && member != callBack)) return {};
  const auto entry = form_->enter();
  return formMembers[member].run(*form_, arguments, automation::isPut(kind));
}

}  // namespace vordane::startup
