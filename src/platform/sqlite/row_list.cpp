#include "platform/sqlite/row_list.h"

#include <type_traits>

#include "platform/sqlite/errors.h"
#include "platform/sqlite/index_survey.h"
#include "platform/sqlite/text_rules.h"
#include "platform/sqlite/time_reading.h"

namespace vordane::sqlite {
namespace {

// `Key` is as wide as the rows' keys need, to keep a million of them small. Backwards the last key is the
// first row. There may be fewer keys than rows: the last ones have gone.
template <class Key>
class EmbeddedRowList final : public database::RowList {
 public:
  using Keys = std::shared_ptr<const std::vector<Key>>;

  // `owner` is the one whose rows the index named, if it did; the row itself decides. The keys may come from
  // a reading that is not done yet.
  EmbeddedRowList(std::shared_ptr<Opened> opened, const Plan& plan, Keys keys, bool backwards,
                  std::span<const std::u16string_view> columns,
                  std::optional<std::int64_t> owner = std::nullopt,
                  std::unique_ptr<TimeReading> reading = nullptr)
      : table_(*plan.table),
        opened_(std::move(opened)),
        connection_(opened_->connection),
        tablesChanged_(plan.tablesChanged),
        keys_(std::move(keys)),
        backwards_(backwards),
        owner_(owner),
        reading_(std::move(reading)),
        size_(keys_ != nullptr ? keys_->size() : 0) {
    settle();
    std::string sql;
    for (std::u16string_view name : columns) {
      const Column* column = plan.columns[plan.resultColumn(name)];
      columns_.push_back(column);
      yesNo_.push_back(column->kind == Kind::yesNo);
      sql += (sql.empty() ? "SELECT " : ", ") + column->quoted;
    }
    if (sql.empty()) sql = "SELECT NULL";
    sql += " FROM " + plan.table->quoted + " WHERE rowid = ?1";
    if (owner_) sql += eventSql(*plan.table, " AND {owner} = ?2");
    row_ = Statement(connection_, sql);
  }

  std::size_t size() const override { return reading_ != nullptr ? reading_->size() : size_; }
  bool isRead() const override { return reading_ == nullptr || reading_->isDone(); }
  void readOn() override {
    if (reading_ != nullptr) reading_->next();
    settle();
  }

  bool fetch(std::size_t position, std::vector<Value>& out) override {
    out.clear();
    if (position >= size() || tablesChanged()) return false;
    readUpTo(position);
    if (!keyAt(position)) return false;
    connection_.beforeRead();
    const Running running(row_);
    bindRow(position);
    const bool found = row_.step();
    for (std::size_t i = 0; found && i < yesNo_.size(); ++i)
      out.push_back(row_.limitedValue(static_cast<int>(i), yesNo_[i]));
    return found;
  }

  // Not while keys are still to be read: that goes from one moment of the file to the next.
  std::unique_ptr<Together> readTogether() override {
    connection_.beforeRead();
    if (reading_ != nullptr) return nullptr;
    return std::make_unique<OneReading>(connection_);
  }

  std::optional<std::int64_t> number(std::size_t position) const override {
    if (!table_.events || position >= size()) return {};
    return keyAt(position);
  }

  std::optional<std::size_t> find(std::u16string_view needle, std::size_t first, const Progress& progress,
                                  database::Walk walk) override {
    if (tablesChanged()) return {};
    readAll();
    const ReadScope reading(connection_);
    FoldedNeedle folded(needle);
    noted_ = table_.events && opened_->notes.any();
    for (std::size_t i = 0; i < size(); ++i) {
      if (progress && i % rowsBetweenProgress == rowsBetweenProgress - 1) progress(i);
      const std::size_t position = walked(first, i, walk);
      if (holds(position, folded)) return position;
    }
    return {};
  }

  void choose(std::u16string_view needle, std::span<const std::uint32_t> positions,
              std::vector<std::uint32_t>& chosen) override {
    connection_.beforeRead();
    if (tablesChanged()) return;
    for (const std::uint32_t position : positions) readUpTo(position);
    const ReadScope reading(connection_);
    FoldedNeedle folded(needle);
    noted_ = table_.events && opened_->notes.any();
    for (const std::uint32_t position : positions)
      if (holds(position, folded)) chosen.push_back(position);
  }

  database::Notes* notes() override {
    return table_.events && opened_->notes.offered() ? &opened_->notes : nullptr;
  }

  void chooseNoted(std::span<const std::uint32_t> positions, std::vector<std::uint32_t>& chosen) override {
    connection_.beforeRead();
    if (tablesChanged()) return;
    for (const std::uint32_t position : positions) readUpTo(position);
    const ReadScope reading(connection_);
    if (!table_.events || !opened_->notes.any()) return;
    for (const std::uint32_t position : positions)
      if (const auto key = keyAt(position); key && opened_->notes.has(*key)) chosen.push_back(position);
  }

  std::unique_ptr<database::Survey> survey(const database::SurveyedColumns& columns) override {
    if constexpr (std::is_same_v<Key, std::uint32_t>)
      if (owner_ && isIndexed(columns)) {
        readAll();
        return surveyIndex(opened_, keys_, backwards_, *owner_, tablesChanged_);
      }
    return RowList::survey(columns);
  }

  std::unique_ptr<database::Survey> surveyBetween(const database::SurveyedColumns& columns,
                                                  database::TimesBetween times) override {
    if constexpr (std::is_same_v<Key, std::uint32_t>)
      if (owner_ && isIndexed(columns)) {
        readAll();
        return surveyIndex(opened_, keys_, backwards_, *owner_, tablesChanged_, times);
      }
    return RowList::surveyBetween(columns, std::move(times));
  }

  std::unique_ptr<database::TimeWalk> times(std::size_t column) override {
    const bool indexed = owner_ && table_.events &&
                         columns_.at(column) == &table_.columns[table_.events->texts[EventColumns::moment]];
    return indexed ? timesOfIndex(opened_, *owner_, tablesChanged_) : RowList::times(column);
  }

 private:
  struct OneReading final : Together {
    explicit OneReading(Connection& connection) : scope(connection) {}
    ReadScope scope;
  };

  // Nothing for a row that has gone before its key was read.
  std::optional<std::int64_t> keyAt(std::size_t position) const {
    if (reading_ != nullptr) return reading_->key(position);
    if (position >= keys_->size()) return {};
    return (*keys_)[backwards_ ? keys_->size() - 1 - position : position];
  }

  void readUpTo(std::size_t position) {
    if (reading_ != nullptr) reading_->upTo(position);
    settle();
  }

  void readAll() {
    if (reading_ != nullptr) reading_->toEnd();
    settle();
  }

  // What was read to its end is nothing but keys.
  void settle() {
    if (reading_ == nullptr || !reading_->isDone()) return;
    if constexpr (std::is_same_v<Key, std::uint32_t>) keys_ = reading_->keys();
    size_ = reading_->size();
    reading_.reset();
  }

  // The index tells what these columns hold.
  bool isIndexed(const database::SurveyedColumns& columns) const {
    const auto is = [&](std::size_t mine, std::size_t indexed) {
      return columns_.at(mine) == &table_.columns[table_.events->texts[indexed]];
    };
    return table_.events && is(columns.kind[0], 0) && is(columns.kind[1], 1) && is(columns.kind[2], 2) &&
           is(columns.time, EventColumns::moment);
  }

  // The keys belong to the table as it was.
  bool tablesChanged() {
    connection_.tables().follow();
    return tablesChanged_ != connection_.tables().timesChanged();
  }

  void bindRow(std::size_t position) {
    row_.bind(1, keyAt(position).value_or(0));
    if (owner_) row_.bind(2, *owner_);
  }

  // Looks at the texts where the engine holds them.
  bool holds(std::size_t position, FoldedNeedle& needle) {
    if (!keyAt(position)) return false;
    const Running running(row_);
    bindRow(position);
    bool found = false;
    if (row_.step()) {
      for (std::size_t i = 0; !found && i < yesNo_.size(); ++i) {
        const int column = static_cast<int>(i);
        if (row_.isText(column)) {
          found = needle.isIn(row_.view(column, copy_));
        } else if (!row_.isNull(column) && (needle.mayBeInteger() || yesNo_[i] || !row_.isInteger(column))) {
          found = needle.isIn(automation::toText(row_.value(column, yesNo_[i])));
        }
      }
    }
    return found || (noted_ && opened_->notes.has(keyAt(position).value_or(0), &needle));
  }

  const Table& table_;
  std::vector<const Column*> columns_;
  std::shared_ptr<Opened> opened_;
  Connection& connection_;
  std::uint64_t tablesChanged_;
  Keys keys_;
  bool backwards_;
  std::optional<std::int64_t> owner_;
  std::unique_ptr<TimeReading> reading_;  // null when all is read
  std::size_t size_;                      // then
  std::vector<bool> yesNo_;
  Statement row_;
  std::u16string copy_;
  bool noted_ = false;  // of the walk under way: there are notes to look into
};

std::vector<std::int64_t> readKeys(Connection& connection, Plan& plan,
                                   const std::vector<jet::Literal>& literals) {
  Statement rows = plan.keys.take(connection);
  int parameter = 0;
  for (const jet::Literal& literal : literals) rows.bind(++parameter, literal);
  std::vector<std::int64_t> keys;
  while (rows.step()) keys.push_back(rows.integer(0));
  plan.keys.giveBack(std::move(rows));
  return keys;
}

// Null where the rows are to be read at once.
std::unique_ptr<TimeReading> readInTime(Connection& connection, Plan& plan,
                                        const std::vector<jet::Literal>& literals) {
  const std::int64_t owner = literals.at(0).number;
  if (!plan.order.isOfTime() || connection.events().isOrderKept(owner)) return {};
  return TimeReading::open(connection, *plan.table, owner, plan.descending, connection.rowsReadAtOnce(),
                           [&connection, &plan, literals] { return readKeys(connection, plan, literals); });
}

}  // namespace

std::unique_ptr<database::RowList> makeRowList(std::shared_ptr<Opened> opened, Plan& plan,
                                               const std::vector<jet::Literal>& literals,
                                               std::span<const std::u16string_view> columns) {
  if (plan.isUnion() || plan.shape.verb == jet::Verb::remove) fail(number::invalidOperation);
  Connection& connection = opened->connection;
  connection.beforeRead();
  if (plan.special == Plan::Special::eventsOfOwner && connection.events().usable()) {
    const std::int64_t owner = literals.at(0).number;
    if (auto reading = readInTime(connection, plan, literals))
      return std::make_unique<EmbeddedRowList<std::uint32_t>>(
          std::move(opened), plan, nullptr, plan.descending, columns, owner, std::move(reading));
    if (auto keys = connection.events().ordered(owner, plan.order))
      return std::make_unique<EmbeddedRowList<std::uint32_t>>(std::move(opened), plan, std::move(keys),
                                                              plan.descending, columns, owner);
  }
  auto keys = std::make_shared<const std::vector<std::int64_t>>(readKeys(connection, plan, literals));
  return std::make_unique<EmbeddedRowList<std::int64_t>>(std::move(opened), plan, std::move(keys), false,
                                                         columns);
}

}  // namespace vordane::sqlite
