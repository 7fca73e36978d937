#include "export_csv.h"

#include "lines.h"
#include "platform/file_moves.h"
#include "text/csv.h"
#include "text/file_names.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t enough = std::size_t{1} << 18;

}  // namespace

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

CsvExport::CsvExport(fs::path folder, CsvUse use) : use_(use), folder_(std::move(folder)) {
  std::error_code failure;
  fs::create_directories(folder_, failure);
  if (failure)
    throw ToolError(text::toUtf8(folder_.u16string()) + ": the folder can't be made (" + failure.message() +
                    "). Name a folder that you may write to");
}

CsvExport::~CsvExport() {
  if (!pending_.empty()) {
    out_.close();
    std::error_code ignored;
    fs::remove(pending_, ignored);
  }
}

void CsvExport::beginTable(const access::Table& table) {
  target_ = folder_ / (text::asFileName(table.name) + u".csv");
  pending_ = target_;
  pending_ += ".part";
  out_.open(pending_, std::ios::binary | std::ios::trunc);
  std::vector<std::string> names;
  for (const access::Column& column : table.columns) names.push_back(csvField(column.name, use_));
  write(names);
}

void CsvExport::row(const std::vector<access::Value>& values) {
  std::vector<std::string> fields;
  for (const access::Value& value : values) fields.push_back(csvField(value, use_));
  write(fields);
}

void CsvExport::write(const std::vector<std::string>& fields) {
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (i > 0) buffer_ += ',';
    buffer_ += fields[i];
  }
  buffer_ += "\r\n";
  if (buffer_.size() >= enough) flush();
}

void CsvExport::flush() {
  out_.write(buffer_.data(), static_cast<std::streamsize>(buffer_.size()));
  buffer_.clear();
}

void CsvExport::endTable() {
  flush();
  out_.close();
  std::error_code failure;
  if (out_) failure = platform::moveFile(pending_, target_);
  if (!out_ || failure)
    throw ToolError(text::toUtf8(target_.u16string()) +
                    ": can't be written. Check the room on its disk and that no program holds the file");
  pending_.clear();
  files_.push_back(target_);
}

}  // namespace vordane::tools
