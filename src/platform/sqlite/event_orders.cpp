#include "platform/sqlite/event_orders.h"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <utility>

#include "platform/sqlite/description_order.h"
#include "platform/sqlite/errors.h"

namespace vordane::sqlite {
namespace {

using Pieces = std::vector<std::string>;

// The sort keys of a kind's texts, those that are asked for.
Pieces piecesOf(std::string_view kind, const std::vector<std::size_t>& texts) {
  Pieces all;
  for (auto end = kind.find('\xFF'); end != kind.npos; end = kind.find('\xFF')) {
    all.emplace_back(kind.substr(0, end));
    kind.remove_prefix(end + 1);
  }
  all.emplace_back(kind);
  Pieces pieces;
  for (const std::size_t text : texts) pieces.push_back(text < all.size() ? all[text] : std::string());
  return pieces;
}

std::string_view blobOf(sqlite3_value* value) {
  const void* const bytes = sqlite3_value_blob(value);
  if (bytes == nullptr) return "";  // of no bytes, and comparing wants a place all the same
  return {static_cast<const char*>(bytes), static_cast<std::size_t>(sqlite3_value_bytes(value))};
}

// No exception may pass through SQLite.
void collectStep(sqlite3_context* context, int count, sqlite3_value** values) noexcept {
  auto& collecting = *static_cast<Collecting*>(sqlite3_user_data(context));
  try {
    if (collecting.events != nullptr)
      collecting.events->add(blobOf(values[0]), sqlite3_value_int64(values[1]),
                             count > 2 ? std::optional(blobOf(values[2])) : std::nullopt);
  } catch (...) {
    collecting.failure = std::current_exception();
    sqlite3_result_error_code(context, SQLITE_ABORT);
  }
}

void collectFinal(sqlite3_context* context) noexcept {
  sqlite3_result_null(context);
}

}  // namespace

std::uint32_t Kinds::numberOf(std::string_view kind) {
  if (kind == last_) return lastNumber_;
  const auto [found, isNew] =
      numbers_.try_emplace(std::string(kind), static_cast<std::uint32_t>(numbers_.size()));
  last_ = found->first;
  return lastNumber_ = found->second;
}

std::vector<std::uint32_t> Kinds::places(const std::vector<std::size_t>& texts,
                                         std::size_t& placeCount) const {
  std::vector<std::pair<Pieces, std::uint32_t>> ranked;
  for (const auto& [kind, number] : numbers_) ranked.emplace_back(piecesOf(kind, texts), number);
  std::sort(ranked.begin(), ranked.end());
  std::vector<std::uint32_t> places(numbers_.size());
  placeCount = 0;
  for (std::size_t i = 0; i < ranked.size(); ++i) {
    if (i == 0 || ranked[i].first != ranked[i - 1].first) ++placeCount;
    places[ranked[i].second] = static_cast<std::uint32_t>(placeCount - 1);
  }
  return places;
}

void CollectedEvents::add(std::string_view moment, std::int64_t key, std::optional<std::string_view> kind) {
  const bool same =
      moment.size() == moment_.size() && std::memcmp(moment.data(), moment_.data(), moment.size()) == 0;
  if (!same) {
    if (moment < moment_) fail(number::damaged);
    closeGroup();
    moment_.assign(moment);
  }
  if (kind && kind->empty()) fail(number::damaged);
  beyondKeys_ |= !hasShortKey(key);
  events_.push_back({static_cast<std::uint32_t>(key), kind ? kinds_.numberOf(*kind) : 0});
}

// Within one moment the index goes by hash; the order goes by key. Mostly a few events share a moment.
void CollectedEvents::closeGroup() {
  const auto begin = events_.begin() + static_cast<std::ptrdiff_t>(std::exchange(group_, events_.size()));
  if (events_.end() - begin > 1)
    std::sort(begin, events_.end(), [](const Event& a, const Event& b) { return a.key < b.key; });
}

std::vector<std::uint32_t> CollectedEvents::byTime() const {
  std::vector<std::uint32_t> keys;
  keys.reserve(events_.size());
  for (const Event& event : events_) keys.push_back(event.key);
  return keys;
}

std::vector<std::uint32_t> CollectedEvents::byKind(const std::vector<std::size_t>& texts) const {
  std::size_t placeCount = 0;
  const std::vector<std::uint32_t> places = kinds_.places(texts, placeCount);
  std::vector<std::size_t> next(placeCount + 1, 0);
  for (const Event& event : events_) ++next[places[event.kind] + 1];
  std::partial_sum(next.begin(), next.end(), next.begin());
  std::vector<std::uint32_t> keys(events_.size());
  for (const Event& event : events_) keys[next[places[event.kind]]++] = event.key;
  return keys;
}

void registerCollect(Connection& connection, Collecting& collecting) {
  for (const int arguments : {2, 3}) {
    const int result = sqlite3_create_function_v2(connection.handle(), "vordane_collect", arguments,
                                                  SQLITE_UTF16LE | SQLITE_DIRECTONLY, &collecting, nullptr,
                                                  &collectStep, &collectFinal, nullptr);
    if (result != SQLITE_OK) connection.raise(result);
  }
}

// The engine goes through the index by itself: stepping row by row would double the time.
CollectedEvents collectEvents(Connection& connection, Collecting& collecting, std::int64_t owner,
                              bool withKinds) {
  const ReadScope reading(connection);
  CollectedEvents events;
  Statement rows(connection,
                 withKinds ? "SELECT vordane_collect(Moment, Count, Kind) FROM VordaneFaultIndex WHERE ID = ?"
                           : "SELECT vordane_collect(Moment, Count) FROM VordaneFaultIndex WHERE ID = ?");
  rows.bind(1, owner);
  collecting = {&events, nullptr};
  try {
    rows.step();
    collecting.events = nullptr;
  } catch (const database::DatabaseError&) {
    collecting.events = nullptr;
    if (collecting.failure) std::rethrow_exception(collecting.failure);
    throw;
  }
  events.finish();
  return events;
}

}  // namespace vordane::sqlite
