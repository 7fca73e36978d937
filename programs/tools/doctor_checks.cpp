#include "doctor_checks.h"

#include <algorithm>
#include <map>
#include <system_error>

#include "doctor_language.h"
#include "doctor_paths.h"
#include "installed_language.h"
#include "language/form_controls.h"
#include "language/language_databases.h"
#include "language/row_values.h"
#include "language_check.h"
#include "language_texts.h"
#include "lines.h"
#include "platform/engine_choice.h"
#include "settings/shared_state.h"
#include "settings/suite_databases.h"
#include "settings/suite_settings.h"
#include "store/fault_database.h"
#include "text/text.h"
#include "text/utf8.h"
#include "tools/sqlite/integrity.h"

namespace vordane::tools {
namespace {

namespace fs = std::filesystem;
using database::Database;
using Findings = std::vector<Finding>;
using Tables = std::span<const database::TableDefinition>;

// One file that the program opens.
struct SuiteFile {
  fs::path path;
  Tables tables;
  Weight weight;  // of its absence
  bool writable;  // it is opened for writing
  const char* without;
  std::span<const std::u16string_view> needed;  // tables that `weight` goes for; none: for all of them
  Remedy remedy = Remedy::none;                 // of its absence

  Weight weightOf(std::u16string_view table) const {
    const bool used = needed.empty() || std::find(needed.begin(), needed.end(), table) != needed.end();
    return used ? weight : Weight::incomplete;
  }
};

// What the start itself reads; without the others the program leaves something out.
constexpr std::u16string_view ownNeeded[] = {u"tProject", u"tMessages"};
constexpr std::u16string_view commonNeeded[] = {u""};

std::string nameOf(const fs::path& path) {
  return text::toUtf8(toText(path));
}

std::u16string columnList(const database::TableDefinition& table) {
  std::u16string columns;
  for (const auto& column : table.columns)
    columns += (columns.empty() ? u"[" : u",[") + std::u16string(column.name) + u"]";
  return columns;
}

// A schedule may lack the job kind, and of the suite's registration only the add-in's own row is used.
bool mayBeMissing(const database::TableDefinition& table, const database::ColumnDefinition& column) {
  if (table.name == u"Registry") return column.name != u"AppName" && column.name != u"Version";
  return table.name == u"Options" && column.name == u"Kind";
}

void examineTable(Database& database, const database::TableDefinition& table, const SuiteFile& file,
                  Findings& findings) {
  const Weight weight = file.weightOf(table.name);
  const std::u16string from = u" from " + std::u16string(table.name);
  if (canRun(database, u"select " + columnList(table) + from)) return;
  if (!canRun(database, u"select *" + from)) {
    findings.push_back({weight, nameOf(file.path) + ": table " + text::toUtf8(table.name) + " is missing"});
    return;
  }
  for (const auto& column : table.columns)
    if (!mayBeMissing(table, column) &&
        !canRun(database, u"select [" + std::u16string(column.name) + u"]" + from))
      findings.push_back({weight, nameOf(file.path) + ": table " + text::toUtf8(table.name) +
                                      " lacks the column " + text::toUtf8(column.name)});
}

// A file that opens may still be damaged further inside.
bool isWhole(const SuiteFile& file, Findings& findings) {
  if (database::fileKind(toText(file.path)) != database::FileKind::embedded) return true;
  const std::string damage = damageIn(toText(file.path));
  if (!damage.empty()) findings.push_back({file.weight, nameOf(file.path) + " is damaged: " + damage});
  return damage.empty();
}

std::string whyNot(const SuiteFile& file, const database::DatabaseError& error) {
  if (database::fileKind(toText(file.path)) == database::FileKind::unknown)
    return nameOf(file.path) + " is no database: " + file.without;
  return nameOf(file.path) + " can't be opened: " + file.without + " (" + text::toUtf8(error.description()) +
         ")";
}

std::unique_ptr<Database> openForLook(database::Engine& engine, const SuiteFile& file, Findings& findings) {
  std::error_code failure;
  if (!fs::is_regular_file(file.path, failure)) {
    findings.push_back({file.weight, nameOf(file.path) + " is missing: " + file.without, file.remedy});
    return nullptr;
  }
  // What is written then is a store on a server; the file only says where it is.
  const bool isStore = database::fileKind(toText(file.path)) == database::FileKind::dataSource;
  if (file.writable && !isStore && !canWrite(file.path))
    findings.push_back({file.weight, nameOf(file.path) + " can't be written: " + file.without});
  if (!isWhole(file, findings)) return nullptr;
  try {
    return engine.open(toText(file.path), !isStore || !file.writable);
  } catch (const database::DatabaseError& error) {
    findings.push_back({file.weight, whyNot(file, error)});
    return nullptr;
  }
}

std::map<std::int32_t, std::int64_t> countById(Database& faults, std::u16string_view table) {
  std::map<std::int32_t, std::int64_t> counts;
  const auto rows = faults.openRecordset(u"select [ID] from " + std::u16string(table));
  for (; !rows->atEnd(); rows->moveNext()) ++counts[automation::toLong(rows->get(u"ID"))];
  return counts;
}

// A deletion that was interrupted, or another program, leaves faults whose exchange is gone.
void examineOwners(Database& faults, const std::string& file, Findings& findings) try {
  std::map<std::int32_t, std::int64_t> left = countById(faults, u"FaultDisplay");
  for (const auto& [id, count] : countById(faults, u"PBXList")) left.erase(id);
  if (left.empty()) return;
  constexpr std::size_t mostNamed = 5;
  std::int64_t all = 0;
  std::size_t named = 0;
  std::string ids;
  for (const auto& [id, count] : left) {
    all += count;
    if (++named <= mostNamed)
      ids += (named == 1 ? "ID " : ", ID ") + std::to_string(id) + ": " + std::to_string(count);
  }
  if (named > mostNamed) ids += ", ...";
  findings.push_back({Weight::incomplete, file + ": " + std::to_string(all) + " fault(s) of no exchange (" +
                                              ids + "): nothing shows them, but 'vordane-tools export'"});
} catch (const database::DatabaseError&) {
  // The table or column that is missing has been named already.
} catch (const automation::AutomationError&) {
  findings.push_back(
      {Weight::incomplete, file + ": the ID of a row is no number, so its exchange can't be told"});
}

// New faults are stored in the words of VORDANE.LNG; what the exchange had reported before would be stored
// again. False where the file does not tell which words its faults are in.
bool examineWords(const SuiteLayout& layout, database::Engine& engine, Database& faults,
                  Findings& findings) try {
  const auto stored = faults.kept(store::languageSubject);
  const database::Agreement own = storingLanguageOf(engine, text::toUtf8(toText(layout.texts())));
  if (!stored) return false;
  if (stored->mark == own.mark) return true;
  findings.push_back({Weight::incomplete,
                      nameOf(layout.faults()) + ": its faults are stored in another language (" +
                          text::toUtf8(stored->name) + ") than that of VORDANE.LNG (" +
                          text::toUtf8(own.name) + "): what an exchange reported before is stored again"});
  return true;
} catch (const database::DatabaseError&) {
  return true;
} catch (const ToolError&) {
  return true;  // what can't be read has been named already
}

void examineTexts(Database& own, Database* common, Findings& findings) try {
  if (projectRows(own, "VORDANE.LNG").empty())
    findings.push_back(
        {Weight::fatal, "VORDANE.LNG: table tProject has no row for VORDANE: the program ends at its start"});
  Problems problems;
  checkLanguage(installedLanguage(own, common, "VORDANE.LNG"), problems);
  for (const std::string& problem : problems) findings.push_back({Weight::incomplete, problem});
} catch (const database::DatabaseError&) {
  // The table or column that is missing has been named already.
} catch (const automation::AutomationError&) {
  findings.push_back({Weight::incomplete, "VORDANE.LNG: a value is of an unexpected type"});
}

void examineRegistration(Database& registry, Findings& findings) {
  if (!canRun(registry, u"select AppName from Registry")) return;
  for (const SourceRow& row : rowsOf(registry, "Register.mdb", u"Registry", {u"AppName"}))
    if (text::equalIgnoringCase(row.fields[0], settings::registeredName)) return;
  findings.push_back({Weight::incomplete,
                      "Register.mdb: there is no row for " + text::toUtf8(settings::registeredName) +
                          ", so the suite does not list the add-in",
                      Remedy::suiteRegistration});
}

void examinePictures(const SuiteLayout& layout, Database& own, Findings& findings) try {
  for (const SourceRow& row : rowsOf(own, "VORDANE.LNG", u"tPicture", {u"FileName"}, u"FormName"))
    if (!row.fields[0].empty() && row.fields[0] != language::keepDesigned &&
        !fs::exists(layout.pictures() / row.fields[0]))
      findings.push_back({Weight::incomplete,
                          nameOf(layout.pictures() / row.fields[0]) + " is missing: no background there"});
} catch (const database::DatabaseError&) {
  // Named already.
}

// The program of a command, whose path stands in quotes unless somebody left them out.
fs::path programOf(const std::u16string& command) {
  if (command.starts_with(u'"')) return command.substr(1, command.find(u'"', 1) - 1);
  constexpr std::u16string_view ending = u".exe";
  const auto end = text::toLower(command).find(ending);
  return end == command.npos ? command : command.substr(0, end + ending.size());
}

// Whether a class starts a program that is there.
bool canStart(const std::string& progId, const std::optional<RegisteredClass>& found, Weight weight,
              const std::string& without, Remedy remedy, Findings& findings) {
  if (!found) {
    findings.push_back({weight, progId + " is not registered: " + without, remedy});
    return false;
  }
  std::error_code failure;
  if (fs::is_regular_file(programOf(found->command), failure)) return true;
  findings.push_back(
      {weight,
       progId + " is registered to " + nameOf(programOf(found->command)) + ", which is not there: " + without,
       remedy});
  return false;
}

// What is registered for every user runs in the name of each of them.
void examineGuard(const std::string& progId, const RegisteredClass& found, const Workstation& workstation,
                  Findings& findings) {
  if (!found.forEveryUser) return;
  std::string holes;
  for (const guard::Finding& hole : workstation.whoMayReplace(toText(programOf(found.command))))
    holes += (holes.empty() ? "" : ", ") + text::toUtf8(guard::sentence(hole));
  if (!holes.empty())
    findings.push_back({Weight::unsafe, progId + " is registered for every user, but " + holes +
                                            ": let administrators alone write there"});
}

// One program registers itself for hosts of both word sizes. Where they differ, the faults of one exchange
// may be taken in by two versions.
void examineWordSizes(const std::string& progId, const Workstation& workstation, Remedy remedy,
                      Findings& findings) {
  if (!workstation.registeredByWordSize) return;
  const auto [wide, narrow] = workstation.registeredByWordSize(toText(fs::path(progId)));
  if (wide && narrow && samePlace(programOf(wide->command), programOf(narrow->command))) return;
  if (!wide && !narrow) return;
  const auto told = [&](const std::optional<RegisteredClass>& found) -> std::string {
    if (!found) return "nothing";
    const fs::path program = programOf(found->command);
    const std::string version =
        workstation.versionOf ? workstation.versionOf(toText(program)) : std::string();
    return nameOf(program) + (version.empty() ? " (of no version)" : " (version " + version + ")");
  };
  findings.push_back({Weight::incomplete,
                      progId + ": 64-bit hosts start " + told(wide) + ", 32-bit hosts " + told(narrow) +
                          ": register one of them for both",
                      remedy});
}

void examineClasses(const SuiteLayout& layout, const Workstation& workstation,
                    const std::optional<std::u16string>& zul, Findings& findings) {
  const auto own = workstation.registered(u"Vordane10013.cOLELayer");
  std::error_code failure;
  const bool hasProgram = fs::is_regular_file(layout.program(), failure);
  if (canStart("Vordane10013.cOLELayer", own, Weight::fatal,
               "no host can start the add-in (VORDANE.EXE /RegServer)",
               hasProgram ? Remedy::program : Remedy::none, findings)) {
    if (!samePlace(programOf(own->command), layout.program()))
      findings.push_back(
          {Weight::incomplete, "Vordane10013.cOLELayer is registered to " + nameOf(programOf(own->command)) +
                                   ": hosts start that one, not this suite's " + nameOf(layout.program())});
    examineGuard("Vordane10013.cOLELayer", *own, workstation, findings);
    examineWordSizes("Vordane10013.cOLELayer", workstation, hasProgram ? Remedy::program : Remedy::none,
                     findings);
  }
  if (!zul) return;
  const std::u16string progId = u"CalderinProj" + *zul + u".cPBXOle";
  const auto exchange = workstation.registered(progId);
  if (canStart(text::toUtf8(progId), exchange, Weight::incomplete, "no exchange can be reached", Remedy::none,
               findings))
    examineGuard(text::toUtf8(progId), *exchange, workstation, findings);
}

}  // namespace

bool canWrite(const fs::path& path) {
  std::error_code failure;
  const auto permissions = fs::status(path, failure).permissions();
  constexpr auto anyWrite = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
  return !failure && (permissions & anyWrite) != fs::perms::none;
}

std::string_view wordFor(Weight weight) {
  switch (weight) {
    case Weight::fatal:
      return "stops the program";
    case Weight::incomplete:
      return "incomplete";
    case Weight::unsafe:
      break;
  }
  return "unsafe";
}

std::vector<std::string> linesOf(const Findings& findings) {
  std::vector<std::string> lines;
  for (const Finding& finding : findings)
    lines.push_back(std::string(wordFor(finding.weight)) + ": " + finding.text);
  const bool whole = std::all_of(findings.begin(), findings.end(),
                                 [](const Finding& finding) { return finding.weight == Weight::unsafe; });
  if (whole) lines.emplace_back("nothing is missing");
  return lines;
}

std::vector<Finding> examineFiles(const SuiteLayout& layout, database::Engine& engine) {
  Findings findings;
  const auto open = [&](const SuiteFile& file) {
    auto database = openForLook(engine, file, findings);
    if (database)
      for (const auto& table : file.tables) examineTable(*database, table, file, findings);
    return database;
  };
  const auto own = open({layout.texts(), language::ownTables, Weight::fatal, false,
                         "the program ends at its start", ownNeeded, Remedy::ownTexts});
  const auto common = open({layout.sharedTexts(), language::commonTables, Weight::fatal, false,
                            "the program ends at its start", commonNeeded, Remedy::sharedTexts});
  const auto faults = open(
      {layout.faults(), store::faultTables, Weight::fatal, true, "no faults can be stored or shown", {}});
  const auto registry = open({layout.registration(),
                              settings::registrationTables,
                              Weight::fatal,
                              true,
                              "the program ends when a host creates it",
                              {}});
  open({layout.schedule(),
        settings::scheduleTables,
        Weight::incomplete,
        false,
        "scheduled jobs run with the default options and without a log",
        {}});
  if (faults) examineOwners(*faults, nameOf(layout.faults()), findings);
  if (faults && own && !examineWords(layout, engine, *faults, findings))
    examineStoringLanguage(layout, engine, *faults, findings);
  if (own) examineTexts(*own, common.get(), findings);
  if (own) examinePictures(layout, *own, findings);
  if (registry) examineRegistration(*registry, findings);
  return findings;
}

std::vector<Finding> examineWorkstation(const SuiteLayout& layout, const Workstation& workstation) {
  Findings findings;
  const std::u16string version = layout.root.filename().u16string();
  if (version.size() != 5)
    findings.push_back(
        {Weight::fatal, nameOf(layout.root) + ": the version directory must have a name of five characters"});
  const auto path = workstation.setting(version, settings::setting::installPath);
  const bool elsewhere = path && *path != settings::noSetting && !samePlace(fs::path(*path), layout.root);
  if (!path || *path == settings::noSetting)
    findings.push_back({Weight::incomplete, "the setting InstallPath of version " + text::toUtf8(version) +
                                                " is missing: the program looks below its own directory"});
  else if (elsewhere)
    findings.push_back(
        {Weight::fatal, "the setting InstallPath leads to " + text::toUtf8(*path) + ", not to this suite"});
  if (!workstation.setting(version, settings::setting::suiteVersion))
    findings.push_back(
        {Weight::incomplete,
         "the setting QUILMAR32 is missing: options and logs of scheduled jobs are not found"});
  if (!elsewhere) {
    fs::path directory = fs::absolute(layout.program()).parent_path();
    for (Finding& finding : examinePaths(layout, toText(directory.make_preferred()), workstation))
      findings.push_back(std::move(finding));
  }
  const auto zul = workstation.setting(version, settings::setting::exchangeVersion);
  if (!zul)
    findings.push_back({Weight::incomplete,
                        "the setting ZUL is missing: started alone, the program finds no exchange server"});
  examineClasses(layout, workstation, zul, findings);
  return findings;
}

}  // namespace vordane::tools
