#include "platform/odbc/receipts.h"

#include <array>
#include <numeric>

#include "platform/odbc/errors.h"
#include "platform/odbc/session.h"
#include "text/numbers.h"

namespace vordane::odbc {
namespace {

using database::ColumnType;
using database::Receipt;

const database::TableDefinition& receiptTable = receiptTables[0];
const database::TableDefinition& entryTable = receiptTables[1];

// What no server keeps of a text stands as the mark of such a character.
std::u16string travelling(std::u16string_view text) {
  if (canTravel(text)) return std::u16string(text);
  std::u16string fit;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::size_t length = canTravel(text.substr(i, 2)) && !canTravel(text.substr(i, 1)) ? 2 : 1;
    const std::u16string_view one = text.substr(i, length);
    fit.append(canTravel(one) ? one : u"\uFFFD");
    i += length - 1;
  }
  return fit;
}

std::string columnsOf(const Dialect& dialect, const database::TableDefinition& table) {
  std::string all;
  for (const database::ColumnDefinition& column : table.columns)
    all += (all.empty() ? "" : ", ") + dialect.read(dialect.quoted(column.name), column.type);
  return all;
}

std::vector<std::size_t> placesFrom(std::size_t first, const database::TableDefinition& table) {
  std::vector<std::size_t> places(table.columns.size() - first);
  std::iota(places.begin(), places.end(), first);
  return places;
}

std::int32_t shortFrom(const Field& field) {
  return static_cast<std::int32_t>(numberFrom(field));
}

// In the order of the columns.
Receipt receiptOf(const Fields& row) {
  Receipt receipt;
  std::size_t column = 0;
  receipt.number = numberFrom(row.at(column++));
  for (std::u16string* text :
       {&receipt.moment, &receipt.exchange, &receipt.person, &receipt.workstation, &receipt.outcome})
    *text = row.at(column++).value_or(u"");
  if (row.at(column)) receipt.code = shortFrom(row[column]);
  receipt.answered = shortFrom(row.at(++column));
  const Field &major = row.at(column + 1), &minor = row.at(column + 2);
  if (major && minor) receipt.lamps = database::ReceiptLamps{*major != u"0", *minor != u"0"};
  return receipt;
}

class ServerReceipts final : public database::Receipts {
 public:
  ServerReceipts(std::shared_ptr<Session> session, const database::LampTable& lamps)
      : session_(std::move(session)), dialect_(session_->dialect()), lamps_(lamps) {}

  void keep(const Receipt& receipt) override {
    if (session_->readOnly()) database::fail(number::readOnly);
    session_->beside([&](Link& link) {
      Fields values;
      for (const std::u16string* text :
           {&receipt.moment, &receipt.exchange, &receipt.person, &receipt.workstation, &receipt.outcome})
        values.emplace_back(travelling(*text));
      values.push_back(receipt.code ? Field(text::decimal(*receipt.code)) : Field());
      values.emplace_back(text::decimal(receipt.answered));
      for (Field& lamp : lampsOf(link, values[1])) values.push_back(std::move(lamp));
      const auto added = link.query(
          dialect_.insert(receiptTable, placesFrom(1, receiptTable), dialect_.quoted(u"Number")), values);
      addEntries(link, receipt, numberFrom(added.at(0).at(0)));
    });
  }

  std::optional<Receipt> last(std::u16string_view exchange) override {
    const Field name = travelling(exchange);
    const std::string statement = dialect_.limited("select " + columnsOf(dialect_, receiptTable) + " from " +
                                                       dialect_.name(receiptTable.name) + " where " +
                                                       dialect_.folded(dialect_.quoted(u"Exchange")) + " = " +
                                                       dialect_.folded(dialect_.parameter(ColumnType::text)) +
                                                       " order by " + dialect_.quoted(u"Number") + " desc",
                                                   1);
    std::optional<Receipt> found;
    const auto rows = session_->askBeside(statement, {&name, 1});
    if (!rows.empty()) found = receiptOf(rows[0]);
    return found;
  }

  void read(const std::function<void(const Receipt&)>& take) override {
    std::vector<Fields> receipts, entries;
    session_->beside([&](Link& link) {
      receipts = link.query(everything(receiptTable, {u"Number"}));
      entries = link.query(everything(entryTable, {u"Receipt", u"Place"}));
    });
    // Both stand in the order of their receipts, the latest last.
    while (!receipts.empty()) {
      Receipt receipt = receiptOf(receipts.back());
      receipts.pop_back();
      takeEntries(receipt, entries);
      take(receipt);
    }
  }

 private:
  std::string everything(const database::TableDefinition& table,
                         std::initializer_list<std::u16string_view> order) const {
    std::string ordered;
    for (const auto column : order) ordered += (ordered.empty() ? "" : ", ") + dialect_.quoted(column);
    return "select " + columnsOf(dialect_, table) + " from " + dialect_.name(table.name) + " order by " +
           ordered;
  }

  // 1 for a lit one, 0, and nothing for both where the exchange is not stored.
  std::array<Field, 2> lampsOf(Link& link, const Field& exchange) const {
    const auto lit = [&](std::u16string_view column) {
      return dialect_.read(dialect_.quoted(column), ColumnType::yesNo);
    };
    const auto flag = [](const Field& value) { return Field(value && *value != u"0" ? u"1" : u"0"); };
    const auto rows = link.query(dialect_.limited("select " + lit(lamps_.major) + ", " + lit(lamps_.minor) +
                                                      " from " + dialect_.name(lamps_.table) + " where " +
                                                      dialect_.folded(dialect_.quoted(lamps_.name)) + " = " +
                                                      dialect_.folded(dialect_.parameter(ColumnType::text)),
                                                  1),
                                 {&exchange, 1});
    if (rows.empty()) return {};
    return {flag(rows[0].at(0)), flag(rows[0].at(1))};
  }

  void addEntries(Link& link, const Receipt& receipt, std::int64_t number) const {
    if (receipt.entries.empty()) return;
    Fields arrays(entryTable.columns.size(), std::u16string());
    std::int64_t place = 0;
    for (const database::ReceiptEntry& entry : receipt.entries) {
      const Field row[] = {text::decimal(number),   text::decimal(++place),   travelling(entry.command),
                           travelling(entry.first), travelling(entry.second), travelling(entry.extra)};
      for (std::size_t i = 0; i < arrays.size(); ++i) appendToArray(*arrays[i], row[i]);
    }
    for (Field& array : arrays) array->push_back(u'}');
    link.change(dialect_.insertMany(entryTable, placesFrom(0, entryTable)), arrays);
  }

  static void takeEntries(Receipt& receipt, std::vector<Fields>& entries) {
    while (!entries.empty() && numberFrom(entries.back().at(0)) >= receipt.number) {
      Fields& row = entries.back();
      if (numberFrom(row[0]) == receipt.number)
        receipt.entries.insert(receipt.entries.begin(), {row.at(2).value_or(u""), row.at(3).value_or(u""),
                                                         row.at(4).value_or(u""), row.at(5).value_or(u"")});
      entries.pop_back();
    }
  }

  std::shared_ptr<Session> session_;
  const Dialect& dialect_;
  const database::LampTable& lamps_;
};

}  // namespace

std::shared_ptr<database::Receipts> makeReceipts(std::shared_ptr<Session> session) {
  const database::LampTable* lamps = session->lampTable();
  return lamps == nullptr ? nullptr : std::make_shared<ServerReceipts>(std::move(session), *lamps);
}

}  // namespace vordane::odbc
