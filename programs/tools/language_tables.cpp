#include "language_tables.h"

namespace vordane::tools {
namespace {

constexpr struct {
  std::u16string_view column;
  Given given;
} givenColumns[] = {{u"FormName", Given::window},
                    {u"Index", Given::noIndex},
                    {u"ItemData", Given::itsCode},
                    {u"Visible", Given::no}};

}  // namespace

bool hasLineForEachColumn(const LanguageTable& table) {
  return table.rows == &LanguageSource::project;
}

std::optional<Given> given(std::u16string_view column) {
  for (const auto& known : givenColumns)
    if (known.column == column) return known.given;
  return std::nullopt;
}

std::vector<std::u16string_view> columnsInFile(const LanguageTable& table) {
  if (hasLineForEachColumn(table)) return {u"property", u"text"};
  std::vector<std::u16string_view> columns;
  for (const database::ColumnDefinition& column : table.table.columns)
    if (!given(column.name)) columns.push_back(column.name);
  return columns;
}

std::u16string_view windowColumn(const LanguageTable& table) {
  if (table.rows == &LanguageSource::forms) return u"ObjectName";
  return given(table.table.columns.front().name) == Given::window ? table.table.columns.front().name
                                                                  : std::u16string_view();
}

}  // namespace vordane::tools
