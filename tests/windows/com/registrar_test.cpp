// What /RegServer leaves in the registry, and what /UnregServer takes away.
#include <gtest/gtest.h>

#include <windows.h>
// sddl.h needs windows.h before it.
#include <sddl.h>

#include <array>
#include <string>
#include <vector>

#include "platform/windows/com/registrar.h"
#include "platform/windows/services/services.h"
#include "probe_library.h"
#include "server_process.h"
#include "text/utf8.h"

namespace vordane::test {
namespace {

constexpr REGSAM views[] = {KEY_WOW64_64KEY, KEY_WOW64_32KEY};
std::wstring wide(std::string_view text) {
  return {text.begin(), text.end()};
}
std::wstring clsidKey() {
  return L"CLSID\\" + wide(probeTable().clsid);
}

std::wstring applicationKey() {
  return L"AppID\\" + wide(probeTable().clsid);
}

TEST(Registrar, WritesBothViewsWithTheQuotedPath) {
  ASSERT_EQ(runServer(L"/RegServer"), 0);
  for (const REGSAM view : views) {
    EXPECT_EQ(machineValue(clsidKey() + L"\\LocalServer32", view), L"\"" + serverPath() + L"\"");
    EXPECT_EQ(machineValue(clsidKey() + L"\\ProgID", view), L"VordaneProbe.cProbe");
    EXPECT_EQ(machineValue(L"VordaneProbe.cBag\\CLSID", view), wide(bagTable().clsid));
    EXPECT_EQ(machineValue(L"Interface\\" + wide(probeTable().iid) + L"\\TypeLib", view, L"Version"), L"1.0");
    EXPECT_EQ(machineValue(L"CLSID\\" + wide(bagTable().clsid), view, L"AppID"), wide(probeTable().clsid));
    EXPECT_EQ(machineValue(applicationKey(), view), L"Does what a test asks.");
    EXPECT_EQ(machineValue(L"AppID\\probeserver.exe", view, L"AppID"), wide(probeTable().clsid));
    const std::wstring library = L"TypeLib\\" + wide(probeLibrary().libid) + L"\\1.0";
    EXPECT_EQ(machineValue(library, view), L"What the tests call.");
    EXPECT_EQ(machineValue(library + L"\\0\\win32", view), serverPath());
    EXPECT_EQ(machineValue(library + L"\\0\\win64", view), serverPath());
  }
  EXPECT_EQ(runServer(L"-unregserver"), 0);
}

// All that a registration writes, below the classes of the machine or of a user.
std::vector<std::wstring> registeredKeys() {
  return {clsidKey(),
          L"CLSID\\" + wide(bagTable().clsid),
          L"VordaneProbe.cProbe",
          L"VordaneProbe.cBag",
          L"Interface\\" + wide(probeTable().iid),
          L"Interface\\" + wide(bagTable().iid),
          L"TypeLib\\" + wide(probeLibrary().libid),
          applicationKey(),
          L"AppID\\probeserver.exe"};
}

TEST(Registrar, LeavesNothingBehind) {
  ASSERT_EQ(runServer(L"-RegServer"), 0);
  std::string printed;
  ASSERT_EQ(runServer(L"/UnregServer", &printed), 0);
  EXPECT_EQ(printed.substr(0, 20), "Registration removed");
  for (const REGSAM view : views)
    for (const std::wstring& key : registeredKeys())
      EXPECT_FALSE(machineKeyExists(key, view)) << std::string(key.begin(), key.end());
  ASSERT_EQ(runServer(L"/UnregServer", &printed), 0);
  EXPECT_EQ(printed.substr(0, 21), "Nothing is registered");
}

// Another installation registered after this one: the classes are its own now.
TEST(Registrar, LeavesWhatAnotherPathOwns) {
  ASSERT_EQ(runServer(L"/RegServer"), 0);
  registration::Server other;
  other.path = u"C:\\Elsewhere\\probeserver.exe";
  const auto narrow = [](std::string_view text) { return std::u16string(text.begin(), text.end()); };
  for (const automation::ClassTable* table : probeLibrary().classes)
    other.classes.push_back(
        {std::u16string(table->progId), narrow(table->clsid), u"other", u"_x", narrow(table->iid)});
  other.library = {narrow(probeLibrary().libid), u"1.0", u"other"};
  ASSERT_EQ(com::registerServer(other).exitCode, 0);
  ASSERT_EQ(runServer(L"/UnregServer"), 0);
  EXPECT_EQ(machineValue(clsidKey() + L"\\LocalServer32", views[0]), L"\"C:\\Elsewhere\\probeserver.exe\"");
  EXPECT_TRUE(machineKeyExists(L"TypeLib\\" + wide(probeLibrary().libid), views[0]));
  EXPECT_TRUE(machineKeyExists(L"VordaneProbe.cProbe", views[0]));
  EXPECT_EQ(com::unregisterServer(other).exitCode, 0);
  EXPECT_FALSE(machineKeyExists(clsidKey(), views[0]));
}

// --- the source of its entries in the event log

constexpr const wchar_t* sources = L"SYSTEM\\CurrentControlSet\\Services\\EventLog\\Application";

struct SourceFound {
  std::wstring messageFile;  // empty: there is no such source
  DWORD types = 0;
};

SourceFound eventSource() {
  SourceFound found;
  const std::wstring key = std::wstring(sources) + L"\\VordaneProbe";
  std::array<wchar_t, 1024> path{};
  DWORD bytes = sizeof path - sizeof(wchar_t);
  if (RegGetValueW(HKEY_LOCAL_MACHINE, key.c_str(), L"EventMessageFile",
                   RRF_RT_REG_SZ | RRF_RT_REG_EXPAND_SZ | RRF_NOEXPAND, nullptr, path.data(),
                   &bytes) == ERROR_SUCCESS)
    found.messageFile = path.data();
  bytes = sizeof found.types;
  RegGetValueW(HKEY_LOCAL_MACHINE, key.c_str(), L"TypesSupported", RRF_RT_REG_DWORD, nullptr, &found.types,
               &bytes);
  return found;
}

bool sourceExists() {
  com::RegistryKey key;
  return RegOpenKeyExW(HKEY_LOCAL_MACHINE, (std::wstring(sources) + L"\\VordaneProbe").c_str(), 0, KEY_READ,
                       key.put()) == ERROR_SUCCESS;
}

TEST(Registrar, WritesTheSourceOfTheEventLogAndTakesItAway) {
  ASSERT_EQ(runServer(L"/RegServer"), 0);
  EXPECT_EQ(eventSource().messageFile, serverPath());
  EXPECT_EQ(eventSource().types, 3U);
  ASSERT_EQ(runServer(L"/UnregServer"), 0);
  EXPECT_FALSE(sourceExists());
}

TEST(Registrar, LeavesTheSourceThatAnotherPathOwns) {
  ASSERT_EQ(runServer(L"/RegServer"), 0);
  registration::Server other = registration::serverOf(u"C:\\Elsewhere\\probeserver.exe", probeLibrary());
  other.eventSource = u"VordaneProbe";
  ASSERT_EQ(com::registerServer(other).exitCode, 0);
  ASSERT_EQ(runServer(L"/UnregServer"), 0);
  EXPECT_EQ(eventSource().messageFile, L"C:\\Elsewhere\\probeserver.exe");
  EXPECT_EQ(com::unregisterServer(other).exitCode, 0);
  EXPECT_FALSE(sourceExists());
}

// --- for one user

com::RegistryKey classesOf(HKEY root, REGSAM access) {
  com::RegistryKey key;
  RegOpenKeyExW(root, L"Software\\Classes", 0, access, key.put());
  return key;
}

bool userKeyExists(const std::wstring& key, REGSAM view) {
  const com::RegistryKey classes = classesOf(HKEY_CURRENT_USER, KEY_READ | view);
  com::RegistryKey found;
  return RegOpenKeyExW(classes.get(), key.c_str(), 0, KEY_READ | view, found.put()) == ERROR_SUCCESS;
}

std::wstring userValue(const std::wstring& key, REGSAM view) {
  const com::RegistryKey classes = classesOf(HKEY_CURRENT_USER, KEY_READ | view);
  com::RegistryKey found;
  std::array<wchar_t, 1024> buffer{};
  DWORD bytes = sizeof buffer - sizeof(wchar_t);
  if (RegOpenKeyExW(classes.get(), key.c_str(), 0, KEY_READ | view, found.put()) != ERROR_SUCCESS) return {};
  RegQueryValueExW(found.get(), nullptr, nullptr, nullptr, reinterpret_cast<BYTE*>(buffer.data()), &bytes);
  return buffer.data();
}

// Lets nobody write the machine's classes, as for a user without an administrator's rights.
class MachineClosed {
 public:
  MachineClosed() { set(L"D:P(A;CI;KR;;;WD)(A;CI;WDRC;;;WD)"); }
  ~MachineClosed() { set(L"D:P(A;CI;KA;;;WD)"); }
  MachineClosed(const MachineClosed&) = delete;
  MachineClosed& operator=(const MachineClosed&) = delete;

 private:
  static void set(const wchar_t* rights) {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    ASSERT_TRUE(
        ConvertStringSecurityDescriptorToSecurityDescriptorW(rights, SDDL_REVISION_1, &descriptor, nullptr));
    for (const REGSAM view : views) {
      const com::RegistryKey classes = classesOf(HKEY_LOCAL_MACHINE, WRITE_DAC | view);
      EXPECT_EQ(RegSetKeySecurity(classes.get(), DACL_SECURITY_INFORMATION, descriptor), ERROR_SUCCESS);
    }
    LocalFree(descriptor);
  }
};

// What Windows does by itself: the user's classes stand above the machine's. Wine reads the machine's alone.
class MergedClass {
 public:
  explicit MergedClass(const std::wstring& key) : key_(key) {
    const com::RegistryKey classes = classesOf(HKEY_LOCAL_MACHINE, KEY_ALL_ACCESS | KEY_WOW64_64KEY);
    copy(key, classes.get());
  }
  ~MergedClass() {
    const com::RegistryKey classes = classesOf(HKEY_LOCAL_MACHINE, KEY_ALL_ACCESS | KEY_WOW64_64KEY);
    RegDeleteTreeW(classes.get(), key_.c_str());
  }
  MergedClass(const MergedClass&) = delete;
  MergedClass& operator=(const MergedClass&) = delete;

 private:
  static void copy(const std::wstring& key, HKEY to) {
    const com::RegistryKey from = classesOf(HKEY_CURRENT_USER, KEY_READ | KEY_WOW64_64KEY);
    com::RegistryKey source;
    com::RegistryKey target;
    RegOpenKeyExW(from.get(), key.c_str(), 0, KEY_READ, source.put());
    RegCreateKeyExW(to, key.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, target.put(), nullptr);
    EXPECT_EQ(RegCopyTreeW(source.get(), nullptr, target.get()), ERROR_SUCCESS);
  }

  std::wstring key_;
};

registration::Server thisServer() {
  registration::Server server =
      registration::serverOf(std::u16string(com::fromWide(serverPath())), probeLibrary());
  server.eventSource = u"VordaneProbe";
  return server;
}

bool says(const com::RegistrarAnswer& answer, std::u16string_view words) {
  for (const std::u16string& line : answer.lines)
    if (line.find(words) != line.npos) return true;
  return false;
}

TEST(Registrar, ServesOneUserAloneWhereItIsAskedTo) {
  std::string printed;
  ASSERT_EQ(runServer(L"/RegServer /ThisUser", &printed), 0);
  EXPECT_EQ(printed.substr(0, 29), "Registered for this user only");
  for (const REGSAM view : views) {
    EXPECT_FALSE(machineKeyExists(clsidKey(), view));
    EXPECT_EQ(userValue(clsidKey() + L"\\LocalServer32", view), L"\"" + serverPath() + L"\"");
  }
  EXPECT_FALSE(sourceExists());
  ASSERT_EQ(runServer(L"/UnregServer", &printed), 0);
  for (const REGSAM view : views) EXPECT_FALSE(userKeyExists(clsidKey(), view));
}

TEST(Registrar, ServesOneUserWhereTheMachineCantBeWritten) {
  std::string printed;
  {
    const MachineClosed closed;
    ASSERT_EQ(runServer(L"/RegServer", &printed), 0);
  }
  EXPECT_EQ(printed.substr(0, 29), "Registered for this user only");
  EXPECT_NE(printed.find("Programs that run with raised rights"), std::string::npos);
  EXPECT_EQ(printed.find("event log"), std::string::npos);
  EXPECT_FALSE(sourceExists());
  for (const REGSAM view : views) {
    EXPECT_FALSE(machineKeyExists(clsidKey(), view)) << "half of it stands with the machine's classes";
    EXPECT_EQ(userValue(clsidKey() + L"\\LocalServer32", view), L"\"" + serverPath() + L"\"");
    EXPECT_EQ(userValue(L"VordaneProbe.cBag\\CLSID", view), wide(bagTable().clsid));
    EXPECT_EQ(userValue(L"TypeLib\\" + wide(probeLibrary().libid) + L"\\1.0\\0\\win32", view), serverPath());
  }
  {
    const MergedClass progId(L"VordaneProbe.cBag");
    const MergedClass bag(L"CLSID\\" + wide(bagTable().clsid));
    const automation::ObjectRef object = windows::ComObjectCreator().create(u"VordaneProbe.cBag");
    automation::call(*object, u"Put", {automation::byVal(std::u16string(u"here"))});
    EXPECT_EQ(automation::toInteger(automation::get(*object, u"Count")), 1);
  }
  ASSERT_EQ(runServer(L"/UnregServer", &printed), 0);
  EXPECT_EQ(printed.substr(0, 20), "Registration removed");
  for (const REGSAM view : views)
    for (const std::wstring& key : registeredKeys())
      EXPECT_FALSE(userKeyExists(key, view)) << std::string(key.begin(), key.end());
}

// A user's registration goes before the machine's: an older one of the same classes would win.
TEST(Registrar, ARegistrationForEverybodyTakesThisUsersOwnAway) {
  registration::Server older = thisServer();
  older.path = u"C:\\Older\\probeserver.exe";
  {
    const MachineClosed closed;
    const com::RegistrarAnswer answer = com::registerServer(older);
    ASSERT_EQ(answer.exitCode, 0);
    EXPECT_FALSE(answer.forEverybody);
  }
  for (const REGSAM view : views)
    ASSERT_EQ(userValue(clsidKey() + L"\\LocalServer32", view), L"\"C:\\Older\\probeserver.exe\"");
  const com::RegistrarAnswer answer = com::registerServer(thisServer());
  EXPECT_EQ(answer.exitCode, 0);
  EXPECT_TRUE(answer.forEverybody);
  EXPECT_TRUE(
      says(answer, u"of this user alone, which would go first, was removed: \"C:\\Older\\probeserver.exe\""));
  for (const REGSAM view : views) {
    for (const std::wstring& key : registeredKeys())
      EXPECT_FALSE(userKeyExists(key, view)) << std::string(key.begin(), key.end());
    EXPECT_EQ(machineValue(clsidKey() + L"\\LocalServer32", view), L"\"" + serverPath() + L"\"");
  }
  EXPECT_FALSE(says(com::registerServer(thisServer()), u"was removed")) << "nothing was left to remove";
  com::unregisterServer(thisServer());
}

TEST(Registrar, RegistersForEverybodyAlsoWhereTheSourceCantBeWritten) {
  registration::Server server = thisServer();
  server.eventSource = std::u16string(300, u'x');  // no key of the registry has such a name
  const com::RegistrarAnswer answer = com::registerServer(server);
  EXPECT_EQ(answer.exitCode, 0);
  EXPECT_TRUE(answer.forEverybody);
  EXPECT_TRUE(says(answer, u"entries in the event log will have no text: the source xxx"));
  for (const REGSAM view : views)
    EXPECT_EQ(machineValue(clsidKey() + L"\\LocalServer32", view), L"\"" + serverPath() + L"\"");
  com::unregisterServer(server);
}

// A part of the registry as that of another user who is logged on.
class OtherUser {
 public:
  OtherUser() {
    com::RegistryKey key;
    RegCreateKeyExW(HKEY_USERS, (name + L"\\Software\\Classes\\" + clsidKey() + L"\\LocalServer32").c_str(),
                    0, nullptr, 0, KEY_WRITE | KEY_WOW64_64KEY, nullptr, key.put(), nullptr);
    const std::wstring command = L"\"C:\\Hers\\probeserver.exe\"";
    RegSetValueExW(key.get(), nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(command.c_str()),
                   static_cast<DWORD>(2 * command.size() + 2));
  }
  ~OtherUser() { RegDeleteTreeW(HKEY_USERS, name.c_str()); }
  OtherUser(const OtherUser&) = delete;
  OtherUser& operator=(const OtherUser&) = delete;
  bool kept() const {
    com::RegistryKey key;
    return RegOpenKeyExW(HKEY_USERS, (name + L"\\Software\\Classes\\" + clsidKey()).c_str(), 0,
                         KEY_READ | KEY_WOW64_64KEY, key.put()) == ERROR_SUCCESS;
  }

  const std::wstring name = L"S-1-5-21-11-22-33-1044";
};

TEST(Registrar, WarnsOfOtherUsersRegistrationsAndLeavesThem) {
  const OtherUser ann;
  const com::RegistrarAnswer answer = com::registerServer(thisServer());
  EXPECT_EQ(answer.exitCode, 0);
  EXPECT_TRUE(
      says(answer,
           u"Warning: the account S-1-5-21-11-22-33-1044 has a registration of its own, which goes first "
           u"for it: \"C:\\Hers\\probeserver.exe\""));
  EXPECT_TRUE(ann.kept());
  com::unregisterServer(thisServer());
}

// --- the account of unattended jobs

// The launch permission as text, in one view; empty: none.
std::wstring launchRights(REGSAM view) {
  const com::RegistryKey classes = classesOf(HKEY_LOCAL_MACHINE, KEY_READ | view);
  com::RegistryKey key;
  std::array<BYTE, 4096> bytes{};
  DWORD size = bytes.size();
  if (RegOpenKeyExW(classes.get(), applicationKey().c_str(), 0, KEY_READ | view, key.put()) !=
          ERROR_SUCCESS ||
      RegQueryValueExW(key.get(), L"LaunchPermission", nullptr, nullptr, bytes.data(), &size) !=
          ERROR_SUCCESS)
    return {};
  LPWSTR text = nullptr;
  if (!ConvertSecurityDescriptorToStringSecurityDescriptorW(
          bytes.data(), SDDL_REVISION_1,
          OWNER_SECURITY_INFORMATION | GROUP_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION, &text,
          nullptr))
    return L"?";
  const com::LocalMemory owned(text);
  return text;
}

const std::wstring usualRights = L"O:BAG:BAD:(A;;CCDCLCSWRP;;;BA)(A;;CCDCLCSWRP;;;SY)(A;;CCDCLCSWRP;;;IU)";

TEST(Registrar, AJobAccountMayStartItLocally) {
  ASSERT_EQ(runServer(L"/RegServer"), 0);
  EXPECT_EQ(launchRights(views[0]), L"") << "without an account the workstation's own rule holds";
  std::string printed;
  ASSERT_EQ(runServer(L"/RegServer /JobAccount:\"NT AUTHORITY\\NETWORK SERVICE\"", &printed), 0);
  EXPECT_NE(printed.find("Jobs of NT AUTHORITY\\NETWORK SERVICE may start it"), std::string::npos) << printed;
  for (const REGSAM view : views) EXPECT_EQ(launchRights(view), usualRights + L"(A;;CCDCSW;;;NS)");
  ASSERT_EQ(runServer(L"/RegServer"), 0);
  EXPECT_EQ(launchRights(views[0]), usualRights + L"(A;;CCDCSW;;;NS)") << "what was set is lost by an update";
  ASSERT_EQ(runServer(L"/UnregServer"), 0);
  for (const REGSAM view : views) EXPECT_FALSE(machineKeyExists(applicationKey(), view));
}

TEST(Registrar, RefusesAnAccountThatIsNobodyOrAnybody) {
  for (const wchar_t* account :
       {L"/RegServer /JobAccount:nobody-of-this-name", L"/RegServer /JobAccount:Everyone",
        L"/RegServer /JobAccount:\"NT AUTHORITY\\ANONYMOUS LOGON\""}) {
    std::string printed;
    EXPECT_EQ(runServer(account, &printed), 1);
    EXPECT_EQ(printed.substr(0, 14), "Not registered") << printed;
    EXPECT_FALSE(machineKeyExists(clsidKey(), views[0]));
  }
}

TEST(Registrar, AJobAccountNeedsTheMachinesPart) {
  const MachineClosed closed;
  std::string printed;
  EXPECT_EQ(runServer(L"/RegServer /JobAccount:\"NT AUTHORITY\\NETWORK SERVICE\"", &printed), 1);
  EXPECT_NE(printed.find("takes an administrator's rights"), std::string::npos) << printed;
  EXPECT_FALSE(userKeyExists(clsidKey(), views[0])) << "registered for the user all the same";
}

TEST(Registrar, WrongUsageRegistersNothing) {
  for (const wchar_t* arguments :
       {L"/RegServer jobs", L"/RegServer /JobAccount:", L"/UnregServer everything"}) {
    std::string printed;
    EXPECT_EQ(runServer(arguments, &printed), 2);
    EXPECT_EQ(printed.substr(0, 6), "usage:") << printed;
    EXPECT_FALSE(machineKeyExists(clsidKey(), views[0]));
  }
}

// --- what is told

// Under Wine the program's folder belongs to the user, who is no administrator there.
TEST(Registrar, NamesWhoMayReplaceAProgramForEverybody) {
  std::string printed;
  ASSERT_EQ(runServer(L"/RegServer", &printed), 0);
  EXPECT_FALSE(windows::whoMayReplace(windows::executablePath()).empty());
  EXPECT_NE(printed.find("Warning: others than administrators may replace this program"), std::string::npos);
  EXPECT_NE(printed.find("may write to " + text::toUtf8(com::fromWide(serverPath()))), std::string::npos)
      << printed;
  ASSERT_EQ(runServer(L"/UnregServer"), 0);
  {
    const MachineClosed closed;
    ASSERT_EQ(runServer(L"/RegServer", &printed), 0);
  }
  EXPECT_EQ(printed.find("Warning"), std::string::npos) << "a user's own program is his own";
  ASSERT_EQ(runServer(L"/UnregServer"), 0);
}

}  // namespace
}  // namespace vordane::test
