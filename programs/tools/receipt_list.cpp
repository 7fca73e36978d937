#include "receipt_list.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <vector>

#include "lines.h"
#include "platform/stored_values.h"
#include "store/reset_receipts.h"
#include "store/statements.h"
#include "terminal_text.h"
#include "text/blanks.h"
#include "text/csv.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

using database::Receipt;
using database::ReceiptEntry;
using Form = ListOptions::Form;
using Object = nlohmann::ordered_json;

// "YYYY-MM-DD HH:MM:SS" as faults write it: "YYYY/MM/DD HH:MM".
std::u16string asOfFault(std::u16string_view moment) {
  constexpr std::size_t length = 16, month = 4, day = 7;
  std::u16string date(moment.substr(0, length));
  if (date.size() == length) date[month] = date[day] = u'/';
  return date;
}

std::string codeOf(const Receipt& receipt) {
  return receipt.code ? std::to_string(*receipt.code) : std::string{};
}

Object lampOf(const Receipt& receipt, bool database::ReceiptLamps::*lamp) {
  return receipt.lamps ? Object((*receipt.lamps).*lamp) : Object(nullptr);
}

class ReceiptLister {
 public:
  ReceiptLister(Form form, std::ostream& out) : form_(form), out_(out) {}

  void begin() {
    if (form_ == Form::csv)
      out_ << "Number,Time,Exchange,User,Workstation,Major,Minor,Outcome,Code,Lines,Answer\r\n";
    if (form_ == Form::json) out_ << R"({"format":"vordane receipt list","version":1,"receipts":[)";
  }
  void add(const Receipt& receipt) {
    if (form_ == Form::json) out_ << (count_ == 0 ? "\n" : ",\n") << jsonOf(receipt);
    if (form_ == Form::csv) printCsv(receipt);
    if (form_ == Form::lines) printLines(receipt);
    ++count_;
  }
  void end() {
    if (form_ == Form::json) out_ << "\n]}\n";
    if (form_ == Form::count) out_ << count_ << '\n';
  }

 private:
  void printLines(const Receipt& receipt) {
    const auto lamp = [&](const char* name, bool database::ReceiptLamps::*which) {
      if (receipt.lamps) out_ << ", " << name << ((*receipt.lamps).*which ? " alarm" : " clear");
    };
    out_ << onOneLine(receipt.moment) << "  " << onOneLine(receipt.exchange) << ": "
         << onOneLine(receipt.outcome);
    if (receipt.code) out_ << ' ' << *receipt.code;
    out_ << ", by " << onOneLine(receipt.person) << " on " << onOneLine(receipt.workstation);
    lamp("major", &database::ReceiptLamps::major);
    lamp("minor", &database::ReceiptLamps::minor);
    out_ << '\n';
    for (const ReceiptEntry& entry : receipt.entries)
      out_ << "  " << onOneLine(entry.command) << "  " << onOneLine(entry.first) << "  "
           << onOneLine(entry.second) << "  " << onOneLine(entry.extra) << '\n';
    const auto more = receipt.answered - static_cast<std::int32_t>(receipt.entries.size());
    if (more > 0) out_ << "  and " << more << " more\n";
  }

  // The lines of the answer stand in one field: their values with TABs between them.
  void printCsv(const Receipt& receipt) {
    const auto field = [](std::u16string words) {
      return text::csvQuoted(text::toUtf8(text::forSpreadsheet(std::move(words))));
    };
    const auto lamp = [&](bool database::ReceiptLamps::*which) {
      return !receipt.lamps ? "" : (*receipt.lamps).*which ? "1" : "0";
    };
    std::u16string answer;
    for (const ReceiptEntry& entry : receipt.entries)
      answer += (answer.empty() ? u"" : u"\r\n") + entry.command + u"\t" + entry.first + u"\t" +
                entry.second + u"\t" + entry.extra;
    out_ << receipt.number;
    for (const std::u16string* words :
         {&receipt.moment, &receipt.exchange, &receipt.person, &receipt.workstation})
      out_ << ',' << field(*words);
    out_ << ',' << lamp(&database::ReceiptLamps::major) << ',' << lamp(&database::ReceiptLamps::minor) << ','
         << field(receipt.outcome) << ',' << codeOf(receipt) << ',' << receipt.answered << ','
         << field(answer) << "\r\n";
  }

  const Form form_;
  std::ostream& out_;
  std::int64_t count_ = 0;
};

std::vector<std::u16string> exchangesKnown(database::Database& database,
                                           const std::vector<Receipt>& receipts) {
  std::vector<std::u16string> known;
  for (const auto rows = database.openRecordset(store::exchangesNewestFirst); !rows->atEnd();
       rows->moveNext())
    known.push_back(database::textOf(rows->get(u"PBXName")));
  for (const Receipt& receipt : receipts) {
    const bool listed = std::any_of(known.begin(), known.end(), [&](const std::u16string& one) {
      return text::equalAsStored(one, receipt.exchange);
    });
    if (!listed) known.push_back(receipt.exchange);
  }
  return known;
}

}  // namespace

std::string jsonOf(const Receipt& receipt) {
  Object entries = Object::array();
  for (const ReceiptEntry& entry : receipt.entries)
    entries.push_back({{"command", text::toUtf8(entry.command)},
                       {"first", text::toUtf8(entry.first)},
                       {"second", text::toUtf8(entry.second)},
                       {"extra", text::toUtf8(entry.extra)}});
  return Object{{"event", "reset"},
                {"number", receipt.number},
                {"exchange", text::toUtf8(receipt.exchange)},
                {"time", text::toUtf8(receipt.moment)},
                {"user", text::toUtf8(receipt.person)},
                {"workstation", text::toUtf8(receipt.workstation)},
                {"major", lampOf(receipt, &database::ReceiptLamps::major)},
                {"minor", lampOf(receipt, &database::ReceiptLamps::minor)},
                {"confirmed", receipt.outcome == store::outcomeConfirmed},
                {"outcome", text::toUtf8(receipt.outcome)},
                {"code", receipt.code ? Object(*receipt.code) : Object(nullptr)},
                {"lines", receipt.answered},
                {"answer", entries}}
      .dump();
}

void listReceipts(database::Database& database, const std::string& file, const ListOptions& options,
                  std::ostream& out) {
  requireTimes(options.selection.filter);
  const auto receipts = database.receipts();
  if (!receipts) throw ToolError(file + ": no receipts of resets are kept in a database of this kind");
  const list::Limits limits(options.selection.filter);
  std::vector<Receipt> all;
  receipts->read([&](const Receipt& receipt) { all.push_back(receipt); });
  if (options.selection.exchange) {
    const auto known = exchangesKnown(database, all);
    if (std::none_of(known.begin(), known.end(),
                     [&](const std::u16string& name) { return options.selection.hasExchange(name); }))
      noSuchExchange(file, *options.selection.exchange, known);
  }
  ReceiptLister lister(options.form, out);
  lister.begin();
  for (const Receipt& receipt : all)
    if (options.selection.hasExchange(receipt.exchange) &&
        (!limits.any() || limits.hold(list::minuteOf(asOfFault(receipt.moment)))))
      lister.add(receipt);
  lister.end();
}

}  // namespace vordane::tools
