// Users and groups as the workstation knows them.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>
#include <vector>

namespace vordane::com {

// The bytes of a security identifier; empty: none.
using Sid = std::vector<BYTE>;

// "S-1-5-32-545".
std::u16string identifierOf(PSID sid);
// "BUILTIN\Users"; empty when nobody knows the account any more.
std::u16string nameOf(PSID sid);
// The account of a name, with or without its domain; empty when there is none.
Sid accountNamed(std::u16string_view name);
Sid accountOf(std::wstring_view identifier);
// The account in whose name this process runs.
Sid ownAccount();

}  // namespace vordane::com
