// What an upgrade keeps of the texts that are installed, and what it renews.
#pragma once

#include <optional>
#include <span>
#include <string>

#include "language_source.h"

namespace vordane::tools {

// Messages up to this one are parts of stored descriptions: other words would store every fault once more.
inline constexpr int lastKeptMessage = 164;
// Boxes from this one on are this program's own.
inline constexpr int firstOwnBox = 900;

// The texts to install over `installed`: from there the messages up to lastKeptMessage, the kinds' lists and
// the boxes below firstOwnBox, as far as they are there; everything else from `fresh`, a shipped language.
LanguageSource mergedLanguage(const LanguageSource& installed, const LanguageSource& fresh);

// The one of the shipped languages that most of the installed texts are in; nothing when it is none of them.
std::optional<std::string> languageOf(const LanguageSource& installed,
                                      std::span<const LanguageSource> shipped);

}  // namespace vordane::tools
