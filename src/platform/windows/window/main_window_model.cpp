// What the form says, shown.
#include <algorithm>
#include <utility>

#include "platform/stored_values.h"
#include "platform/windows/window/geometry.h"
#include "platform/windows/window/main_window.h"
#include "text/text.h"

namespace vordane::window::win32 {
namespace {

constexpr std::int32_t hourglassPointer = 11;

std::u16string textOf(const Control& control, std::u16string_view property) {
  return control.has(property) ? database::textOf(control.get(property)) : std::u16string{};
}

bool flagOf(const Control& control, std::u16string_view property) {
  return !control.has(property) || control.flag(property);
}

bool isFont(std::u16string_view property) {
  return text::contains(text::toLower(property), u"font");
}

}  // namespace

// --- in another language

const Control& MainWindow::worded(const Control& own) const {
  if (words_ == nullptr) return own;
  if (&own == &form_->self()) return words_->self();
  const Control* other = words_->find(own.name(), own.index());
  return other != nullptr ? *other : own;
}

const Control* MainWindow::worded(std::u16string_view name) {
  const Control* own = control(name);
  return own != nullptr ? &worded(*own) : nullptr;
}

// A text that the other language lacks stays as it is.
std::u16string MainWindow::wordsOf(const Control& own, std::u16string_view property) const {
  std::u16string words = textOf(worded(own), property);
  return words.empty() ? textOf(own, property) : words;
}

void MainWindow::setWords(Form* words) {
  words_ = words;
  if (window_ == nullptr || form_ == nullptr) return;
  applyWhole();
  formChanged(u"Caption");
  lookUp_.reword();
  list_.reword();
  grid_.setNews([this](std::size_t row) { return look_.isNew(row); }, texts_.text(ViewText::newFault));
  nameParts();
  wantRestyle();
  showCount();
  refresh();
}

// --- what the form says

bool MainWindow::inputAllowed() const {
  return inputEnabled_ && form_ != nullptr && flagOf(form_->self(), u"Enabled");
}

void MainWindow::controlChanged(Control& changed, std::u16string_view property) {
  if (window_ == nullptr || ownChange_) return;
  if (&changed == &form_->self()) return formChanged(property);
  const auto found = ids_.find(&changed);
  if (property == u"Items" || property == u"ListIndex") {
    if (found != ids_.end()) applyItems(changed);
    return;
  }
  if (changed.typeName() == u"PictureBox") {
    if (property != u"Picture" && property != u"Visible") return;
    background_.update(changed);
    dressPane();
    InvalidateRect(window_, nullptr, TRUE);
    return;
  }
  if (isFont(property)) return wantRestyle();
  if (changed.name() == lampFrameName) return wantRestyle();
  if (found == ids_.end()) return;
  if (found->second == idGrid && text::startsWith(property, u"Columns("))
    return applyHeading(changed, property);
  apply(changed, found->second);
}

void MainWindow::formChanged(std::u16string_view property) {
  const Control& self = form_->self();
  if (property == u"Caption") setWindowText(window_, wordsOf(self, property));
  if (property == u"Visible") setVisible(flagOf(self, property));
  if (property == u"Enabled") updateInput();
  if (property == u"MousePointer") setHourglass(self.number(property) == hourglassPointer);
  if (isFont(property)) wantRestyle();
}

void MainWindow::applyWhole() {
  for (const auto& [shown, id] : ids_) apply(const_cast<Control&>(*shown), id);
  if (Control* list = control(u"drpPBXList")) applyItems(*list);
  if (Control* grid = control(gridName))
    for (int column = 0; column < columnCount; ++column) {
      const char16_t digit = static_cast<char16_t>(u'0' + column);
      applyHeading(*grid, std::u16string(u"Columns(") + digit + u").Caption");
    }
  for (const auto& each : form_->controls())
    if (each->typeName() == u"PictureBox") background_.update(*each);
  for (const bool major : {true, false})
    setWindowText(item(major ? idMajor : idMinor), lampWords(major, lit_[major ? 0 : 1]));
}

void MainWindow::apply(Control& shown, int id) {
  const HWND window = id == idGrid ? grid_.window() : item(id);
  if (id != idExchange && id != idMajor && id != idMinor) {
    const std::u16string words = id == idReceived ? textOf(shown, u"Text") : wordsOf(shown, u"Caption");
    if (windowText(window) != words) {
      SetWindowTextW(window, wide(words));
      if (id != idReceived) wantRestyle();  // a longer caption needs more room
    }
  }
  const bool visible = flagOf(shown, u"Visible");
  const bool was = (GetWindowLongPtrW(window, GWL_STYLE) & WS_VISIBLE) != 0;
  if (visible != was) ShowWindow(window, visible ? SW_SHOWNA : SW_HIDE);
  applyEnabled(shown, id);
  applyTip(shown, id);
}

void MainWindow::applyEnabled(const Control& shown, int id) {
  const HWND window = item(id);
  const bool enabled = (id == idGrid || inputAllowed()) && flagOf(shown, u"Enabled");
  if ((IsWindowEnabled(window) != FALSE) == enabled) return;
  const bool hadFocus = GetFocus() == window;
  EnableWindow(window, enabled);
  if (hadFocus && !enabled) SetFocus(inputAllowed() ? grid_.window() : window_);
}

void MainWindow::updateInput() {
  const bool allowed = inputAllowed();
  if (!allowed) {
    keepFocus();
    help_.close();
    SendMessageW(item(idExchange), CB_SHOWDROPDOWN, FALSE, 0);
  }
  for (const auto& [shown, id] : ids_) applyEnabled(*shown, id);
  lookUp_.enable(allowed);
  list_.enable(allowed);
  notes_.bar().enable(allowed);
  grid_.takeInput(allowed);
  pane_.takeInput(allowed);
  if (allowed) giveFocusBack();
}

// Thousands of exchanges are added one by one: each is one message.
void MainWindow::applyItems(const Control& list) {
  const auto add = [this](const Control::Entry& entry) {
    SendMessageW(exchangeBox_, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(wide(entry.text)));
  };
  const auto& entries = list.items();
  const std::size_t shown = std::exchange(shownExchanges_, entries.size());
  if (entries.size() == shown + 1) return add(entries.back());
  if (entries.size() != shown) {
    SendMessageW(exchangeBox_, CB_RESETCONTENT, 0, 0);
    std::for_each(entries.begin(), entries.end(), add);
  }
  if (SendMessageW(exchangeBox_, CB_GETCURSEL, 0, 0) != list.listIndex())
    SendMessageW(exchangeBox_, CB_SETCURSEL, static_cast<WPARAM>(list.listIndex()), 0);
}

void MainWindow::applyHeading(const Control& grid, std::u16string_view property) {
  const char16_t digit = property.size() > 8 ? property[8] : u'x';
  const int column = digit - u'0';
  if (column >= 0 && column < columnCount && text::contains(property, u"Caption"))
    grid_.setHeading(column, wordsOf(grid, property));
}

void MainWindow::applyTip(const Control& shown, int id) {
  std::u16string tip = wordsOf(shown, u"ToolTipText");
  if ((id == idMajor || id == idMinor) && !lampNote_.empty()) {
    if (!tip.empty()) tip += u"\r\n";
    tip += lampNote_;
  }
  setTip(item(id), tip);
}

void MainWindow::setTip(HWND window, const std::u16string& tip) {
  TTTOOLINFOW tool{};
  tool.cbSize = sizeof tool;
  tool.uFlags = TTF_IDISHWND;  // it hears of the mouse from `translate`
  tool.hwnd = window_;
  tool.uId = reinterpret_cast<UINT_PTR>(window);
  tool.lpszText = const_cast<wchar_t*>(wide(tip));
  SendMessageW(tips_, TTM_DELTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
  if (!tip.empty()) SendMessageW(tips_, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
}

void MainWindow::dressPane() {
  Palette pane = palette_;
  pane.surface = background_.paneColour(palette_);
  pane_.setLook(worded(gridName), dpi_, pane);
}

// The loaders change hundreds of properties in a row: one restyling follows them all.
void MainWindow::wantRestyle() {
  if (restyleWanted_ || window_ == nullptr) return;
  restyleWanted_ = true;
  PostMessageW(window_, restyleMessage, 0, 0);
}

void MainWindow::restyle() {
  restyleWanted_ = false;
  workstation_ = workstationFont(dpi_);
  std::map<int, Font> fresh;
  for (const auto& [shown, id] : ids_) {
    if (id == idGrid) continue;
    Font font = makeFont(fontOf(&worded(*shown)), dpi_);
    SendMessageW(item(id), WM_SETFONT, reinterpret_cast<WPARAM>(font.get()), TRUE);
    fresh.emplace(id, std::move(font));
  }
  fonts_.swap(fresh);
  const FontChoice own = fontOf(&worded(form_->self()));
  Font plain = makeFont(own, dpi_);
  lookUp_.setFont(plain.get());
  list_.bar().setFont(plain.get(), dpi_);
  notes_.bar().setFont(plain.get(), dpi_);
  SendMessageW(list_.showAllButton(), WM_SETFONT, reinterpret_cast<WPARAM>(plain.get()), TRUE);
  status_.setFont(plain.get(), dpi_);
  for (HWND window : {notice_, tips_})
    SendMessageW(window, WM_SETFONT, reinterpret_cast<WPARAM>(plain.get()), TRUE);
  font_ = std::move(plain);
  bold_ = makeFont(fontOf(worded(u"lblMJ")), dpi_, FontStyle::bold);
  for (const WPARAM part : {static_cast<WPARAM>(-1), WPARAM{0}})  // the box, and a line of its list
    SendMessageW(item(idExchange), CB_SETITEMHEIGHT, part, entryHeight());
  grid_.setLook(worded(gridName), dpi_, palette_);
  list_.bar().setColours(palette_.surface, palette_.text);
  dressPane();
  background_.changed();
  place();
  showSelected();
  RedrawWindow(window_, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

int MainWindow::entryHeight() const {
  return lineHeight(font_.get()) + scaled(4, dpi_);
}

void MainWindow::recolour() {
  list_.bar().setColours(palette_.surface, palette_.text);
  grid_.setColours(palette_);
  dressPane();
  background_.changed();
  RedrawWindow(window_, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

// Most changes of the workstation's settings concern nothing that is drawn here.
void MainWindow::lookChanged(UINT message, WPARAM wide, LPARAM low) {
  if (message == WM_SYSCOLORCHANGE)  // only windows without a parent hear of it from the system
    for (HWND window : {grid_.window(), ListView_GetHeader(grid_.window()), status_.window(), tips_,
                        pane_.window(), exchangeBox_})
      SendMessageW(window, message, wide, low);
  const Palette colours = currentPalette();
  const bool recoloured = !(colours == palette_);
  palette_ = colours;
  if (message == WM_THEMECHANGED || !sameFont(workstationFont(dpi_), workstation_)) return wantRestyle();
  if (recoloured && !restyleWanted_) recolour();
}

std::u16string MainWindow::lampWords(bool major, bool lit) {
  if (major) return texts_.text(lit ? ViewText::majorLit : ViewText::majorClear);
  return texts_.text(lit ? ViewText::minorLit : ViewText::minorClear);
}

std::u16string MainWindow::lampsName() const {
  const Control* frame = form_ != nullptr ? form_->find(lampFrameName) : nullptr;
  return frame != nullptr ? wordsOf(*frame, u"Caption") : std::u16string{};
}

// The pane breaks its lines at once, so it is filled when it has its place.
void MainWindow::showSelected() {
  if (form_ == nullptr || pane_.window() == nullptr || restyleWanted_) return;
  const ShownRow* row = grid_.selectedRow();
  const auto place = grid_.selected();
  if (row != nullptr && place)
    pane_.showFault(*grid_.source(), *place, row->description);
  else
    pane_.showHint(grid_.size() > 0 ? texts_.text(ViewText::noSelection) : std::u16string{});
  notes_.look();
}

// What a saved list says besides its rows: what stands around them in the window.
list::Sheet MainWindow::sheet() {
  list::Sheet sheet;
  sheet.title = windowText(window_);
  if (const Control* list = control(u"drpPBXList"); list != nullptr && list->listIndex() >= 0)
    sheet.exchange = list->items().at(static_cast<std::size_t>(list->listIndex())).text;
  sheet.received = windowText(item(idReceived));
  const std::u16string label = withoutAccessKey(windowText(item(idReceivedLabel)));
  sheet.words = {label + u" " + sheet.received, lampWords(true, lit_[0]), lampWords(false, lit_[1]),
                 list_.count().value_or(countText_)};
  const Control* grid = control(gridName);
  for (std::size_t column = 0; grid != nullptr && column < sheet.headings.size(); ++column)
    sheet.headings[column] =
        wordsOf(*grid, std::u16string(u"Columns(") + static_cast<char16_t>(u'0' + column) + u").Caption");
  sheet.stored = list_.storedSize();
  sheet.noteHeadings = {texts_.text(ViewText::noteText), texts_.text(ViewText::noteAuthor),
                        texts_.text(ViewText::noteTime)};
  sheet.noteBegin = texts_.text(ViewText::noteBegin);
  return sheet;
}

}  // namespace vordane::window::win32
