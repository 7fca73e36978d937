// The names of the settings by which the suite's programs find each other: application QUILMAR32, a section
// for each version of the suite.
#pragma once

#include <string_view>

namespace vordane::settings {

inline constexpr std::u16string_view suiteApplication = u"QUILMAR32";
// What a stored setting holds that says the same as none.
inline constexpr std::u16string_view noSetting = u"NONE";

namespace setting {
inline constexpr std::u16string_view installPath = u"InstallPath";  // the version directory, ends in "\"
inline constexpr std::u16string_view suiteVersion = suiteApplication;
inline constexpr std::u16string_view exchangeVersion = u"ZUL";  // of the exchange server
}  // namespace setting

}  // namespace vordane::settings
