#include "database_files.h"

#include <algorithm>
#include <iterator>

#include "lines.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

// By the numbers that both engines use.
struct Advice {
  int number;
  std::string_view text;
};
constexpr Advice advices[] = {
    {3024, "there is no such file. Check the path"},
    {3343, "this is no database. Name a database of the suite, of the embedded engine or of Access"},
    {3260, "it is in use by another program. End that program, then try again"},
    {3027, "it may not be written. Check the rights of the file and of its folder"},
    {3051, "it may not be opened or written. Check the rights of the file and of its folder"},
    {3026, "there is no room on its disk. Make room, then try again"},
    {3043, "its disk or the network failed. Check them, then try again"},
    {3049, "it is damaged. Bring back a copy that is whole"},
    {3035, "there is not enough memory for it. End other programs, then try again"},
    {3061,
     "it lacks a column that is needed. Check that it is the right file; 'vordane-tools doctor' says more"},
    {3078,
     "it lacks a table that is needed. Check that it is the right file; 'vordane-tools doctor' says more"},
};

}  // namespace

std::string failureText(std::string_view file, const database::DatabaseError& failure) {
  const auto* known = std::find_if(std::begin(advices), std::end(advices),
                                   [&](const Advice& advice) { return advice.number == failure.number(); });
  std::string out = std::string(file) + ": ";
  if (known != std::end(advices)) return out += known->text;
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
