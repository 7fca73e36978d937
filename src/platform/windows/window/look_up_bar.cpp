#include "platform/windows/window/look_up_bar.h"

#include <windows.h>

#include <commctrl.h>

#include <algorithm>
#include <utility>

#include "platform/windows/window/accessible_name.h"
#include "platform/windows/window/child_window.h"
#include "platform/windows/window/fonts.h"
#include "platform/windows/window/geometry.h"

namespace vordane::window::win32 {
namespace {

constexpr int margin = 12, gap = 8, boxWidth = 260, smallestBox = 90, messageWidth = 230;
constexpr wchar_t crossSign[] = L"\u00D7";

}  // namespace

void LookUpBar::create(HWND parent, const Ids& ids, ViewTexts& texts, std::function<void()> made) {
  parent_ = parent;
  behind_ = lastChild(parent);
  ids_ = ids;
  texts_ = &texts;
  made_ = std::move(made);
  label_ = text_ = next_ = close_ = message_ = nullptr;
  open_ = false;
  enabled_ = true;
}

void LookUpBar::make() {
  const auto part = [this](int id, const wchar_t* type, const std::u16string& text, DWORD style) {
    return makeChild(parent_, id, type, text, style);
  };
  const DWORD button = WS_TABSTOP | BS_PUSHBUTTON, words = SS_LEFT | SS_CENTERIMAGE;
  label_ = part(ids_.label, WC_STATICW, texts_->text(ViewText::lookUpLabel), words);
  text_ = part(ids_.text, WC_EDITW, {}, WS_TABSTOP | WS_BORDER | ES_AUTOHSCROLL);
  next_ = part(ids_.next, WC_BUTTONW, texts_->text(ViewText::lookUpNext), button);
  close_ = part(ids_.close, WC_BUTTONW, fromWide(crossSign, 1), button);
  message_ = part(ids_.message, WC_STATICW, {}, words | SS_NOPREFIX | SS_ENDELLIPSIS);
  putBehind(behind_, windows());
  setFont(font_);
  enable(enabled_);
  made_();
}

void LookUpBar::reword() {
  setWindowText(label_, texts_->text(ViewText::lookUpLabel));
  setWindowText(next_, texts_->text(ViewText::lookUpNext));
}

void LookUpBar::setFont(HFONT font) {
  font_ = font;
  if (text_ == nullptr) return;
  for (HWND window : windows()) SendMessageW(window, WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
}

void LookUpBar::place(const RECT& bar, int dpi) {
  const int h = height(bar) - scaled(gap, dpi), room = width(bar) - 2 * scaled(margin, dpi);
  const int boxHeight = std::min(h, lineHeight(font_) + scaled(9, dpi));
  int x = bar.left + scaled(margin, dpi);
  const auto put = [&](HWND window, int w) {
    const int tall = window == text_ ? boxHeight : h;
    SetWindowPos(window, nullptr, x, bar.top + (h - tall) / 2, w, tall, SWP_NOZORDER | SWP_NOACTIVATE);
    x += w + scaled(gap, dpi);
  };
  const int labelWidth = captionWidth(font_, windowText(label_));
  const int nextWidth = captionWidth(font_, windowText(next_)) + scaled(28, dpi);
  const int others = labelWidth + nextWidth + h + 3 * scaled(gap, dpi);
  put(label_, labelWidth);
  put(text_,
      std::clamp(room - others - scaled(messageWidth, dpi), scaled(smallestBox, dpi), scaled(boxWidth, dpi)));
  put(next_, nextWidth);
  put(close_, h);
  put(message_, std::max(0, static_cast<int>(bar.right) - scaled(margin, dpi) - x));
}

void LookUpBar::show() {
  if (text_ == nullptr) make();
  open_ = true;
  for (HWND window : windows()) ShowWindow(window, SW_SHOW);
  SetFocus(text_);
  SendMessageW(text_, EM_SETSEL, 0, -1);
}

void LookUpBar::hide() {
  if (!std::exchange(open_, false)) return;
  tell({});
  for (HWND window : windows()) ShowWindow(window, SW_HIDE);
}

void LookUpBar::enable(bool enabled) {
  enabled_ = enabled;
  if (text_ == nullptr) return;
  for (HWND window : {text_, next_, close_}) EnableWindow(window, enabled);
}

std::u16string LookUpBar::wanted() const {
  return windowText(text_);
}

void LookUpBar::tell(const std::u16string& message, bool onTheWay) {
  if (windowText(message_) == message) return;
  SetWindowTextW(message_, wide(message));
  if (!message.empty() && !onTheWay) tellLive(message_);
}

}  // namespace vordane::window::win32
