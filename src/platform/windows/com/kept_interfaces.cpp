#include "platform/windows/com/kept_interfaces.h"

#include <windows.h>

#include <combaseapi.h>
#include <objidl.h>

#include <mutex>
#include <system_error>
#include <thread>

#include "platform/windows/com/counted.h"
#include "platform/windows/com/owned.h"
#include "platform/windows/com/system_function.h"

namespace vordane::com {
namespace {

// Has the interfaces and does nothing: nobody ever gets hold of it.
class Nothing final : public Counted<IClassFactory, IDispatch> {
 public:
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID, void**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return E_NOTIMPL; }

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                   UINT*) override {
    return E_NOTIMPL;
  }
};

// The marshalled form is not needed; what stays is the stub.
void makeStubs() {
  const ComPtr<IDispatch> nothing(new Nothing);
  for (const IID& iid : {IID_IUnknown, IID_IDispatch, IID_IClassFactory}) {
    ComPtr<IStream> stream;
    if (FAILED(CreateStreamOnHGlobal(nullptr, TRUE, stream.put()))) continue;
    CoMarshalInterface(stream.get(), iid, nothing.get(), MSHCTX_LOCAL, nullptr, MSHLFLAGS_TABLESTRONG);
  }
}

// The compiler's 32-bit import library lacks this, and Windows before 8 does.
bool keepThreadsApartment() {
  using Increment = HRESULT(WINAPI*)(CO_MTA_USAGE_COOKIE*);
  const auto increment = systemFunction<Increment>(L"ole32.dll", "CoIncrementMTAUsage");
  CO_MTA_USAGE_COOKIE cookie = nullptr;
  return increment != nullptr && SUCCEEDED(increment(&cookie));
}

}  // namespace

void keepInterfaces() {
  static std::once_flag once;
  std::call_once(once, [] {
    if (!keepThreadsApartment()) return;
    try {
      std::thread([] {
        if (FAILED(CoInitializeEx(nullptr, COINIT_MULTITHREADED))) return;
        makeStubs();
        CoUninitialize();
      }).join();
    } catch (const std::system_error&) {
      // There is no thread to be had; the program runs without.
    }
  });
}

}  // namespace vordane::com
