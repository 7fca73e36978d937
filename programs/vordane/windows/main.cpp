// VORDANE.EXE: reads what the command line asks for and wires the parts.
#include <windows.h>

#include <memory>
#include <string>
#include <vector>

#include "language/message_numbers.h"
#include "pbx/cListRequest.h"
#include "pbx/cSLVRequest.h"
#include "platform/command_line.h"
#include "platform/registration.h"
#include "platform/windows/com/objects.h"
#include "platform/windows/com/registrar.h"
#include "startup/basMain.h"
#include "startup/cOLELayer.h"
#include "startup/dlgFaultDisplay.h"
#include "startup/public_classes.h"
#include "workstation.h"

namespace vordane {

// A box above the one whose help button was pressed.
void Workstation::helpMissing(std::u16string_view path) {
  application.form().showBox(box::helpNotFound, path);
}

namespace {

std::vector<com::ServedClass> classes(startup::Application& application) {
  return {
      {std::string(cOLELayer::classTable().clsid), [&] { return application.createLayer(); }, true},
      {std::string(cListRequest::classTable().clsid), [&] { return application.createListRequest(); }, false},
      {std::string(cSLVRequest::classTable().clsid), [&] { return application.createSLVRequest(); }, false}};
}

int serve() {
  Workstation here;
  com::setErrorSource(u"Vordane10013");
  here.apartment.filterCalls(here.application);
  switch (basMain::Main(here.application)) {
    case basMain::Start::hostMode:
      here.process.serve(classes(here.application));
      break;
    case basMain::Start::window:
      break;
    case basMain::Start::nothing:
      return 0;
  }
  return com::runMessageLoop([&](MSG& message) {
    // A host that never stops calling would starve the timer's message.
    here.view->serveDueTick();
    return here.view->translate(message);
  });
}

int run() {
  const platform::CommandLine line =
      platform::parseCommandLine(platform::withoutProgramName(com::fromWide(GetCommandLineW())));
  const auto server = [] {
    return registration::serverOf(windows::executablePath(), startup::libraryTable());
  };
  if (line.start == platform::Start::registerServer) return com::registerServer(server());
  if (line.start == platform::Start::unregisterServer) return com::unregisterServer(server());
  return serve();
}

}  // namespace
}  // namespace vordane

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
  return vordane::run();
}
