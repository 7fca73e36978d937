#include "kit/windows/registry.h"

#include <windows.h>
// sddl.h needs windows.h before it.
#include <sddl.h>

#include <stdexcept>

#include "platform/windows/com/owned.h"
#include "text/utf8.h"

namespace vordane::kit {
namespace {

HKEY hiveOf(const RegistryPlace& place) {
  return place.hive == Hive::machine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
}
REGSAM viewOf(const RegistryPlace& place) {
  return place.view == View::words64 ? KEY_WOW64_64KEY : KEY_WOW64_32KEY;
}
std::u16string fromWide(const std::wstring& text) {
  return std::u16string(com::fromWide(text));
}

void check(LSTATUS status, const RegistryPlace& place, const char* deed) {
  if (status == ERROR_SUCCESS) return;
  const std::string why = status == ERROR_ACCESS_DENIED ? "access denied" : "error " + std::to_string(status);
  throw std::runtime_error(nameOf(place) + " can't be " + deed + ": " + why);
}

LSTATUS open(const RegistryPlace& place, REGSAM access, com::RegistryKey& key) {
  return RegOpenKeyExW(hiveOf(place), com::toWide(place.path).c_str(), 0, access | viewOf(place), key.put());
}

com::RegistryKey opened(const RegistryPlace& place, REGSAM access, const char* deed) {
  com::RegistryKey key;
  check(open(place, access, key), place, deed);
  return key;
}

// Who may do what with the key; empty when it can't be had.
std::string rightsOf(HKEY key) {
  std::vector<BYTE> descriptor(4096);
  auto size = static_cast<DWORD>(descriptor.size());
  LPWSTR text = nullptr;
  if (RegGetKeySecurity(key, DACL_SECURITY_INFORMATION, descriptor.data(), &size) != ERROR_SUCCESS ||
      !ConvertSecurityDescriptorToStringSecurityDescriptorW(descriptor.data(), SDDL_REVISION_1,
                                                            DACL_SECURITY_INFORMATION, &text, nullptr))
    return {};
  const com::LocalMemory owned(text);
  return text::toUtf8(com::fromWide(text));
}

void readValues(HKEY key, const RegistryPlace& place, RegistryTree& tree) {
  std::wstring name(16384, L'\0');
  std::vector<std::uint8_t> data(1024);
  for (DWORD i = 0;;) {
    auto length = static_cast<DWORD>(name.size());
    auto size = static_cast<DWORD>(data.size());
    DWORD type = 0;
    const LSTATUS status = RegEnumValueW(key, i, name.data(), &length, nullptr, &type, data.data(), &size);
    if (status == ERROR_NO_MORE_ITEMS) return;
    if (status == ERROR_MORE_DATA) {
      data.resize(2 * data.size() + size);
      continue;
    }
    check(status, place, "read");
    tree.values[fromWide(name.substr(0, length))] = {type, {data.begin(), data.begin() + size}};
    ++i;
  }
}

std::vector<std::u16string> keysOf(HKEY key, const RegistryPlace& place) {
  std::vector<std::u16string> names;
  std::wstring name(256, L'\0');
  for (DWORD i = 0;; ++i) {
    auto length = static_cast<DWORD>(name.size());
    const LSTATUS status = RegEnumKeyExW(key, i, name.data(), &length, nullptr, nullptr, nullptr, nullptr);
    if (status == ERROR_NO_MORE_ITEMS) return names;
    check(status, place, "read");
    names.push_back(fromWide(name.substr(0, length)));
  }
}

RegistryPlace above(const RegistryPlace& place) {
  const std::size_t end = place.path.rfind(u'\\');
  return {place.hive, place.view, end == place.path.npos ? std::u16string{} : place.path.substr(0, end)};
}

}  // namespace

std::optional<RegistryTree> WindowsRegistry::read(const RegistryPlace& place) {
  com::RegistryKey key;
  const LSTATUS status = open(place, KEY_READ, key);
  if (status == ERROR_FILE_NOT_FOUND) return {};
  check(status, place, "read");
  RegistryTree tree;
  tree.rights = rightsOf(key.get());
  readValues(key.get(), place, tree);
  for (const std::u16string& name : keysOf(key.get(), place))
    if (auto below = read({place.hive, place.view, place.path + u'\\' + name}))
      tree.keys[name] = std::move(*below);
  return tree;
}

bool WindowsRegistry::exists(const RegistryPlace& place) {
  com::RegistryKey key;
  return open(place, KEY_READ, key) != ERROR_FILE_NOT_FOUND;
}

// The key is ours to change; where there is none, the nearest one above lets us make it.
void WindowsRegistry::demandRights(const RegistryPlace& place) {
  com::RegistryKey key;
  LSTATUS status = open(place, KEY_READ | KEY_WRITE | DELETE, key);
  for (RegistryPlace at = above(place); status == ERROR_FILE_NOT_FOUND && !at.path.empty(); at = above(at))
    status = open(at, KEY_CREATE_SUB_KEY, key);
  check(status, place, "changed");
}

void WindowsRegistry::makeKey(const RegistryPlace& place, const std::string& rights) {
  com::RegistryKey key;
  check(RegCreateKeyExW(hiveOf(place), com::toWide(place.path).c_str(), 0, nullptr, 0,
                        KEY_ALL_ACCESS | viewOf(place), nullptr, key.put(), nullptr),
        place, "made");
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  if (rights.empty() ||
      !ConvertStringSecurityDescriptorToSecurityDescriptorW(com::toWide(text::fromUtf8(rights)).c_str(),
                                                            SDDL_REVISION_1, &descriptor, nullptr))
    return;
  const com::LocalMemory owned(descriptor);
  check(RegSetKeySecurity(key.get(), DACL_SECURITY_INFORMATION, descriptor), place, "given its rights");
}

void WindowsRegistry::removeKey(const RegistryPlace& place) {
  com::RegistryKey key;
  if (open(place, KEY_ALL_ACCESS, key) == ERROR_FILE_NOT_FOUND) return;
  check(key ? RegDeleteTreeW(key.get(), nullptr) : ERROR_ACCESS_DENIED, place, "emptied");
  key.reset();
  const LSTATUS status = RegDeleteKeyExW(hiveOf(place), com::toWide(place.path).c_str(), viewOf(place), 0);
  if (status != ERROR_FILE_NOT_FOUND) check(status, place, "removed");
}

void WindowsRegistry::write(const RegistryPlace& place, const std::u16string& name,
                            const RegistryValue& value) {
  const com::RegistryKey key = opened(place, KEY_SET_VALUE, "written");
  check(RegSetValueExW(key.get(), com::toWide(name).c_str(), 0, value.type, value.data.data(),
                       static_cast<DWORD>(value.data.size())),
        place, "written");
}

void WindowsRegistry::remove(const RegistryPlace& place, const std::u16string& name) {
  const com::RegistryKey key = opened(place, KEY_SET_VALUE, "written");
  check(RegDeleteValueW(key.get(), com::toWide(name).c_str()), place, "written");
}

}  // namespace vordane::kit
