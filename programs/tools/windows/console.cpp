#include "console.h"

#include <fcntl.h>
#include <io.h>

#include "platform/windows/services/console_output.h"
#include "platform/windows/services/services.h"
#include "text/utf8.h"

namespace vordane::tools {

// The first that the program does on this system.
options::Words programWords(int, char**) {
  windows::loadFromSystemOnly();
  return windows::programWords();
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
