// Where everything stands, and the ground it stands on.
#include <algorithm>

#include "platform/windows/window/geometry.h"
#include "platform/windows/window/main_window.h"
#include "platform/windows/window/parts_paint.h"

namespace vordane::window::win32 {
namespace {

constexpr int statusPadding = 22, lookUpBarHeight = 38, paneLeft = 12, paneTop = 8;

void put(HWND window, const RECT& place) {
  if (window == nullptr) return;
  RECT now;
  GetWindowRect(window, &now);
  MapWindowPoints(nullptr, GetParent(window), reinterpret_cast<POINT*>(&now), 2);
  if (EqualRect(&now, &place)) return;
  SetWindowPos(window, nullptr, place.left, place.top, width(place), height(place),
               SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOCOPYBITS);
}

SIZE clientSize(HWND window) {
  RECT client{};
  GetClientRect(window, &client);
  return {client.right, client.bottom};
}

}  // namespace

LayoutInput MainWindow::layoutInput() const {
  LayoutInput in;
  const SIZE client = clientSize(window_);
  const auto captionOf = [&](int id) {
    const auto font = fonts_.find(id);
    return font == fonts_.end() ? 0 : captionWidth(font->second.get(), windowText(item(id)));
  };
  in.dpi = dpi_;
  in.width = client.cx;
  in.height = client.cy;
  in.textHeight = lineHeight(font_.get());
  in.exchangeLabel = captionOf(idExchangeLabel);
  in.receivedLabel = captionOf(idReceivedLabel);
  if (form_ != nullptr) {
    if (Control* frame = form_->find(lampFrameName); frame != nullptr && frame->has(u"Caption"))
      in.frameCaption = captionWidth(font_.get(), frame->text(u"Caption"));
    const auto longer = [&](ViewText lit, ViewText clear) {
      return std::max(textWidth(bold_.get(), texts_.text(lit)), textWidth(bold_.get(), texts_.text(clear)));
    };
    in.lamps = {longer(ViewText::majorLit, ViewText::majorClear),
                longer(ViewText::minorLit, ViewText::minorClear)};
  }
  for (const Child& child : children)
    if (child.id >= idRequest && child.id <= idClose && item(child.id) != nullptr)
      in.buttons.push_back(captionOf(child.id));
  RECT box{};
  GetWindowRect(item(idExchange), &box);
  in.dropDownHeight = std::max(height(box), in.textHeight + scaled(8, dpi_));
  in.lookUpHeight =
      lookUp_.open() ? std::max(scaled(lookUpBarHeight, dpi_), in.textHeight + scaled(18, dpi_)) : 0;
  if (!noticeText_.empty() && grid_.size() > 0)
    in.noticeHeight = noticeBarHeight(noticeText_, in.width, font_.get(), dpi_);
  RECT status{};
  GetWindowRect(status_, &status);
  in.statusHeight = height(status);
  in.paneHeight = paneHeight_;
  return in;
}

// A restyling that is still to come places everything.
void MainWindow::place() {
  if (window_ == nullptr || status_ == nullptr || restyleWanted_ || IsIconic(window_)) return;
  SendMessageW(status_, WM_SIZE, 0, 0);
  layout_ = arrange(layoutInput());
  const SIZE client = clientSize(window_);
  put(item(idExchangeLabel), layout_.exchangeLabel);
  RECT dropDown = layout_.dropDown;
  dropDown.bottom += scaled(320, dpi_);  // a drop-down's place includes its list
  if (HWND box = item(idExchange))
    SetWindowPos(box, nullptr, dropDown.left, dropDown.top, width(dropDown), height(dropDown),
                 SWP_NOZORDER | SWP_NOACTIVATE);
  put(item(idReceivedLabel), layout_.receivedLabel);
  put(item(idReceived), layout_.received);
  put(item(idMajor), layout_.lamps[0]);
  put(item(idMinor), layout_.lamps[1]);
  std::size_t next = 0;
  for (const Child& child : children)
    if (child.id >= idRequest && child.id <= idClose && item(child.id) != nullptr &&
        next < layout_.buttons.size())
      put(item(child.id), layout_.buttons[next++]);
  if (lookUp_.open()) lookUp_.place(layout_.lookUp, dpi_);
  RECT rows = layout_.grid;
  if (noticeInRowsPlace()) rows.bottom = std::min(rows.bottom, rows.top + headingHeight());
  put(grid_.window(), rows);
  grid_.fit();
  RECT text = layout_.pane;  // the room around it is the pane's own ground
  text.left += scaled(paneLeft, dpi_);
  text.top = std::min(text.bottom, text.top + scaled(paneTop, dpi_));
  put(pane_.window(), text);
  placeNotice(layout_);
  placeStatus();
  background_.changed();
  const RECT panel{0, 0, client.cx, layout_.grid.top};
  InvalidateRect(window_, &panel, TRUE);
  InvalidateRect(window_, &layout_.splitter, TRUE);
  InvalidateRect(window_, &layout_.pane, TRUE);
  tellModelOfPlaces();
}

bool MainWindow::noticeInRowsPlace() const {
  return !noticeText_.empty() && grid_.size() == 0;
}

int MainWindow::headingHeight() const {
  RECT heading{};
  GetWindowRect(ListView_GetHeader(grid_.window()), &heading);
  return height(heading);
}

void MainWindow::placeNotice(const Layout& layout) {
  if (noticeText_.empty()) {
    ShowWindow(notice_, SW_HIDE);
    return;
  }
  RECT where = layout.notice;
  if (noticeInRowsPlace()) {
    where = layout.grid;
    where.top = std::min(where.top + headingHeight(), where.bottom);
  }
  put(notice_, where);
  ShowWindow(notice_, SW_SHOWNA);
}

void MainWindow::placeStatus() {
  if (status_ == nullptr || restyleWanted_) return;
  const int total = static_cast<int>(clientSize(window_).cx);
  std::array<int, statusParts> ends{};
  int right = total - scaled(16, dpi_);
  ends[statusParts - 1] = -1;
  for (int part = statusParts - 1; part > 0; --part) {
    std::wstring words(LOWORD(SendMessageW(status_, SB_GETTEXTLENGTHW, static_cast<WPARAM>(part), 0)) + 1U,
                       L'\0');
    SendMessageW(status_, SB_GETTEXTW, static_cast<WPARAM>(part), reinterpret_cast<LPARAM>(words.data()));
    const std::u16string text = fromWide(words.data(), words.size() - 1);
    right -= textWidth(font_.get(), text) + scaled(statusPadding, dpi_);
    ends[static_cast<std::size_t>(part) - 1] = std::max(right, scaled(40 * part, dpi_));
  }
  SendMessageW(status_, SB_SETPARTS, statusParts, reinterpret_cast<LPARAM>(ends.data()));
}

// A picture takes the size of the panel it stands behind, so the form knows its own size and its panels'.
void MainWindow::tellModelOfPlaces() {
  if (form_ == nullptr) return;
  const SIZE client = clientSize(window_);
  ownChange_ = true;
  tellPlace(form_->self(), {0, 0, client.cx, client.cy});
  for (const auto& each : form_->controls()) {
    if (each->typeName() != u"PictureBox") continue;
    const bool header = each->name() == u"imgHeader", detail = each->name() == u"imgDetail";
    tellPlace(*each, header ? layout_.panel : detail ? layout_.pane : RECT{0, 0, client.cx, client.cy});
  }
  ownChange_ = false;
}

void MainWindow::tellPlace(Control& panel, const RECT& pixels) const {
  const auto tell = [&](std::u16string_view property, int length) {
    if (panel.has(property)) panel.set(property, toTwips(length, dpi_));
  };
  tell(u"Width", width(pixels));
  tell(u"Height", height(pixels));
}

HBRUSH MainWindow::ground() {
  return background_.brush(clientSize(window_), layout_.panel, palette_);
}

void MainWindow::paintGround(HDC dc) {
  RECT client;
  GetClientRect(window_, &client);
  SetBrushOrgEx(dc, 0, 0, nullptr);
  FillRect(dc, &client, ground());
  background_.drawPane(dc, layout_.pane, palette_);
  fillRect(dc, layout_.splitter, palette_.systemOnly ? palette_.text : RGB(214, 214, 214));
  const RECT edge{0, layout_.panel.bottom - 1, client.right, layout_.panel.bottom};
  fillRect(dc, edge, palette_.systemOnly ? palette_.text : RGB(206, 206, 206));
  const Control* frame = form_ != nullptr ? form_->find(lampFrameName) : nullptr;
  if (frame != nullptr && frame->has(u"Caption"))
    drawFrame(dc, layout_.frame, frame->text(u"Caption"), font_.get(), dpi_, palette_);
}

bool MainWindow::onSplitter(POINT point) const {
  return PtInRect(&layout_.splitter, point) != FALSE;
}

}  // namespace vordane::window::win32
