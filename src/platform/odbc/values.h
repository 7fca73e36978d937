// Values on their way to a server and back: each travels as text.
#pragma once

#include <string>
#include <string_view>

#include "platform/database.h"
#include "platform/description.h"
#include "platform/odbc/link.h"

namespace vordane::odbc {

using database::Value;

// `value` as a column of this type keeps it. Throws DatabaseError (badValue), also for a text that can't
// travel.
Value fit(const database::ColumnDefinition& column, const Value& value);

Field toField(const Value& value);
Value fromField(database::ColumnType type, const Field& field);

// The highest number an auto-number of this type may reach.
std::int64_t limitOf(database::ColumnType type);

// Values in the server's notation for a list: as the one value that an array is.
std::string arrayOf(std::span<const std::int64_t> numbers);
void appendToArray(std::u16string& array, const Field& field);  // "{a,b": whoever is done appends "}"

}  // namespace vordane::odbc
