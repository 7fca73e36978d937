// What equal events share.
#pragma once

#include <string>
#include <vector>

#include "platform/odbc/tables.h"
#include "platform/odbc/values.h"

namespace vordane::odbc {

// Empty for an event that equals none, since something of it is missing.
std::u16string identityOf(const Table& table, const NewRow& row);
// Of what the plan's statement looks for with these values; the plan is one that looks for the same event.
std::u16string identityOf(const Plan& plan, const std::vector<jet::Literal>& values);

}  // namespace vordane::odbc
