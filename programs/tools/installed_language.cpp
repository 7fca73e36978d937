#include "installed_language.h"

#include "language/comLanguage.h"
#include "language/form_controls.h"
#include "language/row_values.h"
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
                  std::initializer_list<std::u16string_view> columns, std::u16string_view formColumn) {
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

LanguageSource installedLanguage(Database& own, Database* common, const std::string& name) {
  LanguageSource source;
  source.name = name;
  source.messages = rowsOf(own, name, u"tMessages", {u"ID", u"Caption"});
  source.lists = rowsOf(own, name, u"tComboBoxDT", {u"ObjectName", u"ListIndex", u"List"}, u"FormName");
  source.forms =
      rowsOf(own, name, u"tForms", {u"ObjectName", u"Caption", u"FontName", u"FontSize"}, u"ObjectName");
  source.controls =
      rowsOf(own, name, u"tControls", {u"ObjectName", u"Caption", u"FontName", u"FontSize", u"ToolTipText"},
             u"FormName");
  source.headings = rowsOf(own, name, u"tSSGridsHD", {u"ObjectName", u"ColIndex", u"Caption"}, u"FormName");
  source.project = projectRows(own, name);
  source.boxes =
      rowsOf(own, name, u"tMsgBox", {u"MsgNo", u"Prompt", u"Buttons", u"Title", u"HelpFile", u"Context"});
  source.pictures = rowsOf(own, name, u"tPicture",
                           {u"ObjectName", u"FileName", u"BasePanel", u"BasePanelIndex"}, u"FormName");
  if (common != nullptr) {
    source.common_boxes = rowsOf(*common, name, u"tMsgBox",
                                 {u"MsgNo", u"Prompt", u"Buttons", u"Title", u"HelpFile", u"Context"});
    source.picture_sets = rowsOf(*common, name, u"PictureFileName", {u"ID", u"DefaultName", u"FileName"});
  }
  if (canRun(own, u"select * from tHelp"))
    source.help = rowsOf(own, name, u"tHelp", {u"ObjectName", u"HelpText"}, u"FormName");
  return source;
}

}  // namespace vordane::tools
