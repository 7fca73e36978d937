// Install directories of the suite and its registration database.
#pragma once

#include <string>
#include <string_view>

#include "platform/database.h"
#include "platform/services.h"

namespace vordane::comRegQuil32 {

// Where the program runs and where the suite keeps its settings; both outlive the calls.
struct Installation {
  platform::SettingsStore& settings;
  std::u16string runningDirectory;  // of the executable, no trailing separator
};

// The five-character version text taken from the running directory, or "NONE".
std::u16string GetSuiteVersion(const Installation& installation, std::u16string_view product);

// A directory ending in "\", upper-case but for letters whose capital names another directory. Never fails:
// missing settings fall back to the running directory.
std::u16string GetInstallPath(const Installation& installation, std::u16string_view product,
                              std::u16string_view item);

// The suite's install directory of the running version: the one that the settings name, else the one above
// the add-ins that the program runs in. Outside a suite, and without a setting, it is the program's own
// directory.
std::u16string suiteDirectory(const Installation& installation);

// Register.mdb of a product's suite.
std::u16string registrationPath(const Installation& installation, std::u16string_view product);

// Writes `version` into the row of Register.mdb whose AppName is `application`. True when done, also when
// there is no such row; false when the database or the table is missing, with the engine's text in `reason`.
bool RegisterVersion(const Installation& installation, database::Engine& engine, std::u16string_view product,
                     std::u16string_view application, std::u16string_view version,
                     std::u16string* reason = nullptr);

}  // namespace vordane::comRegQuil32
