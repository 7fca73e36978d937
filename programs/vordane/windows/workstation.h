// The workstation's half of the add-in, as start-up wants it handed in.
#pragma once

#include <memory>

#include "language/view_texts.h"
#include "platform/dao/dao_engine.h"
#include "platform/engine_choice.h"
#include "platform/sqlite/engine.h"
#include "platform/windows/com/class_server.h"
#include "platform/windows/services/services.h"
#include "platform/windows/window/background.h"
#include "platform/windows/window/win32_view.h"
#include "startup/application.h"

namespace vordane {

class ReadablePictures : public comPicture::PictureLoader {
 public:
  bool readable(std::u16string_view path) override { return window::win32::pictureReadable(path); }
};

// In the order of making: what stands below may use what stands above.
struct Workstation {
  com::Apartment apartment;
  com::ClassServer process{apartment};
  SharedState state;
  windows::RegistrySettings settings;
  windows::SystemClock clock;
  windows::SystemFiles files;
  windows::ComObjectCreator creator;
  ReadablePictures pictures;
  platform::Program program = windows::thisProgram();
  std::unique_ptr<database::Engine> engine =
      database::makeEngineChoice(dao::makeEngine(creator), sqlite::makeEngine());
  MessageTexts words{state};
  std::unique_ptr<window::win32::Win32View> view = window::win32::makeWin32View(words, settings);
  windows::SystemMessageBoxes boxes{[this] { return view->window(); },
                                    [this](auto path) { helpMissing(path); }};
  startup::Application application{
      {settings, clock, files, creator, boxes, *engine, *view, pictures, process, program}, state};

 private:
  void helpMissing(std::u16string_view path);
};

}  // namespace vordane
