#include "library/settings.h"

#include <windows.h>

#include "platform/windows/com/owned.h"

namespace vordane::suite {
namespace {

const std::wstring programs = L"Software\\VB and VBA Program Settings\\";
const std::wstring windows = programs + L"VORDANE", kept = programs + L"VORDANE before the tests";

std::wstring keyOf(const std::wstring& version) {
  return programs + L"QUILMAR32\\" + version;
}

void copyKey(const std::wstring& from, const std::wstring& to) {
  com::RegistryKey source, target;
  if (RegOpenKeyExW(HKEY_CURRENT_USER, from.c_str(), 0, KEY_READ, source.put()) != ERROR_SUCCESS) return;
  RegCreateKeyExW(HKEY_CURRENT_USER, to.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, target.put(),
                  nullptr);
  RegCopyTreeW(source.get(), nullptr, target.get());
}

}  // namespace

void setSetting(const std::wstring& version, const std::wstring& name, const std::wstring& value) {
  com::RegistryKey key;
  RegCreateKeyExW(HKEY_CURRENT_USER, keyOf(version).c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, key.put(),
                  nullptr);
  RegSetValueExW(key.get(), name.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                 static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
}

void removeSetting(const std::wstring& version, const std::wstring& name) {
  RegDeleteKeyValueW(HKEY_CURRENT_USER, keyOf(version).c_str(), name.c_str());
}

void removeSettings(const std::wstring& version) {
  RegDeleteTreeW(HKEY_CURRENT_USER, keyOf(version).c_str());
}

WindowSettingsKept::WindowSettingsKept() {
  copyKey(windows, kept);
}

WindowSettingsKept::~WindowSettingsKept() {
  forget();
  copyKey(kept, windows);
  RegDeleteTreeW(HKEY_CURRENT_USER, kept.c_str());
}

void WindowSettingsKept::forget() {
  RegDeleteTreeW(HKEY_CURRENT_USER, windows.c_str());
}

}  // namespace vordane::suite
