#include "platform/odbc/engine.h"

#include <optional>

#include "platform/odbc/arrivals.h"
#include "platform/odbc/data_source.h"
#include "platform/odbc/errors.h"
#include "platform/odbc/receipts.h"
#include "platform/odbc/recordset.h"
#include "platform/odbc/row_list.h"

namespace vordane::odbc {
namespace {

constexpr int wordSize = sizeof(void*) * 8;

class ServerDatabase final : public database::Database {
 public:
  explicit ServerDatabase(std::shared_ptr<Session> session) : session_(std::move(session)) {}

  std::unique_ptr<database::Recordset> openRecordset(const database::Statement& statement) override {
    const Plan& plan = find(statement);
    if (plan.shape.verb == jet::Verb::remove) database::fail(number::invalidOperation);
    return std::make_unique<ServerRecordset>(session_, plan, session_->lifted.literals);
  }
  std::unique_ptr<database::RowList> openRowList(const database::Statement& statement,
                                                 std::span<const std::u16string_view> columns) override {
    const Plan& plan = find(statement);
    return makeRowList(session_, plan, session_->lifted.literals, columns);
  }
  void execute(const database::Statement& statement) override {
    const Plan& plan = find(statement);
    if (plan.shape.verb != jet::Verb::remove) database::fail(number::invalidOperation);
    if (session_->readOnly()) database::fail(number::readOnly);
    session_->remove(plan, session_->lifted.literals);
  }
  void beginBatch() override {
    requireOpen();
    if (session_->readOnly()) database::fail(number::readOnly);
    session_->beginBatch();
  }
  void checkpoint() override {
    requireOpen();
    session_->checkpoint();
  }
  void endBatch() override {
    requireOpen();
    session_->endBatch();
  }
  std::size_t mostExpected() const override { return 4096; }
  void expect(std::span<const database::Statement> statements) override {
    requireOpen();
    session_->expect(statements);
  }
  void setProgress(Progress progress) override {
    if (session_) session_->setProgress(progress);
  }
  database::Agreement agree(std::u16string_view subject, const database::Agreement& own) override {
    requireOpen();
    return session_->agree(subject, own);
  }
  std::shared_ptr<database::Arrivals> arrivals() override {
    requireOpen();
    return makeArrivals(session_);
  }

  std::shared_ptr<database::Receipts> receipts() override {
    requireOpen();
    return makeReceipts(session_);
  }
  void close() noexcept override { session_.reset(); }

 private:
  void requireOpen() const {
    if (!session_) database::fail(number::closed);
  }
  const Plan& find(const database::Statement& statement) {
    requireOpen();
    return session_->plans().find(statement.text(), session_->lifted);
  }

  std::shared_ptr<Session> session_;
};

class ServerEngine final : public database::Engine {
 public:
  ServerEngine(database::Descriptions descriptions, Lookup lookup, Options options)
      : documented_(std::make_shared<const jet::Documented>(descriptions)),
        lookup_(std::move(lookup)),
        options_(options) {}

  std::unique_ptr<database::Database> open(std::u16string_view path, bool readOnly) override {
    const DataSource source = DataSource::read(path);
    if (!api_) api_ = loadApi(lookup_);
    const Dialect& dialect = postgres();
    return std::make_unique<ServerDatabase>(
        std::make_shared<Session>(*api_, dialect, source.connection(wordSize, dialect.driverSettings()),
                                  readOnly, options_, documented_));
  }

 private:
  std::shared_ptr<const jet::Documented> documented_;
  Lookup lookup_;
  Options options_;
  std::optional<Api> api_;
};

}  // namespace

std::unique_ptr<database::Engine> makeEngine(database::Descriptions descriptions, Lookup lookup,
                                             Options options) {
  return std::make_unique<ServerEngine>(descriptions, std::move(lookup), options);
}

}  // namespace vordane::odbc
