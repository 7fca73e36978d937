#include "platform/sqlite/fault_orders.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "platform/sqlite/description_order.h"
#include "platform/sqlite/errors.h"

namespace vordane::sqlite {
namespace {

std::array<std::string, 3> piecesOf(std::string_view kind) {
  std::array<std::string, 3> pieces;
  for (std::string& piece : pieces) {
    const auto end = std::min(kind.find('\xFF'), kind.size());
    piece = kind.substr(0, end);
    kind.remove_prefix(std::min(end + 1, kind.size()));
  }
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
    if (collecting.faults != nullptr)
      collecting.faults->add(blobOf(values[0]), sqlite3_value_int64(values[1]),
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

std::vector<std::uint32_t> Kinds::places(FaultOrder first, std::size_t& placeCount) const {
  struct Ranked {
    std::array<std::string, 3> key;
    std::uint32_t number;
  };
  std::vector<Ranked> ranked;
  for (const auto& [kind, number] : numbers_) {
    auto [fault, alarm, cpu] = piecesOf(kind);
    // CPU is behind Count where it is not the first, and never decides there.
    if (first == FaultOrder::fault) ranked.push_back({{fault, alarm, {}}, number});
    if (first == FaultOrder::alarm) ranked.push_back({{alarm, fault, {}}, number});
    if (first == FaultOrder::cpu) ranked.push_back({{cpu, fault, alarm}, number});
  }
  std::sort(ranked.begin(), ranked.end(), [](const Ranked& a, const Ranked& b) { return a.key < b.key; });
  std::vector<std::uint32_t> places(numbers_.size());
  placeCount = 0;
  for (std::size_t i = 0; i < ranked.size(); ++i) {
    if (i == 0 || ranked[i].key != ranked[i - 1].key) ++placeCount;
    places[ranked[i].number] = static_cast<std::uint32_t>(placeCount - 1);
  }
  return places;
}

void CollectedFaults::add(std::string_view moment, std::int64_t count, std::optional<std::string_view> kind) {
  const bool same =
      moment.size() == moment_.size() && std::memcmp(moment.data(), moment_.data(), moment.size()) == 0;
  if (!same) {
    if (moment < moment_) fail(number::damaged);
    closeGroup();
    moment_.assign(moment);
  }
  if (kind && kind->empty()) fail(number::damaged);
  beyondKeys_ |= !hasShortKey(count);
  counts_.push_back(static_cast<std::uint32_t>(count));
  if (kind) kinds_.push_back(numbers_.numberOf(*kind));
}

// Within one moment the index goes by hash; the order goes by Count. Mostly a few faults share a moment.
void CollectedFaults::closeGroup() {
  constexpr std::size_t few = 16;
  const std::size_t begin = group_, end = counts_.size();
  group_ = end;
  if (end - begin < 2) return;
  const bool withKinds = kinds_.size() == counts_.size();
  if (end - begin > few) return sortGroup(begin, end, withKinds);
  for (std::size_t i = begin + 1; i < end; ++i) {
    for (std::size_t k = i; k > begin && counts_[k] < counts_[k - 1]; --k) {
      std::swap(counts_[k], counts_[k - 1]);
      if (withKinds) std::swap(kinds_[k], kinds_[k - 1]);
    }
  }
}

void CollectedFaults::sortGroup(std::size_t begin, std::size_t end, bool withKinds) {
  std::vector<std::pair<std::uint32_t, std::uint32_t>> group;
  group.reserve(end - begin);
  for (std::size_t i = begin; i < end; ++i) group.emplace_back(counts_[i], withKinds ? kinds_[i] : 0);
  std::sort(group.begin(), group.end());
  for (std::size_t i = begin; i < end; ++i) {
    counts_[i] = group[i - begin].first;
    if (withKinds) kinds_[i] = group[i - begin].second;
  }
}

std::vector<std::uint32_t> CollectedFaults::byDate() const {
  std::vector<std::uint32_t> counts(size());
  for (std::size_t i = 0; i < counts.size(); ++i) counts[i] = counts_[i];
  return counts;
}

std::vector<std::uint32_t> CollectedFaults::byKind(FaultOrder first) const {
  std::size_t placeCount = 0;
  const std::vector<std::uint32_t> places = numbers_.places(first, placeCount);
  std::vector<std::size_t> next(placeCount + 1, 0);
  for (std::size_t i = 0; i < size(); ++i) ++next[places[kinds_[i]] + 1];
  for (std::size_t i = 1; i < next.size(); ++i) next[i] += next[i - 1];
  std::vector<std::uint32_t> counts(size());
  for (std::size_t i = 0; i < size(); ++i) counts[next[places[kinds_[i]]]++] = counts_[i];
  return counts;
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
CollectedFaults collectFaults(Connection& connection, Collecting& collecting, std::int64_t id,
                              bool withKinds) {
  const ReadScope reading(connection);
  CollectedFaults faults;
  Statement rows(connection,
                 withKinds ? "SELECT vordane_collect(Moment, Count, Kind) FROM VordaneFaultIndex WHERE ID = ?"
                           : "SELECT vordane_collect(Moment, Count) FROM VordaneFaultIndex WHERE ID = ?");
  rows.bind(1, id);
  collecting = {&faults, nullptr};
  try {
    rows.step();
    collecting.faults = nullptr;
  } catch (const database::DatabaseError&) {
    collecting.faults = nullptr;
    if (collecting.failure) std::rethrow_exception(collecting.failure);
    throw;
  }
  faults.finish();
  return faults;
}

}  // namespace vordane::sqlite
