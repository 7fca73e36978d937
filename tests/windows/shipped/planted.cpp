// Lies beside a program under the name of a system library and tells when it is loaded: the file planted.log
// in the folder C:\ gets its path.
#include <windows.h>

#include <cwchar>

extern "C" BOOL WINAPI DllMain(HINSTANCE self, DWORD reason, void*) {
  if (reason != DLL_PROCESS_ATTACH) return TRUE;
  wchar_t line[1024];
  DWORD length = GetModuleFileNameW(self, line, 1000);
  line[length++] = L'\n';
  const HANDLE log = CreateFileW(L"C:\\planted.log", FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                 nullptr, OPEN_ALWAYS, 0, nullptr);
  DWORD written = 0;
  WriteFile(log, line, length * sizeof *line, &written, nullptr);
  CloseHandle(log);
  return TRUE;
}
