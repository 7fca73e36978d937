// The installed suite's own words, as its language has them.
#pragma once

#include <string>
#include <string_view>

namespace vordane::suite {

// Of the suites installed from now on: "en", "ru" or "ja".
void setLanguage(const std::string& language);
const std::string& language();

// Message `number` with its places {1}, {2} unfilled.
std::string messageText(std::size_t number);
// Whether the text is that message, whatever fills its place {1}.
bool isMessage(std::string_view text, std::size_t number);

}  // namespace vordane::suite
