// The workstation as services.h wants it: registry settings, clock, files, other servers, message boxes.
// All of it is used on the user-interface thread.
#pragma once

#include <windows.h>

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/command_line.h"
#include "platform/event_log.h"
#include "platform/program_guard.h"
#include "platform/registration.h"
#include "platform/services.h"

namespace vordane::windows {

// Software\VB and VBA Program Settings of the user, or of the workstation (HKEY_LOCAL_MACHINE: the same for
// programs of both word sizes): only REG_SZ values count.
class RegistrySettings : public platform::SettingsStore {
 public:
  explicit RegistrySettings(HKEY root = HKEY_CURRENT_USER) : root_(root) {}
  std::optional<std::u16string> read(std::u16string_view application, std::u16string_view section,
                                     std::u16string_view key) override;
  void write(std::u16string_view application, std::u16string_view section, std::u16string_view key,
             std::u16string_view value) override;

 private:
  HKEY root_;
};

class SystemClock : public platform::Clock {
 public:
  platform::LocalTime now() override;
  double secondsSinceMidnight() override;
  void sleep(int milliseconds) override;
  std::u16string regional(const platform::LocalTime& time) override;
};

class SystemFiles : public platform::Files {
 public:
  bool exists(std::u16string_view path) override;
  bool directoryExists(std::u16string_view path) override;
  std::vector<std::u16string> between(std::u16string_view before, std::u16string_view behind) override;
  bool append(std::u16string_view path, std::string_view bytes) override;
  std::optional<std::int64_t> length(std::u16string_view path) override;
};

// Local servers and in-process ones.
class ComObjectCreator : public platform::ObjectCreator {
 public:
  automation::ObjectRef create(std::u16string_view progId) override;
};

// MessageBoxIndirect above the window that `owner` names at that moment; while that one is hidden a window of
// its own that asks for the foreground. Where nobody could see a box (a
// service's window station) none is shown and the answer is 6.
class SystemMessageBoxes : public platform::MessageBoxes {
 public:
  using Owner = std::function<HWND()>;
  // Called when a person asks a box for help, with the box's help file.
  using HelpWanted = std::function<void(std::u16string_view file)>;
  SystemMessageBoxes(Owner owner, HelpWanted helpWanted);
  int show(const platform::MessageBoxRequest& request) override;
  // A box without an owner asks for the foreground.
  static int styleFor(int asked, HWND owner);

 private:
  HWND shownOwner() const;

  Owner owner_;
  HelpWanted helpWanted_;
};

// To be called first of all: a library that is loaded from now on by its bare name comes from the system's
// folder and never from the program's or the current one, where others may have put one of that name. (What
// the program is linked with is there already; tests/windows/shipped holds that the system keeps all of that
// in one place.)
void loadFromSystemOnly();

// The running program: long path name, version resource, command line. `start` says what was asked for.
platform::Program thisProgram();
std::u16string executablePath();

// What the version resource of a program says; nothing when there is no such program, or it says nothing.
// Nothing of the program is run.
struct FileVersion {
  int major, minor, revision;
};
std::optional<FileVersion> versionOfFile(std::u16string_view program);

// "HH:MM:SS.mmm", now: the beginning of a line that tells what happened.
std::u16string timeOfLine();

// The words of the command line behind the program's name, as UTF-8. What main receives has been forced into
// the system's code page; the command line has not.
std::vector<std::string> programWords();

// Writes a line, of output or about a mistake, to wherever whoever started this program reads: as UTF-8 to a
// file or pipe, as text of any script to a console, also that of the command prompt that a program with
// windows was started from.
void printLine(std::u16string_view line);
void printMistake(std::u16string_view line);

// Registers a program, or takes it away, as its command line asks, and prints what became of it. A program
// for everybody that others than administrators may replace is named with them. The exit code (0 done, 1 not
// done, 2 wrong usage), or nothing where the command line asks for something else.
std::optional<int> registerAsAsked(const platform::CommandLine& line, const registration::Server& server);

// Who besides administrators may put another program in the place of the one at `path`, or a library beside
// it: by the rights of the file, of its folder and of the folders above. A place whose rights can't be read,
// one that does not exist among them, is left out.
std::vector<guard::Finding> whoMayReplace(std::u16string_view path);

// False in a service's session, where a window or box would never be seen.
bool stationIsVisible();

// True for a file on a share or on a drive that stands for one.
bool isOnNetworkDrive(std::u16string_view path);

// True when another program has opened a file exclusively, or keeps its beginning locked.
bool isHeldByOthers(std::u16string_view path);

// The log "Application" of this workstation. Each entry opens it and closes it again: they are few, and its
// service may be started anew in between.
class SystemEventLog : public platform::EventLog {
 public:
  bool write(const platform::EventEntry& entry) override;
};

// What the desktop opens a file of that type with.
class SystemDocuments : public platform::Documents {
 public:
  // Hands a file to the desktop: true when a program took it.
  using Shell = std::function<bool(const std::wstring& path)>;
  explicit SystemDocuments(Shell shell = openWithDesktop) : shell_(std::move(shell)) {}
  bool open(std::u16string_view path) override;

 private:
  static bool openWithDesktop(const std::wstring& path);

  Shell shell_;
};

}  // namespace vordane::windows
