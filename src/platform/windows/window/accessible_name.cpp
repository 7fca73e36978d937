// The identifiers of oleacc have to be spelled out: its import library does not carry them.
#include "platform/windows/window/accessible_name.h"

#include <initguid.h>

#include <oleacc.h>

namespace vordane::window::win32 {
namespace {

constexpr DWORD clientArea = static_cast<DWORD>(OBJID_CLIENT);

// The property by which the newer interface for screen readers knows a live region.
constexpr GUID liveSetting = {0xC12BCD8E, 0x2A8E, 0x4950, {0x8A, 0xE7, 0x36, 0x25, 0x11, 0x1D, 0x58, 0xEB}};

template <typename Work>
void withProperties(Work work) {
  void* made = nullptr;
  if (FAILED(CoCreateInstance(CLSID_AccPropServices, nullptr, CLSCTX_INPROC_SERVER, IID_IAccPropServices,
                              &made)))
    return;
  auto* services = static_cast<IAccPropServices*>(made);
  work(*services);
  services->Release();
}

}  // namespace

void nameForScreenReaders(HWND window, const std::u16string& name) {
  withProperties([&](IAccPropServices& services) {
    services.SetHwndPropStr(window, clientArea, CHILDID_SELF, PROPID_ACC_NAME, wide(name));
  });
}

void makeLive(HWND window, Urgency urgency) {
  VARIANT value{};
  value.vt = VT_I4;
  value.lVal = static_cast<LONG>(urgency);
  withProperties([&](IAccPropServices& services) {
    services.SetHwndProp(window, clientArea, CHILDID_SELF, liveSetting, value);
  });
}

void tellLive(HWND window) {
  if (IsWindowVisible(window))
    NotifyWinEvent(EVENT_OBJECT_LIVEREGIONCHANGED, window, OBJID_CLIENT, CHILDID_SELF);
}

}  // namespace vordane::window::win32
