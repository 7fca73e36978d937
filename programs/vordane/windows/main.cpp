// VORDANE.EXE: reads what the command line asks for and wires the parts.
#include <windows.h>

#include <memory>
#include <string>
#include <vector>

#include "library.h"
#include "pbx/cListRequest.h"
#include "pbx/cSLVRequest.h"
#include "platform/command_line.h"
#include "platform/registration.h"
#include "platform/windows/com/registrar.h"
#include "workstation.h"

namespace vordane {
namespace {

// The classes that carry data and need no window.
std::vector<com::ServedClass> records(platform::Clock& clock) {
  return {
      {std::string(cListRequest::classTable().clsid),
       [] { return automation::ObjectRef(std::make_shared<cListRequest>()); }, false},
      {std::string(cSLVRequest::classTable().clsid),
       [&clock] { return automation::ObjectRef(std::make_shared<cSLVRequest>(clock.regional(clock.now()))); },
       false}};
}

int serve() {
  Workstation here;
  if (here.program.startedByAutomation)
    here.process.serve(records(here.clock));
  else
    here.process.end();
  return com::runMessageLoop();
}

int run() {
  const platform::CommandLine line =
      platform::parseCommandLine(platform::withoutProgramName(com::fromWide(GetCommandLineW())));
  const auto server = [] { return registration::serverOf(windows::executablePath(), vordaneLibrary()); };
  if (line.start == platform::Start::registerServer) return com::registerServer(server());
  if (line.start == platform::Start::unregisterServer) return com::unregisterServer(server());
  return serve();
}

}  // namespace
}  // namespace vordane

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
  return vordane::run();
}
