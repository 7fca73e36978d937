// Whether the guide describes all that a person meets, in every language.
#pragma once

#include <span>
#include <string>

#include "guide_source.h"

namespace vordane::tools {

// What a program prints when it is asked for help. The guide describes its options below the anchor of its
// name: "vordane-tools decode" below {#vordane-tools-decode}.
struct ProgramHelp {
  std::string program;
  std::string text;
};

// Described is what stands as the term of a definition: messages, boxes, captions and headings by their
// marks, options as code. Of one language: what is not described, what leads nowhere, what nothing shows.
void checkGuide(const GuideSource& guide, const LanguageSource& language,
                std::span<const ProgramHelp> programs, Problems& problems);

// Topics and pictures that one language has and another has not.
void compareGuides(std::span<const GuideSource> guides, Problems& problems);

}  // namespace vordane::tools
