// What /RegServer and /UnregServer of a program do: its classes (and its type library) in both registry
// views.
#pragma once

#include <string>
#include <vector>

#include "platform/registration.h"

namespace vordane::com {

// What became of it: the process's exit code (0 done, 1 not) and what to tell whoever asked, in English.
struct RegistrarAnswer {
  int exitCode = 0;
  std::vector<std::u16string> lines;
  bool forEverybody = false;  // the classes stand in the machine's part
};

// Writes per machine when it may, per user otherwise or when it is asked to; the last one to register a class
// owns it in both views. A registration for everybody takes away this user's own one of the same classes,
// whatever program it names, since it would go first; those of other users that are logged on are told of.
// `server.path` is this program's own (see services/program.h). A job account needs the machine's part:
// without it nothing is registered. The source of the event log is written for everybody only; whatever
// becomes of it, the registration goes on.
RegistrarAnswer registerServer(const registration::Server& server, const registration::Request& request = {});

// Removes what carries this program's path, per machine and per user, and nothing else.
RegistrarAnswer unregisterServer(const registration::Server& server);

}  // namespace vordane::com
