// The rows of one statement. Rows of short tables are read at once; of a long one the keys, and then rows as
// they are asked for.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "platform/odbc/session.h"

namespace vordane::odbc {

class ServerRecordset final : public database::Recordset {
 public:
  ServerRecordset(std::shared_ptr<Session> session, const Plan& plan, std::vector<jet::Literal> literals);

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

  void start();
  void startEvents();
  void keepRows(const std::vector<Fields>& rows);
  void keepAllKeys();
  void placeOn(std::size_t position);
  void loadRow();
  const Fields& row();
  void requireOpen() const;
  void requireRow();
  void requireTable() const;
  Value pending(std::size_t column);

  std::shared_ptr<Session> session_;
  const Plan& plan_;
  std::vector<jet::Literal> literals_;
  Place place_ = Place::before;
  bool open_ = true, hadRows_ = false;
  bool onlyFirst_ = false;  // `keys_` holds the first key alone; the others are read when needed
  bool waiting_ = false;    // the row is not stored yet, and read when it is asked for
  std::vector<std::int64_t> keys_;
  std::vector<Fields> rows_;  // behind their key, where there is one: all of them, or a block of them
  std::size_t block_ = 0;     // the position of the first of `rows_`
  std::uint64_t seen_ = 0;    // the session's changes when they were read
  std::size_t at_ = 0, size_ = 0;

  Change change_ = Change::none;
  NewRow fields_;
};

}  // namespace vordane::odbc
