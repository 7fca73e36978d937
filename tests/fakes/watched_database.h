// A database in front of another: remembers each statement and each call of a batch, and fails where it is
// told to, as a full disk or a foreign lock does.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/database.h"

namespace vordane::fakes {

class WatchedDatabase : public database::Database {
 public:
  explicit WatchedDatabase(std::unique_ptr<database::Database> inner) : inner_(std::move(inner)) {}

  // Called with every statement, and with "update" and "endBatch"; what it throws reaches the caller.
  std::function<void(std::u16string_view step)> before = [](std::u16string_view) {};
  std::function<void()> closed;  // called at the closing
  std::vector<std::u16string> statements;
  // Called when somebody wants to keep or read receipts of resets, which are no statements.
  std::function<void()> beforeReceipts = [] {};
  bool keepFails = false;
  bool keepsReceipts = true;
  std::function<void()> beforeArrivals = [] {};  // likewise of what has come
  int batchDepth = 0, batches = 0, recordsetsOpen = 0;
  Progress progress;

  std::unique_ptr<database::Recordset> openRecordset(const database::Statement& statement) override {
    note(statement);
    return std::make_unique<Watched>(*this, inner_->openRecordset(statement));
  }
  std::unique_ptr<database::RowList> openRowList(const database::Statement& statement,
                                                 std::span<const std::u16string_view> columns) override {
    note(statement);
    return inner_->openRowList(statement, columns);
  }
  void execute(const database::Statement& statement) override {
    note(statement);
    inner_->execute(statement);
  }
  void expect(std::span<const database::Statement> coming) override { inner_->expect(coming); }
  std::size_t mostExpected() const override { return inner_->mostExpected(); }
  void beginBatch() override {
    inner_->beginBatch();
    ++batchDepth;
    ++batches;
  }
  void checkpoint() override { inner_->checkpoint(); }
  void endBatch() override {
    --batchDepth;
    inner_->endBatch();
    ask(u"endBatch");
  }
  void setProgress(Progress callback) override {
    progress = callback;
    inner_->setProgress(std::move(callback));
  }
  database::Agreement agree(std::u16string_view subject, const database::Agreement& own) override {
    return inner_->agree(subject, own);
  }
  std::optional<database::Agreement> kept(std::u16string_view subject) override {
    return inner_->kept(subject);
  }
  void keep(std::u16string_view subject, const database::Agreement& own) override {
    if (keepFails) throw database::DatabaseError(3260, u"locked");
    inner_->keep(subject, own);
  }
  std::shared_ptr<database::Arrivals> arrivals() override {
    beforeArrivals();
    return inner_->arrivals();
  }
  std::shared_ptr<database::Receipts> receipts() override {
    const auto hook = beforeReceipts;
    hook();
    return keepsReceipts ? inner_->receipts() : nullptr;
  }
  bool isOnNetwork() const override { return inner_->isOnNetwork(); }
  void close() noexcept override {
    if (closed) closed();
    inner_->close();
  }
  database::Database& inner() { return *inner_; }

 private:
  class Watched : public database::Recordset {
   public:
    Watched(WatchedDatabase& owner, std::unique_ptr<database::Recordset> inner)
        : owner_(owner), inner_(std::move(inner)) {
      ++owner_.recordsetsOpen;
    }
    ~Watched() override { --owner_.recordsetsOpen; }
    bool atEnd() override { return inner_->atEnd(); }
    bool isEmpty() override { return inner_->isEmpty(); }
    std::int32_t recordCount() override { return inner_->recordCount(); }
    void moveFirst() override { inner_->moveFirst(); }
    void moveNext() override { inner_->moveNext(); }
    database::Value get(std::u16string_view column) override { return inner_->get(column); }
    database::Value get(std::size_t column) override { return inner_->get(column); }
    bool isDate(std::u16string_view column) override { return inner_->isDate(column); }
    void set(std::u16string_view column, database::Value value) override {
      inner_->set(column, std::move(value));
    }
    void addNew() override { inner_->addNew(); }
    void edit() override { inner_->edit(); }
    void update() override {
      owner_.ask(u"update");
      inner_->update();
    }
    void close() override { inner_->close(); }

   private:
    WatchedDatabase& owner_;
    std::unique_ptr<database::Recordset> inner_;
  };

  // A hook may replace itself while it runs.
  void ask(std::u16string_view step) {
    const auto hook = before;
    hook(step);
  }
  void note(const database::Statement& statement) {
    statements.push_back(statement.text());
    ask(statements.back());
  }

  std::unique_ptr<database::Database> inner_;
};

}  // namespace vordane::fakes
