// A copy of the shipped texts that a test may spoil.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "fakes/folder_engine.h"
#include "places.h"

namespace vordane::fakes {

class LanguageFolder {
 public:
  explicit LanguageFolder(const std::string& language = "en") {
    const std::filesystem::path data = test::sourceFolder() / "data/language";
    std::filesystem::copy(data / language, folder(), std::filesystem::copy_options::recursive);
    std::filesystem::copy(data / "shared", files.folder() / "shared",
                          std::filesystem::copy_options::recursive);
  }
  std::filesystem::path folder() const { return files.folder() / "en"; }

  std::string read(const std::string& file) const {
    std::ifstream in(folder() / file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }
  void write(const std::string& file, const std::string& content) {
    std::ofstream(folder() / file, std::ios::binary) << content;
  }
  // Replaces the first `from`, which must be there.
  void replace(const std::string& file, const std::string& from, const std::string& to) {
    std::string content = read(file);
    content.replace(content.find(from), from.size(), to);  // throws when it is not there
    write(file, content);
  }
  void append(const std::string& file, const std::string& line) { write(file, read(file) + line + "\n"); }

  FolderEngine files;
};

}  // namespace vordane::fakes
