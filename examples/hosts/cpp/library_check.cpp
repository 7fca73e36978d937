#include "library_check.h"

#include <algorithm>
#include <iterator>

namespace dispatch {
namespace {

// Holds an interface that this file was handed and releases it.
template <class Interface>
class Held {
 public:
  Held() = default;
  Held(const Held&) = delete;
  Held& operator=(const Held&) = delete;
  ~Held() {
    if (pointer_ != nullptr) pointer_->Release();
  }
  Interface** put() { return &pointer_; }
  Interface* operator->() const { return pointer_; }

 private:
  Interface* pointer_ = nullptr;
};

GUID guidOf(ITypeInfo& info) {
  TYPEATTR* attributes = nullptr;
  check(info.GetTypeAttr(&attributes));
  const GUID guid = attributes->guid;
  info.ReleaseTypeAttr(attributes);
  return guid;
}

// The type as a call passes it: a pointer to the interface IDispatch is VT_DISPATCH.
VARTYPE typeOf(ITypeInfo& info, const TYPEDESC& type) {
  if (type.vt != VT_PTR || type.lptdesc->vt != VT_USERDEFINED) return type.vt;
  Held<ITypeInfo> pointed;
  if (FAILED(info.GetRefTypeInfo(type.lptdesc->hreftype, pointed.put()))) return type.vt;
  return guidOf(*pointed.operator->()) == IID_IDispatch ? static_cast<VARTYPE>(VT_DISPATCH) : type.vt;
}

// One described function as a row of the header; its name points into `name`.
Member rowOf(ITypeInfo& info, const FUNCDESC& function, std::wstring& name) {
  BSTR text = nullptr;
  UINT count = 0;
  if (SUCCEEDED(info.GetNames(function.memid, &text, 1, &count)) && count == 1)
    name.assign(text, SysStringLen(text));
  SysFreeString(text);
  Member row{function.memid,
             static_cast<WORD>(function.invkind),
             typeOf(info, function.elemdescFunc.tdesc),
             name.c_str(),
             {}};
  for (int i = 0; i < function.cParams && i < static_cast<int>(row.arguments.size()); ++i)
    row.arguments[i] = typeOf(info, function.lprgelemdescParam[i].tdesc);
  return row;
}

bool same(const Member& left, const Member& right) {
  return left.number == right.number && left.kind == right.kind && left.result == right.result &&
         std::wstring(left.name) == right.name && left.arguments == right.arguments;
}

// The functions that the library describes for a class, without those that every dispatch interface has.
void compare(ITypeInfo& info, const CompiledClass& compiled, std::vector<std::wstring>& out) {
  TYPEATTR* attributes = nullptr;
  check(info.GetTypeAttr(&attributes));
  const UINT functions = attributes->cFuncs;
  info.ReleaseTypeAttr(attributes);
  std::size_t found = 0;
  for (UINT i = 0; i < functions; ++i) {
    FUNCDESC* function = nullptr;
    check(info.GetFuncDesc(i, &function));
    std::wstring name;
    const Member row = rowOf(info, *function, name);
    const bool everyones = (function->wFuncFlags & FUNCFLAG_FRESTRICTED) != 0;
    info.ReleaseFuncDesc(function);
    if (everyones) continue;
    const auto known = std::find_if(compiled.members.begin(), compiled.members.end(),
                                    [&](const Member& member) { return same(member, row); });
    if (known == compiled.members.end())
      out.push_back(std::wstring(compiled.name) + L"." + name + L" (" + std::to_wstring(row.number) +
                    L") is new or other");
    else
      ++found;
  }
  if (found != compiled.members.size()) out.push_back(std::wstring(compiled.name) + L" lacks members");
}

}  // namespace

std::vector<std::wstring> differences(REFGUID libid, std::span<const CompiledClass> classes) {
  Held<ITypeLib> library;
  check(LoadRegTypeLib(libid, 1, 0, LOCALE_NEUTRAL, library.put()));
  std::vector<std::wstring> out;
  for (const CompiledClass& compiled : classes) {
    Held<ITypeInfo> info;
    if (FAILED(library->GetTypeInfoOfGuid(compiled.iid, info.put())))
      out.push_back(std::wstring(compiled.name) + L" is missing");
    else
      compare(*info.operator->(), compiled, out);
  }
  return out;
}

}  // namespace dispatch
