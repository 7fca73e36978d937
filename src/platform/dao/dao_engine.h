// The database interface over the workstation's Access engine, called late-bound through DAO. Portable, since
// it only makes automation calls; what creates the engine's object is handed in.
#pragma once

#include <memory>

#include "platform/database.h"
#include "platform/services.h"

namespace vordane::dao {

// Asks for DAO.DBEngine.120 and then DAO.DBEngine.36 at the first opening, and keeps the object. Opening
// fails with number 429 where neither is installed. `creator` must outlive the engine.
std::unique_ptr<database::Engine> makeEngine(platform::ObjectCreator& creator);

}  // namespace vordane::dao
