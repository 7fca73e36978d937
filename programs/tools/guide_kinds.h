// The guide's reference of the fault kinds. Nothing in it is written down: every value of every byte is
// decoded, and what the decoder shows for it is what the reference says.
#pragma once

#include <string>

#include "faults/fault_texts.h"
#include "guide_words.h"

namespace vordane::tools {

// "kind-09", "kind-other": the anchor of a kind, and of all that the table of kinds does not know.
std::string kindAnchor(int kind);
inline constexpr const char* unknownKindAnchor = "kind-other";

// Markdown: for each kind of the table a heading of the third level with its anchor, the lines that are shown
// with the places of the bytes in them, and what each byte means.
std::string kindReference(const FaultTextTable& texts, const GuideWords& words);

}  // namespace vordane::tools
