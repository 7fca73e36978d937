#include "platform/windows/com/accounts.h"

#include <windows.h>

#include <sddl.h>  // needs windows.h before it

#include <array>

#include "platform/windows/com/owned.h"

namespace vordane::com {
namespace {

constexpr DWORD longestName = 256;

Sid copyOf(PSID sid) {
  const auto* bytes = static_cast<const BYTE*>(sid);
  return {bytes, bytes + GetLengthSid(sid)};
}

}  // namespace

std::u16string identifierOf(PSID sid) {
  LPWSTR text = nullptr;
  if (!ConvertSidToStringSidW(sid, &text)) return {};
  const LocalMemory owned(text);
  return std::u16string(fromWide(text));
}

std::u16string nameOf(PSID sid) {
  std::array<wchar_t, longestName> name{};
  std::array<wchar_t, longestName> domain{};
  DWORD nameLength = longestName;
  DWORD domainLength = longestName;
  SID_NAME_USE use{};
  if (!LookupAccountSidW(nullptr, sid, name.data(), &nameLength, domain.data(), &domainLength, &use))
    return {};
  const std::u16string account(fromWide(name.data()));
  return domain[0] == L'\0' ? account : std::u16string(fromWide(domain.data())) + u"\\" + account;
}

Sid accountNamed(std::u16string_view name) {
  std::array<BYTE, SECURITY_MAX_SID_SIZE> sid{};
  std::array<wchar_t, longestName> domain{};
  DWORD size = sid.size();
  DWORD domainLength = longestName;
  SID_NAME_USE use{};
  const std::wstring text(name.begin(), name.end());
  if (!LookupAccountNameW(nullptr, text.c_str(), sid.data(), &size, domain.data(), &domainLength, &use))
    return {};
  return copyOf(sid.data());
}

Sid accountOf(std::wstring_view identifier) {
  PSID sid = nullptr;
  if (!ConvertStringSidToSidW(std::wstring(identifier).c_str(), &sid)) return {};
  const LocalMemory owned(sid);
  return copyOf(sid);
}

Sid ownAccount() {
  Handle token;
  if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, token.put())) return {};
  std::array<BYTE, sizeof(TOKEN_USER) + SECURITY_MAX_SID_SIZE> buffer{};
  DWORD size = 0;
  if (!GetTokenInformation(token.get(), TokenUser, buffer.data(), buffer.size(), &size)) return {};
  return copyOf(reinterpret_cast<const TOKEN_USER*>(buffer.data())->User.Sid);
}

}  // namespace vordane::com
