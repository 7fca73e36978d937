// The index of faults under test: an open file, another program beside it, and rows as a grid has them.
#pragma once

#include <sqlite3.h>

#include <random>

#include "database/contract.h"
#include "database/embedded.h"
#include "platform/sqlite/text_rules.h"
#include "text/utf8.h"

namespace vordane::sqlite {

using database::addFault;
using database::column;
using database::Fault;
using database::findSame;
using database::isStored;
using database::Layout;
using database::shown;
using database::Value;

// Another SQLite program: it knows nothing of this system's functions and comparisons.
class OtherTool {
 public:
  explicit OtherTool(const std::u16string& path) { sqlite3_open(text::toUtf8(path).c_str(), &handle_); }
  ~OtherTool() { sqlite3_close(handle_); }
  OtherTool(const OtherTool&) = delete;
  OtherTool& operator=(const OtherTool&) = delete;
  // The first value of each row, one in a line; the error text when it fails.
  std::string run(const char* sql) {
    std::string out;
    char* error = nullptr;
    const auto row = [](void* lines, int, char** values, char**) {
      static_cast<std::string*>(lines)->append(values[0] ? values[0] : "Null").push_back('\n');
      return 0;
    };
    if (sqlite3_exec(handle_, sql, row, &out, &error) != SQLITE_OK) out = error;
    sqlite3_free(error);
    return out;
  }

 private:
  sqlite3* handle_ = nullptr;
};

inline constexpr std::u16string_view clauses[5][2] = {
    {u" Order by [Fault] Asc, [Alarm] Asc, [Date] Asc, [Count] Asc, [CPU] Asc, [Description] Asc",
     u" Order by [Fault] Desc, [Alarm] Desc, [Date] Desc, [Count] Desc, [CPU] Desc, [Description] Desc"},
    {u" Order by [Alarm] Asc, [Fault] Asc, [Date] Asc, [Count] Asc, [CPU] Asc, [Description] Asc",
     u" Order by [Alarm] Desc, [Fault] Desc, [Date] Desc, [Count] Desc, [CPU] Desc, [Description] Desc"},
    {u" Order by [Date] Asc, [Count] Asc, [Fault] Asc, [Alarm] Asc, [CPU] Asc, [Description] Asc",
     u" Order by [Date] Desc, [Count] Desc, [Fault] Desc, [Alarm] Desc, [CPU] Desc, [Description] Desc"},
    {u" Order by [CPU] Asc ,[Fault] Asc, [Alarm] Asc, [Date] Asc, [Count] Asc, [Description] Asc",
     u" Order by [CPU] Desc ,[Fault] Desc, [Alarm] Desc, [Date] Desc, [Count] Desc, [Description] Desc"},
    {u" Order by [Description] Asc, [Fault] Asc, [Alarm] Asc, [Date] Asc, [Count] Asc, [CPU] Asc",
     u" Order by [Description] Desc, [Fault] Desc, [Alarm] Desc, [Date] Desc, [Count] Desc, [CPU] Desc"}};

inline std::u16string randomText(std::mt19937& random) {
  constexpr std::u16string_view pieces[] = {u"",
                                            u"a",
                                            u"A",
                                            u"b ",
                                            u" b",
                                            u"é",
                                            u"É",
                                            u"ж",
                                            u"Ж",
                                            u"日",
                                            u"\uFFFD",
                                            u"2006/",
                                            u"\xD83D\xDE00",
                                            u"\xD800",
                                            std::u16string_view(u"\0", 1),
                                            u"_",
                                            u"z"};
  std::u16string text;
  for (unsigned i = random() % 3; i > 0; --i) text += pieces[random() % std::size(pieces)];
  return text;
}

class FaultIndexTest : public testing::Test {
 protected:
  std::unique_ptr<database::Database> open(bool readOnly = false) {
    return under_.engine().open(path_, readOnly);
  }
  std::vector<std::string> counts(database::Database& database, std::u16string_view clause) {
    const std::u16string_view count[] = {u"Count"};
    const auto rows =
        database.openRowList(u"SELECT * FROM FaultDisplay WHERE ID = 1" + std::u16string(clause), count);
    std::vector<std::string> all;
    std::vector<Value> values;
    for (std::size_t i = 0; i < rows->size(); ++i)
      if (rows->fetch(i, values)) all.push_back(shown(values[0]));
    return all;
  }
  std::string newestDate(database::Database& database) {
    const auto rows = database.openRecordset(u"SELECT * FROM FaultDisplay Order by [Date] Desc");
    return rows->isEmpty() ? "none" : shown(rows->get(u"Date"));
  }

  EmbeddedUnderTest under_;
  std::u16string path_ = under_.make(Layout::faults);
};

inline constexpr std::u16string_view allColumns[] = {u"Fault", u"Alarm",       u"Date",
                                                     u"CPU",   u"Description", u"Count"};

// The rows as the grid has them and as the documented statement gives them, a line each.
class AsTheGrid {
 public:
  explicit AsTheGrid(database::Database& database) : database_(database) {}
  std::vector<std::string> listed(std::u16string_view clause) const {
    const auto rows = database_.openRowList(statement(clause), allColumns);
    std::vector<std::string> lines;
    std::vector<Value> values;
    for (std::size_t i = 0; i < rows->size(); ++i)
      lines.push_back(rows->fetch(i, values) ? line([&](std::size_t k) { return values[k]; }) : "gone");
    return lines;
  }
  std::vector<std::string> walked(std::u16string_view clause) const {
    std::vector<std::string> lines;
    for (const auto rows = database_.openRecordset(statement(clause)); !rows->atEnd(); rows->moveNext())
      lines.push_back(line([&](std::size_t k) { return rows->get(allColumns[k]); }));
    return lines;
  }

 private:
  static std::u16string statement(std::u16string_view clause) {
    return u"SELECT * FROM FaultDisplay WHERE ID = 1" + std::u16string(clause);
  }
  template <class Field>
  static std::string line(const Field& field) {
    std::string line;
    for (std::size_t i = 0; i < std::size(allColumns); ++i) line += shown(field(i)) + "|";
    return line;
  }
  database::Database& database_;
};

inline void expectTheGridAsTheStatement(database::Database& database, std::size_t rows) {
  const AsTheGrid grid(database);
  for (const auto& [up, down] : clauses) {
    const auto wanted = grid.walked(up);
    EXPECT_EQ(wanted.size(), rows);
    EXPECT_EQ(grid.listed(up), wanted);
    EXPECT_EQ(grid.listed(down), grid.walked(down));
    EXPECT_EQ(grid.listed(down), std::vector(wanted.rbegin(), wanted.rend()));
  }
}

}  // namespace vordane::sqlite
