// Whether the texts of a language are all there and fit the program.
#pragma once

#include <span>

#include "language_source.h"

namespace vordane::tools {

// What one language lacks or has too much of.
void checkLanguage(const LanguageSource& source, Problems& problems);

// What the languages have unlike one another: rows, values to fill in, buttons.
void compareLanguages(std::span<const LanguageSource> sources, Problems& problems);

}  // namespace vordane::tools
