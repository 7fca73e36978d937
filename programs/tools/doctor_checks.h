// Why a start-up would fail or be incomplete: the add-in itself must end without a word.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database.h"
#include "platform/program_guard.h"
#include "suite_files.h"

namespace vordane::tools {

enum class Weight : std::uint8_t {
  fatal,       // the program would not start, or start without its faults
  incomplete,  // it leaves something out
  unsafe       // it starts, and somebody else's code might
};
// What the doctor can do about a finding without losing anything, when it is asked to (doctor_remedies.h).
enum class Remedy : std::uint8_t {
  none,
  faultIndex,         // made anew
  suiteRegistration,  // the add-in's row in Register.mdb
  program,            // VORDANE.EXE registers itself
  ownTexts,           // VORDANE.LNG is made of its sources
  sharedTexts,        // Common.LNG likewise
  accessLocks         // what an Access engine that was ended has left is deleted
};
struct Finding {
  Weight weight;
  std::string text;
  Remedy remedy = Remedy::none;
};
std::string_view wordFor(Weight weight);           // "stops the program"
bool canWrite(const std::filesystem::path& path);  // as far as its attributes say

// What the doctor says, one line each.
std::vector<std::string> linesOf(const std::vector<Finding>& findings);

// Opens the databases as the program does on this machine. Only on Windows can that be Access files too.
std::unique_ptr<database::Engine> examiningEngine();

// Looks at every file below the version directory, reads each embedded one whole, and changes none.
std::vector<Finding> examineFiles(const SuiteLayout& layout, database::Engine& engine);

// How a class is registered.
struct RegisteredClass {
  std::u16string command;  // starts its program
  bool forEveryUser = false;
};
// The same for hosts of 64 and of 32 bits.
struct ClassByWordSize {
  std::optional<RegisteredClass> wide, narrow;
};

// What the workstation says of the suite: a setting of application QUILMAR32, a class, and who besides
// administrators may replace a program.
struct Workstation {
  std::function<std::optional<std::u16string>(std::u16string_view section, std::u16string_view key)> setting;
  std::function<std::optional<RegisteredClass>(std::u16string_view progId)> registered;
  std::function<std::vector<guard::Finding>(std::u16string_view program)> whoMayReplace;
  // Whether a file of that path is there, as the program itself asks; none where paths are of another shape.
  std::function<bool(std::u16string_view path)> exists = {};
  // None where hosts have but one word size.
  std::function<ClassByWordSize(std::u16string_view progId)> registeredByWordSize = {};
  // "1.0.12"; empty for a program that does not say.
  std::function<std::string(std::u16string_view program)> versionOf = {};
};
// Nothing where there is no registry.
std::optional<Workstation> thisWorkstation();
std::vector<Finding> examineWorkstation(const SuiteLayout& layout, const Workstation& workstation);

}  // namespace vordane::tools
