// The workstation's half of the add-in, as start-up wants it handed in.
#pragma once

#include <memory>

#include "platform/dao/dao_engine.h"
#include "platform/engine_choice.h"
#include "platform/sqlite/engine.h"
#include "platform/windows/com/class_server.h"
#include "platform/windows/services/services.h"

namespace vordane {

struct Workstation {
  com::Apartment apartment;
  com::ClassServer process{apartment};
  windows::RegistrySettings settings;
  windows::SystemClock clock;
  windows::SystemFiles files;
  windows::ComObjectCreator creator;
  platform::Program program = windows::thisProgram();
  std::unique_ptr<database::Engine> engine =
      database::makeEngineChoice(dao::makeEngine(creator), sqlite::makeEngine());
};

}  // namespace vordane
