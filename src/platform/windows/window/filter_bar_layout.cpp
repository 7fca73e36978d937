// Where the parts of the filter bar stand.
#include <windows.h>

#include <algorithm>

#include "platform/windows/window/filter_bar.h"
#include "platform/windows/window/fonts.h"
#include "platform/windows/window/geometry.h"
#include "platform/windows/window/handles.h"

namespace vordane::window::win32 {
namespace {

// At 96 dots an inch.
constexpr int margin = 12, gap = 8, smallGap = 4, lineGap = 6;
constexpr int textBox = 110, processorBox = 84, dropDown = 240;
constexpr int boxRoom = 9, boxPadding = 14, buttonPadding = 28, tickRoom = 22;  // beside and around the words
constexpr std::u16string_view longestDate = u"0000/00/00 00:00";

}  // namespace

int FilterBar::px(int length) const {
  return scaled(length, dpi_);
}

int FilterBar::widthOf(Part which) const {
  const auto caption = [&](int room) { return captionWidth(font_, windowText(part(which))) + px(room); };
  switch (which) {
    case partText:
      return px(textBox);
    case partProcessor:
      return px(processorBox);
    case partSince:
    case partUntil:
      return std::max(textWidth(font_, longestDate),
                      textWidth(font_, texts_->text(ViewText::filterDateStyle))) +
             px(boxPadding);
    case partMajor:
    case partMinor:
    case partNoted:
    case partOtherDates:
      return caption(tickRoom);
    case partKinds:
    case partClear:
      return caption(buttonPadding);
    case partClose:
      return lineTall();
    default:
      return caption(0);
  }
}

// A label and its box stay together where the row breaks.
std::vector<FilterBar::Placed> FilterBar::arranged(int width, int& height) const {
  static constexpr Part rows[][2] = {
      {partTextLabel, partText},
      {partMajor, partMinor},
      {partNoted, partCount},
      {partKinds, partCount},
      {partProcessorLabel, partProcessor},
      {partSinceLabel, partSince},
      {partUntilLabel, partUntil},
  };
  const int end = width - px(margin);
  std::vector<Placed> placed;
  int x = px(margin), y = px(lineGap);
  for (const auto& [first, second] : rows) {
    const int w = widthOf(first) + (second == partCount ? 0 : px(smallGap) + widthOf(second));
    if (x > px(margin) && x + w > end) {
      x = px(margin);
      y += lineTall() + px(lineGap);
    }
    put(placed, first, x, y);
    if (second != partCount) put(placed, second, x + widthOf(first) + px(smallGap), y);
    x += w + px(gap);
  }
  y += lineTall() + px(smallGap);
  arrangeWords(placed, end, y);
  height = y + lineTall() + px(lineGap);
  return placed;
}

// What is said of the filter, and at the right of it the buttons that end it.
void FilterBar::arrangeWords(std::vector<Placed>& placed, int end, int& y) const {
  const int buttons = widthOf(partClear) + px(smallGap) + widthOf(partClose);
  int x = px(margin), last = end - buttons - px(gap);
  if (otherDates_ > 0) {
    placed.push_back({partOtherDates, {x, y, std::min(end, x + widthOf(partOtherDates)), y + lineTall()}});
    x += widthOf(partOtherDates) + px(gap);
  }
  if (last - x < px(textBox)) {
    x = px(margin);
    if (otherDates_ > 0) y += lineTall();
    if (last - x < px(textBox)) {
      placed.push_back({partMessage, {x, y, std::max(x, end), y + lineTall()}});
      y += lineTall();
      x = last;
    }
  }
  if (x < last) placed.push_back({partMessage, {x, y, last, y + lineTall()}});
  put(placed, partClear, end - buttons, y);
  put(placed, partClose, end - widthOf(partClose), y);
}

int FilterBar::lineTall() const {
  return lineHeight(font_) + px(lineGap) * 2;
}

// In a line that begins at `y`; boxes are as tall as their words want.
void FilterBar::put(std::vector<Placed>& placed, Part which, int x, int y) const {
  const bool box = which == partText || which == partSince || which == partUntil;
  const int tall = box ? lineHeight(font_) + px(boxRoom) : lineTall();
  const int top = y + (lineTall() - tall) / 2;
  placed.push_back({which, {x, top, x + widthOf(which), top + tall}});
}

int FilterBar::heightFor(int width) const {
  int height = 0;
  if (open_) arranged(width, height);
  return height;
}

void FilterBar::place(const RECT& bar) {
  if (!open_) return;
  int height = 0;
  for (const Placed& placed : arranged(width(bar), height)) {
    RECT at = placed.at;
    OffsetRect(&at, bar.left, bar.top);
    const int dropped = placed.part == partProcessor ? px(dropDown) : 0;
    SetWindowPos(part(placed.part), nullptr, at.left, at.top, win32::width(at), win32::height(at) + dropped,
                 SWP_NOZORDER | SWP_NOACTIVATE);
  }
  if (kindList_.open()) placeList();
}

void FilterBar::placeList() {
  RECT button, client;
  GetWindowRect(part(partKinds), &button);
  const HWND parent = GetParent(part(partKinds));
  MapWindowPoints(nullptr, parent, reinterpret_cast<POINT*>(&button), 2);
  GetClientRect(parent, &client);
  kindList_.place(button, client);
}

}  // namespace vordane::window::win32
