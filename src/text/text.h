// UTF-16 text as the whole system handles it: positions count UTF-16 code units from 1, a blank is
// U+0020 and nothing else, and no rule depends on a locale. All functions are pure and thread-free.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vordane::text {

inline constexpr std::u16string_view crlf = u"\r\n";

// Without the blanks before and behind it.
std::u16string_view trim(std::u16string_view text);

// The part that begins at character `start` (from 1) and holds at most `length` characters; shorter or
// empty where the text ends early. A start below 1 gives the empty text.
std::u16string_view middle(std::u16string_view text, std::size_t start,
                           std::size_t length = std::u16string_view::npos);
std::u16string_view left(std::u16string_view text, std::size_t length);
std::u16string_view right(std::u16string_view text, std::size_t length);
// As `left`, but never half of a character beyond the basic plane: one unit less where the cut would part it.
std::u16string_view beginning(std::u16string_view text, std::size_t most);

// The pieces between the separators; an empty text gives no piece.
std::vector<std::u16string> split(std::u16string_view text, char16_t separator);

// The lines between its line ends (CR LF, CR or LF), the last one empty where the text ends with one: at
// least one. They are views into the text.
std::vector<std::u16string_view> lines(std::u16string_view text);

bool startsWith(std::u16string_view text, std::u16string_view prefix);
bool contains(std::u16string_view text, std::u16string_view part);
// The position, from 0, of the first `character`, else npos; far quicker in long texts than the library's
// own.
std::size_t find(std::u16string_view text, char16_t character);

// Letters mapped one for one by a table that ships with the program; the length never changes.
char16_t lower(char16_t character);
char16_t upper(char16_t character);
std::u16string toLower(std::u16string_view text);
std::u16string toUpper(std::u16string_view text);

// The same for paths: only letters whose capital names the same file. File systems keep a dotless i and an i
// apart, and the capitals that are newer than their tables (the Georgian ones), so those letters stay.
char16_t upperInPath(char16_t character);
std::u16string toUpperPath(std::u16string_view path);

// Equal without regard to case: the rule of names (members, controls, properties, pictures).
bool equalIgnoringCase(std::u16string_view a, std::u16string_view b);

}  // namespace vordane::text
