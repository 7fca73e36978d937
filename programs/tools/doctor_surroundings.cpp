#include "doctor_surroundings.h"

#include <chrono>
#include <ctime>
#include <system_error>

#include "installed_language.h"
#include "language_source.h"
#include "platform/engine_choice.h"
#include "platform/stored_values.h"
#include "settings/comSchedule.h"
#include "store/statements.h"
#include "text/dates.h"
#include "text/utf8.h"
#include "tools/sqlite/integrity.h"

namespace vordane::tools {
namespace {

namespace fs = std::filesystem;
using Findings = std::vector<Finding>;

constexpr std::uintmax_t megabyte = 1'000'000, littleRoom = 64 * megabyte;
constexpr std::chrono::hours clockChange{2};

std::string nameOf(const fs::path& path) {
  return text::toUtf8(toText(path));
}

std::unique_ptr<database::Database> openIfPossible(database::Engine& engine, const fs::path& path) try {
  return engine.open(toText(path), true);
} catch (const database::DatabaseError&) {
  return nullptr;  // which has been said already
}

// What one job writes its log into, when it is limited.
void examineLog(database::Recordset& job, const fs::path& folder, Findings& findings) {
  if (!database::flagOf(job.get(u"Log")) || !database::flagOf(job.get(u"Log2"))) return;
  const std::u16string key = database::textOf(job.get(u"Key"));
  const fs::path log = folder / (comSchedule::logName(database::textOf(job.get(u"File")), key) + u".tlg");
  std::error_code failure;
  const std::uintmax_t size = fs::file_size(log, failure);
  const std::int64_t limit = comSchedule::logLimit(automation::toLong(job.get(u"FileByte")));
  if (failure || static_cast<std::int64_t>(size) <= limit) return;
  findings.push_back({Weight::incomplete, nameOf(log) + " is full (" + std::to_string(size) + " of " +
                                              std::to_string(limit) + " bytes): job " + text::toUtf8(key) +
                                              " writes nothing into it any more. Move it away"});
}

void examineLogs(database::Database& schedule, const fs::path& folder, Findings& findings) {
  const auto jobs = schedule.openRecordset(u"select * from Options");
  for (; !jobs->atEnd(); jobs->moveNext()) try {
      examineLog(*jobs, folder, findings);
    } catch (const automation::AutomationError&) {
      // A value of another type leaves that job its defaults.
    }
}

void examineClock(database::Database& faults, const std::u16string& latest, Findings& findings) {
  const auto rows = faults.openRecordset(store::exchangesNewestFirst);
  if (!rows->isDate(u"TimeStamp") || rows->atEnd()) return;
  const std::u16string received = database::textOf(rows->get(u"TimeStamp"));
  if (received <= latest) return;
  findings.push_back(
      {Weight::incomplete, "the clock: the list of " + text::toUtf8(database::textOf(rows->get(u"PBXName"))) +
                               " came at " + text::toUtf8(received) +
                               ", which this workstation's clock has not reached. Set it right"});
}

void examineRoom(const fs::path& folder, const Surroundings& around, Findings& findings) {
  const auto room = around.roomAt(folder);
  if (room && *room < littleRoom)
    findings.push_back({Weight::incomplete, "only " + std::to_string(*room / megabyte) +
                                                " MB are free on the disk of " + nameOf(folder) +
                                                ": a fault list may not be stored. Make room"});
}

void examineFolder(const fs::path& folder, const char* without, Findings& findings) {
  std::error_code failure;
  if (fs::is_directory(folder, failure) && !canWrite(folder))
    findings.push_back({Weight::incomplete, nameOf(folder) + " can't be written: " + without});
}

void examineIndex(const fs::path& faults, Findings& findings) try {
  if (database::fileKind(toText(faults)) == database::FileKind::embedded && hasStaleIndex(toText(faults)))
    findings.push_back({Weight::incomplete,
                        nameOf(faults) +
                            ": its index is not that of its faults: until the program makes it anew, which "
                            "takes a while with many faults, everything is slow",
                        Remedy::faultIndex});
} catch (const database::DatabaseError&) {
  // Named already.
}

// A check of a database that lacks what it looks for says nothing: that has been said already.
template <class Check>
void look(const std::unique_ptr<database::Database>& database, const Check& check) try {
  if (database) check(*database);
} catch (const database::DatabaseError&) {
} catch (const automation::AutomationError&) {
}

}  // namespace

std::vector<fs::path> staleLocks(const SuiteLayout& layout, const Surroundings& around) {
  std::vector<fs::path> stale;
  if (!around.inUse) return stale;
  for (const fs::path& file :
       {layout.faults(), layout.texts(), layout.sharedTexts(), layout.registration(), layout.schedule()}) {
    const fs::path lock = fs::path(file).replace_extension(".ldb");
    std::error_code failure;
    if (fs::is_regular_file(lock, failure) && !around.inUse(lock) && !around.inUse(file))
      stale.push_back(lock);
  }
  return stale;
}

std::vector<Finding> examineSurroundings(const SuiteLayout& layout, database::Engine& engine,
                                         const Surroundings& around) {
  Findings findings;
  examineFolder(layout.ownDatabases(), "nothing can be stored, and where it is stored no journal protects it",
                findings);
  examineFolder(layout.sharedDatabases(), "scheduled jobs run without a log", findings);
  examineRoom(layout.ownDatabases(), around, findings);
  look(openIfPossible(engine, layout.schedule()),
       [&](database::Database& schedule) { examineLogs(schedule, layout.sharedDatabases(), findings); });
  look(openIfPossible(engine, layout.faults()),
       [&](database::Database& faults) { examineClock(faults, around.latest, findings); });
  examineIndex(layout.faults(), findings);
  for (const fs::path& lock : staleLocks(layout, around))
    findings.push_back(
        {Weight::incomplete,
         nameOf(lock) + " is left from a program that was ended: an import refuses the database",
         Remedy::accessLocks});
  return findings;
}

std::u16string latestNow() {
  const std::time_t time =
      std::chrono::system_clock::to_time_t(std::chrono::system_clock::now() + clockChange);
  const std::tm local = *std::localtime(&time);
  constexpr int firstYear = 1900;
  return text::isoText(local.tm_year + firstYear, local.tm_mon + 1, local.tm_mday, local.tm_hour,
                       local.tm_min, local.tm_sec);
}

}  // namespace vordane::tools
