#include "language/comLanguage.h"

#include "language/control_fonts.h"
#include "language/language_databases.h"
#include "language/row_values.h"
#include "text/numbers.h"
#include "text/text.h"

namespace vordane::comLanguage {
namespace {

using database::Recordset;
using language::newText;
using language::textOf;
using language::trapped;
namespace statement = language::statement;

template <typename Row>
void forEachRow(database::Database& database, const database::Statement& statement, Row&& apply) {
  const auto rows = database.openRecordset(statement);
  for (; !rows->atEnd(); rows->moveNext()) apply(*rows);
  rows->close();
}

void setText(window::Control& control, std::u16string_view property, const database::Value& value) {
  if (auto text = newText(value)) control.set(property, std::move(*text));
}

// The window's own row knows neither "-1" nor Null: a Null caption is a failing call.
void localiseWindow(window::Control& self, Recordset& row) {
  std::u16string nothingToInsert;
  self.set(u"Caption", ExpandEscapes(automation::toText(row.get(u"Caption")), nothingToInsert));
  language::setFont(self, u"Font", textOf(row.get(u"FontName")), row.get(u"FontSize"));
}

void localiseControl(window::Form& form, Recordset& row) {
  window::Control& control = language::controlOf(form, row);
  setText(control, u"Caption", row.get(u"Caption"));
  if (const auto font = newText(row.get(u"FontName")))
    language::setControlFont(control, *font, row.get(u"FontSize"));
  setText(control, u"ToolTipText", row.get(u"ToolTipText"));
}

void addListEntry(window::Form& form, Recordset& row) {
  window::Control& list = language::controlOf(form, row);
  const int newIndex = list.addItem(textOf(row.get(u"List")));
  list.setItemData(newIndex, automation::toLong(row.get(u"ItemData")));
  if (automation::toBoolean(row.get(u"Visible"))) list.setListIndex(newIndex);
}

void setHeading(window::Form& form, Recordset& row) {
  window::Control& grid = language::controlOf(form, row);
  const std::u16string column =
      u"Columns(" + text::decimal(automation::toInteger(row.get(u"ColIndex"))) + u")";
  setText(grid, column + u".Caption", row.get(u"Caption"));
}

std::u16string nextPiece(std::u16string& substitution) {
  const std::size_t percent = substitution.find(u'%');
  if (percent == std::u16string::npos) return substitution;
  // The place is counted in bytes, two for each character, and used as a count of characters.
  std::u16string piece(text::left(substitution, 2 * percent));
  substitution = text::middle(substitution, 2 * percent + 3);
  return piece;
}

void appendToken(std::u16string& result, std::u16string_view token, std::u16string& substitution) {
  if (token == u"%CR")
    result += u'\r';
  else if (token == u"%AND")
    result += u'&';
  else if (token == u"%SP")
    result += u' ';
  else if (token == u"%SP4")
    result += u"    ";
  else if (text::contains(token, u"%ST"))
    result += nextPiece(substitution);
  else if (token == language::keepDesigned)
    result = token;
  else
    result += token;
}

}  // namespace

bool LocaliseForm(window::Form& form, database::Database& database) {
  return trapped([&] {
    forEachRow(database, statement::form.with({form.name()}),
               [&](Recordset& row) { localiseWindow(form.self(), row); });
  });
}

bool LocaliseControls(window::Form& form, database::Database& database) {
  return trapped([&] {
    forEachRow(database, statement::controls.with({form.name()}),
               [&](Recordset& row) { localiseControl(form, row); });
  });
}

bool LoadComboLists(window::Form& form, database::Database& database) {
  return trapped([&] {
    forEachRow(database, statement::lists.with({form.name()}),
               [&](Recordset& row) { addListEntry(form, row); });
  });
}

bool LocaliseGridHeadings(window::Form& form, database::Database& database) {
  return trapped([&] {
    forEachRow(database, statement::headings.with({form.name()}),
               [&](Recordset& row) { setHeading(form, row); });
  });
}

bool LoadProjectTexts(std::u16string_view executableName, database::Database& database, ProjectTexts& texts) {
  return trapped([&] {
    const auto rows = database.openRecordset(statement::project.with({executableName}));
    for (const ProjectText& text : projectTexts)
      if (auto words = newText(rows->get(text.column))) texts.*text.text = std::move(*words);
    rows->close();
  });
}

bool LoadTextArray(std::vector<std::u16string>& array, std::u16string_view table,
                   database::Database& database) {
  return trapped([&] {
    // The added row -1 comes first and holds the number of the others.
    const auto rows = database.openRecordset(statement::numberedTexts.with({table, table}));
    const std::int16_t count = automation::toInteger(rows->get(u"Caption"));
    if (count < 0) throw automation::AutomationError(automation::error::overflow);  // another row came first
    array.assign(static_cast<std::size_t>(count), {});
    rows->moveNext();
    for (std::u16string& text : array) {
      text = textOf(rows->get(u"Caption"));
      rows->moveNext();
    }
    rows->close();
  });
}

std::map<std::u16string, std::u16string> loadHelpTexts(const window::Form& form,
                                                       database::Database& database) {
  std::map<std::u16string, std::u16string> texts;
  static_cast<void>(trapped([&] {
    forEachRow(database, statement::help.with({form.name()}),
               [&](Recordset& row) { texts[textOf(row.get(u"ObjectName"))] = textOf(row.get(u"HelpText")); });
  }));
  return texts;
}

std::u16string ExpandEscapes(std::u16string_view text, std::u16string& substitution) {
  std::u16string result;
  while (!text.empty()) {
    const std::u16string_view token = text::trim(text.substr(0, text.find(u'&')));
    // The cut counts the trimmed token, so one written with blanks shifts it; texts are stored without.
    text = text::middle(text, token.size() + 2);
    appendToken(result, token, substitution);
  }
  return result;
}

}  // namespace vordane::comLanguage
