#include "platform/windows/com/kept_interfaces.h"

#include "platform/windows/com/counted.h"

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

}  // namespace

KeptInterfaces::KeptInterfaces() {
  const ComPtr<IDispatch> nothing(new Nothing);
  for (const IID& iid : {IID_IUnknown, IID_IDispatch, IID_IClassFactory}) {
    ComPtr<IStream> stream;
    if (FAILED(CreateStreamOnHGlobal(nullptr, TRUE, stream.put()))) continue;
    if (SUCCEEDED(CoMarshalInterface(stream.get(), iid, nothing.get(), MSHCTX_LOCAL, nullptr,
                                     MSHLFLAGS_TABLESTRONG)))
      marshalled_.push_back(std::move(stream));
  }
}

KeptInterfaces::~KeptInterfaces() {
  for (const ComPtr<IStream>& stream : marshalled_) {
    stream->Seek({}, STREAM_SEEK_SET, nullptr);
    CoReleaseMarshalData(stream.get());
  }
}

}  // namespace vordane::com
