#include "console.h"

#include <fcntl.h>
#include <io.h>
#include <windows.h>
// shellapi.h needs windows.h before it.
#include <shellapi.h>

#include "platform/windows/services/console_output.h"
#include "platform/windows/services/services.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

static_assert(sizeof(wchar_t) == sizeof(char16_t));

std::string utf8(const wchar_t* text) {
  return text::toUtf8(std::u16string(reinterpret_cast<const char16_t*>(text)));
}

}  // namespace

// The arguments that main receives have been forced into the system's code page; the command line has not.
// The first that the program does on this system.
Arguments programArguments(int, char**) {
  windows::loadFromSystemOnly();
  int count = 0;
  LPWSTR* const values = CommandLineToArgvW(GetCommandLineW(), &count);
  Arguments arguments;
  for (int i = 1; values != nullptr && i < count; ++i) arguments.push_back(utf8(values[i]));
  LocalFree(values);
  return arguments;
}

void useBinaryStandardStreams() {
  _setmode(_fileno(stdin), _O_BINARY);
  _setmode(_fileno(stdout), _O_BINARY);
}

bool isTerminal(std::FILE* file) {
  return windows::isConsole(file);
}

void writeTerminal(std::FILE* file, std::string_view utf8) {
  windows::writeConsole(file, utf8);
}

File openForReading(const std::string& path) {
  const std::u16string wide = text::fromUtf8(path);
  return File(_wfopen(reinterpret_cast<const wchar_t*>(wide.c_str()), L"rb"));
}

}  // namespace vordane::tools
