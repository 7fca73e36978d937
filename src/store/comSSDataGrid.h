// The rows of grdDisplayFault: read as they are shown, with the proof of where a description came from.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "faults/cFaultDisplay.h"
#include "platform/database.h"
#include "platform/view.h"
#include "store/store_form.h"

namespace vordane::comSSDataGrid {

// The data text inside a description's trailer, as [begin, end) of the description.
std::optional<window::GridSource::Range> findDataPart(const SharedState& state,
                                                      std::u16string_view description);
std::optional<window::GridSource::Range> findDataPart(const FaultTextTable& texts,
                                                      std::u16string_view description);

class FaultRows : public window::GridSource {
 public:
  FaultRows(store::StoreForm& form, const SharedState& state) : form_(form), state_(state) {}

  // The rows shown from now on, owned by the caller; null for an empty grid.
  void show(database::RowList* rows);

  // From hold to release no row is given and the database is left alone: the view keeps what it has drawn.
  // `show` may follow only after release.
  void hold();
  void release() { held_ = false; }

  std::size_t size() const override;
  // Called while painting: a row that can't be read counts as gone.
  std::optional<window::GridRow> row(std::size_t position) override;
  std::vector<Range> provenance(std::size_t row, std::size_t position) override;
  std::optional<Range> dataPart(std::size_t row) override;
  std::u16string asRead(const window::GridRow& row) override;
  database::RowList* list() override { return held_ ? nullptr : rows_; }

  // The next row after `from` (-1: from the first) or before it (-1: from the last) with `text` in any of its
  // columns, without regard to case, going round the end once, the row `from` last; nothing for an empty
  // text. `progress` is called now and then. Throws DatabaseError.
  std::optional<std::size_t> lookUp(std::u16string_view text, std::ptrdiff_t from, window::LookUpWay way,
                                    const std::function<void(std::size_t done)>& progress);

 private:
  void explain(std::size_t position);
  cFaultDisplay::Pieces translation(const window::GridRow& row);

  store::StoreForm& form_;
  const SharedState& state_;
  database::RowList* rows_ = nullptr;
  std::vector<database::Value> buffer_;
  bool held_ = false;
  std::size_t heldSize_ = 0;
  // The last row explained, and in which words: the pointer moves over one for a while.
  std::optional<std::size_t> explainedAt_;
  const FaultTextTable* explainedIn_ = nullptr;
  cFaultDisplay::Pieces explained_;
};

}  // namespace vordane::comSSDataGrid
