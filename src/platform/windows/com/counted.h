// A COM object that lives as long as it is referenced: made with `new`, without a reference yet. Its
// references may be counted on any thread.
#pragma once

#include <objbase.h>

#include <atomic>
#include <tuple>

namespace vordane::com {

template <class... Interfaces>
class Counted : public Interfaces... {
 public:
  Counted() = default;
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;
  virtual ~Counted() = default;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    if (iid == IID_IUnknown) *out = static_cast<First*>(this);
    (offer<Interfaces>(iid, out), ...);
    if (*out == nullptr) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

 private:
  using First = std::tuple_element_t<0, std::tuple<Interfaces...>>;

  template <class Interface>
  void offer(REFIID iid, void** out) {
    if (iid == __uuidof(Interface)) *out = static_cast<Interface*>(this);
  }

  std::atomic<ULONG> references_{0};
};

}  // namespace vordane::com
