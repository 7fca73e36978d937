// The rows of one statement, read as they are asked for.
#pragma once

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/sqlite/plan.h"

namespace vordane::sqlite {

class EmbeddedRecordset final : public database::Recordset, private Reader {
 public:
  // Takes the literals unless it needs them no more.
  EmbeddedRecordset(std::shared_ptr<Opened> opened, Plan& plan, std::vector<jet::Literal>& literals);
  ~EmbeddedRecordset() override;

  bool atEnd() override;
  bool isEmpty() override;
  std::int32_t recordCount() override;
  void moveFirst() override;
  void moveNext() override;
  Value get(std::u16string_view column) override;
  Value get(std::size_t column) override;
  bool isDate(std::u16string_view column) override;
  void set(std::u16string_view column, Value value) override;
  void addNew() override;
  void edit() override;
  void update() override;
  void close() override;

 private:
  enum class Place { before, onRow, atEnd };
  enum class Change { none, add, edit };
  using Fields = std::vector<std::optional<Value>>;  // by column of the table

  void finishReading() override;
  void start();
  bool findSame(const std::vector<jet::Literal>& literals);
  void startRows();
  void stepRows();
  void placeOnKey();
  void keepKeys(std::vector<std::int64_t> keys);
  void loadRow();
  void readFrom(const Statement& statement);
  void requireOpen() const;
  void requireRow();
  void requireTable() const;
  Value pending(std::size_t tableColumn);
  void reserveNumber();
  void giveBack() noexcept;
  void insertRow();
  void addToIndex(std::int64_t key);
  void takeBack(std::int64_t key) noexcept;
  void updateRow();
  std::uint64_t setColumns() const;
  std::string sqlOfInsert() const;
  std::string sqlOfUpdate() const;
  int bindFields(Statement& statement) const;
  std::int64_t insertFields();
  void updateFields();

  std::shared_ptr<Opened> opened_;
  Connection& connection_;
  Plan& plan_;
  std::vector<jet::Literal> literals_;
  Place place_ = Place::before;
  bool open_ = true;
  bool hadRows_ = false;

  StatementPool* pool_ = nullptr;  // where `rows_` goes back to
  Statement rows_;                 // steps while `keyed_` is off
  bool keyed_ = false;             // the rows are fetched by key, in the order of `keys_`
  bool onlyNewest_ = false;        // `keys_` holds the first key alone; the others are read when needed
  std::vector<std::int64_t> keys_;
  std::size_t at_ = 0;
  std::int64_t key_ = 0;
  bool loaded_ = false;  // `row_` holds the current row
  std::vector<Value> row_;

  Change change_ = Change::none;
  Fields fields_;
};

}  // namespace vordane::sqlite
