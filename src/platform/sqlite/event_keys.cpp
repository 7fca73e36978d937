#include "platform/sqlite/event_keys.h"

#include <algorithm>
#include <cstring>

#include "platform/sqlite/text_rules.h"

namespace vordane::sqlite {
namespace {

bool isBlob(sqlite3_value* value) {
  return sqlite3_value_type(value) == SQLITE_BLOB;
}

std::string_view bytesOf(sqlite3_value* value) {
  const auto size = static_cast<std::size_t>(sqlite3_value_bytes(value));
  return size == 0 ? std::string_view{}
                   : std::string_view(static_cast<const char*>(sqlite3_value_blob(value)), size);
}

std::optional<std::u16string> textOf(sqlite3_value* value) {
  if (sqlite3_value_type(value) == SQLITE_NULL) return std::nullopt;
  const void* characters = sqlite3_value_text16(value);
  std::u16string text(static_cast<std::size_t>(sqlite3_value_bytes16(value)) / 2, u'\0');
  if (!text.empty()) std::memcpy(text.data(), characters, text.size() * 2);
  return text;
}

using Function = void (*)(sqlite3_context*, sqlite3_value**);

// No exception may pass through SQLite.
template <Function function>
void guarded(sqlite3_context* context, int, sqlite3_value** values) noexcept {
  try {
    function(context, values);
  } catch (...) {
    sqlite3_result_error_nomem(context);
  }
}

// The sort key of a stored value. This system stores texts and Null; bytes that another tool has stored stand
// behind every text, as they do in SQLite's own order.
void appendValue(sqlite3_value* value, std::string& key) {
  if (!isBlob(value)) return appendField(textOf(value), key);
  constexpr std::string_view digits = "0123456789ABCDEF";
  key.push_back('\2');
  for (const char c : bytesOf(value)) {
    const auto byte = static_cast<unsigned char>(c);
    key.append({digits[byte >> 4], digits[byte & 15]});
  }
}

void resultBlob(sqlite3_context* context, const std::string& bytes) {
  sqlite3_result_blob64(context, bytes.data(), bytes.size(), SQLITE_TRANSIENT);
}

void momentFunction(sqlite3_context* context, sqlite3_value** values) {
  std::string key;
  appendValue(values[0], key);
  resultBlob(context, key);
}

void hashFunction(sqlite3_context* context, sqlite3_value** values) {
  std::array<std::optional<std::u16string>, std::tuple_size_v<EventTexts>> texts;
  for (std::size_t i = 0; i < texts.size(); ++i) texts[i] = textOf(values[i]);
  EventTexts seen;
  std::copy(texts.begin(), texts.end(), seen.begin());
  sqlite3_result_int64(context, hashOf(seen));
}

void kindFunction(sqlite3_context* context, sqlite3_value** values) {
  std::string key;
  for (int i = 0; i < 3; ++i) {
    if (i > 0) key.push_back('\xFF');
    appendValue(values[i], key);
  }
  resultBlob(context, key);
}

// Null stays Null, which sorts first; bytes sort behind every text.
void sortKeyFunction(sqlite3_context* context, sqlite3_value** values) {
  if (isBlob(values[0])) return resultBlob(context, '\xFF' + std::string(bytesOf(values[0])));
  const auto text = textOf(values[0]);
  if (!text) return sqlite3_result_null(context);
  std::string key;
  appendSortKey(*text, key);
  resultBlob(context, key);
}

int compareCollation(void*, int sizeA, const void* a, int sizeB, const void* b) noexcept {
  if (sizeA == sizeB && (sizeA == 0 || std::memcmp(a, b, static_cast<std::size_t>(sizeA)) == 0)) return 0;
  try {
    thread_local std::u16string copyA, copyB;
    return compareTexts(unitsOf(a, sizeA, copyA), unitsOf(b, sizeB, copyB));
  } catch (...) {
    return 0;
  }
}

}  // namespace

std::string momentKey(const EventTexts& texts) {
  std::string key;
  appendField(texts[EventColumns::moment], key);
  return key;
}

std::int64_t hashOf(const EventTexts& texts) {
  FoldedHash hash;
  for (const auto& text : texts) text ? hash.addText(*text) : hash.addNull();
  return hash.value();
}

void appendKind(const EventTexts& texts, std::string& key) {
  for (std::size_t kind = 0; kind < EventColumns::moment; ++kind) {
    if (kind > 0) key.push_back('\xFF');
    appendField(texts[kind], key);
  }
}

std::string kindKey(const EventTexts& texts) {
  std::string key;
  appendKind(texts, key);
  return key;
}

void registerEventFunctions(Connection& connection) {
  constexpr int flags = SQLITE_UTF16LE | SQLITE_DETERMINISTIC | SQLITE_DIRECTONLY;
  const auto add = [&](const char* name, int arguments, auto function) {
    const int result = sqlite3_create_function_v2(connection.handle(), name, arguments, flags, nullptr,
                                                  function, nullptr, nullptr, nullptr);
    if (result != SQLITE_OK) connection.raise(result);
  };
  add("vordane_moment", 1, &guarded<momentFunction>);
  add("vordane_hash", 5, &guarded<hashFunction>);
  add("vordane_kind", 3, &guarded<kindFunction>);
  add("vordane_key", 1, &guarded<sortKeyFunction>);
  const int result = sqlite3_create_collation_v2(connection.handle(), "vordane_text", SQLITE_UTF16LE, nullptr,
                                                 &compareCollation, nullptr);
  if (result != SQLITE_OK) connection.raise(result);
}

}  // namespace vordane::sqlite
