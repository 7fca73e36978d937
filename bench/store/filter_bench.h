// What a filter costs among many rows.
#pragma once

#include <string>

#include "platform/database.h"
#include "store/bare_store.h"

namespace vordane::bench {

// `rows` are exchange 1 of the file that `bare` has open, newest first.
void measureFilter(database::RowList& rows, BareStore& bare, const std::string& howMany);

}  // namespace vordane::bench
