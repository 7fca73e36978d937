// The rows that the grid has just drawn: a few screens of them, whatever the number of faults. A row is
// fetched once while it is in sight.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "platform/database.h"
#include "platform/windows/window/description.h"

namespace vordane::window::win32 {

struct ShownRow {
  GridRow fault;               // as it is stored
  std::u16string description;  // as a person reads it
  RowText text;                // of that
  database::Note note;         // without a text where there is none
};

class RowCache {
 public:
  void setSource(GridSource* source);  // not owned; forgets all rows
  GridSource* source() const { return source_; }
  std::size_t size() const { return source_ != nullptr ? source_->size() : 0; }

  // While it lives, rows that are fetched come in one reading of the file; null where that makes no
  // difference.
  std::unique_ptr<database::RowList::Together> readTogether();

  // Null when the row has gone. Good until the next call.
  const ShownRow* row(std::size_t position);
  void forget();

 private:
  // Positions share a place when they are this far apart; more than a tall screen's rows, twice over.
  static constexpr std::size_t places = 256;
  static constexpr auto none = static_cast<std::size_t>(-1);
  struct Place {
    std::size_t position = none;
    bool present = false, noteKnown = false;
    ShownRow row;
  };

  GridSource* source_ = nullptr;
  std::vector<Place> cache_ = std::vector<Place>(places);
};

}  // namespace vordane::window::win32
