// The identifiers of oleacc have to be spelled out: its import library does not carry them.
#include "platform/windows/window/accessible_name.h"

#include <initguid.h>

#include <oleacc.h>

namespace vordane::window::win32 {

void nameForScreenReaders(HWND window, const std::u16string& name) {
  void* made = nullptr;
  if (FAILED(CoCreateInstance(CLSID_AccPropServices, nullptr, CLSCTX_INPROC_SERVER, IID_IAccPropServices,
                              &made)))
    return;
  auto* services = static_cast<IAccPropServices*>(made);
  services->SetHwndPropStr(window, static_cast<DWORD>(OBJID_CLIENT), CHILDID_SELF, PROPID_ACC_NAME,
                           wide(name));
  services->Release();
}

}  // namespace vordane::window::win32
