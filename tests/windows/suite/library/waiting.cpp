#include "library/waiting.h"

#include <windows.h>

#include "library/layout.h"

namespace vordane::suite {
namespace {

constexpr DWORD betweenLooks = 15;  // milliseconds

}  // namespace

unsigned long patience() {
  static const unsigned long wanted = std::wcstoul(variable(L"VORDANE_SUITE_PATIENCE").c_str(), nullptr, 10);
  return wanted == 0 ? 120000 : wanted * 1000;
}

void await(const std::string& what, const std::function<bool()>& come,
           const std::function<void()>& meanwhile) {
  const ULONGLONG end = GetTickCount64() + patience();
  while (!come()) {
    if (meanwhile) meanwhile();
    if (GetTickCount64() > end) throw Failure("waited in vain for " + what);
    Sleep(betweenLooks);
  }
}

}  // namespace vordane::suite
