// The workstation's registry, saved and put back.
#include "kit/windows/registry.h"

#include <windows.h>
// sddl.h needs windows.h before it.
#include <sddl.h>

#include <gtest/gtest.h>

#include <stdexcept>

#include "platform/windows/com/owned.h"

namespace vordane::kit {
namespace {

const RegistryPlace place{Hive::user, View::words64, u"Software\\VordaneKitTest"};
RegistryPlace below(const std::u16string& name) {
  return {place.hive, place.view, place.path + u'\\' + name};
}

class RegistryTest : public testing::Test {
 protected:
  ~RegistryTest() override { registry_.removeKey(place); }
  WindowsRegistry registry_;
};

TEST_F(RegistryTest, EveryKindOfValueComesBack) {
  registry_.makeKey(place, "");
  registry_.write(place, u"", {REG_SZ, {'a', 0, 0, 0}});
  registry_.write(place, u"empty", {REG_NONE, {}});
  registry_.write(place, u"\u65E5\u672C", {REG_MULTI_SZ, {'x', 0, 0, 0, 'y', 0, 0, 0, 0, 0}});
  registry_.write(place, u"large", {REG_BINARY, std::vector<std::uint8_t>(70000, 0xA5)});
  registry_.makeKey(below(u"deep\\deeper"), "");
  registry_.write(below(u"deep\\deeper"), u"number", {REG_DWORD, {1, 2, 3, 4}});
  const SavedState saved = saveState(registry_, {place});
  ASSERT_TRUE(saved[0].tree);
  EXPECT_EQ(saved[0].tree->values.size(), 4U);
  EXPECT_EQ(saved[0].tree->values.at(u"large").data.size(), 70000U);

  registry_.removeKey(below(u"deep"));
  registry_.write(place, u"", {REG_SZ, {'b', 0, 0, 0}});
  registry_.write(place, u"new", {REG_SZ, {0, 0}});
  registry_.makeKey(below(u"other\\one"), "");
  putBack(registry_, readState(stateText(saved)));
  EXPECT_EQ(saveState(registry_, {place}), saved);

  registry_.removeKey(place);
  putBack(registry_, saved);
  EXPECT_EQ(saveState(registry_, {place}), saved);
}

TEST_F(RegistryTest, AKeyThatIsMadeAgainHasItsRightsAgain) {
  registry_.makeKey(place, "D:P(A;;KA;;;WD)");
  const SavedState saved = saveState(registry_, {place});
  EXPECT_NE(saved[0].tree->rights, "");
  registry_.removeKey(place);
  putBack(registry_, saved);
  EXPECT_EQ(registry_.read(place)->rights, saved[0].tree->rights);
}

TEST_F(RegistryTest, WhatIsNotThereStaysAway) {
  const SavedState saved = saveState(registry_, {place});
  EXPECT_EQ(saved[0].tree, std::nullopt);
  registry_.makeKey(below(u"one"), "");
  putBack(registry_, saved);
  EXPECT_EQ(registry_.read(place), std::nullopt);
  putBack(registry_, saved);
}

// Nothing is begun that could not be put back.
TEST_F(RegistryTest, AKeyThatMayNotBeChangedIsSaid) {
  registry_.makeKey(place, "");
  const auto setRights = [](const wchar_t* rights) {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    ConvertStringSecurityDescriptorToSecurityDescriptorW(rights, SDDL_REVISION_1, &descriptor, nullptr);
    const com::LocalMemory owned(descriptor);
    com::RegistryKey key;
    RegOpenKeyExW(HKEY_CURRENT_USER, L"Software\\VordaneKitTest", 0, WRITE_DAC | KEY_WOW64_64KEY, key.put());
    EXPECT_EQ(RegSetKeySecurity(key.get(), DACL_SECURITY_INFORMATION, descriptor), ERROR_SUCCESS);
  };
  setRights(L"D:P(A;;KR;;;WD)(A;;WDRC;;;WD)");
  try {
    saveState(registry_, {below(u"sub")});
    ADD_FAILURE();
  } catch (const std::runtime_error& failure) {
    EXPECT_STREQ(failure.what(),
                 "HKCU\\Software\\VordaneKitTest\\sub (64-bit) can't be changed: access denied");
  }
  setRights(L"D:P(A;;KA;;;WD)");
  EXPECT_NO_THROW(saveState(registry_, {below(u"sub")}));
}

}  // namespace
}  // namespace vordane::kit
