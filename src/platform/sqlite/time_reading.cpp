#include "platform/sqlite/time_reading.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "platform/sqlite/description_order.h"
#include "platform/sqlite/errors.h"
#include "platform/sqlite/event_index.h"

namespace vordane::sqlite {
namespace {

// A wrong count must not take all memory.
constexpr std::size_t mostReserved = std::size_t{1} << 23;

constexpr const char* newestFirst =
    "SELECT Moment, Count FROM VordaneFaultIndex WHERE ID = ?1 AND Moment < ?2 "
    "ORDER BY Moment DESC, Hash DESC, Count DESC";
constexpr const char* oldestFirst =
    "SELECT Moment, Count FROM VordaneFaultIndex WHERE ID = ?1 AND Moment > ?2 "
    "ORDER BY Moment, Hash, Count";

class Inside {
 public:
  explicit Inside(bool& flag) : flag_(flag) { flag_ = true; }
  ~Inside() { flag_ = false; }
  Inside(const Inside&) = delete;
  Inside& operator=(const Inside&) = delete;

 private:
  bool& flag_;
};

}  // namespace

TimeReading::TimeReading(Connection& connection, const Table& table, std::int64_t owner, bool backwards,
                         std::size_t first, FromTable fromTable)
    : connection_(connection),
      table_(table),
      owner_(owner),
      backwards_(backwards),
      first_(first),
      piece_(std::min(first, mostReserved) * 4),
      fromTable_(std::move(fromTable)),
      tablesChanged_(connection.tables().timesChanged()) {
  connection_.add(*this);
}

TimeReading::~TimeReading() {
  connection_.remove(*this);
}

std::unique_ptr<TimeReading> TimeReading::open(Connection& connection, const Table& table, std::int64_t owner,
                                               bool backwards, std::size_t most, FromTable fromTable) {
  // What is not safe yet may be taken back.
  if (connection.inTransaction()) return {};
  std::unique_ptr<TimeReading> reading(
      new TimeReading(connection, table, owner, backwards, most, std::move(fromTable)));
  const Inside inside(reading->inPiece_);
  std::optional<ReadScope> state;
  if (!reading->holdState(state) || !reading->knowsItsSize()) return {};
  reading->walk(most);
  return reading;
}

// From here on one state of the file is read, one that the index answers for; false where it does not.
bool TimeReading::holdState(std::optional<ReadScope>& state) {
  for (;;) {
    if (!connection_.events().usable()) return false;
    state.emplace(connection_);
    if (connection_.tables().changesByOthers() == connection_.tables().seenChanges()) return true;
    state.reset();  // somebody was quicker
  }
}

bool TimeReading::knowsItsSize() {
  version_ = connection_.tables().seenChanges();
  const auto count = connection_.events().count(owner_);
  if (!count || *count <= 0 || static_cast<std::uint64_t>(*count) <= first_) return false;
  Statement keys(connection_, eventSql(table_,
                                       "SELECT (SELECT min({key}) FROM {table}), "
                                       "(SELECT max({key}) FROM {table})"));
  if (!keys.step() || !hasShortKey(keys.integer(0)) || !hasShortKey(keys.integer(1))) return false;
  lastKey_ = keys.integer(1);
  if (*count > lastKey_ - keys.integer(0) + 1) {
    connection_.events().countsAreWrong();
    return false;
  }
  size_ = static_cast<std::size_t>(*count);
  read_.reserve(std::min(size_, mostReserved));
  return true;
}

void TimeReading::read(std::size_t most) {
  if (isDone() || inPiece_) return;
  const Inside inside(inPiece_);
  std::optional<ReadScope> state;
  const bool indexed = holdState(state);
  noteChanges();
  if (tablesChanged_ != connection_.tables().timesChanged()) return finish();  // the others are gone
  indexed ? walk(most) : readTable();
}

void TimeReading::upTo(std::size_t position) {
  while (!isDone() && !inPiece_ && read_.size() <= position)
    read(std::max(piece_, position - read_.size() + 1));
}

void TimeReading::toEnd() {
  while (!isDone() && !inPiece_) read(std::numeric_limits<std::size_t>::max());
}

void TimeReading::noteChanges() {
  if (std::exchange(version_, connection_.tables().seenChanges()) == connection_.tables().seenChanges())
    return;
  changed_ = true;
  walkChanged_ = moment_.has_value();
  learnWhatIsRead();
}

void TimeReading::learnWhatIsRead() {
  known_ = read_;
  if (backwards_) std::reverse(known_.begin(), known_.end());
  // Numbers are mostly given in the order of time.
  if (!std::is_sorted(known_.begin(), known_.end())) std::sort(known_.begin(), known_.end());
}

bool TimeReading::isWanted(std::int64_t key) const {
  return hasShortKey(key) && key <= lastKey_ &&
         !std::binary_search(known_.begin(), known_.end(), static_cast<std::uint32_t>(key));
}

// Whole moments: within one the index goes by hash, and the order by key.
void TimeReading::walk(std::size_t most) {
  if (!rows_) rows_ = Statement(connection_, backwards_ ? newestFirst : oldestFirst);
  const std::string from = moment_.value_or("\xFF");
  const Running running(rows_);
  rows_.bind(1, owner_);
  if (moment_ || backwards_)
    rows_.bindBlob(2, from);
  else
    rows_.bind(2, 0);  // a number stands before all moments, the empty one too
  // Most moments have one row: nothing is allocated for it.
  bool open = false;
  group_.clear();
  for (std::size_t looked = 0;; ++looked) {
    const bool more = rows_.step();
    const std::string_view moment = more ? rows_.blob(0) : std::string_view{};
    if (open && (!more || moment != groupMoment_)) {
      closeGroup();
      if (more && looked >= most) return;
      open = false;
    }
    if (!more) return endWalk();
    if (!open) groupMoment_ = moment;
    open = true;
    if (isWanted(rows_.integer(1))) group_.push_back(static_cast<std::uint32_t>(rows_.integer(1)));
  }
}

void TimeReading::closeGroup() {
  if (moment_ && (backwards_ ? groupMoment_ >= *moment_ : groupMoment_ <= *moment_)) fail(number::damaged);
  if (group_.size() > 1) std::sort(group_.begin(), group_.end());
  if (!backwards_ || read_.empty()) newest_ = groupMoment_;
  if (backwards_)
    read_.insert(read_.end(), group_.rbegin(), group_.rend());
  else
    read_.insert(read_.end(), group_.begin(), group_.end());
  group_.clear();
  moment_ ? moment_->swap(groupMoment_) : void(moment_ = groupMoment_);
}

// Rows that are missing after others have written may stand where this walk had been before: another one
// finds them. What is missing after a walk in which nothing was changed is gone.
void TimeReading::endWalk() {
  if (read_.size() >= size_ || !walkChanged_) return finish();
  walkChanged_ = false;
  moment_.reset();
  learnWhatIsRead();
}

// The file can't be written, and its index has become stale.
void TimeReading::readTable() {
  changed_ = true;
  learnWhatIsRead();
  for (const std::int64_t key : fromTable_())
    if (isWanted(key)) read_.push_back(static_cast<std::uint32_t>(key));
  finish();
}

void TimeReading::finish() {
  if (!changed_ && read_.size() != size_) connection_.events().countsAreWrong();
  if (!changed_ || read_.size() > size_) size_ = read_.size();
  if (backwards_) std::reverse(read_.begin(), read_.end());
  known_ = {};
  rows_ = {};
  keys_ = changed_ ? std::make_shared<const std::vector<std::uint32_t>>(std::move(read_))
                   : connection_.events().keepOrder(owner_, version_, std::move(read_), newest_);
}

std::optional<std::int64_t> TimeReading::key(std::size_t position) const {
  return position < read_.size() ? std::optional<std::int64_t>(read_[position]) : std::nullopt;
}

}  // namespace vordane::sqlite
