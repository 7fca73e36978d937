#include "platform/windows/com/registrar.h"

#include <array>
#include <set>

#include "platform/windows/com/accounts.h"
#include "platform/windows/com/event_source.h"
#include "platform/windows/com/owned.h"
#include "platform/windows/com/permissions.h"
#include "platform/windows/com/system_function.h"

namespace vordane::com {
namespace {

using registration::Entry;
using registration::Removal;
using registration::Server;

constexpr const wchar_t* classesKey = L"Software\\Classes";
// 32-bit and 64-bit programs read classes from views of their own; each must find this server.
constexpr std::array<REGSAM, 2> views{KEY_WOW64_64KEY, KEY_WOW64_32KEY};
const std::array<HKEY, 2> roots{HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER};

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

// Of any program that has ever served these classes.
bool isAnyones(HKEY classes, const Removal& removal, REGSAM view) {
  return !readValue(classes, removal.evidence, view).empty();
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

using Condition = bool (*)(HKEY classes, const Removal& removal, REGSAM view);

int removeAll(HKEY root, const Server& server, Condition condition = isOurs) {
  int removed = 0;
  for (const REGSAM view : views) {
    const RegistryKey classes = openClasses(root, KEY_ALL_ACCESS | view, false);
    if (!classes) continue;
    for (const Removal& removal : registration::removals(server)) {
      if (!condition(classes.get(), removal, view)) continue;
      deleteTree(classes.get(), removal.tree, view);
      ++removed;
    }
  }
  return removed;
}

// Lets the type library be found per user by this process; Windows since Vista, not everywhere.
void enablePerUserLibraries() {
  using Enable = void(WINAPI*)();
  const auto enable = systemFunction<Enable>(L"oleaut32.dll", "OaEnablePerUserTLibRegistration");
  if (enable != nullptr) enable();
}

// --- registrations of users, which go before the machine's

// The program that one user's part names for these classes; empty: none.
std::u16string programIn(HKEY classes, const Server& server, REGSAM view) {
  const Entry command{u"CLSID\\" + server.classes.front().clsid + u"\\LocalServer32", {}, {}};
  return readValue(classes, command, view);
}

void removeOwnUsers(const Server& server, RegistrarAnswer& answer) {
  std::set<std::u16string> programs;
  for (const REGSAM view : views) {
    const RegistryKey classes = openClasses(HKEY_CURRENT_USER, KEY_READ | view, false);
    const std::u16string program = classes ? programIn(classes.get(), server, view) : std::u16string{};
    if (!program.empty()) programs.insert(program);
  }
  enablePerUserLibraries();
  if (removeAll(HKEY_CURRENT_USER, server, isAnyones) == 0) return;
  for (const std::u16string& program : programs)
    answer.lines.push_back(u"The registration of this user alone, which would go first, was removed: " +
                           program);
}

// The identifiers of the users whose part of the registry is there: those that are logged on, and services.
std::vector<std::wstring> loadedUsers() {
  std::vector<std::wstring> users;
  std::array<wchar_t, 256> name{};
  for (DWORD i = 0;; ++i) {
    DWORD length = name.size();
    if (RegEnumKeyExW(HKEY_USERS, i, name.data(), &length, nullptr, nullptr, nullptr, nullptr) !=
        ERROR_SUCCESS)
      return users;
    users.emplace_back(name.data(), length);
  }
}

void warnOfOthers(const Server& server, RegistrarAnswer& answer) {
  const Sid own = ownAccount();
  for (const std::wstring& user : loadedUsers()) {
    Sid account =
        accountOf(user);  // empty for a user's classes, which stand beside him too, and for .DEFAULT
    if (account.empty() || account == own) continue;
    std::u16string program;
    for (const REGSAM view : views) {
      RegistryKey classes;
      RegOpenKeyExW(HKEY_USERS, (user + L"\\" + classesKey).c_str(), 0, KEY_READ | view, classes.put());
      if (classes && program.empty()) program = programIn(classes.get(), server, view);
    }
    if (program.empty()) continue;
    const std::u16string name = nameOf(account.data());
    answer.lines.push_back(u"Warning: the account " + (name.empty() ? std::u16string(fromWide(user)) : name) +
                           u" has a registration of its own, which goes first for it: " + program);
  }
}

// --- the account of unattended jobs

bool writeLaunchPermission(const Server& server, const Rights& rights) {
  for (const REGSAM view : views) {
    const RegistryKey classes = openClasses(HKEY_LOCAL_MACHINE, KEY_WRITE | view, false);
    RegistryKey key;
    if (RegOpenKeyExW(classes.get(), toWide(registration::applicationKey(server)).c_str(), 0,
                      KEY_WRITE | view, key.put()) != ERROR_SUCCESS ||
        RegSetValueExW(key.get(), L"LaunchPermission", 0, REG_BINARY, rights.data(),
                       static_cast<DWORD>(rights.size())) != ERROR_SUCCESS)
      return false;
  }
  return true;
}

RegistrarAnswer refusal(std::u16string line) {
  return {1, {std::move(line)}, false};
}

RegistrarAnswer registerForEverybody(const Server& server, const registration::Request& request,
                                     const Rights& launch) {
  RegistrarAnswer answer{0, {u"Registered for every user: " + server.path}, true};
  if (!launch.empty() && !writeLaunchPermission(server, launch))
    return refusal(u"Registered for every user, but the launch permission can't be written: " + server.path);
  if (!launch.empty())
    answer.lines.push_back(u"Jobs of " + request.jobAccount + u" may start it while nobody is logged on.");
  if (!writeEventSource(server))
    answer.lines.push_back(u"Warning: entries in the event log will have no text: the source " +
                           server.eventSource + u" can't be written.");
  removeOwnUsers(server, answer);
  warnOfOthers(server, answer);
  return answer;
}

RegistrarAnswer registerForUser(const Server& server) {
  enablePerUserLibraries();
  if (writeAll(HKEY_CURRENT_USER, server))
    return {0,
            {u"Registered for this user only: " + server.path,
             u"Programs that run with raised rights do not see this; register once as an administrator for "
             u"them."},
            false};
  removeAll(HKEY_CURRENT_USER, server);
  return refusal(u"Could not be registered: the registry can't be written.");
}

}  // namespace

RegistrarAnswer registerServer(const Server& server, const registration::Request& request) {
  Rights launch;
  if (!request.jobAccount.empty()) {
    const Sid account = accountNamed(request.jobAccount);
    if (account.empty()) return refusal(u"Not registered: there is no account " + request.jobAccount);
    if (isAnybody(account))
      return refusal(u"Not registered: " + request.jobAccount +
                     u" stands for anybody; name the jobs' own account.");
    launch = launchPermission(account);
  }
  if (request.thisUser) return registerForUser(server);
  if (writeAll(HKEY_LOCAL_MACHINE, server)) return registerForEverybody(server, request, launch);
  removeAll(HKEY_LOCAL_MACHINE, server);  // what was written before it failed
  if (!launch.empty())
    return refusal(u"Not registered: to name a job account takes an administrator's rights.");
  return registerForUser(server);
}

RegistrarAnswer unregisterServer(const Server& server) {
  enablePerUserLibraries();
  int removed = 0;
  for (const HKEY root : roots) removed += removeAll(root, server);
  if (removeEventSource(server)) ++removed;
  return {
      0,
      {removed > 0 ? u"Registration removed: " + server.path : u"Nothing is registered for " + server.path},
      false};
}

}  // namespace vordane::com
