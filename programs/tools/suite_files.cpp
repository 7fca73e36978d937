#include "suite_files.h"

#include <array>
#include <span>

#include "background_pictures.h"
#include "language_build.h"
#include "lines.h"
#include "report_layout.h"
#include "store/fault_database.h"
#include "text/text.h"
#include "text/utf8.h"
#include "tools/sqlite/database_writer.h"
#include "whole_file.h"

namespace vordane::tools {
namespace {

using database::Value;
using Row = std::vector<Value>;
namespace fs = std::filesystem;

struct Job {
  std::int32_t key, wait;
  bool errorStop;
  std::int32_t count;
  const char16_t* file;
  std::int32_t kind;
};

// Jobs to try the scheduler with; kind 2 fetches the fault list, the others are not this add-in's.
constexpr std::array<Job, 4> sampleJobs{{
    {1, 0, true, 1, u"FAULT", 2},
    {2, 2, true, 3, u"FAULT", 2},
    {3, 2, false, 3, u"FAULT", 2},
    {4, 0, true, 1, u"OTHER", 1},
}};

void makeRegistration(const fs::path& path) {
  DatabaseWriter writer(toText(path));
  writer.createTables(settings::registrationTables);
  Row row;
  for (const auto& [column, value] : registryRow) row.emplace_back(std::u16string(value));
  writer.insert(u"Registry", row);
  writer.finish();
}

void makeSchedule(const fs::path& path) {
  DatabaseWriter writer(toText(path));
  writer.createTables(settings::scheduleTables);
  for (const Job& job : sampleJobs)
    writer.insert(u"Options", Row{job.key, job.wait, job.errorStop, job.count, true, true, std::int32_t{100},
                                  std::u16string(job.file), job.kind});
  writer.finish();
}

// What the help file's viewer would show: current Windows has none for ".HLP" files.
std::string helpText(const LanguageSource& language) {
  std::string out = "\xEF\xBB\xBF";
  for (const SourceRow& row : language.help)
    out += text::toUtf8(row.fields[0]) + "\r\n    " + text::toUtf8(row.fields[1]) + "\r\n\r\n";
  return out;
}

void makeFaults(const fs::path& path) {
  createDatabase(toText(path), store::faultTables);
}

void makeReport(const fs::path& folder, const LanguageSource& language, const fs::path& path) {
  const fs::path shape = folder / places.reportForm().filename();
  const fs::path texts = folder / (language.name + ".tsv");
  writeFile(path, reportLayout(readFile(shape), language, readFile(texts), text::toUtf8(toText(shape))));
}

bool isMadeOnce(Keeper keeper) {
  return keeper == Keeper::faults || keeper == Keeper::jobs;
}

}  // namespace

fs::path suiteDirectory(const std::string& named) {
  std::error_code failure;
  const fs::path whole = fs::absolute(toPath(named), failure).lexically_normal();
  if (failure || !fs::is_directory(whole, failure))
    throw ToolError(named +
                    ": there is no such directory. Name the version directory of a suite, such as "
                    "C:\\QUILMAR32\\30000");
  return whole.has_filename() ? whole : whole.parent_path();
}

bool samePlace(const fs::path& a, const fs::path& b) {
  const auto bare = [](const fs::path& path) { return path.has_filename() ? path : path.parent_path(); };
  std::error_code failure;
  return text::equalIgnoringCase(toText(bare(a)), toText(bare(b))) ||
         fs::equivalent(bare(a), bare(b), failure);
}

std::vector<DataFile> dataFiles(const LanguageSource& language, const fs::path& report) {
  std::vector<DataFile> files{
      {places.faults(), Keeper::faults, makeFaults},
      {places.registration(), Keeper::jobs, makeRegistration},
      {places.schedule(), Keeper::jobs, makeSchedule},
      {places.texts(), Keeper::texts, [&](const fs::path& path) { buildOwnLanguage(language, path); }},
      {places.sharedTexts(), Keeper::shared,
       [&](const fs::path& path) { buildCommonLanguage(language, path); }},
      {places.helpText(), Keeper::release,
       [&](const fs::path& path) { writeFile(path, helpText(language)); }}};
  for (const BackgroundPicture& picture : backgroundPictures())
    files.push_back({places.pictures() / picture.file, Keeper::shared,
                     [&picture](const fs::path& path) { writeFile(path, drawPicture(picture)); }});
  if (!report.empty())
    files.push_back({places.reportForm(), Keeper::release,
                     [&language, report](const fs::path& path) { makeReport(report, language, path); }});
  return files;
}

std::vector<DataFile> readingFiles(const std::vector<LanguageSource>& languages, const std::string& name) {
  std::vector<DataFile> files;
  for (const LanguageSource& language : languages) {
    if (language.name == name) continue;
    const fs::path place = places.ownDatabases() / toPath("VORDANE." + language.name + ".LNG");
    files.push_back(
        {place, Keeper::release, [language](const fs::path& path) { buildOwnLanguage(language, path); }});
  }
  return files;
}

void makeSuiteFiles(const SuiteLayout& layout, const LanguageSource& language,
                    const std::vector<LanguageSource>& others) {
  fs::create_directories(layout.report());
  fs::remove(layout.ownDatabases() / toPath("VORDANE." + language.name + ".LNG"));
  std::vector<DataFile> files = dataFiles(language);
  for (DataFile& file : readingFiles(others, language.name)) files.push_back(std::move(file));
  for (const DataFile& file : files) {
    const fs::path path = layout.root / file.place;
    fs::create_directories(path.parent_path());
    if (!isMadeOnce(file.keeper) || !fs::exists(path)) file.make(path);
  }
}

void installGuide(const SuiteLayout& layout, const fs::path& folder, const std::string& language) {
  const fs::path pages = folder / toPath(language);
  if (!fs::is_regular_file(pages / "guide.html"))
    throw ToolError(text::toUtf8(toText(pages)) + ": there is no guide in it. Make it with tools/guide");
  fs::remove_all(layout.guide());
  fs::create_directories(layout.guide());
  for (const auto& page : fs::directory_iterator(pages))
    if (page.path().extension() == ".html")
      writeFile(layout.guide() / page.path().filename(), readFile(page.path()));
}

void installReportLayout(const SuiteLayout& layout, const fs::path& folder, const LanguageSource& language) {
  fs::create_directories(layout.report());
  makeReport(folder, language, layout.reportForm());
}

}  // namespace vordane::tools
