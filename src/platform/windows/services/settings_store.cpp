#include <string>

#include "platform/windows/com/owned.h"
#include "platform/windows/services/services.h"

namespace vordane::windows {
namespace {

std::wstring keyOf(std::u16string_view application, std::u16string_view section) {
  return L"Software\\VB and VBA Program Settings\\" + com::toWide(application) + L"\\" + com::toWide(section);
}

constexpr std::size_t mostTexts = 260;  // paths and shorter; longer ones take a second question

// The value's text without the closing zero that most writers, not all, store with it.
std::u16string textOf(const std::wstring& buffer, DWORD bytes) {
  std::u16string text(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(bytes / sizeof(wchar_t)));
  if (!text.empty() && text.back() == u'\0') text.pop_back();
  return text;
}

}  // namespace

std::optional<std::u16string> RegistrySettings::read(std::u16string_view application,
                                                     std::u16string_view section, std::u16string_view key) {
  com::RegistryKey opened;
  if (RegOpenKeyExW(root_, keyOf(application, section).c_str(), 0, KEY_READ | KEY_WOW64_64KEY,
                    opened.put()) != ERROR_SUCCESS)
    return {};
  const std::wstring name = com::toWide(key);
  std::wstring buffer(mostTexts, L'\0');
  for (;;) {
    DWORD type = 0;
    DWORD bytes = static_cast<DWORD>(buffer.size() * sizeof(wchar_t));
    const LSTATUS result = RegQueryValueExW(opened.get(), name.c_str(), nullptr, &type,
                                            reinterpret_cast<BYTE*>(buffer.data()), &bytes);
    if (result == ERROR_MORE_DATA && bytes / sizeof(wchar_t) >= buffer.size()) {
      buffer.resize(bytes / sizeof(wchar_t) + 1);
      continue;
    }
    if (result != ERROR_SUCCESS || type != REG_SZ) return {};
    return textOf(buffer, bytes);
  }
}

void RegistrySettings::write(std::u16string_view application, std::u16string_view section,
                             std::u16string_view key, std::u16string_view value) {
  com::RegistryKey opened;
  if (RegCreateKeyExW(root_, keyOf(application, section).c_str(), 0, nullptr, 0, KEY_WRITE | KEY_WOW64_64KEY,
                      nullptr, opened.put(), nullptr) != ERROR_SUCCESS)
    return;
  const std::wstring text = com::toWide(value);
  RegSetValueExW(opened.get(), com::toWide(key).c_str(), 0, REG_SZ,
                 reinterpret_cast<const BYTE*>(text.c_str()),
                 static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
}

}  // namespace vordane::windows
