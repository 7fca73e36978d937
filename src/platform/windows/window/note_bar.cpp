#include "platform/windows/window/note_bar.h"

#include <windows.h>

#include <commctrl.h>

#include <algorithm>

#include "platform/notes.h"
#include "platform/windows/window/accessible_name.h"
#include "platform/windows/window/child_window.h"
#include "platform/windows/window/children.h"
#include "platform/windows/window/clipboard.h"
#include "platform/windows/window/fonts.h"
#include "platform/windows/window/geometry.h"
#include "platform/windows/window/handles.h"

namespace vordane::window::win32 {
namespace {

// At 96 dots an inch.
constexpr int margin = 12, gap = 8, boxRoom = 9, lineRoom = 4, below = 6;

void setStyle(HWND window, LONG_PTR style, bool on) {
  const LONG_PTR now = GetWindowLongPtrW(window, GWL_STYLE);
  SetWindowLongPtrW(window, GWL_STYLE, on ? now | style : now & ~style);
  SetWindowPos(window, nullptr, 0, 0, 0, 0,
               SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_FRAMECHANGED);
}

}  // namespace

void NoteBar::create(HWND parent, std::function<void()> blanked, Tip tip, std::function<void()> made) {
  parent_ = parent;
  behind_ = lastChild(parent);
  blanked_ = std::move(blanked);
  tip_ = std::move(tip);
  made_ = std::move(made);
  label_ = box_ = message_ = nullptr;
  at_ = {};
  state_ = State::hidden;
  enabled_ = true;
}

void NoteBar::make() {
  const DWORD words = SS_LEFT | SS_CENTERIMAGE | SS_NOPREFIX | SS_ENDELLIPSIS;
  label_ = makeChild(parent_, idNoteLabel, WC_STATICW, {}, words);
  box_ = makeChild(parent_, idNoteText, WC_EDITW, {}, WS_TABSTOP | ES_AUTOHSCROLL | ES_READONLY);
  message_ = makeChild(parent_, idNoteMessage, WC_STATICW, {}, words | SS_NOTIFY);
  putBehind(behind_, windows());
  // A longer text is told of when it is to be kept: cut off at once it would be lost.
  SendMessageW(box_, EM_SETLIMITTEXT, 0, 0);
  watch_.start(box_, [this](UINT message, WPARAM wide, LPARAM low) { return heard(message, wide, low); });
  setFont(font_, dpi_);
  enable(enabled_);
  made_();
}

void NoteBar::setFont(HFONT font, int dpi) {
  font_ = font;
  dpi_ = dpi;
  if (box_ == nullptr) return;
  for (HWND window : windows()) SendMessageW(window, WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
}

void NoteBar::turn(State state, const std::u16string& label, const std::u16string& text) {
  if (box_ == nullptr) make();
  const bool edited = state == State::edited;
  if (std::exchange(state_, state) != state) {
    SendMessageW(box_, EM_SETREADONLY, edited ? FALSE : TRUE, 0);
    setStyle(box_, WS_BORDER, edited);
    for (HWND window : {label_, box_}) ShowWindow(window, shown() ? SW_SHOWNA : SW_HIDE);
    ShowWindow(message_, edited ? SW_SHOWNA : SW_HIDE);
  }
  SetWindowTextW(message_, L"");
  setWindowText(label_, label);
  setWindowText(box_, text);
  tip_(box_, edited ? std::u16string{} : text);
  tip_(message_, {});
  place(at_);
}

void NoteBar::show(const std::u16string& label, const std::u16string& text) {
  turn(State::read, label, text);
}

void NoteBar::edit(const std::u16string& label, const std::u16string& text) {
  turn(State::edited, label, text);
  SetFocus(box_);
  SendMessageW(box_, EM_SETSEL, 0, -1);
}

void NoteBar::hide() {
  if (!shown()) return;
  turn(State::hidden, {}, {});
}

void NoteBar::enable(bool enabled) {
  enabled_ = enabled;
  if (box_ != nullptr) EnableWindow(box_, enabled);
}

std::u16string NoteBar::text() const {
  return windowText(box_);
}

void NoteBar::tell(const std::u16string& message) {
  if (windowText(message_) == message) return;
  SetWindowTextW(message_, wide(message));
  tip_(message_, message);
  tellLive(message_);
}

int NoteBar::boxTall() const {
  return lineHeight(font_) + scaled(boxRoom, dpi_);
}

int NoteBar::messageTall() const {
  return editing() ? lineHeight(font_) + scaled(lineRoom, dpi_) : 0;
}

int NoteBar::height() const {
  return shown() ? boxTall() + messageTall() + scaled(below, dpi_) : 0;
}

// A long label leaves the half of the line to the text.
void NoteBar::place(const RECT& bar) {
  at_ = bar;
  if (!shown()) return;
  const int left = static_cast<int>(bar.left) + scaled(margin, dpi_);
  const int room = std::max(0, static_cast<int>(bar.right) - scaled(margin, dpi_) - left);
  const int labelWide = std::min(captionWidth(font_, windowText(label_)), room / 2);
  const int boxLeft = labelWide + scaled(gap, dpi_);
  const auto put = [&](HWND window, int x, int y, int w, int h) {
    SetWindowPos(window, nullptr, left + x, static_cast<int>(bar.top) + y, std::max(0, w), h,
                 SWP_NOZORDER | SWP_NOACTIVATE);
  };
  put(label_, 0, 0, labelWide, boxTall());
  const int tall = editing() ? boxTall() : lineHeight(font_);  // without a frame its words stand at its top
  put(box_, boxLeft, (boxTall() - tall) / 2, room - boxLeft, tall);
  put(message_, 0, boxTall(), room, messageTall());
}

LRESULT NoteBar::heard(UINT message, WPARAM wide, LPARAM low) {
  if (message == WM_PASTE && editing()) {
    paste();
    return 0;
  }
  return watch_.pass(message, wide, low);
}

// By itself the box would drop what stands behind the first line.
void NoteBar::paste() {
  std::u16string pasted = clipboardText(box_);
  const bool steered = database::isSteered(pasted);
  if (steered) pasted = database::noteLine(pasted);
  SendMessageW(box_, EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(wide(pasted)));
  if (steered) blanked_();
}

}  // namespace vordane::window::win32
