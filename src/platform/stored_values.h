// Stored values, of which any may be Null, and any text of any length.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "platform/database.h"
#include "text/text.h"

namespace vordane::database {

// Null is the empty text. Throws AutomationError for what has no text (an object).
inline std::u16string textOf(const Value& value) {
  return automation::isNull(value) ? std::u16string{} : automation::toText(value);
}

// Null is no. Throws AutomationError for what is neither a number nor a word for yes or no.
inline bool flagOf(const Value& value) {
  return !automation::isNull(value) && automation::toBoolean(value);
}

// A row gives no more of a text than this many characters, so that one of many megabytes, which no exchange
// sends, costs a list neither its memory nor its other rows. The mark stands where the rest was.
inline constexpr std::size_t longestText = 65'536;
inline constexpr std::u16string_view cutMark = u" [...]";

inline std::u16string limitedText(std::u16string text) {
  if (text.size() <= longestText) return text;
  if (text.size() <= longestText + cutMark.size() && text.ends_with(cutMark)) return text;  // cut before
  text.resize(text::beginning(text, longestText).size());
  return text.append(cutMark);
}

inline Value limitedValue(Value value) {
  if (auto* text = std::get_if<std::u16string>(&value)) *text = limitedText(std::move(*text));
  return value;
}

}  // namespace vordane::database
