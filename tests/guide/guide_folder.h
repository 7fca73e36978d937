// A copy of the shipped guide of one language that a test may spoil, and its texts.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "fakes/folder_engine.h"
#include "guide_check.h"
#include "places.h"

namespace vordane::fakes {

class GuideFolder {
 public:
  GuideFolder() {
    std::filesystem::copy(test::sourceFolder() / "docs/guide/en", folder(),
                          std::filesystem::copy_options::recursive);
    tools::Problems none;
    language = tools::readLanguageSource(test::sourceFolder() / "data/language/en", none);
  }
  std::filesystem::path folder() const { return files.folder() / "en"; }

  // Replaces the first `from` of the guide's files, which must be there.
  void replace(const std::string& from, const std::string& to) {
    for (const auto& entry : std::filesystem::directory_iterator(folder())) {
      if (!entry.is_regular_file()) continue;
      std::string content = read(entry.path());
      const auto at = content.find(from);
      if (at == content.npos) continue;
      std::ofstream(entry.path(), std::ios::binary) << content.replace(at, from.size(), to);
      return;
    }
    throw std::logic_error("the guide has no \"" + from + "\"");
  }

  std::vector<std::string> check(const std::vector<tools::ProgramHelp>& programs = {}) const {
    tools::Problems problems;
    const tools::GuideSource guide = tools::readGuide(folder(), problems);
    tools::checkGuide(guide, language, programs, problems);
    return problems;
  }

  FolderEngine files;
  tools::LanguageSource language;

 private:
  static std::string read(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }
};

}  // namespace vordane::fakes
