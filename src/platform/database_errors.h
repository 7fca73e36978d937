// What goes wrong in a database, in one sentence each.
#pragma once

#include <string_view>

#include "platform/database.h"
#include "platform/database_numbers.h"

namespace vordane::database {

// Throws the one sentence for `number`, followed by `about` in quotes when there is something to name.
[[noreturn]] void fail(int number, std::u16string_view about = {});

}  // namespace vordane::database
