// Whether the texts of a language are all there and fit the program.
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>

#include "faults/kind_lists.h"
#include "language/message_numbers.h"
#include "language_source.h"

namespace vordane::tools {

// The messages that every language has, from 0.
inline constexpr std::int32_t messageCount =
    std::max(static_cast<std::int32_t>(message::count), faults::lastFaultText + 1);

// What one language lacks or has too much of.
void checkLanguage(const LanguageSource& source, Problems& problems);

// What the languages have unlike one another: rows, values to fill in, buttons.
void compareLanguages(std::span<const LanguageSource> sources, Problems& problems);

}  // namespace vordane::tools
