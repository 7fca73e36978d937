#include "platform/program_guard.h"

#include <windows.h>
// aclapi.h needs windows.h before it.
#include <aclapi.h>

#include <optional>

#include "platform/windows/com/accounts.h"
#include "platform/windows/com/owned.h"
#include "platform/windows/services/services.h"

namespace vordane::windows {
namespace {

guard::Account accountOf(PSID sid) {
  if (sid == nullptr || !IsValidSid(sid)) return {};
  return {com::identifierOf(sid), com::nameOf(sid)};
}

// Lines of other types (those of a directory service, audits) say nothing about a file.
std::optional<guard::Entry> entryOf(const ACE_HEADER& header) {
  const bool allows =
      header.AceType == ACCESS_ALLOWED_ACE_TYPE || header.AceType == ACCESS_ALLOWED_CALLBACK_ACE_TYPE;
  const bool denies =
      header.AceType == ACCESS_DENIED_ACE_TYPE || header.AceType == ACCESS_DENIED_CALLBACK_ACE_TYPE;
  if (!allows && !denies) return std::nullopt;
  // All four begin alike: header, rights, account.
  const auto& ace = reinterpret_cast<const ACCESS_ALLOWED_ACE&>(header);
  return guard::Entry{allows, accountOf(const_cast<DWORD*>(&ace.SidStart)), ace.Mask,
                      (header.AceFlags & INHERIT_ONLY_ACE) != 0};
}

std::optional<guard::Place> placeOf(guard::Kind kind, const std::wstring& path) {
  PSID owner = nullptr;
  PACL list = nullptr;
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  if (GetNamedSecurityInfoW(const_cast<LPWSTR>(path.c_str()), SE_FILE_OBJECT,
                            OWNER_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION, &owner, nullptr, &list,
                            nullptr, &descriptor) != ERROR_SUCCESS)
    return std::nullopt;
  const com::LocalMemory owned(descriptor);
  guard::Place place{kind, std::u16string(com::fromWide(path)), accountOf(owner), list == nullptr, {}};
  for (DWORD i = 0; list != nullptr && i < list->AceCount; ++i) {
    void* ace = nullptr;
    if (!GetAce(list, i, &ace)) continue;
    if (auto entry = entryOf(*static_cast<const ACE_HEADER*>(ace)))
      place.entries.push_back(std::move(*entry));
  }
  return place;
}

// The folder of a path; a drive's keeps its backslash. Empty above a drive or a share.
std::wstring folderOf(const std::wstring& path) {
  std::size_t end = path.rfind(L'\\');
  if (end == std::wstring::npos || path.size() <= 3) return {};
  if (path.starts_with(L"\\\\") && path.find(L'\\', path.find(L'\\', 2) + 1) == std::wstring::npos) return {};
  if (end == 2) ++end;
  return path.substr(0, end);
}

}  // namespace

std::vector<guard::Finding> whoMayReplace(std::u16string_view path) {
  std::vector<guard::Place> places;
  auto kind = guard::Kind::program;
  for (std::wstring at(path.begin(), path.end()); !at.empty(); at = folderOf(at)) {
    if (auto place = placeOf(kind, at)) places.push_back(std::move(*place));
    kind = kind == guard::Kind::program ? guard::Kind::folder : guard::Kind::above;
  }
  return guard::whoMayReplace(places);
}

}  // namespace vordane::windows
