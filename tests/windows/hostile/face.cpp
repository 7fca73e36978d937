#include "face.h"

#include <windows.h>

#include <oleauto.h>

#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "platform/windows/com/counted.h"
#include "platform/windows/com/objects.h"
#include "platform/windows/com/values.h"

namespace vordane::hostile {
namespace {

using automation::Argument;
using automation::AutomationError;
using automation::Value;

// An object that can't be called by name.
class Mute final : public com::Counted<IErrorLog> {
  HRESULT STDMETHODCALLTYPE AddError(LPCOLESTR, EXCEPINFO*) override { return E_NOTIMPL; }
};

com::Variant arrayOf(VARTYPE type, ULONG length, UINT dimensions) {
  SAFEARRAYBOUND bounds[2] = {{length, 0}, {2, -7}};
  com::Variant out;
  out.get().parray = SafeArrayCreate(type, dimensions, bounds);
  if (out.get().parray != nullptr) out.get().vt = static_cast<VARTYPE>(VT_ARRAY | type);
  return out;
}

com::Variant wideNumber(Whims& whims) {
  com::Variant out;
  VARIANT& raw = out.get();
  const auto most = std::numeric_limits<LONGLONG>::max();
  switch (whims.below(6)) {
    case 0:
      raw.vt = VT_CY;
      raw.cyVal.int64 = most;
      break;
    case 1:
      raw.vt = VT_I8;
      raw.llVal = -most;
      break;
    case 2:
      raw.vt = VT_UI8;
      raw.ullVal = static_cast<ULONGLONG>(most) + 1;
      break;
    case 3:
      raw.decVal.Hi32 = raw.decVal.Lo32 = raw.decVal.Mid32 = 0xFFFFFFFF;
      raw.decVal.signscale = 0;
      raw.vt = VT_DECIMAL;
      break;
    case 4:
      raw.vt = VT_UI4;
      raw.ulVal = 0xFFFFFFFF;
      break;
    default:
      raw.vt = VT_I1;
      raw.cVal = static_cast<CHAR>(whims.next());
  }
  return out;
}

// What the portable types have no word for.
com::Variant strangeValue(Whims& whims) {
  com::Variant out;
  VARIANT& raw = out.get();
  switch (whims.below(8)) {
    case 0:
      raw.vt = VT_ERROR;
      raw.scode = whims.errorCode();
      return out;
    case 1:
      return arrayOf(VT_VARIANT, static_cast<ULONG>(whims.below(20000)), 1);
    case 2:
      return arrayOf(VT_UI1, whims.once(10) ? 4'000'000 : 300, 1);
    case 3:
      return arrayOf(VT_BSTR, 5, 2);
    case 4:
      raw.vt = VT_UNKNOWN;
      raw.punkVal = whims.once(2) ? nullptr : com::ComPtr<IErrorLog>(new Mute).release();
      return out;
    case 5:
      raw.vt = VT_BSTR;  // without a text
      return out;
    case 6:
      raw.vt = VT_BSTR;
      raw.bstrVal = SysAllocStringLen(nullptr, whims.once(10) ? 4'000'000 : 80'000);
      return out;
    default:
      return wideNumber(whims);
  }
}

class Face final : public com::Counted<IDispatch> {
 public:
  Face(Conspiracy& plot, std::shared_ptr<Peer> peer) : plot_(plot), peer_(std::move(peer)) {}

  // The watch over hosts asks this one: an error may look like a death.
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return plot_.whims.once(10) ? failureCode() : S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo** out) override {
    *out = nullptr;
    return plot_.whims.once(2) ? E_NOTIMPL : failureCode();
  }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
    for (UINT i = 0; i < count; ++i) ids[i] = DISPID_UNKNOWN;
    const std::u16string name(com::fromWide(names[0]));
    if (plot_.whims.once(80)) return failureCode();
    if (count != 1 || !peer_->hasMember(name)) return DISP_E_UNKNOWNNAME;
    names_.push_back(name);
    ids[0] = static_cast<DISPID>(names_.size());
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* given, VARIANT* result,
                                   EXCEPINFO* exception, UINT* position) override {
    const com::ComPtr<IDispatch> alive(this);
    if (id < 1 || static_cast<std::size_t>(id) > names_.size()) return DISP_E_MEMBERNOTFOUND;
    try {
      std::vector<Argument> arguments = taken(*given);
      const std::u16string name = names_[static_cast<std::size_t>(id) - 1];
      const Value value = peer_->invoke(name, static_cast<automation::CallKind>(flags & 15U), arguments);
      giveBack(*given, arguments);
      if (result != nullptr) *result = answerOf(value).release();
      return S_OK;
    } catch (const AutomationError& failure) {
      return raise(failure, exception, position);
    } catch (const std::exception&) {
      return E_UNEXPECTED;
    }
  }

 private:
  HRESULT failureCode() {
    const HRESULT code = plot_.whims.errorCode();
    return FAILED(code) ? code : E_FAIL;
  }

  com::Variant answerOf(const Value& value) {
    return plot_.whims.once(25) ? strangeValue(plot_.whims) : com::toVariant(value);
  }

  static std::vector<Argument> taken(const DISPPARAMS& given) {
    std::vector<Argument> arguments;
    for (UINT i = given.cArgs; i > 0; --i)
      arguments.push_back({com::toValue(given.rgvarg[i - 1]), (given.rgvarg[i - 1].vt & VT_BYREF) != 0});
    return arguments;
  }
  // A value of another type than the reference takes can't be given back.
  static void giveBack(const DISPPARAMS& given, const std::vector<Argument>& arguments) {
    for (std::size_t i = 0; i < arguments.size(); ++i) {
      try {
        com::writeBack(given.rgvarg[given.cArgs - 1 - i], arguments[i].value);
      } catch (const AutomationError&) {
      }
    }
  }

  // An error as a plain code, or as an exception with a code, with a number, or with nothing at all.
  HRESULT raise(const AutomationError& failure, EXCEPINFO* exception, UINT* position) {
    const std::size_t how = plot_.whims.below(4);
    if (how == 0 || exception == nullptr) {
      if (position != nullptr) *position = static_cast<UINT>(failure.argument());
      return failure.code();
    }
    *exception = {};
    if (how == 1) exception->scode = failure.code();
    if (how == 2) exception->wCode = static_cast<WORD>(failure.code());
    if (how == 3) return DISP_E_EXCEPTION;
    exception->bstrDescription = com::toBstr(failure.description()).release();
    exception->bstrSource = com::toBstr(failure.source()).release();
    return DISP_E_EXCEPTION;
  }

  Conspiracy& plot_;
  std::shared_ptr<Peer> peer_;
  std::vector<std::u16string> names_;
};

}  // namespace

automation::ObjectRef makeFace(Conspiracy& plot, const std::shared_ptr<Peer>& peer) {
  const com::ComPtr<IDispatch> face(new Face(plot, peer));
  return com::importObject(face.get());
}

}  // namespace vordane::hostile
