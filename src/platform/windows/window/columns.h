// The grid's columns: what they show, how wide they are designed, and how widths and order are kept as text
// between two runs. Pure.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "platform/grid_columns.h"
#include "platform/windows/window/row_cache.h"

namespace vordane::window::win32 {

// The description's width while it takes what the others leave.
inline constexpr int takesTheRest = 0;

// Widths at 96 dots an inch, so that a workstation with another density finds them as they were; order
// gives for each place from the left the column that stands there.
struct ColumnLayout {
  std::array<int, columnCount> widths{60, 76, 150, 84, takesTheRest, 76};  // seven digits of a number
  std::array<int, columnCount> order{0, 1, 2, 3, 4, 5};
  bool operator==(const ColumnLayout&) const = default;
};

// Numbers with commas between. Reading gives nothing for anything but six numbers, widths from 24 to 4000 (or
// 0 for the description) and an order that names each column once.
std::u16string widthsAsText(const ColumnLayout& layout);
std::u16string orderAsText(const ColumnLayout& layout);
std::optional<std::array<int, columnCount>> readWidths(std::u16string_view text);
std::optional<std::array<int, columnCount>> readOrder(std::u16string_view text);

// The whole numbers of a text with commas between; nothing when a piece is none.
std::optional<std::vector<int>> readNumbers(std::u16string_view text);

// A cell as one line of text, for screen readers and for copying.
std::u16string cellText(const ShownRow& row, int column);

}  // namespace vordane::window::win32
