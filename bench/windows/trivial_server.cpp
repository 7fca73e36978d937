// The least that an automation server can be: one class with one property, served from its own process in
// bare COM. The baseline of a call on the add-in. Run without a switch it serves for as long as somebody
// holds it.
#include <windows.h>

#include <oleauto.h>

#include "bench/windows/trivial_server.h"

namespace {

LONG objects = 0;

class Trivial final : public IDispatch {
 public:
  Trivial() { InterlockedIncrement(&objects); }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
    const bool known = iid == IID_IUnknown || iid == IID_IDispatch;
    *out = known ? static_cast<IDispatch*>(this) : nullptr;
    if (known) AddRef();
    return known ? S_OK : E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&count_)); }
  ULONG STDMETHODCALLTYPE Release() override {
    const auto left = static_cast<ULONG>(InterlockedDecrement(&count_));
    if (left == 0) {
      delete this;
      if (InterlockedDecrement(&objects) == 0) PostQuitMessage(0);
    }
    return left;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID* ids) override {
    *ids = 1;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*,
                                   UINT*) override {
    result->vt = VT_BOOL;
    result->boolVal = VARIANT_TRUE;
    return S_OK;
  }

 private:
  ~Trivial() = default;
  LONG count_ = 1;
};

class Factory final : public IClassFactory {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
    const bool known = iid == IID_IUnknown || iid == IID_IClassFactory;
    *out = known ? static_cast<IClassFactory*>(this) : nullptr;
    return known ? S_OK : E_NOINTERFACE;
  }
  // It lives as long as the process.
  ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID iid, void** out) override {
    auto* const made = new Trivial;
    const HRESULT result = made->QueryInterface(iid, out);
    made->Release();
    return result;
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }
};

}  // namespace

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
  CoInitialize(nullptr);
  Factory factory;
  DWORD cookie = 0;
  CoRegisterClassObject(vordane::bench::trivialClass, &factory, CLSCTX_LOCAL_SERVER, REGCLS_MULTIPLEUSE,
                        &cookie);
  MSG message;
  while (GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
  CoRevokeClassObject(cookie);
  CoUninitialize();
  return 0;
}
