// Messages turned into what a person did.
#include <windows.h>

#include <windowsx.h>

#include "platform/windows/window/accessible_name.h"
#include "platform/windows/window/geometry.h"
#include "platform/windows/window/guard.h"
#include "platform/windows/window/main_window.h"
#include "platform/windows/window/parts_paint.h"

namespace vordane::window::win32 {
namespace {

constexpr int rightButton = 2, leftButton = 1;

bool controlHeld() {
  return GetKeyState(VK_CONTROL) < 0 && GetKeyState(VK_MENU) >= 0;
}

LookUpWay wayOfShift() {
  return GetKeyState(VK_SHIFT) < 0 ? LookUpWay::backwards : LookUpWay::forwards;
}

}  // namespace

LRESULT CALLBACK MainWindow::procedure(HWND window, UINT message, WPARAM wide, LPARAM low) {
  if (message == WM_NCCREATE) {
    auto* made = static_cast<MainWindow*>(reinterpret_cast<CREATESTRUCTW*>(low)->lpCreateParams);
    made->window_ = window;
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(made));
  }
  auto* self = reinterpret_cast<MainWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  if (self == nullptr || self->window_ != window) return DefWindowProcW(window, message, wide, low);
  LRESULT answer = 0;
  guarded([&] { answer = self->handle(message, wide, low); });
  return answer;
}

LRESULT MainWindow::handle(UINT message, WPARAM wide, LPARAM low) {
  if (attention_.heard(message)) return 0;
  switch (message) {
    case WM_SIZE:
      place();
      return 0;
    case WM_GETMINMAXINFO:
      if (status_.window() != nullptr && !restyleWanted_) {
        const SIZE least = smallestClient(layoutInput());
        RECT outer{0, 0, least.cx, least.cy};
        AdjustWindowRectExForDpi(&outer, WS_OVERLAPPEDWINDOW, FALSE, WS_EX_CONTROLPARENT,
                                 static_cast<UINT>(dpi_));
        reinterpret_cast<MINMAXINFO*>(low)->ptMinTrackSize = {width(outer), height(outer)};
      }
      return 0;
    case WM_CLOSE:
      if (events_ != nullptr) events_->closeAsked();
      return 0;
    case WM_TIMER:
      if (list_.timer(wide) || look_.timer(wide) || storeWatch_.timer(wide)) return 0;
      return timer_.expired(window_, wide) ? 0 : DefWindowProcW(window_, message, wide, low);
    case WM_DPICHANGED:
      densityChanged(LOWORD(wide), *reinterpret_cast<RECT*>(low));
      return 0;
    case WM_SETTINGCHANGE:
    case WM_SYSCOLORCHANGE:
    case WM_THEMECHANGED:
      lookChanged(message, wide, low);
      return DefWindowProcW(window_, message, wide, low);
    case WM_ENDSESSION:
      if (wide != FALSE) writeSettings();
      return 0;
    case restyleMessage:
      if (restyleWanted_) restyle();
      return 0;
    case nameMessage:  // after the start: the libraries that this needs take their time
      nameParts();
      for (const int lamp : {idMajor, idMinor}) makeLive(item(lamp), Urgency::atOnce);
      for (HWND live : {notice_, status_.account(), list_.flood().window(), list_.newer().window()})
        makeLive(live, Urgency::politely);
      return 0;
    case sortMessage:
      headingClicked(static_cast<int>(wide));
      return 0;
    case WM_GETOBJECT:
      if (const LRESULT object = objectFor(idNone, wide, low)) return object;
      return DefWindowProcW(window_, message, wide, low);
    case WM_COMMAND:
      return command(LOWORD(wide), HIWORD(wide));
    case WM_NOTIFY:
      return notify(low);
    default:
      return handleInput(message, wide, low);
  }
}

void MainWindow::nameParts() {
  nameForScreenReaders(pane_.window(), texts_.text(ViewText::selectedFault));
  if (lookUp_.closeButton() != nullptr) nameLookUp();
  if (list_.bar().closeButton() != nullptr) nameFilter();
}

void MainWindow::nameLookUp() {
  nameButton(lookUp_.closeButton(), ViewText::lookUpClose);
  makeLive(lookUp_.message(), Urgency::politely);
}

void MainWindow::nameFilter() {
  nameButton(list_.bar().closeButton(), ViewText::filterClose);
  nameForScreenReaders(list_.bar().kindWindow(), texts_.text(ViewText::filterKindsName));
  makeLive(list_.bar().message(), Urgency::politely);
}

// One that shows a sign and no words.
void MainWindow::nameButton(HWND button, ViewText name) {
  setTip(button, texts_.text(name));
  nameForScreenReaders(button, texts_.text(name));
}

LRESULT MainWindow::handleInput(UINT message, WPARAM wide, LPARAM low) {
  const POINT point{GET_X_LPARAM(low), GET_Y_LPARAM(low)};
  switch (message) {
    case WM_ACTIVATE:
      if (LOWORD(wide) == WA_INACTIVE) keepFocus();
      look_.frontChanged();
      help_.close();
      return DefWindowProcW(window_, message, wide, low);
    case WM_SETFOCUS:
      giveFocusBack();
      return 0;
    case DM_GETDEFID: {
      const int focused = GetDlgCtrlID(GetFocus());
      return focused >= idRequest && focused <= idClose ? MAKELRESULT(focused, DC_HASDEFID) : 0;
    }
    case WM_SYSCOMMAND:
      if (isSoundCommand(wide) && events_ != nullptr && events_->listUse() == ListUse::now)
        attention_.switchSound();
      if (isSoundCommand(wide)) return 0;
      if (isLanguageCommand(wide)) {
        if (events_ != nullptr) events_->languageChosen((wide - languageCommand(0)) / 0x10);
        return 0;
      }
      if (!isGuideCommand(wide)) return DefWindowProcW(window_, message, wide, low);
      if (events_ != nullptr) events_->guideAsked(focusedPart());
      return 0;
    case WM_INITMENUPOPUP:
      if (HIWORD(low) != FALSE && events_ != nullptr) showMenuEntries(reinterpret_cast<HMENU>(wide));
      return DefWindowProcW(window_, message, wide, low);
    case WM_CONTEXTMENU:
      contextMenu(reinterpret_cast<HWND>(wide), point);
      return 0;
    case WM_LBUTTONDOWN:
      draggingSplitter_ = inputAllowed() && onSplitter(point);
      if (draggingSplitter_) SetCapture(window_);
      return 0;
    case WM_MOUSEMOVE:
      if (draggingSplitter_) moveSplitter(point.y - scaled(2, dpi_));
      return 0;
    case WM_LBUTTONUP:
    case WM_CAPTURECHANGED:
      if (std::exchange(draggingSplitter_, false)) ReleaseCapture();
      return 0;
    default:
      return handleDrawing(message, wide, low);
  }
}

LRESULT MainWindow::handleDrawing(UINT message, WPARAM wide, LPARAM low) {
  switch (message) {
    case WM_ERASEBKGND:
    case WM_PRINTCLIENT:
      paintGround(reinterpret_cast<HDC>(wide));
      return 1;
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLORBTN: {
      if (reinterpret_cast<HWND>(low) == status_.account())  // as the status bar that it stands on
        return DefWindowProcW(window_, message, wide, low);
      const HDC dc = reinterpret_cast<HDC>(wide);
      if (notes_.bar().has(reinterpret_cast<HWND>(low))) {  // it stands on the pane's ground
        SetTextColor(dc, palette_.text);
        SetBkColor(dc, palette_.surface);
        SetDCBrushColor(dc, palette_.surface);
        return reinterpret_cast<LRESULT>(GetStockObject(DC_BRUSH));
      }
      RECT place;
      GetWindowRect(reinterpret_cast<HWND>(low), &place);
      MapWindowPoints(nullptr, window_, reinterpret_cast<POINT*>(&place), 2);
      SetBkMode(dc, TRANSPARENT);
      SetTextColor(dc, palette_.panelText);
      SetBrushOrgEx(dc, -place.left, -place.top, nullptr);
      return reinterpret_cast<LRESULT>(ground());
    }
    case WM_DRAWITEM:
      drawItem(*reinterpret_cast<DRAWITEMSTRUCT*>(low));
      return TRUE;
    case WM_MEASUREITEM:
      if (reinterpret_cast<MEASUREITEMSTRUCT*>(low)->CtlType == ODT_LISTVIEW)
        grid_.measure(*reinterpret_cast<MEASUREITEMSTRUCT*>(low));
      else
        reinterpret_cast<MEASUREITEMSTRUCT*>(low)->itemHeight = static_cast<UINT>(entryHeight());
      return TRUE;
    case WM_SETCURSOR:
      if (hourglass_ && LOWORD(low) == HTCLIENT) {
        SetCursor(LoadCursorW(nullptr, IDC_WAIT));
        return TRUE;
      }
      if (POINT at;
          LOWORD(low) == HTCLIENT && GetCursorPos(&at) && ScreenToClient(window_, &at) && onSplitter(at)) {
        SetCursor(LoadCursorW(nullptr, IDC_SIZENS));
        return TRUE;
      }
      return DefWindowProcW(window_, message, wide, low);
    default:
      return DefWindowProcW(window_, message, wide, low);
  }
}

LRESULT MainWindow::command(int id, int code) {
  if (!inputAllowed() || events_ == nullptr) return 0;
  const auto enterIn = [id, focused = GetFocus()](HWND window) {
    return id == IDOK && window != nullptr && focused == window;
  };
  if (enterIn(lookUp_.box())) lookUpNext(wayOfShift());
  if (id == IDOK && list_.bar().listOpen()) list_.bar().closeList();
  if (enterIn(list_.newer().window())) return command(idNewer, BN_CLICKED);
  if (enterIn(list_.flood().window())) return command(idFlood, BN_CLICKED);
  if (enterIn(notes_.bar().box())) notes_.keep();
  if (id == IDCANCEL) escape();
  if (list_.command(id, code)) return 0;
  if (id == idExchange) exchangeNotified(code);
  const bool button = id >= idRequest && id <= idClose;
  if (button && code == BN_CLICKED && IsWindowEnabled(item(id))) buttonClicked(id);
  if (id == idLookUpText && code == EN_CHANGE) markFound();
  if (id == idLookUpNext && code == BN_CLICKED) lookUpNext();
  if (id == idLookUpClose && code == BN_CLICKED) closeLookUp();
  return 0;
}

void MainWindow::buttonClicked(int id) {
  if (id == idLookUp) return openLookUp();
  if (id == idFilter) return list_.open();
  for (const ButtonAction& button : buttonActions)
    if (button.id == id) return events_->buttonPressed(static_cast<int>(button.action));
}

void MainWindow::headingClicked(int column) {
  if (inputAllowed() && events_ != nullptr) list_.byChoice([&] { events_->headingClicked(column); });
}

// What answers WM_GETOBJECT for a control, or for the window's own area; 0 where the system's own object
// serves.
LRESULT MainWindow::objectFor(int id, WPARAM wide, LPARAM low) const {
  if (asksFor(low, OBJID_ALERT) && (id == idMajor || id == idMinor))
    return accessible_.answer(wide, alertElement(accessibleParts_, id == idMajor));
  if (!asksFor(low, OBJID_CLIENT)) return 0;
  auto element =
      id == idNone ? groupElement(accessibleParts_, Group::frame) : ownElement(accessibleParts_, id);
  return element != nullptr ? accessible_.answer(wide, std::move(element)) : 0;
}

// While the list is open the arrow keys only move in it; the entry is chosen when the list closes.
void MainWindow::exchangeNotified(int code) {
  const HWND box = item(idExchange);
  const bool open = SendMessageW(box, CB_GETDROPPEDSTATE, 0, 0) != FALSE;
  if (code == CBN_SELENDCANCEL) {
    if (const Control* list = control(u"drpPBXList"))
      SendMessageW(box, CB_SETCURSEL, static_cast<WPARAM>(list->listIndex()), 0);
  } else if (code == CBN_SELENDOK || (code == CBN_SELCHANGE && !open)) {
    exchangePicked();
  }
}

void MainWindow::exchangePicked() {
  Control* list = control(u"drpPBXList");
  const int chosen = static_cast<int>(SendMessageW(item(idExchange), CB_GETCURSEL, 0, 0));
  if (list == nullptr || chosen < 0 || chosen == list->listIndex()) return;
  list_.byChoice([&] { events_->exchangeChosen(chosen); });
}

LRESULT MainWindow::notify(LPARAM low) {
  const NMHDR& header = *reinterpret_cast<NMHDR*>(low);
  LRESULT answer = 0;
  if (grid_.window() != nullptr && grid_.notified(header, low, answer)) return answer;
  if (list_.bar().notified(header, low)) return 0;
  pane_.notified(header);
  return 0;
}

void MainWindow::drawItem(const DRAWITEMSTRUCT& item) {
  const int id = static_cast<int>(item.CtlID);
  if (id == idGrid) return grid_.draw(item);
  if (id == idExchange) return drawExchange(item);
  if (id == idNotice) {
    const bool bar = grid_.size() > 0;
    return drawNotice({item.hDC, item.rcItem, noticeWords(), noticeKind_, bar, font_.get(), dpi_}, palette_);
  }
  if (id == idFlood) return list_.flood().draw(item, font_.get(), dpi_, palette_);
  if (id == idNewer) return list_.newer().draw(item, font_.get(), dpi_, palette_);
  const bool lit = lit_[id == idMajor ? 0 : 1];
  const auto font = fonts_.find(id);
  const HFONT plain = font != fonts_.end() ? font->second.get() : font_.get();
  drawLamp({item.hDC, item.rcItem, lampWords(id == idMajor, lit), lit, plain, bold_.get(), dpi_}, palette_);
}

void MainWindow::drawExchange(const DRAWITEMSTRUCT& item) {
  const Control* list = control(u"drpPBXList");
  if (list == nullptr || item.itemID >= list->items().size()) return drawNoExchange(item);
  const Control::Entry& entry = list->items()[item.itemID];
  win32::drawExchange(item, entry.text, look_.newFaults(entry.itemData), palette_, dpi_);
}

void MainWindow::densityChanged(int dpi, const RECT& where) {
  paneHeight_ = MulDiv(paneHeight_, dpi, dpi_);
  dpi_ = dpi;
  SetWindowPos(window_, nullptr, where.left, where.top, width(where), height(where),
               SWP_NOZORDER | SWP_NOACTIVATE);
  restyle();
}

void MainWindow::keepFocus() {
  const HWND focused = GetFocus();
  if (focused != nullptr && focused != window_ && IsChild(window_, focused)) lastFocus_ = focused;
}

void MainWindow::giveFocusBack() {
  if (!inputAllowed() || GetActiveWindow() != window_) return;
  const HWND first = IsWindowEnabled(item(idRequest)) ? item(idRequest) : grid_.window();
  const bool usable = lastFocus_ != nullptr && IsWindowEnabled(lastFocus_) && IsWindowVisible(lastFocus_);
  SetFocus(usable ? lastFocus_ : first);
}

// Ends the first of what there is to end: the open list of kinds, a choice under way, the bar with the focus,
// the other bar.
void MainWindow::escape() {
  if (notes_.escape()) return;
  if (list_.escape()) return;
  if (lookUp_.open()) return closeLookUp();
  if (list_.bar().open()) list_.close();
}

// Of what the form and its drawing consist of; while the window is minimised or takes no input nothing has
// the focus, and what had it last counts.
std::u16string MainWindow::focusedPart() const {
  const HWND now = GetFocus();
  const HWND focused = now != nullptr && now != window_ && IsChild(window_, now) ? now : lastFocus_;
  if (focused == nullptr || !IsWindow(focused)) return {};
  const int id = GetDlgCtrlID(focused);
  if (id >= idLookUpLabel && id <= idLookUpMessage) return std::u16string(lookUpBarPart);
  if (id >= idFilterTextLabel && id <= idShowAll) return std::u16string(filterBarPart);
  if (id == idPane || id == idNoteText) return std::u16string(panePart);
  if (id == idFlood || id == idNewer) return std::u16string(gridName);
  for (const auto& [shown, childId] : ids_)
    if (childId == id) return shown->name();
  return {};
}

bool MainWindow::translate(MSG& message) {
  bool own = false;
  return guarded([&] { own = served(message); }) ? own : true;
}

void MainWindow::serveDueTick() {
  guarded([&] { timer_.serveIfDue(window_); });
}

bool MainWindow::served(MSG& message) {
  if (window_ == nullptr || (message.hwnd != window_ && !IsChild(window_, message.hwnd))) return false;
  if (message.message >= WM_MOUSEFIRST && message.message <= WM_MOUSELAST)
    SendMessageW(tips_, TTM_RELAYEVENT, 0, reinterpret_cast<LPARAM>(&message));
  const bool key = message.message == WM_KEYDOWN || message.message == WM_SYSKEYDOWN;
  if (help_.shown() && key) {
    help_.close();
    if (message.wParam == VK_ESCAPE) return true;
  }
  if (!inputAllowed()) return false;  // the frame's own keys still work
  if (message.message == WM_KEYDOWN && keyDown(message.wParam)) return true;
  if (message.message == WM_SYSKEYDOWN && systemKeyDown(message.wParam)) return true;
  return window_ != nullptr && IsDialogMessageW(window_, &message) != FALSE;
}

// True when the key has been served whole. Ctrl with 1 to 6 is a click on the heading of that column.
bool MainWindow::keyDown(WPARAM key) {
  if (key == 'F' && controlHeld()) {
    openLookUp();
    return true;
  }
  if (key == 'L' && controlHeld()) {
    if (IsWindowEnabled(item(idFilter))) list_.open();
    return true;
  }
  if (key == 'S' && controlHeld()) {
    list_.save();
    return true;
  }
  const WPARAM column = key - '1';  // headings by keyboard
  if (column < columnCount && controlHeld()) {
    list_.byChoice([&] { events_->headingClicked(static_cast<int>(column)); });
    return true;
  }
  if (key == VK_F2) {
    notes_.write();
    return true;
  }
  if (key == VK_F6) {
    goToNextNew();
    return true;
  }
  if (key == VK_F8) {
    events_->storedTextsAsked();
    return true;
  }
  if (key == VK_F3) {
    if (IsWindowEnabled(item(idLookUp))) lookUpNext(wayOfShift());
    return true;
  }
  events_->keyPressed(static_cast<int>(key));
  return key == VK_F1 || key == VK_F5;
}

// Alt with an arrow moves the splitter by a line, but for the drop-down, which opens with it.
bool MainWindow::systemKeyDown(WPARAM key) {
  if ((key != VK_UP && key != VK_DOWN) || GetFocus() == exchangeBox_) return false;
  const int line = lineHeight(font_.get());
  moveSplitter(static_cast<int>(layout_.splitter.top) + (key == VK_UP ? -line : line));
  return true;
}

LRESULT MainWindow::childHeard(int id, UINT message, WPARAM wide, LPARAM low) {
  if (message == WM_GETOBJECT)
    if (const LRESULT object = objectFor(id, wide, low)) return object;
  const bool pressed = message == WM_RBUTTONDOWN || message == WM_LBUTTONDOWN;
  if (pressed && inputAllowed() && events_ != nullptr) {
    for (const auto& [shown, childId] : ids_) {
      if (childId != id) continue;
      events_->mousePressed(const_cast<Control&>(*shown),
                            message == WM_RBUTTONDOWN ? rightButton : leftButton);
      if (message == WM_RBUTTONDOWN) return 0;  // the text box's own menu would come on top
      break;
    }
  }
  if (message == WM_RBUTTONUP) return 0;
  return watches_[id].pass(message, wide, low);
}

}  // namespace vordane::window::win32
