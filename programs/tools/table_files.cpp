#include "table_files.h"

#include <utility>

#include "lines.h"
#include "platform/file_moves.h"
#include "text/file_names.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t enough = std::size_t{1} << 18;

}  // namespace

TableFiles::TableFiles(fs::path folder, std::u16string ending)
    : folder_(std::move(folder)), ending_(std::move(ending)) {
  std::error_code failure;
  fs::create_directories(folder_, failure);
  if (failure)
    throw ToolError(text::toUtf8(folder_.u16string()) + ": the folder can't be made (" + failure.message() +
                    "). Name a folder that you may write to");
}

TableFiles::~TableFiles() {
  if (!pending_.empty()) {
    out_.close();
    std::error_code ignored;
    fs::remove(pending_, ignored);
  }
}

void TableFiles::beginTable(const access::Table& table) {
  target_ = folder_ / (text::asFileName(table.name) + ending_);
  pending_ = target_;
  pending_ += ".part";
  out_.open(pending_, std::ios::binary | std::ios::trunc);
  begin(table, buffer_);
}

void TableFiles::row(const std::vector<access::Value>& values) {
  append(values, buffer_);
  if (buffer_.size() >= enough) flush();
}

void TableFiles::flush() {
  out_.write(buffer_.data(), static_cast<std::streamsize>(buffer_.size()));
  buffer_.clear();
}

void TableFiles::endTable() {
  end(buffer_);
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
