// The two data controls of the window: a record source and what it held when it was last refreshed. Neither
// keeps a statement of the engine open, so none stands in the way of a box or an outgoing call.
#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <string>

#include "platform/database.h"
#include "platform/stored_values.h"

namespace vordane::store {

class DataControl {
 public:
  virtual ~DataControl() = default;

  const std::u16string& recordSource() const { return recordSource_; }
  void setRecordSource(std::u16string statement) { recordSource_ = std::move(statement); }

  // Throws DatabaseError, and is empty then; an empty record source empties it too.
  void refresh(database::Database& database);
  // Lets go of the rows and the record source.
  void clear();

 protected:
  virtual void read(database::Database& database) = 0;
  virtual void drop() noexcept = 0;

 private:
  std::u16string recordSource_;
};

// datPBXList: the row of the selected exchange.
class ExchangeControl : public DataControl {
 public:
  struct Row {
    database::Value id, name;
    std::u16string timeStamp;  // empty when Null
    bool dated = false;        // `timeStamp` is "YYYY-MM-DD HH:MM:SS"
  };
  bool hasRow() const { return row_ != nullptr; }
  // Throws what the engine says when there is none.
  const Row& row() const;

 protected:
  void read(database::Database& database) override;
  void drop() noexcept override;

 private:
  std::unique_ptr<Row> row_;
  std::exception_ptr noRow_;
};

// datFaultDisplay: the rows of the grid.
class FaultControl : public DataControl {
 public:
  database::RowList* rows() const { return rows_.get(); }  // null when empty

 protected:
  void read(database::Database& database) override;
  void drop() noexcept override { rows_.reset(); }

 private:
  std::unique_ptr<database::RowList> rows_;
};

using database::textOf;

// PBXList.ID as the 16-bit number it is. Throws DatabaseError on any other, never wraps.
std::int16_t exchangeIdOf(const database::Value& value);

}  // namespace vordane::store
