// The data files of an installed suite.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "language_source.h"
#include "settings/suite_databases.h"

namespace vordane::tools {

// Where things stand below the version directory ("...\QUILMAR32\30000").
struct SuiteLayout {
  std::filesystem::path root;
  std::filesystem::path addins() const { return root / "ADDINS"; }
  std::filesystem::path program() const { return addins() / "VORDANE.EXE"; }
  std::filesystem::path host() const { return addins() / "devhost.exe"; }
  std::filesystem::path tools() const { return addins() / "vordane-tools.exe"; }
  std::filesystem::path ownDatabases() const { return addins() / "DATABASE"; }
  std::filesystem::path faults() const { return ownDatabases() / "FAULT.MDB"; }
  std::filesystem::path texts() const { return ownDatabases() / "VORDANE.LNG"; }
  std::filesystem::path help() const { return addins() / "HELP"; }
  std::filesystem::path helpText() const { return help() / "VORDANE.TXT"; }
  std::filesystem::path guide() const { return help() / "GUIDE"; }
  std::filesystem::path report() const { return addins() / "REPORT"; }
  std::filesystem::path reportForm() const { return report() / "FAULT.RPT"; }
  std::filesystem::path setup() const { return addins() / "SETUP"; }
  std::filesystem::path remover() const { return setup() / "remove.exe"; }
  std::filesystem::path sharedDatabases() const { return root / "QUIL32" / "DATABASE"; }
  std::filesystem::path sharedTexts() const { return sharedDatabases() / "Common.LNG"; }
  std::filesystem::path registration() const { return sharedDatabases() / "Register.mdb"; }
  std::filesystem::path schedule() const { return sharedDatabases() / "Schedule.mdb"; }
  std::filesystem::path pictures() const { return root / "BACKGRND"; }
  std::filesystem::path demonstration() const { return root / "SIM"; }
  std::filesystem::path simulator() const { return demonstration() / "Zulsim.exe"; }
};
// The same as places, which have no root.
inline const SuiteLayout places{{}};

// The directory that a person names, which may end in a separator, as "InstallPath" does, or be "." or "..":
// absolute, without any of these. Throws ToolError when there is none.
std::filesystem::path suiteDirectory(const std::string& named);

// The add-in's row of the suite's registration database, in the order of the table: what the suite's menu
// shows. The version comes when a host first creates the add-in.
struct RegistryValue {
  std::u16string_view column, value;
};
inline constexpr RegistryValue registryRow[] = {{u"AppName", settings::registeredName},
                                                {u"MenuName", u"Maintenance"},
                                                {u"ItemName", u"Fault Display"},
                                                {u"ToolTip", u"Shows the faults of an exchange"},
                                                {u"Version", u""}};

// Whose a file is, and so what becomes of it when the suite's files are made, renewed or removed.
enum class Keeper : std::uint8_t {
  release,  // this release's: made anew, and removed with it
  texts,    // VORDANE.LNG: its language decides which faults count as the same, so it stays where faults stay
  faults,   // FAULT.MDB, a user's work: made once, never overwritten
  shared,   // the suite's, for all its add-ins: only a set that stands alone renews and removes it
  jobs      // the suite's, and a user's work: made once
};

// One data file of an installed suite. Programs are not among them.
struct DataFile {
  std::filesystem::path place;  // below the version directory
  Keeper keeper;
  std::function<void(const std::filesystem::path& path)> make;  // ToolError, database::DatabaseError
};

// Every data file, in the order in which they are made: the one description of the installed layout. With
// `report`, the folder of the report's layout and texts, FAULT.RPT is among them. `language` must live as
// long as the list.
std::vector<DataFile> dataFiles(const LanguageSource& language, const std::filesystem::path& report = {});

// The languages that the window can be read in besides that of the suite, `name`: a file beside VORDANE.LNG
// for each of the others, "VORDANE.ru.LNG".
std::vector<DataFile> readingFiles(const std::vector<LanguageSource>& languages, const std::string& name);

// Whether two paths lead to the same file or directory, also where one ends in a separator, which not every
// system's look at it bears.
bool samePlace(const std::filesystem::path& a, const std::filesystem::path& b);

// Makes every data file that is missing, those of `others` to read in among them. What a user's work may have
// changed (stored faults, registration, jobs) stays when it is there; texts, pictures and help are made anew.
// Throws ToolError or database::DatabaseError.
void makeSuiteFiles(const SuiteLayout& layout, const LanguageSource& language,
                    const std::vector<LanguageSource>& others = {});

// The layout of the printed report, as hosts fill it in: FAULT.RPT of `folder` with the texts of the language
// (report_ layout.h), which stand beside it by the language's name. Throws ToolError.
void installReportLayout(const SuiteLayout& layout, const std::filesystem::path& folder,
                         const LanguageSource& language);

// The pages of the guide, as tools/guide makes them in a folder for each language: guide.html, which is all
// of it, and one for each topic that the window opens. Those of another language go. Throws ToolError.
void installGuide(const SuiteLayout& layout, const std::filesystem::path& folder,
                  const std::string& language);

}  // namespace vordane::tools
