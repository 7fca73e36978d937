// The few words of a language that generated parts of the guide are made of (docs/guide/LANGUAGE/words.tsv).
#pragma once

#include <array>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>

#include "language_source.h"

namespace vordane::tools {

enum class Word {
  shown,      // before the lines that are shown
  shownElse,  // before another form of them
  titleOnly,  // nothing but the title is shown
  unknown,    // what the title of unknown kinds is for
  byte,       // {1} its number
  bytes,      // {1} first, {2} last
  highDigit,  // {1} the byte's number
  lowDigit,
  value,     // heading of the column with values
  text,      // heading of the column with what is shown for them
  nothing,   // no text is shown for a value
  others,    // every other value
  number,    // the value in decimal
  asItIs,    // the characters as they stand
  decimal,   // two bytes whose digits are read as decimal
  signedOf,  // 16 bits with a sign; {1} the byte that comes first
  lowBit,    // one bit alone decides
  lowBits,   // {1} how many count
  narrow,    // {1} how many bits count where module numbers have 6
  digitsStop,
  digitsSkip,  // {1} the digits shown, {2} what is not
  guide,       // title of the guide
  contents,    // heading of the table of contents
  elsewhere,   // text of the link on a page that leads into the guide
};
inline constexpr std::array<std::string_view, 24> wordNames{
    "shown",      "shown-else",  "title-only",  "unknown", "byte",     "bytes",
    "high-digit", "low-digit",   "value",       "text",    "nothing",  "others",
    "number",     "as-it-is",    "decimal",     "signed",  "low-bit",  "low-bits",
    "narrow",     "digits-stop", "digits-skip", "guide",   "contents", "elsewhere"};

class GuideWords {
 public:
  // A missing file, an unknown word and one without a text are problems.
  GuideWords(const std::filesystem::path& file, const std::string& name, Problems& problems);
  // With the values in the places of {1} and {2}.
  std::string operator()(Word word, std::string_view first = {}, std::string_view second = {}) const;

 private:
  std::map<std::string, std::string, std::less<>> texts_;
};

}  // namespace vordane::tools
