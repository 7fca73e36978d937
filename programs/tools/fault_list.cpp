#include "fault_list.h"

#include <vector>

#include "lines.h"
#include "platform/stored_values.h"
#include "store/statements.h"
#include "terminal_text.h"
#include "text/blanks.h"
#include "text/csv.h"
#include "text/text.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

using database::Recordset;
using Form = ListOptions::Form;

struct Exchange {
  std::int32_t id = 0;
  std::u16string name, received;
  bool major = false, minor = false;
};

std::u16string textOf(Recordset& rows, std::u16string_view column) {
  return database::textOf(rows.get(column));
}

bool flagOf(Recordset& rows, std::u16string_view column) {
  return database::flagOf(rows.get(column));
}

std::vector<Exchange> readExchanges(database::Database& database) {
  std::vector<Exchange> found;
  const auto rows = database.openRecordset(store::exchangesNewestFirst);
  for (; !rows->atEnd(); rows->moveNext())
    found.push_back({automation::toLong(rows->get(u"ID")), textOf(*rows, u"PBXName"),
                     textOf(*rows, u"TimeStamp"), flagOf(*rows, u"MJ"), flagOf(*rows, u"MN")});
  return found;
}

[[noreturn]] void noSuchExchange(const std::string& file, std::u16string_view name,
                                 const std::vector<Exchange>& known) {
  std::string message = file + ": there is no exchange \"" + onOneLine(name) + "\". ";
  if (known.empty()) throw ToolError(message + "No exchange is stored there");
  message += "Name one of those stored there:";
  for (const Exchange& exchange : known)
    message += (&exchange == known.data() ? " \"" : ", \"") + onOneLine(exchange.name) + '"';
  throw ToolError(message);
}

// What a person reads of a description: its lines without the data trailer, in one.
std::string words(std::u16string_view description) {
  std::string result;
  for (int line = 0; line < 2 && !description.empty(); ++line) {
    const auto end = description.find(text::crlf);
    const auto part = text::trim(description.substr(0, end));
    if (!part.empty()) result += (result.empty() ? "" : " - ") + onOneLine(part);
    description = end == description.npos ? std::u16string_view{} : description.substr(end + 2);
  }
  return result;
}

// Which faults are asked for. One whose date has another form than "YYYY/MM/DD HH:MM" lies within no limits.
class Wanted {
 public:
  explicit Wanted(const list::Filter& filter) : filter_(filter), limits_(filter) {}

  bool has(Recordset& row) const {
    return list::showsGroup(filter_, textOf(row, u"Fault"), textOf(row, u"Alarm"), textOf(row, u"CPU")) &&
           (!limits_.any() || limits_.hold(list::minuteOf(textOf(row, u"Date"))));
  }

 private:
  const list::Filter& filter_;
  list::Limits limits_;
};

void requireTimes(const list::Filter& filter) {
  const char* const form =
      ": write the time as YYYY/MM/DD HH:MM, or its beginning as far as the year, the month, the day or the "
      "hour";
  switch (list::mistakeIn(filter)) {
    case list::Mistake::none:
      return;
    case list::Mistake::since:
      throw ToolError("--since " + onOneLine(filter.since) + form);
    case list::Mistake::until:
      throw ToolError("--until " + onOneLine(filter.until) + form);
    case list::Mistake::order:
      throw ToolError("--since " + onOneLine(filter.since) + " lies behind --until " +
                      onOneLine(filter.until) + ": no fault can lie between them");
  }
}

class Lister {
 public:
  Lister(database::Database& database, const ListOptions& options, std::ostream& out)
      : database_(database), form_(options.form), wanted_(options.filter), out_(out) {}

  void list(const std::vector<Exchange>& chosen) {
    if (form_ == Form::csv) out_ << "Exchange,Fault,Alarm,Date,CPU,Description,Count\r\n";
    for (const Exchange& exchange : chosen) {
      if (form_ == Form::lines) printExchange(exchange);
      printFaults(exchange);
    }
    if (form_ == Form::count) out_ << count_ << '\n';
  }

 private:
  void printExchange(const Exchange& exchange) {
    const auto lamp = [](bool lit) { return lit ? "alarm" : "clear"; };
    out_ << onOneLine(exchange.name) << ": list received " << onOneLine(exchange.received) << ", major "
         << lamp(exchange.major) << ", minor " << lamp(exchange.minor) << '\n';
  }

  void printFaults(const Exchange& exchange) {
    const auto rows = database_.openRecordset(store::faultsOfExchange(exchange.id, store::newestFirst));
    for (; !rows->atEnd(); rows->moveNext()) {
      if (!wanted_.has(*rows)) continue;
      ++count_;
      if (form_ == Form::csv) printCsv(*rows, exchange.name);
      if (form_ == Form::lines) printLine(*rows);
    }
  }

  void printCsv(Recordset& row, const std::u16string& name) {
    const auto field = [](std::u16string words) {
      return text::csvQuoted(text::toUtf8(text::forSpreadsheet(std::move(words))));
    };
    out_ << field(name);
    for (const auto column : {u"Fault", u"Alarm", u"Date", u"CPU", u"Description"})
      out_ << ',' << field(textOf(row, column));
    out_ << ',' << text::toUtf8(textOf(row, u"Count")) << "\r\n";
  }

  void printLine(Recordset& row) {
    const auto field = [&](std::u16string_view column) { return onOneLine(textOf(row, column)); };
    out_ << "  " << field(u"Count") << "  " << field(u"Date") << "  " << field(u"Alarm") << "  "
         << field(u"CPU") << "  " << field(u"Fault") << "  " << words(textOf(row, u"Description")) << '\n';
  }

  database::Database& database_;
  const Form form_;
  const Wanted wanted_;
  std::ostream& out_;
  std::int64_t count_ = 0;
};

}  // namespace

void listFaults(database::Database& database, const std::string& file, const ListOptions& options,
                std::ostream& out) {
  requireTimes(options.filter);
  const std::vector<Exchange> known = readExchanges(database);
  std::vector<Exchange> chosen;
  for (const Exchange& exchange : known)
    if (!options.exchange || text::equalAsStored(exchange.name, *options.exchange))
      chosen.push_back(exchange);
  if (options.exchange && chosen.empty()) noSuchExchange(file, *options.exchange, known);
  Lister(database, options, out).list(chosen);
}

}  // namespace vordane::tools
