#include "platform/sqlite/arrivals.h"

#include "platform/described.h"
#include "platform/sqlite/errors.h"
#include "platform/stored_values.h"

namespace vordane::sqlite {
namespace {

class EmbeddedArrivals final : public database::Arrivals {
 public:
  // `latest` is the question of that name; empty where the file's tables do not tell.
  EmbeddedArrivals(std::shared_ptr<Opened> opened, const Table& table, std::string latest)
      : opened_(std::move(opened)),
        connection_(opened_->connection),
        highest_(eventSql(table, "SELECT coalesce(max({key}), 0) FROM {table}")),
        after_(
            eventSql(table, "SELECT {owner}, {key} FROM {table} WHERE {key} > ?1 ORDER BY {key} LIMIT ?2")),
        latest_(std::move(latest)) {}

  std::u16string identity() override {
    const Connection::Impatient notWaiting(connection_);
    std::u16string kept = keptIdentity();
    if (!kept.empty() || connection_.readOnly()) return kept;
    makeIdentity();
    return keptIdentity();
  }

  std::int64_t highest() override {
    const Connection::Impatient notWaiting(connection_);
    Statement row(connection_, highest_);
    return row.step() ? row.integer(0) : 0;
  }

  std::vector<database::Arrival> after(std::int64_t number, std::size_t most) override {
    const Connection::Impatient notWaiting(connection_);
    Statement rows(connection_, after_);
    rows.bind(1, number);
    rows.bind(2, static_cast<std::int64_t>(most));
    std::vector<database::Arrival> all;
    while (rows.step()) all.push_back({rows.integer(0), rows.integer(1)});
    return all;
  }

  std::optional<database::Latest> latest(std::int64_t owner, std::int64_t mark) override {
    if (latest_.empty()) return {};
    const Connection::Impatient notWaiting(connection_);
    Statement row(connection_, latest_);
    row.bind(1, owner);
    row.bind(2, mark);
    if (!row.step()) return {};
    return database::Latest{database::textOf(row.limitedValue(0, false)), row.integer(1) != 0,
                            row.integer(2)};
  }

 private:
  // Empty where there is none; what else stands under that name is nobody's identity.
  std::u16string keptIdentity() {
    Statement table(connection_,
                    "SELECT 1 FROM sqlite_schema WHERE type = 'table' AND name = 'VordaneStore' AND sql = "
                    "'CREATE TABLE VordaneStore (Identity TEXT NOT NULL)'");
    if (!table.step()) return {};
    table.reset();
    Statement row(connection_, "SELECT Identity FROM VordaneStore LIMIT 1");
    return row.step() ? row.text(0) : std::u16string{};
  }

  // What stands under its name already stays as it is, and there is no identity then.
  void makeIdentity() {
    WriteScope write(connection_);
    Statement taken(connection_, "SELECT 1 FROM sqlite_schema WHERE lower(name) = 'vordanestore'");
    const bool there = taken.step();
    taken.reset();
    if (!there) {
      connection_.runMaintenance("CREATE TABLE VordaneStore (Identity TEXT NOT NULL)");
      connection_.runMaintenance("INSERT INTO VordaneStore(Identity) VALUES (lower(hex(randomblob(16))))");
    }
    write.done();
  }

  std::shared_ptr<Opened> opened_;
  Connection& connection_;
  std::string highest_, after_, latest_;
};

std::string latestSql(Connection& connection, const database::OwnerTable* described, const Table& events) {
  const Table* owners = described != nullptr ? connection.tables().find(described->table) : nullptr;
  const auto key = owners != nullptr ? owners->find(described->key) : std::nullopt;
  const auto listed = owners != nullptr ? owners->find(described->listed) : std::nullopt;
  if (!key || !listed) return {};
  return "SELECT o." + owners->columns[*listed].quoted +
         eventSql(events,
                  ", EXISTS (SELECT 1 FROM {table} WHERE {key} > ?2 AND {owner} = ?1), "
                  "(SELECT coalesce(max({key}), 0) FROM {table}) FROM ") +
         owners->quoted + " AS o WHERE o." + owners->columns[*key].quoted + " = ?1 LIMIT 1";
}

}  // namespace

std::shared_ptr<database::Arrivals> makeArrivals(std::shared_ptr<Opened> opened) {
  Connection& connection = opened->connection;
  const database::EventTable* described = connection.eventTable();
  if (described == nullptr) return nullptr;
  const Connection::Impatient notWaiting(connection);
  connection.tables().follow();
  const Table* table = connection.tables().find(described->table);
  if (table == nullptr || !table->events || !table->counted) return nullptr;
  const database::Description* description = database::findEvents(opened->documented->descriptions());
  std::string latest = latestSql(connection, description->owners, *table);
  return std::make_shared<EmbeddedArrivals>(std::move(opened), *table, std::move(latest));
}

}  // namespace vordane::sqlite
