// The data files of an installed suite.
#pragma once

#include <filesystem>

#include "language_source.h"

namespace vordane::tools {

// Where things stand below the version directory ("...\QUILMAR32\30000").
struct SuiteLayout {
  std::filesystem::path root;
  std::filesystem::path program() const { return root / "ADDINS" / "VORDANE.EXE"; }
  std::filesystem::path ownDatabases() const { return root / "ADDINS" / "DATABASE"; }
  std::filesystem::path help() const { return root / "ADDINS" / "HELP"; }
  std::filesystem::path guide() const { return help() / "GUIDE"; }
  std::filesystem::path report() const { return root / "ADDINS" / "REPORT"; }
  std::filesystem::path sharedDatabases() const { return root / "QUIL32" / "DATABASE"; }
  std::filesystem::path pictures() const { return root / "BACKGRND"; }
};

// The directory that a person names, which may end in a separator, as "InstallPath" does, or be "." or "..":
// absolute, without any of these. Throws ToolError when there is none.
std::filesystem::path suiteDirectory(const std::string& named);

// Makes every data file that is missing. What a user's work may have changed (stored faults, registration,
// jobs) stays when it is there; texts, pictures and help are made anew. Throws ToolError or
// database::DatabaseError.
void makeSuiteFiles(const SuiteLayout& layout, const LanguageSource& language);

// The layout of the printed report, as hosts fill it in: FAULT.RPT of `folder` with the texts of the language
// (report_ layout.h), which stand beside it by the language's name. Throws ToolError.
void installReportLayout(const SuiteLayout& layout, const std::filesystem::path& folder,
                         const LanguageSource& language);

// The pages of the guide, as tools/guide makes them in a folder for each language: guide.html, which is all
// of it, and one for each topic that the window opens. Those of another language go. Throws ToolError.
void installGuide(const SuiteLayout& layout, const std::filesystem::path& folder,
                  const std::string& language);

}  // namespace vordane::tools
