// The exchange's own response texts as small codes, and the generation of its main processor.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/automation.h"

namespace vordane::pbx {

inline constexpr std::int16_t responseDataNotFound = 4;
inline constexpr std::int16_t responseOk = 100;

// The code of a response text, -1 for none.
std::int16_t GetResponseCode(std::u16string_view text);

// One character, or empty when the host (may be null) can't tell.
std::u16string GetMPGeneration(automation::Object* parent, std::u16string_view pbxName);

}  // namespace vordane::pbx
