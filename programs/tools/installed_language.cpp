#include "installed_language.h"

#include "language/comLanguage.h"
#include "language/form_controls.h"
#include "language/language_databases.h"
#include "language/row_values.h"
#include "language_tables.h"
#include "settings/shared_state.h"
#include "text/utf8.h"

namespace vordane::tools {

using database::Database;

bool canRun(Database& database, const std::u16string& statement) try {
  database.openRecordset(statement)->close();
  return true;
} catch (const database::DatabaseError&) {
  return false;
}

SourceRows rowsOf(Database& database, const std::string& name, std::u16string_view table,
                  const std::vector<std::u16string_view>& columns, std::u16string_view formColumn) {
  SourceRows rows;
  const auto recordset = database.openRecordset(u"SELECT * FROM " + std::u16string(table));
  for (int number = 1; !recordset->atEnd(); recordset->moveNext(), ++number) {
    if (!formColumn.empty() && language::textOf(recordset->get(formColumn)) != formName) continue;
    SourceRow row{name + " " + text::toUtf8(table) + " row " + std::to_string(number), {}};
    for (const auto column : columns) row.fields.push_back(language::textOf(recordset->get(column)));
    rows.push_back(std::move(row));
  }
  return rows;
}

SourceRows projectRows(Database& own, const std::string& name) {
  SourceRows rows;
  const auto recordset = own.openRecordset(u"SELECT * FROM tProject");
  for (; !recordset->atEnd(); recordset->moveNext()) {
    if (language::textOf(recordset->get(u"EXEName")) != programName) continue;
    for (const comLanguage::ProjectText& text : comLanguage::projectTexts)
      rows.push_back(
          {name + " tProject", {std::u16string(text.column), language::textOf(recordset->get(text.column))}});
  }
  return rows;
}

namespace {

// A language database may lack the table of the explanations.
bool isThere(Database& database, const LanguageTable& table) {
  return table.table.name != language::helpTable.name ||
         canRun(database, u"select * from " + std::u16string(table.table.name));
}

}  // namespace

LanguageSource installedLanguage(Database& own, Database* common, const std::string& name) {
  LanguageSource source;
  source.name = name;
  for (const LanguageTable& table : languageTables) {
    Database* const database = table.holder == Holder::common ? common : &own;
    if (database == nullptr || !isThere(*database, table)) continue;
    source.*table.rows = hasLineForEachColumn(table) ? projectRows(*database, name)
                                                     : rowsOf(*database, name, table.table.name,
                                                              columnsInFile(table), windowColumn(table));
  }
  return source;
}

}  // namespace vordane::tools
