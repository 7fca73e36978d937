// A host that creates a probe, lends itself to it, says that it is ready and waits to be killed.
#include <windows.h>

#include "platform/windows/com/apartment.h"
#include "platform/windows/com/owned.h"
#include "platform/windows/services/services.h"

namespace {

class Host : public vordane::automation::Object {
 public:
  vordane::automation::Value invoke(std::u16string_view, vordane::automation::CallKind,
                                    std::span<vordane::automation::Argument>) override {
    return vordane::automation::Empty{};
  }
};

}  // namespace

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
  using namespace vordane;
  const com::Apartment apartment;
  const automation::ObjectRef probe = windows::ComObjectCreator().create(u"VordaneProbe.cProbe");
  automation::call(*probe, u"Watch", {automation::byVal(automation::ObjectRef(std::make_shared<Host>()))});
  const com::Handle ready(OpenEventW(EVENT_MODIFY_STATE, FALSE, L"VordaneProbeHostReady"));
  SetEvent(ready.get());
  return com::runMessageLoop();
}
