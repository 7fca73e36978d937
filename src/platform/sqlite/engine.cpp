#include "platform/sqlite/engine.h"

#include <array>
#include <filesystem>
#include <fstream>

#include "platform/file_place.h"
#include "platform/sqlite/agreements.h"
#include "platform/sqlite/arrivals.h"
#include "platform/sqlite/connection.h"
#include "platform/sqlite/errors.h"
#include "platform/sqlite/foreign_files.h"
#include "platform/sqlite/plan.h"
#include "platform/sqlite/receipts.h"
#include "platform/sqlite/recordset.h"
#include "platform/sqlite/row_list.h"
#include "text/utf8.h"

namespace vordane::sqlite {
namespace {

constexpr std::string_view firstBytes{"SQLite format 3\0", 16};
constexpr std::size_t headerSize = 100;

enum class Found { missing, unreadable, foreign, embedded };

Found lookAt(const std::filesystem::path& path) {
  std::error_code failure;
  if (!std::filesystem::exists(path, failure)) return Found::missing;
  if (!std::filesystem::is_regular_file(path, failure)) return Found::unreadable;
  std::ifstream file(path, std::ios::binary);
  if (!file) return Found::unreadable;
  std::array<char, headerSize> header{};
  file.read(header.data(), header.size());
  const bool whole = file.gcount() == static_cast<std::streamsize>(header.size());
  return whole && std::string_view(header.data(), firstBytes.size()) == firstBytes ? Found::embedded
                                                                                   : Found::foreign;
}

// A path as an address that says that nobody changes the file: for a folder that can't be written to.
std::string immutableAddress(std::string_view path) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string address = "file:";
  if (path.size() > 1 && path[1] == ':') address += "///";
  for (const char c : path) {
    const auto byte = static_cast<unsigned char>(c);
    const bool plain = byte < 0x80 && c != '%' && c != '?' && c != '#' && c != '\\';
    if (plain) {
      address.push_back(c);
    } else if (c == '\\') {
      address.push_back('/');
    } else {
      address.append({'%', digits[byte >> 4], digits[byte & 15]});
    }
  }
  return address + "?immutable=1";
}

Handle openFile(const std::string& path, int flags, const Options& options) {
  sqlite3* raw = nullptr;
  const int result = sqlite3_open_v2(path.c_str(), &raw, flags | SQLITE_OPEN_EXRESCODE,
                                     options.fileLayer.empty() ? nullptr : options.fileLayer.c_str());
  Handle handle(raw);
  if (result != SQLITE_OK) failWith(result);
  return handle;
}

void configure(sqlite3* handle, int setting, int value) {
  sqlite3_db_config(handle, setting, value, nullptr);
}

// A file may come from anywhere: nothing in its schema runs but what this engine reads from it, and every
// page is looked at twice.
void guard(sqlite3* handle) {
  configure(handle, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0);
  configure(handle, SQLITE_DBCONFIG_ENABLE_VIEW, 0);
  configure(handle, SQLITE_DBCONFIG_DEFENSIVE, 1);
  configure(handle, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0);
}

void execute(sqlite3* handle, const char* sql) {
  if (sqlite3_exec(handle, sql, nullptr, nullptr, nullptr) != SQLITE_OK)
    failWith(sqlite3_extended_errcode(handle));
}

bool returnsRow(sqlite3* handle, const char* sql) {
  bool row = false;
  const auto seen = [](void* flag, int, char**, char**) { return *static_cast<bool*>(flag) = true, 0; };
  if (sqlite3_exec(handle, sql, seen, &row, nullptr) != SQLITE_OK) failWith(sqlite3_extended_errcode(handle));
  return row;
}

// What is asked of a file while it is opened, in one reading: each question by itself would take the file's
// locks anew.
class OneReading {
 public:
  explicit OneReading(sqlite3* handle) : handle_(handle) { execute(handle, "BEGIN"); }
  ~OneReading() { sqlite3_exec(handle_, "ROLLBACK", nullptr, nullptr, nullptr); }
  OneReading(const OneReading&) = delete;
  OneReading& operator=(const OneReading&) = delete;

 private:
  sqlite3* handle_;
};

void secure(sqlite3* handle) {
  guard(handle);
  limitValues(handle);
}

void prepare(sqlite3* handle) {
  execute(handle, wholeCache);
  execute(handle, "PRAGMA cell_size_check = ON");
  returnsRow(handle, "SELECT 1 FROM sqlite_schema LIMIT 1");
}

void prepareToRead(sqlite3* handle) {
  secure(handle);
  prepare(handle);
}

void requireEmbeddedFile(std::u16string_view path) {
  switch (lookAt(std::filesystem::path(path))) {
    case Found::missing:
      fail(number::fileNotFound, path);
    case Found::unreadable:
      fail(number::noPermission, path);
    case Found::foreign:
      fail(number::notADatabase);
    case Found::embedded:
      break;
  }
}

class EmbeddedDatabase final : public database::Database {
 public:
  explicit EmbeddedDatabase(std::shared_ptr<Opened> opened, bool onNetwork = false)
      : opened_(std::move(opened)), onNetwork_(onNetwork) {}

  std::unique_ptr<database::Recordset> openRecordset(const database::Statement& statement) override {
    requireOpen();
    jet::Lifted& lifted = opened_->lifted;
    Plan& plan = opened_->plans.find(statement, lifted);
    if (plan.shape.verb == jet::Verb::remove) fail(number::invalidOperation);
    return std::make_unique<EmbeddedRecordset>(opened_, plan, lifted.literals);
  }

  std::unique_ptr<database::RowList> openRowList(const database::Statement& statement,
                                                 std::span<const std::u16string_view> columns) override {
    requireOpen();
    jet::Lifted& lifted = opened_->lifted;
    Plan& plan = opened_->plans.find(statement, lifted);
    return makeRowList(opened_, plan, lifted.literals, columns);
  }

  void execute(const database::Statement& statement) override {
    requireOpen();
    jet::Lifted& lifted = opened_->lifted;
    Plan& plan = opened_->plans.find(statement, lifted);
    Connection& connection = opened_->connection;
    if (plan.shape.verb != jet::Verb::remove) fail(number::invalidOperation);
    WriteScope write(connection);
    if (plan.special == Plan::Special::eventsOfOwner && connection.events().usable()) {
      connection.events().removeOwner(lifted.literals.at(0).number);
    } else {
      Statement rows = plan.rows.take(connection);
      rows.bind(1, lifted.literals.at(0));
      rows.run();
      plan.rows.giveBack(std::move(rows));
    }
    opened_->notes.removeGone();
    write.done();
  }

  void expect(std::span<const database::Statement> statements) override {
    requireOpen();
    Connection& connection = opened_->connection;
    EventIndex& events = connection.events();
    events.forgetExpected();
    if (!connection.inBatch() || !events.usable()) return;
    for (const database::Statement& statement : statements) {
      if (const Plan* const plan = planIfAny(statement))
        if (plan->special == Plan::Special::sameEvent) expectSame(*plan);
    }
    events.lookForExpected();
  }

  void beginBatch() override {
    requireOpen();
    opened_->connection.beginBatch();
  }
  void checkpoint() override {
    requireOpen();
    opened_->connection.checkpoint();
  }
  void endBatch() override {
    requireOpen();
    opened_->connection.endBatch();
  }
  void setProgress(Progress progress) override {
    if (opened_) opened_->connection.setProgress(std::move(progress));
  }
  std::optional<database::Agreement> kept(std::u16string_view subject) override {
    requireOpen();
    return keptAgreement(*opened_, subject);
  }
  void keep(std::u16string_view subject, const database::Agreement& own) override {
    requireOpen();
    keepAgreement(*opened_, subject, own);
  }
  std::shared_ptr<database::Arrivals> arrivals() override {
    requireOpen();
    return makeArrivals(opened_);
  }

  std::shared_ptr<database::Receipts> receipts() override {
    requireOpen();
    return makeReceipts(opened_);
  }
  bool isOnNetwork() const override { return onNetwork_; }
  void close() noexcept override { opened_.reset(); }

 private:
  void requireOpen() const {
    if (!opened_) fail(number::closed);
  }
  // Null for what can't be run; whoever opens it learns why.
  const Plan* planIfAny(const database::Statement& statement) {
    try {
      return &opened_->plans.find(statement, opened_->lifted);
    } catch (const database::DatabaseError&) {
      return nullptr;
    }
  }
  void expectSame(const Plan& plan) {
    const std::vector<jet::Literal>& literals = opened_->lifted.literals;
    opened_->connection.events().expect(literals[plan.ownerValue].number, plan.sameTexts(literals));
  }

  std::shared_ptr<Opened> opened_;
  bool onNetwork_;
};

class EmbeddedEngine final : public database::Engine {
 public:
  EmbeddedEngine(database::Descriptions descriptions, Options options)
      : documented_(std::make_shared<const jet::Documented>(descriptions)), options_(std::move(options)) {
    sqlite3_initialize();
  }

  std::unique_ptr<database::Database> open(std::u16string_view path, bool readOnly) override {
    if (!readOnly) return openToWrite(path);
    return std::make_unique<EmbeddedDatabase>(opened(openToRead(path, options_), true));
  }

 private:
  std::shared_ptr<Opened> opened(Handle handle, bool readOnly) const {
    return std::make_shared<Opened>(std::move(handle), readOnly, options_, documented_);
  }

  std::unique_ptr<database::Database> openToWrite(std::u16string_view path) {
    requireEmbeddedFile(path);
    refuseSharedJournal(path);
    Handle handle = openFile(text::toUtf8(path), SQLITE_OPEN_READWRITE, options_);
    limitColumns(handle.get());
    if (sqlite3_db_readonly(handle.get(), "main") != 0) fail(number::noPermission, path);
    sqlite3_busy_timeout(handle.get(), options_.lockWaitMilliseconds);
    secure(handle.get());
    // Commits reach the disk before they are reported.
    sqlite::execute(handle.get(), "PRAGMA synchronous = FULL");
    const bool network = isOnNetwork(path);
    if (readToWrite(handle.get())) chooseJournal(handle.get(), network);
    return std::make_unique<EmbeddedDatabase>(opened(std::move(handle), false), network);
  }

  // Whether it holds events.
  bool readToWrite(sqlite3* handle) const {
    const OneReading reading(handle);
    prepare(handle);
    refuseExpressions(handle);
    return holdsEvents(handle);
  }

  bool isOnNetwork(std::u16string_view path) const {
    return options_.onNetwork ? options_.onNetwork(path) : platform::liesOnNetwork(path);
  }

  bool holdsEvents(sqlite3* handle) const {
    const database::EventTable* events = eventsOf(documented_->descriptions());
    return events != nullptr &&
           returnsRow(handle, ("SELECT 1 FROM sqlite_schema WHERE type = 'table' AND name = '" +
                               text::toUtf8(events->table) + "' COLLATE NOCASE")
                                  .c_str());
  }

  // Events are written while others read them: a write-ahead log, but not where its shared memory doesn't
  // work. The other databases lie in folders that may be read-only and keep the plain rollback journal.
  void chooseJournal(sqlite3* handle, bool network) {
    const char* choice = network ? "PRAGMA journal_mode = DELETE" : "PRAGMA journal_mode = WAL";
    // Two programs that open a new file at once are in each other's way here, and the engine's own waiting
    // for locks does not cover the change of the journal.
    constexpr int pause = 20;
    for (int waited = 0;; waited += pause) {
      try {
        return sqlite::execute(handle, choice);
      } catch (const database::DatabaseError& failure) {
        if (failure.number() != number::locked || waited >= options_.lockWaitMilliseconds) throw;
      }
      sqlite3_sleep(pause);
    }
  }

  std::shared_ptr<const jet::Documented> documented_;
  Options options_;
};

}  // namespace

Handle openToRead(std::u16string_view path, const Options& options) {
  requireEmbeddedFile(path);
  const std::string file = text::toUtf8(path);
  Handle handle = openFile(file, SQLITE_OPEN_READONLY, options);
  sqlite3_busy_timeout(handle.get(), options.lockWaitMilliseconds);
  try {
    prepareToRead(handle.get());
  } catch (const database::DatabaseError& error) {
    // A log that was tidied away needs nothing beside the file; where its folder can't be written to,
    // the file is read as it stands.
    std::error_code failure;
    const bool logged =
        std::filesystem::exists(std::filesystem::path(std::u16string(path) + u"-wal"), failure);
    if (logged || (error.number() != number::noPermission && error.number() != number::readOnly)) throw;
    handle = openFile(immutableAddress(file), SQLITE_OPEN_READONLY | SQLITE_OPEN_URI, options);
    prepareToRead(handle.get());
  }
  return handle;
}

std::unique_ptr<database::Engine> makeEngine(database::Descriptions descriptions, Options options) {
  return std::make_unique<EmbeddedEngine>(descriptions, std::move(options));
}

bool isEmbeddedFile(std::u16string_view path) {
  return lookAt(std::filesystem::path(path)) == Found::embedded;
}

}  // namespace vordane::sqlite
