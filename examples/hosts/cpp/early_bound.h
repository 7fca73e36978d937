// Early-bound calls of dispatch interfaces: values, errors, and an object whose members are called by their
// numbers. What the header of a library is written against. Whoever holds a Value or an Object owns what is
// in it; everything belongs to the thread that made it.
#pragma once

#include <windows.h>
// oleauto.h needs windows.h before it.
#include <oleauto.h>

#include <array>
#include <stdexcept>
#include <string>
#include <utility>

namespace dispatch {

// A member as the library describes it: a property that is read and written has two rows.
struct Member {
  DISPID number;
  WORD kind;
  VARTYPE result;
  const wchar_t* name;
  std::array<VARTYPE, 5> arguments;  // VT_EMPTY behind the last one
};

// A call that failed. `argument` is the position (from 0) of the one to blame, -1 for none.
class Error : public std::runtime_error {
 public:
  explicit Error(HRESULT code, std::wstring description = {}, int argument = -1)
      : std::runtime_error("an automation call failed"),
        code_(code),
        description_(std::move(description)),
        argument_(argument) {}
  HRESULT code() const { return code_; }
  const std::wstring& description() const { return description_; }
  int argument() const { return argument_; }

 private:
  HRESULT code_;
  std::wstring description_;
  int argument_;
};

inline void check(HRESULT result) {
  if (FAILED(result)) throw Error(result);
}

class Object;

class Value {
 public:
  Value() { VariantInit(&value_); }
  Value(bool value) : Value() { set(VT_BOOL).boolVal = value ? VARIANT_TRUE : VARIANT_FALSE; }
  Value(unsigned char value) : Value() { set(VT_UI1).bVal = value; }
  Value(short value) : Value() { set(VT_I2).iVal = value; }
  Value(long value) : Value() { set(VT_I4).lVal = value; }
  Value(const wchar_t* value) : Value(std::wstring(value)) {}
  Value(const std::wstring& value) : Value() {
    set(VT_BSTR).bstrVal = SysAllocStringLen(value.data(), static_cast<UINT>(value.size()));
  }
  Value(IDispatch* value) : Value() {
    set(VT_DISPATCH).pdispVal = value;
    if (value != nullptr) value->AddRef();
  }
  Value(const Value& other) : Value() { check(VariantCopyInd(&value_, const_cast<VARIANT*>(&other.value_))); }
  explicit Value(const VARIANT& other) : Value() {
    check(VariantCopyInd(&value_, const_cast<VARIANT*>(&other)));
  }
  Value(Value&& other) noexcept : Value() { std::swap(value_, other.value_); }
  Value& operator=(Value other) noexcept { return std::swap(value_, other.value_), *this; }
  ~Value() { VariantClear(&value_); }

  static Value null() {
    Value value;
    value.set(VT_NULL);
    return value;
  }
  // An optional argument that is left out.
  static Value missing() {
    Value value;
    value.set(VT_ERROR).scode = DISP_E_PARAMNOTFOUND;
    return value;
  }

  VARIANT* get() { return &value_; }
  const VARIANT& get() const { return value_; }
  // The value in that type, converted as the other side would; throws Error.
  template <class Type>
  Type as() const;

 private:
  VARIANT& set(VARTYPE type) {
    value_.vt = type;
    return value_;
  }
  Value converted(VARTYPE type) const {
    Value out;
    check(VariantChangeType(&out.value_, const_cast<VARIANT*>(&value_), VARIANT_ALPHABOOL, type));
    return out;
  }
  VARIANT value_;
};

// A counted reference to a dispatch interface.
class Object {
 public:
  Object() = default;
  explicit Object(IDispatch* object) : object_(object) {
    if (object_ != nullptr) object_->AddRef();
  }
  Object(const Object& other) : Object(other.object_) {}
  Object(Object&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  Object& operator=(Object other) noexcept { return std::swap(object_, other.object_), *this; }
  ~Object() {
    if (object_ != nullptr) object_->Release();
  }
  IDispatch* get() const { return object_; }
  void release() { *this = Object(); }

  // A call by name, of an object that is in no library.
  template <class... Arguments>
  Value call(const wchar_t* name, const Arguments&... arguments) const {
    DISPID number = 0;
    auto* text = const_cast<wchar_t*>(name);
    check(object_->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &number));
    return invoke(number, DISPATCH_METHOD, arguments...);
  }

 protected:
  template <class Result, class... Arguments>
  Result method(DISPID number, const Arguments&... arguments) const {
    return resultOf<Result>(invoke(number, DISPATCH_METHOD, arguments...));
  }
  template <class Result, class... Arguments>
  Result get(DISPID number, const Arguments&... arguments) const {
    return resultOf<Result>(invoke(number, DISPATCH_PROPERTYGET, arguments...));
  }
  // Indexes first, the new value last.
  template <class... Arguments>
  void put(DISPID number, const Arguments&... arguments) const {
    invoke(number, DISPATCH_PROPERTYPUT, arguments...);
  }

 private:
  template <class Result>
  static Result resultOf(const Value& value) {
    if constexpr (!std::is_void_v<Result>) return value.as<Result>();
  }

  template <class... Arguments>
  Value invoke(DISPID number, WORD kind, const Arguments&... arguments) const {
    // The last argument goes first. What is passed by value stays ours.
    constexpr std::size_t count = sizeof...(Arguments);
    std::array<Value, count + 1> values{Value(arguments)...};
    std::array<VARIANT, count + 1> passed{};
    for (std::size_t i = 0; i < count; ++i) passed[i] = *values[count - 1 - i].get();
    DISPID named = DISPID_PROPERTYPUT;
    const bool put = kind == DISPATCH_PROPERTYPUT;
    DISPPARAMS parameters{passed.data(), put ? &named : nullptr, count, put ? 1U : 0U};
    return invoke(number, kind, parameters);
  }

  Value invoke(DISPID number, WORD kind, DISPPARAMS& parameters) const {
    if (object_ == nullptr) throw Error(E_POINTER);
    Value result;
    EXCEPINFO failure{};
    UINT argument = 0;
    const HRESULT code =
        object_->Invoke(number, IID_NULL, LOCALE_USER_DEFAULT, kind, &parameters,
                        kind == DISPATCH_PROPERTYPUT ? nullptr : result.get(), &failure, &argument);
    if (SUCCEEDED(code)) return result;
    if (code == DISP_E_EXCEPTION && failure.pfnDeferredFillIn != nullptr) failure.pfnDeferredFillIn(&failure);
    const std::wstring description(failure.bstrDescription, SysStringLen(failure.bstrDescription));
    for (BSTR text : {failure.bstrSource, failure.bstrDescription, failure.bstrHelpFile}) SysFreeString(text);
    if (code == DISP_E_EXCEPTION) throw Error(failure.scode, description);
    const bool blamed = code == DISP_E_TYPEMISMATCH || code == DISP_E_OVERFLOW;
    throw Error(code, {}, blamed ? static_cast<int>(parameters.cArgs - 1 - argument) : -1);
  }

  IDispatch* object_ = nullptr;
};

template <>
inline Value Value::as<Value>() const {
  return *this;
}
template <>
inline bool Value::as<bool>() const {
  return converted(VT_BOOL).value_.boolVal != VARIANT_FALSE;
}
template <>
inline unsigned char Value::as<unsigned char>() const {
  return converted(VT_UI1).value_.bVal;
}
template <>
inline short Value::as<short>() const {
  return converted(VT_I2).value_.iVal;
}
template <>
inline long Value::as<long>() const {
  return converted(VT_I4).value_.lVal;
}
template <>
inline std::wstring Value::as<std::wstring>() const {
  const Value text = converted(VT_BSTR);
  return {text.value_.bstrVal, SysStringLen(text.value_.bstrVal)};
}
template <>
inline Object Value::as<Object>() const {
  return Object(converted(VT_DISPATCH).value_.pdispVal);
}

// A new object of a class of the library, from whichever process serves it, whatever its word size.
template <class Class>
Class create() {
  IDispatch* object = nullptr;
  check(CoCreateInstance(Class::clsid, nullptr, CLSCTX_LOCAL_SERVER, Class::iid,
                         reinterpret_cast<void**>(&object)));
  Class created(object);
  object->Release();
  return created;
}

// An object that somebody else handed over, as one of a class of the library; throws Error when it is none.
template <class Class>
Class as(const Object& object) {
  IDispatch* found = nullptr;
  check(object.get()->QueryInterface(Class::iid, reinterpret_cast<void**>(&found)));
  Class typed(found);
  found->Release();
  return typed;
}

}  // namespace dispatch
