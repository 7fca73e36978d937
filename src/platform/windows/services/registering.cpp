#include <string>

#include "platform/windows/com/registrar.h"
#include "platform/windows/services/services.h"

namespace vordane::windows {
namespace {

using platform::Start;
using registration::Server;

constexpr int wrongUsage = 2;

int usage() {
  printLine(u"usage: /RegServer [/JobAccount:NAME | /ThisUser] or /UnregServer");
  return wrongUsage;
}

int told(const com::RegistrarAnswer& answer) {
  for (const std::u16string& line : answer.lines) printLine(line);
  return answer.exitCode;
}

// Everybody who creates the classes runs this file: nobody but administrators should be able to change it.
void warnOfReplacement(const std::u16string& path) {
  const auto findings = whoMayReplace(path);
  if (findings.empty()) return;
  printLine(u"Warning: others than administrators may replace this program, which every user will run:");
  for (const guard::Finding& finding : findings) printLine(u"  " + guard::sentence(finding));
}

int registerIt(const Server& server, const registration::Request& request) {
  const com::RegistrarAnswer answer = com::registerServer(server, request);
  const int code = told(answer);
  if (answer.forEverybody) warnOfReplacement(server.path);
  return code;
}

}  // namespace

std::optional<int> registerAsAsked(const platform::CommandLine& line, const Server& server) {
  if (line.start == Start::unregisterServer)
    return line.text.empty() ? told(com::unregisterServer(server)) : usage();
  if (line.start != Start::registerServer) return std::nullopt;
  const auto request = registration::parseRequest(line.text);
  return request ? registerIt(server, *request) : usage();
}

}  // namespace vordane::windows
