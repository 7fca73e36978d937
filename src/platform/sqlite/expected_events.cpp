#include "platform/sqlite/expected_events.h"

#include <algorithm>
#include <new>
#include <numeric>
#include <tuple>

#include "platform/sqlite/text_rules.h"

namespace vordane::sqlite {

// The events as a table that statements of this engine can read, in the order of the index. SQLite's table
// and cursor begin with its own part.
struct ExpectedTable : sqlite3_vtab {
  ExpectedEvents* events;

  struct Cursor : sqlite3_vtab_cursor {
    std::size_t at;
  };
  enum Column { place, owner, moment, hash, firstText };

  static const sqlite3_module& module();

 private:
  static int connect(sqlite3* handle, void* events, int, const char* const*, sqlite3_vtab** out, char**) {
    const int result = sqlite3_declare_vtab(
        handle, "CREATE TABLE expected(place, owner, moment, hash, kind0, kind1, kind2, time, description)");
    if (result != SQLITE_OK) return result;
    *out = new (std::nothrow) ExpectedTable{{}, static_cast<ExpectedEvents*>(events)};
    return *out == nullptr ? SQLITE_NOMEM : SQLITE_OK;
  }
  static int disconnect(sqlite3_vtab* table) {
    delete static_cast<ExpectedTable*>(table);
    return SQLITE_OK;
  }
  static int bestIndex(sqlite3_vtab*, sqlite3_index_info*) { return SQLITE_OK; }
  static int open(sqlite3_vtab*, sqlite3_vtab_cursor** out) {
    *out = new (std::nothrow) Cursor{{}, 0};
    return *out == nullptr ? SQLITE_NOMEM : SQLITE_OK;
  }
  static int close(sqlite3_vtab_cursor* cursor) {
    delete static_cast<Cursor*>(cursor);
    return SQLITE_OK;
  }
  static int first(sqlite3_vtab_cursor* cursor, int, const char*, int, sqlite3_value**) {
    static_cast<Cursor*>(cursor)->at = 0;
    return SQLITE_OK;
  }
  static int next(sqlite3_vtab_cursor* cursor) {
    ++static_cast<Cursor*>(cursor)->at;
    return SQLITE_OK;
  }
  static int atEnd(sqlite3_vtab_cursor* cursor) {
    return static_cast<int>(static_cast<Cursor*>(cursor)->at >= eventsOf(cursor).order_.size());
  }
  static int rowid(sqlite3_vtab_cursor* cursor, sqlite3_int64* out) {
    *out = static_cast<sqlite3_int64>(static_cast<Cursor*>(cursor)->at);
    return SQLITE_OK;
  }
  static int column(sqlite3_vtab_cursor* cursor, sqlite3_context* context, int column);
  static const ExpectedEvents& eventsOf(const sqlite3_vtab_cursor* cursor) {
    return *static_cast<const ExpectedTable*>(cursor->pVtab)->events;
  }
};

int ExpectedTable::column(sqlite3_vtab_cursor* cursor, sqlite3_context* context, int column) {
  const ExpectedEvents& events = eventsOf(cursor);
  const std::size_t at = events.order_[static_cast<Cursor*>(cursor)->at];
  const ExpectedEvents::Event& event = events.events_[at];
  switch (column) {
    case place:
      sqlite3_result_int64(context, static_cast<sqlite3_int64>(at));
      break;
    case owner:
      sqlite3_result_int64(context, event.owner);
      break;
    case moment:
      sqlite3_result_blob64(context, event.moment.data(), event.moment.size(), SQLITE_STATIC);
      break;
    case hash:
      sqlite3_result_int64(context, event.hash);
      break;
    default: {
      const auto text = static_cast<std::size_t>(column - firstText);
      const auto begin = std::accumulate(event.sizes.begin(), event.sizes.begin() + text, event.texts);
      sqlite3_result_text64(context, reinterpret_cast<const char*>(events.texts_.data() + begin),
                            event.sizes.at(text) * sizeof(char16_t), SQLITE_STATIC, SQLITE_UTF16LE);
    }
  }
  return SQLITE_OK;
}

const sqlite3_module& ExpectedTable::module() {
  static const sqlite3_module functions = [] {
    sqlite3_module made{};
    made.xConnect = connect;  // without xCreate it is there for every connection that registers it, and in
                              // none of its files
    made.xDisconnect = disconnect;
    made.xBestIndex = bestIndex;
    made.xOpen = open;
    made.xClose = close;
    made.xFilter = first;
    made.xNext = next;
    made.xEof = atEnd;
    made.xColumn = column;
    made.xRowid = rowid;
    return made;
  }();
  return functions;
}

ExpectedEvents::ExpectedEvents(Connection& connection) : connection_(connection) {
  const int result = sqlite3_create_module_v2(connection.handle(), "vordane_expected",
                                              &ExpectedTable::module(), this, nullptr);
  if (result != SQLITE_OK) connection.raise(result);
}

void ExpectedEvents::add(std::int64_t owner, const EventTexts& texts) {
  if (looked_) forget();
  if (count_ == events_.size()) events_.emplace_back();
  Event& event = events_[count_++];
  event.owner = owner;
  event.texts = texts_.size();
  for (std::size_t i = 0; i < texts.size(); ++i) {
    event.sizes[i] = texts[i]->size();
    texts_.append(*texts[i]);
  }
  event.moment.clear();
  appendField(texts[EventColumns::moment], event.moment);
  event.hash = hashOf(texts);
  event.found.clear();
  event.alone = false;
}

void ExpectedEvents::forget() noexcept {
  count_ = next_ = 0;
  looked_ = asked_ = false;
  texts_.clear();
  order_.clear();
}

bool ExpectedEvents::inOrder(std::size_t a, std::size_t b) const {
  const auto keys = [](const Event& event) { return std::tie(event.owner, event.moment, event.hash); };
  return keys(events_[a]) < keys(events_[b]);
}

void ExpectedEvents::sort() {
  order_.resize(count_);
  std::iota(order_.begin(), order_.end(), std::size_t{0});
  const auto inIndexOrder = [this](std::size_t a, std::size_t b) { return inOrder(a, b); };
  std::sort(order_.begin(), order_.end(), inIndexOrder);
  for (std::size_t i = 1; i < order_.size(); ++i) {
    if (inOrder(order_[i - 1], order_[i])) continue;
    events_[order_[i - 1]].alone = events_[order_[i]].alone = true;
  }
}

// Without raising anything: an error belongs to the event that is asked for when it is met again.
bool ExpectedEvents::read() {
  const Running running(rows_);
  for (;;) {
    const std::optional<bool> row = rows_.tryStep();
    if (!row) return false;
    if (!*row) return true;
    events_[static_cast<std::size_t>(rows_.integer(0))].found.push_back(rows_.integer(1));
  }
}

// The cross joins fix what is read first; the row itself decides, the hash only finds it.
void ExpectedEvents::prepare(const Table& table) {
  const Connection::Maintenance declaring(connection_);  // of the columns, when it is first met
  rows_ = Statement(
      connection_,
      eventSql(table,
               "SELECT e.place, x.Count FROM vordane_expected AS e CROSS JOIN VordaneFaultIndex AS x "
               "CROSS JOIN {table} AS f ON f.{key} = x.Count WHERE x.ID = e.owner AND x.Moment = e.moment "
               "AND x.Hash = e.hash AND f.{kind0} = e.kind0 COLLATE vordane_text "
               "AND f.{kind1} = e.kind1 COLLATE vordane_text AND f.{kind2} = e.kind2 COLLATE vordane_text "
               "AND f.{moment} = e.time COLLATE vordane_text "
               "AND f.{description} = e.description COLLATE vordane_text AND f.{owner} = e.owner"));
}

void ExpectedEvents::look(const Table& table) {
  if (count_ == 0) return;
  sort();
  if (!rows_) prepare(table);
  looked_ = read();
  if (looked_) return;
  const int reason = sqlite3_extended_errcode(connection_.handle());
  forget();
  if (!connection_.inTransaction()) connection_.raise(reason);
}

bool ExpectedEvents::is(const Event& event, std::int64_t owner, const EventTexts& texts) const {
  if (event.owner != owner) return false;
  std::size_t begin = event.texts;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    if (!texts[i] || !isSame(*texts[i], std::u16string_view(texts_).substr(begin, event.sizes[i])))
      return false;
    begin += event.sizes[i];
  }
  return true;
}

const std::vector<std::int64_t>* ExpectedEvents::next(std::int64_t owner, const EventTexts& texts) {
  if (!looked_ || next_ == count_ || !is(events_[next_], owner, texts)) return nullptr;
  asked_ = true;
  const Event& event = events_[next_++];
  return event.alone ? nullptr : &event.found;
}

std::optional<ExpectedEvents::Keys> ExpectedEvents::lastAsked(std::int64_t owner,
                                                              const EventTexts& texts) const {
  if (!asked_ || !is(events_[next_ - 1], owner, texts)) return std::nullopt;
  const Event& event = events_[next_ - 1];
  return Keys{event.moment, event.hash};
}

}  // namespace vordane::sqlite
