// The tests, or one of the programs that they start: this file once more, with what it is to do.
#include <windows.h>

#include <cstdio>
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "child.h"

namespace {

std::wstring ownPath() {
  std::wstring path(4096, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), 4096));
  return path;
}

void signal(const wchar_t* name) {
  SetEvent(CreateEventW(nullptr, TRUE, FALSE, name));
}

int hang() {
  // Held as long as this process lives; it goes with it.
  CreateMutexW(nullptr, TRUE, vordane::kit::heldByChild);
  signal(vordane::kit::childHangs);
  Sleep(INFINITE);
  return 0;
}

// As a server: ends by itself when it is asked to.
int serve() {
  MSG message;
  PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE);
  signal(vordane::kit::childHangs);
  while (GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
  return 7;
}

int startAnother() {
  const HANDLE ready = CreateEventW(nullptr, TRUE, FALSE, vordane::kit::childHangs);
  std::wstring line = L'"' + ownPath() + L"\" --as=hang";
  STARTUPINFOW start{};
  start.cb = sizeof start;
  PROCESS_INFORMATION made{};
  CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &made);
  WaitForSingleObject(ready, INFINITE);
  std::puts("started another");
  return 5;
}

int tellSurroundings() {
  for (const char* name :
       {"VORDANE_SUITE_ROOT", "VORDANE_SUITE_OTHER_SECTION", "VORDANE_SOURCES", "VORDANE_BUILD", "TEMP"}) {
    const char* const value = std::getenv(name);
    std::printf("%s=%s\n", name, value == nullptr ? "" : value);
  }
  wchar_t folder[MAX_PATH];
  GetCurrentDirectoryW(MAX_PATH, folder);
  std::printf("folder=%ls\n", folder);
  return 0;
}

}  // namespace

int main(int count, char** values) {
  const std::string as = count > 1 && std::strncmp(values[1], "--as=", 5) == 0 ? values[1] + 5 : "";
  if (as == "hang") return hang();
  if (as == "serve") return serve();
  if (as == "start") return startAnother();
  if (as == "tell") return tellSurroundings();
  testing::InitGoogleTest(&count, values);
  return RUN_ALL_TESTS();
}
