// Keeps the interfaces that other programs call registered with the call layer for as long as the apartment
// lives. Where the call layer takes an interface's registration back with its last stub (Wine does), it waits
// there for calls that have just ended, and now and then misses the end of one: the process then hangs in the
// middle of a creation or a release. With a stub of our own for each of them none is ever the last.
#pragma once

#include <objidl.h>

#include <vector>

#include "platform/windows/com/owned.h"

namespace vordane::com {

// Made and destroyed on the apartment's thread, inside CoInitializeEx and CoUninitialize. One that can't be
// marshalled is left out.
class KeptInterfaces {
 public:
  KeptInterfaces();
  ~KeptInterfaces();
  KeptInterfaces(const KeptInterfaces&) = delete;
  KeptInterfaces& operator=(const KeptInterfaces&) = delete;

 private:
  std::vector<ComPtr<IStream>> marshalled_;
};

}  // namespace vordane::com
