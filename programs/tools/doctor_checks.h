// Why a start-up would fail or be incomplete: the add-in itself must end without a word.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/database.h"
#include "suite_files.h"

namespace vordane::tools {

// `fatal`: the program would not start, or start without its faults; the others leave something out.
struct Finding {
  bool fatal;
  std::string text;
};

// Opens the databases as the program does on this machine. Only on Windows can that be Access files too.
std::unique_ptr<database::Engine> examiningEngine();

// Looks at every file below the version directory, reads each embedded one whole, and changes none.
std::vector<Finding> examineFiles(const SuiteLayout& layout, database::Engine& engine);

// What the workstation says of the suite: its stored settings and the classes that are registered. The
// first of them reads a setting of application QUILMAR32, the second the command that starts a class's
// program.
struct Workstation {
  std::function<std::optional<std::u16string>(std::u16string_view section, std::u16string_view key)> setting;
  std::function<std::optional<std::u16string>(std::u16string_view progId)> server;
  // Whether a file of that path is there, as the program itself asks; none where paths are of another shape.
  std::function<bool(std::u16string_view path)> exists = {};
};
// Nothing where there is no registry.
std::optional<Workstation> thisWorkstation();
std::vector<Finding> examineWorkstation(const SuiteLayout& layout, const Workstation& workstation);

}  // namespace vordane::tools
