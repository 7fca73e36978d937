#include "language_source.h"

#include <fstream>
#include <iterator>

#include "language_tables.h"
#include "text/text.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

// The columns of a line; the last one may be empty, which a plain split at an end would lose.
std::vector<std::u16string> columnsOf(std::string_view line) {
  std::vector<std::u16string> columns;
  for (;;) {
    const auto tab = line.find('\t');
    columns.push_back(text::fromUtf8(line.substr(0, tab)));
    if (tab == std::string_view::npos) return columns;
    line.remove_prefix(tab + 1);
  }
}

void readLine(std::string_view line, const std::string& place, std::size_t columns, SourceRows& rows,
              Problems& problems) {
  if (line.ends_with('\r')) line.remove_suffix(1);
  if (line.empty() || line.starts_with('#')) return;
  SourceRow row{place, columnsOf(line)};
  if (row.fields.size() == columns)
    rows.push_back(std::move(row));
  else
    problems.push_back(place + ": " + std::to_string(row.fields.size()) + " columns instead of " +
                       std::to_string(columns));
}

void readFile(const std::filesystem::path& file, const std::string& name, std::size_t columns,
              SourceRows& rows, Problems& problems) {
  std::ifstream in(file, std::ios::binary);
  if (!in) {
    problems.push_back(name + ": missing");
    return;
  }
  const std::string content{std::istreambuf_iterator<char>(in), {}};
  std::string_view rest = content;
  if (rest.starts_with(byteOrderMark)) rest.remove_prefix(byteOrderMark.size());
  for (int line = 1; !rest.empty(); ++line) {
    const auto end = rest.find('\n');
    readLine(rest.substr(0, end), name + ":" + std::to_string(line), columns, rows, problems);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  }
}

}  // namespace

std::filesystem::path toPath(const std::string& utf8) {
  return {text::fromUtf8(utf8)};
}

std::u16string toText(const std::filesystem::path& path) {
  return path.u16string();
}

LanguageSource readLanguageSource(const std::filesystem::path& folder, Problems& problems) {
  const std::filesystem::path whole =
      folder.has_filename() ? folder : folder.parent_path();  // "data/language/en/" too
  LanguageSource source;
  source.name = text::toUtf8(whole.filename().u16string());
  for (const LanguageTable& table : languageTables) {
    const std::filesystem::path place = table.shared ? whole.parent_path() / "shared" : whole;
    const std::string name = (table.shared ? "shared" : source.name) + "/" + table.file;
    readFile(place / table.file, name, columnsInFile(table).size(), source.*table.rows, problems);
  }
  return source;
}

}  // namespace vordane::tools
