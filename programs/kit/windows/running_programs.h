// The programs that run on this workstation: found by their names and files, and ended.
#pragma once

#include <windows.h>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace vordane::kit {

// Every process that has not ended, by its number and its program's name ("VORDANE.EXE").
std::vector<std::pair<DWORD, std::wstring>> runningPrograms();
// The file that a process runs; empty when it has gone, or is nothing that may be asked.
std::wstring fileOf(DWORD processId);
bool liesBelow(const std::wstring& file, const std::filesystem::path& folder);

// Asks a program to leave its message loop, so that it takes back what it has registered with the system: of
// a server that is ended otherwise the system may go on to believe that it serves. One that has not left
// within `politely` is ended with `code`, and `atMost` waited for that; both in milliseconds. False when it
// had to be ended.
bool endProgram(DWORD processId, DWORD politely, DWORD atMost, UINT code = 1);

}  // namespace vordane::kit
