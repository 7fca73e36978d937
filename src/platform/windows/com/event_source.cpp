#include "platform/windows/com/event_source.h"

#include <array>

#include "platform/windows/com/owned.h"

namespace vordane::com {
namespace {

constexpr const wchar_t* messageFileName = L"EventMessageFile";

// In the usual type a % would begin a name of the environment.
bool writePath(HKEY key, const std::wstring& path) {
  const DWORD type = path.find(L'%') == path.npos ? REG_EXPAND_SZ : REG_SZ;
  return RegSetValueExW(key, messageFileName, 0, type, reinterpret_cast<const BYTE*>(path.c_str()),
                        static_cast<DWORD>((path.size() + 1) * sizeof(wchar_t))) == ERROR_SUCCESS;
}

bool writeTypes(HKEY key, std::uint32_t types) {
  const DWORD number = types;
  return RegSetValueExW(key, L"TypesSupported", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number),
                        sizeof number) == ERROR_SUCCESS;
}

std::u16string messageFileIn(const std::wstring& place) {
  RegistryKey key;
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, place.c_str(), 0, KEY_READ, key.put()) != ERROR_SUCCESS) return {};
  std::array<wchar_t, 4096> path{};
  DWORD bytes = sizeof path - sizeof(wchar_t);
  if (RegQueryValueExW(key.get(), messageFileName, nullptr, nullptr, reinterpret_cast<BYTE*>(path.data()),
                       &bytes) != ERROR_SUCCESS)
    return {};
  return std::u16string(fromWide(path.data()));
}

}  // namespace

bool writeEventSource(const registration::Server& server) {
  const auto source = registration::eventSource(server);
  if (!source) return true;
  RegistryKey key;
  return RegCreateKeyExW(HKEY_LOCAL_MACHINE, toWide(source->key).c_str(), 0, nullptr, 0, KEY_WRITE, nullptr,
                         key.put(), nullptr) == ERROR_SUCCESS &&
         writePath(key.get(), toWide(source->messageFile)) && writeTypes(key.get(), source->types);
}

bool removeEventSource(const registration::Server& server) {
  const auto source = registration::eventSource(server);
  if (!source) return false;
  const std::wstring place = toWide(source->key);
  return registration::samePath(messageFileIn(place), source->messageFile) &&
         RegDeleteTreeW(HKEY_LOCAL_MACHINE, place.c_str()) == ERROR_SUCCESS;
}

}  // namespace vordane::com
