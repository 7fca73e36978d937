#include "export_csv.h"

#include "text/csv.h"
#include "text/utf8.h"

namespace vordane::tools {

std::string csvField(const access::Value& value, CsvUse use) {
  if (automation::isNull(value) || automation::isEmpty(value)) return {};
  std::u16string words = automation::toText(value);
  // Only a text can be a formula: a number may begin with a minus.
  if (use == CsvUse::spreadsheet && std::holds_alternative<std::u16string>(value))
    words = text::forSpreadsheet(std::move(words));
  const std::string utf8 = text::toUtf8(words);
  const bool plain = !utf8.empty() && utf8.find_first_of("\",\r\n") == std::string::npos;
  return plain ? utf8 : text::csvQuoted(utf8);
}

void CsvExport::begin(const access::Table& table, std::string& out) {
  const char* between = "";
  for (const access::Column& column : table.columns)
    out += std::exchange(between, ",") + csvField(column.name, use_);
  out += "\r\n";
}

void CsvExport::append(const std::vector<access::Value>& values, std::string& out) {
  const char* between = "";
  for (const access::Value& value : values) out += std::exchange(between, ",") + csvField(value, use_);
  out += "\r\n";
}

}  // namespace vordane::tools
