#include "lent_object.h"

#include <cwchar>

namespace dispatch {
namespace {

class Lent : public IDispatch {
 public:
  explicit Lent(std::vector<LentMember> members) : members_(std::move(members)) {}

  STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
    const bool known = iid == IID_IUnknown || iid == IID_IDispatch;
    *out = known ? this : nullptr;
    if (known) AddRef();
    return known ? S_OK : E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }
  STDMETHODIMP GetTypeInfoCount(UINT* count) override { return *count = 0, S_OK; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return DISP_E_BADINDEX; }

  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* numbers) override {
    for (UINT i = 0; i < count; ++i) numbers[i] = DISPID_UNKNOWN;
    for (std::size_t i = 0; i < members_.size(); ++i)
      if (_wcsicmp(members_[i].name, names[0]) == 0) numbers[0] = static_cast<DISPID>(i + 1);
    return count == 1 && numbers[0] != DISPID_UNKNOWN ? S_OK : DISP_E_UNKNOWNNAME;
  }

  STDMETHODIMP Invoke(DISPID number, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT* result,
                      EXCEPINFO* failure, UINT*) override {
    const auto index = static_cast<std::size_t>(number - 1);
    if (index >= members_.size()) return DISP_E_MEMBERNOTFOUND;
    const Object kept(this);  // the caller may let go of us inside the call
    try {
      Value answer = members_[index].answer(Arguments(*parameters));
      if (result != nullptr) std::swap(*result, *answer.get());
      return S_OK;
    } catch (const Error& error) {
      if (failure == nullptr) return error.code();
      *failure = {};
      failure->scode = error.code();
      failure->bstrSource = SysAllocString(L"host");
      failure->bstrDescription = SysAllocString(error.description().c_str());
      return DISP_E_EXCEPTION;
    } catch (const std::exception&) {
      return E_FAIL;
    }
  }

 private:
  virtual ~Lent() = default;
  std::vector<LentMember> members_;
  ULONG references_ = 0;
};

}  // namespace

void Arguments::put(UINT position, const Value& value) const {
  if (position >= parameters_.cArgs) return;
  const VARIANT& target = raw(position);
  if (target.vt == (VT_BYREF | VT_VARIANT))
    check(VariantCopy(target.pvarVal, const_cast<VARIANT*>(&value.get())));
  if (target.vt != (VT_BYREF | VT_BSTR)) return;
  const std::wstring text = value.as<std::wstring>();
  SysReAllocStringLen(target.pbstrVal, text.data(), static_cast<UINT>(text.size()));
}

Object lend(std::vector<LentMember> members) {
  return Object(new Lent(std::move(members)));
}

}  // namespace dispatch
