// What stands in a store on PostgreSQL besides the described tables, and who may do what with it.
#pragma once

#include <string_view>

#include "platform/description.h"

namespace vordane::odbc::postgresNames {

inline constexpr std::string_view schema = "vordane";
inline constexpr std::u16string_view eventIndex = u"VordaneEventIndex";
inline constexpr std::u16string_view ownerIndex = u"VordaneOwnerIndex";
inline constexpr std::u16string_view agreements = u"VordaneAgreements";

// Roles that nobody logs in as; users are made members of them.
inline constexpr std::string_view reader = "vordane_reader";                // other clients
inline constexpr std::string_view station = "vordane_station";              // workstations
inline constexpr std::string_view administrator = "vordane_administrator";  // owns the store

// How a column is declared, as the server itself writes it.
std::string_view typeOf(database::ColumnType type);

}  // namespace vordane::odbc::postgresNames
