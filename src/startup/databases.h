// Every database of the program, for the engines that open them.
#pragma once

#include "language/language_databases.h"
#include "settings/suite_databases.h"
#include "store/fault_database.h"

namespace vordane::startup {

inline constexpr database::Description databases[] = {
    store::faultDatabase, language::ownDatabase,          language::commonDatabase,
    language::helpPart,   settings::registrationDatabase, settings::scheduleDatabase};

}  // namespace vordane::startup
