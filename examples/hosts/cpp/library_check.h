// Whether the add-in that is installed still is what a host was compiled against: its type library, as the
// workstation has it registered, beside the header that was written from it.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "early_bound.h"

namespace dispatch {

struct CompiledClass {
  const wchar_t* name;
  GUID iid;
  std::span<const Member> members;
};

// What differs, a line each; empty when the host may go on. Throws Error when the library can't be had.
std::vector<std::wstring> differences(REFGUID libid, std::span<const CompiledClass> classes);

}  // namespace dispatch
