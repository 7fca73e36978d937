// Who may start this program through automation, and who may call it while it runs.
#pragma once

#include <windows.h>

#include <vector>

#include "platform/windows/com/accounts.h"

namespace vordane::com {

// A list of rights as the registry keeps it; empty: none.
using Rights = std::vector<BYTE>;

// The workstation's usual launch permission (administrators, the system, whoever sits at it), and local
// launch for one more account.
Rights launchPermission(const Sid& account);

// Whether an account stands for anybody at all: nobody means to let those start programs.
bool isAnybody(const Sid& account);

// Who may call this process: what an administrator has set for the program (`fileName`, found through AppID),
// else for the workstation, else this process's own account, administrators and the system.
Rights accessPermission(std::u16string_view fileName);

// The same list as COM wants it: with its parts apart. Null when the list makes no sense.
class AbsoluteRights {
 public:
  explicit AbsoluteRights(const Rights& rights);
  AbsoluteRights(const AbsoluteRights&) = delete;
  AbsoluteRights& operator=(const AbsoluteRights&) = delete;
  PSECURITY_DESCRIPTOR get() { return good_ ? descriptor_.data() : nullptr; }

 private:
  std::vector<BYTE> descriptor_, list_, audits_, owner_, group_;
  bool good_ = false;
};

// How this process takes calls: see Apartment.
struct CallSecurity {
  DWORD capabilities;
  Rights access;
};
CallSecurity callSecurity(std::u16string_view fileName);

}  // namespace vordane::com
