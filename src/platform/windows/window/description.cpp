#include "platform/windows/window/description.h"

#include <algorithm>

#include "text/text.h"

namespace vordane::window::win32 {
namespace {

// Stands between two detail lines that share the row's second line.
constexpr std::u16string_view detailSeparator = u" \u00B7 ";

std::vector<Range> lines(std::u16string_view text) {
  std::vector<Range> found;
  for (const std::u16string_view line : text::lines(text)) {
    const auto begin = static_cast<std::size_t>(line.data() - text.data());
    found.push_back({begin, begin + line.size()});
  }
  return found;
}

bool isHexDigit(char16_t c) {
  return (c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'F') || (c >= u'a' && c <= u'f');
}

// Digits and letters of any script.
bool isWordPart(char16_t c) {
  return isHexDigit(c) || (c >= u'G' && c <= u'Z') || (c >= u'g' && c <= u'z') || c > 0x7F;
}

// Behind the last of the bytes that begin at `at`: two digits each, with blanks between them; the last may be
// cut.
std::size_t bytesEnd(std::u16string_view line, std::size_t at) {
  std::size_t last = at;
  while (at < line.size()) {
    const auto word =
        std::find_if_not(line.begin() + static_cast<std::ptrdiff_t>(at), line.end(), isWordPart);
    const std::u16string_view digits = line.substr(at, static_cast<std::size_t>(word - line.begin()) - at);
    if (digits.empty() || digits.size() > 2 || !std::all_of(digits.begin(), digits.end(), isHexDigit)) break;
    last = at + digits.size();
    if (digits.size() == 1) break;
    at = std::min(line.find_first_not_of(u' ', last), line.size());
  }
  return last;
}

std::optional<Range> longestDataRun(std::u16string_view text, Range place) {
  const std::u16string_view line = text.substr(place.begin, place.end - place.begin);
  std::optional<Range> longest;
  for (std::size_t begin = 0; begin < line.size();) {
    const std::size_t end = bytesEnd(line, begin), length = end - begin;
    if (length >= 2 && (!longest || length > longest->end - longest->begin))
      longest = Range{place.begin + begin, place.begin + end};
    begin = std::max(end, begin + 1);
    while (begin < line.size() && isWordPart(line[begin - 1])) ++begin;  // only whole words
  }
  return longest;
}

// Behind the last line that belongs to the details. The trailer follows a detail line, be it an empty one,
// so that a text of two lines has none.
std::size_t detailEnd(const std::vector<Range>& all) {
  return all.size() > 2 ? all.size() - 1 : all.size();
}

}  // namespace

RowText rowText(std::u16string_view description) {
  const std::vector<Range> all = lines(description);
  const auto line = [&](std::size_t n) {
    return description.substr(all[n].begin, all[n].end - all[n].begin);
  };
  RowText row{std::u16string(line(0)), {}};
  for (std::size_t n = 1; n < detailEnd(all); ++n) {
    const std::u16string_view detail = text::trim(line(n));
    if (detail.empty()) continue;
    if (!row.detail.empty()) row.detail += detailSeparator;
    row.detail += detail;
  }
  return row;
}

std::optional<Range> guessedDataPart(std::u16string_view description) {
  return longestDataRun(description, lines(description).back());
}

PaneText paneText(std::u16string_view description) {
  PaneText pane;
  bool first = true;
  for (const Range line : lines(description)) {
    if (!first) {
      pane.text += u'\r';
      pane.origin.push_back(line.begin - 1);
    }
    for (std::size_t at = line.begin; at < line.end; ++at) {
      pane.text += description[at];
      pane.origin.push_back(at);
    }
    if (first) pane.titleEnd = pane.text.size();
    first = false;
  }
  return pane;
}

std::size_t PaneText::shown(std::size_t descriptionPosition) const {
  return static_cast<std::size_t>(std::lower_bound(origin.begin(), origin.end(), descriptionPosition) -
                                  origin.begin());
}

}  // namespace vordane::window::win32
