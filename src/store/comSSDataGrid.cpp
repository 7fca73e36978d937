#include "store/comSSDataGrid.h"

#include <algorithm>

#include "platform/grid_columns.h"
#include "platform/stored_rows.h"
#include "text/numbers.h"
#include "text/text.h"

namespace vordane::comSSDataGrid {
namespace {

// The message texts that stand around the data in every description.
constexpr int dataHeading = 5, dataOpen = 6, dataClose = 7;

template <typename Message>
std::optional<window::GridSource::Range> dataPartOf(std::u16string_view description, Message&& message) {
  const std::u16string before = std::u16string(text::crlf) + message(dataHeading) + u" " + message(dataOpen);
  const std::u16string after = message(dataClose);
  const auto found = description.rfind(before);
  if (found == std::u16string_view::npos || !description.ends_with(after)) return {};
  const std::size_t begin = found + before.size(), end = description.size() - after.size();
  if (begin > end) return {};
  return window::GridSource::Range{begin, end};
}

}  // namespace

std::optional<window::GridSource::Range> findDataPart(const SharedState& state,
                                                      std::u16string_view description) {
  return dataPartOf(description,
                    [&](int number) { return messageText(state, static_cast<std::size_t>(number)); });
}

std::optional<window::GridSource::Range> findDataPart(const FaultTextTable& texts,
                                                      std::u16string_view description) {
  return dataPartOf(description, [&](int number) {
    const std::u16string* text = texts.message(number);
    return text != nullptr ? *text : std::u16string{};
  });
}

void FaultRows::show(database::RowList* rows) {
  rows_ = rows;
  explainedAt_.reset();
}

void FaultRows::hold() {
  heldSize_ = size();
  held_ = true;
}

std::size_t FaultRows::size() const {
  if (held_) return heldSize_;
  return rows_ == nullptr ? 0 : rows_->size();
}

std::optional<window::GridRow> FaultRows::row(std::size_t position) {
  if (held_ || position >= size()) return {};
  try {
    if (!rows_->fetch(position, buffer_)) return {};
    return database::gridRowOf(buffer_);
  } catch (const database::DatabaseError&) {
    return {};
  } catch (const automation::AutomationError&) {
    return {};
  }
}

std::optional<window::GridSource::Range> FaultRows::dataPart(std::size_t position) {
  const auto stored = row(position);
  if (!stored) return {};
  const std::u16string shown = asRead(*stored);
  const FaultTextTable* texts = shown != stored->description ? form_.readingTexts() : nullptr;
  return texts != nullptr ? findDataPart(*texts, shown) : findDataPart(state_, shown);
}

cFaultDisplay::Pieces FaultRows::translation(const window::GridRow& row) {
  const FaultTextTable* texts = form_.readingTexts();
  if (texts == nullptr) return {};
  return form_.faultDecoder(state_.WideFaultFields).translateStored(row.fault, row.description, *texts);
}

std::u16string FaultRows::asRead(const window::GridRow& row) {
  std::u16string words;
  for (const cFaultDisplay::Piece& piece : translation(row)) words += piece.text;
  return words.empty() ? row.description : words;
}

std::vector<window::GridSource::Range> FaultRows::provenance(std::size_t position, std::size_t character) {
  explain(position);
  std::size_t begin = 0;
  for (const auto& piece : explained_) {
    if (character < begin + piece.text.size()) {
      std::vector<Range> ranges;
      for (const auto [from, to] : piece.sources) ranges.push_back({from, to});
      return ranges;
    }
    begin += piece.text.size();
  }
  return {};
}

void FaultRows::explain(std::size_t position) {
  const FaultTextTable* texts = form_.readingTexts();
  if (position == explainedAt_ && texts == explainedIn_) return;
  explainedAt_.reset();
  explained_.clear();
  const auto shown = row(position);
  if (!shown) return;
  explained_ = translation(*shown);
  std::u16string dataText;
  if (explained_.empty())
    explained_ =
        form_.faultDecoder(state_.WideFaultFields).explainStored(shown->fault, shown->description, dataText);
  explainedAt_ = position;
  explainedIn_ = texts;
}

std::optional<std::size_t> FaultRows::lookUp(std::u16string_view text, std::ptrdiff_t from,
                                             window::LookUpWay way,
                                             const std::function<void(std::size_t)>& progress) {
  const std::u16string needle = text::toLower(text);
  const std::size_t rows = size();
  if (needle.empty() || rows == 0) return {};
  if (way == window::LookUpWay::backwards) {
    const bool inside = from > 0 && from <= static_cast<std::ptrdiff_t>(rows);
    return rows_->find(needle, inside ? static_cast<std::size_t>(from) - 1 : rows - 1, progress,
                       database::Walk::backwards);
  }
  const std::size_t first = static_cast<std::size_t>(std::max<std::ptrdiff_t>(from, -1) + 1) % rows;
  return rows_->find(needle, first, progress);
}

}  // namespace vordane::comSSDataGrid
