#include "export_texts.h"

#include <algorithm>
#include <fstream>

#include "faults/kind_lists.h"
#include "language/comLanguage.h"
#include "language/form_controls.h"
#include "language/row_values.h"
#include "lines.h"
#include "settings/shared_state.h"
#include "text/numbers.h"
#include "text/text.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

namespace fs = std::filesystem;

std::string inUtf8(const fs::path& path) {
  return text::toUtf8(path.u16string());
}

// A hidden list of a kind has nothing to translate: the row that `language build` writes for it.
bool saysNothing(const std::string& name, const SourceRow& row) {
  using language::keepDesigned;
  return name == "controls.tsv" && row.fields[1] == keepDesigned && row.fields[4] == keepDesigned &&
         std::any_of(kindLists.begin(), kindLists.end(),
                     [&](const KindList& list) { return list.name() == row.fields[0]; });
}

// By their numbers, where a table's rows have no order of their own.
void sortRows(const std::string& name, SourceRows& rows) {
  const auto number = [](const std::u16string& field) { return text::parseInteger(field).value_or(0); };
  if (name == "messages.tsv")
    std::stable_sort(rows.begin(), rows.end(), [&](const SourceRow& a, const SourceRow& b) {
      return number(a.fields[0]) < number(b.fields[0]);
    });
  if (name == "lists.tsv")
    std::stable_sort(rows.begin(), rows.end(), [&](const SourceRow& a, const SourceRow& b) {
      return a.fields[0] != b.fields[0] ? a.fields[0] < b.fields[0]
                                        : number(a.fields[1]) < number(b.fields[1]);
    });
}

void writeRows(const fs::path& path, const SourceRows& rows) {
  fs::create_directories(path.parent_path());
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  for (const SourceRow& row : rows) {
    for (std::size_t i = 0; i < row.fields.size(); ++i)
      out << (i > 0 ? "\t" : "") << text::toUtf8(row.fields[i]);
    out << '\n';
  }
  out.close();
  if (!out) throw ToolError(inUtf8(path) + ": can't be written");
}

}  // namespace

TextExport::File& TextExport::file(const std::string& name, bool shared) {
  for (File& known : files_)
    if (known.name == name) return known;
  return files_.emplace_back(File{name, shared, {}});
}

void TextExport::beginTable(const access::Table& table) {
  table_ = table;
  if (text::equalIgnoringCase(table.name, u"PictureFileName")) common_ = true;
}

// A column's text on one line; a tab or a line's end has no place in a source.
std::u16string TextExport::field(std::u16string_view column) {
  const auto found =
      std::find_if(table_.columns.begin(), table_.columns.end(),
                   [&](const access::Column& known) { return text::equalIgnoringCase(known.name, column); });
  if (found == table_.columns.end()) return {};
  const access::Value& value = values_.at(static_cast<std::size_t>(found - table_.columns.begin()));
  std::u16string words = database::textOf(value);
  for (char16_t& c : words) {
    if (c != u'\t' && c != u'\r' && c != u'\n') continue;
    c = u' ';
    problems_.push_back(text::toUtf8(table_.name) + ": \"" + text::toUtf8(words) +
                        "\": a tab or a line's end became a blank");
  }
  return words;
}

// Sources know one window, and no control of it stands in a control array.
bool TextExport::isOwnForm() {
  const auto has = [&](std::u16string_view name) {
    return std::any_of(table_.columns.begin(), table_.columns.end(), [&](const access::Column& column) {
      return text::equalIgnoringCase(column.name, name);
    });
  };
  const bool window = text::equalIgnoringCase(table_.name, u"tForms");
  const std::u16string form = window ? field(u"ObjectName") : field(u"FormName");
  if ((window || has(u"FormName")) && !text::equalIgnoringCase(form, formName)) {
    problems_.push_back(text::toUtf8(table_.name) + ": a row of the window \"" + text::toUtf8(form) +
                        "\" is left out");
    return false;
  }
  if (has(u"Index") && field(u"Index") != u"-1") {
    problems_.push_back(text::toUtf8(table_.name) + ": element " + text::toUtf8(field(u"Index")) +
                        " of the control array \"" + text::toUtf8(field(u"ObjectName")) + "\" is left out");
    return false;
  }
  return true;
}

void TextExport::take(const LanguageTable& table) {
  SourceRow row;
  for (const auto column : columnsInFile(table)) row.fields.push_back(field(column));
  if (!saysNothing(table.file, row)) file(table.file, table.shared).rows.push_back(std::move(row));
}

void TextExport::takeProject(const LanguageTable& table) {
  if (!text::equalIgnoringCase(field(u"EXEName"), programName)) return;
  for (const comLanguage::ProjectText& text : comLanguage::projectTexts)
    file(table.file, table.shared).rows.push_back({{}, {std::u16string(text.column), field(text.column)}});
}

void TextExport::row(const std::vector<access::Value>& values) {
  values_ = values;
  const auto* const table = std::find_if(
      std::begin(languageTables), std::end(languageTables),
      [&](const LanguageTable& known) { return text::equalIgnoringCase(known.table.name, table_.name); });
  if (table == std::end(languageTables)) return;
  if (hasLineForEachColumn(*table)) return takeProject(*table);
  if (isOwnForm()) take(*table);
}

std::vector<fs::path> TextExport::write(const fs::path& folder) const {
  const fs::path whole = fs::absolute(folder / "").parent_path().lexically_normal();
  std::vector<fs::path> written;
  for (const File& file : files_) {
    // Both databases have boxes, each its own.
    const std::string name = common_ && file.name == "boxes.tsv" ? "common_boxes.tsv" : file.name;
    const fs::path path = (file.shared ? whole.parent_path() / "shared" : whole) / name;
    if (file.shared && fs::exists(path)) continue;
    SourceRows rows = file.rows;
    sortRows(name, rows);
    writeRows(path, rows);
    written.push_back(path);
  }
  if (written.empty()) throw ToolError("no texts of a language are in it");
  return written;
}

}  // namespace vordane::tools
