// IDispatch calls as other programs' run-time systems make them, to the last flag.
#pragma once

#include <string>
#include <vector>

#include "platform/windows/com/values.h"

namespace vordane::test {

struct Answer {
  HRESULT result = E_FAIL;
  com::Variant value;
  HRESULT code = S_OK;  // of the exception
  std::u16string source, description;
  UINT argument = 999;
};

inline DISPID idOf(IDispatch* object, const wchar_t* name) {
  LPOLESTR names[] = {const_cast<LPOLESTR>(name)};
  DISPID id = DISPID_UNKNOWN;
  object->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id);
  return id;
}

// `arguments` in rgvarg's order (the last one first); `named` names the first ones of them.
inline Answer rawInvoke(IDispatch* object, DISPID id, WORD flags, std::vector<VARIANT> arguments = {},
                        std::vector<DISPID> named = {}) {
  Answer answer;
  EXCEPINFO info{};
  DISPPARAMS parameters{arguments.data(), named.data(), static_cast<UINT>(arguments.size()),
                        static_cast<UINT>(named.size())};
  answer.result = object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters, &answer.value, &info,
                                 &answer.argument);
  answer.code = info.scode;
  answer.source = com::toText(info.bstrSource);
  answer.description = com::toText(info.bstrDescription);
  SysFreeString(info.bstrSource);
  SysFreeString(info.bstrDescription);
  return answer;
}

inline VARIANT raw(const automation::Value& value) {
  return com::toVariant(value).release();
}
inline VARIANT omitted() {
  return raw(automation::Missing{});
}
inline VARIANT null() {
  return raw(automation::Null{});
}
inline VARIANT reference(VARIANT& target) {
  VARIANT out;
  out.vt = VT_BYREF | VT_VARIANT;
  out.pvarVal = &target;
  return out;
}
inline std::u16string text(const Answer& answer) {
  return automation::toText(com::toValue(answer.value.get()));
}
inline std::int32_t number(const Answer& answer) {
  return automation::toLong(com::toValue(answer.value.get()));
}

inline constexpr WORD get = DISPATCH_PROPERTYGET;
inline constexpr WORD method = DISPATCH_METHOD;
inline constexpr WORD put = DISPATCH_PROPERTYPUT;
inline constexpr WORD putRef = DISPATCH_PROPERTYPUTREF;

}  // namespace vordane::test
