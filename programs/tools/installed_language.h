// The texts of an installed language database in the shape of their sources, so that one rule serves both.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "language_source.h"
#include "platform/database.h"

namespace vordane::tools {

// Whether a statement finds its table and columns.
bool canRun(database::Database& database, const std::u16string& statement);

// The rows of a table, each as a line of its source would be; `name` is that of the file, for their places.
// With `formColumn` only those that belong to the window. Throws DatabaseError where table or column is
// missing, and automation::AutomationError for a value that is no text.
SourceRows rowsOf(database::Database& database, const std::string& name, std::u16string_view table,
                  const std::vector<std::u16string_view>& columns, std::u16string_view formColumn = {});

// The program's row of tProject: one line for each property, none without the row.
SourceRows projectRows(database::Database& own, const std::string& name);

// Everything that VORDANE.LNG holds, and what Common.LNG does where `common` is given. Throws as rowsOf does.
LanguageSource installedLanguage(database::Database& own, database::Database* common,
                                 const std::string& name);

}  // namespace vordane::tools
