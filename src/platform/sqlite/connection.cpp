#include "platform/sqlite/connection.h"

#include <algorithm>
#include <utility>

#include "platform/sqlite/errors.h"
#include "platform/sqlite/event_index.h"
#include "text/text.h"
#include "text/utf8.h"

namespace vordane::sqlite {
namespace {

// A batch saves what it holds at the latest after this time.
constexpr int stepsBetweenProgress = 50000;
// A file up to this size is looked through before free pages of it are written to.
constexpr std::int64_t quicklyChecked = 16 << 20;

// While it lives, statements are the engine's own and the authorizer lets everything through.
class Maintaining {
 public:
  explicit Maintaining(bool& flag) : flag_(flag), before_(std::exchange(flag, true)) {}
  ~Maintaining() { flag_ = before_; }
  Maintaining(const Maintaining&) = delete;
  Maintaining& operator=(const Maintaining&) = delete;

 private:
  bool& flag_;
  bool before_;
};

}  // namespace

Connection::Connection(Handle handle, bool readOnly, const Options& options,
                       database::Descriptions descriptions)
    : handle_(std::move(handle)),
      descriptions_(descriptions),
      readOnly_(readOnly),
      lockWaitMilliseconds_(options.lockWaitMilliseconds),
      longestUnsaved_(options.longestUnsavedMilliseconds) {
  const auto waiting = [](void* self, int tries) { return int{static_cast<Connection*>(self)->wait(tries)}; };
  sqlite3_busy_handler(handle_.get(), waiting, this);
  Statement encoding(*this, "PRAGMA encoding");
  utf8_ = encoding.step() && encoding.text(0) == u"UTF-8";
  encoding.reset();
  loadTables();
  events_ = std::make_unique<EventIndex>(*this);
  maintaining_ = true;
  savepoint_ = Statement(*this, "SAVEPOINT step");
  release_ = Statement(*this, "RELEASE step");
  rollbackTo_ = Statement(*this, "ROLLBACK TO step");
  changes_ = Statement(*this, "PRAGMA data_version");
  schema_ = Statement(*this, "PRAGMA schema_version");
  declarations_ = readTables();
  seenChanges_ = changesByOthers();
  seenSchema_ = readNumber(schema_);
  maintaining_ = false;
  sqlite3_set_authorizer(
      handle_.get(),
      [](void* self, int action, const char* first, const char* second, const char*, const char*) {
        return static_cast<const Connection*>(self)->authorize(action, first, second);
      },
      this);
}

// A second wall behind the list of statement shapes: nothing but reading and changing rows, whatever a
// statement was made of.
int Connection::authorize(int action, const char* first, const char*) const noexcept {
  if (maintaining_) return SQLITE_OK;
  switch (action) {
    case SQLITE_SELECT:
    case SQLITE_READ:
    case SQLITE_FUNCTION:
    case SQLITE_TRANSACTION:
    case SQLITE_SAVEPOINT:
      return SQLITE_OK;
    case SQLITE_PRAGMA:  // made ready once more when another program has changed the tables
      return std::string_view(first) == "data_version" || std::string_view(first) == "schema_version"
                 ? SQLITE_OK
                 : SQLITE_DENY;
    case SQLITE_INSERT:
    case SQLITE_UPDATE:
    case SQLITE_DELETE:
      return std::string_view(first).starts_with("sqlite_") && std::string_view(first) != "sqlite_sequence"
                 ? SQLITE_DENY
                 : SQLITE_OK;
    default:
      return SQLITE_DENY;
  }
}

Connection::~Connection() {
  if (inTransaction()) rollback();
}

bool Connection::wait(int tries) noexcept {
  const auto now = std::chrono::steady_clock::now();
  if (tries == 0) waitingSince_ = now;
  if (now - waitingSince_ >= std::chrono::milliseconds(lockWaitMilliseconds_)) return false;
  sqlite3_sleep(std::min(tries + 1, 25));
  progress();
  return true;
}

void Connection::loadTables() {
  const Maintaining maintaining(maintaining_);
  tables_.clear();
  Statement names(
      *this,
      "SELECT name, coalesce(sql LIKE '%AUTOINCREMENT%', 0) AND EXISTS (SELECT 1 FROM sqlite_schema WHERE "
      "name = 'sqlite_sequence') FROM sqlite_schema WHERE type = 'table' AND "
      "substr(name, 1, 7) <> 'sqlite_' AND sql NOT LIKE 'CREATE VIRTUAL%'");
  while (names.step()) {
    auto table = std::make_unique<Table>();
    table->name = names.text(0);
    table->folded = text::toLower(table->name);
    table->quoted = quote(table->name);
    table->counted = names.integer(1) != 0;
    tables_.emplace(table->folded, std::move(table));
  }
  names.reset();
  for (auto& [folded, table] : tables_) {
    Statement columns(*this, "SELECT name, type, pk FROM pragma_table_info(?)");
    columns.bindText(1, table->name);
    int keys = 0;
    while (columns.step()) {
      Column column{columns.text(0), {}, {}, Kind::other};
      column.folded = text::toLower(column.name);
      column.quoted = quote(column.name);
      const std::u16string declared = columns.text(1);
      column.kind = kindOf(descriptions_, table->name, column.name, declared);
      column.affinity = affinityOf(declared);
      if (columns.integer(2) != 0 && ++keys == 1 && text::equalIgnoringCase(declared, u"integer"))
        table->autoNumber = table->columns.size();
      table->columns.push_back(std::move(column));
    }
    // A key that has an index of its own is not the row's number.
    Statement keyIndex(*this, "SELECT 1 FROM pragma_index_list(?) WHERE origin = 'pk'");
    keyIndex.bindText(1, table->name);
    if (keys != 1 || keyIndex.step()) table->autoNumber.reset();
  }
}

// How the tables are declared, but for those the engine keeps for itself.
std::string Connection::readTables() {
  const Maintaining maintaining(maintaining_);
  Statement all(*this,
                "SELECT type || ' ' || name || ' ' || coalesce(sql, '') FROM sqlite_schema WHERE type IN "
                "('table', 'view') AND substr(name, 1, 7) NOT IN ('Vordane', 'sqlite_') ORDER BY 1");
  std::string declarations;
  while (all.step()) declarations += text::toUtf8(all.text(0)) + '\n';
  return declarations;
}

// Another program may copy, drop and rename a table while it is open here: rows have other keys then.
void Connection::followTables() {
  if (inTransaction()) return;  // nobody else changes anything meanwhile
  lookAtTables();
}

void Connection::lookAtTables() {
  const std::int64_t changes = changesByOthers();
  if (changes == seenChanges_) return;
  const std::int64_t schema = readNumber(schema_);
  if (schema != seenSchema_) {
    std::string declarations = readTables();
    if (declarations != declarations_) {
      formerTables_.push_back(std::exchange(tables_, {}));
      ++tablesChanged_;
      loadTables();
      declarations_ = std::move(declarations);
    }
  }
  seenSchema_ = schema;
  seenChanges_ = changes;
}

Table* Connection::findTable(std::u16string_view name) {
  const auto found = tables_.find(text::toLower(name));
  return found == tables_.end() ? nullptr : found->second.get();
}

std::vector<const Table*> Connection::tables() const {
  std::vector<const Table*> all;
  for (const auto& [folded, table] : tables_) all.push_back(table.get());
  std::sort(all.begin(), all.end(), [](const Table* a, const Table* b) { return a->folded < b->folded; });
  return all;
}

Table& Connection::table(std::u16string_view name) {
  Table* found = findTable(name);
  if (!found) fail(number::unknownTable, name);
  return *found;
}

void Connection::run(const char* sql) {
  if (sqlite3_exec(handle_.get(), sql, nullptr, nullptr, nullptr) != SQLITE_OK)
    raise(sqlite3_extended_errcode(handle_.get()));
}

void Connection::runMaintenance(const char* sql) {
  const Maintaining maintaining(maintaining_);
  const int result = sqlite3_exec(handle_.get(), sql, nullptr, nullptr, nullptr);
  if (result != SQLITE_OK) raise(sqlite3_extended_errcode(handle_.get()));
}

void Connection::raise(int resultCode) {
  const int number = numberOf(resultCode);
  if (number == number::damaged || number == number::notADatabase) damaged_ = true;
  if (events_) events_->undone();
  failWith(resultCode);
}

void Connection::finishReaders() {
  for (Reader* reader : readers_) reader->finishReading();
}

void Connection::begin() {
  if (readOnly_) fail(number::readOnly);
  // What is damaged is never written again: it could only become worse.
  if (!freePagesChecked_) checkFreePages();
  if (damaged_) fail(number::damaged);
  finishReaders();
  run("BEGIN IMMEDIATE");
  const std::uint64_t before = tablesChanged_;
  try {
    lookAtTables();
    // What this step was made for is no longer there; the next one finds what is.
    if (tablesChanged_ != before) fail(number::recordGone);
  } catch (...) {
    rollback();
    throw;
  }
  begun_ = std::chrono::steady_clock::now();
  events_->transactionBegan();
}

std::int64_t Connection::pragma(const char* sql) {
  Statement statement(*this, sql);
  return statement.step() ? statement.integer(0) : 0;
}

// A damaged list of free pages may name a page in use, and whoever takes it for free writes over its rows.
// Any other damage is found when its page is read.
void Connection::checkFreePages() {
  const Maintaining maintaining(maintaining_);
  if (pragma("PRAGMA freelist_count") > 0 &&
      pragma("PRAGMA page_count") * pragma("PRAGMA page_size") <= quicklyChecked) {
    Statement check(*this, "PRAGMA quick_check(1)");
    damaged_ = !check.step() || check.text(0) != u"ok";
  }
  freePagesChecked_ = true;
}

std::int64_t Connection::readNumber(Statement& statement) {
  const Running running(statement);
  statement.step();
  return statement.integer(0);
}

std::int64_t Connection::changesByOthers() {
  return readNumber(changes_);
}

std::int64_t Connection::takeNumber(Table& table) {
  const Column& column = table.columns[*table.autoNumber];
  WriteScope write(*this);
  Statement last(*this, table.counted
                            ? "SELECT max(coalesce((SELECT seq FROM sqlite_sequence WHERE name = ?1), 0), "
                              "coalesce((SELECT max(rowid) FROM " +
                                  table.quoted + "), 0))"
                            : "SELECT coalesce(max(rowid), 0) FROM " + table.quoted);
  if (table.counted) last.bindText(1, table.name);
  last.step();
  const std::int64_t next = last.integer(0) + 1;
  last.reset();
  if (next > limitOf(column)) fail(number::badValue, column.name);
  if (table.counted) keepNumber(table, next);
  write.done();
  return next;
}

void Connection::keepNumber(const Table& table, std::int64_t last) {
  for (const char* sql : {"UPDATE sqlite_sequence SET seq = ?1 WHERE name = ?2",
                          "INSERT INTO sqlite_sequence(seq, name) SELECT ?1, ?2 WHERE changes() = 0"}) {
    Statement keep(*this, sql);
    keep.bind(1, last);
    keep.bindText(2, table.name);
    keep.run();
  }
}

// Takes back what the step under way has done so far.
void Connection::undoStep() noexcept {
  events_->undone();
  try {
    rollbackTo_.run();
    release_.run();
  } catch (const database::DatabaseError&) {
    rollback();
  }
}

void Connection::commit() {
  if (!inTransaction()) return;
  events_->beforeCommit();
  run("COMMIT");
}

void Connection::rollback() noexcept {
  if (events_) events_->undone();
  if (inTransaction()) sqlite3_exec(handle_.get(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void Connection::beginBatch() {
  if (inBatch_) fail(number::invalidOperation);
  followTables();
  begin();
  inBatch_ = true;
}

void Connection::checkpoint() {
  if (inBatch_) commit();
}

void Connection::endBatch() {
  if (!inBatch_) return;
  inBatch_ = false;
  try {
    commit();
  } catch (...) {
    rollback();
    throw;
  }
  // A copy of the one file is whole again. What a reader holds up stays in the log until the next time.
  sqlite3_wal_checkpoint_v2(handle_.get(), nullptr, SQLITE_CHECKPOINT_PASSIVE, nullptr, nullptr);
}

void Connection::commitIfDue() {
  if (std::chrono::steady_clock::now() - begun_ >= longestUnsaved_) commit();
}

void Connection::beforeRead() {
  if (inBatch_ && !inTransaction()) begin();
}

void Connection::setProgress(database::Database::Progress progress) {
  progress_ = std::move(progress);
  done_ = of_ = 0;
  sqlite3_progress_handler(
      handle_.get(), progress_ ? stepsBetweenProgress : 0,
      [](void* self) {
        static_cast<Connection*>(self)->progress();
        return 0;
      },
      this);
}

void Connection::progress() noexcept {
  try {
    if (progress_) progress_(done_, of_);
  } catch (...) {
    // Painting failed; the step goes on.
  }
}

ReadScope::ReadScope(Connection& connection) {
  if (connection.inTransaction()) return;
  connection.run("BEGIN");
  connection_ = &connection;
}

ReadScope::~ReadScope() {
  if (connection_ != nullptr) connection_->rollback();
}

void Connection::progress(std::size_t done, std::size_t of) noexcept {
  done_ = done;
  of_ = of;
  progress();
}

WriteScope::WriteScope(Connection& connection)
    : connection_(connection), nested_(connection.inTransaction() || connection.inBatch_) {
  if (connection.inTransaction()) {
    if (connection.damaged_) fail(number::damaged);
    connection.finishReaders();
  } else {
    connection.begin();
  }
  if (nested_) connection.savepoint_.run();
  ++connection.depth_;
}

void WriteScope::done() {
  if (nested_) {
    connection_.release_.run();
  } else {
    connection_.commit();
  }
  done_ = true;
  if (connection_.depth_ == 1 && connection_.inBatch_) connection_.commitIfDue();
}

WriteScope::~WriteScope() {
  --connection_.depth_;
  if (done_) return;
  // After a full disk or a failed write the whole transaction may be gone already.
  if (nested_ && connection_.inTransaction()) {
    connection_.undoStep();
  } else {
    connection_.rollback();
  }
}

}  // namespace vordane::sqlite
