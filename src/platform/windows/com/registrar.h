// /RegServer and /UnregServer of a program: its classes (and its type library) in both registry views.
#pragma once

#include <optional>
#include <string>

#include "platform/registration.h"

namespace vordane::com {

// Writes per machine when it may, per user otherwise; the last one to register a class owns it in both
// views. `server.path` is this program's own (see services/program.h). Prints what it did, or why it could
// not, in English to the standard output (or the console it was started from). The process's exit code: 0
// done.
int registerServer(const registration::Server& server);

// Removes what carries this program's path, per machine and per user, and nothing else.
int unregisterServer(const registration::Server& server);

}  // namespace vordane::com
