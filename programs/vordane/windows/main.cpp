// VORDANE.EXE: reads what the command line asks for and runs the parts.
#include <windows.h>

#include <string>

#include "parts.h"
#include "pbx/cListRequest.h"
#include "pbx/cSLVRequest.h"
#include "platform/command_line.h"
#include "platform/event_log.h"
#include "platform/registration.h"
#include "startup/basMain.h"
#include "startup/cOLELayer.h"
#include "startup/library.h"
#include "text/utf8.h"

namespace vordane {
namespace {

std::vector<com::ServedClass> publicClasses(Parts& parts) {
  startup::Application& application = parts.application;
  const auto clsid = [](const automation::ClassTable& table) { return std::string(table.clsid); };
  return {
      {clsid(cOLELayer::classTable()), [&] { return parts.given(application.createLayer()); }, true},
      {clsid(cListRequest::classTable()), [&] { return parts.given(application.createListRequest()); },
       false},
      {clsid(cSLVRequest::classTable()), [&] { return parts.given(application.createSLVRequest()); }, false}};
}

int serve() {
  Parts parts;
  const basMain::Start start = basMain::Main(parts.application);
  if (start == basMain::Start::nothing) return 0;
  // A process that a person started offers no class to others.
  if (start == basMain::Start::hostMode) parts.process.serve(publicClasses(parts));
  return com::runMessageLoop([&](MSG& message) {
    // A host that calls without end would starve the timer's message.
    parts.view->serveDueTick();
    return parts.view->translate(message);
  });
}

platform::CommandLine ownCommandLine() {
  return platform::parseCommandLine(platform::withoutProgramName(com::fromWide(GetCommandLineW())));
}

int run() {
  const platform::CommandLine line = ownCommandLine();
  registration::Server server = registration::serverOf(windows::executablePath(), startup::libraryTable());
  server.eventSource = platform::eventSource;
  const auto asked = windows::registerAsAsked(line, server);
  return asked ? *asked : serve();
}

// The exit code; the entry is all that tells why.
int endBroken(const std::exception& failure) try {
  windows::SystemEventLog().write(
      {platform::Event::startBroken, windows::executablePath(), text::fromUtf8(failure.what()), {}});
  return platform::exitCodeOfBroken(ownCommandLine().start);
} catch (const std::exception&) {
  return 1;
}

}  // namespace
}  // namespace vordane

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
  vordane::windows::loadFromSystemOnly();
  // The last of the three places where a failure stops: without the parts there is nothing to show it with.
  try {
    return vordane::run();
  } catch (const std::exception& failure) {
    return vordane::endBroken(failure);
  }
}
