// New files for a suite, all of them or none: each is made beside its place first; when every one is there,
// they take their places in one go, and what stood there waits until it is certain that it is not needed
// again. Whatever breaks that off, also the end of the process, leaves a folder from which the next one puts
// everything back.
#pragma once

#include <filesystem>
#include <functional>
#include <set>
#include <system_error>
#include <vector>

#include "platform/file_moves.h"
#include "suite_files.h"

namespace vordane::tools {

// Where new files wait: below ADDINS, which is the add-ins' own, and so on the same disk as every place,
// where a move moves a name and no bytes.
inline const std::filesystem::path stagePlace = places.addins() / "~SETUP";

class Stage {
 public:
  // Moves a file over what stands there and says how that failed; tests let it fail.
  using Move =
      std::function<std::error_code(const std::filesystem::path& from, const std::filesystem::path& to)>;
  static std::error_code moveInOneGo(const std::filesystem::path& from, const std::filesystem::path& to) {
    return platform::moveFile(from, to);
  }

  // In `root`, a version directory that need not exist yet. Puts back what one before left, then makes the
  // folder. Throws SetupFailure, also later, with everything as it stood.
  explicit Stage(std::filesystem::path root, Move move = moveInOneGo);
  // Puts everything back unless it is kept.
  ~Stage();
  Stage(const Stage&) = delete;
  Stage& operator=(const Stage&) = delete;

  // Where the new file for `place` (below the root) is to be made; its folder is there.
  std::filesystem::path fresh(const std::filesystem::path& place);
  // What stands at `place` is to go. Nothing there is nothing to do.
  void drop(const std::filesystem::path& place);

  // Makes the folders that the new files need, before they take their places.
  void prepare();
  // Everything takes its place, each in a folder that is prepared; until `keep` it can still be put back.
  void swap();
  void keep();

  // The folders that were not there before.
  const std::vector<std::filesystem::path>& madeFolders() const { return folders_; }

 private:
  void makeFolder(const std::filesystem::path& folder);
  void noteFolders(std::size_t from);

  std::filesystem::path root_, home_;
  Move move_;
  std::set<std::filesystem::path> fresh_, dropped_;
  std::vector<std::filesystem::path> folders_;
  bool open_ = true;
};

// Puts back what an installation that was broken off has left below `root`; true when there was something.
// Throws SetupFailure when it can't be put back whole.
bool putBack(const std::filesystem::path& root, const Stage::Move& move = Stage::moveInOneGo);

}  // namespace vordane::tools
