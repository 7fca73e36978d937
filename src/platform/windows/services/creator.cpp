#include <string>

#include "platform/windows/com/objects.h"
#include "platform/windows/services/services.h"

namespace vordane::windows {

automation::ObjectRef ComObjectCreator::create(std::u16string_view progId) {
  const std::wstring name(progId.begin(), progId.end());
  CLSID clsid;
  HRESULT result = CLSIDFromProgID(name.c_str(), &clsid);
  if (FAILED(result)) throw automation::AutomationError(result);
  com::ComPtr<IDispatch> object;
  result = CoCreateInstance(clsid, nullptr, CLSCTX_LOCAL_SERVER | CLSCTX_INPROC_SERVER, IID_IDispatch,
                            object.putVoid());
  if (FAILED(result)) throw automation::AutomationError(result);
  return com::importObject(object.get());
}

}  // namespace vordane::windows
