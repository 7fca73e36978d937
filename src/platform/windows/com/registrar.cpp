#include "platform/windows/com/registrar.h"

#include <array>
#include <cstdio>

#include "platform/windows/com/owned.h"
#include "text/utf8.h"

namespace vordane::com {
namespace {

using registration::Entry;
using registration::Removal;
using registration::Server;

constexpr const wchar_t* classesKey = L"Software\\Classes";
// 32-bit and 64-bit programs read classes from views of their own; each must find this server.
constexpr std::array<REGSAM, 2> views{KEY_WOW64_64KEY, KEY_WOW64_32KEY};
const std::array<HKEY, 2> roots{HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER};

std::wstring toWide(std::u16string_view text) {
  return {text.begin(), text.end()};
}

// To wherever whoever started us reads: a file or pipe, or the console of a command prompt.
void print(std::string_view line) {
  HANDLE out = GetStdHandle(STD_OUTPUT_HANDLE);
  if (out == nullptr || out == INVALID_HANDLE_VALUE) {
    AttachConsole(ATTACH_PARENT_PROCESS);
    out = GetStdHandle(STD_OUTPUT_HANDLE);
  }
  const std::string text = std::string(line) + "\r\n";
  DWORD written = 0;
  WriteFile(out, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

// Only a user's own key may have to be made; nothing is made by looking.
RegistryKey openClasses(HKEY root, REGSAM access, bool make) {
  RegistryKey key;
  if (make && root == HKEY_CURRENT_USER)
    RegCreateKeyExW(root, classesKey, 0, nullptr, 0, access, nullptr, key.put(), nullptr);
  else
    RegOpenKeyExW(root, classesKey, 0, access, key.put());
  return key;
}

bool writeEntry(HKEY classes, const Entry& entry, REGSAM view) {
  RegistryKey key;
  if (RegCreateKeyExW(classes, toWide(entry.key).c_str(), 0, nullptr, 0, KEY_WRITE | view, nullptr, key.put(),
                      nullptr) != ERROR_SUCCESS)
    return false;
  const std::wstring value = toWide(entry.value);
  const auto bytes = static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t));
  return RegSetValueExW(key.get(), entry.name.empty() ? nullptr : toWide(entry.name).c_str(), 0, REG_SZ,
                        reinterpret_cast<const BYTE*>(value.c_str()), bytes) == ERROR_SUCCESS;
}

bool writeAll(HKEY root, const Server& server) {
  for (const REGSAM view : views) {
    const RegistryKey classes = openClasses(root, KEY_WRITE | view, true);
    if (!classes) return false;
    for (const Entry& entry : registration::entries(server))
      if (!writeEntry(classes.get(), entry, view)) return false;
  }
  return true;
}

std::u16string readValue(HKEY classes, const Entry& entry, REGSAM view) {
  RegistryKey key;
  if (RegOpenKeyExW(classes, toWide(entry.key).c_str(), 0, KEY_READ | view, key.put()) != ERROR_SUCCESS)
    return {};
  std::array<wchar_t, 4096> buffer{};
  DWORD bytes = sizeof buffer - sizeof(wchar_t);
  const LSTATUS status =
      RegQueryValueExW(key.get(), nullptr, nullptr, nullptr, reinterpret_cast<BYTE*>(buffer.data()), &bytes);
  return status == ERROR_SUCCESS ? std::u16string(fromWide(buffer.data())) : std::u16string{};
}

bool isOurs(HKEY classes, const Removal& removal, REGSAM view) {
  return registration::samePath(readValue(classes, removal.evidence, view), removal.evidence.value);
}

// Deletes the tree; RegDeleteTree takes no view, so the key is opened in its view first.
void deleteTree(HKEY classes, const std::u16string& tree, REGSAM view) {
  RegistryKey key;
  if (RegOpenKeyExW(classes, toWide(tree).c_str(), 0, KEY_ALL_ACCESS | view, key.put()) != ERROR_SUCCESS)
    return;
  RegDeleteTreeW(key.get(), nullptr);
  key.reset();
  RegDeleteKeyExW(classes, toWide(tree).c_str(), view, 0);
}

int removeAll(HKEY root, const Server& server) {
  int removed = 0;
  for (const REGSAM view : views) {
    const RegistryKey classes = openClasses(root, KEY_ALL_ACCESS | view, false);
    if (!classes) continue;
    for (const Removal& removal : registration::removals(server)) {
      if (!isOurs(classes.get(), removal, view)) continue;
      deleteTree(classes.get(), removal.tree, view);
      ++removed;
    }
  }
  return removed;
}

// Lets the type library be found per user by this process; Windows since Vista, not everywhere.
void enablePerUserLibraries() {
  const HMODULE automation = GetModuleHandleW(L"oleaut32.dll");
  if (automation == nullptr) return;
  using Enable = void(WINAPI*)();
  const FARPROC found = GetProcAddress(automation, "OaEnablePerUserTLibRegistration");
  if (found != nullptr) reinterpret_cast<Enable>(reinterpret_cast<void*>(found))();
}

}  // namespace

int registerServer(const Server& server) {
  const std::string path = text::toUtf8(server.path);
  if (writeAll(HKEY_LOCAL_MACHINE, server)) {
    print("Registered for every user: " + path);
    return 0;
  }
  removeAll(HKEY_LOCAL_MACHINE, server);  // what was written before it failed
  enablePerUserLibraries();
  if (writeAll(HKEY_CURRENT_USER, server)) {
    print("Registered for this user only: " + path);
    print(
        "Programs that run with raised rights do not see this; register once as an administrator for them.");
    return 0;
  }
  removeAll(HKEY_CURRENT_USER, server);
  print("Could not be registered: the registry can't be written.");
  return 1;
}

int unregisterServer(const Server& server) {
  enablePerUserLibraries();
  int removed = 0;
  for (const HKEY root : roots) removed += removeAll(root, server);
  const std::string path = text::toUtf8(server.path);
  print(removed > 0 ? "Registration removed: " + path : "Nothing is registered for " + path);
  return 0;
}

}  // namespace vordane::com
