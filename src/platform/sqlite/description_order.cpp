#include "platform/sqlite/description_order.h"

#include <limits>

#include "platform/sqlite/errors.h"
#include "platform/sqlite/text_rules.h"

namespace vordane::sqlite {
namespace {

constexpr std::size_t stepsBetweenProgress = 2048;

// An owner that has more than this part of all events is found by reading the whole table.
constexpr std::int64_t fewOfAll = 4;

constexpr const char* amongOthers =
    "SELECT f.{key} FROM VordaneFaultIndex AS x CROSS JOIN {table} AS f ON f.{key} = x.Count WHERE x.ID = ?";
constexpr const char* mostOfAll =
    "SELECT f.{key} FROM {table} AS f WHERE f.{owner} = ? AND typeof(f.{owner}) = 'integer'";

std::string orderOf(const std::vector<std::size_t>& kinds, const char* moment) {
  std::string order = " ORDER BY vordane_sorted(f.{description}), ";
  for (const std::size_t kind : kinds) order += "vordane_key(f.{kind" + std::to_string(kind) + "}), ";
  return order + moment + ", f.{key}";
}

// The sorter takes as much memory as the cache may: together they keep to the cache's size.
class HalfTheCache {
 public:
  explicit HalfTheCache(Connection& connection) : connection_(connection) {
    connection_.runMaintenance("PRAGMA cache_size = -32768");
  }
  ~HalfTheCache() {
    try {
      connection_.runMaintenance(wholeCache);
    } catch (const database::DatabaseError&) {
      // A smaller cache is slower, nothing else.
    }
  }
  HalfTheCache(const HalfTheCache&) = delete;
  HalfTheCache& operator=(const HalfTheCache&) = delete;

 private:
  Connection& connection_;
};

std::int64_t answerOf(Connection& connection, std::string_view sql, std::int64_t value) {
  Statement statement(connection, sql);
  statement.bind(1, value);
  return statement.step() ? statement.integer(0) : 0;
}

}  // namespace

bool hasShortKey(std::int64_t key) {
  return key >= 0 && key <= std::numeric_limits<std::uint32_t>::max();
}

DescriptionOrder::DescriptionOrder(Connection& connection) : connection_(connection) {
  const int result = sqlite3_create_function_v2(connection.handle(), "vordane_sorted", 1,
                                                SQLITE_UTF16LE | SQLITE_DETERMINISTIC | SQLITE_DIRECTONLY,
                                                this, &keyFunction, nullptr, nullptr, nullptr);
  if (result != SQLITE_OK) connection.raise(result);
}

void DescriptionOrder::step() {
  if (++steps_ % stepsBetweenProgress == 0) connection_.progress(steps_ / 2, rows_);
}

// The sort key of a text, Null for Null, which sorts first. No exception may pass through SQLite.
void DescriptionOrder::keyFunction(sqlite3_context* context, int, sqlite3_value** values) noexcept {
  auto& order = *static_cast<DescriptionOrder*>(sqlite3_user_data(context));
  order.step();
  if (sqlite3_value_type(values[0]) == SQLITE_NULL) return sqlite3_result_null(context);
  try {
    order.key_.clear();
    if (sqlite3_value_type(values[0]) == SQLITE_BLOB) {  // behind every text
      order.key_.push_back('\xFF');
      order.key_.append(static_cast<const char*>(sqlite3_value_blob(values[0])),
                        static_cast<std::size_t>(sqlite3_value_bytes(values[0])));
    } else {
      const void* const text = sqlite3_value_text16(values[0]);
      appendSortKey(unitsOf(text, sqlite3_value_bytes16(values[0]), order.copy_), order.key_);
    }
    sqlite3_result_blob64(context, order.key_.data(), order.key_.size(), SQLITE_TRANSIENT);
  } catch (...) {
    sqlite3_result_error_nomem(context);
  }
}

SharedKeys DescriptionOrder::of(const Table& table, std::int64_t owner,
                                const std::vector<std::size_t>& kinds) {
  const ReadScope reading(connection_);
  const auto mine = answerOf(connection_, "SELECT count(*) FROM VordaneFaultIndex WHERE ID = ?", owner);
  const auto all = answerOf(connection_, eventSql(table, "SELECT coalesce(max({key}), ?) FROM {table}"), 0);
  rows_ = static_cast<std::size_t>(mine);
  steps_ = 0;
  const auto keys = std::make_shared<std::vector<std::uint32_t>>();
  keys->reserve(rows_);
  const HalfTheCache half(connection_);
  const std::string sql = mine > all / fewOfAll ? mostOfAll + orderOf(kinds, "vordane_moment(f.{moment})")
                                                : amongOthers + orderOf(kinds, "x.Moment");
  Statement rows(connection_, eventSql(table, sql));
  rows.bind(1, owner);
  for (; rows.step(); step()) {
    if (!hasShortKey(rows.integer(0))) return {};
    keys->push_back(static_cast<std::uint32_t>(rows.integer(0)));
  }
  return keys;
}

}  // namespace vordane::sqlite
