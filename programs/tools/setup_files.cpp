#include "setup_files.h"

#include <algorithm>

#include "language_check.h"

namespace vordane::tools {
namespace {

namespace fs = std::filesystem;

void copyFile(const fs::path& from, const fs::path& to) {
  std::error_code failure;
  fs::copy_file(from, to, fs::copy_options::overwrite_existing, failure);
  // The library says no more of bytes that could not be written than this; nearly always there is no room.
  if (failure == std::errc::io_error) failure = std::make_error_code(std::errc::no_space_on_device);
  if (failure) failAt(to, failure);
}

void addTree(const fs::path& tree, bool demonstration, std::vector<NewFile>& files) {
  std::error_code failure;
  for (auto entry = fs::recursive_directory_iterator(tree, failure);
       !failure && entry != fs::recursive_directory_iterator(); entry.increment(failure)) {
    if (!entry->is_regular_file()) continue;
    const fs::path from = entry->path(), place = from.lexically_relative(tree);
    if (!demonstration && *place.begin() == places.demonstration()) continue;
    files.push_back(
        {place, Keeper::release, [from](const fs::path& to) { copyFile(from, to); }, entry->file_size()});
  }
  if (failure) failAt(tree, failure);
}

}  // namespace

Words packagedWords(const fs::path& package, Words wanted) {
  const Words other = wanted == Words::x64 ? Words::x86 : Words::x64;
  const auto holds = [&](Words words) { return fs::is_directory(package / nameOf(words)); };
  return !holds(wanted) && holds(other) ? other : wanted;
}

std::vector<NewFile> packagedFiles(const fs::path& package, Words words, bool demonstration) {
  std::vector<NewFile> files;
  const fs::path programs = package / nameOf(words);
  if (!fs::is_directory(programs))
    throw SetupFailure(Outcome::failed, "this package holds no programs of " + std::string(nameOf(words)));
  addTree(programs, demonstration, files);
  if (fs::is_directory(package / "common")) addTree(package / "common", demonstration, files);
  std::sort(files.begin(), files.end(), [](const NewFile& a, const NewFile& b) { return a.place < b.place; });
  return files;
}

std::vector<NewFile> packagedGuide(const fs::path& package, const std::string& language) {
  std::vector<NewFile> pages;
  const fs::path folder = package / "data" / "guide" / toPath(language);
  if (!fs::is_directory(folder)) return pages;
  addTree(folder, true, pages);
  for (NewFile& page : pages) page.place = places.guide() / page.place;
  return pages;
}

std::vector<LanguageSource> packagedLanguages(const fs::path& package) {
  std::vector<LanguageSource> languages;
  Problems problems;
  std::error_code failure;
  for (const fs::directory_entry& entry : fs::directory_iterator(package / "data" / "language", failure))
    if (entry.path().filename() != "shared") languages.push_back(readLanguageSource(entry.path(), problems));
  if (failure) failAt(package / "data" / "language", failure);
  std::sort(languages.begin(), languages.end(),
            [](const LanguageSource& a, const LanguageSource& b) { return a.name < b.name; });
  for (const LanguageSource& language : languages) checkLanguage(language, problems);
  if (!problems.empty()) throw SetupFailure(Outcome::failed, problems.front());
  return languages;
}

}  // namespace vordane::tools
