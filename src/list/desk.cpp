#include "list/desk.h"

#include <algorithm>
#include <utility>

#include "text/text.h"

namespace vordane::list {
namespace {

// Rows in a piece: few where their texts are read.
constexpr std::size_t rowsSurveyed = 4096, groupsNamed = 16, rowsSifted = 16384, rowsRead = 256;

}  // namespace

void Desk::setStored(window::GridSource* rows, const std::optional<std::u16string>& exchange) {
  stored_ = rows;
  exchange_ = rows == nullptr ? std::nullopt : exchange;
  unread_ = list() != nullptr && !list()->isRead();
  saidSize_ = storedSize();
  forget();
  applied_ = {};
  const auto kept = exchange_ ? kept_.find(*exchange_) : kept_.end();
  filter_ = kept != kept_.end() ? kept->second : Filter{};
  begin();
}

// All that was known of the rows.
void Desk::forget() {
  chosen_.reset();
  otherDates_ = 0;
  factsKnown_ = surveyed_ = choosing_ = false;
  survey_.reset();
  sieve_.reset();
  facts_.reset();
  failure_.clear();
}

Mistake Desk::setFilter(const Filter& filter) {
  const Mistake mistake = mistakeIn(filter);
  if (mistake != Mistake::none || !exchange_) return mistake;
  if (filter == filter_ && failure_.empty()) return mistake;
  filter_ = filter;
  kept_[*exchange_] = filter;
  begin();
  return mistake;
}

void Desk::begin() {
  failure_.clear();
  sieve_.reset();
  found_.clear();
  foundOtherDates_ = 0;
  next_ = 0;
  needle_ = text::toLower(filter_.text);
  choosing_ = !(filter_ == applied_);
}

void Desk::noteWritten() {
  if (!filter_.noted && filter_.text.empty()) return;
  begin();
  choosing_ = true;
}

void Desk::reword() {
  factsKnown_ = surveyed_ = false;
  survey_.reset();
  begin();
  facts_.reset();
}

void Desk::giveUp() {
  if (!choosing_) return;
  filter_ = applied_;
  if (exchange_) kept_[*exchange_] = applied_;
  begin();
}

bool Desk::busy() const {
  return stored_ != nullptr && exchange_ &&
         (unread_ || choosing_ || (factsWanted_ && !factsKnown_ && failure_.empty()));
}

bool Desk::needsFacts() const {
  Filter rest = filter_;
  rest.text.clear();
  rest.noted = false;
  return isOn(rest);
}

Desk::Did Desk::work(const std::function<bool()>& again) {
  Did did;
  database::RowList* rows = list();
  if (!busy() || rows == nullptr) return did;
  try {
    do {
      did.worked = true;
      piece(*rows, did);
    } while (busy() && !did.resized && again());
  } catch (const database::DatabaseError& error) {
    // Whoever needs the rows asks for them, and learns why.
    if (std::exchange(unread_, false)) return did;
    giveUp();
    survey_.reset();
    facts_.reset();
    surveyed_ = false;
    failure_ = error.description();
  }
  return did;
}

void Desk::readOn(database::RowList& rows, Did& did) {
  rows.readOn();
  unread_ = !rows.isRead();
  did.resized = !unread_ && storedSize() != saidSize_;
}

void Desk::piece(database::RowList& rows, Did& did) {
  if (unread_) return readOn(rows, did);
  if (choosing_ && !isOn(filter_)) return complete(did);
  surveyFirst() ? survey(rows, did) : choose(rows, did);
}

void Desk::survey(database::RowList& rows, Did& did) {
  if (!surveyed_) {
    if (survey_ == nullptr) {
      facts_.emplace(storedSize());
      survey_ = rows.survey(surveyedColumns);
    }
    surveyed_ = !survey_->next(rowsSurveyed, *facts_);
    if (surveyed_) survey_.reset();
  } else if (!facts_->name(rows, groupsNamed, this)) {
    factsKnown_ = did.facts = true;
  }
}

void Desk::choose(database::RowList& rows, Did& did) {
  if (factsKnown_ && sieve_ == nullptr) sieve_ = std::make_unique<Sieve>(filter_, *facts_);
  const std::size_t end = std::min(storedSize(), next_ + (readsRows() ? rowsRead : rowsSifted));
  candidates_.clear();
  for (; next_ < end; ++next_)
    if (sieve_ == nullptr || sieve_->of(next_) != Sieve::Verdict::hidden)
      candidates_.push_back(static_cast<std::uint32_t>(next_));
  const std::size_t before = found_.size();
  find(rows);
  const auto dated = std::stable_partition(
      found_.begin() + static_cast<std::ptrdiff_t>(before), found_.end(), [&](std::uint32_t position) {
        return sieve_ == nullptr || sieve_->of(position) == Sieve::Verdict::shown;
      });
  foundOtherDates_ += static_cast<std::size_t>(found_.end() - dated);
  if (filter_.otherDates)
    std::sort(found_.begin() + static_cast<std::ptrdiff_t>(before), found_.end());
  else
    found_.erase(dated, found_.end());
  if (next_ == storedSize()) complete(did);
}

// Among the candidates.
void Desk::find(database::RowList& rows) {
  if (filter_.noted) {
    noted_.clear();
    rows.chooseNoted(candidates_, noted_);
    candidates_.swap(noted_);
  }
  if (needle_.empty())
    found_.insert(found_.end(), candidates_.begin(), candidates_.end());
  else
    rows.choose(needle_, candidates_, found_);
}

void Desk::complete(Did& did) {
  choosing_ = false;
  applied_ = filter_;
  sieve_.reset();
  otherDates_ = foundOtherDates_;
  chosen_.reset();
  if (isOn(filter_)) chosen_ = std::move(found_);
  found_ = {};
  did.shown = true;
}

std::size_t Desk::shownBefore(std::size_t stored) const {
  if (!chosen_) return std::min(stored, size());
  return static_cast<std::size_t>(std::lower_bound(chosen_->begin(), chosen_->end(), stored) -
                                  chosen_->begin());
}

std::optional<std::size_t> Desk::shownPosition(std::size_t stored) const {
  if (size() == 0) return {};
  return std::min(shownBefore(stored), size() - 1);
}

std::optional<window::GridRow> Desk::row(std::size_t position) {
  if (position >= size()) return {};
  return stored_->row(storedPosition(position));
}

// One that can't be read is not shown: whoever writes to the fault is told why.
std::optional<database::Note> Desk::note(std::int64_t fault) {
  if (!exchange_ || list() == nullptr) return {};
  try {
    database::Notes* notes = list()->notes();
    return notes == nullptr ? std::nullopt : notes->of(fault);
  } catch (const database::DatabaseError&) {
    return {};
  }
}

std::u16string Desk::asRead(const window::GridRow& row) {
  return stored_ != nullptr ? stored_->asRead(row) : row.description;
}

std::vector<window::GridSource::Range> Desk::provenance(std::size_t row, std::size_t position) {
  if (row >= size()) return {};
  return stored_->provenance(storedPosition(row), position);
}

std::optional<window::GridSource::Range> Desk::dataPart(std::size_t row) {
  return row < size() ? stored_->dataPart(storedPosition(row)) : std::nullopt;
}

}  // namespace vordane::list
