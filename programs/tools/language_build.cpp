#include "language_build.h"

#include <algorithm>

#include "faults/kind_lists.h"
#include "language/comLanguage.h"
#include "language/form_controls.h"
#include "language/language_databases.h"
#include "language/row_values.h"
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

void insertAll(DatabaseWriter& out, std::u16string_view table, const SourceRows& rows,
               Row (*valuesOf)(const SourceRow&)) {
  for (const SourceRow& row : rows) out.insert(table, valuesOf(row));
}

Row messageValues(const SourceRow& row) {
  return {number(row, 0), row.fields[1]};
}
Row formValues(const SourceRow& row) {
  return {row.fields[0], row.fields[1], row.fields[2], static_cast<double>(number(row, 3))};
}
Row controlValues(const SourceRow& row) {
  return {form(),        row.fields[0], noIndex,
          row.fields[1], row.fields[2], static_cast<double>(number(row, 3)),
          row.fields[4]};
}
Row listValues(const SourceRow& row) {
  const std::int32_t code = number(row, 1);
  return {form(), row.fields[0], noIndex, code, row.fields[2], code, false};
}
Row headingValues(const SourceRow& row) {
  return {form(), row.fields[0], noIndex, number(row, 1), row.fields[2]};
}
Row boxValues(const SourceRow& row) {
  return {number(row, 0), row.fields[1], row.fields[2], row.fields[3], row.fields[4], row.fields[5]};
}
Row helpValues(const SourceRow& row) {
  return {form(), row.fields[0], row.fields[1]};
}
Row pictureValues(const SourceRow& row) {
  return {form(), row.fields[0], noIndex, row.fields[1], row.fields[2], number(row, 3)};
}
Row pictureSetValues(const SourceRow& row) {
  return {number(row, 0), row.fields[1], row.fields[2]};
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

}  // namespace

void buildOwnLanguage(const LanguageSource& source, const std::filesystem::path& out) {
  DatabaseWriter writer(toText(out), true);
  writer.createTables(language::ownTables);
  writer.createTable(language::helpTable);
  insertAll(writer, u"tMessages", source.messages, messageValues);
  insertAll(writer, u"tForms", source.forms, formValues);
  insertAll(writer, u"tControls", source.controls, controlValues);
  insertKindLists(writer, source);
  insertAll(writer, u"tComboBoxDT", source.lists, listValues);
  insertAll(writer, u"tSSGridsHD", source.headings, headingValues);
  writer.insert(u"tProject", projectValues(source.project));
  insertAll(writer, u"tMsgBox", source.boxes, boxValues);
  insertAll(writer, u"tPicture", source.pictures, pictureValues);
  insertAll(writer, u"tHelp", source.help, helpValues);
  writer.finish();
}

void buildCommonLanguage(const LanguageSource& source, const std::filesystem::path& out) {
  DatabaseWriter writer(toText(out), true);
  writer.createTables(language::commonTables);
  insertAll(writer, u"tMsgBox", source.common_boxes, boxValues);
  insertAll(writer, u"PictureFileName", source.picture_sets, pictureSetValues);
  writer.finish();
}

}  // namespace vordane::tools
