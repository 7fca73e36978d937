// Installs, renews and removes the add-in in a suite, or a set of its own where there is no suite. What a
// user's work has made stays: stored faults, jobs, the suite's registration, and the words that faults are
// stored in. Whatever fails, everything stands as before. One thread.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "doctor_checks.h"
#include "setup_outcome.h"
#include "setup_record.h"

namespace vordane::tools {

// What an installation does to the workstation besides its files.
class SetupSystem {
 public:
  virtual ~SetupSystem() = default;
  virtual Words words() = 0;                               // of the system, not of this program
  virtual std::unique_ptr<database::Engine> engine() = 0;  // opens databases as the add-in does
  // Whether a program runs, or another has opened the file.
  virtual bool inUse(const std::filesystem::path& file) = 0;
  virtual std::optional<Version> versionOf(const std::filesystem::path& program) = 0;
  // Runs the program, which registers itself, or takes its registration away. False when it says that it
  // couldn't.
  virtual bool registerProgram(const std::filesystem::path& program, bool everybody) = 0;
  virtual bool unregisterProgram(const std::filesystem::path& program) = 0;
  // The suite's settings of one version, application QUILMAR32; empty removes.
  virtual std::optional<std::u16string> setting(std::u16string_view version, std::u16string_view key) = 0;
  virtual void set(std::u16string_view version, std::u16string_view key,
                   const std::optional<std::u16string>& value) = 0;
  virtual void removeOwnSettings() = 0;  // places and columns of the window, of this user
  // How many bytes this user may still write to the disk of a folder that is there; nothing when it can't be
  // told.
  virtual std::optional<std::uintmax_t> roomAt(const std::filesystem::path& folder) = 0;
  // Everybody who works at this workstation may write there.
  virtual void letUsersWrite(const std::filesystem::path& folder) = 0;
  // Has the system keep a small memory image of each crash of the add-in, of whatever user, in that user's
  // own %LOCALAPPDATA%\CrashDumps; one set of `root` at a time. False when it could not be set.
  virtual bool keepCrashDumps(const std::filesystem::path& root) = 0;
  // No more, when it was this set that had it done.
  virtual void dropCrashDumps(const std::filesystem::path& root) = 0;
  virtual std::vector<Finding> examine(const SuiteLayout& layout) = 0;
  virtual void pause(std::chrono::milliseconds time) = 0;
};

using Tell = std::function<void(const std::string& line)>;

struct InstallRequest {
  std::filesystem::path root;     // the version directory
  std::filesystem::path package;  // what the installer has unpacked: x64, x86, common, data
  Version version;                // of the package
  std::string language;           // for a set that is new; empty: en
  std::optional<Words> words;     // none: as wordsFor says
  bool everybody = true;
  bool demonstration = false;     // with the simulated exchange
  bool crashDumps = false;        // kept from now on; for everybody only
  std::chrono::seconds wait{60};  // for programs that are in use
};

// Throws SetupFailure. Tells what it does, one line each, and at the end what the doctor finds.
void install(const InstallRequest& request, SetupSystem& system, const Tell& tell);

struct RemovalRequest {
  std::filesystem::path root;
  bool everything = false;  // stored faults, logs, jobs and settings too
  std::chrono::seconds wait{60};
};

void uninstall(const RemovalRequest& request, SetupSystem& system, const Tell& tell);

// Waits until none of the files is in use. Throws SetupFailure (inUse) with the name of one that still is.
void waitUntilFree(const std::vector<std::filesystem::path>& files, std::chrono::seconds patience,
                   SetupSystem& system, const Tell& tell);

// The programs and databases below a version directory that somebody may be using.
std::vector<std::filesystem::path> usedFiles(const SuiteLayout& layout);

}  // namespace vordane::tools
