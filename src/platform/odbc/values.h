// Values on their way to a server and back: each travels as text.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database.h"
#include "platform/description.h"
#include "platform/jet.h"
#include "platform/odbc/link.h"

namespace vordane::odbc {

using database::Value;

// `value` as a column of this type keeps it. Throws DatabaseError (badValue), also for a text that can't
// travel.
Value fit(const database::ColumnDefinition& column, const Value& value);

// A row to be added or changed: a value for each column of the table that is set.
using NewRow = std::vector<std::optional<Value>>;

Field toField(const Value& value);
Field toField(const jet::Literal& literal);
// Of a field that holds a whole number, as a key always does.
std::int64_t numberFrom(const Field& field);
Value fromField(database::ColumnType type, const Field& field);

// The highest number an auto-number of this type may reach.
std::int64_t limitOf(database::ColumnType type);

// Values in the server's notation for a list: as the one value that an array is.
std::string arrayOf(std::span<const std::int64_t> numbers);
void appendToArray(std::u16string& array, const Field& field);  // "{a,b": whoever is done appends "}"

}  // namespace vordane::odbc
