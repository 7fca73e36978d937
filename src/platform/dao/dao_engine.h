// The database interface over the workstation's Access engine, called late-bound through DAO. Portable, since
// it only makes automation calls; what creates the engine's object is handed in.
#pragma once

#include <chrono>
#include <memory>

#include "platform/database.h"
#include "platform/description.h"
#include "platform/services.h"

namespace vordane::dao {

// Asks for DAO.DBEngine.120 and then DAO.DBEngine.36 at the first opening, and keeps the object. Opening
// fails with number 429 where neither is installed. `creator` must outlive the engine. Only statements that
// the descriptions name are sent.
// A file that another program has opened exclusively is tried again for `lockWait`.
std::unique_ptr<database::Engine> makeEngine(
    database::Descriptions descriptions, platform::ObjectCreator& creator,
    std::chrono::milliseconds lockWait = std::chrono::milliseconds(5000));

}  // namespace vordane::dao
