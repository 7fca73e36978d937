// What other programs see of our objects.
#include <gtest/gtest.h>

#include <ocidl.h>
#include "platform/windows/com/objects.h"
#include "probe.h"
#include "raw_call.h"

namespace vordane::test {
namespace {

using automation::ObjectRef;

class ExportedProbe : public testing::Test {
 protected:
  std::shared_ptr<Probe> probe = std::make_shared<Probe>();
  com::ComPtr<IDispatch> face = com::exportObject(probe);

  DISPID id(const wchar_t* name) { return idOf(face.get(), name); }
  Answer call(const wchar_t* name, WORD flags, std::vector<VARIANT> arguments = {},
              std::vector<DISPID> named = {}) {
    return rawInvoke(face.get(), id(name), flags, std::move(arguments), std::move(named));
  }
};

TEST_F(ExportedProbe, NamesIgnoreCaseAndHaveTheTablesNumbers) {
  EXPECT_EQ(id(L"Join"), 9);
  EXPECT_EQ(id(L"jOIN"), 9);
  EXPECT_EQ(id(L"Nothing"), DISPID_UNKNOWN);
}

TEST_F(ExportedProbe, ParameterNamesAnswerWithTheirPositions) {
  LPOLESTR names[] = {const_cast<LPOLESTR>(L"Join"), const_cast<LPOLESTR>(L"third"),
                      const_cast<LPOLESTR>(L"First"), const_cast<LPOLESTR>(L"Fourth")};
  DISPID ids[4] = {};
  EXPECT_EQ(face->GetIDsOfNames(IID_NULL, names, 3, 0, ids), S_OK);
  EXPECT_EQ(ids[0], 9);
  EXPECT_EQ(ids[1], 2);
  EXPECT_EQ(ids[2], 0);
  EXPECT_EQ(face->GetIDsOfNames(IID_NULL, names, 4, 0, ids), DISP_E_UNKNOWNNAME);
  EXPECT_EQ(ids[3], DISPID_UNKNOWN);
}

TEST_F(ExportedProbe, AReaderComesAsGetMethodOrBoth) {
  for (const WORD flags : {get, method, static_cast<WORD>(get | method)})
    EXPECT_EQ(text(call(L"Fixed", flags)), u"fixed");
}

TEST_F(ExportedProbe, APutComesAsPutPutRefOrBothWithOrWithoutItsName) {
  for (const WORD flags : {put, putRef, static_cast<WORD>(put | putRef)}) {
    EXPECT_EQ(call(L"Text", flags, {raw(std::u16string(u"named"))}, {DISPID_PROPERTYPUT}).result, S_OK);
    EXPECT_EQ(probe->text, u"named");
    EXPECT_EQ(call(L"Text", flags, {raw(std::u16string(u"plain"))}).result, S_OK);
    EXPECT_EQ(probe->text, u"plain");
  }
}

TEST_F(ExportedProbe, AnIndexFollowsThePutValue) {
  EXPECT_EQ(
      call(L"Item", put, {raw(std::u16string(u"new")), raw(std::int16_t{1})}, {DISPID_PROPERTYPUT}).result,
      S_OK);
  EXPECT_EQ(text(call(L"Item", get, {raw(std::int16_t{1})})), u"new");
  EXPECT_EQ(text(call(L"Item", get, {raw(std::int16_t{0})})), u"zero");
  EXPECT_EQ(text(call(L"Item", get, {raw(std::int16_t{-1})})), u"");
}

TEST_F(ExportedProbe, ReferencesAreFollowedEvenInPuts) {
  VARIANT value = raw(std::u16string(u"behind"));
  VARIANT index = raw(std::u16string(u"2"));
  EXPECT_EQ(call(L"Item", put, {reference(value), reference(index)}, {DISPID_PROPERTYPUT}).result, S_OK);
  EXPECT_EQ(text(call(L"Item", get, {raw(2.0)})), u"behind");
}

TEST_F(ExportedProbe, NumbersConvertHalfToEvenAndTextsAreNumbers) {
  EXPECT_EQ(number(call(L"Add", method, {raw(std::u16string(u" 40 ")), raw(2.5)})), 42);
  EXPECT_EQ(number(call(L"Add", method, {raw(0.5), raw(3.5)})), 4);
  EXPECT_EQ(number(call(L"Add", method, {raw(automation::Empty{}), raw(true)})), -1);
}

TEST_F(ExportedProbe, WhatDoesNotFitNamesItsArgument) {
  const Answer tooBig = call(L"Add", method, {raw(1), raw(40000)});
  EXPECT_EQ(tooBig.result, DISP_E_OVERFLOW);
  EXPECT_EQ(tooBig.argument, 1u);
  const Answer noNumber = call(L"Add", method, {raw(std::u16string(u"two")), raw(std::int16_t{1})});
  EXPECT_EQ(noNumber.result, DISP_E_TYPEMISMATCH);
  EXPECT_EQ(noNumber.argument, 0u);
  EXPECT_EQ(call(L"Text", put, {null()}, {DISPID_PROPERTYPUT}).result, DISP_E_TYPEMISMATCH);
}

TEST_F(ExportedProbe, BooleansAndNumbersBecomeTexts) {
  EXPECT_EQ(text(call(L"Join", method, {raw(true)})), u"True|(left out)|(left out)");
  EXPECT_EQ(text(call(L"Join", method, {raw(std::int32_t{7})})), u"7|(left out)|(left out)");
}

TEST_F(ExportedProbe, OptionalArgumentsAreLeftOutOmittedOrNull) {
  EXPECT_EQ(text(call(L"Join", method, {null(), omitted(), raw(std::u16string(u"a"))})), u"a|(left out)|");
  EXPECT_EQ(call(L"Join", method, {null(), null(), raw(std::u16string(u"a"))}).result, DISP_E_TYPEMISMATCH);
  EXPECT_EQ(call(L"Join", method).result, DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(call(L"Join", method, {omitted()}).result, DISP_E_PARAMNOTOPTIONAL);
  EXPECT_EQ(call(L"Add", method, {raw(1), raw(2), raw(3)}).result, DISP_E_BADPARAMCOUNT);
}

TEST_F(ExportedProbe, ArgumentsMayBeNamed) {
  EXPECT_EQ(
      text(call(L"Join", method,
                {raw(std::u16string(u"c")), raw(std::u16string(u"b")), raw(std::u16string(u"a"))}, {2, 1})),
      u"a|b|c");
  EXPECT_EQ(text(call(L"Join", method, {raw(std::u16string(u"c")), raw(std::u16string(u"a"))}, {2, 0})),
            u"a|(left out)|c");
  EXPECT_EQ(call(L"Join", method, {raw(1), raw(2)}, {0}).result, DISP_E_BADPARAMCOUNT);  // named and in place
  EXPECT_EQ(call(L"Join", method, {raw(1)}, {9}).result, DISP_E_PARAMNOTFOUND);
}

TEST_F(ExportedProbe, WhatAMemberCantDoIsNoMember) {
  EXPECT_EQ(call(L"Fixed", put, {raw(std::u16string(u"x"))}, {DISPID_PROPERTYPUT}).result,
            DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(call(L"Join", put, {raw(std::u16string(u"x"))}, {DISPID_PROPERTYPUT}).result,
            DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(rawInvoke(face.get(), 4711, get).result, DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(rawInvoke(face.get(), DISPID_VALUE, get).result, DISP_E_MEMBERNOTFOUND);
}

TEST_F(ExportedProbe, RunTimeErrorsTravelWithNumberTextAndSource) {
  const Answer answer =
      call(L"Raise", method, {raw(std::u16string(u"too many")), raw(automation::error::runTime(6))});
  EXPECT_EQ(answer.result, DISP_E_EXCEPTION);
  EXPECT_EQ(answer.code, static_cast<HRESULT>(0x800A0006));
  EXPECT_EQ(answer.description, u"too many");
  EXPECT_EQ(answer.source, u"VordaneProbe");
}

// An unknown member of the host is no unknown member of ours.
TEST_F(ExportedProbe, InnerCallsFailuresAreRunTimeErrors) {
  const Answer unknown = call(L"Raise", method, {raw(std::u16string()), raw(automation::error::unknownName)});
  EXPECT_EQ(unknown.result, DISP_E_EXCEPTION);
  EXPECT_EQ(unknown.code, static_cast<HRESULT>(0x800A01B6));
  const Answer gone =
      call(L"Raise", method, {raw(std::u16string()), raw(static_cast<std::int32_t>(0x800706BA))});
  EXPECT_EQ(gone.code, static_cast<HRESULT>(0x800706BA));
}

TEST_F(ExportedProbe, BytesTakeTheirRange) {
  EXPECT_EQ(call(L"Octet", put, {raw(std::int32_t{255})}, {DISPID_PROPERTYPUT}).result, S_OK);
  EXPECT_EQ(number(call(L"Octet", get)), 255);
  EXPECT_EQ(call(L"Octet", put, {raw(std::int32_t{256})}, {DISPID_PROPERTYPUT}).result, DISP_E_OVERFLOW);
}

TEST_F(ExportedProbe, IdentityHoldsOutAndBack) {
  EXPECT_EQ(com::exportObject(probe).get(), face.get());
  EXPECT_EQ(com::importObject(face.get()), probe);
  const Answer same = call(L"IsSame", method, {raw(ObjectRef(probe))});
  EXPECT_EQ(number(same), -1);
}

TEST_F(ExportedProbe, TheLastHoldLetsTheObjectGo) {
  bool gone = false;
  auto object = std::make_shared<Probe>(nullptr, [&] { gone = true; });
  com::ComPtr<IDispatch> held = com::exportObject(object);
  object = nullptr;
  EXPECT_FALSE(gone);
  held = nullptr;
  EXPECT_TRUE(gone);
}

TEST_F(ExportedProbe, ItsOwnInterfaceIsItsDispatch) {
  com::ComPtr<IDispatch> typed = face.as<IDispatch>(com::toGuid(probeTable().iid));
  EXPECT_EQ(typed.get(), face.get());
  EXPECT_FALSE(face.as<IDispatch>(com::toGuid(bagTable().iid)));
  EXPECT_TRUE(face.as<IProvideClassInfo>(IID_IProvideClassInfo));
  const auto support = face.as<ISupportErrorInfo>(IID_ISupportErrorInfo);
  ASSERT_TRUE(support);
  EXPECT_EQ(support->InterfaceSupportsErrorInfo(com::toGuid(probeTable().iid)), S_OK);
}

TEST_F(ExportedProbe, OtherInterfaceNamesAreTurnedDown) {
  DISPPARAMS none{};
  EXPECT_EQ(face->Invoke(1, IID_IUnknown, 0, get, &none, nullptr, nullptr, nullptr), DISP_E_UNKNOWNINTERFACE);
  EXPECT_EQ(face->Invoke(1, IID_NULL, 0, get, nullptr, nullptr, nullptr, nullptr), E_INVALIDARG);
  EXPECT_EQ(face->Invoke(1, IID_NULL, 0, get, &none, nullptr, nullptr, nullptr),
            S_OK);  // nobody wants the result
}

// ---- objects without a table: names as they come

class Pocket : public automation::Object {
 public:
  automation::Value content = std::u16string(u"empty");
  automation::Value invoke(std::u16string_view member, automation::CallKind kind,
                           std::span<automation::Argument> arguments) override {
    if (member == u"Swap") {
      std::swap(content, arguments[0].value);
      return {};
    }
    if (member != u"Content") throw automation::AutomationError(automation::error::unknownName);
    if (automation::isPut(kind)) content = arguments.back().value;
    return content;
  }
  bool hasMember(std::u16string_view name) const override {
    return name == u"Swap" || name == u"Content" || name == u"Ghost";
  }
};

TEST(ExportedNames, HaveNoTypeInformation) {
  const auto face = com::exportObject(std::make_shared<Pocket>());
  UINT count = 9;
  EXPECT_EQ(face->GetTypeInfoCount(&count), S_OK);
  EXPECT_EQ(count, 0u);
  EXPECT_FALSE(face.as<IProvideClassInfo>(IID_IProvideClassInfo));
}

TEST(ExportedNames, AnswerForTheNamesTheyHave) {
  const auto face = com::exportObject(std::make_shared<Pocket>());
  EXPECT_EQ(idOf(face.get(), L"content"), DISPID_UNKNOWN);  // this object is particular about case
  EXPECT_EQ(text(rawInvoke(face.get(), idOf(face.get(), L"Content"), get | method)), u"empty");
  EXPECT_EQ(rawInvoke(face.get(), idOf(face.get(), L"Ghost"), method).result, DISP_E_UNKNOWNNAME);
}

TEST(ExportedNames, WriteChangedReferencesBackInTheirType) {
  const auto face = com::exportObject(std::make_shared<Pocket>());
  com::Variant untyped = com::toVariant(std::u16string(u"mine"));
  EXPECT_EQ(rawInvoke(face.get(), idOf(face.get(), L"Swap"), method, {reference(untyped.get())}).result,
            S_OK);
  EXPECT_EQ(automation::toText(com::toValue(untyped.get())), u"empty");

  BSTR text = SysAllocString(L"4711");
  VARIANT typed;
  typed.vt = VT_BYREF | VT_BSTR;
  typed.pbstrVal = &text;
  EXPECT_EQ(rawInvoke(face.get(), idOf(face.get(), L"Swap"), method, {typed}).result, S_OK);
  EXPECT_EQ(com::toText(text), u"mine");
  SysFreeString(text);

  long small = 5;
  typed.vt = VT_BYREF | VT_I4;
  typed.plVal = &small;
  EXPECT_EQ(rawInvoke(face.get(), idOf(face.get(), L"Swap"), method, {typed}).result, S_OK);
  EXPECT_EQ(small, 4711);
}

}  // namespace
}  // namespace vordane::test
