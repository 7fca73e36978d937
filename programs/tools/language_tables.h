// Each file of a language's sources with the table that it fills: what reading, building, exporting and
// examining share. What the tables' columns are stands in language/language_databases.h; a file has those of
// them that differ from row to row, in the table's order.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "language/language_databases.h"
#include "language_source.h"

namespace vordane::tools {

enum class Holder { own, common };  // VORDANE.LNG, Common.LNG

struct LanguageTable {
  const char* file;
  SourceRows LanguageSource::*rows;
  database::TableDefinition table;
  Holder holder = Holder::own;
  bool shared = false;  // one file for all languages, in the folder "shared" beside them
};

inline constexpr LanguageTable languageTables[] = {
    {"messages.tsv", &LanguageSource::messages, {u"tMessages", language::columns::messages}},
    {"lists.tsv", &LanguageSource::lists, {u"tComboBoxDT", language::columns::comboBoxes}},
    {"forms.tsv", &LanguageSource::forms, {u"tForms", language::columns::forms}},
    {"controls.tsv", &LanguageSource::controls, {u"tControls", language::columns::controls}},
    {"headings.tsv", &LanguageSource::headings, {u"tSSGridsHD", language::columns::grids}},
    {"project.tsv", &LanguageSource::project, {u"tProject", language::columns::project}},
    {"boxes.tsv", &LanguageSource::boxes, {u"tMsgBox", language::columns::boxes}},
    {"common_boxes.tsv",
     &LanguageSource::common_boxes,
     {u"tMsgBox", language::columns::boxes},
     Holder::common},
    {"help.tsv", &LanguageSource::help, language::helpTable},
    {"pictures.tsv",
     &LanguageSource::pictures,
     {u"tPicture", language::columns::pictures},
     Holder::own,
     true},
    {"picture_sets.tsv",
     &LanguageSource::picture_sets,
     {u"PictureFileName", language::columns::pictureSets},
     Holder::common,
     true},
};

// The application's texts: the table has one row for a program, the file a line for each of its columns.
bool hasLineForEachColumn(const LanguageTable& table);

// What a column holds that stands in no file: the window, no control array, the number of another column, no.
enum class Given { window, noIndex, itsCode, no };
std::optional<Given> given(std::u16string_view column);

// The columns of the file's lines.
std::vector<std::u16string_view> columnsInFile(const LanguageTable& table);

// The column that names the window of a row; empty for tables that have none.
std::u16string_view windowColumn(const LanguageTable& table);

}  // namespace vordane::tools
