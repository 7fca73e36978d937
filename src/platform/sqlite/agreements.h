// What a file keeps of its last writer, in a table beside the documented ones:
//
//   VordaneAgreements  a row for each Subject: Name for people, Mark to compare
//
// A server's store has a table of the same name, on which its stations agree.
#pragma once

#include <optional>
#include <string_view>

#include "platform/database.h"
#include "platform/sqlite/plan.h"

namespace vordane::sqlite {

// Both throw DatabaseError; a lock of somebody else is waited for a second.
std::optional<database::Agreement> keptAgreement(Opened& opened, std::u16string_view subject);
void keepAgreement(Opened& opened, std::u16string_view subject, const database::Agreement& own);

}  // namespace vordane::sqlite
