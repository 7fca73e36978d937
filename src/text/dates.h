// Moments as automation and Access keep them: days since 1899-12-30, local time, the time of day as fraction.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vordane::text {

// "YYYY-MM-DD HH:MM:SS": the form of dates in databases, of a moment's text and of the lines of a run's log.
// The parts are taken as they are.
std::u16string isoText(int year, int month, int day, int hour, int minute, int second);

// Whether a text has that form, whatever its numbers are.
bool isIsoText(std::u16string_view text);

// Whether a text is written as the pattern is, in which "0" stands for any decimal digit and every other
// character for itself.
bool hasForm(std::u16string_view text, std::u16string_view pattern);

// isoText of a moment, rounded to the second; the empty text outside the years 100 to 9999.
std::u16string isoMoment(double days);

// The way back; nothing for a text that isoMoment never gives (30 February, another form).
std::optional<double> momentOf(std::u16string_view text);

}  // namespace vordane::text
