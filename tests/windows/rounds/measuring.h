// What a process holds, seen from outside.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "platform/windows/com/owned.h"

namespace vordane::test {

struct Holding {
  DWORD handles = 0;
  SIZE_T privateBytes = 0;
};

// Zeros when the process is gone.
Holding holdingOf(HANDLE process);

// The processes that run `program` ("VORDANE.EXE", any case), by their numbers.
std::vector<DWORD> processesOf(const std::wstring& program);

com::Handle openProcess(DWORD processId);
// True when it has ended within that time, serving this thread's messages meanwhile.
bool endsWithin(HANDLE process, int milliseconds);

}  // namespace vordane::test
