// Ownership of SQLite's handles, and what every part of the engine shares: prepared statements, the write
// transaction. Only this folder and the tools' one for whole files include it.
#pragma once

#include <sqlite3.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/database.h"
#include "platform/sqlite/engine.h"
#include "platform/sqlite/file_tables.h"
#include "platform/sqlite/statement.h"
#include "platform/sqlite/table.h"

namespace vordane::sqlite {

struct HandleCloser {
  void operator()(sqlite3* handle) const { sqlite3_close_v2(handle); }
};
using Handle = std::unique_ptr<sqlite3, HandleCloser>;

// Opens an embedded file that is only read, also where its folder can't be written to. Throws DatabaseError.
Handle openToRead(std::u16string_view path, const Options& options);

// Whoever reads rows step by step. Before a write it finishes its reading, so that no change moves its rows
// about and no lock of its own stands in the way.
class Reader {
 public:
  virtual void finishReading() = 0;

 protected:
  ~Reader() = default;
};

class EventIndex;

// Reading a file is slow on some systems: the keys of a million events fit into this many kilobytes.
inline constexpr const char* wholeCache = "PRAGMA cache_size = -65536";

class Connection {
 public:
  Connection(Handle handle, bool readOnly, const Options& options, database::Descriptions descriptions);
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  sqlite3* handle() const { return handle_.get(); }
  bool readOnly() const { return readOnly_; }
  bool utf8() const { return utf8_; }
  std::size_t rowsReadAtOnce() const { return rowsReadAtOnce_; }
  EventIndex& events() { return *events_; }
  // Which of the file's tables holds events, by name; null: none is described.
  const database::EventTable* eventTable() const { return eventsOf(descriptions_); }

  const database::LampTable* lampTable() const;  // likewise, the one that tells what is lit

  FileTables& tables() { return *tables_; }
  const FileTables& tables() const { return *tables_; }

  // While it lives, locks of others are waited for so long and no longer.
  class Patience {
   public:
    Patience(Connection& connection, int milliseconds)
        : connection_(connection), before_(std::exchange(connection.lockWaitMilliseconds_, milliseconds)) {}
    ~Patience() { connection_.lockWaitMilliseconds_ = before_; }
    Patience(const Patience&) = delete;
    Patience& operator=(const Patience&) = delete;

   private:
    Connection& connection_;
    int before_;
  };

  // While it lives, statements are the engine's own and the authorizer lets everything through.
  class Maintenance {
   public:
    explicit Maintenance(Connection& connection)
        : connection_(connection), before_(std::exchange(connection.maintaining_, true)) {}
    ~Maintenance() { connection_.maintaining_ = before_; }
    Maintenance(const Maintenance&) = delete;
    Maintenance& operator=(const Maintenance&) = delete;

   private:
    Connection& connection_;
    bool before_;
  };

  // While it lives, locks of others are not waited for: whoever only has a moment comes back later.
  class Impatient {
   public:
    explicit Impatient(Connection& connection)
        : connection_(connection), before_(std::exchange(connection.lockWaitMilliseconds_, 0)) {}
    ~Impatient() { connection_.lockWaitMilliseconds_ = before_; }
    Impatient(const Impatient&) = delete;
    Impatient& operator=(const Impatient&) = delete;

   private:
    Connection& connection_;
    int before_;
  };

  // Runs statements without results: opening and maintenance only.
  void run(const char* sql);
  // The same for statements that create tables, which the authorizer refuses otherwise.
  void runMaintenance(const char* sql);
  [[noreturn]] void raise(int resultCode);

  void add(Reader& reader) { readers_.push_back(&reader); }
  void remove(Reader& reader) { std::erase(readers_, &reader); }

  // The next auto-number of a table, taken for good.
  std::int64_t takeNumber(Table& table);
  // Numbers up to `last` are never given again.
  void keepNumber(const Table& table, std::int64_t last);

  bool inTransaction() const { return sqlite3_get_autocommit(handle_.get()) == 0; }
  void begin();
  void commit();
  void rollback() noexcept;

  void beginBatch();
  void checkpoint();
  void endBatch();
  bool inBatch() const { return inBatch_; }
  bool damaged() const { return damaged_; }
  // Between two steps of a batch: its transaction must be open before something is looked for.
  void beforeRead();

  void setProgress(database::Database::Progress progress);
  // How far a long step is, from where that is known.
  void progress(std::size_t done, std::size_t of) noexcept;

 private:
  friend class WriteScope;
  friend class ReadScope;
  void readDeclarations();
  void endReading() noexcept;
  void undoStep() noexcept;
  int authorize(int action, const char* first, const char* second) const noexcept;
  void finishReaders();
  void commitIfDue();
  bool wait(int tries) noexcept;
  void progress() noexcept;
  void checkFreePages();
  std::int64_t pragma(const char* sql);

  Handle handle_;
  database::Descriptions descriptions_;
  bool readOnly_;
  bool utf8_ = false;
  bool damaged_ = false;
  bool freePagesChecked_ = false;
  bool inBatch_ = false;
  bool maintaining_ = true;  // opening counts as maintenance
  int depth_ = 0;            // of steps within steps
  int lockWaitMilliseconds_;
  std::size_t rowsReadAtOnce_;
  std::chrono::milliseconds longestUnsaved_;
  std::chrono::steady_clock::time_point begun_;
  std::chrono::steady_clock::time_point waitingSince_;
  std::vector<Reader*> readers_;
  database::Database::Progress progress_;
  std::size_t done_ = 0, of_ = 0;
  std::unique_ptr<FileTables> tables_;
  std::unique_ptr<EventIndex> events_;
  Statement savepoint_, release_, rollbackTo_;
};

// Many small statements that only read: what they read stays the same meanwhile, and the file's locks are
// taken once. Nothing may be written while it lives.
class ReadScope {
 public:
  explicit ReadScope(Connection& connection);
  ~ReadScope();
  ReadScope(const ReadScope&) = delete;
  ReadScope& operator=(const ReadScope&) = delete;

 private:
  Connection* connection_ = nullptr;  // null: a transaction was open already
};

// One step that writes. Outside a batch it is a transaction of its own; `done` makes it last, and without it
// nothing of it stays. A step of a batch that takes back by itself what it has done needs no savepoint, for
// which the engine copies every page that the step changes.
class WriteScope {
 public:
  enum class Undo { bySavepoint, byTheStep };
  explicit WriteScope(Connection& connection, Undo undo = Undo::bySavepoint);
  ~WriteScope();
  WriteScope(const WriteScope&) = delete;
  WriteScope& operator=(const WriteScope&) = delete;
  void done();

 private:
  Connection& connection_;
  bool nested_;  // a step of a batch, or of a larger step
  bool savepoint_;
  bool done_ = false;
};

}  // namespace vordane::sqlite
