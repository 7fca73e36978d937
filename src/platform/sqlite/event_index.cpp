#include "platform/sqlite/event_index.h"

#include <algorithm>
#include <limits>
#include <span>
#include <utility>

#include "platform/sqlite/errors.h"
#include "platform/sqlite/text_rules.h"
#include "text/utf8.h"

namespace vordane::sqlite {
namespace {

constexpr int version = 3, withoutCounts = 2;
// Where a row without a number for an owner stands: no statement can ask for it.
constexpr std::int64_t noOwner = -4294967296;

struct OwnObject {
  const char* type;
  const char* name;
  const char* sql;  // as the file's schema keeps it
};

// Plain SQL only: another tool must be able to fire the triggers and to check every table. {table} is the
// described name of the table, as it stands.
constexpr OwnObject ownObjects[] = {
    {"table", "VordaneFaultIndex",
     "CREATE TABLE VordaneFaultIndex (ID INTEGER NOT NULL, Moment BLOB NOT NULL, Hash INTEGER NOT NULL, "
     "Count INTEGER NOT NULL, Kind BLOB NOT NULL, PRIMARY KEY (ID, Moment, Hash, Count)) WITHOUT ROWID"},
    {"table", "VordaneIndexState",
     "CREATE TABLE VordaneIndexState (Version INTEGER NOT NULL, Stale INTEGER NOT NULL, NewestMoment BLOB, "
     "NewestCount INTEGER, LastCount INTEGER)"},
    {"trigger", "VordaneFaultInserted",
     "CREATE TRIGGER VordaneFaultInserted AFTER INSERT ON {table} BEGIN "
     "UPDATE VordaneIndexState SET Stale = 1 WHERE Stale = 0; END"},
    {"trigger", "VordaneFaultUpdated",
     "CREATE TRIGGER VordaneFaultUpdated AFTER UPDATE ON {table} BEGIN "
     "UPDATE VordaneIndexState SET Stale = 1 WHERE Stale = 0; END"},
    {"trigger", "VordaneFaultDeleted",
     "CREATE TRIGGER VordaneFaultDeleted AFTER DELETE ON {table} BEGIN "
     "UPDATE VordaneIndexState SET Stale = 1 WHERE Stale = 0; END"},
};
constexpr OwnObject ownCounts = {
    "table", "VordaneFaultCounts",
    "CREATE TABLE VordaneFaultCounts (ID INTEGER PRIMARY KEY, Faults INTEGER NOT NULL)"};

std::string sqlOf(const OwnObject& own, const database::EventTable& events) {
  constexpr std::string_view mark = "{table}";
  std::string sql = own.sql;
  const auto at = sql.find(mark);
  return at == sql.npos ? sql : sql.replace(at, mark.size(), text::toUtf8(events.table));
}

// What an earlier version or somebody else has left under the names gives way.
void makeOwn(Connection& connection, std::span<const OwnObject> objects) {
  std::string changes;
  Statement left(connection, "SELECT type, name FROM sqlite_schema WHERE lower(name) = lower(?)");
  for (const OwnObject& own : objects) {
    const std::u16string name = text::fromUtf8(own.name);
    left.bindText(1, name);
    const Running running(left);
    while (left.step())
      changes += "DROP " + text::toUtf8(left.text(0)) + " IF EXISTS " + quote(left.text(1)) + ";";
  }
  for (const OwnObject& own : objects) changes += sqlOf(own, *connection.eventTable()) + ";";
  connection.runMaintenance(changes.c_str());
}

// An event's row of the index, from the table itself; the first four columns are its key.
std::string keyOfEvent() {
  return "iif(typeof({owner}) = 'integer', {owner}, -4294967296), vordane_moment({moment}), "
         "vordane_hash({kind0}, "
         "{kind1}, {kind2}, {moment}, {description}), {key}";
}

std::string addEvents() {
  return "INSERT INTO VordaneFaultIndex(ID, Moment, Hash, Count, Kind) SELECT " + keyOfEvent() +
         ", vordane_kind({kind0}, {kind1}, {kind2}) FROM {table}";
}

}  // namespace

EventIndex::EventIndex(Connection& connection)
    : connection_(connection), counts_(connection), expected_(connection), byDescription_(connection) {
  registerEventFunctions(connection);
  registerCollect(connection, collecting_);
  findTable();
}

// Other declarations make other values of what is stored, and other rows of what a statement asks for: only
// the table itself can answer then.
void EventIndex::findTable() {
  table_ = nullptr;
  const database::EventTable* described = connection_.eventTable();
  Table* table = described != nullptr ? connection_.tables().find(described->table) : nullptr;
  if (table == nullptr) return;
  table->events = findEvents(*table, *described);
  if (table->events) table_ = table;
}

// What others may have done to the tables since.
void EventIndex::follow() {
  connection_.tables().follow();
  if (tablesChanged_ != connection_.tables().timesChanged()) {
    tablesChanged_ = connection_.tables().timesChanged();
    byTime_.forget();
    findTable();
  }
  if (std::exchange(seenChanges_, connection_.tables().seenChanges()) != seenChanges_) present_.reset();
}

// A statement that is prepared when it is first used.
Statement& EventIndex::prepared(Statement& statement, std::string_view sql) {
  if (!statement) statement = Statement(connection_, eventSql(*table_, sql));
  return statement;
}

// The index as this version makes it, and nothing else under its names.
EventIndex::Present EventIndex::lookForOwn() {
  Statement objects(connection_,
                    "SELECT count(*), sum(type = ?1 AND name = ?2 AND sql = ?3) FROM sqlite_schema WHERE "
                    "lower(name) = lower(?2)");
  const auto isThere = [&](const OwnObject& own) {
    const std::u16string type = text::fromUtf8(own.type), name = text::fromUtf8(own.name),
                         sql = text::fromUtf8(sqlOf(own, *connection_.eventTable()));
    objects.bindText(1, type);
    objects.bindText(2, name);
    objects.bindText(3, sql);
    const Running running(objects);
    return objects.step() && objects.integer(0) == 1 && objects.integer(1) == 1;
  };
  if (!std::all_of(std::begin(ownObjects), std::end(ownObjects), isThere)) return Present::no;
  return isThere(ownCounts) ? Present::whole : Present::withoutCounts;
}

EventIndex::State EventIndex::readState() {
  if (!present_) present_ = lookForOwn();
  if (*present_ == Present::no) return State::bad;
  const bool pending = connection_.inTransaction() && touched_;
  Statement& state =
      prepared(state_,
               "SELECT Version, Stale, NewestMoment, NewestCount, LastCount IS (SELECT seq FROM "
               "sqlite_sequence WHERE name = ?1) FROM VordaneIndexState");
  const Running running(state);
  state.bindText(1, table_->name);
  if (!state.step()) return State::bad;
  const auto made = state.integer(0);
  const bool good = (made == version || made == withoutCounts) && state.integer(1) == 0 &&
                    (pending || state.integer(4) != 0);
  if (!pending || !newestChanged_) {
    newest_ = {!state.isNull(3), std::string(state.blob(2)), {}};
    if (!state.isNull(2)) newest_.key = state.integer(3);
    newestChanged_ = false;
  }
  if (!good) return State::bad;
  return made == version && *present_ == Present::whole && !countsWrong_ ? State::good : State::uncounted;
}

// A file that is only read may do without the counts.
bool EventIndex::usable() {
  if (connection_.inTransaction() && checked_) return true;
  connection_.beforeRead();
  follow();
  if (!table_) return false;
  State state = readState();
  if (state != State::good && !connection_.readOnly()) {
    repair();
    state = State::good;
  }
  counted_ = state == State::good;
  checked_ = state != State::bad && connection_.inTransaction();
  return state != State::bad;
}

void EventIndex::repair() {
  WriteScope write(connection_);
  present_ = lookForOwn();  // another process may have been quicker
  if (*present_ == Present::no) create();
  if (*present_ == Present::withoutCounts) createCounts();
  const State state = readState();
  if (state == State::bad) rebuild();
  if (state == State::uncounted) countAnew();
  write.done();
}

void EventIndex::create() {
  madeAnew_ = true;
  makeOwn(connection_, ownObjects);
  connection_.runMaintenance("INSERT INTO VordaneIndexState(Version, Stale) VALUES (3, 1)");
  present_ = Present::withoutCounts;
}

void EventIndex::createCounts() {
  madeAnew_ = true;
  makeOwn(connection_, {&ownCounts, 1});
  connection_.run("UPDATE VordaneIndexState SET Version = 2 WHERE Version = 3");  // they are to be filled yet
  present_ = Present::whole;
}

void EventIndex::countAnew() {
  counts_.countAll();
  connection_.run("UPDATE VordaneIndexState SET Version = 3");
  countsWrong_ = false;
}

void EventIndex::rebuild() {
  madeAnew_ = touched_ = true;
  connection_.run("DELETE FROM VordaneFaultIndex");
  connection_.run(eventSql(*table_, addEvents() + " ORDER BY 1, 2, 3, 4").c_str());
  connection_.run("UPDATE VordaneIndexState SET Stale = 0");
  countAnew();
  forgetRead();
}

void EventIndex::transactionBegan() noexcept {
  checked_ = madeAnew_ = touched_ = newestChanged_ = false;
  counts_.transactionBegan();
  expected_.forget();
}

// What was read of the index holds no longer.
void EventIndex::forgetRead() noexcept {
  byTime_.forget();
  expected_.forget();
  newest_.known = false;
  newestChanged_ = true;
}

void EventIndex::undone() noexcept {
  forgetRead();
  counts_.undone();
  if (connection_.inTransaction() && !madeAnew_) return;
  // The index itself may be among what was taken back.
  checked_ = false;
  present_.reset();
}

std::vector<std::int64_t> EventIndex::findSame(std::int64_t owner, const EventTexts& texts) {
  if (const auto* known = expected_.next(owner, texts)) return *known;
  // The cross join fixes which table is read first; the row itself decides, the hash only finds it.
  Statement& rows =
      prepared(same_,
               "SELECT x.Count FROM VordaneFaultIndex AS x CROSS JOIN {table} AS f ON f.{key} = x.Count "
               "WHERE x.ID = ?1 AND x.Moment = ?2 AND x.Hash = ?3 AND f.{kind0} = ?4 COLLATE vordane_text "
               "AND f.{kind1} = ?5 COLLATE vordane_text AND f.{kind2} = ?6 COLLATE vordane_text "
               "AND f.{moment} = ?7 COLLATE vordane_text AND f.{description} = ?8 COLLATE vordane_text "
               "AND f.{owner} = ?1");
  const Running running(rows);
  momentKey_.clear();
  appendField(texts[EventColumns::moment], momentKey_);
  rows.bind(1, owner);
  rows.bindBlob(2, momentKey_);
  rows.bind(3, hashOf(texts));
  int parameter = 3;
  for (const auto& text : texts) rows.bindText(++parameter, *text);
  std::vector<std::int64_t> keys;
  while (rows.step()) keys.push_back(rows.integer(0));
  return keys;
}

// One seek for each owner: needed only after rows were changed or removed.
void EventIndex::findNewest() {
  Statement last(
      connection_,
      "SELECT ID, Moment, Count FROM VordaneFaultIndex WHERE ID < ? ORDER BY ID DESC, Moment DESC LIMIT 1");
  newest_ = {true, {}, {}};
  std::int64_t below = std::numeric_limits<std::int64_t>::max();
  for (;;) {
    last.bind(1, below);
    if (!last.step()) return;
    below = last.integer(0);
    if (!newest_.key || last.blob(1) > std::string_view(newest_.moment))
      newest_ = {true, std::string(last.blob(1)), last.integer(2)};
    last.reset();
  }
}

std::optional<std::int64_t> EventIndex::newest() {
  if (!newest_.known) findNewest();
  return newest_.key;
}

std::vector<std::int64_t> EventIndex::allNewestFirst() {
  std::vector<std::int64_t> keys;
  Statement rows(connection_, "SELECT Count FROM VordaneFaultIndex ORDER BY Moment DESC, Count");
  while (rows.step()) keys.push_back(rows.integer(0));
  const auto first = newest();
  const auto found = first ? std::find(keys.begin(), keys.end(), *first) : keys.end();
  if (found != keys.end()) std::rotate(keys.begin(), found, found + 1);
  return keys;
}

std::optional<std::int64_t> EventIndex::count(std::int64_t owner) {
  return counted_ && !countsWrong_ ? counts_.of(owner) : std::nullopt;
}

SharedKeys EventIndex::ordered(std::int64_t owner, const EventOrder& order) {
  if (order.isOfTime()) return orderedByTime(owner);
  byTime_.forget();  // one order of a million events at a time
  if (order.byDescription) return byDescription_.of(*table_, owner, order.kinds);
  const CollectedEvents events = collectEvents(connection_, collecting_, owner, true);
  if (events.beyondKeys()) return {};
  return std::make_shared<const std::vector<std::uint32_t>>(events.byKind(order.kinds));
}

SharedKeys EventIndex::orderedByTime(std::int64_t owner) {
  const std::int64_t changes = connection_.tables().changesByOthers();
  if (auto kept = byTime_.of(owner, changes)) return kept;
  const CollectedEvents events = collectEvents(connection_, collecting_, owner, false);
  if (events.beyondKeys()) return {};
  byTime_.keep(owner, changes, events.byTime(), events.lastMoment());
  return byTime_.of(owner, changes);
}

bool EventIndex::isOrderKept(std::int64_t owner) {
  return byTime_.of(owner, connection_.tables().changesByOthers()) != nullptr;
}

SharedKeys EventIndex::keepOrder(std::int64_t owner, std::int64_t version, std::vector<std::uint32_t> keys,
                                 std::string lastMoment) {
  byTime_.keep(owner, version, std::move(keys), std::move(lastMoment));
  return byTime_.of(owner, version);
}

void EventIndex::added(std::int64_t key, std::optional<std::int64_t> owner, const EventTexts& texts) {
  const std::int64_t ownerKey = owner.value_or(noOwner);
  counts_.changed(ownerKey, 1);
  const auto asked = expected_.lastAsked(ownerKey, texts);
  if (!asked) expected_.forget();
  kindKey_.clear();
  momentKey_.assign(asked ? asked->moment : std::string_view());
  if (!asked) appendField(texts[EventColumns::moment], momentKey_);
  appendKind(texts, kindKey_);
  Statement& insert = prepared(
      insert_, "INSERT INTO VordaneFaultIndex(ID, Moment, Hash, Count, Kind) VALUES (?, ?, ?, ?, ?)");
  insert.bind(1, ownerKey);
  insert.bindBlob(2, momentKey_);
  insert.bind(3, asked ? asked->hash : hashOf(texts));
  insert.bind(4, key);
  insert.bindBlob(5, kindKey_);
  insert.run();
  touched_ = true;
  byTime_.added(ownerKey, momentKey_, key);
  if (newest_.known && (!newest_.key || momentKey_ > newest_.moment)) {
    newest_ = {true, momentKey_, key};
    newestChanged_ = true;
  }
}

void EventIndex::changing(std::int64_t key) {
  static const std::string sql = "DELETE FROM VordaneFaultIndex WHERE (ID, Moment, Hash, Count) = (SELECT " +
                                 keyOfEvent() + " FROM {table} WHERE {key} = ?) RETURNING ID";
  Statement& remove = prepared(remove_, sql);
  const Running running(remove);
  remove.bind(1, key);
  while (remove.step()) counts_.changed(remove.integer(0), -1);
  forgetRead();
}

void EventIndex::changed(std::int64_t key) {
  static const std::string sql = addEvents() + " WHERE {key} = ? RETURNING ID";
  Statement& insert = prepared(read_, sql);
  const Running running(insert);
  insert.bind(1, key);
  while (insert.step()) counts_.changed(insert.integer(0), 1);
}

void EventIndex::removeOwner(std::int64_t owner) {
  Statement all(connection_, "SELECT count(*) FROM VordaneFaultIndex WHERE ID = ?");
  all.bind(1, owner);
  all.step();
  const auto of = static_cast<std::size_t>(all.integer(0));
  all.reset();
  counts_.countAnew(owner);
  removeRows(owner, of);
  Statement entries(connection_, "DELETE FROM VordaneFaultIndex WHERE ID = ?");
  entries.bind(1, owner);
  entries.run();
  forgetRead();
}

// One by one, so that progress can be reported.
void EventIndex::removeRows(std::int64_t owner, std::size_t of) {
  constexpr std::size_t rowsBetweenProgress = 1024;
  Statement rows(connection_, "SELECT Count FROM VordaneFaultIndex WHERE ID = ?");
  // The row itself decides: a damaged entry must not take another owner's event along.
  Statement row(connection_, eventSql(*table_, "DELETE FROM {table} WHERE {key} = ?1 AND {owner} = ?2"));
  rows.bind(1, owner);
  row.bind(2, owner);
  for (std::size_t done = 0; rows.step(); ++done) {
    if (done % rowsBetweenProgress == 0) connection_.progress(done, of);
    row.bind(1, rows.integer(0));
    row.run();
  }
  rows.reset();
}

void EventIndex::beforeCommit() {
  counts_.beforeCommit();
  if (!newestChanged_ && !touched_) return;
  if (!newest_.known) findNewest();
  Statement update(
      connection_,
      "UPDATE VordaneIndexState SET NewestMoment = ?1, NewestCount = ?2, LastCount = (SELECT seq "
      "FROM sqlite_sequence WHERE name = ?3)");
  if (newest_.key) update.bindBlob(1, newest_.moment);
  update.bind(2, newest_.key.value_or(0));
  update.bindText(3, table_->name);
  update.run();
  newestChanged_ = touched_ = false;
}

}  // namespace vordane::sqlite
