#include "platform/sqlite/connection.h"

#include <algorithm>
#include <utility>

#include "platform/sqlite/errors.h"
#include "platform/sqlite/event_index.h"

namespace vordane::sqlite {
namespace {

// Of the engine's virtual machine.
constexpr int stepsBetweenProgress = 50000;
// A file up to this size is looked through before free pages of it are written to.
constexpr std::int64_t quicklyChecked = 16 << 20;

}  // namespace

Connection::Connection(Handle handle, bool readOnly, const Options& options,
                       database::Descriptions descriptions)
    : handle_(std::move(handle)),
      descriptions_(descriptions),
      readOnly_(readOnly),
      lockWaitMilliseconds_(options.lockWaitMilliseconds),
      rowsReadAtOnce_(options.rowsReadAtOnce),
      longestUnsaved_(options.longestUnsavedMilliseconds) {
  const auto waiting = [](void* self, int tries) { return int{static_cast<Connection*>(self)->wait(tries)}; };
  sqlite3_busy_handler(handle_.get(), waiting, this);
  readDeclarations();
  savepoint_ = Statement(*this, "SAVEPOINT step");
  release_ = Statement(*this, "RELEASE step");
  rollbackTo_ = Statement(*this, "ROLLBACK TO step");
  maintaining_ = false;
  sqlite3_set_authorizer(
      handle_.get(),
      [](void* self, int action, const char* first, const char* second, const char*, const char*) {
        return static_cast<const Connection*>(self)->authorize(action, first, second);
      },
      this);
}

void Connection::readDeclarations() {
  const ReadScope reading(*this);
  Statement encoding(*this, "PRAGMA encoding");
  utf8_ = encoding.step() && encoding.text(0) == u"UTF-8";
  encoding.reset();
  tables_ = std::make_unique<FileTables>(*this, descriptions_);
  events_ = std::make_unique<EventIndex>(*this);
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

const database::LampTable* Connection::lampTable() const {
  for (const database::Description& description : descriptions_)
    if (description.lamps != nullptr) return description.lamps;
  return nullptr;
}

bool Connection::wait(int tries) noexcept {
  const auto now = std::chrono::steady_clock::now();
  if (tries == 0) waitingSince_ = now;
  if (now - waitingSince_ >= std::chrono::milliseconds(lockWaitMilliseconds_)) return false;
  sqlite3_sleep(std::min(tries + 1, 25));
  progress();
  return true;
}

void Connection::run(const char* sql) {
  if (sqlite3_exec(handle_.get(), sql, nullptr, nullptr, nullptr) != SQLITE_OK)
    raise(sqlite3_extended_errcode(handle_.get()));
}

void Connection::runMaintenance(const char* sql) {
  const Maintenance maintenance(*this);
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
  const std::uint64_t before = tables_->timesChanged();
  try {
    tables_->look();
    // What this step was made for is no longer there; the next one finds what is.
    if (tables_->timesChanged() != before) fail(number::recordGone);
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
  const Maintenance maintenance(*this);
  if (pragma("PRAGMA freelist_count") > 0 &&
      pragma("PRAGMA page_count") * pragma("PRAGMA page_size") <= quicklyChecked) {
    Statement check(*this, "PRAGMA quick_check(1)");
    damaged_ = !check.step() || check.text(0) != u"ok";
  }
  freePagesChecked_ = true;
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

// Nothing was changed, and what is remembered holds.
void Connection::endReading() noexcept {
  if (inTransaction()) sqlite3_exec(handle_.get(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void Connection::beginBatch() {
  if (inBatch_) fail(number::invalidOperation);
  tables_->follow();
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

void Connection::progress(std::size_t done, std::size_t of) noexcept {
  done_ = done;
  of_ = of;
  progress();
}

ReadScope::ReadScope(Connection& connection) {
  if (connection.inTransaction()) return;
  connection.run("BEGIN");
  connection_ = &connection;
}

ReadScope::~ReadScope() {
  if (connection_ != nullptr) connection_->endReading();
}

WriteScope::WriteScope(Connection& connection, Undo undo)
    : connection_(connection),
      nested_(connection.inTransaction() || connection.inBatch_),
      savepoint_(nested_ && undo == Undo::bySavepoint) {
  if (connection.inTransaction()) {
    if (connection.damaged_) fail(number::damaged);
    connection.finishReaders();
  } else {
    connection.begin();
  }
  if (savepoint_) connection.savepoint_.run();
  ++connection.depth_;
}

void WriteScope::done() {
  if (savepoint_) {
    connection_.release_.run();
  } else if (!nested_) {
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
    if (savepoint_) connection_.undoStep();
  } else {
    connection_.rollback();
  }
}

}  // namespace vordane::sqlite
