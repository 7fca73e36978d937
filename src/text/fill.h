// Sentences with places for values.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace vordane {

// `pattern` with {1} to {9} replaced by the values; a place without a value stays as it stands, so that a
// wrong text shows.
std::u16string fillText(std::u16string_view pattern, std::initializer_list<std::u16string_view> values);

}  // namespace vordane
