#include "platform/sqlite/arrivals.h"

#include "platform/sqlite/errors.h"

namespace vordane::sqlite {
namespace {

class EmbeddedArrivals final : public database::Arrivals {
 public:
  EmbeddedArrivals(std::shared_ptr<Opened> opened, const Table& table)
      : opened_(std::move(opened)),
        connection_(opened_->connection),
        highest_(eventSql(table, "SELECT coalesce(max({key}), 0) FROM {table}")),
        after_(
            eventSql(table, "SELECT {owner}, {key} FROM {table} WHERE {key} > ?1 ORDER BY {key} LIMIT ?2")) {}

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
  std::string highest_, after_;
};

}  // namespace

std::shared_ptr<database::Arrivals> makeArrivals(std::shared_ptr<Opened> opened) {
  Connection& connection = opened->connection;
  const database::EventTable* described = connection.eventTable();
  if (described == nullptr) return nullptr;
  const Connection::Impatient notWaiting(connection);
  connection.tables().follow();
  const Table* table = connection.tables().find(described->table);
  if (table == nullptr || !table->events || !table->counted) return nullptr;
  return std::make_shared<EmbeddedArrivals>(std::move(opened), *table);
}

}  // namespace vordane::sqlite
