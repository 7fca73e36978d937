// Reads an Access file whole through DAO, as the importer on Windows does.
#pragma once

#include <string_view>

#include "platform/access/access_file.h"
#include "platform/services.h"

namespace vordane::dao {

// Every user table, from a copy: the file itself is never opened. Throws DatabaseError for what DAO refuses
// and AccessError for a column type that is not imported or rows that are not as many as counted.
void readAccessFile(platform::ObjectCreator& creator, std::u16string_view path, access::Visitor& visitor);

}  // namespace vordane::dao
