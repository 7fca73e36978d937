// The moment of the last list, as PBXList keeps it and as the window shows it.
#pragma once

#include <string>
#include <string_view>

#include "platform/database.h"
#include "platform/services.h"

namespace vordane::store {

// Sets `TimeStamp` of the row being added or edited to now: a date column takes the one unmistakable form, a
// text column the workstation's regional one.
void stampNow(database::Recordset& row, platform::Clock& clock);

// "YYYY-MM-DD HH:MM:SS".
std::u16string isoText(const platform::LocalTime& time);

// The regional text of a date column's value; anything else as it stands.
std::u16string shownTimeStamp(std::u16string_view stored, bool dated, platform::Clock& clock);

}  // namespace vordane::store
