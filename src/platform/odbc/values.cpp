#include "platform/odbc/values.h"

#include <algorithm>
#include <charconv>
#include <limits>

#include "platform/odbc/errors.h"
#include "text/dates.h"
#include "text/numbers.h"
#include "text/utf8.h"

namespace vordane::odbc {
namespace {

using database::ColumnType;

Value fitText(const database::ColumnDefinition& column, const Value& value) {
  std::u16string text = automation::toText(value);
  const bool fits = canTravel(text) && (column.type != ColumnType::dateTime || text::isIsoText(text));
  if (!fits) database::fail(number::badValue, column.name);
  return text;
}

double doubleFrom(std::u16string_view text) {
  const std::string digits = text::toUtf8(text);
  double number = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return number;
}

Value valueFrom(std::u16string_view text) {
  const double number = doubleFrom(text);
  const auto whole = static_cast<std::int32_t>(std::clamp<double>(
      number, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()));
  return whole == number ? Value(whole) : Value(number);
}

}  // namespace

Value fit(const database::ColumnDefinition& column, const Value& value) {
  if (automation::isNull(value) || automation::isEmpty(value))
    return column.type == ColumnType::yesNo ? Value(false) : Value(automation::Null{});
  try {
    switch (column.type) {
      case ColumnType::text:
      case ColumnType::dateTime:
        return fitText(column, value);
      case ColumnType::yesNo:
        return automation::toBoolean(value);
      case ColumnType::shortInteger:
      case ColumnType::shortAutoNumber:
        return automation::toInteger(value);
      case ColumnType::integer:
      case ColumnType::autoNumber:
        return automation::toLong(value);
      case ColumnType::number:
        return automation::toDouble(value);
    }
  } catch (const automation::AutomationError&) {
  }
  database::fail(number::badValue, column.name);
}

Field toField(const Value& value) {
  if (automation::isNull(value) || automation::isEmpty(value)) return std::nullopt;
  if (const auto* flag = std::get_if<bool>(&value)) return *flag ? u"-1" : u"0";
  return automation::toText(value);
}

Field toField(const jet::Literal& literal) {
  return literal.isText ? literal.text : text::decimal(literal.number);
}

std::int64_t numberFrom(const Field& field) {
  return std::stoll(text::toUtf8(field.value()));
}

Value fromField(ColumnType type, const Field& field) {
  if (type == ColumnType::yesNo) return field && doubleFrom(*field) != 0;
  if (!field) return automation::Null{};
  if (type == ColumnType::text || type == ColumnType::dateTime) return *field;
  return valueFrom(*field);
}

std::int64_t limitOf(ColumnType type) {
  return type == ColumnType::shortAutoNumber ? std::numeric_limits<std::int16_t>::max()
                                             : std::numeric_limits<std::int32_t>::max();
}

std::string arrayOf(std::span<const std::int64_t> numbers) {
  std::string array = "{";
  for (const std::int64_t number : numbers) array += (array.size() > 1 ? "," : "") + std::to_string(number);
  return array + "}";
}

void appendToArray(std::u16string& array, const Field& field) {
  array.push_back(array.empty() ? u'{' : u',');
  if (!field) {
    array.append(u"NULL");
    return;
  }
  array.push_back(u'"');
  for (const char16_t character : *field) {
    if (character == u'"' || character == u'\\') array.push_back(u'\\');
    array.push_back(character);
  }
  array.push_back(u'"');
}

}  // namespace vordane::odbc
