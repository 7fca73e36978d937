// Where everything stands, and the ground it stands on.
#include <algorithm>

#include "platform/windows/window/geometry.h"
#include "platform/windows/window/main_window.h"
#include "platform/windows/window/parts_paint.h"

namespace vordane::window::win32 {
namespace {

constexpr int showAllPadding = 28;
constexpr int lookUpBarHeight = 38, paneLeft = 12, paneTop = 8;
constexpr int mostOfTheWindow = 3;  // a part of its height that the status line may take

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
  in.filterHeight = list_.bar().heightFor(in.width);
  if (!noticeText_.empty() && grid_.size() > 0)
    in.noticeHeight = noticeBarHeight(noticeText_, in.width, font_.get(), dpi_);
  if (list_.flood().shown()) in.floodHeight = grid_.rowHeight();
  if (list_.newer().shown() && grid_.size() > 0) in.newerHeight = grid_.rowHeight();
  in.noteHeight = notes_.bar().height();
  in.statusHeight = status_.heightFor(in.width, in.height / mostOfTheWindow);
  in.paneHeight = paneHeight_;
  return in;
}

// A restyling that is still to come places everything.
void MainWindow::place() {
  if (window_ == nullptr || status_.window() == nullptr || restyleWanted_ || IsIconic(window_)) return;
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
  list_.bar().place(layout_.filter);
  put(list_.flood().window(), layout_.flood);
  setTip(list_.flood().window(), list_.flood().words());
  put(list_.newer().window(), layout_.newer);
  RECT rows = layout_.grid;
  if (noticeInRowsPlace()) rows.bottom = std::min(rows.bottom, rows.top + headingHeight());
  put(grid_.window(), rows);
  grid_.fit();
  RECT text = layout_.pane;  // the room around it is the pane's own ground
  text.left += scaled(paneLeft, dpi_);
  text.top = std::min(text.bottom, text.top + scaled(paneTop, dpi_));
  text.bottom = std::max(text.top, layout_.note.top);
  put(pane_.window(), text);
  notes_.bar().place(layout_.note);
  placeNotice(layout_);
  status_.place(layout_.status);
  setTip(status_.account(), status_.hiddenText());
  background_.changed();
  const RECT panel{0, 0, client.cx, layout_.grid.top};
  InvalidateRect(window_, &panel, TRUE);
  InvalidateRect(window_, &layout_.splitter, TRUE);
  InvalidateRect(window_, &layout_.pane, TRUE);
  tellModelOfPlaces();
}

// What the form says, and that no row passes the filter.
std::u16string MainWindow::noticeWords() const {
  const std::u16string hidden = list_.notice();
  if (hidden.empty() || noticeText_.empty()) return noticeText_ + hidden;
  return noticeText_ + u"\r\n" + hidden;
}

bool MainWindow::noticeInRowsPlace() const {
  return grid_.size() == 0 && !noticeWords().empty();
}

int MainWindow::headingHeight() const {
  RECT heading{};
  GetWindowRect(ListView_GetHeader(grid_.window()), &heading);
  return height(heading);
}

void MainWindow::placeNotice(const Layout& layout) {
  const std::u16string words = noticeWords();
  const HWND showAll = list_.showAllButton();
  if (list_.notice().empty()) ShowWindow(showAll, SW_HIDE);
  if (words.empty()) {
    ShowWindow(notice_, SW_HIDE);
    return;
  }
  setWindowText(notice_, words);
  RECT where = layout.notice;
  if (noticeInRowsPlace()) {
    where = layout.grid;
    where.top = std::min(where.top + headingHeight(), where.bottom);
  }
  put(notice_, where);
  ShowWindow(notice_, SW_SHOWNA);
  if (!list_.notice().empty()) placeShowAll(where);
}

// Below the card of the notice.
void MainWindow::placeShowAll(const RECT& rows) {
  const HWND button = list_.showAllButton();
  const int w = captionWidth(font_.get(), windowText(button)) + scaled(showAllPadding, dpi_);
  const int h = std::max(lineHeight(font_.get()) + scaled(12, dpi_), scaled(29, dpi_));
  const int x = static_cast<int>(rows.left + rows.right - w) / 2;
  const int y = static_cast<int>(rows.top) + scaled(12, dpi_) +
                noticeCardBottom(noticeWords(), {width(rows), height(rows)}, font_.get(), dpi_);
  SetWindowPos(button, HWND_TOP, x, y, w, h, SWP_NOACTIVATE | SWP_SHOWWINDOW);
}

// Its texts may want another number of lines now.
void MainWindow::placeStatus() {
  if (window_ == nullptr || restyleWanted_ || IsIconic(window_)) return;
  const SIZE client = clientSize(window_);
  const int wanted =
      status_.heightFor(static_cast<int>(client.cx), static_cast<int>(client.cy) / mostOfTheWindow);
  if (wanted != height(layout_.status)) return place();
  status_.place(layout_.status);
  setTip(status_.account(), status_.hiddenText());
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
  POINT corner{};  // a button that shows the ground in its corners lends its own surface, which begins
                   // elsewhere
  LPtoDP(dc, &corner, 1);
  SetBrushOrgEx(dc, corner.x, corner.y, nullptr);
  FillRect(dc, &client, ground());
  FillRect(dc, &layout_.status, GetSysColorBrush(COLOR_3DFACE));
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

void MainWindow::moveSplitter(int top) {
  paneHeight_ = paneHeightFor(layoutInput(), top);
  place();
  UpdateWindow(window_);
}

}  // namespace vordane::window::win32
