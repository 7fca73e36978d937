// Who may call a program of ours while it runs.
#include "platform/windows/com/permissions.h"

#include <windows.h>

#include <sddl.h>  // needs windows.h before it

#include <gtest/gtest.h>
#include <objidl.h>

#include <string>

#include "platform/windows/com/owned.h"

namespace vordane::com {
namespace {

std::wstring textOf(const Rights& rights) {
  LPWSTR text = nullptr;
  if (rights.empty() ||
      !ConvertSecurityDescriptorToStringSecurityDescriptorW(
          const_cast<BYTE*>(rights.data()), SDDL_REVISION_1,
          OWNER_SECURITY_INFORMATION | GROUP_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION, &text,
          nullptr))
    return {};
  const LocalMemory owned(text);
  return text;
}

std::wstring own() {
  const Sid account = ownAccount();
  const std::u16string text = identifierOf(const_cast<BYTE*>(account.data()));
  return {text.begin(), text.end()};
}

// Sets a list of rights for the time of a test.
class Set {
 public:
  Set(std::wstring key, const wchar_t* name, const wchar_t* rights) : key_(std::move(key)), name_(name) {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    ULONG size = 0;
    ConvertStringSecurityDescriptorToSecurityDescriptorW(rights, SDDL_REVISION_1, &descriptor, &size);
    const LocalMemory owned(descriptor);
    write(REG_BINARY, descriptor, size);
  }
  Set(std::wstring key, const wchar_t* name, const std::wstring& text) : key_(std::move(key)), name_(name) {
    write(REG_SZ, text.c_str(), static_cast<DWORD>(2 * text.size() + 2));
  }
  ~Set() { RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, key_.c_str(), name_); }
  Set(const Set&) = delete;
  Set& operator=(const Set&) = delete;

 private:
  void write(DWORD type, const void* data, DWORD size) {
    EXPECT_EQ(RegSetKeyValueW(HKEY_LOCAL_MACHINE, key_.c_str(), name_, type, data, size), ERROR_SUCCESS);
  }
  std::wstring key_;
  const wchar_t* name_;
};

const std::wstring ole = L"Software\\Microsoft\\Ole";
const std::wstring application = L"Software\\Classes\\AppID\\{11111111-2222-3333-4444-555555555555}";

// Other programs' libraries stay out, and the exchange server may still be started.
TEST(CallSecurity, NoLibraryTakesArgumentsApartAndProcessesMayBeStarted) {
  const CallSecurity security = callSecurity(u"nobody.exe");
  EXPECT_EQ(security.capabilities & EOAC_NO_CUSTOM_MARSHAL, static_cast<DWORD>(EOAC_NO_CUSTOM_MARSHAL));
  EXPECT_EQ(security.capabilities & EOAC_DISABLE_AAA, 0U);
  // With it everything else would be left out of account.
  EXPECT_EQ(security.capabilities & EOAC_APPID, 0U);
}

TEST(CallSecurity, UsuallyTheOwnAccountAdministratorsAndTheSystemMayCall) {
  EXPECT_EQ(textOf(accessPermission(u"nobody.exe")),
            L"O:BAG:BAD:(A;;CCDCLC;;;BA)(A;;CCDC;;;SY)(A;;CCDCLC;;;" + own() + L")");
}

TEST(CallSecurity, WhatAnAdministratorHasSetGoesFirst) {
  const Set everywhere(ole, L"DefaultAccessPermission", L"O:BAG:BAD:(A;;CC;;;NS)");
  EXPECT_EQ(textOf(accessPermission(u"nobody.exe")), L"O:BAG:BAD:(A;;CC;;;NS)");
  const Set found(L"Software\\Classes\\AppID\\somebody.exe", L"AppID",
                  std::wstring(L"{11111111-2222-3333-4444-555555555555}"));
  EXPECT_EQ(textOf(accessPermission(u"somebody.exe")), L"O:BAG:BAD:(A;;CC;;;NS)")
      << "it has no rights of its own";
  const Set here(application, L"AccessPermission", L"O:BAG:BAD:(A;;CCDC;;;LS)");
  EXPECT_EQ(textOf(accessPermission(u"somebody.exe")), L"O:BAG:BAD:(A;;CCDC;;;LS)");
  EXPECT_EQ(textOf(accessPermission(u"nobody.exe")), L"O:BAG:BAD:(A;;CC;;;NS)");
}

TEST(CallSecurity, WhatMakesNoSenseIsAsIfItWereNotThere) {
  const Set text(ole, L"DefaultAccessPermission", std::wstring(L"everybody"));
  EXPECT_NE(textOf(accessPermission(u"nobody.exe")).find(L";SY)"), std::wstring::npos);
}

TEST(CallSecurity, TheListIsHandedOverWithItsPartsApart) {
  AbsoluteRights apart(accessPermission(u"nobody.exe"));
  ASSERT_NE(apart.get(), nullptr);
  SECURITY_DESCRIPTOR_CONTROL control = 0;
  DWORD revision = 0;
  ASSERT_TRUE(GetSecurityDescriptorControl(apart.get(), &control, &revision));
  EXPECT_EQ(control & SE_SELF_RELATIVE, 0);
  PSID owner = nullptr;
  PACL list = nullptr;
  BOOL present = FALSE;
  BOOL usual = FALSE;
  GetSecurityDescriptorOwner(apart.get(), &owner, &usual);
  EXPECT_NE(owner, nullptr);
  GetSecurityDescriptorGroup(apart.get(), &owner, &usual);
  EXPECT_NE(owner, nullptr);
  GetSecurityDescriptorDacl(apart.get(), &present, &list, &usual);
  ASSERT_NE(list, nullptr) << "everybody could call";
  EXPECT_EQ(list->AceCount, 3);
  EXPECT_EQ(AbsoluteRights({}).get(), nullptr);
}

}  // namespace
}  // namespace vordane::com
