#include "platform/windows/com/permissions.h"

#include <windows.h>

#include <sddl.h>  // needs windows.h before it

#include <objidl.h>

#include <array>
#include <iterator>
#include <string>

#include "platform/windows/com/owned.h"

namespace vordane::com {
namespace {

// In the letters of the list's text form: execute (CC), locally (DC) and remotely (LC), activate locally (SW)
// and remotely (RP).
constexpr std::wstring_view usualLaunch =
    L"O:BAG:BAD:(A;;CCDCLCSWRP;;;BA)(A;;CCDCLCSWRP;;;SY)(A;;CCDCLCSWRP;;;IU)";
constexpr std::wstring_view localLaunch = L"(A;;CCDCSW;;;";
constexpr std::wstring_view usualAccess = L"O:BAG:BAD:(A;;CCDCLC;;;BA)(A;;CCDC;;;SY)";
constexpr std::wstring_view ownAccess = L"(A;;CCDCLC;;;";

std::wstring wideIdentifier(const Sid& account) {
  const std::u16string text = identifierOf(const_cast<BYTE*>(account.data()));
  return {text.begin(), text.end()};
}

Rights rightsOf(const std::wstring& text) {
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  ULONG size = 0;
  if (!ConvertStringSecurityDescriptorToSecurityDescriptorW(text.c_str(), SDDL_REVISION_1, &descriptor,
                                                            &size))
    return {};
  const LocalMemory owned(descriptor);
  const auto* bytes = static_cast<const BYTE*>(descriptor);
  return {bytes, bytes + size};
}

// What an administrator has set; empty when there is nothing, or nothing that makes sense.
Rights registered(HKEY root, const std::wstring& key, const wchar_t* name) {
  std::array<BYTE, 16384> buffer{};
  DWORD size = buffer.size();
  if (RegGetValueW(root, key.c_str(), name, RRF_RT_REG_BINARY, nullptr, buffer.data(), &size) !=
      ERROR_SUCCESS)
    return {};
  if (size < SECURITY_DESCRIPTOR_MIN_LENGTH || !IsValidSecurityDescriptor(buffer.data())) return {};
  return {buffer.data(), buffer.data() + size};
}

std::wstring applicationOf(std::u16string_view fileName) {
  const std::wstring key = L"Software\\Classes\\AppID\\" + std::wstring(fileName.begin(), fileName.end());
  std::array<wchar_t, 64> identifier{};
  DWORD bytes = sizeof identifier;
  if (RegGetValueW(HKEY_LOCAL_MACHINE, key.c_str(), L"AppID", RRF_RT_REG_SZ, nullptr, identifier.data(),
                   &bytes) != ERROR_SUCCESS)
    return {};
  return identifier.data();
}

}  // namespace

Rights launchPermission(const Sid& account) {
  return rightsOf(std::wstring(usualLaunch) + std::wstring(localLaunch) + wideIdentifier(account) + L")");
}

bool isAnybody(const Sid& account) {
  constexpr std::array anybody{WinWorldSid,   WinAnonymousSid,         WinBuiltinGuestsSid,
                               WinNetworkSid, WinAuthenticatedUserSid, WinAccountGuestSid};
  for (const WELL_KNOWN_SID_TYPE type : anybody)
    if (IsWellKnownSid(const_cast<BYTE*>(account.data()), type)) return true;
  return false;
}

Rights accessPermission(std::u16string_view fileName) {
  if (const std::wstring application = applicationOf(fileName); !application.empty()) {
    Rights own =
        registered(HKEY_LOCAL_MACHINE, L"Software\\Classes\\AppID\\" + application, L"AccessPermission");
    if (!own.empty()) return own;
  }
  Rights usual = registered(HKEY_LOCAL_MACHINE, L"Software\\Microsoft\\Ole", L"DefaultAccessPermission");
  if (!usual.empty()) return usual;
  return rightsOf(std::wstring(usualAccess) + std::wstring(ownAccess) + wideIdentifier(ownAccount()) + L")");
}

AbsoluteRights::AbsoluteRights(const Rights& rights) {
  if (rights.empty()) return;
  DWORD sizes[5]{};
  auto* source = const_cast<BYTE*>(rights.data());
  MakeAbsoluteSD(source, nullptr, &sizes[0], nullptr, &sizes[1], nullptr, &sizes[2], nullptr, &sizes[3],
                 nullptr, &sizes[4]);
  std::vector<BYTE>* const parts[] = {&descriptor_, &list_, &audits_, &owner_, &group_};
  for (std::size_t i = 0; i < std::size(parts); ++i) parts[i]->resize(sizes[i]);
  good_ = MakeAbsoluteSD(source, descriptor_.data(), &sizes[0], reinterpret_cast<PACL>(list_.data()),
                         &sizes[1], reinterpret_cast<PACL>(audits_.data()), &sizes[2], owner_.data(),
                         &sizes[3], group_.data(), &sizes[4]) != FALSE;
}

CallSecurity callSecurity(std::u16string_view fileName) {
  return {EOAC_NO_CUSTOM_MARSHAL, accessPermission(fileName)};
}

}  // namespace vordane::com
