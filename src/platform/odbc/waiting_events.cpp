#include "platform/odbc/waiting_events.h"

#include <array>

#include "platform/odbc/errors.h"
#include "text/blanks.h"
#include "text/text.h"

namespace vordane::odbc {
namespace {

constexpr std::size_t mostRowsTogether = 1000;
constexpr std::size_t mostCharactersTogether = 4 << 20;

// Stands between the parts of an identity; no text that can travel holds it.
constexpr char16_t between = u'\0';

// What equal events share, in the order of an identity's parts.
std::array<std::u16string_view, 6> identityColumns(const database::EventTable& events) {
  return {events.owner, events.kind[0], events.kind[1], events.kind[2], events.moment, events.description};
}

void appendPart(std::u16string& identity, std::u16string_view part) {
  identity.append(text::toLower(text::withoutTrailingBlanks(part))).push_back(between);
}

// Empty for an event that equals none, since something of it is missing.
std::u16string identityOf(const Table& table, const NewRow& row) {
  std::u16string identity;
  for (const auto name : identityColumns(*table.events)) {
    const auto& value = row[table.column(name, number::unknownName)];
    if (!value || automation::isNull(*value)) return {};
    appendPart(identity, automation::toText(*value));
  }
  return identity;
}

std::u16string identityOf(const Plan& plan, const std::vector<jet::Literal>& values) {
  std::u16string identity;
  for (const auto name : identityColumns(*plan.table->events))
    for (std::size_t i = 0; i < plan.shape.conditions.size(); ++i)
      if (text::equalIgnoringCase(plan.shape.conditions[i].column, name))
        appendPart(identity, *toField(values.at(i)));
  return identity;
}

}  // namespace

void WaitingEvents::add(const Table& table, const NewRow& row) {
  table_ = &table;
  rows_.push_back(row);
  std::u16string identity = identityOf(table, row);
  if (identity.empty()) return;
  characters_ += identity.size();
  identities_.insert(std::move(identity));
}

bool WaitingEvents::holds(const Plan& plan, const std::vector<jet::Literal>& values) const {
  return identities_.contains(identityOf(plan, values));
}

bool WaitingEvents::enough() const {
  return rows_.size() >= mostRowsTogether || characters_ >= mostCharactersTogether;
}

std::vector<std::size_t> WaitingEvents::columns() const {
  std::vector<std::size_t> columns;
  for (std::size_t i = 0; i < table_->columns.size(); ++i)
    if (i != *table_->key) columns.push_back(i);
  return columns;
}

Fields WaitingEvents::arrays() const {
  Fields arrays;
  for (const std::size_t column : columns()) {
    std::u16string array;
    for (const NewRow& row : rows_) appendToArray(array, row[column] ? toField(*row[column]) : std::nullopt);
    array.push_back(u'}');
    arrays.emplace_back(std::move(array));
  }
  return arrays;
}

}  // namespace vordane::odbc
