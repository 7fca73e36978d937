#include "platform/sqlite/index_survey.h"

#include <algorithm>
#include <limits>

#include "platform/sqlite/event_index.h"
#include "platform/sqlite/event_orders.h"

namespace vordane::sqlite {
namespace {

// Where a `Count` stands in the list. Numbers are mostly given one after another: then each has a place of
// its own; else they are looked for among the sorted ones.
class Positions {
 public:
  Positions(const std::vector<std::uint32_t>& counts, bool backwards)
      : counts_(counts), backwards_(backwards) {
    if (counts.empty()) return;
    const auto [least, most] = std::minmax_element(counts.begin(), counts.end());
    least_ = *least;
    dense_ = (*most - *least) / 4 <= counts.size();
    places_.assign(dense_ ? *most - *least + std::size_t{1} : counts.size(), none);
    for (std::size_t place = 0; place < counts.size(); ++place)
      places_[dense_ ? counts[place] - least_ : place] = static_cast<std::uint32_t>(place);
    if (!dense_)
      std::sort(places_.begin(), places_.end(),
                [&](std::uint32_t a, std::uint32_t b) { return counts[a] < counts[b]; });
  }

  // False when the list does not hold it.
  bool find(std::int64_t count, std::size_t& position) const {
    const std::uint32_t place = dense_ ? placeOf(count) : searched(count);
    position = backwards_ ? counts_.size() - 1 - place : place;
    return place != none;
  }

 private:
  static constexpr std::uint32_t none = std::numeric_limits<std::uint32_t>::max();
  std::uint32_t placeOf(std::int64_t count) const {
    const auto place = static_cast<std::uint64_t>(count - least_);
    return place < places_.size() ? places_[place] : none;
  }
  std::uint32_t searched(std::int64_t count) const {
    const auto found = std::lower_bound(
        places_.begin(), places_.end(), count,
        [&](std::uint32_t place, std::int64_t wanted) { return std::int64_t{counts_[place]} < wanted; });
    return found != places_.end() && counts_[*found] == count ? *found : none;
  }

  const std::vector<std::uint32_t>& counts_;
  bool backwards_, dense_ = false;
  std::int64_t least_ = 0;
  std::vector<std::uint32_t> places_;
};

// The text that a sort key was made of; keys hold UTF-8 whose surrogates are encoded like any other
// character, and nothing but plain ASCII is a time.
std::u16string_view timeOf(std::string_view moment, std::u16string& text) {
  if (!moment.empty()) moment.remove_prefix(1);  // the mark of a text that is there
  text.resize(moment.size());
  std::transform(moment.begin(), moment.end(), text.begin(),
                 [](char byte) { return static_cast<char16_t>(static_cast<unsigned char>(byte)); });
  return text;
}

std::string keyOfMoment(std::u16string_view time) {
  EventTexts texts;
  texts[EventColumns::moment] = time;
  return momentKey(texts);
}

// Where the index answers for the rows of a list as it was made.
bool answersStill(Connection& connection, std::uint64_t tablesChanged) {
  connection.beforeRead();
  connection.tables().follow();
  return tablesChanged == connection.tables().timesChanged() && connection.events().usable();
}

class SurveyOfIndex final : public database::Survey {
 public:
  SurveyOfIndex(std::shared_ptr<Opened> opened, SharedKeys counts, bool backwards, std::int64_t owner,
                std::uint64_t tablesChanged, const std::optional<database::TimesBetween>& times)
      : opened_(std::move(opened)),
        counts_(std::move(counts)),
        positions_(*counts_, backwards),
        owner_(owner),
        tablesChanged_(tablesChanged) {
    if (!times) return;
    lastMoment_ = keyOfMoment(times->first);
    until_ = keyOfMoment(times->last);
  }

  bool next(std::size_t most, Taker& taker) override {
    Connection& connection = opened_->connection;
    if (!answersStill(connection, tablesChanged_)) return false;
    if (!rows_) prepare(connection);
    const ReadScope reading(connection);
    const std::string from = lastMoment_;  // what is bound stays while the statement runs
    const Running running(rows_);
    rows_.bind(1, owner_);
    rows_.bindBlob(2, from);
    rows_.bind(3, lastHash_);
    rows_.bind(4, lastCount_);
    for (std::size_t told = 0; told < std::max<std::size_t>(most, 1); ++told) {
      if (!rows_.step() || (until_ && rows_.blob(0) > *until_)) return false;
      tell(taker);
    }
    lastHash_ = rows_.integer(1);
    return true;
  }

 private:
  void prepare(Connection& connection) {
    rows_ = Statement(connection,
                      "SELECT Moment, Hash, Count, Kind FROM VordaneFaultIndex WHERE ID = ?1 AND "
                      "(Moment, Hash, Count) > (?2, ?3, ?4) ORDER BY Moment, Hash, Count");
  }

  void tell(Taker& taker) {
    const std::string_view moment = rows_.blob(0);
    if (moment != lastMoment_ || !begun_) {
      begun_ = true;
      lastMoment_ = moment;
      timeOf(moment, time_);
    }
    lastCount_ = rows_.integer(2);
    std::size_t position = 0;
    if (positions_.find(lastCount_, position)) taker.take(position, kinds_.numberOf(rows_.blob(3)), time_);
  }

  std::shared_ptr<Opened> opened_;
  SharedKeys counts_;
  Positions positions_;
  std::int64_t owner_;
  std::uint64_t tablesChanged_;
  Statement rows_;
  Kinds kinds_;
  // The row that was told last; nothing stands before a moment without bytes.
  bool begun_ = false;
  std::string lastMoment_;
  std::optional<std::string> until_;
  std::int64_t lastHash_ = std::numeric_limits<std::int64_t>::min();
  std::int64_t lastCount_ = std::numeric_limits<std::int64_t>::min();
  std::u16string time_;
};

class TimesOfIndex final : public database::TimeWalk {
 public:
  TimesOfIndex(std::shared_ptr<Opened> opened, std::int64_t owner, std::uint64_t tablesChanged)
      : opened_(std::move(opened)), owner_(owner), tablesChanged_(tablesChanged) {}

  bool next(std::size_t most, const Take& take) override {
    Connection& connection = opened_->connection;
    if (!answersStill(connection, tablesChanged_)) return false;
    if (!rows_) prepare(connection);
    const ReadScope reading(connection);
    const std::string from = moment_;  // what is bound stays while the statement runs
    const Running running(rows_);
    rows_.bind(1, owner_);
    rows_.bindBlob(2, from);
    std::size_t alike = 0;
    for (std::size_t told = 0;; ++told, ++alike) {
      const bool more = rows_.step();
      const std::string_view moment = more ? rows_.blob(0) : std::string_view{};
      if (alike > 0 && (!more || moment != moment_ || alike == rowsOfOneTime)) {
        if (!take(timeOf(moment_, time_), alike)) return false;
        if (more && (told >= most || alike == rowsOfOneTime)) return true;  // the next one goes on behind it
        alike = 0;
      }
      if (!more) return false;
      if (alike == 0) moment_ = moment;
    }
  }

 private:
  void prepare(Connection& connection) {
    rows_ =
        Statement(connection,
                  "SELECT Moment FROM VordaneFaultIndex WHERE ID = ?1 AND Moment < ?2 ORDER BY Moment DESC");
  }

  std::shared_ptr<Opened> opened_;
  std::int64_t owner_;
  std::uint64_t tablesChanged_;
  Statement rows_;
  std::string moment_ = "\xFF";  // that was told last; every moment stands before this one
  std::u16string time_;
};

}  // namespace

std::unique_ptr<database::Survey> surveyIndex(std::shared_ptr<Opened> opened, SharedKeys counts,
                                              bool backwards, std::int64_t owner, std::uint64_t tablesChanged,
                                              const std::optional<database::TimesBetween>& times) {
  return std::make_unique<SurveyOfIndex>(std::move(opened), std::move(counts), backwards, owner,
                                         tablesChanged, times);
}

std::unique_ptr<database::TimeWalk> timesOfIndex(std::shared_ptr<Opened> opened, std::int64_t owner,
                                                 std::uint64_t tablesChanged) {
  return std::make_unique<TimesOfIndex>(std::move(opened), owner, tablesChanged);
}

}  // namespace vordane::sqlite
