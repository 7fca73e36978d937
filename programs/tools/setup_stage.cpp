#include "setup_stage.h"

#include <algorithm>
#include <fstream>
#include <string>

#include "language_source.h"
#include "setup_outcome.h"

namespace vordane::tools {
namespace {

namespace fs = std::filesystem;

fs::path movesOf(const fs::path& home) {
  return home / "moves.tsv";
}
fs::path foldersOf(const fs::path& home) {
  return home / "folders.txt";
}

void append(const fs::path& file, const std::string& line) {
  std::ofstream out(file, std::ios::binary | std::ios::app);
  out << line << '\n';
  out.close();
  if (!out) throw SetupFailure(Outcome::diskFull, pathText(file) + ": can't be written");
}

std::vector<std::string> linesOf(const fs::path& file) {
  std::vector<std::string> lines;
  std::ifstream in(file, std::ios::binary);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

// One place and what the swap does there.
struct Change {
  enum class Kind { add, replace, remove } kind;
  fs::path place;
};
constexpr std::string_view kindNames[] = {"add", "replace", "remove"};

std::vector<Change> changesOf(const fs::path& home) {
  std::vector<Change> changes;
  for (const std::string& line : linesOf(movesOf(home))) {
    const std::size_t end = line.find('\t');
    const auto* const found = std::find(std::begin(kindNames), std::end(kindNames), line.substr(0, end));
    if (found != std::end(kindNames) && end != line.npos)
      changes.push_back(
          {static_cast<Change::Kind>(found - std::begin(kindNames)), toPath(line.substr(end + 1))});
  }
  return changes;
}

// Undoes one change, whether it was made or not.
void undo(const fs::path& root, const Change& change, const Stage::Move& move) {
  const fs::path home = root / stagePlace, place = root / change.place, old = home / "old" / change.place;
  std::error_code failure;
  if (change.kind == Change::Kind::add) {
    // What has left the folder of the new ones has taken its place.
    if (!fs::exists(home / "new" / change.place)) failure = platform::removeFile(place);
  } else if (fs::exists(old)) {
    failure = move(old, place);
  }
  if (failure) failAt(place, failure);
}

// Those that are empty, the innermost first.
void removeFolders(const fs::path& home) {
  std::vector<std::string> folders = linesOf(foldersOf(home));
  std::error_code ignored;
  fs::remove_all(home, ignored);
  for (auto folder = folders.rbegin(); folder != folders.rend(); ++folder)
    fs::remove(toPath(*folder), ignored);
}

}  // namespace

bool putBack(const fs::path& root, const Stage::Move& move) {
  const fs::path home = root / stagePlace;
  if (!fs::exists(home)) return false;
  std::vector<Change> changes = changesOf(home);
  for (auto change = changes.rbegin(); change != changes.rend(); ++change) undo(root, *change, move);
  removeFolders(home);
  return true;
}

Stage::Stage(fs::path root, Move move)
    : root_(std::move(root)), home_(root_ / stagePlace), move_(std::move(move)) {
  putBack(root_, move_);
  try {
    makeFolder(home_);
    noteFolders(0);
  } catch (...) {
    std::error_code ignored;
    for (auto folder = folders_.rbegin(); folder != folders_.rend(); ++folder)
      fs::remove_all(*folder, ignored);
    throw;
  }
}

Stage::~Stage() {
  if (!open_) return;
  try {
    putBack(root_, move_);
  } catch (const std::exception&) {
    // The next one puts it back.
  }
}

// Makes a folder and those above it, and notes which of them were not there.
void Stage::makeFolder(const fs::path& folder) {
  if (fs::is_directory(folder)) return;
  if (folder.has_relative_path()) makeFolder(folder.parent_path());
  std::error_code failure;
  fs::create_directory(folder, failure);
  if (failure) failAt(folder, failure);
  folders_.push_back(folder);
}

// What an installation that is broken off leaves is taken away by this list.
void Stage::noteFolders(std::size_t from) {
  for (std::size_t i = from; i < folders_.size(); ++i) append(foldersOf(home_), pathText(folders_[i]));
}

fs::path Stage::fresh(const fs::path& place) {
  fs::path path = home_ / "new" / place;
  std::error_code failure;
  fs::create_directories(path.parent_path(), failure);
  if (failure) failAt(path.parent_path(), failure);
  fresh_.insert(place);
  dropped_.erase(place);
  return path;
}

void Stage::drop(const fs::path& place) {
  if (!fresh_.contains(place)) dropped_.insert(place);
}

void Stage::prepare() {
  const std::size_t noted = folders_.size();
  for (const fs::path& place : fresh_) makeFolder((root_ / place).parent_path());
  noteFolders(noted);
}

void Stage::swap() {
  std::vector<Change> changes;
  for (const fs::path& place : fresh_)
    changes.push_back({fs::exists(root_ / place) ? Change::Kind::replace : Change::Kind::add, place});
  for (const fs::path& place : dropped_)
    if (fs::exists(root_ / place)) changes.push_back({Change::Kind::remove, place});
  if (changes.empty()) return;

  // The list is whole before the first move: it gets its name when it is.
  const fs::path draft = home_ / "moves.draft";
  for (const Change& change : changes) {
    append(draft, std::string(kindNames[static_cast<int>(change.kind)]) + '\t' + pathText(change.place));
    std::error_code failure;
    fs::create_directories((home_ / "old" / change.place).parent_path(), failure);
    if (failure) failAt(home_, failure);
  }
  if (const std::error_code failure = move_(draft, movesOf(home_))) failAt(movesOf(home_), failure);

  for (const Change& change : changes) {
    std::error_code failure;
    if (change.kind != Change::Kind::add) failure = move_(root_ / change.place, home_ / "old" / change.place);
    if (!failure && change.kind != Change::Kind::remove)
      failure = move_(home_ / "new" / change.place, root_ / change.place);
    if (failure) failAt(root_ / change.place, failure);
  }
}

void Stage::keep() {
  // Without the list nothing goes back any more; a file that is still held goes with the next installation.
  if (const std::error_code failure = platform::removeFile(movesOf(home_))) failAt(movesOf(home_), failure);
  open_ = false;
  std::error_code ignored;
  fs::remove_all(home_, ignored);
}

}  // namespace vordane::tools
