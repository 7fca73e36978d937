// Owned handles and the COM pointer: who holds one of these owns it. Each handle type is three facts: the
// type, the invalid value and how it is closed.
#pragma once

#include <objbase.h>
#include <oleauto.h>
#include <windows.h>

#include <string>
#include <string_view>
#include <utility>

namespace vordane::com {

template <class Traits>
class Owned {
 public:
  using Type = typename Traits::Type;
  Owned() = default;
  explicit Owned(Type value) : value_(value) {}
  Owned(Owned&& other) noexcept : value_(std::exchange(other.value_, Traits::invalid())) {}
  Owned& operator=(Owned&& other) noexcept {
    reset(std::exchange(other.value_, Traits::invalid()));
    return *this;
  }
  ~Owned() { reset(); }

  Type get() const { return value_; }
  explicit operator bool() const { return value_ != Traits::invalid(); }
  void reset(Type value = Traits::invalid()) {
    if (value_ != Traits::invalid()) Traits::close(value_);
    value_ = value;
  }
  // For functions that hand the handle out through a pointer; what was owned before is closed.
  Type* put() {
    reset();
    return &value_;
  }
  Type release() { return std::exchange(value_, Traits::invalid()); }

 private:
  Type value_ = Traits::invalid();
};

struct HandleTraits {
  using Type = HANDLE;
  static Type invalid() { return nullptr; }
  static void close(Type handle) { CloseHandle(handle); }
};
struct FileTraits {
  using Type = HANDLE;
  static Type invalid() { return INVALID_HANDLE_VALUE; }
  static void close(Type handle) { CloseHandle(handle); }
};
struct KeyTraits {
  using Type = HKEY;
  static Type invalid() { return nullptr; }
  static void close(Type key) { RegCloseKey(key); }
};
struct LocalTraits {
  using Type = void*;
  static Type invalid() { return nullptr; }
  static void close(Type memory) { LocalFree(memory); }
};
struct BstrTraits {
  using Type = BSTR;
  static Type invalid() { return nullptr; }
  static void close(Type text) { SysFreeString(text); }
};

using Handle = Owned<HandleTraits>;
using File = Owned<FileTraits>;
using RegistryKey = Owned<KeyTraits>;
using LocalMemory = Owned<LocalTraits>;
using Bstr = Owned<BstrTraits>;

// A VARIANT that frees what it holds.
class Variant {
 public:
  Variant() { VariantInit(&value_); }
  Variant(Variant&& other) noexcept : value_(other.value_) { VariantInit(&other.value_); }
  Variant& operator=(Variant&& other) noexcept {
    std::swap(value_, other.value_);
    return *this;
  }
  ~Variant() { VariantClear(&value_); }

  VARIANT* operator&() { return &value_; }
  VARIANT& get() { return value_; }
  const VARIANT& get() const { return value_; }
  VARTYPE type() const { return value_.vt; }
  VARIANT release() {
    const VARIANT out = value_;
    VariantInit(&value_);
    return out;
  }

 private:
  VARIANT value_;
};

// A counted COM reference.
template <class Interface>
class ComPtr {
 public:
  ComPtr() = default;
  ComPtr(std::nullptr_t) {}
  explicit ComPtr(Interface* pointer) : pointer_(pointer) { addRef(); }
  ComPtr(const ComPtr& other) : pointer_(other.pointer_) { addRef(); }
  ComPtr(ComPtr&& other) noexcept : pointer_(std::exchange(other.pointer_, nullptr)) {}
  ComPtr& operator=(ComPtr other) noexcept {
    std::swap(pointer_, other.pointer_);
    return *this;
  }
  ~ComPtr() {
    if (pointer_ != nullptr) pointer_->Release();
  }

  // Takes over a reference that the caller owned.
  static ComPtr adopt(Interface* pointer) {
    ComPtr result;
    result.pointer_ = pointer;
    return result;
  }

  Interface* get() const { return pointer_; }
  Interface* operator->() const { return pointer_; }
  explicit operator bool() const { return pointer_ != nullptr; }
  Interface* release() { return std::exchange(pointer_, nullptr); }
  Interface** put() {
    *this = ComPtr();
    return &pointer_;
  }
  void** putVoid() { return reinterpret_cast<void**>(put()); }

  // Null when the object has no such interface.
  template <class Other>
  ComPtr<Other> as(REFIID iid) const {
    ComPtr<Other> result;
    if (pointer_ != nullptr) pointer_->QueryInterface(iid, result.putVoid());
    return result;
  }

 private:
  void addRef() {
    if (pointer_ != nullptr) pointer_->AddRef();
  }
  Interface* pointer_ = nullptr;
};

// UTF-16 text is the same 16-bit units on both sides.
inline const wchar_t* wide(const char16_t* text) {
  return reinterpret_cast<const wchar_t*>(text);
}
inline std::wstring toWide(std::u16string_view text) {
  return {text.begin(), text.end()};
}
inline std::u16string_view fromWide(std::wstring_view text) {
  return {reinterpret_cast<const char16_t*>(text.data()), text.size()};
}

}  // namespace vordane::com
