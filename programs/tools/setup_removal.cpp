#include "settings/suite_settings.h"
#include "setup.h"
#include "setup_files.h"
#include "setup_stage.h"
#include "text/text.h"
#include "text/utf8.h"
#include "whole_file.h"

namespace vordane::tools {
namespace {

namespace fs = std::filesystem;

constexpr const char* journalEndings[] = {"-wal", "-shm", "-journal"};

// What a set without its record consists of: the add-in itself, and what every set has.
SetupRecord usualRecord(const SuiteLayout& layout) {
  SetupRecord record;
  record.situation = suiteStands(layout) ? Situation::suite : Situation::alone;
  record.files = {places.program(),    places.host(), places.tools(),  places.helpText(),
                  places.reportForm(), recordPlace,   places.remover()};
  record.made = {places.faults(), places.texts()};
  return record;
}

// With the journals that an engine has left beside a database.
void dropWork(Stage& stage, const fs::path& place) {
  stage.drop(place);
  for (const char* ending : journalEndings) {
    fs::path journal = place;
    journal += ending;
    stage.drop(journal);
  }
}

// The logs of unattended runs, which stand beside the suite's databases. In a suite they are those of every
// add-in.
void dropLogs(Stage& stage, const SuiteLayout& layout) {
  std::error_code failure;
  for (const fs::directory_entry& entry : fs::directory_iterator(layout.sharedDatabases(), failure))
    if (text::equalIgnoringCase(toText(entry.path().extension()), u".tlg"))
      stage.drop(entry.path().lexically_relative(layout.root));
}

// Only empty ones go, and only those that the installation made.
void removeFolders(const SuiteLayout& layout, const SetupRecord& record) {
  std::error_code ignored;
  for (auto place = record.folders.rbegin(); place != record.folders.rend(); ++place)
    fs::remove(layout.root / *place, ignored);
  if (record.situation == Situation::suite) return;
  if (fs::remove(layout.root, ignored)) fs::remove(layout.root.parent_path(), ignored);
}

void dropEverything(Stage& stage, const SuiteLayout& layout, const SetupRecord& record) {
  for (const fs::path& place : record.made) dropWork(stage, place);
  for (const fs::path& place : {damagedTexts, accessTexts}) stage.drop(place);
  if (record.situation == Situation::alone) dropLogs(stage, layout);
}

// A later installation goes on from it, and a later removal of everything.
void keepRecord(Stage& stage, SetupRecord record, bool removerStays) {
  record.files = {recordPlace};
  if (removerStays) record.files.push_back(places.remover());
  record.removed = true;
  record.crashDumps = false;
  writeRecord(record, stage.fresh(recordPlace));
}

void removeSettings(const SuiteLayout& layout, const SetupRecord& record, SetupSystem& system) {
  system.removeOwnSettings();
  if (record.situation == Situation::suite) return;
  for (const std::u16string_view key :
       {settings::setting::installPath, settings::setting::suiteVersion, settings::setting::exchangeVersion})
    system.set(toText(layout.root.filename()), key, std::nullopt);
}

}  // namespace

void uninstall(const RemovalRequest& request, SetupSystem& system, const Tell& tell) try {
  const SuiteLayout layout{request.root};
  if (putBack(request.root)) tell("an installation that was broken off has been put back");
  const auto found = readRecord(layout);
  if (!fs::exists(layout.program()) && !(request.everything && found))
    throw SetupFailure(Outcome::nothingThere, pathText(request.root) + ": the add-in is not installed there");
  const SetupRecord record = found ? *found : usualRecord(layout);
  waitUntilFree(usedFiles(layout), request.wait, system, tell);

  // A remover that gives its exit code runs in its place, and has its file open for itself.
  const bool removerStays = system.inUse(layout.remover());
  Stage stage(layout.root);
  for (const fs::path& place : record.files)
    if (!removerStays || place != places.remover()) stage.drop(place);
  if (request.everything)
    dropEverything(stage, layout, record);
  else
    keepRecord(stage, record, removerStays);
  stage.prepare();
  // By the programs themselves, so before they go.
  const std::vector<fs::path> programs{layout.program(), layout.simulator()};
  for (const fs::path& program : programs)
    if (fs::exists(program)) system.unregisterProgram(program);
  try {
    stage.swap();
    stage.keep();
  } catch (...) {
    putBack(layout.root);
    for (const fs::path& program : programs)
      if (fs::exists(program)) system.registerProgram(program, record.everybody);
    throw;
  }
  system.dropCrashDumps(layout.root);
  if (request.everything) removeSettings(layout, record, system);
  removeFolders(layout, record);
  if (removerStays) tell(pathText(layout.remover()) + " stays, since it is running");
  tell("removed from " + pathText(layout.root) +
       (request.everything ? std::string() : ": stored faults, logs, jobs and settings stay"));
} catch (const UnwritableFile& failure) {
  throw SetupFailure(Outcome::diskFull, failure.what());
} catch (const fs::filesystem_error& failure) {
  failAt(failure);
}

}  // namespace vordane::tools
