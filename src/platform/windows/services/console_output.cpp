#include "platform/windows/services/console_output.h"

#include <io.h>
#include <windows.h>

#include <algorithm>
#include <string>

#include "text/utf8.h"

namespace vordane::windows {
namespace {

HANDLE handleOf(std::FILE* file) {
  return reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(file)));
}

}  // namespace

bool isConsole(std::FILE* file) {
  DWORD mode = 0;
  return GetConsoleMode(handleOf(file), &mode) != 0;
}

void writeConsole(std::FILE* file, std::string_view utf8) {
  std::fflush(file);
  const std::u16string text = text::fromUtf8(utf8);
  constexpr std::size_t most = 8000;  // older consoles take no more than 64 KB at once
  for (std::size_t at = 0; at < text.size();) {
    std::size_t count = std::min(most, text.size() - at);
    if (count > 1 && text[at + count - 1] >= 0xD800 && text[at + count - 1] <= 0xDBFF) --count;
    DWORD written = 0;
    if (!WriteConsoleW(handleOf(file), text.data() + at, static_cast<DWORD>(count), &written, nullptr))
      return;
    at += count;
  }
}

void write(std::FILE* file, std::string_view utf8) {
  if (isConsole(file)) return writeConsole(file, utf8);
  std::fwrite(utf8.data(), 1, utf8.size(), file);
  std::fflush(file);
}

}  // namespace vordane::windows
