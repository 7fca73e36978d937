// Prints the faults that a suite has stored, newest first.
#include <cstdint>
#include <iostream>
#include <optional>
#include <string>

#include "access_reading.h"
#include "commands.h"
#include "platform/engine_choice.h"
#include "platform/sqlite/engine.h"
#include "text/numbers.h"
#include "text/text.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

using database::Recordset;

constexpr std::u16string_view exchanges = u"SELECT * FROM PBXList Order by [TimeStamp] Desc";
constexpr std::u16string_view faultsOf = u"SELECT * FROM FaultDisplay WHERE ID = ";
constexpr std::u16string_view newestFirst =
    u" Order by [Date] Desc, [Count] Desc, [Fault] Desc, [Alarm] Desc, [CPU] Desc, [Description] Desc";

struct Options {
  std::string file;
  std::optional<std::u16string> exchange;
  bool csv = false, count = false;
};

std::optional<Options> parse(const Arguments& arguments) {
  Options options;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    if (arguments[i] == "--csv")
      options.csv = true;
    else if (arguments[i] == "--count")
      options.count = true;
    else if (arguments[i] == "--exchange" && i + 1 < arguments.size())
      options.exchange = text::fromUtf8(arguments[++i]);
    else if (options.file.empty() && !arguments[i].starts_with("--"))
      options.file = arguments[i];
    else
      return std::nullopt;
  }
  if (options.file.empty()) return std::nullopt;
  return options;
}

std::u16string textOf(Recordset& rows, std::u16string_view column) {
  const database::Value value = rows.get(column);
  return automation::isNull(value) ? std::u16string{} : automation::toText(value);
}

bool flagOf(Recordset& rows, std::u16string_view column) {
  const database::Value value = rows.get(column);
  return !automation::isNull(value) && automation::toBoolean(value);
}

std::string inQuotes(std::u16string_view value) {
  std::string result = "\"";
  for (const char byte : text::toUtf8(value)) result.append(byte == '"' ? 2 : 1, byte);
  return result + '"';
}

// What a person reads of a description: its lines without the data trailer, in one.
std::string words(std::u16string_view description) {
  std::string result;
  for (int line = 0; line < 2 && !description.empty(); ++line) {
    const auto end = description.find(text::crlf);
    const auto part = text::trim(description.substr(0, end));
    if (!part.empty()) result += (result.empty() ? "" : " - ") + text::toUtf8(part);
    description = end == description.npos ? std::u16string_view{} : description.substr(end + 2);
  }
  return result;
}

class Lister {
 public:
  Lister(database::Database& database, const Options& options) : database_(database), options_(options) {}

  void run() {
    if (options_.csv) std::cout << "Exchange,Fault,Alarm,Date,CPU,Description,Count\r\n";
    const auto rows = database_.openRecordset(exchanges);
    for (; !rows->atEnd(); rows->moveNext()) {
      const std::u16string name = textOf(*rows, u"PBXName");
      if (options_.exchange && *options_.exchange != name) continue;
      if (!options_.csv && !options_.count) printExchange(*rows, name);
      printFaults(name, automation::toLong(rows->get(u"ID")));
    }
    if (options_.count) std::cout << count_ << '\n';
  }

 private:
  static void printExchange(Recordset& row, std::u16string_view name) {
    const auto lamp = [&](std::u16string_view column) { return flagOf(row, column) ? "alarm" : "clear"; };
    std::cout << text::toUtf8(name) << ": list received " << text::toUtf8(textOf(row, u"TimeStamp"))
              << ", major " << lamp(u"MJ") << ", minor " << lamp(u"MN") << '\n';
  }

  void printFaults(std::u16string_view name, std::int32_t id) {
    const auto rows =
        database_.openRecordset(std::u16string(faultsOf) + text::decimal(id) + std::u16string(newestFirst));
    for (; !rows->atEnd(); rows->moveNext()) {
      ++count_;
      if (options_.csv)
        printCsv(*rows, name);
      else if (!options_.count)
        printLine(*rows);
    }
  }

  static void printCsv(Recordset& row, std::u16string_view name) {
    std::cout << inQuotes(name);
    for (const auto column : {u"Fault", u"Alarm", u"Date", u"CPU", u"Description"})
      std::cout << ',' << inQuotes(textOf(row, column));
    std::cout << ',' << text::toUtf8(textOf(row, u"Count")) << "\r\n";
  }

  static void printLine(Recordset& row) {
    const auto field = [&](std::u16string_view column) { return text::toUtf8(textOf(row, column)); };
    std::cout << "  " << field(u"Count") << "  " << field(u"Date") << "  " << field(u"Alarm") << "  "
              << field(u"CPU") << "  " << field(u"Fault") << "  " << words(textOf(row, u"Description"))
              << '\n';
  }

  database::Database& database_;
  const Options& options_;
  std::int64_t count_ = 0;
};

}  // namespace

int list(const Arguments& arguments) {
  const auto options = parse(arguments);
  if (!options) {
    std::cerr << "usage: vordane-tools list FAULT.MDB [--exchange NAME] [--csv | --count]\n";
    return 2;
  }
  const auto engine = database::makeEngineChoice(accessEngine(), sqlite::makeEngine());
  const auto database = engine->open(text::fromUtf8(options->file), true);
  Lister(*database, *options).run();
  return 0;
}

}  // namespace vordane::tools
