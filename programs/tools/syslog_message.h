// Events as messages of RFC 5424.
#pragma once

#include <cstddef>
#include <string>

#include "following.h"

namespace vordane::tools {

// Who speaks, and when.
struct SyslogOrigin {
  std::string host;         // of this workstation; "-" where it has no name that may stand there
  long enterprise = 32473;  // behind the @ of the structured data: the number that is kept for examples
  std::string time;         // utcNow(), or "-"
};

// One message without an end: facility local0; a major alarm and a lit major lamp are errors, minor ones
// warnings, everything else is a notice. Its words come last and are cut so that it has at most `longest`
// bytes; a name is never longer than 128 characters.
std::string syslogOf(const Event& event, const SyslogOrigin& origin, std::size_t longest);

// "2026-11-22T19:11:03Z".
std::string utcNow();

}  // namespace vordane::tools
