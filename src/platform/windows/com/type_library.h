// The type library that the running program carries as resource 1 TYPELIB, if it does.
#pragma once

#include "platform/windows/com/owned.h"

namespace vordane::com {

// The description of an interface or class of that library; null when there is none.
ComPtr<ITypeInfo> typeInfoOf(const GUID& id);

}  // namespace vordane::com
