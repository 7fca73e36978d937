#include "language_build.h"

#include <algorithm>

#include "faults/kind_lists.h"
#include "language/comLanguage.h"
#include "language/form_controls.h"
#include "language/language_databases.h"
#include "language/row_values.h"
#include "language_tables.h"
#include "lines.h"
#include "settings/shared_state.h"
#include "text/numbers.h"
#include "text/utf8.h"
#include "tools/sqlite/database_writer.h"

namespace vordane::tools {
namespace {

using database::Value;
using Row = std::vector<Value>;

constexpr std::int32_t noIndex = -1;  // no control of the window stands in a control array

std::int32_t number(const SourceRow& row, std::size_t column) {
  const auto value = text::parseInteger(row.fields[column]);
  if (!value) throw ToolError(row.place + ": \"" + text::toUtf8(row.fields[column]) + "\" is not a number");
  return *value;
}

Value form() {
  return std::u16string(formName);
}

// The code of a list's item is its place in the list.
std::int32_t codeOf(const LanguageTable& table, const SourceRow& row) {
  const auto columns = columnsInFile(table);
  const auto place = std::find(columns.begin(), columns.end(), u"ListIndex");
  return number(row, static_cast<std::size_t>(place - columns.begin()));
}

Value givenValue(Given given, const LanguageTable& table, const SourceRow& row) {
  switch (given) {
    case Given::window:
      return form();
    case Given::noIndex:
      return noIndex;
    case Given::itsCode:
      return codeOf(table, row);
    case Given::no:
      break;
  }
  return false;
}

Value valueOf(database::ColumnType type, const SourceRow& row, std::size_t field) {
  if (type == database::ColumnType::integer) return number(row, field);
  if (type == database::ColumnType::number) return static_cast<double>(number(row, field));
  return row.fields[field];
}

Row valuesOf(const LanguageTable& table, const SourceRow& row) {
  Row values;
  std::size_t field = 0;
  for (const database::ColumnDefinition& column : table.table.columns) {
    const auto filled = given(column.name);
    values.push_back(filled ? givenValue(*filled, table, row) : valueOf(column.type, row, field++));
  }
  return values;
}

// The hidden lists of the kinds: nobody sees their fonts, but the add-in's table names every control. A
// source that was exported from an installed file has rows of its own.
void insertKindLists(DatabaseWriter& out, const LanguageSource& source) {
  for (const KindList& list : kindLists) {
    const bool given = std::any_of(source.controls.begin(), source.controls.end(),
                                   [&](const SourceRow& row) { return row.fields[0] == list.name(); });
    if (given || source.forms.empty()) continue;
    const SourceRow& window = source.forms.front();
    const std::u16string keepDesigned(language::keepDesigned);
    out.insert(u"tControls", Row{form(), std::u16string(list.name()), noIndex, keepDesigned, window.fields[2],
                                 static_cast<double>(number(window, 3)), keepDesigned});
  }
}

// The one row whose columns are the properties of the application.
Row projectValues(const SourceRows& rows) {
  Row values{std::u16string(programName)};
  for (const comLanguage::ProjectText& text : comLanguage::projectTexts) {
    std::u16string words;
    for (const SourceRow& row : rows)
      if (row.fields[0] == text.column) words = row.fields[1];
    values.emplace_back(words);
  }
  return values;
}

void insertTexts(DatabaseWriter& out, const LanguageSource& source, Holder holder) {
  for (const LanguageTable& table : languageTables) {
    if (table.holder != holder) continue;
    if (hasLineForEachColumn(table))
      out.insert(table.table.name, projectValues(source.*table.rows));
    else
      for (const SourceRow& row : source.*table.rows) out.insert(table.table.name, valuesOf(table, row));
  }
}

}  // namespace

void buildOwnLanguage(const LanguageSource& source, const std::filesystem::path& out) {
  DatabaseWriter writer(toText(out), true);
  writer.createTables(language::ownTables);
  writer.createTable(language::helpTable);
  insertTexts(writer, source, Holder::own);
  insertKindLists(writer, source);
  writer.finish();
}

void buildCommonLanguage(const LanguageSource& source, const std::filesystem::path& out) {
  DatabaseWriter writer(toText(out), true);
  writer.createTables(language::commonTables);
  insertTexts(writer, source, Holder::common);
  writer.finish();
}

}  // namespace vordane::tools
