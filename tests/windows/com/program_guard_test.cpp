// The rights of files and folders as the workstation tells them.
#include <gtest/gtest.h>

#include <windows.h>
// aclapi.h and sddl.h need windows.h before them.
#include <aclapi.h>
#include <sddl.h>

#include <algorithm>
#include <string>

#include "platform/windows/com/owned.h"
#include "platform/windows/services/services.h"

namespace vordane::windows {
namespace {

constexpr const wchar_t* everyone = L"D:P(A;;FA;;;WD)";
constexpr const wchar_t* administratorsAlone = L"D:P(A;;FA;;;BA)(A;;0x1200a9;;;WD)";

void setRights(const std::wstring& path, const wchar_t* rights) {
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  ASSERT_TRUE(
      ConvertStringSecurityDescriptorToSecurityDescriptorW(rights, SDDL_REVISION_1, &descriptor, nullptr));
  BOOL present = FALSE;
  BOOL defaulted = FALSE;
  PACL list = nullptr;
  GetSecurityDescriptorDacl(descriptor, &present, &list, &defaulted);
  EXPECT_EQ(SetNamedSecurityInfoW(const_cast<LPWSTR>(path.c_str()), SE_FILE_OBJECT,
                                  DACL_SECURITY_INFORMATION | PROTECTED_DACL_SECURITY_INFORMATION, nullptr,
                                  nullptr, list, nullptr),
            static_cast<DWORD>(ERROR_SUCCESS));
  LocalFree(descriptor);
}

std::u16string everyonesName() {
  BYTE sid[SECURITY_MAX_SID_SIZE];
  DWORD size = sizeof sid;
  wchar_t name[256], domain[256];
  DWORD nameLength = 256, domainLength = 256;
  SID_NAME_USE use{};
  CreateWellKnownSid(WinWorldSid, nullptr, sid, &size);
  LookupAccountSidW(nullptr, sid, name, &nameLength, domain, &domainLength, &use);
  const std::wstring whole = domain[0] == 0 ? name : std::wstring(domain) + L"\\" + name;
  return {whole.begin(), whole.end()};
}

class ProgramGuard : public testing::Test {
 protected:
  ProgramGuard() {
    CreateDirectoryW(L"C:\\guarded", nullptr);
    CreateDirectoryW(folder.c_str(), nullptr);
    const com::File file(CreateFileW(program.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    for (const std::wstring& path : {std::wstring(L"C:\\guarded"), folder, program})
      setRights(path, administratorsAlone);
  }
  ~ProgramGuard() override {
    for (const std::wstring& path : {std::wstring(L"C:\\guarded"), folder, program})
      setRights(path, everyone);
    DeleteFileW(program.c_str());
    RemoveDirectoryW(folder.c_str());
    RemoveDirectoryW(L"C:\\guarded");
  }

  bool everyoneAt(const std::wstring& path) const {
    const auto found = whoMayReplace({reinterpret_cast<const char16_t*>(program.c_str()), program.size()});
    return std::count(found.begin(), found.end(),
                      guard::Finding{std::u16string(path.begin(), path.end()), everyonesName()}) == 1;
  }

  const std::wstring folder = L"C:\\guarded\\ADDINS";
  const std::wstring program = folder + L"\\VORDANE.EXE";
};

TEST_F(ProgramGuard, AGuardedProgramIsNotEverybodys) {
  EXPECT_FALSE(everyoneAt(program));
  EXPECT_FALSE(everyoneAt(folder));
  EXPECT_FALSE(everyoneAt(L"C:\\guarded"));
}

TEST_F(ProgramGuard, TheFileItsFolderAndTheOneAboveAreLookedAt) {
  for (const std::wstring& path : {program, folder, std::wstring(L"C:\\guarded")}) {
    setRights(path, everyone);
    EXPECT_TRUE(everyoneAt(path)) << std::string(path.begin(), path.end());
    setRights(path, administratorsAlone);
    EXPECT_FALSE(everyoneAt(path)) << std::string(path.begin(), path.end());
  }
}

TEST_F(ProgramGuard, WhatIsNotThereHasNothingToTell) {
  for (const guard::Finding& finding : whoMayReplace(u"C:\\guarded\\NONE\\VORDANE.EXE"))
    EXPECT_FALSE(finding.path.starts_with(u"C:\\guarded\\NONE"));
  EXPECT_TRUE(whoMayReplace(u"").empty());
}

}  // namespace
}  // namespace vordane::windows
