#include "platform/windows/window/status_line.h"

#include <windows.h>

#include <commctrl.h>

#include <algorithm>

#include "platform/windows/window/accessible_name.h"
#include "platform/windows/window/fonts.h"
#include "platform/windows/window/geometry.h"

namespace vordane::window::win32 {
namespace {

// Lengths at 96 dots an inch.
constexpr int edge = 12, gap = 12, partPadding = 24, gripWidth = 18, linePadding = 4;
constexpr int narrowAccount = 320;  // with less beside the parts the account stands above them
constexpr UINT wrapped = DT_WORDBREAK | DT_NOPREFIX | DT_EXPANDTABS | DT_EDITCONTROL;

}  // namespace

void StatusLine::create(HWND parent, int id, int accountId) {
  const HINSTANCE instance = GetModuleHandleW(nullptr);
  const auto identifier = [](int number) { return reinterpret_cast<HMENU>(static_cast<INT_PTR>(number)); };
  texts_ = {};
  textWidths_ = {};
  remark_.clear();
  bar_ = CreateWindowExW(
      0, STATUSCLASSNAMEW, L"",
      WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | SBARS_SIZEGRIP | CCS_NORESIZE | CCS_NOPARENTALIGN, 0, 0, 0, 0,
      parent, identifier(id), instance, nullptr);
  account_ = CreateWindowExW(0, WC_STATICW, L"",
                             WS_CHILD | WS_VISIBLE | SS_LEFT | SS_NOPREFIX | SS_NOTIFY | SS_EDITCONTROL, 0, 0,
                             0, 0, parent, identifier(accountId), instance, nullptr);
  SetWindowPos(account_, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
  // It takes no text for a part that it has not got; where the parts end is seen when all is placed.
  const std::array<int, parts> ends{1, 2, -1};
  SendMessageW(bar_, SB_SETPARTS, parts, reinterpret_cast<LPARAM>(ends.data()));
}

int StatusLine::px(int length) const {
  return scaled(length, dpi_);
}

void StatusLine::setFont(HFONT font, int dpi) {
  font_ = font;
  dpi_ = dpi;
  textHeight_ = lineHeight(font);
  for (HWND window : {bar_, account_}) SendMessageW(window, WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
  for (std::size_t part = 1; part < parts; ++part) textWidths_[part] = textWidth(font, texts_[part]);
}

void StatusLine::setText(int part, const std::u16string& text) {
  const auto place = static_cast<std::size_t>(part);
  texts_[place] = text;
  if (part == 0) {
    remark_.clear();
    return showAccount();
  }
  textWidths_[place] = textWidth(font_, text);
  SendMessageW(bar_, SB_SETTEXTW, static_cast<WPARAM>(part), reinterpret_cast<LPARAM>(wide(text)));
}

void StatusLine::remark(const std::u16string& text, bool onTheWay) {
  remark_ = text;
  showAccount(onTheWay);
}

bool StatusLine::takeRemarkAway() {
  if (remark_.empty()) return false;
  remark({});
  return true;
}

// What only says how far something is is not read out.
void StatusLine::showAccount(bool onTheWay) {
  if (windowText(account_) == accountText()) return;
  SetWindowTextW(account_, wide(accountText()));
  if (!onTheWay && !accountText().empty()) tellLive(account_);
}

int StatusLine::partWidth(int part) const {
  const int words = textWidths_[static_cast<std::size_t>(part)];
  return words > 0 ? words + px(partPadding) : 0;
}

int StatusLine::partsWidth() const {
  return partWidth(1) + partWidth(2) + px(gripWidth);
}

int StatusLine::rowHeight() const {
  return textHeight_ + 2 * px(linePadding);
}

int StatusLine::accountHeight(int width) const {
  const HDC dc = measuringDc();
  const Selected with(dc, font_);
  const std::u16string& text = accountText();
  RECT box{0, 0, width, 0};
  DrawTextW(dc, wide(text), static_cast<int>(text.size()), &box, wrapped | DT_CALCRECT);
  return std::max(height(box), textHeight_);
}

StatusLine::Places StatusLine::places(int width, int most) const {
  const int pad = px(linePadding), beside = width - partsWidth() - px(edge) - px(gap);
  const bool above = beside < px(narrowAccount) && accountHeight(std::max(beside, 1)) > textHeight_;
  const int room = std::max(above ? width - 2 * px(edge) : beside, 1);
  const int under = above ? rowHeight() : 0;  // the parts' own row
  const int lines = std::max(1, (most - under - 2 * pad) / textHeight_);
  const int words = std::min(accountHeight(room), lines * textHeight_);
  const int all = words + 2 * pad + under;
  return {{px(edge), pad, px(edge) + room, pad + words}, {0, above ? all - under : 0, width, all}, all};
}

int StatusLine::heightFor(int width, int most) const {
  return places(width, most).height;
}

void StatusLine::place(const RECT& line) {
  const Places places = this->places(width(line), height(line));
  const auto put = [&](HWND window, const RECT& place) {
    SetWindowPos(window, nullptr, line.left + place.left, line.top + place.top, width(place), height(place),
                 SWP_NOZORDER | SWP_NOACTIVATE);
  };
  put(bar_, places.bar);
  put(account_, places.account);
  placeParts(width(line));
}

void StatusLine::placeParts(int width) {
  std::array<int, parts> ends{};
  int right = width - px(gripWidth);
  ends[parts - 1] = -1;
  for (int part = parts - 1; part > 0; --part) {
    right -= partWidth(part);
    ends[static_cast<std::size_t>(part) - 1] = std::max(right, px(40 * part));
  }
  SendMessageW(bar_, SB_SETPARTS, parts, reinterpret_cast<LPARAM>(ends.data()));
}

std::u16string StatusLine::hiddenText() const {
  RECT place{};
  GetClientRect(account_, &place);
  return accountHeight(std::max(width(place), 1)) > height(place) ? accountText() : std::u16string{};
}

}  // namespace vordane::window::win32
