// What is held at once while an exchange's faults are put in order: at most 16 bytes for each of them, and
// what the engine's cache may take.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include "database/embedded.h"
#include "store/sort_orders.h"
#include "store/statements.h"
#include "text/utf8.h"
#include "work/counting.h"

namespace vordane::sqlite {
namespace {

constexpr std::size_t faults = 300000;
constexpr std::size_t cache = 64 << 20, smallThings = 1 << 20;

// Long beginnings in common, and many descriptions several times over.
constexpr const char* filling =
    "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 300000) "
    "INSERT INTO FaultDisplay(ID, Fault, Alarm, CPU, Date, Description) "
    "SELECT 1, printf('%02X', i % 40), iif(i % 3 = 0, 'MJ', 'MN'), 'MP   ', "
    "printf('20%02d/%02d/%02d %02d:%02d', 10 + i / 40000, 1 + i / 4000 % 12, 1 + i / 200 % 28, i / 9 % 24, i "
    "% 60), "
    "'Fault of the line circuit, module group 01, unit 02, port ' || i * 7919 % 100003 FROM n";

std::size_t held() {
  work::counted.mostBytes = work::counted.bytes;
  work::counted.mostEngineBytes = work::counted.engineBytes;
  return work::counted.bytes;
}

TEST(SortingMemory, SixteenBytesForEachFault) {
  EmbeddedUnderTest under;
  const std::u16string path = under.make(database::Layout::faults);
  sqlite3* handle = nullptr;
  ASSERT_EQ(sqlite3_open(text::toUtf8(path).c_str(), &handle), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(handle, filling, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(handle);
  sqlite3_close(handle);
  const auto database = under.engine().open(path, false);
  const std::u16string_view columns[] = {u"Count"};
  database->openRowList(store::faultsOfExchange(2, 0), columns);  // lays out the index
  for (store::SortKey key = 0; key < 2 * store::sortableColumns; ++key) {
    const std::size_t before = held();
    const auto rows = database->openRowList(store::faultsOfExchange(1, key), columns);
    while (!rows->isRead()) rows->readOn();
    ASSERT_EQ(rows->size(), faults);
    EXPECT_LE(work::counted.mostBytes - before, 16 * faults) << key;
    EXPECT_LE(work::counted.mostEngineBytes, cache + smallThings) << key;
    EXPECT_LE(work::counted.bytes - before, 4 * faults + 4096) << key;
  }
}

}  // namespace
}  // namespace vordane::sqlite
