// Makes language databases of their sources.
#pragma once

#include "language_source.h"

namespace vordane::tools {

// Writes the add-in's own language database (VORDANE.LNG), replacing what stands there. Throws
// database::DatabaseError when it can't be written; nothing is left half done. The source must have passed
// the check: a number that isn't one throws ToolError.
void buildOwnLanguage(const LanguageSource& source, const std::filesystem::path& out);

// The same for the texts and picture sets that the suite's add-ins share (Common.LNG).
void buildCommonLanguage(const LanguageSource& source, const std::filesystem::path& out);

}  // namespace vordane::tools
