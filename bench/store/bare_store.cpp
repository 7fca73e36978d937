#include "bench/store/bare_store.h"

#include <sqlite3.h>

#include <chrono>
#include <stdexcept>

#include "platform/sqlite/event_keys.h"

namespace vordane::bench {
namespace {

void check(int result, sqlite3* handle) {
  if (result != SQLITE_OK && result != SQLITE_ROW && result != SQLITE_DONE)
    throw std::runtime_error(sqlite3_errmsg(handle));
}

void bindText(sqlite3_stmt* statement, int parameter, const std::u16string& text) {
  sqlite3_bind_text64(statement, parameter, reinterpret_cast<const char*>(text.data()), text.size() * 2,
                      SQLITE_STATIC, SQLITE_UTF16LE);
}

void bindBlob(sqlite3_stmt* statement, int parameter, const std::string& bytes) {
  sqlite3_bind_blob64(statement, parameter, bytes.data(), bytes.size(), SQLITE_STATIC);
}

sqlite3_stmt* prepare(sqlite3* handle, const char* sql) {
  sqlite3_stmt* statement = nullptr;
  check(sqlite3_prepare_v3(handle, sql, -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr), handle);
  return statement;
}

}  // namespace

std::vector<FaultKeys> keysOf(const std::vector<Fault>& faults) {
  std::vector<FaultKeys> keys;
  for (const Fault& fault : faults) {
    const sqlite::EventTexts texts{fault.fault, fault.alarm, fault.cpu, fault.date, fault.description};
    keys.push_back({sqlite::momentKey(texts), sqlite::kindKey(texts), sqlite::hashOf(texts)});
  }
  return keys;
}

struct BareStore::State {
  sqlite3* handle = nullptr;
  sqlite3_stmt *find = nullptr, *insert = nullptr, *index = nullptr;
  void run(const char* sql) { check(sqlite3_exec(handle, sql, nullptr, nullptr, nullptr), handle); }
  bool found(const Fault& fault, const FaultKeys& keys) {
    sqlite3_bind_int(find, 1, fault.id);
    bindBlob(find, 2, keys.moment);
    sqlite3_bind_int64(find, 3, keys.hash);
    bindText(find, 4, fault.fault);
    bindText(find, 5, fault.cpu);
    bindText(find, 6, fault.alarm);
    bindText(find, 7, fault.date);
    bindText(find, 8, fault.description);
    const int result = sqlite3_step(find);
    check(result, handle);
    sqlite3_reset(find);
    return result == SQLITE_ROW;
  }
  void add(const Fault& fault, const FaultKeys& keys) {
    sqlite3_bind_int(insert, 1, fault.id);
    bindText(insert, 2, fault.fault);
    bindText(insert, 3, fault.alarm);
    bindText(insert, 4, fault.cpu);
    bindText(insert, 5, fault.date);
    bindText(insert, 6, fault.description);
    check(sqlite3_step(insert), handle);
    sqlite3_reset(insert);
    sqlite3_bind_int(index, 1, fault.id);
    bindBlob(index, 2, keys.moment);
    sqlite3_bind_int64(index, 3, keys.hash);
    sqlite3_bind_int64(index, 4, sqlite3_last_insert_rowid(handle));
    bindBlob(index, 5, keys.kind);
    check(sqlite3_step(index), handle);
    sqlite3_reset(index);
  }
};

BareStore::BareStore(const std::string& path) : state_(std::make_unique<State>()) {
  check(sqlite3_open_v2(path.c_str(), &state_->handle, SQLITE_OPEN_READWRITE, nullptr), state_->handle);
  sqlite3_db_config(state_->handle, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
  state_->run("PRAGMA cache_size = -65536; PRAGMA synchronous = FULL; PRAGMA journal_mode = WAL");
  state_->find =
      prepare(state_->handle,
              "SELECT f.Count FROM VordaneFaultIndex x CROSS JOIN FaultDisplay f ON f.Count = x.Count WHERE "
              "x.ID = ?1 AND x.Moment = ?2 AND x.Hash = ?3 AND f.Fault = ?4 AND f.CPU = ?5 AND "
              "f.Alarm = ?6 AND f.Date = ?7 AND f.Description = ?8");
  state_->insert =
      prepare(state_->handle,
              "INSERT INTO FaultDisplay(ID, Fault, Alarm, CPU, Date, Description) VALUES (?,?,?,?,?,?)");
  state_->index = prepare(state_->handle,
                          "INSERT INTO VordaneFaultIndex(ID, Moment, Hash, Count, Kind) VALUES (?,?,?,?,?)");
}

BareStore::~BareStore() {
  for (sqlite3_stmt* statement : {state_->find, state_->insert, state_->index}) sqlite3_finalize(statement);
  sqlite3_close(state_->handle);
}

void BareStore::ingest(const std::vector<Fault>& faults, const std::vector<FaultKeys>& keys) {
  state_->run("BEGIN IMMEDIATE");
  auto begun = std::chrono::steady_clock::now();
  for (std::size_t i = 0; i < faults.size(); ++i) {
    if (!state_->found(faults[i], keys[i])) state_->add(faults[i], keys[i]);
    if (std::chrono::steady_clock::now() - begun < std::chrono::milliseconds(500)) continue;
    state_->run("COMMIT; BEGIN IMMEDIATE");
    begun = std::chrono::steady_clock::now();
  }
  state_->run("COMMIT");
  sqlite3_wal_checkpoint_v2(state_->handle, nullptr, SQLITE_CHECKPOINT_PASSIVE, nullptr, nullptr);
}

std::size_t BareStore::lookUp(const std::vector<Fault>& faults, const std::vector<FaultKeys>& keys) {
  std::size_t count = 0;
  state_->run("BEGIN IMMEDIATE");
  for (std::size_t i = 0; i < faults.size(); ++i) count += state_->found(faults[i], keys[i]) ? 1 : 0;
  state_->run("COMMIT");
  return count;
}

std::vector<std::int64_t> BareStore::keysBy(const std::string& sql, std::int16_t id) {
  sqlite3_stmt* rows = prepare(state_->handle, sql.c_str());
  sqlite3_bind_int(rows, 1, id);
  std::vector<std::int64_t> keys;
  while (sqlite3_step(rows) == SQLITE_ROW) keys.push_back(sqlite3_column_int64(rows, 0));
  sqlite3_finalize(rows);
  return keys;
}

std::vector<std::int64_t> BareStore::scanKeys(std::int16_t id) {
  return keysBy("SELECT Count FROM VordaneFaultIndex WHERE ID = ? ORDER BY Moment DESC", id);
}

std::size_t BareStore::walkIndex(std::int16_t id) {
  sqlite3_stmt* rows =
      prepare(state_->handle, "SELECT Moment, Hash, Count, Kind FROM VordaneFaultIndex WHERE ID = ?");
  sqlite3_bind_int(rows, 1, id);
  std::size_t bytes = 0;
  while (sqlite3_step(rows) == SQLITE_ROW)
    for (const int column : {0, 3}) {
      sqlite3_column_blob(rows, column);
      bytes += static_cast<std::size_t>(sqlite3_column_bytes(rows, column));
    }
  sqlite3_finalize(rows);
  return bytes;
}

std::vector<std::int64_t> BareStore::filteredKeys(std::int16_t id, const std::string& since,
                                                  const std::string& until,
                                                  const std::vector<std::string>& kinds) {
  std::string sql =
      "SELECT Count FROM VordaneFaultIndex WHERE ID = ? AND Moment >= ? AND Moment <= ? AND Kind IN (";
  for (std::size_t i = 0; i < kinds.size(); ++i) sql += i == 0 ? "?" : ", ?";
  sqlite3_stmt* rows = prepare(state_->handle, (sql + ")").c_str());
  sqlite3_bind_int(rows, 1, id);
  bindBlob(rows, 2, since);
  bindBlob(rows, 3, until);
  for (std::size_t i = 0; i < kinds.size(); ++i) bindBlob(rows, static_cast<int>(i) + 4, kinds[i]);
  std::vector<std::int64_t> keys;
  while (sqlite3_step(rows) == SQLITE_ROW) keys.push_back(sqlite3_column_int64(rows, 0));
  sqlite3_finalize(rows);
  return keys;
}

std::vector<std::int64_t> BareStore::orderedKeys(std::int16_t id, const char* order) {
  return keysBy(std::string("SELECT Count FROM FaultDisplay WHERE ID = ? ORDER BY ") + order, id);
}

std::size_t BareStore::readAll(std::int16_t id) {
  state_->run("BEGIN");
  sqlite3_stmt* row = prepare(
      state_->handle, "SELECT Fault, Alarm, Date, CPU, Description, Count FROM FaultDisplay WHERE rowid = ?");
  std::size_t bytes = 0;
  for (const std::int64_t key : scanKeys(id)) {
    sqlite3_bind_int64(row, 1, key);
    sqlite3_step(row);
    for (int column = 0; column < 5; ++column) {
      sqlite3_column_text16(row, column);
      bytes += static_cast<std::size_t>(sqlite3_column_bytes16(row, column));
    }
    sqlite3_reset(row);
  }
  sqlite3_finalize(row);
  state_->run("COMMIT");
  return bytes;
}

void BareStore::run(const char* sql) {
  state_->run(sql);
}

void BareStore::deleteExchange(std::int16_t id) {
  const std::string number = std::to_string(id);
  state_->run(("BEGIN IMMEDIATE; DELETE FROM PBXList WHERE ID = " + number + "; COMMIT; BEGIN IMMEDIATE; " +
               "DELETE FROM FaultDisplay WHERE Count IN (SELECT Count FROM VordaneFaultIndex WHERE ID = " +
               number + "); DELETE FROM VordaneFaultIndex WHERE ID = " + number + "; COMMIT")
                  .c_str());
}

}  // namespace vordane::bench
