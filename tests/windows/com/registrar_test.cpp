// What /RegServer leaves in the registry, and what /UnregServer takes away.
#include <gtest/gtest.h>

#include "platform/windows/com/registrar.h"
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

TEST(Registrar, LeavesNothingBehind) {
  ASSERT_EQ(runServer(L"-RegServer"), 0);
  std::string printed;
  ASSERT_EQ(runServer(L"/UnregServer", &printed), 0);
  EXPECT_EQ(printed.substr(0, 20), "Registration removed");
  for (const REGSAM view : views)
    for (const std::wstring& key :
         {clsidKey(), L"CLSID\\" + wide(bagTable().clsid), std::wstring(L"VordaneProbe.cProbe"),
          std::wstring(L"VordaneProbe.cBag"), L"Interface\\" + wide(probeTable().iid),
          L"Interface\\" + wide(bagTable().iid), L"TypeLib\\" + wide(probeLibrary().libid)})
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

}  // namespace
}  // namespace vordane::test
