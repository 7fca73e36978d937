#include "platform/sqlite/fault_index.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "platform/sqlite/errors.h"
#include "platform/sqlite/text_rules.h"

namespace vordane::sqlite {
namespace {

constexpr int version = 1;
// Where a row without a number for an exchange stands: no statement can ask for it.
constexpr std::int64_t noExchange = -4294967296;

// Plain SQL only: another tool must be able to fire the triggers and to check every table.
constexpr const char* creation = R"(
CREATE TABLE IF NOT EXISTS VordaneFaultIndex (
  ID INTEGER NOT NULL, Moment BLOB NOT NULL, Hash INTEGER NOT NULL, Count INTEGER NOT NULL, Kind BLOB NOT NULL,
  PRIMARY KEY (ID, Moment, Hash, Count)) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS VordaneIndexState (
  Version INTEGER NOT NULL, Stale INTEGER NOT NULL, NewestMoment BLOB, NewestCount INTEGER);
DELETE FROM VordaneIndexState;
INSERT INTO VordaneIndexState VALUES (1, 1, NULL, NULL);
CREATE TRIGGER IF NOT EXISTS VordaneFaultInserted AFTER INSERT ON FaultDisplay BEGIN
  UPDATE VordaneIndexState SET Stale = 1 WHERE Stale = 0; END;
CREATE TRIGGER IF NOT EXISTS VordaneFaultUpdated AFTER UPDATE ON FaultDisplay BEGIN
  UPDATE VordaneIndexState SET Stale = 1 WHERE Stale = 0; END;
CREATE TRIGGER IF NOT EXISTS VordaneFaultDeleted AFTER DELETE ON FaultDisplay BEGIN
  UPDATE VordaneIndexState SET Stale = 1 WHERE Stale = 0; END;
)";

constexpr int objectCount = 5;
constexpr const char* filling =
    "INSERT INTO VordaneFaultIndex(ID, Moment, Hash, Count, Kind) "
    "SELECT iif(typeof(ID) = 'integer', ID, -4294967296), vordane_moment(Date) AS m, "
    "vordane_hash(Fault, Alarm, CPU, Date, Description) AS h, Count, vordane_kind(Fault, Alarm, CPU) "
    "FROM FaultDisplay ORDER BY 1, 2, 3, 4";

constexpr std::u16string_view comparedColumns[] = {u"ID",    u"Fault", u"CPU",
                                                   u"Alarm", u"Date",  u"Description"};

std::optional<std::u16string> textOf(sqlite3_value* value) {
  if (sqlite3_value_type(value) == SQLITE_NULL) return std::nullopt;
  const void* characters = sqlite3_value_text16(value);
  std::u16string text(static_cast<std::size_t>(sqlite3_value_bytes16(value)) / 2, u'\0');
  if (!text.empty()) std::memcpy(text.data(), characters, text.size() * 2);
  return text;
}

using Function = void (*)(sqlite3_context*, sqlite3_value**);

// No exception may pass through SQLite.
template <Function function>
void guarded(sqlite3_context* context, int, sqlite3_value** values) noexcept {
  try {
    function(context, values);
  } catch (...) {
    sqlite3_result_error_nomem(context);
  }
}

void resultBlob(sqlite3_context* context, const std::string& bytes) {
  sqlite3_result_blob64(context, bytes.data(), bytes.size(), SQLITE_TRANSIENT);
}

void momentFunction(sqlite3_context* context, sqlite3_value** values) {
  resultBlob(context, FaultIndex::momentKey(textOf(values[0])));
}

void hashFunction(sqlite3_context* context, sqlite3_value** values) {
  const auto fault = textOf(values[0]), alarm = textOf(values[1]), cpu = textOf(values[2]),
             date = textOf(values[3]), description = textOf(values[4]);
  sqlite3_result_int64(context, FaultIndex::hashOf({fault, alarm, cpu, date, description}));
}

void kindFunction(sqlite3_context* context, sqlite3_value** values) {
  const auto fault = textOf(values[0]), alarm = textOf(values[1]), cpu = textOf(values[2]);
  resultBlob(context, FaultIndex::kindKey({fault, alarm, cpu, {}, {}}));
}

// Null stays Null, which sorts first.
void sortKeyFunction(sqlite3_context* context, sqlite3_value** values) {
  const auto text = textOf(values[0]);
  if (!text) return sqlite3_result_null(context);
  std::string key;
  appendSortKey(*text, key);
  resultBlob(context, key);
}

int compareCollation(void*, int sizeA, const void* a, int sizeB, const void* b) noexcept {
  if (sizeA == sizeB && (sizeA == 0 || std::memcmp(a, b, static_cast<std::size_t>(sizeA)) == 0)) return 0;
  try {
    thread_local std::u16string copyA, copyB;
    return compareTexts(unitsOf(a, sizeA, copyA), unitsOf(b, sizeB, copyB));
  } catch (...) {
    return 0;
  }
}

void registerFunctions(Connection& connection) {
  constexpr int flags = SQLITE_UTF16LE | SQLITE_DETERMINISTIC | SQLITE_DIRECTONLY;
  const auto add = [&](const char* name, int arguments, auto function) {
    const int result = sqlite3_create_function_v2(connection.handle(), name, arguments, flags, nullptr,
                                                  function, nullptr, nullptr, nullptr);
    if (result != SQLITE_OK) connection.raise(result);
  };
  add("vordane_moment", 1, &guarded<momentFunction>);
  add("vordane_hash", 5, &guarded<hashFunction>);
  add("vordane_kind", 3, &guarded<kindFunction>);
  add("vordane_key", 1, &guarded<sortKeyFunction>);
  const int result = sqlite3_create_collation_v2(connection.handle(), "vordane_text", SQLITE_UTF16LE, nullptr,
                                                 &compareCollation, nullptr);
  if (result != SQLITE_OK) connection.raise(result);
}

void hashField(std::optional<std::u16string_view> text, FoldedHash& hash) {
  text ? hash.addText(*text) : hash.addNull();
}

}  // namespace

FaultIndex::FaultIndex(Connection& connection) : connection_(connection), byDescription_(connection) {
  registerFunctions(connection);
  registerCollect(connection, collecting_);
  Table* faults = connection.findTable(u"FaultDisplay");
  if (!faults || !faults->autoNumber || faults->columns[*faults->autoNumber].folded != u"count") return;
  for (std::u16string_view column : comparedColumns)
    if (!faults->find(column)) return;
  faults->isFaults = true;
  table_ = faults;
  present_ = isPresent();
}

Statement& FaultIndex::prepared(Statement& statement, const char* sql) {
  if (!statement) statement = Statement(connection_, sql);
  return statement;
}

bool FaultIndex::isPresent() {
  Statement objects(
      connection_,
      "SELECT count(*) FROM sqlite_schema WHERE name IN ('VordaneFaultIndex', 'VordaneIndexState', "
      "'VordaneFaultInserted', 'VordaneFaultUpdated', 'VordaneFaultDeleted')");
  return objects.step() && objects.integer(0) == objectCount;
}

// True when the state says that the index is good.
bool FaultIndex::readState() {
  if (!present_) return false;
  Statement& state =
      prepared(state_, "SELECT Version, Stale, NewestMoment, NewestCount FROM VordaneIndexState");
  bool good = false;
  if (state.step()) {
    good = state.integer(0) == version && state.integer(1) == 0;
    newest_ = {!state.isNull(3), std::string(state.blob(2)), state.integer(3)};
    newestChanged_ = false;
  }
  state.reset();
  return good;
}

bool FaultIndex::usable() {
  if (!table_) return false;
  if (connection_.inTransaction() && checked_) return true;
  connection_.beforeRead();
  bool good = readState();
  if (!good && !connection_.readOnly()) {
    repair();
    good = true;
  }
  checked_ = good && connection_.inTransaction();
  return good;
}

void FaultIndex::repair() {
  WriteScope write(connection_);
  present_ = isPresent();  // another process may have been quicker
  const bool wasPresent = present_;
  try {
    if (!present_) create();
    if (!readState()) rebuild();
    checked_ = true;
    write.done();
  } catch (...) {
    present_ = wasPresent;
    checked_ = false;
    throw;
  }
}

void FaultIndex::create() {
  connection_.runMaintenance(creation);
  present_ = true;
}

void FaultIndex::rebuild() {
  connection_.run("DELETE FROM VordaneFaultIndex");
  connection_.run(filling);
  byTime_.forget();
  connection_.run("UPDATE VordaneIndexState SET Version = 1, Stale = 0");
  newest_.known = false;
  newestChanged_ = true;
}

std::string FaultIndex::momentKey(std::optional<std::u16string_view> date) {
  std::string key;
  appendField(date, key);
  return key;
}

std::int64_t FaultIndex::hashOf(const FaultFields& fields) {
  FoldedHash hash;
  for (const auto& field : {fields.fault, fields.alarm, fields.cpu, fields.date, fields.description})
    hashField(field, hash);
  return hash.value();
}

std::string FaultIndex::kindKey(const FaultFields& fields) {
  std::string key;
  appendField(fields.fault, key);
  key.push_back('\xFF');
  appendField(fields.alarm, key);
  key.push_back('\xFF');
  appendField(fields.cpu, key);
  return key;
}

std::vector<std::int64_t> FaultIndex::findSame(std::int64_t id, const FaultFields& fields) {
  // The cross join fixes which table is read first; the row itself decides, the hash only finds it.
  Statement& rows = prepared(
      same_,
      "SELECT x.Count FROM VordaneFaultIndex AS x CROSS JOIN FaultDisplay AS f ON f.Count = x.Count "
      "WHERE x.ID = ?1 AND x.Moment = ?2 AND x.Hash = ?3 AND f.Fault = ?4 COLLATE vordane_text "
      "AND f.CPU = ?5 COLLATE vordane_text AND f.Alarm = ?6 COLLATE vordane_text "
      "AND f.Date = ?7 COLLATE vordane_text AND f.Description = ?8 COLLATE vordane_text AND f.ID = ?1");
  key_.clear();
  appendField(fields.date, key_);
  rows.bind(1, id);
  rows.bindBlob(2, key_);
  rows.bind(3, hashOf(fields));
  int parameter = 3;
  for (const auto& field : {fields.fault, fields.cpu, fields.alarm, fields.date, fields.description})
    rows.bindText(++parameter, *field);
  std::vector<std::int64_t> counts;
  while (rows.step()) counts.push_back(rows.integer(0));
  rows.reset();
  return counts;
}

// One seek for each exchange: needed only after rows were changed or removed.
void FaultIndex::findNewest() {
  Statement last(
      connection_,
      "SELECT ID, Moment, Count FROM VordaneFaultIndex WHERE ID < ? ORDER BY ID DESC, Moment DESC LIMIT 1");
  newest_ = {true, {}, 0};
  std::int64_t below = std::numeric_limits<std::int64_t>::max();
  for (;;) {
    last.bind(1, below);
    if (!last.step()) return;
    below = last.integer(0);
    if (newest_.count == 0 || last.blob(1) > std::string_view(newest_.moment))
      newest_ = {true, std::string(last.blob(1)), last.integer(2)};
    last.reset();
  }
}

std::optional<std::int64_t> FaultIndex::newest() {
  if (!newest_.known) findNewest();
  return newest_.count == 0 ? std::nullopt : std::optional(newest_.count);
}

std::vector<std::int64_t> FaultIndex::allNewestFirst() {
  std::vector<std::int64_t> counts;
  Statement rows(connection_, "SELECT Count FROM VordaneFaultIndex ORDER BY Moment DESC, Count");
  while (rows.step()) counts.push_back(rows.integer(0));
  const auto first = newest();
  const auto found = first ? std::find(counts.begin(), counts.end(), *first) : counts.end();
  if (found != counts.end()) std::rotate(counts.begin(), found, found + 1);
  return counts;
}

SharedCounts FaultIndex::ordered(std::int64_t id, FaultOrder order) {
  if (order == FaultOrder::date) return orderedByTime(id);
  byTime_.forget();  // one order of a million faults at a time
  return std::make_shared<const std::vector<std::uint32_t>>(
      order == FaultOrder::description ? byDescription_.of(id)
                                       : collectFaults(connection_, collecting_, id, true).byKind(order));
}

SharedCounts FaultIndex::orderedByTime(std::int64_t id) {
  const std::int64_t version = connection_.changesByOthers();
  if (auto kept = byTime_.of(id, version)) return kept;
  const CollectedFaults faults = collectFaults(connection_, collecting_, id, false);
  byTime_.keep(id, version, faults.byDate(), faults.lastMoment());
  return byTime_.of(id, version);
}

void FaultIndex::added(std::int64_t count, std::optional<std::int64_t> id, const FaultFields& fields) {
  const std::string moment = momentKey(fields.date), kind = kindKey(fields);
  Statement& insert = prepared(
      insert_, "INSERT INTO VordaneFaultIndex(ID, Moment, Hash, Count, Kind) VALUES (?, ?, ?, ?, ?)");
  insert.bind(1, id.value_or(noExchange));
  insert.bindBlob(2, moment);
  insert.bind(3, hashOf(fields));
  insert.bind(4, count);
  insert.bindBlob(5, kind);
  insert.run();
  byTime_.added(id.value_or(noExchange), moment, count);
  if (newest_.known && (newest_.count == 0 || moment > newest_.moment)) {
    newest_ = {true, moment, count};
    newestChanged_ = true;
  }
}

void FaultIndex::changing(std::int64_t count) {
  Statement& remove = prepared(
      remove_,
      "DELETE FROM VordaneFaultIndex WHERE (ID, Moment, Hash, Count) = (SELECT iif(typeof(ID) = 'integer', "
      "ID, "
      "-4294967296), vordane_moment(Date), vordane_hash(Fault, Alarm, CPU, Date, Description), Count FROM "
      "FaultDisplay WHERE Count = ?)");
  remove.bind(1, count);
  remove.run();
  byTime_.forget();
  newest_.known = false;
  newestChanged_ = true;
}

void FaultIndex::changed(std::int64_t count) {
  Statement& insert = prepared(
      read_,
      "INSERT INTO VordaneFaultIndex(ID, Moment, Hash, Count, Kind) SELECT iif(typeof(ID) = 'integer', ID, "
      "-4294967296), vordane_moment(Date), vordane_hash(Fault, Alarm, CPU, Date, Description), Count, "
      "vordane_kind(Fault, Alarm, CPU) FROM FaultDisplay WHERE Count = ?");
  insert.bind(1, count);
  insert.run();
}

void FaultIndex::removeExchange(std::int64_t id) {
  Statement all(connection_, "SELECT count(*) FROM VordaneFaultIndex WHERE ID = ?");
  all.bind(1, id);
  all.step();
  const auto of = static_cast<std::size_t>(all.integer(0));
  all.reset();
  removeRows(id, of);
  Statement entries(connection_, "DELETE FROM VordaneFaultIndex WHERE ID = ?");
  entries.bind(1, id);
  entries.run();
  byTime_.forget();
  newest_.known = false;
  newestChanged_ = true;
}

// One by one, so that it can be told how far it is.
void FaultIndex::removeRows(std::int64_t id, std::size_t of) {
  constexpr std::size_t rowsBetweenProgress = 1024;
  Statement rows(connection_, "SELECT Count FROM VordaneFaultIndex WHERE ID = ?");
  // The row itself decides: a damaged entry must not take another exchange's fault along.
  Statement row(connection_, "DELETE FROM FaultDisplay WHERE Count = ?1 AND ID = ?2");
  rows.bind(1, id);
  row.bind(2, id);
  for (std::size_t done = 0; rows.step(); ++done) {
    if (done % rowsBetweenProgress == 0) connection_.progress(done, of);
    row.bind(1, rows.integer(0));
    row.run();
  }
  rows.reset();
}

void FaultIndex::beforeCommit() {
  if (!newestChanged_) return;
  if (!newest_.known) findNewest();
  Statement update(connection_, "UPDATE VordaneIndexState SET NewestMoment = ?, NewestCount = ?");
  update.bindBlob(1, newest_.moment);
  update.bind(2, newest_.count);
  update.run();
  newestChanged_ = false;
}

}  // namespace vordane::sqlite
