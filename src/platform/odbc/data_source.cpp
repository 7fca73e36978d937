#include "platform/odbc/data_source.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <span>

#include "platform/odbc/errors.h"
#include "text/text.h"
#include "text/utf8.h"

namespace vordane::odbc {
namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
constexpr std::u16string_view driverKey = u"DRIVER";
constexpr std::u16string_view passwordKeys[] = {u"PWD", u"PASSWORD"};
// Its value is itself a list of settings.
constexpr std::u16string_view settingsKey = u"pqopt";
// Which driver is a question of its own; the others say where this file lies, or is to be kept.
constexpr std::u16string_view notHandedOn[] = {u"DRIVER", u"DRIVER32", u"DRIVER64", u"FILEDSN", u"SAVEFILE"};

bool isOneOf(std::u16string_view key, std::span<const std::u16string_view> keys) {
  for (const std::u16string_view each : keys)
    if (text::equalIgnoringCase(key, each)) return true;
  return false;
}

// The settings that are always made, before those of the file, which count then.
std::u16string besides(const std::vector<DataSource::Entry>& defaults) {
  for (const DataSource::Entry& entry : defaults)
    if (entry.first == settingsKey) return entry.second + u" ";
  return {};
}

std::u16string_view withoutBraces(std::u16string_view value) {
  const bool braced = value.size() >= 2 && value.front() == u'{' && value.back() == u'}';
  return braced ? value.substr(1, value.size() - 2) : value;
}

// In braces only where it must be, since drivers do not take them off everything: where it could be read as
// another key, or is a list of settings.
void append(std::u16string& connection, std::u16string_view key, std::u16string_view value) {
  if (key != driverKey && value.find_first_of(u";{}=") == std::u16string_view::npos) {
    connection.append(key).append(u"=").append(value).append(u";");
    return;
  }
  connection.append(key).append(u"={");
  for (const char16_t character : value) connection.append(character == u'}' ? 2 : 1, character);
  connection.append(u"};");
}

}  // namespace

DataSource DataSource::parse(std::string_view utf8) {
  if (utf8.starts_with(byteOrderMark)) utf8.remove_prefix(byteOrderMark.size());
  std::u16string all = text::fromUtf8(utf8);
  for (char16_t& character : all)
    if (character == u'\r' || character == u'\t') character = u' ';
  DataSource source;
  bool begun = false;
  for (const std::u16string& written : text::split(all, u'\n')) {
    const std::u16string_view line = text::trim(written);
    if (line.empty() || line.front() == u';') continue;
    if (line.front() == u'[') {
      if (begun) break;  // other sections are other programs'
      if (!text::equalIgnoringCase(line, u"[ODBC]")) break;
      begun = true;
      continue;
    }
    const auto sign = line.find(u'=');
    if (!begun || sign == std::u16string_view::npos) continue;
    source.entries_.emplace_back(text::trim(line.substr(0, sign)),
                                 withoutBraces(text::trim(line.substr(sign + 1))));
  }
  if (!begun) database::fail(number::notADatabase);
  for (const Entry& entry : source.entries_)
    if (isOneOf(entry.first, passwordKeys)) database::fail(number::connectionFailed, entry.first);
  return source;
}

DataSource DataSource::read(std::u16string_view path) {
  std::ifstream file(std::filesystem::path(path), std::ios::binary);
  if (!file) database::fail(number::fileNotFound, path);
  return parse(std::string(std::istreambuf_iterator<char>(file), {}));
}

std::u16string_view DataSource::value(std::u16string_view key) const {
  for (const Entry& entry : entries_)
    if (text::equalIgnoringCase(entry.first, key)) return entry.second;
  return {};
}

std::u16string DataSource::connection(int wordSize, const std::vector<Entry>& defaults) const {
  std::u16string_view driver = value(wordSize == 32 ? u"DRIVER32" : u"DRIVER64");
  if (driver.empty()) driver = value(driverKey);
  std::u16string connection;
  append(connection, driverKey, driver);
  for (const Entry& entry : entries_) {
    if (isOneOf(entry.first, notHandedOn)) continue;
    const bool isList = text::equalIgnoringCase(entry.first, settingsKey);
    append(connection, entry.first, isList ? besides(defaults) + entry.second : entry.second);
  }
  for (const Entry& entry : defaults)
    if (value(entry.first).empty()) append(connection, entry.first, entry.second);
  return connection;
}

}  // namespace vordane::odbc
