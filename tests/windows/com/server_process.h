// The test server's program, started and waited for.
#pragma once

#include <windows.h>

#include <string>

#include "platform/windows/com/owned.h"

namespace vordane::test {

std::wstring serverPath();

// Runs the server's program with a switch and returns its exit code; what it printed goes to `printed`.
int runServer(const std::wstring& arguments, std::string* printed = nullptr);

// Whether the process has ended by then.
bool endsWithin(DWORD processId, DWORD milliseconds);
com::Handle openProcess(DWORD processId);

// A host in a process of its own that holds a probe and has it watch for its death; null when it did not
// start.
com::Handle startDyingHost();

// A value of HKEY_CLASSES_ROOT's machine half, in one view; empty when there is none.
std::wstring machineValue(const std::wstring& key, REGSAM view, const wchar_t* name = nullptr);
bool machineKeyExists(const std::wstring& key, REGSAM view);

}  // namespace vordane::test
