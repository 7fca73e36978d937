#include "platform/windows/com/values.h"

#include <string>

#include "platform/windows/com/objects.h"

namespace vordane::com {
namespace {

using automation::AutomationError;
using automation::Value;

void check(HRESULT result) {
  if (FAILED(result)) throw AutomationError(result);
}

Variant changed(const VARIANT& source, VARTYPE type, LCID locale = LOCALE_USER_DEFAULT) {
  Variant out;
  check(VariantChangeTypeEx(&out, const_cast<VARIANT*>(&source), locale, VARIANT_ALPHABOOL, type));
  return out;
}

Value fromUnknown(IUnknown* unknown) {
  if (unknown == nullptr) return automation::ObjectRef{};
  ComPtr<IDispatch> dispatch;
  if (FAILED(unknown->QueryInterface(IID_IDispatch, dispatch.putVoid())))
    throw AutomationError(automation::error::typeMismatch);
  return importObject(dispatch.get());
}

bool isOmitted(const VARIANT& variant) {
  return variant.vt == VT_ERROR && variant.scode == DISP_E_PARAMNOTFOUND;
}

Value fromPlain(const VARIANT& plain) {
  switch (plain.vt) {
    case VT_EMPTY:
      return automation::Empty{};
    case VT_NULL:
      return automation::Null{};
    case VT_ERROR:
      if (isOmitted(plain)) return automation::Missing{};
      return static_cast<std::int32_t>(plain.scode);
    case VT_BOOL:
      return plain.boolVal != VARIANT_FALSE;
    case VT_UI1:
      return static_cast<std::uint8_t>(plain.bVal);
    case VT_I2:
      return static_cast<std::int16_t>(plain.iVal);
    case VT_I4:
    case VT_INT:
      return static_cast<std::int32_t>(plain.lVal);
    case VT_I1:
      return static_cast<std::int16_t>(plain.cVal);
    case VT_UI2:
      return static_cast<std::int32_t>(plain.uiVal);
    case VT_R4:
      return plain.fltVal;
    case VT_R8:
      return plain.dblVal;
    case VT_BSTR:
      return toText(plain.bstrVal);
    case VT_DISPATCH:
      return importObject(plain.pdispVal);
    case VT_UNKNOWN:
      return fromUnknown(plain.punkVal);
    case VT_DATE:
      return automation::Date{plain.date};
    default:
      return changed(plain, VT_R8).get().dblVal;
  }
}

Variant followed(const VARIANT& variant) {
  Variant out;
  check(VariantCopyInd(&out, const_cast<VARIANT*>(&variant)));
  return out;
}

VARTYPE variantType(automation::Type type) {
  switch (type) {
    case automation::Type::boolean:
      return VT_BOOL;
    case automation::Type::byte:
      return VT_UI1;
    case automation::Type::integer:
      return VT_I2;
    case automation::Type::longInteger:
      return VT_I4;
    case automation::Type::text:
      return VT_BSTR;
    case automation::Type::object:
    case automation::Type::none:
    case automation::Type::variant:
      break;
  }
  return VT_EMPTY;
}

// Whether the table's own rules decide: nothing to convert, or Empty, Null and omitted, which they name.
bool staysAsItIs(const VARIANT& plain, VARTYPE wanted) {
  return wanted == VT_EMPTY || plain.vt == wanted || plain.vt == VT_EMPTY || plain.vt == VT_NULL ||
         isOmitted(plain);
}

// Fills an empty VARIANT; its type is set last, so that a failure leaves it empty.
struct Filler {
  VARIANT& out;

  void operator()(automation::Empty) const {}
  void operator()(automation::Null) const { out.vt = VT_NULL; }
  void operator()(automation::Missing) const { fill(out.scode, DISP_E_PARAMNOTFOUND, VT_ERROR); }
  void operator()(bool flag) const { fill(out.boolVal, flag ? VARIANT_TRUE : VARIANT_FALSE, VT_BOOL); }
  void operator()(std::uint8_t number) const { fill(out.bVal, number, VT_UI1); }
  void operator()(std::int16_t number) const { fill(out.iVal, number, VT_I2); }
  void operator()(std::int32_t number) const { fill(out.lVal, number, VT_I4); }
  void operator()(float number) const { fill(out.fltVal, number, VT_R4); }
  void operator()(double number) const { fill(out.dblVal, number, VT_R8); }
  void operator()(automation::Date moment) const { fill(out.date, moment.days, VT_DATE); }
  void operator()(const std::u16string& text) const { fill(out.bstrVal, toBstr(text).release(), VT_BSTR); }
  void operator()(const automation::ObjectRef& object) const {
    fill(out.pdispVal, exportObject(object).release(), VT_DISPATCH);
  }

  template <class Field, class Given>
  void fill(Field& field, Given value, VARTYPE type) const {
    field = value;
    out.vt = type;
  }
};

}  // namespace

std::u16string toText(BSTR text) {
  return text == nullptr ? std::u16string{}
                         : std::u16string(reinterpret_cast<const char16_t*>(text), SysStringLen(text));
}

Bstr toBstr(std::u16string_view text) {
  Bstr out(SysAllocStringLen(wide(text.data()), static_cast<UINT>(text.size())));
  if (!out) throw AutomationError(E_OUTOFMEMORY);
  return out;
}

GUID toGuid(std::string_view text) {
  const std::wstring copy(text.begin(), text.end());
  GUID out{};
  return SUCCEEDED(CLSIDFromString(copy.c_str(), &out)) ? out : GUID{};
}

Value toValue(const VARIANT& variant) {
  return fromPlain(followed(variant).get());
}

Variant toVariant(const Value& value) {
  Variant out;
  std::visit(Filler{out.get()}, value);
  return out;
}

Value toParameter(const VARIANT& variant, const automation::Parameter& parameter, LCID locale, int position) {
  try {
    const Variant plain = followed(variant);
    const VARTYPE wanted = variantType(parameter.type);
    const Value value = staysAsItIs(plain.get(), wanted)
                            ? fromPlain(plain.get())
                            : fromPlain(changed(plain.get(), wanted, locale).get());
    return automation::coerce(value, parameter, position);
  } catch (const AutomationError& failure) {
    throw AutomationError(failure.code(), failure.description(), failure.source(), position);
  }
}

void writeBack(VARIANT& reference, const Value& value) {
  if ((reference.vt & VT_BYREF) == 0) return;
  Variant plain = toVariant(value);
  if (reference.vt == (VT_BYREF | VT_VARIANT)) {
    check(VariantCopyInd(reference.pvarVal, &plain));
    return;
  }
  const VARTYPE type = static_cast<VARTYPE>(reference.vt & ~VT_BYREF);
  Variant typed = changed(plain.get(), type);
  // The VARIANT's fields share one place, so that one copy of the field's size serves every type but those
  // whose former value must be freed.
  switch (type) {
    case VT_BSTR:
      SysFreeString(*reference.pbstrVal);
      *reference.pbstrVal = typed.release().bstrVal;
      break;
    case VT_DISPATCH:
    case VT_UNKNOWN:
      if (*reference.ppunkVal != nullptr) (*reference.ppunkVal)->Release();
      *reference.ppunkVal = typed.release().punkVal;
      break;
    case VT_BOOL:
      *reference.pboolVal = typed.get().boolVal;
      break;
    case VT_I1:
    case VT_UI1:
      *reference.pbVal = typed.get().bVal;
      break;
    case VT_I2:
    case VT_UI2:
      *reference.piVal = typed.get().iVal;
      break;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_ERROR:
      *reference.plVal = typed.get().lVal;
      break;
    case VT_R4:
      *reference.pfltVal = typed.get().fltVal;
      break;
    case VT_R8:
    case VT_DATE:
      *reference.pdblVal = typed.get().dblVal;
      break;
    case VT_CY:
      *reference.pcyVal = typed.get().cyVal;
      break;
    default:
      throw AutomationError(automation::error::typeMismatch);
  }
}

}  // namespace vordane::com
