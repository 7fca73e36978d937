// In a browser's place: adds the page that it is given to a file, and shows nothing.
//
//   page_noter.exe FILE PAGE
#include <windows.h>

#include <shellapi.h>

#include <filesystem>
#include <fstream>
#include <string>

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) {
  int count = 0;
  wchar_t** const values = CommandLineToArgvW(GetCommandLineW(), &count);
  if (values == nullptr || count != 3) return 1;
  std::ofstream out(std::filesystem::path(values[1]), std::ios::binary | std::ios::app);
  const std::u8string page = std::filesystem::path(values[2]).u8string();
  out << std::string(page.begin(), page.end()) << '\n';
  return out.flush() ? 0 : 1;
}
