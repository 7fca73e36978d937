// The workstation's half of the add-in and the application above it, wired. Lives as long as the process has
// a message loop.
#pragma once

#include <memory>
#include <utility>

#include "language/message_numbers.h"
#include "language/view_texts.h"
#include "platform/dao/dao_engine.h"
#include "platform/engine_choice.h"
#include "platform/odbc/engine.h"
#include "platform/odbc/library.h"
#include "platform/sqlite/engine.h"
#include "platform/windows/com/class_server.h"
#include "platform/windows/services/services.h"
#include "platform/windows/window/background.h"
#include "platform/windows/window/win32_view.h"
#include "startup/application.h"
#include "startup/databases.h"
#include "startup/dlgFaultDisplay.h"
#include "trace/traced_station.h"

namespace vordane {

class Pictures final : public comPicture::PictureLoader {
 public:
  bool readable(std::u16string_view path) override { return window::win32::pictureReadable(path); }
};

struct Parts {
  com::Apartment apartment;
  com::ClassServer process{apartment};
  windows::RegistrySettings settings;
  windows::SystemClock clock;
  windows::SystemFiles files;
  windows::ComObjectCreator creator;
  windows::SystemDocuments documents;
  windows::SystemEventLog events;
  Pictures pictures;
  std::unique_ptr<database::Engine> engine = database::makeEngineChoice(
      dao::makeEngine(startup::databases, creator),
      sqlite::makeEngine(startup::databases, {windows::isOnNetworkDrive}), {windows::isHeldByOthers},
      odbc::makeEngine(startup::databases, odbc::systemLibrary()));

  SharedState state;
  MessageTexts viewTexts{state};
  std::unique_ptr<window::win32::Win32View> view = window::win32::makeWin32View(
      viewTexts, settings, windows::stationIsVisible() ? window::win32::systemSignals() : nullptr);
  windows::SystemMessageBoxes boxes{[this] { return view->window(); },
                                    [this](std::u16string_view file) { showHelp(file); }};
  startup::Workstation plain{settings, clock, files,    creator, boxes,  documents,
                             *engine,  *view, pictures, process, events, windows::thisProgram()};
  windows::RegistrySettings workstationSettings{HKEY_LOCAL_MACHINE};
  std::unique_ptr<trace::TracedStation> traced = trace::traceAsWished(plain, workstationSettings);
  startup::Application application{traced ? traced->station() : plain, state};

  Parts() {
    apartment.filterCalls(application);
    if (traced) traced->watch(application);
  }

  // One of the application's objects, as whoever creates it gets it.
  automation::ObjectRef given(automation::ObjectRef object) {
    return traced ? traced->given(object) : std::move(object);
  }

  void showHelp(std::u16string_view file) {
    const auto document = application.helpDocument(file);
    if (!document || !documents.open(*document)) application.showBox(box::helpNotFound, file);
  }
};

}  // namespace vordane
