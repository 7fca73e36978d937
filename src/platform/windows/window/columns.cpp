#include "platform/windows/window/columns.h"

#include <algorithm>

#include "text/text.h"

namespace vordane::window::win32 {
namespace {

constexpr int narrowest = 24, widest = 4000;
constexpr std::size_t longestNumber = 7;

std::u16string numberText(std::int64_t number) {
  const std::string digits = std::to_string(number);
  return {digits.begin(), digits.end()};
}

std::u16string asText(const std::array<int, columnCount>& numbers) {
  std::u16string text;
  for (const int number : numbers) {
    if (!text.empty()) text += u',';
    text += numberText(number);
  }
  return text;
}

std::optional<int> readNumber(std::u16string_view piece) {
  const bool negative = text::startsWith(piece, u"-");
  if (negative) piece.remove_prefix(1);
  if (piece.empty() || piece.size() > longestNumber) return std::nullopt;
  int number = 0;
  for (const char16_t digit : piece) {
    if (digit < u'0' || digit > u'9') return std::nullopt;
    number = number * 10 + (digit - u'0');
  }
  return negative ? -number : number;
}

std::optional<std::array<int, columnCount>> readSix(std::u16string_view text) {
  const auto numbers = readNumbers(text);
  if (!numbers || numbers->size() != columnCount) return std::nullopt;
  std::array<int, columnCount> six{};
  std::copy(numbers->begin(), numbers->end(), six.begin());
  return six;
}

}  // namespace

std::optional<std::vector<int>> readNumbers(std::u16string_view text) {
  std::vector<int> numbers;
  for (const std::u16string& piece : text::split(text, u',')) {
    const auto number = readNumber(text::trim(piece));
    if (!number) return std::nullopt;
    numbers.push_back(*number);
  }
  return numbers;
}

std::u16string widthsAsText(const ColumnLayout& layout) {
  return asText(layout.widths);
}

std::u16string orderAsText(const ColumnLayout& layout) {
  return asText(layout.order);
}

std::optional<std::array<int, columnCount>> readWidths(std::u16string_view text) {
  const auto widths = readSix(text);
  if (!widths) return std::nullopt;
  for (int column = 0; column < columnCount; ++column) {
    const int width = (*widths)[static_cast<std::size_t>(column)];
    if (column == descriptionColumn && width == takesTheRest) continue;
    if (width < narrowest || width > widest) return std::nullopt;
  }
  return widths;
}

std::optional<std::array<int, columnCount>> readOrder(std::u16string_view text) {
  const auto order = readSix(text);
  if (!order) return std::nullopt;
  for (int column = 0; column < columnCount; ++column)
    if (std::count(order->begin(), order->end(), column) != 1) return std::nullopt;
  return order;
}

std::u16string cellText(const ShownRow& row, int column) {
  switch (column) {
    case faultColumn:
      return row.fault.fault;
    case alarmColumn:
      return row.fault.alarm;
    case dateColumn:
      return row.fault.date;
    case cpuColumn:
      return row.fault.cpu;
    case descriptionColumn:
      return row.text.detail.empty() ? row.text.title : row.text.title + u". " + row.text.detail;
    case countColumn:
      return numberText(row.fault.count);
    default:
      return {};
  }
}

}  // namespace vordane::window::win32
