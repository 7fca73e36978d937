#include "fault_list.h"

#include <utility>
#include <variant>
#include <vector>

#include "fault_json.h"
#include "lines.h"
#include "platform/stored_values.h"
#include "store/statements.h"
#include "terminal_text.h"
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

// A row whose number is none has 0.
std::int64_t numberOf(const database::Value& value) {
  if (const auto* number = std::get_if<std::int32_t>(&value)) return *number;
  const auto* far = std::get_if<double>(&value);
  return far != nullptr ? static_cast<std::int64_t>(*far) : 0;
}

StoredFault faultOf(Recordset& row, const std::u16string& exchange) {
  return {numberOf(row.get(u"Count")), exchange,
          textOf(row, u"Fault"),       textOf(row, u"Alarm"),
          textOf(row, u"Date"),        textOf(row, u"CPU"),
          textOf(row, u"Description")};
}

class Lister {
 public:
  Lister(database::Database& database, const ListOptions& options, std::ostream& out)
      : database_(database), form_(options.form), wanted_(options.selection), out_(out) {}

  void list(const std::vector<Exchange>& chosen) {
    if (form_ == Form::csv) out_ << "Exchange,Fault,Alarm,Date,CPU,Description,Count\r\n";
    if (form_ == Form::json) printHead(chosen);
    for (const Exchange& exchange : chosen) {
      if (form_ == Form::lines) printExchange(exchange);
      printFaults(exchange);
    }
    if (form_ == Form::json) out_ << "\n]}\n";
    if (form_ == Form::count) out_ << count_ << '\n';
  }

 private:
  void printHead(const std::vector<Exchange>& chosen) {
    out_ << R"({"format":"vordane fault list","version":1,"exchanges":[)";
    for (const Exchange& exchange : chosen)
      out_ << (&exchange == chosen.data() ? "\n" : ",\n") << R"({"exchange":)" << jsonText(exchange.name)
           << R"(,"received":)" << jsonText(exchange.received) << R"(,"major":)"
           << (exchange.major ? "true" : "false") << R"(,"minor":)" << (exchange.minor ? "true" : "false")
           << '}';
    out_ << "\n],\"faults\":[";
  }

  void printExchange(const Exchange& exchange) {
    const auto lamp = [](bool lit) { return lit ? "alarm" : "clear"; };
    out_ << onOneLine(exchange.name) << ": list received " << onOneLine(exchange.received) << ", major "
         << lamp(exchange.major) << ", minor " << lamp(exchange.minor) << '\n';
  }

  void printFaults(const Exchange& exchange) {
    const auto rows = database_.openRecordset(store::faultsOfExchange(exchange.id, store::newestFirst));
    for (; !rows->atEnd(); rows->moveNext()) {
      if (!isWanted(*rows)) continue;
      if (form_ == Form::json) out_ << (count_ == 0 ? "\n" : ",\n") << jsonOf(faultOf(*rows, exchange.name));
      ++count_;
      if (form_ == Form::csv) printCsv(*rows, exchange.name);
      if (form_ == Form::lines) printLine(*rows);
    }
  }

  bool isWanted(Recordset& row) const {
    return wanted_.has(textOf(row, u"Fault"), textOf(row, u"Alarm"), textOf(row, u"CPU"),
                       textOf(row, u"Date"));
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
  const WantedFaults wanted_;
  std::ostream& out_;
  std::int64_t count_ = 0;
};

}  // namespace

void listFaults(database::Database& database, const std::string& file, const ListOptions& options,
                std::ostream& out) {
  requireTimes(options.selection.filter);
  std::vector<Exchange> chosen;
  std::vector<std::u16string> known;
  for (Exchange& exchange : readExchanges(database)) {
    known.push_back(exchange.name);
    if (options.selection.hasExchange(exchange.name)) chosen.push_back(std::move(exchange));
  }
  if (options.selection.exchange && chosen.empty()) noSuchExchange(file, *options.selection.exchange, known);
  Lister(database, options, out).list(chosen);
}

}  // namespace vordane::tools
