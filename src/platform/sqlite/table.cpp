#include "platform/sqlite/table.h"

#include <algorithm>
#include <iterator>
#include <limits>

#include "platform/described.h"
#include "platform/sqlite/errors.h"
#include "text/dates.h"
#include "text/text.h"
#include "text/utf8.h"

namespace vordane::sqlite {
namespace {

struct DeclaredWord {
  std::u16string_view word;
  Kind kind;
};

// The first word found in a column's declaration decides.
constexpr DeclaredWord declaredKinds[] = {
    {u"bool", Kind::yesNo},  {u"yesno", Kind::yesNo},        {u"logical", Kind::yesNo},
    {u"bit", Kind::yesNo},   {u"datetime", Kind::date},      {u"timestamp", Kind::date},
    {u"date", Kind::date},   {u"smallint", Kind::integer16}, {u"int2", Kind::integer16},
    {u"int", Kind::integer}, {u"char", Kind::text},          {u"text", Kind::text},
    {u"clob", Kind::text},   {u"memo", Kind::text},
};

// Whether UTF-8 as SQLite reads it would give another text: it has no lone surrogates, and takes the last two
// characters of the first plane for unreadable.
bool changesInUtf8(std::u16string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] >= 0xFFFE) return true;
    if ((text[i] & 0xF800) != 0xD800) continue;
    const bool paired = text[i] < 0xDC00 && i + 1 < text.size() && (text[i + 1] & 0xFC00) == 0xDC00;
    if (!paired) return true;
    ++i;
  }
  return false;
}

// Of a type that a declaration in plain SQLite may not show.
std::optional<Kind> kindOf(database::ColumnType type) {
  switch (type) {
    case database::ColumnType::shortInteger:
    case database::ColumnType::shortAutoNumber:
      return Kind::integer16;
    case database::ColumnType::yesNo:
      return Kind::yesNo;
    default:
      return std::nullopt;
  }
}

std::optional<Kind> describedKind(database::Descriptions descriptions, std::u16string_view table,
                                  std::u16string_view column) {
  const database::ColumnDefinition* found = database::findColumn(descriptions, table, column);
  return found == nullptr ? std::nullopt : kindOf(found->type);
}

database::Value fitText(const Column& column, database::Value value, bool utf8File) {
  auto* const given = std::get_if<std::u16string>(&value);
  std::u16string text = given != nullptr ? std::move(*given) : automation::toText(value);
  if (utf8File && changesInUtf8(text)) fail(number::badValue, column.name);
  return text;
}

}  // namespace

std::optional<std::size_t> Table::find(std::u16string_view columnName) const {
  for (std::size_t i = 0; i < columns.size(); ++i)
    if (columns[i].name == columnName) return i;
  for (std::size_t i = 0; i < columns.size(); ++i)
    if (text::equalIgnoringCase(columns[i].name, columnName)) return i;
  return std::nullopt;
}

std::size_t Table::column(std::u16string_view columnName, int errorNumber) const {
  const auto found = find(columnName);
  if (!found) fail(errorNumber, columnName);
  return *found;
}

Kind kindOf(database::Descriptions descriptions, std::u16string_view table, std::u16string_view column,
            std::u16string_view declared) {
  if (const auto described = describedKind(descriptions, table, column)) return *described;
  const std::u16string folded = text::toLower(declared);
  for (const DeclaredWord& known : declaredKinds)
    if (text::contains(folded, known.word)) return known.kind;
  return Kind::other;
}

const database::EventTable* eventsOf(database::Descriptions descriptions) {
  const database::Description* found = database::findEvents(descriptions);
  return found == nullptr ? nullptr : found->events;
}

Affinity affinityOf(std::u16string_view declared) {
  const std::u16string folded = text::toLower(declared);
  if (text::contains(folded, u"int")) return Affinity::integer;
  for (const std::u16string_view word : {u"char", u"clob", u"text"})
    if (text::contains(folded, word)) return Affinity::text;
  return Affinity::other;
}

std::string quote(std::u16string_view name) {
  std::string quoted = "\"";
  for (const char c : text::toUtf8(name)) {
    quoted.push_back(c);
    if (c == '"') quoted.push_back(c);
  }
  quoted.push_back('"');
  return quoted;
}

std::optional<EventColumns> findEvents(const Table& table, const database::EventTable& description) {
  if (!table.autoNumber || !table.counted || table.find(description.key) != table.autoNumber)
    return std::nullopt;
  const auto find = [&](std::u16string_view name, Affinity affinity) {
    const auto found = table.find(name);
    return found && table.columns[*found].affinity == affinity ? found : std::nullopt;
  };
  const auto owner = find(description.owner, Affinity::integer);
  if (!owner) return std::nullopt;
  EventColumns columns{*owner, {}};
  const auto& kind = description.kind;
  const std::u16string_view texts[] = {kind[0], kind[1], kind[2], description.moment,
                                       description.description};
  for (std::size_t i = 0; i < columns.texts.size(); ++i) {
    const auto text = find(texts[i], Affinity::text);
    if (!text) return std::nullopt;
    columns.texts[i] = *text;
  }
  return columns;
}

std::string eventSql(const Table& table, std::string_view sql) {
  constexpr std::string_view textNames[] = {"kind0", "kind1", "kind2", "moment", "description"};
  const auto nameOf = [&](std::string_view mark) -> const std::string& {
    if (mark == "table") return table.quoted;
    if (mark == "key") return table.columns[*table.autoNumber].quoted;
    if (mark == "owner") return table.columns[table.events->owner].quoted;
    const auto* text = std::find(std::begin(textNames), std::end(textNames), mark);
    return table.columns[table.events->texts.at(static_cast<std::size_t>(text - textNames))].quoted;
  };
  std::string result;
  for (auto begin = sql.find('{'); begin != sql.npos; begin = sql.find('{')) {
    const auto end = sql.find('}', begin);
    result.append(sql.substr(0, begin)).append(nameOf(sql.substr(begin + 1, end - begin - 1)));
    sql.remove_prefix(end + 1);
  }
  return result.append(sql);
}

database::Value fit(const Column& column, database::Value value, bool utf8File) {
  if (automation::isNull(value) || automation::isEmpty(value))
    return column.kind == Kind::yesNo ? database::Value(false) : database::Value(automation::Null{});
  try {
    switch (column.kind) {
      case Kind::text:
        return fitText(column, std::move(value), utf8File);
      case Kind::date: {
        database::Value moment = fitText(column, std::move(value), utf8File);
        if (!text::isIsoText(std::get<std::u16string>(moment))) fail(number::badValue, column.name);
        return moment;
      }
      case Kind::yesNo:
        return automation::toBoolean(value);
      case Kind::integer16:
        return automation::toInteger(value);
      case Kind::integer:
        return automation::toLong(value);
      case Kind::other:
        break;
    }
    if (std::holds_alternative<std::u16string>(value)) return fitText(column, std::move(value), utf8File);
    return automation::toDouble(value);
  } catch (const automation::AutomationError&) {
    fail(number::badValue, column.name);
  }
}

std::int64_t limitOf(const Column& column) {
  return column.kind == Kind::integer16 ? std::numeric_limits<std::int16_t>::max()
                                        : std::numeric_limits<std::int32_t>::max();
}

}  // namespace vordane::sqlite
