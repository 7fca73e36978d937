#include "setup.h"

#include <algorithm>

#include "installed_language.h"
#include "platform/database_numbers.h"
#include "platform/engine_choice.h"
#include "settings/suite_databases.h"
#include "settings/suite_settings.h"
#include "setup_files.h"
#include "setup_language.h"
#include "setup_stage.h"
#include "text/text.h"
#include "text/utf8.h"
#include "whole_file.h"

namespace vordane::tools {
namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t roomForDatabases = 8U << 20U;
constexpr const char* firstLanguage = "en";

// The settings by which the suite's programs find a set of our own: the directory, the suite's version, and
// that of the exchange server.
struct Setting {
  std::u16string_view key;
  std::u16string value;
};

std::u16string suiteVersion(const fs::path& root) {
  return toText(root.filename());
}

std::vector<Setting> settingsOf(const fs::path& root) {
  std::u16string directory = toText(fs::path(root).make_preferred());
  directory += static_cast<char16_t>(fs::path::preferred_separator);
  return {{settings::setting::installPath, directory},
          {settings::setting::suiteVersion, suiteVersion(root)},
          {settings::setting::exchangeVersion, u"30001"}};
}

// Everything that is known before the first change.
struct Plan {
  SuiteLayout layout;
  std::optional<SetupRecord> before;
  SetupRecord record;  // of this installation
  LanguageSource language;
  bool damagedTexts = false;
  bool renews = false;  // an add-in stands there
  std::vector<NewFile> files;
};

void requirePlace(const SuiteLayout& layout, bool suite) {
  const fs::path& root = layout.root;
  const bool named =
      root.is_absolute() && toText(root.filename()).size() == 5 &&
      text::equalIgnoringCase(toText(root.parent_path().filename()), settings::suiteApplication);
  if (named || suite) return;
  throw SetupFailure(Outcome::badPlace, pathText(root) +
                                            ": a set of its own stands in a folder whose path ends in " +
                                            "QUILMAR32 and a version of five characters, such as 30000");
}

void requireNotOlder(const Plan& plan, const InstallRequest& request, SetupSystem& system) {
  const auto there = plan.before && !plan.before->removed ? std::optional(plan.before->version)
                                                          : system.versionOf(plan.layout.program());
  if (there && *there > request.version)
    throw SetupFailure(Outcome::newer,
                       "version " + std::to_string(there->major) + "." + std::to_string(there->minor) + "." +
                           std::to_string(there->revision) + " stands in " + pathText(plan.layout.root));
}

void requireRoom(const Plan& plan, SetupSystem& system) {
  std::uintmax_t needed = roomForDatabases;
  for (const NewFile& file : plan.files) needed += file.size;
  fs::path place = plan.layout.root;
  while (place.has_relative_path() && !fs::exists(place)) place = place.parent_path();
  const std::optional<std::uintmax_t> room = system.roomAt(place);
  if (room && *room < needed)
    throw SetupFailure(Outcome::diskFull, pathText(place) + ": " + std::to_string(needed >> 20U) +
                                              " MB are needed, " + std::to_string(*room >> 20U) +
                                              " MB are free");
}

// --- texts

// What is installed, or nothing: then the texts can be made anew from the language that is known.
std::optional<LanguageSource> readInstalled(Plan& plan, SetupSystem& system, const Tell& tell) {
  const fs::path path = plan.layout.texts();
  if (!fs::exists(path)) return std::nullopt;
  try {
    const auto engine = system.engine();
    const auto own = engine->open(toText(path), true);
    return installedLanguage(*own, nullptr, pathText(path.filename()));
  } catch (const database::DatabaseError& failure) {
    if (database::fileKind(toText(path)) == database::FileKind::access)
      throw SetupFailure(Outcome::unreadable, pathText(path) +
                                                  ": the texts of this Access file must be kept, and it " +
                                                  "can't be read: " + text::toUtf8(failure.description()));
  } catch (const automation::AutomationError&) {
  }
  plan.damagedTexts = true;
  tell(pathText(path) + " is damaged: it is kept as " + pathText(damagedTexts.filename()) +
       ", its texts are made anew");
  return std::nullopt;
}

const LanguageSource* named(const std::vector<LanguageSource>& languages, const std::string& name) {
  const auto found = std::find_if(languages.begin(), languages.end(),
                                  [&](const LanguageSource& language) { return language.name == name; });
  return found == languages.end() ? nullptr : &*found;
}

const LanguageSource& freshLanguage(const std::vector<LanguageSource>& languages, const std::string& asked) {
  const LanguageSource* const fresh = named(languages, asked.empty() ? firstLanguage : asked);
  if (fresh == nullptr) throw SetupFailure(Outcome::failed, "this package has no texts in " + asked);
  return *fresh;
}

void chooseLanguage(Plan& plan, const InstallRequest& request, SetupSystem& system, const Tell& tell) {
  const std::vector<LanguageSource> languages = packagedLanguages(request.package);
  const auto installed = readInstalled(plan, system, tell);
  std::string name = request.language;
  if (plan.before) name = plan.before->language;
  if (installed) name = languageOf(*installed, languages).value_or(name);
  const LanguageSource& fresh = freshLanguage(languages, name);
  plan.language = installed ? mergedLanguage(*installed, fresh) : fresh;
  plan.record.language = fresh.name;
  if (installed && !request.language.empty() && request.language != fresh.name)
    tell("the installed language stays: " + fresh.name);
}

// --- files

void addDataFiles(Plan& plan, const InstallRequest& request) {
  const bool alone = plan.record.situation == Situation::alone;
  std::vector<DataFile> files = dataFiles(plan.language, request.package / "data" / "report");
  for (DataFile& file : readingFiles(packagedLanguages(request.package), plan.record.language))
    files.push_back(std::move(file));
  for (DataFile& file : files) {
    const bool there = fs::exists(plan.layout.root / file.place);
    const bool made = plan.before && std::find(plan.before->made.begin(), plan.before->made.end(),
                                               file.place) != plan.before->made.end();
    const bool work = file.keeper == Keeper::faults || file.keeper == Keeper::jobs;
    const bool suites = file.keeper == Keeper::shared && !alone;
    const bool ours = file.keeper == Keeper::release || (file.keeper == Keeper::shared && alone);
    if (ours) plan.record.files.push_back(file.place);
    const bool always = file.keeper == Keeper::texts || file.keeper == Keeper::faults;
    if (!ours && (!there || made || always)) plan.record.made.push_back(file.place);
    if (there && (work || suites)) continue;
    plan.files.push_back({file.place, file.keeper, file.make});
  }
}

// One version of the suite stands in one place, which every program of it finds by the same setting.
void requireOnlySuite(const Plan& plan, SetupSystem& system) {
  const fs::path& root = plan.layout.root;
  const auto other = system.setting(suiteVersion(root), settings::setting::installPath);
  if (plan.record.situation == Situation::suite || !other || *other == settings::noSetting) return;
  std::error_code failure;
  const fs::path place = fs::path(*other);
  if (!fs::is_directory(place, failure) || samePlace(place, root)) return;
  throw SetupFailure(Outcome::badPlace, "the suite of version " + text::toUtf8(suiteVersion(root)) +
                                            " stands in " + pathText(place) +
                                            ": install it there, or under another version");
}

Plan planOf(const InstallRequest& request, SetupSystem& system, const Tell& tell) {
  Plan plan{{request.root}, {}, {}, {}, false, false, {}};
  if (putBack(request.root)) tell("an installation that was broken off has been put back");
  plan.before = readRecord(plan.layout);
  plan.renews = fs::exists(plan.layout.program());
  const bool alone = plan.before ? plan.before->situation == Situation::alone : !suiteStands(plan.layout);
  plan.record.situation = alone ? Situation::alone : Situation::suite;
  requirePlace(plan.layout, !alone);
  requireOnlySuite(plan, system);
  requireNotOlder(plan, request, system);
  plan.record.version = request.version;
  plan.record.words =
      request.words.value_or(wordsFor(plan.layout, packagedWords(request.package, system.words())));
  plan.record.everybody = request.everybody;
  plan.record.demonstration = request.demonstration || (plan.before && plan.before->demonstration);
  plan.record.crashDumps =
      request.everybody && (request.crashDumps || (plan.before && plan.before->crashDumps));
  plan.files = packagedFiles(request.package, plan.record.words, plan.record.demonstration);
  chooseLanguage(plan, request, system, tell);
  for (NewFile& page : packagedGuide(request.package, plan.record.language))
    plan.files.push_back(std::move(page));
  for (const NewFile& file : plan.files) plan.record.files.push_back(file.place);
  plan.record.files.emplace_back(recordPlace);
  addDataFiles(plan, request);
  requireRoom(plan, system);
  return plan;
}

std::vector<fs::path> withoutRoot(const std::vector<fs::path>& folders, const fs::path& root) {
  std::vector<fs::path> below;
  for (const fs::path& folder : folders) {
    const fs::path place = folder.lexically_relative(root);
    if (!place.empty() && *place.begin() != ".." && place != "." && place != stagePlace)
      below.push_back(place);
  }
  return below;
}

void makeFiles(const Plan& plan, Stage& stage) {
  for (const NewFile& file : plan.files) file.make(stage.fresh(file.place));
  const fs::path texts = plan.layout.texts();
  if (plan.damagedTexts) fs::copy_file(texts, stage.fresh(damagedTexts));
  if (database::fileKind(toText(texts)) == database::FileKind::access)
    fs::copy_file(texts, stage.fresh(accessTexts));
  if (!plan.before) return;
  for (const fs::path& place : plan.before->files) stage.drop(place);
}

// --- registration

// The suite's list of add-ins gets our row where it has none; nothing of a row that is there is touched.
void addRow(const SuiteLayout& layout, SetupSystem& system) {
  const auto engine = system.engine();
  const auto registry = engine->open(toText(layout.registration()), false);
  const auto rows =
      registry->openRecordset(settings::statement::registration.with({settings::registeredName}));
  if (rows->recordCount() > 0) return;
  rows->addNew();
  for (const auto& [column, value] : registryRow) rows->set(column, std::u16string(value));
  rows->update();
}

// What is registered and set, undone again unless it is kept.
class Registering {
 public:
  Registering(const Plan& plan, SetupSystem& system) : plan_(plan), system_(system) {}
  // An add-in that was there is registered under the same path: what an administrator has set for it stays.
  ~Registering() {
    if (kept_) return;
    for (const auto& [key, value] : before_) system_.set(suiteVersion(plan_.layout.root), key, value);
    for (const fs::path& program : registered_)
      if (fs::exists(program)) system_.registerProgram(program, !plan_.before || plan_.before->everybody);
  }
  void takeAway() {
    for (const fs::path& program : registered_)
      if (!plan_.renews) system_.unregisterProgram(program);
  }
  Registering(const Registering&) = delete;
  Registering& operator=(const Registering&) = delete;

  void program(const fs::path& place) {
    const fs::path path = plan_.layout.root / place;
    registered_.push_back(path);
    if (!system_.registerProgram(path, plan_.record.everybody))
      throw SetupFailure(Outcome::notRegistered, pathText(path) + " could not be registered");
  }
  // One that is there stays, unless it is the directory of a suite that is gone.
  void set(const Setting& setting) {
    const std::u16string version = suiteVersion(plan_.layout.root);
    const auto before = system_.setting(version, setting.key);
    if (before && setting.key != settings::setting::installPath) return;
    before_.emplace_back(setting.key, before);
    system_.set(version, setting.key, setting.value);
  }
  void keep() { kept_ = true; }

 private:
  const Plan& plan_;
  SetupSystem& system_;
  std::vector<fs::path> registered_;
  std::vector<std::pair<std::u16string, std::optional<std::u16string>>> before_;
  bool kept_ = false;
};

void registerAll(const Plan& plan, SetupSystem& system, Registering& registering) {
  if (plan.record.situation == Situation::alone)
    for (const Setting& setting : settingsOf(plan.layout.root)) registering.set(setting);
  if (plan.record.demonstration) registering.program(places.simulator());
  registering.program(places.program());
  addRow(plan.layout, system);
}

// Folders that were there have the rights that somebody has given them.
void openFolders(const Plan& plan, const std::vector<fs::path>& made, SetupSystem& system) {
  if (!plan.record.everybody) return;
  for (const fs::path& folder : {plan.layout.ownDatabases(), plan.layout.sharedDatabases()})
    if (std::find(made.begin(), made.end(), folder) != made.end()) system.letUsersWrite(folder);
}

void putInPlace(Plan& plan, SetupSystem& system) {
  Registering registering(plan, system);  // goes last: what was there is registered when it is back
  Stage stage(plan.layout.root);
  makeFiles(plan, stage);
  const fs::path record = stage.fresh(recordPlace);
  writeRecord(plan.record, record);
  stage.prepare();
  plan.record.folders = withoutRoot(stage.madeFolders(), plan.layout.root);
  if (plan.before)
    plan.record.folders.insert(plan.record.folders.begin(), plan.before->folders.begin(),
                               plan.before->folders.end());
  writeRecord(plan.record, record);
  stage.swap();
  openFolders(plan, stage.madeFolders(), system);
  try {
    registerAll(plan, system, registering);
  } catch (...) {
    registering.takeAway();  // by the programs themselves, while they are there
    throw;
  }
  stage.keep();
  registering.keep();
}

// Not worth an installation: what can't be had of it is told.
void setCrashDumps(const Plan& plan, const InstallRequest& request, SetupSystem& system, const Tell& tell) {
  if (request.crashDumps && !request.everybody)
    tell("images of crashes are kept only for a fault display that is installed for every user");
  if (plan.record.crashDumps && !system.keepCrashDumps(plan.layout.root))
    tell("the system would not be told to keep images of crashes");
}

// What the engine says of a step, as an outcome.
Outcome outcomeOf(const database::DatabaseError& failure) {
  switch (failure.number()) {
    case database::number::diskFull:
      return Outcome::diskFull;
    case database::number::readOnly:
    case database::number::noPermission:
      return Outcome::noRights;
    case database::number::locked:
      return Outcome::inUse;
    default:
      return Outcome::unreadable;
  }
}

}  // namespace

std::vector<fs::path> usedFiles(const SuiteLayout& layout) {
  return {layout.program(), layout.texts(), layout.host(), layout.tools(), layout.simulator()};
}

void waitUntilFree(const std::vector<fs::path>& files, std::chrono::seconds patience, SetupSystem& system,
                   const Tell& tell) {
  constexpr std::chrono::milliseconds step{250};
  std::chrono::milliseconds left = patience;
  const auto held = [&] {
    return std::find_if(files.begin(), files.end(), [&](const fs::path& file) { return system.inUse(file); });
  };
  bool told = false;
  for (auto file = held(); file != files.end(); file = held()) {
    if (left <= std::chrono::milliseconds::zero())
      throw SetupFailure(Outcome::inUse, pathText(*file) + " is in use");
    if (!told) tell("waiting for " + pathText(*file) + ", which is in use");
    told = true;
    system.pause(step);
    left -= step;
  }
}

void install(const InstallRequest& request, SetupSystem& system, const Tell& tell) try {
  Plan plan = planOf(request, system, tell);
  waitUntilFree(usedFiles(plan.layout), request.wait, system, tell);
  putInPlace(plan, system);
  setCrashDumps(plan, request, system, tell);
  tell("installed in " + pathText(plan.layout.root) + ": " + std::string(nameOf(plan.record.words)) + ", " +
       plan.record.language +
       (plan.record.situation == Situation::alone ? ", a set of its own" : ", in the suite"));
  for (const std::string& line : linesOf(system.examine(plan.layout))) tell(line);
} catch (const database::DatabaseError& failure) {
  throw SetupFailure(outcomeOf(failure), text::toUtf8(failure.description()));
} catch (const UnwritableFile& failure) {
  throw SetupFailure(Outcome::diskFull, failure.what());
} catch (const fs::filesystem_error& failure) {
  failAt(failure);
}

}  // namespace vordane::tools
