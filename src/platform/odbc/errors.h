// What a driver says has failed, as the numbers of the interface.
#pragma once

#include <string>
#include <string_view>

#include "platform/database_errors.h"

namespace vordane::odbc {

namespace number = database::number;

// The number for an SQLSTATE; every other failure of a call is callFailed.
int numberOf(std::string_view state);

// What is said of it in place of the server's own sentence; empty where that one is clear.
std::u16string_view sentenceOf(std::string_view state);

// Whether nothing more can come of a connection that has failed so.
bool meansLost(std::string_view state);

}  // namespace vordane::odbc
