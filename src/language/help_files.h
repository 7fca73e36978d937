// Which help files of boxes may be opened. Their names come from a language database, which is data: it may
// name a document of the suite, and nothing that could be a program.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vordane::language {

// The full path of `helpFile`, as a box has it, with its ".." resolved; one without a drive is taken from
// `programDirectory`. Nothing when it lies outside `suiteDirectory` (a trailing separator does not count;
// empty: everything does) or is of another type than HLP, CHM, HTM, HTML, TXT and PDF. Looks at names only,
// not at files.
std::optional<std::u16string> openableHelp(std::u16string_view helpFile, std::u16string_view programDirectory,
                                           std::u16string_view suiteDirectory);

}  // namespace vordane::language
