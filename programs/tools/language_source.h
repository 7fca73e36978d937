// The texts of one language as a translator keeps them: a folder of files with one row a line and a tab
// between columns (UTF-8; lines that begin with # are comments).
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace vordane::tools {

struct SourceRow {
  std::string place;  // "en/controls.tsv:12"
  std::vector<std::u16string> fields;
};
using SourceRows = std::vector<SourceRow>;

// Each member is a file of that name; the columns are those of docs/languages.md.
struct LanguageSource {
  std::string name;  // of the folder
  SourceRows messages, lists, forms, controls, headings, project, boxes, common_boxes, help;
  SourceRows pictures, picture_sets;  // from the folder "shared" beside it, the same for every language
};

// What is wrong, one line each, beginning with the place.
using Problems = std::vector<std::string>;

// Missing files and rows with a wrong number of columns are reported and left out.
LanguageSource readLanguageSource(const std::filesystem::path& folder, Problems& problems);

// A path given on the command line, which is UTF-8 on every system.
std::filesystem::path toPath(const std::string& utf8);
std::u16string toText(const std::filesystem::path& path);

}  // namespace vordane::tools
