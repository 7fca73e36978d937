// The documented tables of a fault database, read through its statements: of a store on a server, whose other
// tables are its own.
#pragma once

#include "platform/access/access_file.h"
#include "platform/database.h"

namespace vordane::tools {

// Faults come by their numbers. Throws DatabaseError. What others store meanwhile may be among them.
void readStoreTables(database::Database& store, access::Visitor& visitor);

}  // namespace vordane::tools
