#include "platform/odbc/identity.h"

#include <array>

#include "platform/odbc/errors.h"
#include "text/blanks.h"
#include "text/text.h"

namespace vordane::odbc {
namespace {

// Stands between the parts of an identity; no text that can travel holds it.
constexpr char16_t between = u'\0';

// What equal events share, in the order of an identity's parts.
std::array<std::u16string_view, 6> identityColumns(const database::EventTable& events) {
  return {events.owner, events.kind[0], events.kind[1], events.kind[2], events.moment, events.description};
}

void appendPart(std::u16string& identity, std::u16string_view part) {
  identity.append(text::toLower(text::withoutTrailingBlanks(part))).push_back(between);
}

}  // namespace

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

}  // namespace vordane::odbc
