// A fault's description as the window shows it: a title line, the details in one quieter line, and the
// trailer with the data, which only the pane below shows. Pure.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/view.h"

namespace vordane::window::win32 {

using Range = GridSource::Range;

struct RowText {
  std::u16string title, detail;
};
RowText rowText(std::u16string_view description);

// The longest run of bytes in the last line: words of two hexadecimal digits, the last perhaps of one;
// nothing when there is none.
std::optional<Range> guessedDataPart(std::u16string_view description);

// The description with one carriage return for each line end, as the pane counts its characters.
struct PaneText {
  std::u16string text;
  std::vector<std::size_t> origin;  // for each character of the text its place in the description
  std::size_t titleEnd = 0;         // the end of the first line

  // Where a place of the description stands in the text.
  std::size_t shown(std::size_t descriptionPosition) const;
};
PaneText paneText(std::u16string_view description);

}  // namespace vordane::window::win32
