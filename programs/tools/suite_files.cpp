#include "suite_files.h"

#include <array>
#include <fstream>
#include <iterator>
#include <span>

#include "background_pictures.h"
#include "language_build.h"
#include "lines.h"
#include "report_layout.h"
#include "settings/suite_databases.h"
#include "store/fault_database.h"
#include "text/utf8.h"
#include "tools/sqlite/database_writer.h"

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

void writeFile(const fs::path& path, const std::string& bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << bytes;
  out.close();
  if (!out)
    throw ToolError(text::toUtf8(toText(path)) +
                    ": can't be written. Check the rights of its folder and the room on its disk");
}

std::string readFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in)
    throw ToolError(text::toUtf8(toText(path)) +
                    ": can't be read. Check the path and the rights of the file");
  return {std::istreambuf_iterator<char>(in), {}};
}

void makeRegistration(const fs::path& path) {
  DatabaseWriter writer(toText(path));
  writer.createTables(settings::registrationTables);
  writer.insert(u"Registry", Row{std::u16string(u"VORDANE.WRX"), std::u16string(u"Maintenance"),
                                 std::u16string(u"Fault Display"),
                                 std::u16string(u"Shows the faults of an exchange"), std::u16string{}});
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

void makeOnce(const fs::path& path, void (*make)(const fs::path&)) {
  if (!fs::exists(path)) make(path);
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

void makeSuiteFiles(const SuiteLayout& layout, const LanguageSource& language) {
  for (const fs::path& folder :
       {layout.ownDatabases(), layout.help(), layout.report(), layout.sharedDatabases(), layout.pictures()})
    fs::create_directories(folder);
  makeOnce(layout.ownDatabases() / "FAULT.MDB",
           [](const fs::path& path) { createDatabase(toText(path), store::faultTables); });
  makeOnce(layout.sharedDatabases() / "Register.mdb", makeRegistration);
  makeOnce(layout.sharedDatabases() / "Schedule.mdb", makeSchedule);
  buildOwnLanguage(language, layout.ownDatabases() / "VORDANE.LNG");
  buildCommonLanguage(language, layout.sharedDatabases() / "Common.LNG");
  for (const BackgroundPicture& picture : backgroundPictures())
    writeFile(layout.pictures() / picture.file, drawPicture(picture));
  writeFile(layout.help() / "VORDANE.TXT", helpText(language));
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
  const fs::path shape = folder / "FAULT.RPT";
  const fs::path texts = folder / (language.name + ".tsv");
  const std::string report =
      reportLayout(readFile(shape), language, readFile(texts), text::toUtf8(toText(shape)));
  fs::create_directories(layout.report());
  writeFile(layout.report() / "FAULT.RPT", report);
}

}  // namespace vordane::tools
