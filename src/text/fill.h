// Sentences with places for values.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>

namespace vordane {

// The whole text, or its first `most` characters with "..." behind them.
std::u16string brief(std::u16string_view text, std::size_t most);

// A value is often somebody else's, an exchange's name or a reason, and has any length: each is given in
// brief, since a text of 300,000 characters takes minutes to be broken into lines, with the window frozen.
inline constexpr std::size_t longestValue = 400;

// `pattern` with {1} to {9} replaced by the values; a place without a value stays as it stands, so that a
// wrong text shows.
std::u16string fillText(std::u16string_view pattern, std::initializer_list<std::u16string_view> values);

}  // namespace vordane
