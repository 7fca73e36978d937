#include "platform/idl.h"

#include <gtest/gtest.h>

namespace vordane::automation {
namespace {

constexpr Parameter index[] = {{u"Index", Type::integer}};
constexpr Parameter add[] = {{u"CMD", Type::text},
                             {u"FD", Type::text, true},
                             {u"SD", Type::text, true, true},
                             {u"Host", Type::object}};
constexpr Member members[] = {
    {u"Mode", 1, MemberKind::readWrite, Type::integer},
    {u"Count", 2, MemberKind::readOnly, Type::longInteger},
    {u"Secret", 3, MemberKind::writeOnly, Type::byte},
    {u"Item", 4, MemberKind::readWrite, Type::text, index},
    {u"Add", 5, MemberKind::method, Type::boolean, add},
};
constexpr ClassTable table{u"cThing",
                           u"Lib.cThing",
                           u"A thing.",
                           "{11111111-0000-0000-0000-000000000001}",
                           "{22222222-0000-0000-0000-000000000002}",
                           members};
const ClassTable* const classes[] = {&table};

TEST(IdlText, SaysWhatTheTableSays) {
  const LibraryTable library{u"Lib", u"All things.", "{33333333-0000-0000-0000-000000000003}", "1.0",
                             classes};
  EXPECT_EQ(idlText(library), R"(import "oaidl.idl";

[uuid(33333333-0000-0000-0000-000000000003), version(1.0), helpstring("All things.")]
library Lib
{
  importlib("stdole2.tlb");

  [uuid(22222222-0000-0000-0000-000000000002), helpstring("A thing.")]
  dispinterface _cThing
  {
    properties:
    methods:
      [id(1), propget] short Mode();
      [id(1), propput] void Mode([in] short Value);
      [id(2), propget] long Count();
      [id(3), propput] void Secret([in] unsigned char Value);
      [id(4), propget] BSTR Item([in] short Index);
      [id(4), propput] void Item([in] short Index, [in] BSTR Value);
      [id(5)] VARIANT_BOOL Add([in] BSTR CMD, [in, optional, defaultvalue("")] BSTR FD, [in, optional] VARIANT SD, [in] IDispatch* Host);
  };

  [uuid(11111111-0000-0000-0000-000000000001), helpstring("A thing.")]
  coclass cThing
  {
    [default] dispinterface _cThing;
  };
};
)");
}

}  // namespace
}  // namespace vordane::automation
