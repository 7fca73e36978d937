// UTF-8 stands only at files and at the tools' edges.
#pragma once

#include <string>
#include <string_view>

namespace vordane::text {

// Invalid sequences become U+FFFD, one for each byte that can't be read.
std::u16string fromUtf8(std::string_view text);

// Lone surrogates become U+FFFD.
std::string toUtf8(std::u16string_view text);

}  // namespace vordane::text
