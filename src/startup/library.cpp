#include "startup/library.h"

#include "pbx/cListRequest.h"
#include "pbx/cSLVRequest.h"

namespace vordane::startup {
namespace {

using automation::Member;
using automation::MemberKind;
using automation::Parameter;
using automation::Type;

constexpr Parameter registerPbx[] = {{u"PBX", Type::text}, {u"Parent", Type::object}, {u"ID", Type::integer}};
constexpr Parameter createSchedule[] = {{u"Key", Type::longInteger}, {u"RAction", Type::integer}};
constexpr Parameter runSchedule[] = {{u"Key", Type::text}};
constexpr Parameter setBackGround[] = {{u"Index", Type::integer}};

constexpr Member members[] = {
    {u"RegisterPBX", 1, MemberKind::method, Type::boolean, registerPbx},
    {u"Visible", 2, MemberKind::readWrite, Type::boolean},
    {u"CreateSchedule", 3, MemberKind::method, Type::boolean, createSchedule},
    {u"RunSchedule", 4, MemberKind::method, Type::integer, runSchedule},
    {u"CancelSchedule", 5, MemberKind::method, Type::integer},
    {u"SetBackGround", 6, MemberKind::method, Type::none, setBackGround},
};
static_assert(automation::numbersDiffer(members));
}  // namespace

const automation::ClassTable& layerTable() {
  static constexpr automation::ClassTable table{u"cOLELayer",
                                                u"Vordane10013.cOLELayer",
                                                u"Drives the fault display.",
                                                "{A075C3FD-C044-4FB3-B4E3-5596C07EB160}",
                                                "{62CC4A41-F04A-4820-9505-1C5DD1FA82AA}",
                                                members};
  return table;
}

const automation::LibraryTable& libraryTable() {
  static const automation::ClassTable* const classes[] = {&layerTable(), &cListRequest::classTable(),
                                                          &cSLVRequest::classTable()};
  static const automation::LibraryTable library{u"Vordane10013", u"Displays and Manages PBX Fault Lists.",
                                                "{3CF3E9A4-E2A4-4AE1-8329-337153D4646E}", "1.0", classes};
  return library;
}

}  // namespace vordane::startup
