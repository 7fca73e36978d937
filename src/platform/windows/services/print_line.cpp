#include <string>

#include "platform/windows/com/owned.h"
#include "platform/windows/services/services.h"
#include "text/utf8.h"

namespace vordane::windows {
namespace {

bool isConsole(HANDLE out) {
  DWORD mode = 0;
  return GetConsoleMode(out, &mode) != FALSE;
}

// The console of the prompt that a program without one of its own was started from. The prompt does not wait
// for such a program: its own next line stands there already, so that ours begins below it.
HANDLE startersConsole() {
  static const com::File console = [] {
    // It may be this program's already: not every system takes it away from a program with windows.
    if (!AttachConsole(ATTACH_PARENT_PROCESS) && GetLastError() != ERROR_ACCESS_DENIED) return com::File();
    com::File out(CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                              nullptr, OPEN_EXISTING, 0, nullptr));
    DWORD written = 0;
    if (out) WriteConsoleW(out.get(), L"\r\n", 2, &written, nullptr);
    return out;
  }();
  return console.get();
}

void print(HANDLE out, std::u16string_view line) {
  if (out == nullptr || out == INVALID_HANDLE_VALUE) out = startersConsole();
  const std::u16string whole = std::u16string(line) + u"\r\n";
  DWORD written = 0;
  if (isConsole(out)) {
    WriteConsoleW(out, com::wide(whole.c_str()), static_cast<DWORD>(whole.size()), &written, nullptr);
    return;
  }
  const std::string bytes = text::toUtf8(whole);
  WriteFile(out, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
}

}  // namespace

void printLine(std::u16string_view line) {
  print(GetStdHandle(STD_OUTPUT_HANDLE), line);
}

void printMistake(std::u16string_view line) {
  print(GetStdHandle(STD_ERROR_HANDLE), line);
}

}  // namespace vordane::windows
