// UTF-8 stands only at files and at the tools' edges.
#pragma once

#include <string>
#include <string_view>

namespace vordane::text {

// Invalid sequences become U+FFFD, one for each byte that can't be read.
std::u16string fromUtf8(std::string_view text);

// Lone surrogates become U+FFFD.
std::string toUtf8(std::u16string_view text);

// The same behind what `out` holds already: loops over many lines use its memory again.
void appendUtf16(std::string_view utf8, std::u16string& out);
void appendUtf8(std::u16string_view text, std::string& out);

}  // namespace vordane::text
