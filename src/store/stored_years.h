// Faults stored with a two-digit year, brought to the four-digit form.
#pragma once

#include "store/comSSDataGrid.h"
#include "store/store_form.h"

namespace vordane::store {

// Goes through the faults of every exchange, but only when the first of them by date, latest text first, has
// a two-digit year: once any date has four digits, two-digit ones that sort behind it stay. Throws
// DatabaseError.
void widenStoredYears(const Surroundings& around, comSSDataGrid::FaultRows& shown,
                      database::Database& database);

}  // namespace vordane::store
