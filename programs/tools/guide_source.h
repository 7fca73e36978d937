// The guide of one language as its writer keeps it: a folder of Markdown files, read in the order of their
// names, with pictures in "pictures" below it and words.tsv beside them. Where the window's own words stand
// the text has a mark, so that they are never copied:
//
//   {{message 197}}  a message          {{control cmdRequest}}  a caption, without its access key
//   {{box 102}}      a box's prompt     {{column 2}}            a heading of the grid
//   {{kinds}}        the reference      {{project NAME}}        a text of the application
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "guide_words.h"
#include "language_source.h"

namespace vordane::tools {

struct GuideFile {
  std::string name;  // "en/40-requests.md"
  std::string text;
};

struct GuideSource {
  std::filesystem::path folder;
  std::string language;  // the folder's name
  std::vector<GuideFile> files;
  GuideWords words;
};

// Missing files and words are problems.
GuideSource readGuide(const std::filesystem::path& folder, Problems& problems);

// Calls `take(line, number, file)` for each line outside of code blocks.
using TakeLine = std::function<void(std::string_view line, int number, const GuideFile& file)>;
void forEachLine(const GuideSource& guide, const TakeLine& take);

// The marks of a line, without their braces: "message 197".
std::vector<std::string> marksOf(std::string_view line);

// What a mark stands for in a language, ready for Markdown; a mark that means nothing is a problem at
// `place`.
std::string textOfMark(std::string_view mark, const LanguageSource& language, const GuideWords& words,
                       const std::string& place, Problems& problems);

// All of it as one text, the marks filled in.
std::string filledGuide(const GuideSource& guide, const LanguageSource& language, Problems& problems);

}  // namespace vordane::tools
