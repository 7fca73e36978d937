#include "library/layout.h"

#include <windows.h>

#include "places.h"

namespace vordane::suite {
namespace {

Path ownFolder() {
  std::wstring path(4096, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
  return Path(path).parent_path();
}

Path folder(const wchar_t* name, const Path& usual) {
  const std::wstring given = variable(name);
  return std::filesystem::absolute(given.empty() ? usual : Path(given));
}

// This program is built in tests\windows\suite.
Layout findLayout() {
  const std::wstring other = variable(L"VORDANE_SUITE_OTHER_SECTION");
  const Path helpers = ownFolder().parent_path();
  return {folder(L"VORDANE_SUITE_ROOT", L"C:\\QUILMAR32\\30000"),
          folder(L"VORDANE_SUITE_EXCHANGE", L"C:\\SIM"),
          folder(L"VORDANE_SUITE_ELSEWHERE", L"C:\\ELSEWHERE"),
          folder(L"VORDANE_SUITE_PROGRAMS", helpers.parent_path().parent_path() / L"programs"),
          folder(L"VORDANE_SUITE_HELPERS", helpers),
          folder(L"VORDANE_SUITE_SOURCE", test::sourceFolder()),
          other.empty() ? L"31000" : other};
}

}  // namespace

const Layout& layout() {
  static const Layout found = findLayout();
  return found;
}

std::wstring variable(const wchar_t* name) {
  std::wstring value(32768, L'\0');
  value.resize(GetEnvironmentVariableW(name, value.data(), static_cast<DWORD>(value.size())));
  return value;
}

}  // namespace vordane::suite
