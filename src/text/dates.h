// Moments as automation and Access keep them: days since 1899-12-30, local time, the time of day as fraction.
#pragma once

#include <string>

namespace vordane::text {

// "YYYY-MM-DD HH:MM:SS", rounded to the second; the empty text outside the years 100 to 9999.
std::u16string isoMoment(double days);

}  // namespace vordane::text
