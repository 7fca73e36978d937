// The rows that a person sees: those stored, or of them the ones that the exchange's filter leaves. It
// chooses positions among the stored rows and changes neither them nor their order.
//
// The work is done in pieces, by `work`, between messages: nothing of the database is held between two, and
// whatever was begun is given up when other rows come. What was shown stays until the choice is complete. One
// thread; the stored rows belong to whoever sets them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "list/facts.h"
#include "list/filter.h"
#include "platform/view.h"

namespace vordane::list {

class Desk final : public window::GridSource {
 public:
  // Other rows, or the same ones read anew; null for none. Filters are kept by exchange while the program
  // runs; without one (nobody looks) the rows are shown as they are.
  void setStored(window::GridSource* rows, const std::optional<std::u16string>& exchange);

  // --- the filter of the exchange shown
  const Filter& filter() const { return filter_; }
  // Follows it from now on; one with a mistake is not taken and changes nothing.
  Mistake setFilter(const Filter& filter);
  void wantFacts(bool wanted) { factsWanted_ = wanted; }  // kinds, processors and their counts
  // A note has been written: what the filter makes of notes and texts is chosen anew.
  void noteWritten();
  // Descriptions are read in other words from now on: what is known of the rows is looked for anew.
  void reword();
  // What is being chosen is given up; the filter is that of the rows shown again.
  void giveUp();

  // --- the work
  bool busy() const;
  // A long list whose rows are not all read yet; that goes before everything else.
  bool reading() const { return stored_ != nullptr && exchange_ && unread_; }
  bool choosing() const { return choosing_; }
  struct Did {
    bool worked = false, facts = false, shown = false;  // the facts are known, other rows are shown
    bool resized = false;  // there are not as many stored rows as was said: they are to be set anew
  };
  // Goes on while `again` says so, one piece at least. Never throws: an error of the database gives up what
  // was begun, and `failure` holds the engine's text.
  Did work(const std::function<bool()>& again);
  const std::u16string& failure() const { return failure_; }
  struct Progress {
    std::size_t done = 0, of = 0;
  };
  Progress progress() const { return {next_, storedSize()}; }

  // --- what is known
  window::GridSource* stored() const { return stored_; }  // the rows, shown or not
  std::size_t storedSize() const { return stored_ == nullptr ? 0 : stored_->size(); }
  bool filtered() const { return chosen_.has_value(); }
  // Rows that pass all but the time, since their date has another form.
  std::size_t otherDates() const { return otherDates_; }
  const Facts* facts() const { return factsKnown_ ? &*facts_ : nullptr; }

  // --- positions
  std::size_t storedPosition(std::size_t shown) const { return chosen_ ? (*chosen_)[shown] : shown; }
  // Where a stored row is shown, or else the next one, or the last; nothing while none is shown.
  std::optional<std::size_t> shownPosition(std::size_t stored) const;
  // How many of the stored rows before this one are shown.
  std::size_t shownBefore(std::size_t stored) const;

  // --- GridSource, of the rows shown
  std::size_t size() const override { return chosen_ ? chosen_->size() : storedSize(); }
  std::optional<window::GridRow> row(std::size_t position) override;
  std::vector<Range> provenance(std::size_t row, std::size_t position) override;
  std::optional<Range> dataPart(std::size_t row) override;
  database::RowList* list() override { return stored_ == nullptr ? nullptr : stored_->list(); }

  std::optional<database::Note> note(std::int64_t fault) override;
  std::u16string asRead(const window::GridRow& row) override;

 private:
  using Positions = std::vector<std::uint32_t>;
  void forget();
  void begin();
  bool surveyFirst() const { return !factsKnown_ && (factsWanted_ || (choosing_ && needsFacts())); }
  bool needsFacts() const;
  void readOn(database::RowList& rows, Did& did);
  void piece(database::RowList& rows, Did& did);
  void survey(database::RowList& rows, Did& did);
  void choose(database::RowList& rows, Did& did);
  bool readsRows() const { return !needle_.empty() || filter_.noted; }
  void find(database::RowList& rows);
  void complete(Did& did);

  window::GridSource* stored_ = nullptr;
  bool unread_ = false;
  std::size_t saidSize_ = 0;  // of the stored rows, when they came
  std::optional<std::u16string> exchange_;
  std::map<std::u16string, Filter> kept_;
  Filter filter_, applied_;  // what is asked for, and what the rows shown follow
  std::optional<Positions> chosen_;
  std::size_t otherDates_ = 0;
  std::u16string failure_;

  bool factsWanted_ = false, factsKnown_ = false, surveyed_ = false;
  std::optional<Facts> facts_;
  std::unique_ptr<database::Survey> survey_;

  bool choosing_ = false;
  std::size_t next_ = 0;
  std::u16string needle_;
  std::unique_ptr<Sieve> sieve_;
  Positions found_, candidates_, noted_;
  std::size_t foundOtherDates_ = 0;
};

}  // namespace vordane::list
