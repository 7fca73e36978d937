// What the index keeps of an event in place of its texts, and SQL functions that work it out from the table's
// columns. The encodings are part of the files: never change them without a new version of the index.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/sqlite/connection.h"

namespace vordane::sqlite {

// The texts of an event, as EventColumns has them; nothing stands for Null.
using EventTexts =
    std::array<std::optional<std::u16string_view>, std::tuple_size_v<decltype(EventColumns::texts)>>;

// Sort key of the moment; hash of all five texts; sort keys of the kind's texts.
std::string momentKey(const EventTexts& texts);
std::int64_t hashOf(const EventTexts& texts);
std::string kindKey(const EventTexts& texts);
void appendKind(const EventTexts& texts, std::string& key);

// vordane_moment, vordane_hash and vordane_kind give the same of columns; vordane_key is the sort key of one
// text, and the collation vordane_text compares as statements do. Once for a connection.
void registerEventFunctions(Connection& connection);

}  // namespace vordane::sqlite
