// What the system needs of the workstation besides automation, database and window. Each is a small
// interface handed in, so that tests run on in-memory ones.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/automation.h"

namespace vordane::platform {

// The per-user program settings, addressed as Visual Basic's GetSetting does.
class SettingsStore {
 public:
  virtual ~SettingsStore() = default;
  // Nothing when the value is missing or is no text.
  virtual std::optional<std::u16string> read(std::u16string_view application, std::u16string_view section,
                                             std::u16string_view key) = 0;
  // Only the program's own settings are ever written; a failure is silent.
  virtual void write(std::u16string_view application, std::u16string_view section, std::u16string_view key,
                     std::u16string_view value) = 0;
};

struct LocalTime {
  int year, month, day, hour, minute, second;
};

class Clock {
 public:
  virtual ~Clock() = default;
  virtual LocalTime now() = 0;
  virtual double secondsSinceMidnight() = 0;  // local time, with fractions
  virtual void sleep(int milliseconds) = 0;   // serves no messages
  // Date, a blank, time in the workstation's regional short-date and time formats.
  virtual std::u16string regional(const LocalTime& time) = 0;
};

class Files {
 public:
  virtual ~Files() = default;
  virtual bool exists(std::u16string_view path) = 0;  // a file, in the current directory if bare
  virtual bool directoryExists(std::u16string_view path) = 0;
  // The names, without their directory, of the files whose path is `before`, any letters, `behind`; without
  // regard to case, sorted. `before` ends a directory or a part of a name; `behind` holds no directory.
  virtual std::vector<std::u16string> between(std::u16string_view /*before*/,
                                              std::u16string_view /*behind*/) {
    return {};
  }
  // Appends bytes, creating the file; `length` is its size before. False when it can't be opened or
  // written whole.
  virtual bool append(std::u16string_view path, std::string_view bytes) = 0;
  virtual std::optional<std::int64_t> length(std::u16string_view path) = 0;  // nothing without the file
};

// What start-up learns of its own process.
struct Program {
  std::u16string directory;    // of the executable, no trailing separator
  std::u16string commandLine;  // without the program's own name, surrounding blanks and quotes
  bool startedByAutomation = false;
  int major = 0, minor = 0, revision = 0;
  // False in a service's session, where nobody sees a window: every box is log-only then.
  bool interactive = true;
  // Who has logged in to the workstation, and its own name; empty where the system does not tell.
  std::u16string person, workstation;
};

// Creates automation objects of other servers.
class ObjectCreator {
 public:
  virtual ~ObjectCreator() = default;
  virtual automation::ObjectRef create(std::u16string_view progId) = 0;  // throws AutomationError
};

struct MessageBoxRequest {
  std::u16string prompt;
  std::u16string title;
  std::int32_t style = 0;   // the sum of the button-style values
  std::u16string helpFile;  // empty: no help
  std::optional<std::int32_t> helpContext;
};

// Shows a box and waits for its answer (1 OK ... 7 No). Messages are served meanwhile.
class MessageBoxes {
 public:
  virtual ~MessageBoxes() = default;
  virtual int show(const MessageBoxRequest& request) = 0;
};

// Shows documents with the program that the workstation has for them. Whoever calls has made sure that the
// path is one of the suite's documents.
class Documents {
 public:
  virtual ~Documents() = default;
  // False when there is no such file or no program for it; true says that a program took it, no more.
  virtual bool open(std::u16string_view path) = 0;
};

}  // namespace vordane::platform
