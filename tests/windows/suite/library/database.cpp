#include "library/database.h"

#include <sqlite3.h>

#include <cstdlib>
#include <memory>

#include "library/text_files.h"
#include "library/waiting.h"

namespace vordane::suite {
namespace {

constexpr int lockMilliseconds = 30000;

int addRow(void* rows, int count, char** values, char**) {
  auto& text = *static_cast<std::string*>(rows);
  if (!text.empty()) text += '\n';
  for (int i = 0; i < count; ++i) text += std::string(i == 0 ? "" : "|") + (values[i] ? values[i] : "");
  return 0;
}

}  // namespace

std::string sql(const Path& file, const std::string& statement) {
  sqlite3* opened = nullptr;
  const int open = sqlite3_open_v2(utf8(file).c_str(), &opened, SQLITE_OPEN_READWRITE, nullptr);
  const std::unique_ptr<sqlite3, int (*)(sqlite3*)> database(opened, sqlite3_close);
  if (open != SQLITE_OK) throw Failure(utf8(file) + " can't be opened");
  sqlite3_busy_timeout(opened, lockMilliseconds);
  std::string rows;
  if (sqlite3_exec(opened, statement.c_str(), addRow, &rows, nullptr) != SQLITE_OK)
    throw Failure(statement + ": " + sqlite3_errmsg(opened));
  return rows;
}

int stored() {
  return std::atoi(sql(layout().faults(), "SELECT count(*) FROM FaultDisplay").c_str());
}

std::string integrity(const Path& file) {
  return sql(file, "PRAGMA integrity_check");
}

void addJob(const Job& job) {
  const auto number = [](int value) { return std::to_string(value); };
  sql(layout().schedule(),
      "INSERT INTO Options (Key, Wait, ErrorStop, Count, Log, Log2, FileByte, File, Kind) VALUES (" +
          number(job.key) + ", " + number(job.wait) + ", " + (job.errorStop ? "-1" : "0") + ", " +
          number(job.runs) + ", -1, -1, " + number(job.thousands) + ", '" + job.log + "', 2)");
}

}  // namespace vordane::suite
