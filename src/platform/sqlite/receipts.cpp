#include "platform/sqlite/receipts.h"

#include <algorithm>
#include <iterator>

#include "platform/sqlite/own_table.h"

namespace vordane::sqlite {
namespace {

using database::Receipt;

// A person waits for what the reset brings, and nobody writes a file for longer.
constexpr int lockWait = 1000;

constexpr OwnTable ownReceiptTables[] = {
    {u"VordaneReceipts",
     u"CREATE TABLE VordaneReceipts (Number INTEGER PRIMARY KEY, Moment TEXT NOT NULL, Exchange TEXT NOT "
     u"NULL, "
     u"Person TEXT NOT NULL, Workstation TEXT NOT NULL, Major INTEGER, Minor INTEGER, Outcome TEXT NOT NULL, "
     u"Code INTEGER, Answered INTEGER NOT NULL)"},
    {u"VordaneReceiptEntries",
     u"CREATE TABLE VordaneReceiptEntries (Receipt INTEGER NOT NULL, Place INTEGER NOT NULL, Command TEXT "
     u"NOT "
     u"NULL, First TEXT NOT NULL, Second TEXT NOT NULL, Extra TEXT NOT NULL, PRIMARY KEY (Receipt, Place)) "
     u"WITHOUT ROWID"},
};

constexpr const char* receiptColumns =
    "Number, Moment, Exchange, Person, Workstation, Major, Minor, Outcome, Code, Answered";

Receipt receiptOf(const Statement& row) {
  Receipt receipt;
  int column = 0;
  receipt.number = row.integer(column++);
  for (std::u16string* text : {&receipt.moment, &receipt.exchange, &receipt.person, &receipt.workstation})
    *text = row.text(column++);
  const int major = column++, minor = column++;
  if (!row.isNull(major) && !row.isNull(minor))
    receipt.lamps = database::ReceiptLamps{row.integer(major) != 0, row.integer(minor) != 0};
  receipt.outcome = row.text(column++);
  if (!row.isNull(column)) receipt.code = static_cast<std::int32_t>(row.integer(column));
  receipt.answered = static_cast<std::int32_t>(row.integer(++column));
  return receipt;
}

class EmbeddedReceipts final : public database::Receipts {
 public:
  EmbeddedReceipts(std::shared_ptr<Opened> opened, const Table& lamps, const database::LampTable& roles)
      : opened_(std::move(opened)), connection_(opened_->connection), add_(addSql(lamps, roles)) {}

  void keep(const Receipt& receipt) override {
    const Connection::Patience patience(connection_, lockWait);
    connection_.tables().follow();
    WriteScope write(connection_);
    if (!areThere()) make();
    add(receipt);
    write.done();
  }

  std::optional<Receipt> last(std::u16string_view exchange) override {
    const Connection::Patience patience(connection_, lockWait);
    if (!areThere()) return {};
    static const std::string sql = std::string("SELECT ") + receiptColumns +
                                   " FROM VordaneReceipts WHERE Exchange = ?1 COLLATE vordane_text ORDER BY "
                                   "Number DESC LIMIT 1";
    Statement& row = opened_->prepared(opened_->lastReceipt, sql);
    const Running running(row);
    row.bindText(1, exchange);
    if (!row.step()) return {};
    return receiptOf(row);
  }

  void read(const std::function<void(const Receipt&)>& take) override {
    const Connection::Patience patience(connection_, lockWait);
    if (!areThere()) return;
    Statement rows(connection_,
                   std::string("SELECT ") + receiptColumns + " FROM VordaneReceipts ORDER BY Number DESC");
    while (rows.step()) {
      Receipt receipt = receiptOf(rows);
      readEntries(receipt);
      take(receipt);
    }
  }

 private:
  // With what the exchange's row says is lit, and without it where there is no such row.
  static std::string addSql(const Table& lamps, const database::LampTable& roles) {
    const std::string major = quote(roles.major), minor = quote(roles.minor), name = quote(roles.name);
    return "INSERT INTO VordaneReceipts(Moment, Exchange, Person, Workstation, Outcome, Code, Answered, "
           "Major, "
           "Minor) SELECT ?1, ?2, ?3, ?4, ?5, ?6, ?7, l." +
           major + " <> 0, l." + minor + " <> 0 FROM (SELECT 1) LEFT JOIN " + lamps.quoted + " AS l ON l." +
           name + " = ?2 COLLATE vordane_text LIMIT 1";
  }

  // False where they are not made yet. Throws where another's tables stand under their names.
  bool areThere() {
    const auto there = std::count_if(std::begin(ownReceiptTables), std::end(ownReceiptTables),
                                     [&](const OwnTable& own) { return isThere(*opened_, own); });
    return there == std::ssize(ownReceiptTables);
  }

  void make() {
    for (const OwnTable& own : ownReceiptTables) makeWhereMissing(connection_, own);
  }

  void add(const Receipt& receipt) {
    Statement row(connection_, add_);
    int place = 0;
    for (const std::u16string* text :
         {&receipt.moment, &receipt.exchange, &receipt.person, &receipt.workstation, &receipt.outcome})
      row.bindText(++place, *text);
    receipt.code ? row.bind(++place, std::int64_t{*receipt.code}) : row.bindNull(++place);
    row.bind(++place, std::int64_t{receipt.answered});
    row.run();
    addEntries(receipt, sqlite3_last_insert_rowid(connection_.handle()));
  }

  void addEntries(const Receipt& receipt, std::int64_t number) {
    Statement row(connection_, "INSERT INTO VordaneReceiptEntries VALUES (?, ?, ?, ?, ?, ?)");
    std::int64_t place = 0;
    for (const database::ReceiptEntry& entry : receipt.entries) {
      row.bind(1, number);
      row.bind(2, ++place);
      int column = 2;
      for (const std::u16string* text : {&entry.command, &entry.first, &entry.second, &entry.extra})
        row.bindText(++column, *text);
      row.run();
    }
  }

  void readEntries(Receipt& receipt) {
    Statement rows(
        connection_,
        "SELECT Command, First, Second, Extra FROM VordaneReceiptEntries WHERE Receipt = ? ORDER BY "
        "Place");
    rows.bind(1, receipt.number);
    while (rows.step()) receipt.entries.push_back({rows.text(0), rows.text(1), rows.text(2), rows.text(3)});
  }

  std::shared_ptr<Opened> opened_;
  Connection& connection_;
  std::string add_;
};

}  // namespace

std::shared_ptr<database::Receipts> makeReceipts(std::shared_ptr<Opened> opened) {
  Connection& connection = opened->connection;
  const database::LampTable* roles = connection.lampTable();
  if (roles == nullptr) return nullptr;
  const Connection::Patience patience(connection, lockWait);
  connection.tables().follow();
  const Table* table = connection.tables().find(roles->table);
  if (table == nullptr) return nullptr;
  for (const auto column : {roles->name, roles->major, roles->minor})
    if (!table->find(column)) return nullptr;
  return std::make_shared<EmbeddedReceipts>(std::move(opened), *table, *roles);
}

}  // namespace vordane::sqlite
