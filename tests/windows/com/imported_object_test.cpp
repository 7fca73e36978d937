// How we call other programs' objects, whatever run-time system they come from.
#include <gtest/gtest.h>

#include <functional>
#include <map>

#include "platform/windows/com/objects.h"
#include "raw_call.h"

namespace vordane::test {
namespace {

using automation::Argument;
using automation::AutomationError;
using automation::CallKind;

constexpr HRESULT functionExpected = static_cast<HRESULT>(0x800A138A);

// Another program's object with the manners that a test gives it.
class Foreign : public IDispatch {
 public:
  struct Call {
    DISPID id;
    WORD flags;
    std::vector<VARTYPE> types;  // in the order of the declaration
    std::vector<DISPID> named;
  };
  std::map<std::wstring, DISPID> names{{L"oPBX", 1}, {L"Login", 2}, {L"Key", 3}};
  std::function<void()> whenAsked;  // for a name
  std::function<HRESULT(DISPPARAMS&, WORD, VARIANT*, EXCEPINFO*)> manners;
  std::vector<Call> calls;
  int questions = 0;
  ULONG references = 0;

  virtual ~Foreign() = default;
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
    const bool known = iid == IID_IUnknown || iid == IID_IDispatch;
    *out = known ? this : nullptr;
    if (known) AddRef();
    return known ? S_OK : E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
  ULONG STDMETHODCALLTYPE Release() override { return --references; }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* asked, UINT, LCID, DISPID* ids) override {
    ++questions;
    if (whenAsked) whenAsked();
    const auto found = names.find(asked[0]);  // particular about case, as scripts are
    *ids = found == names.end() ? DISPID_UNKNOWN : found->second;
    return found == names.end() ? DISP_E_UNKNOWNNAME : S_OK;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* parameters,
                                   VARIANT* result, EXCEPINFO* exception, UINT*) override {
    Call call{id, flags, {}, {}};
    for (UINT i = parameters->cArgs; i > 0; --i) call.types.push_back(parameters->rgvarg[i - 1].vt);
    call.named.assign(parameters->rgdispidNamedArgs, parameters->rgdispidNamedArgs + parameters->cNamedArgs);
    calls.push_back(call);
    return manners ? manners(*parameters, flags, result, exception) : S_OK;
  }
};

bool hasTypedReference(const DISPPARAMS& parameters) {
  for (UINT i = 0; i < parameters.cArgs; ++i)
    if ((parameters.rgvarg[i].vt & VT_BYREF) != 0) return true;
  return false;
}

class Imported : public testing::Test {
 protected:
  Foreign foreign;
  automation::ObjectRef object = com::importObject(&foreign);
};

TEST_F(Imported, NumbersOfNamesAreAskedForOnce) {
  for (int i = 0; i < 3; ++i) automation::call(*object, u"Login");
  EXPECT_EQ(foreign.questions, 1);
  automation::call(*object, u"oPBX");
  EXPECT_EQ(foreign.questions, 2);
}

TEST_F(Imported, TheSameObjectIsTheSameAgain) {
  EXPECT_EQ(com::importObject(&foreign), object);
  EXPECT_EQ(com::exportObject(object).get(), &foreign);
}

TEST_F(Imported, EveryReferenceIsGivenBack) {
  EXPECT_GT(foreign.references, 0u);
  object = nullptr;
  EXPECT_EQ(foreign.references, 0u);
}

TEST_F(Imported, ReferencesGoOutTypedFirst) {
  foreign.manners = [](DISPPARAMS& parameters, WORD, VARIANT*, EXCEPINFO*) {
    SysReAllocString(parameters.rgvarg[0].pbstrVal, L"changed");
    return S_OK;
  };
  Argument text = automation::byRef(std::u16string(u"PBX-1"));
  automation::call(*object, u"Login", std::span(&text, 1));
  ASSERT_EQ(foreign.calls.size(), 1u);
  EXPECT_EQ(foreign.calls[0].types, (std::vector<VARTYPE>{VT_BYREF | VT_BSTR}));
  EXPECT_EQ(std::get<std::u16string>(text.value), u"changed");
}

class RefusedReference : public Imported, public testing::WithParamInterface<HRESULT> {};

TEST_P(RefusedReference, GoesByValueThenAndFromThenOn) {
  foreign.manners = [](DISPPARAMS& parameters, WORD, VARIANT*, EXCEPINFO*) {
    return hasTypedReference(parameters) ? GetParam() : S_OK;
  };
  const auto login = [&] {
    automation::call(*object, u"Login",
                     {automation::byRef(std::u16string(u"PBX-1")), automation::byRef(std::int16_t{7})});
  };
  login();
  ASSERT_EQ(foreign.calls.size(), 2u);
  EXPECT_EQ(foreign.calls[1].types, (std::vector<VARTYPE>{VT_BSTR, VT_I2}));
  login();
  ASSERT_EQ(foreign.calls.size(), 3u);
  EXPECT_EQ(foreign.calls[2].types, (std::vector<VARTYPE>{VT_BSTR, VT_I2}));
}
INSTANTIATE_TEST_SUITE_P(Answers, RefusedReference,
                         testing::Values(E_NOTIMPL, DISP_E_TYPEMISMATCH, DISP_E_BADVARTYPE));

TEST_F(Imported, AMismatchWithoutReferencesIsFinal) {
  foreign.manners = [](DISPPARAMS&, WORD, VARIANT*, EXCEPINFO*) { return DISP_E_TYPEMISMATCH; };
  EXPECT_THROW(automation::call(*object, u"Login", {automation::byVal(std::u16string(u"x"))}),
               AutomationError);
  EXPECT_EQ(foreign.calls.size(), 1u);
}

class NotAMethod : public Imported, public testing::WithParamInterface<HRESULT> {};

TEST_P(NotAMethod, IsReadAsPropertyAlone) {
  foreign.manners = [](DISPPARAMS&, WORD flags, VARIANT* result, EXCEPINFO* exception) {
    if (flags == (method | get)) {
      if (GetParam() != functionExpected) return GetParam();
      exception->scode = functionExpected;
      return DISP_E_EXCEPTION;
    }
    *result = raw(std::u16string(u"the server"));
    return S_OK;
  };
  EXPECT_EQ(automation::toText(automation::get(*object, u"oPBX")), u"the server");
  ASSERT_EQ(foreign.calls.size(), 2u);
  EXPECT_EQ(foreign.calls[0].flags, method | get);
  EXPECT_EQ(foreign.calls[1].flags, get);
}
INSTANTIATE_TEST_SUITE_P(Answers, NotAMethod,
                         testing::Values(functionExpected, DISP_E_MEMBERNOTFOUND, E_FAIL));

TEST_F(Imported, AMethodThatFailsIsNotRunAgain) {
  foreign.manners = [](DISPPARAMS&, WORD, VARIANT*, EXCEPINFO*) { return E_FAIL; };
  EXPECT_THROW(automation::get(*object, u"Key", {automation::byVal(std::int16_t{0})}), AutomationError);
  EXPECT_EQ(foreign.calls.size(), 1u);
}

TEST_F(Imported, APutNamesItsValue) {
  automation::put(*object, u"Key", std::u16string(u"12"));
  ASSERT_EQ(foreign.calls.size(), 1u);
  EXPECT_EQ(foreign.calls[0].flags, put);
  EXPECT_EQ(foreign.calls[0].named, (std::vector<DISPID>{DISPID_PROPERTYPUT}));
}

TEST_F(Imported, UnknownNamesFailWithoutACall) {
  EXPECT_FALSE(object->hasMember(u"login"));
  EXPECT_TRUE(object->hasMember(u"Login"));
  try {
    automation::call(*object, u"Logout");
    FAIL();
  } catch (const AutomationError& failure) {
    EXPECT_EQ(failure.code(), automation::error::unknownName);
  }
  EXPECT_TRUE(foreign.calls.empty());
}

TEST_F(Imported, ExceptionsKeepNumberTextAndSource) {
  foreign.manners = [](DISPPARAMS&, WORD, VARIANT*, EXCEPINFO* exception) {
    exception->scode = static_cast<HRESULT>(0x800A01A8);
    exception->bstrSource = SysAllocString(L"host");
    exception->bstrDescription = SysAllocString(L"no such exchange");
    return DISP_E_EXCEPTION;
  };
  try {
    automation::call(*object, u"Login");
    FAIL();
  } catch (const AutomationError& failure) {
    EXPECT_EQ(failure.code(), static_cast<std::int32_t>(0x800A01A8));
    EXPECT_EQ(failure.source(), u"host");
    EXPECT_EQ(failure.description(), u"no such exchange");
  }
}

HRESULT STDAPICALLTYPE fillInLater(EXCEPINFO* info) {
  info->bstrDescription = SysAllocString(L"later");
  return S_OK;
}

// Some run-time systems give a number of their own and fill the rest in only when asked.
TEST_F(Imported, SmallErrorNumbersAreRunTimeErrors) {
  foreign.manners = [](DISPPARAMS&, WORD, VARIANT*, EXCEPINFO* exception) {
    exception->wCode = 1004;
    exception->pfnDeferredFillIn = fillInLater;
    return DISP_E_EXCEPTION;
  };
  try {
    automation::call(*object, u"Login");
    FAIL();
  } catch (const AutomationError& failure) {
    EXPECT_EQ(failure.code(), automation::error::runTime(1004));
    EXPECT_EQ(failure.description(), u"later");
  }
}

TEST_F(Imported, ValuesOfEveryTypeComeIn) {
  VARIANT given{};
  foreign.manners = [&](DISPPARAMS&, WORD, VARIANT* result, EXCEPINFO*) {
    return VariantCopy(result, &given);
  };
  const auto answer = [&] { return automation::call(*object, u"Login"); };
  given.vt = VT_UI4;
  given.ulVal = 4000000000U;
  EXPECT_EQ(automation::toDouble(answer()), 4000000000.0);
  given.vt = VT_CY;
  given.cyVal.int64 = 12500;
  EXPECT_EQ(automation::toText(answer()), u"1.25");
  given.vt = VT_I1;
  given.cVal = -3;
  EXPECT_EQ(automation::toLong(answer()), -3);
  given.vt = VT_DISPATCH;
  given.pdispVal = nullptr;
  EXPECT_EQ(automation::toObject(answer()), nullptr);
  given.vt = VT_UNKNOWN;
  given.punkVal = &foreign;
  EXPECT_EQ(automation::toObject(answer()), object);
}

// What a call brings about may be that everybody lets go of the object.
TEST(ImportedAndLetGo, AnObjectIsThereUntilItsCallHasReturned) {
  Foreign foreign;
  automation::ObjectRef object = com::importObject(&foreign);
  const std::weak_ptr<automation::Object> watched = object;
  int seen = 0;
  const auto letGo = [&] {
    object = nullptr;
    EXPECT_FALSE(watched.expired()) << "it goes in the middle of its call";
    ++seen;
  };
  foreign.whenAsked = letGo;
  automation::call(*object, u"Login");
  EXPECT_TRUE(watched.expired());
  EXPECT_EQ(foreign.references, 0U);

  object = com::importObject(&foreign);
  const std::weak_ptr<automation::Object> second = object;
  foreign.whenAsked = nullptr;
  foreign.manners = [&](DISPPARAMS&, WORD, VARIANT*, EXCEPINFO*) {
    object = nullptr;
    EXPECT_FALSE(second.expired()) << "it goes in the middle of its call";
    ++seen;
    return S_OK;
  };
  automation::call(*object, u"Login");
  EXPECT_TRUE(second.expired());

  object = com::importObject(&foreign);
  const std::weak_ptr<automation::Object> third = object;
  foreign.whenAsked = [&] {
    object = nullptr;
    EXPECT_FALSE(third.expired()) << "it goes while it is asked for a name";
    ++seen;
  };
  EXPECT_TRUE(object->hasMember(u"Key"));
  EXPECT_TRUE(third.expired());
  EXPECT_EQ(foreign.references, 0U);
  EXPECT_EQ(seen, 3);
}

}  // namespace
}  // namespace vordane::test
