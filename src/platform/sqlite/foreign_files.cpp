#include "platform/sqlite/foreign_files.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "platform/sqlite/errors.h"
#include "text/text.h"
#include "text/utf8.h"

namespace vordane::sqlite {
namespace {

// A description has a few hundred characters, and of a longer text only the beginning is shown; this is what
// a row may cost on the way there.
constexpr int largestValue = 256 << 20;
constexpr int mostColumns = 64;  // a bit for each is kept

bool isWordPart(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
         static_cast<unsigned char>(c) >= 0x80;
}

// SQL text without what is quoted and without comments.
std::string bare(std::string_view sql) {
  struct Pair {
    std::string_view begin, end;
  };
  constexpr Pair pairs[] = {{"'", "'"}, {"\"", "\""}, {"`", "`"}, {"[", "]"}, {"--", "\n"}, {"/*", "*/"}};
  std::string text;
  while (!sql.empty()) {
    const auto* pair = std::find_if(std::begin(pairs), std::end(pairs),
                                    [&](const Pair& known) { return sql.starts_with(known.begin); });
    if (pair == std::end(pairs)) {
      text.push_back(sql.front());
      sql.remove_prefix(1);
      continue;
    }
    text.push_back(' ');
    const auto end = sql.find(pair->end, pair->begin.size());
    sql.remove_prefix(end == std::string_view::npos ? sql.size() : end + pair->end.size());
  }
  return text;
}

bool hasCheck(std::string_view sql) {
  constexpr std::string_view word = "check";
  const std::string text = text::toUtf8(text::toLower(text::fromUtf8(bare(sql))));
  for (auto at = text.find(word); at != std::string::npos; at = text.find(word, at + 1)) {
    const bool begins = at == 0 || !isWordPart(text[at - 1]);
    const bool ends = at + word.size() == text.size() || !isWordPart(text[at + word.size()]);
    if (begins && ends) return true;
  }
  return false;
}

bool callsFunction(std::string_view sql) {
  return bare(sql).find('(') != std::string::npos;
}

using Refuses = bool (*)(std::string_view text);

struct Finalizer {
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};

// Whether one of the texts that a statement gives is to be refused; without `refuses` each of them is.
bool anyRefused(sqlite3* handle, const char* sql, Refuses refuses) {
  sqlite3_stmt* prepared = nullptr;
  int result = sqlite3_prepare_v2(handle, sql, -1, &prepared, nullptr);
  const std::unique_ptr<sqlite3_stmt, Finalizer> statement(prepared);
  if (result == SQLITE_OK) result = sqlite3_step(prepared);
  for (; result == SQLITE_ROW; result = sqlite3_step(prepared)) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(prepared, 0));
    if (refuses == nullptr || (text != nullptr && refuses(text))) return true;
  }
  if (result != SQLITE_DONE) failWith(sqlite3_extended_errcode(handle));
  return false;
}

struct Look {
  const char* sql;
  Refuses refuses;
};
constexpr Look looks[] = {
    {"SELECT sql FROM sqlite_schema WHERE type = 'table'", hasCheck},
    {"SELECT 1 FROM sqlite_schema AS t, pragma_table_xinfo(t.name) AS c WHERE t.type = 'table' AND c.hidden "
     "> 1",
     nullptr},
    {"SELECT c.dflt_value FROM sqlite_schema AS t, pragma_table_xinfo(t.name) AS c WHERE t.type = 'table'",
     callsFunction},
    {"SELECT 1 FROM sqlite_schema AS t, pragma_index_list(t.name) AS i WHERE t.type = 'table' AND i.partial",
     nullptr},
    {"SELECT 1 FROM sqlite_schema AS i, pragma_index_xinfo(i.name) AS c WHERE i.type = 'index' AND c.cid = "
     "-2",
     nullptr},
};

}  // namespace

void refuseSharedJournal(std::u16string_view path) {
  const std::u16string journal = std::u16string(path) + u"-journal";
  constexpr std::array<char, 8> mark{'\xd9', '\xd5', '\x05', '\xf9', '\x20', '\xa1', '\x63', '\xd7'};
  std::ifstream file(std::filesystem::path(journal), std::ios::binary);
  // The name of the further file stands at the end, with this mark behind it.
  if (!file || !file.seekg(-static_cast<std::streamoff>(mark.size()), std::ios::end)) return;
  std::array<char, mark.size()> end{};
  if (file.read(end.data(), end.size()) && end == mark)
    throw database::DatabaseError(number::damaged, u"A journal names further files: '" + journal + u"'.");
}

void limitValues(sqlite3* handle) {
  sqlite3_limit(handle, SQLITE_LIMIT_LENGTH, largestValue);
}

void limitColumns(sqlite3* handle) {
  sqlite3_limit(handle, SQLITE_LIMIT_COLUMN, mostColumns);
}

void refuseExpressions(sqlite3* handle) {
  for (const Look& look : looks)
    if (anyRefused(handle, look.sql, look.refuses))
      throw database::DatabaseError(number::notADatabase, u"The tables of the database run expressions.");
}

}  // namespace vordane::sqlite
