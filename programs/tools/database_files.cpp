#include "database_files.h"

#include <algorithm>
#include <iterator>

#include "language_source.h"
#include "lines.h"
#include "platform/database_numbers.h"
#include "platform/engine_choice.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

namespace number = database::number;

// By the numbers that both engines use.
struct Advice {
  int number;
  std::string_view text;
};
constexpr Advice advices[] = {
    {number::fileNotFound, "there is no such file. Check the path"},
    {number::notADatabase,
     "this is no database. Name a database of the suite, of the embedded engine or of Access"},
    {number::locked, "it is in use by another program. End that program, then try again"},
    {number::readOnly, "it may not be written. Check the rights of the file and of its folder"},
    {number::noPermission, "it may not be opened or written. Check the rights of the file and of its folder"},
    {number::diskFull, "there is no room on its disk. Make room, then try again"},
    {number::diskError, "its disk or the network failed. Check them, then try again"},
    {number::damaged, "it is damaged. Bring back a copy that is whole"},
    {number::outOfMemory, "there is not enough memory for it. End other programs, then try again"},
    {number::unknownName,
     "it lacks a column that is needed. Check that it is the right file; 'vordane-tools doctor' says more"},
    {number::unknownTable,
     "it lacks a table that is needed. Check that it is the right file; 'vordane-tools doctor' says more"},
};

}  // namespace

std::string failureText(std::string_view file, const database::DatabaseError& failure) {
  const auto ofServer = [&] {
    return database::fileKind(toPath(std::string(file)).u16string()) == database::FileKind::dataSource;
  };
  const auto* known = std::find_if(std::begin(advices), std::end(advices),
                                   [&](const Advice& advice) { return advice.number == failure.number(); });
  std::string out = std::string(file) + ": ";
  if (known != std::end(advices) && !ofServer()) return out += known->text;
  return out + text::toUtf8(failure.description()) + " (error " + std::to_string(failure.number()) + ")";
}

std::unique_ptr<database::Database> openDatabase(database::Engine& engine, const std::string& file) {
  try {
    return engine.open(text::fromUtf8(file), true);
  } catch (const database::DatabaseError& failure) {
    throw ToolError(failureText(file, failure));
  }
}

}  // namespace vordane::tools
