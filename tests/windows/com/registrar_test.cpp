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

namespace vordane::test {
namespace {

constexpr REGSAM views[] = {KEY_WOW64_64KEY, KEY_WOW64_32KEY};
std::wstring wide(std::string_view text) {
  return {text.begin(), text.end()};
}
std::wstring clsidKey() {
  return L"CLSID\\" + wide(probeTable().clsid);
}

TEST(Registrar, WritesBothViewsWithTheQuotedPath) {
  ASSERT_EQ(runServer(L"/RegServer"), 0);
  for (const REGSAM view : views) {
    EXPECT_EQ(machineValue(clsidKey() + L"\\LocalServer32", view), L"\"" + serverPath() + L"\"");
    EXPECT_EQ(machineValue(clsidKey() + L"\\ProgID", view), L"VordaneProbe.cProbe");
    EXPECT_EQ(machineValue(L"VordaneProbe.cBag\\CLSID", view), wide(bagTable().clsid));
    EXPECT_EQ(machineValue(L"Interface\\" + wide(probeTable().iid) + L"\\TypeLib", view, L"Version"), L"1.0");
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
          L"TypeLib\\" + wide(probeLibrary().libid)};
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
  ASSERT_EQ(com::registerServer(other), 0);
  ASSERT_EQ(runServer(L"/UnregServer"), 0);
  EXPECT_EQ(machineValue(clsidKey() + L"\\LocalServer32", views[0]), L"\"C:\\Elsewhere\\probeserver.exe\"");
  EXPECT_TRUE(machineKeyExists(L"TypeLib\\" + wide(probeLibrary().libid), views[0]));
  EXPECT_TRUE(machineKeyExists(L"VordaneProbe.cProbe", views[0]));
  EXPECT_EQ(com::unregisterServer(other), 0);
  EXPECT_FALSE(machineKeyExists(clsidKey(), views[0]));
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

TEST(Registrar, ServesOneUserWhereTheMachineCantBeWritten) {
  std::string printed;
  {
    const MachineClosed closed;
    ASSERT_EQ(runServer(L"/RegServer", &printed), 0);
  }
  EXPECT_EQ(printed.substr(0, 29), "Registered for this user only");
  EXPECT_NE(printed.find("Programs that run with raised rights"), std::string::npos);
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

}  // namespace
}  // namespace vordane::test
