#include "trace/traced_database.h"

#include <string>
#include <utility>

namespace vordane::trace {

using database::DatabaseError;

// Where a failure is told, and of which file.
class TracedEngine::Failures {
 public:
  Failures(Recorder& recorder, std::u16string_view file) : recorder_(recorder), file_(file) {}

  void tell(std::string_view step, const database::Statement* statement,
            const DatabaseError& failure) const noexcept {
    recorder_.tell("database failed", [&](Line& line) {
      line.word("step", step).text("file", file_);
      if (statement != nullptr) line.text("statement", statement->text());
      line.number("code", failure.number()).text("reason", failure.description());
    });
  }

 private:
  Recorder& recorder_;
  std::u16string file_;
};

namespace {

using Failures = TracedEngine::Failures;

template <class Step>
auto watched(const Failures& failures, std::string_view name, const database::Statement* statement,
             const Step& step) -> decltype(step()) {
  try {
    return step();
  } catch (const DatabaseError& failure) {
    failures.tell(name, statement, failure);
    throw;
  }
}

template <class Step>
auto watched(const Failures& failures, std::string_view name, const Step& step) -> decltype(step()) {
  return watched(failures, name, nullptr, step);
}

class TracedRecordset final : public database::Recordset {
 public:
  TracedRecordset(const Failures& failures, std::unique_ptr<database::Recordset> rows)
      : failures_(failures), rows_(std::move(rows)) {}

  bool atEnd() override {
    return watched(failures_, "read", [&] { return rows_->atEnd(); });
  }
  bool isEmpty() override {
    return watched(failures_, "read", [&] { return rows_->isEmpty(); });
  }
  std::int32_t recordCount() override {
    return watched(failures_, "read", [&] { return rows_->recordCount(); });
  }
  void moveFirst() override {
    watched(failures_, "read", [&] { rows_->moveFirst(); });
  }
  void moveNext() override {
    watched(failures_, "read", [&] { rows_->moveNext(); });
  }
  database::Value get(std::u16string_view column) override {
    return watched(failures_, "read", [&] { return rows_->get(column); });
  }
  database::Value get(std::size_t column) override {
    return watched(failures_, "read", [&] { return rows_->get(column); });
  }
  bool isDate(std::u16string_view column) override { return rows_->isDate(column); }
  void set(std::u16string_view column, database::Value value) override {
    watched(failures_, "set", [&] { rows_->set(column, std::move(value)); });
  }
  void addNew() override {
    watched(failures_, "add", [&] { rows_->addNew(); });
  }
  void edit() override {
    watched(failures_, "edit", [&] { rows_->edit(); });
  }
  void update() override {
    watched(failures_, "update", [&] { rows_->update(); });
  }
  void close() override { rows_->close(); }

 private:
  const Failures& failures_;
  std::unique_ptr<database::Recordset> rows_;
};

class TracedDatabase final : public database::Database {
 public:
  TracedDatabase(const Failures& failures, std::unique_ptr<database::Database> database)
      : failures_(failures), database_(std::move(database)) {}

  std::unique_ptr<database::Recordset> openRecordset(const database::Statement& statement) override {
    auto rows = watched(failures_, "select", &statement, [&] { return database_->openRecordset(statement); });
    return std::make_unique<TracedRecordset>(failures_, std::move(rows));
  }
  std::unique_ptr<database::RowList> openRowList(const database::Statement& statement,
                                                 std::span<const std::u16string_view> columns) override {
    return watched(failures_, "select", &statement,
                   [&] { return database_->openRowList(statement, columns); });
  }
  void execute(const database::Statement& statement) override {
    watched(failures_, "execute", &statement, [&] { database_->execute(statement); });
  }
  void beginBatch() override {
    watched(failures_, "begin", [&] { database_->beginBatch(); });
  }
  void checkpoint() override {
    watched(failures_, "save", [&] { database_->checkpoint(); });
  }
  void endBatch() override {
    watched(failures_, "save", [&] { database_->endBatch(); });
  }
  void expect(std::span<const database::Statement> coming) override {
    watched(failures_, "expect", [&] { database_->expect(coming); });
  }
  std::size_t mostExpected() const override { return database_->mostExpected(); }
  void setProgress(Progress progress) override { database_->setProgress(std::move(progress)); }
  database::Agreement agree(std::u16string_view subject, const database::Agreement& own) override {
    return watched(failures_, "agree", [&] { return database_->agree(subject, own); });
  }
  std::optional<database::Agreement> kept(std::u16string_view subject) override {
    return watched(failures_, "kept", [&] { return database_->kept(subject); });
  }
  void keep(std::u16string_view subject, const database::Agreement& own) override {
    watched(failures_, "keep", [&] { database_->keep(subject, own); });
  }
  std::shared_ptr<database::Arrivals> arrivals() override { return database_->arrivals(); }
  std::shared_ptr<database::Receipts> receipts() override { return database_->receipts(); }
  bool isOnNetwork() const override { return database_->isOnNetwork(); }
  void close() noexcept override { database_->close(); }

 private:
  const Failures& failures_;
  std::unique_ptr<database::Database> database_;
};

}  // namespace

TracedEngine::TracedEngine(std::shared_ptr<Recorder> recorder, database::Engine& engine)
    : recorder_(std::move(recorder)), engine_(engine) {}

TracedEngine::~TracedEngine() = default;

std::unique_ptr<database::Database> TracedEngine::open(std::u16string_view path, bool readOnly) {
  std::unique_ptr<Failures>& failures = files_[std::u16string(path)];
  if (!failures) failures = std::make_unique<Failures>(*recorder_, path);
  auto database =
      watched(*failures, readOnly ? "open to read" : "open", [&] { return engine_.open(path, readOnly); });
  return std::make_unique<TracedDatabase>(*failures, std::move(database));
}

}  // namespace vordane::trace
