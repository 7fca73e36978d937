// The source of a program's entries in the system's event log, as its registration writes it.
#pragma once

#include "platform/registration.h"

namespace vordane::com {

// True when it is written, or the program has none; takes an administrator's rights.
bool writeEventSource(const registration::Server& server);

// True when it was this program's and has gone; another program's stays.
bool removeEventSource(const registration::Server& server);

}  // namespace vordane::com
