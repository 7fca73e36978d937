#include "platform/odbc/session.h"

#include <algorithm>
#include <utility>

#include "platform/described.h"
#include "platform/odbc/errors.h"
#include "platform/odbc/identity.h"
#include "platform/odbc/notes.h"
#include "platform/odbc/receipts.h"
#include "text/numbers.h"
#include "text/text.h"
#include "text/utf8.h"

namespace vordane::odbc {
namespace {

bool canBeStored(const std::vector<jet::Literal>& values) {
  for (const jet::Literal& value : values)
    if (value.isText && !canTravel(value.text)) return false;
  return true;
}

std::vector<std::int64_t> numbersFrom(std::u16string_view joined) {
  std::vector<std::int64_t> numbers;
  std::int64_t number = 0;
  bool negative = false;
  const auto take = [&] { numbers.push_back(std::exchange(negative, false) ? -number : number); };
  for (const char16_t c : joined) {
    if (c == u',') {
      take();
      number = 0;
    } else if (c == u'-') {
      negative = true;
    } else {
      number = number * 10 + (c - u'0');
    }
  }
  if (!joined.empty()) take();
  return numbers;
}

// What the statement's parameters take of the shape's values.
Fields parametersOf(const Plan& plan, const std::vector<jet::Literal>& values) {
  Fields parameters;
  for (const std::size_t i : plan.values) parameters.push_back(toField(values.at(i)));
  return parameters;
}

}  // namespace

Session::Session(const Api& api, const Dialect& dialect, std::u16string connection, bool readOnly,
                 const Options& options, std::shared_ptr<const jet::Documented> documented)
    : api_(api),
      dialect_(dialect),
      connection_(std::move(connection)),
      readOnly_(readOnly),
      options_(options),
      documented_(std::move(documented)) {
  connect();
  const auto columns = link_->query(dialect_.listColumns());
  tables_ = std::make_unique<Tables>(columns, documented_->descriptions());
  const auto isThere = [&](const database::TableDefinition& table) {
    return std::any_of(columns.begin(), columns.end(),
                       [&](const Fields& column) { return column.at(0) == Field(table.name); });
  };
  keepsReceipts_ = std::all_of(std::begin(receiptTables), std::end(receiptTables), isThere);
  keepsNotes_ = isThere(noteTable);
  if (!readOnly_) {
    const auto reason = link_->query(dialect_.whyReadOnly());
    if (!reason.empty() && !reason[0].at(0).value_or(u"").empty())
      database::fail(number::noPermission, *reason[0][0]);
  }
  plans_ = std::make_unique<Plans>(dialect_, *tables_, *documented_, keepsNotes_);
}

Session::~Session() = default;

void Session::setProgress(const database::Database::Progress& progress) {
  if (!progress) return waiter_.setMeanwhile({});
  waiter_.setMeanwhile([progress] {
    try {
      progress(0, 0);
    } catch (...) {
      // Painting failed; the step goes on.
    }
  });
}

void Session::connect() {
  using std::chrono::milliseconds, std::chrono::steady_clock;
  const bool hung = link_ != nullptr && link_->hung();
  link_.reset();
  if (hung) noConnectionBefore_ = steady_clock::now() + milliseconds(options_.pauseMilliseconds);
  if (steady_clock::now() < noConnectionBefore_) database::fail(number::connectionFailed);
  name_.reset();
  const milliseconds patience(options_.connectMilliseconds);
  const auto begun = steady_clock::now();
  try {
    link_ = std::make_unique<Link>(api_, connection_, patience, waiter_);
  } catch (...) {
    const auto ended = steady_clock::now();
    if (ended - begun > patience / 2) noConnectionBefore_ = ended + milliseconds(options_.pauseMilliseconds);
    throw;
  }
  link_->setPatience({milliseconds(options_.answerMilliseconds), [this] { return isAtWork(); }});
  name_ = link_->query(dialect_.begin(options_.lockWaitMilliseconds, readOnly_)).at(0).at(0);
}

// Whether the server works on what this connection has asked for; not when the question or its answer was
// lost on the way, and not when the server itself stands still.
bool Session::isAtWork() const noexcept {
  try {
    const std::chrono::milliseconds patience(options_.askMilliseconds);
    Waiter waiter;
    waiter.setMeanwhile(waiter_.meanwhile());
    Link other(api_, connection_, patience, waiter);
    other.setPatience({patience, {}});
    const auto told = name_ ? other.query(dialect_.isAtWork(), {&name_, 1}) : std::vector<Fields>{};
    return !told.empty() && told[0].at(0) == Field(u"1");
  } catch (const std::exception&) {
    return false;
  }
}

// The one that is open, or after a loss a new one.
Link& Session::link() {
  answered_ = {};
  if (!link_ || link_->lost()) connect();
  return *link_;
}

// Nothing of the transaction under way stays.
void Session::lose() noexcept {
  if (link_) link_->rollback();
  waiting_ = {};
  expected_.forgetAnswers();
  held_.clear();
  dirty_ = false;
  ++changes_;
}

// A step against the server. What fails in a transaction has ended it.
template <typename Step>
auto Session::guarded(Step step) {
  try {
    return step();
  } catch (...) {
    lose();
    throw;
  }
}

void Session::needTransaction() {
  if (!inBatch_ || link().inTransaction()) return;
  link().begin();
  begun_ = std::chrono::steady_clock::now();
  held_.clear();
}

bool Session::ownerExists(const Table& table, std::int64_t owner) {
  const Field number = text::decimal(owner);
  const Field both[] = {number, number};
  const auto found =
      link_->query(dialect_.holdOwner(table.owners), std::span(both).first(table.owners ? 2 : 1));
  held_.insert(owner);
  return !table.owners || (!found.empty() && found[0].at(0).has_value());
}

void Session::holdOwner(const Table& table, std::int64_t owner) {
  needTransaction();
  if (held_.contains(owner)) return;
  if (!ownerExists(table, owner) && batchOwner_ == owner) database::fail(number::recordGone);
}

std::vector<Fields> Session::ask(const Plan& plan, const std::string& statement,
                                 const std::vector<jet::Literal>& values) {
  return link_->query(statement, parametersOf(plan, values));
}

// Events that wait to travel are among the rows that somebody reads now.
void Session::beforeReading(const Plan& plan) {
  if (plan.table->events != nullptr && !waiting_.empty()) save();
  link();
  needTransaction();
}

std::vector<Fields> Session::rows(const Plan& plan, const std::string& statement,
                                  const std::vector<jet::Literal>& values) {
  if (!canBeStored(values)) return {};
  if (isAnswered(plan, statement, parametersOf(plan, values))) return answered_.rows;
  return guarded([&] {
    beforeReading(plan);
    const bool byName = !plan.shape.conditions.empty() && plan.shape.conditions[0].isText;
    if (inBatch_ && plan.table->isOwners && byName) return ownersByName(plan, values);
    auto found = ask(plan, statement, values);
    if (!inBatch_ && plan.table->isOwners)
      answered_ = {&statement, parametersOf(plan, values), found, std::chrono::steady_clock::now()};
    return found;
  });
}

// A display asks for its exchange and at once for the same again.
bool Session::isAnswered(const Plan& plan, const std::string& statement, const Fields& values) const {
  constexpr std::chrono::milliseconds atOnce{100};
  return !inBatch_ && plan.table->isOwners && answered_.statement == &statement &&
         answered_.values == values && std::chrono::steady_clock::now() - answered_.when < atOnce;
}

// Whoever adds events of an owner holds it from here on, and whoever finds none by this name may add one:
// nobody else may meanwhile. An owner is never waited for with the list of them in hand.
std::vector<Fields> Session::ownersByName(const Plan& plan, const std::vector<jet::Literal>& values) {
  for (bool listHeld = false;;) {
    auto found = ask(plan, plan.rows, values);
    if (found.empty()) {
      if (listHeld) return found;
      link_->query(dialect_.holdOwners());
      listHeld = true;
      continue;
    }
    const std::int64_t owner = numberFrom(found[0].at(0));
    if (held_.contains(owner)) return found;
    if (listHeld) {
      save();
      needTransaction();
      listHeld = false;
    }
    if (ownerExists(*plan.table, owner)) return found;
  }
}

std::vector<std::int64_t> Session::keys(const Plan& plan, const std::vector<jet::Literal>& values) {
  if (!canBeStored(values)) return {};
  return guarded([&] {
    beforeReading(plan);
    const auto rows = ask(plan, plan.keys, values);
    return rows.empty() ? std::vector<std::int64_t>{} : numbersFrom(rows[0].at(0).value_or(u""));
  });
}

std::vector<Fields> Session::rowsByKey(const Plan& plan, std::span<const std::int64_t> keys) {
  return guarded([&] {
    beforeReading(plan);
    const Field array = text::fromUtf8(arrayOf(keys));
    return link_->query(plan.byKey, {&array, 1});
  });
}

Session::Found Session::findSame(const Plan& plan, const std::vector<jet::Literal>& values) {
  Found found;
  if (!canBeStored(values)) return found;
  guarded([&] {
    link();
    if (inBatch_) {
      holdOwner(*plan.table, values.at(plan.values.at(0)).number);
      const std::u16string identity = identityOf(plan, values);
      found.waiting = waiting_.holds(identity);
      if (found.waiting) return;
      if (const auto* keys = findExpected(plan, identity)) {
        found.keys = *keys;
        return;
      }
    }
    found.rows = ask(plan, plan.rows, values);
  });
  return found;
}

void Session::expect(std::span<const database::Statement> statements) {
  expected_.clear();
  if (!inBatch_) return;
  for (const database::Statement& statement : statements) {
    const Plan& plan = plans_->find(statement.text(), lifted);
    if (plan.special != Plan::Special::sameEvent || !canBeStored(lifted.literals)) continue;
    std::vector<Field> fields;
    for (const std::size_t place : plan.places) fields.push_back(toField(lifted.literals.at(place)));
    expected_.add(identityOf(plan, lifted.literals), std::move(fields));
  }
}

// Their owner is held, so that nobody else adds one meanwhile.
const std::vector<std::int64_t>* Session::findExpected(const Plan& plan, const std::u16string& identity) {
  if (const auto* keys = expected_.known(identity)) return keys;
  if (!expected_.contains(identity)) return nullptr;
  expected_.take(link_->query(plan.many, expected_.ask(identity)));
  return expected_.known(identity);
}

std::int64_t Session::takeNumber(const Table& table) {
  const std::int64_t next = guarded([&] {
    link();
    needTransaction();
    return numberFrom(link_->query(dialect_.nextNumber(table.definition())).at(0).at(0));
  });
  if (next > limitOf(table.columns[*table.key].type))
    database::fail(number::badValue, table.columns[*table.key].name);
  return next;
}

void Session::add(const Table& table, const NewRow& row) {
  ++changes_;
  guarded([&] {
    link();
    needTransaction();
  });
  if (inBatch_ && table.events != nullptr && !row.at(*table.key)) return addToWaiting(table, row);
  if (inBatch_ && table.events != nullptr) save();
  addNow(table, row);
}

void Session::addToWaiting(const Table& table, const NewRow& row) {
  const auto& owner = row.at(table.column(table.events->owner, number::unknownName));
  if (owner && !automation::isNull(*owner)) guarded([&] { holdOwner(table, automation::toLong(*owner)); });
  waiting_.add(table, row);
  saveIfDue();
}

void Session::addNow(const Table& table, const NewRow& row) {
  guarded([&] {
    needTransaction();
    const std::int64_t key = insert(table, row);
    dirty_ = inBatch_;
    if (!table.isOwners || !inBatch_) return;
    batchOwner_ = key;
    save();  // nobody else may add a name until then
  });
}

std::int64_t Session::insert(const Table& table, const NewRow& row) {
  std::vector<std::size_t> columns;
  Fields fields;
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (!row[i]) continue;
    columns.push_back(i);
    fields.push_back(toField(*row[i]));
  }
  const std::string key = table.key ? dialect_.quoted(table.columns[*table.key].name) : std::string{};
  const auto added = link_->query(dialect_.insert(table.definition(), columns, key), fields);
  return added.empty() ? 0 : numberFrom(added[0].at(0));
}

void Session::change(const Table& table, std::int64_t key, const NewRow& fields) {
  ++changes_;
  expected_.forgetAnswers();
  std::string statement;
  Fields values;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (!fields[i]) continue;
    statement += (statement.empty() ? "update " + dialect_.name(table.name) + " set " : ", ") +
                 dialect_.quoted(table.columns[i].name) + " = " + dialect_.parameter(table.columns[i].type);
    values.push_back(toField(*fields[i]));
  }
  if (values.empty()) return;
  statement += " where " + dialect_.quoted(table.columns[*table.key].name) + " = " + dialect_.number();
  values.emplace_back(text::decimal(key));
  const std::int64_t changed = guarded([&] {
    if (table.events != nullptr && !waiting_.empty()) save();
    link();
    needTransaction();
    return link_->change(statement, values);
  });
  if (changed == 0) database::fail(number::recordGone);
  dirty_ = inBatch_;
  if (table.isOwners && inBatch_) batchOwner_ = key;
  saveIfDue();
}

void Session::remove(const Plan& plan, const std::vector<jet::Literal>& values) {
  ++changes_;
  expected_.forgetAnswers();
  if (!canBeStored(values)) return;
  guarded([&] {
    beforeReading(plan);
    link_->change(plan.rows, parametersOf(plan, values));
    dirty_ = inBatch_;
  });
  saveIfDue();
}

// A replica keeps nothing, but shows what is kept. Another station may keep its own between the look and the
// keeping: then there is something to be seen.
database::Agreement Session::agree(std::u16string_view subject, const database::Agreement& own) {
  const Field about = std::u16string(subject), values[] = {about, own.name, own.mark, about, about};
  return guarded([&] {
    link();
    needTransaction();
    auto kept = link_->query(dialect_.agreed(), {&about, 1});
    for (int times = 0; times < 2 && kept.empty(); ++times) kept = link_->query(dialect_.agree(), values);
    if (kept.empty()) database::fail(number::locked);
    return database::Agreement{kept[0].at(0).value_or(u""), kept[0].at(1).value_or(u"")};
  });
}

std::int64_t Session::highestEvent(const Table& table) {
  return guarded([&] {
    const auto rows = link().query("select max(" + dialect_.quoted(table.events->key) + ")::text from " +
                                   dialect_.name(table.name));
    return numberFrom(rows.at(0).at(0).value_or(u"0"));
  });
}

// Who adds gives numbers one after the other, each with the commit that makes it seen: none comes late.
std::vector<database::Arrival> Session::eventsAfter(const Table& table, std::int64_t number,
                                                    std::size_t most) {
  const std::string key = dialect_.quoted(table.events->key), owner = dialect_.quoted(table.events->owner);
  const std::string query = "select " + owner + "::text, " + key + "::text from " +
                            dialect_.name(table.name) + " where " + key + " > " + dialect_.number() +
                            " order by " + key;
  const Field from = text::decimal(number);
  return guarded([&] {
    std::vector<database::Arrival> all;
    for (const Fields& row : link().query(dialect_.limited(query, static_cast<int>(most)), {&from, 1}))
      all.push_back({numberFrom(row.at(0).value_or(u"0")), numberFrom(row.at(1))});
    return all;
  });
}

// In the order of the key, so that the server walks along its index.
std::optional<database::Latest> Session::latest(const Table& table, std::int64_t owner, std::int64_t mark) {
  const database::OwnerTable* owners = database::findEvents(documented_->descriptions())->owners;
  if (owners == nullptr) return {};
  const std::string events = dialect_.name(table.name), key = dialect_.quoted(table.events->key);
  const std::string query =
      "select " + dialect_.read("o." + dialect_.quoted(owners->listed), database::ColumnType::dateTime) +
      ", (" +
      dialect_.limited("select '1' from " + events + " where " + key + " > " + dialect_.number() + " and " +
                           dialect_.quoted(table.events->owner) + " = o." + dialect_.quoted(owners->key) +
                           " order by " + key,
                       1) +
      "), (select max(" + key + ") from " + events + ")::text from " + dialect_.name(owners->table) +
      " o where o." + dialect_.quoted(owners->key) + " = " + dialect_.number();
  const Field values[] = {text::decimal(mark), text::decimal(owner)};
  return guarded([&]() -> std::optional<database::Latest> {
    const auto rows = link().query(query, values);
    if (rows.empty()) return {};
    return database::Latest{rows[0].at(0).value_or(u""), rows[0].at(1).has_value(),
                            numberFrom(rows[0].at(2).value_or(u"0"))};
  });
}

const database::LampTable* Session::lampTable() const {
  if (!keepsReceipts_) return nullptr;
  for (const database::Description& description : documented_->descriptions())
    if (description.lamps != nullptr) return description.lamps;
  return nullptr;
}

void Session::beside(const std::function<void(Link&)>& step) {
  if (inBatch_) database::fail(number::invalidOperation);
  guarded([&] {
    Link& to = link();
    to.begin();
    step(to);
    to.commit();
  });
}

std::vector<Fields> Session::askBeside(const std::string& statement, std::span<const Field> values) {
  return guarded([&] { return link().query(statement, values); });
}

void Session::beginBatch() {
  if (inBatch_) database::fail(number::invalidOperation);
  inBatch_ = true;
  batchOwner_.reset();
}

void Session::checkpoint() {
  if (inBatch_) save();
}

void Session::endBatch() {
  if (!inBatch_) return;
  const auto leave = [&] {
    inBatch_ = false;
    batchOwner_.reset();
    expected_.clear();
  };
  try {
    save();
  } catch (...) {
    leave();
    throw;
  }
  leave();
}

void Session::saveIfDue() {
  if (!inBatch_) return;
  const auto passed = std::chrono::steady_clock::now() - begun_;
  if (waiting_.enough() || passed >= std::chrono::milliseconds(options_.longestUnsavedMilliseconds)) save();
}

void Session::save() {
  if (!link_ || !link_->inTransaction()) return;
  flush();
  guarded([&] {
    link_->commit();
    expected_.forgetAnswers();  // others may add from here on
    held_.clear();
    dirty_ = false;
  });
}

// All rows at once; where the server refuses, one after the other up to the one that it does not take, so
// that what was reported as added before is stored.
void Session::flush() {
  if (waiting_.empty()) return;
  const WaitingEvents events = std::exchange(waiting_, {});
  guarded([&] { link_->query(dialect_.savepoint()); });
  try {
    link_->change(dialect_.insertMany(events.table().definition(), events.columns()), events.arrays());
  } catch (const database::DatabaseError& failure) {
    if (link_->lost() || failure.number() == number::locked) {
      lose();
      throw;
    }
    guarded([&] { link_->query(dialect_.backToSavepoint()); });
    flushOneByOne(events);
  }
}

void Session::flushOneByOne(const WaitingEvents& events) {
  for (const NewRow& row : events.rows()) {
    guarded([&] { link_->query(dialect_.savepoint()); });
    try {
      insert(events.table(), row);
    } catch (const database::DatabaseError&) {
      if (link_->lost()) {
        lose();
        throw;
      }
      guarded([&] {
        link_->query(dialect_.backToSavepoint());
        link_->commit();
      });
      lose();
      throw;
    }
  }
}

}  // namespace vordane::odbc
