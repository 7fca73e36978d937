#include "platform/windows/window/main_window.h"

#include <algorithm>
#include <array>

#include "platform/windows/window/accessible_exchanges.h"
#include "platform/windows/window/accessible_name.h"
#include "platform/windows/window/children.h"
#include "platform/windows/window/geometry.h"
#include "text/fill.h"
#include "text/numbers.h"

namespace vordane::window::win32 {
namespace {

constexpr const wchar_t* className = windowClassName;
constexpr std::u16string_view application = u"VORDANE", section = u"Window";
constexpr std::u16string_view widthsKey = u"ColumnWidths", orderKey = u"ColumnOrder", paneKey = u"Pane",
                              placeKey = u"Place", maximisedKey = u"Maximised";
constexpr int designedWidth = 1080, designedHeight = 640, designedPane = 96;
constexpr int tipWidth = 320;
constexpr int gripWidth = 80;  // so much of a title bar can be taken hold of

void registerClass(WNDPROC procedure) {
  WNDCLASSEXW type{};
  type.cbSize = sizeof type;
  type.lpfnWndProc = procedure;
  type.hInstance = GetModuleHandleW(nullptr);
  type.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  type.hIcon = LoadIconW(type.hInstance, MAKEINTRESOURCEW(1));
  if (type.hIcon == nullptr) type.hIcon = LoadIconW(nullptr, IDI_APPLICATION);
  type.lpszClassName = className;
  RegisterClassExW(&type);
}

int systemDpi() {
  return static_cast<int>(GetDpiForSystem());
}

int titleHeight(int dpi) {
  return GetSystemMetricsForDpi(SM_CYCAPTION, static_cast<UINT>(dpi)) +
         GetSystemMetricsForDpi(SM_CYSIZEFRAME, static_cast<UINT>(dpi));
}

std::u16string joined(std::initializer_list<std::int32_t> numbers) {
  std::string text;
  for (const std::int32_t number : numbers) {
    if (!text.empty()) text += ',';
    text += std::to_string(number);
  }
  return {text.begin(), text.end()};
}

// Whether it fills its screen, or will when it is no longer minimised.
bool isMaximised(HWND window) {
  if (!IsIconic(window)) return IsZoomed(window) != FALSE;
  WINDOWPLACEMENT placement{};
  placement.length = sizeof placement;
  return GetWindowPlacement(window, &placement) && (placement.flags & WPF_RESTORETOMAXIMIZED) != 0;
}

// How far the corner that window placements are counted from is from the screen's.
POINT workAreaOffset(HWND window) {
  MONITORINFO info{};
  info.cbSize = sizeof info;
  if (!GetMonitorInfoW(MonitorFromWindow(window, MONITOR_DEFAULTTOPRIMARY), &info)) return {};
  return {info.rcWork.left - info.rcMonitor.left, info.rcWork.top - info.rcMonitor.top};
}

// Where the window stands when it is neither minimised nor maximised, on the screen.
RECT normalPlace(HWND window) {
  WINDOWPLACEMENT placement{};
  placement.length = sizeof placement;
  RECT place{};
  GetWindowRect(window, &place);
  if (!IsIconic(window) && !IsZoomed(window)) return place;
  if (!GetWindowPlacement(window, &placement)) return place;
  place = placement.rcNormalPosition;  // counted from the work area
  const POINT offset = workAreaOffset(window);
  OffsetRect(&place, offset.x, offset.y);
  return place;
}

// Moves the window there; one that is minimised or maximised when it is so no longer.
void setNormalPlace(HWND window, const RECT& place) {
  if (!IsIconic(window) && !IsZoomed(window)) {
    SetWindowPos(window, nullptr, place.left, place.top, width(place), height(place),
                 SWP_NOZORDER | SWP_NOACTIVATE);
    return;
  }
  WINDOWPLACEMENT placement{};
  placement.length = sizeof placement;
  if (!GetWindowPlacement(window, &placement)) return;
  const POINT offset = workAreaOffset(window);
  placement.rcNormalPosition = place;
  OffsetRect(&placement.rcNormalPosition, -offset.x, -offset.y);
  if (!IsWindowVisible(window)) placement.showCmd = SW_HIDE;
  SetWindowPlacement(window, &placement);
}

}  // namespace

std::unique_ptr<Win32View> makeWin32View(ViewTexts& texts, platform::SettingsStore& settings,
                                         std::unique_ptr<Signals> signals) {
  return std::make_unique<MainWindow>(texts, settings, std::move(signals));
}

MainWindow::MainWindow(ViewTexts& texts, platform::SettingsStore& settings, std::unique_ptr<Signals> signals)
    : texts_(texts),
      settings_(settings),
      look_(list_.desk(), settings),
      attention_(settings, std::move(signals)),
      timer_([this] {
        if (events_ != nullptr) events_->tick();
      }),
      accessibleParts_{
          texts,
          grid_,
          [this] { return window_; },
          [this] { return inputAllowed() && events_ != nullptr; },
          [this](bool major) { return lit_[major ? 0 : 1]; },
          [this] { return lampNote_; },
          [this] { return lampsName(); },
          [this](int column) { PostMessageW(window_, sortMessage, static_cast<WPARAM>(column), 0); },
          [this](std::size_t entry) { return newsOf(entry); }} {}

MainWindow::~MainWindow() {
  detach();
}

void MainWindow::attach(Form& form, ViewEvents& events) {
  detach();
  form_ = &form;
  words_ = nullptr;
  events_ = &events;
  const INITCOMMONCONTROLSEX controls{sizeof controls,
                                      ICC_STANDARD_CLASSES | ICC_LISTVIEW_CLASSES | ICC_BAR_CLASSES};
  InitCommonControlsEx(&controls);
  DisableProcessWindowsGhosting();  // a long step paints by itself
  registerClass(procedure);
  const RECT at = placeFromSettings();
  CreateWindowExW(WS_EX_CONTROLPARENT, className,
                  wide(form.self().has(u"Caption") ? form.self().text(u"Caption") : std::u16string{}),
                  WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN | (comesBackMaximised() ? WS_MAXIMIZE : 0U), at.left,
                  at.top, width(at), height(at), nullptr, nullptr, GetModuleHandleW(nullptr), this);
  form.listen([this](Control& changed, std::u16string_view property) { controlChanged(changed, property); });
  dpi_ = static_cast<int>(GetDpiForWindow(window_));
  paneHeight_ = scaled(designedPane, dpi_);
  palette_ = currentPalette();
  accessible_.begin();
  createChildren();
  createGridAndPane();
  createMenuEntries();
  createAttention();
  createLook();
  applyWhole();
  readSettings();
  wantRestyle();  // once, after all that the load changes
  PostMessageW(window_, nameMessage, 0, 0);
}

void MainWindow::detach() {
  if (window_ == nullptr) return;
  writeSettings();
  if (form_ != nullptr) form_->listen({});
  events_ = nullptr;
  form_ = nullptr;
  ids_.clear();
  items_.clear();
  lastFocus_ = nullptr;
  accessible_.end();
  attention_.forget();
  look_.forget();
  storeWatch_.forget();
  help_.close();
  timer_.stop(window_);
  grid_.forgetRows();
  list_.forgetRows();
  exchangeBox_ = nullptr;
  shownExchanges_ = 0;
  status_ = {};
  lampNote_.clear();
  restyleWanted_ = false;
  DestroyWindow(std::exchange(window_, nullptr));
}

void MainWindow::createChildren() {
  const HINSTANCE instance = GetModuleHandleW(nullptr);
  tips_ = CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, L"", WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX, 0, 0,
                          0, 0, window_, nullptr, instance, nullptr);
  for (const Child& child : children) {
    Control* shown = control(child.control);
    if (shown == nullptr) continue;
    ids_[shown] = child.id;
    const HWND made =
        CreateWindowExW(child.extendedStyle, child.type, L"", WS_CHILD | child.style, 0, 0, 0, 0, window_,
                        reinterpret_cast<HMENU>(static_cast<INT_PTR>(child.id)), instance, nullptr);
    items_[child.id] = made;
    if (child.id == idExchange) exchangeBox_ = made;
    if (isExplained(child.id))
      watches_[child.id].start(made, [this, id = child.id](UINT message, WPARAM wide, LPARAM low) {
        return childHeard(id, message, wide, low);
      });
  }
  watchExchanges();
  SendMessageW(tips_, TTM_SETMAXTIPWIDTH, 0, scaled(tipWidth, dpi_));
  lookUp_.create(window_, {idLookUpLabel, idLookUpText, idLookUpNext, idLookUpClose, idLookUpMessage}, texts_,
                 [this] { nameLookUp(); });
  list_.create(window_, {[this] { return events_ != nullptr ? events_->listUse() : ListUse::never; },
                         [this] { place(); }, [this] { showCount(); }, [this] { showFound(); },
                         [this] { nameFilter(); }, [this] { return sheet(); },
                         [this](const std::u16string& words, bool onTheWay) {
                           status_.remark(words, onTheWay);
                           placeStatus();
                         }});
}

// The system's own objects know the names alone.
void MainWindow::watchExchanges() {
  if (exchangeBox_ == nullptr) return;
  exchangeWatch_.start(exchangeBox_, [this](UINT message, WPARAM wide, LPARAM low) {
    const LRESULT object = message == WM_GETOBJECT ? objectFor(idExchange, wide, low) : 0;
    return object != 0 ? object : exchangeWatch_.pass(message, wide, low);
  });
  exchangeListWatch_.start(listOf(exchangeBox_), [this](UINT message, WPARAM wide, LPARAM low) {
    if (message == WM_GETOBJECT && asksFor(low, OBJID_CLIENT))
      return accessible_.answer(wide, exchangeListElement(accessibleParts_));
    return exchangeListWatch_.pass(message, wide, low);
  });
}

void MainWindow::createGridAndPane() {
  const HINSTANCE instance = GetModuleHandleW(nullptr);
  notice_ =
      CreateWindowExW(0, WC_STATICW, L"", WS_CHILD | WS_CLIPSIBLINGS | SS_OWNERDRAW, 0, 0, 0, 0, window_,
                      reinterpret_cast<HMENU>(static_cast<INT_PTR>(idNotice)), instance, nullptr);
  Grid::Events events;
  events.headingClicked = [this](int column) { headingClicked(column); };
  events.objectAsked = [this](WPARAM wide, LPARAM low) { return objectFor(idGrid, wide, low); };
  events.selectionChanged = [this] {
    list_.selectionMoved();
    if (status_.takeRemarkAway()) placeStatus();
    showSelected();
    lookUpNote_.clear();
    showFound();
    const bool several = grid_.selection().size() > 1;
    if (std::exchange(severalSelected_, several) || several) showCount();
  };
  events.scrolled = [this] { list_.scrolled(); };
  events.copy = [this] { list_.copy(RowOutput::What::rows); };
  grid_.create(window_, idGrid, std::move(events));
  if (Control* grid = control(gridName)) ids_[grid] = idGrid;
  pane_.create(window_, idPane, [this](WPARAM wide, LPARAM low) { return objectFor(idPane, wide, low); });
  createNotes();
  status_.create(window_, idStatus, idAccount);
}

void MainWindow::createNotes() {
  notes_.create(window_,
                {[this] { return events_ != nullptr ? events_->listUse() : ListUse::never; },
                 [this] { return list_.rows(); },
                 [this] {
                   list_.noteWritten();
                   grid_.refresh();
                 },
                 [this] { place(); }, [this] { makeLive(notes_.bar().message(), Urgency::politely); },
                 [this](HWND window, const std::u16string& words) { setTip(window, words); },
                 [this](const std::u16string& words) {
                   status_.remark(words);
                   placeStatus();
                 }});
}

// Below the entries of the frame, which the system words in its own language.
void MainWindow::createMenuEntries() {
  const HMENU menu = GetSystemMenu(window_, FALSE);
  AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
  AppendMenuW(menu, MF_STRING, soundCommand, wide(texts_.text(ViewText::alarmSound)));
  AppendMenuW(menu, MF_STRING, guideCommand, wide(texts_.text(ViewText::openGuide)));
}

// When the system menu opens.
void MainWindow::showMenuEntries(HMENU menu) {
  const auto offer = [&](UINT command, ViewText words, bool offered) {
    ModifyMenuW(menu, command, MF_BYCOMMAND | MF_STRING | (offered ? MF_ENABLED : MF_GRAYED), command,
                wide(texts_.text(words)));
  };
  offer(guideCommand, ViewText::openGuide, events_->guideOffered());
  offer(soundCommand, ViewText::alarmSound, events_->listUse() == ListUse::now);
  CheckMenuItem(menu, soundCommand, attention_.soundWanted() ? MF_CHECKED : MF_UNCHECKED);
  showLanguages(menu);
}

// Those that can be read now, below the other entries; none while there is but one.
void MainWindow::showLanguages(HMENU menu) {
  const Languages languages = events_->languages();
  for (UINT i = 0; i <= mostLanguages; ++i) RemoveMenu(menu, languageCommand(i), MF_BYCOMMAND);
  const UINT count = std::min(static_cast<UINT>(languages.names.size()), mostLanguages);
  if (count < 2) return;
  const UINT state = events_->listUse() == ListUse::now ? MF_ENABLED : MF_GRAYED;
  AppendMenuW(menu, MF_SEPARATOR, languageCommand(mostLanguages), nullptr);
  for (UINT i = 0; i < count; ++i)
    AppendMenuW(menu, MF_STRING | state, languageCommand(i), wide(languages.names[i]));
  if (languages.chosen < count)
    CheckMenuRadioItem(menu, languageCommand(0), languageCommand(count - 1),
                       languageCommand(static_cast<UINT>(languages.chosen)), MF_BYCOMMAND);
}

void MainWindow::createAttention() {
  attention_.create(
      window_,
      {[this] { return events_ != nullptr && events_->listUse() != ListUse::never; },
       [this](attention::Lamp lamp) { return item(lamp == attention::Lamp::major ? idMajor : idMinor); },
       [this](attention::Lamp lamp) { return lampWords(lamp == attention::Lamp::major, true); }});
}

void MainWindow::createLook() {
  const auto events = [this] { return events_; };
  look_.create(window_, {[events] { return events() != nullptr ? events()->listUse() : ListUse::never; },
                         [events] { return events() != nullptr ? events()->arrivals() : nullptr; },
                         [this] { return exchangeIds(); },
                         [this]() -> std::optional<std::int64_t> {
                           const Control* list = control(u"drpPBXList");
                           if (list == nullptr || list->listIndex() < 0) return {};
                           return list->items().at(static_cast<std::size_t>(list->listIndex())).itemData;
                         },
                         [this] { grid_.marksChanged(); }, [this] { redrawExchanges(exchangeBox_); }});
  storeWatch_.create(window_,
                     {[events] { return events() != nullptr ? events()->listUse() : ListUse::never; },
                      [events] { return events()->lookAtStore(); }});
  grid_.setNews([this](std::size_t row) { return look_.isNew(row); }, texts_.text(ViewText::newFault));
}

RECT MainWindow::placeFromSettings() const {
  const int dpi = systemDpi();
  const RECT work = workAreas().empty() ? RECT{0, 0, 1024, 768} : workAreas().front();
  const int w = std::min(scaled(designedWidth, dpi), width(work));
  const int h = std::min(scaled(designedHeight, dpi), height(work));
  const int left = static_cast<int>(work.left) + (width(work) - w) / 2;
  const int top = static_cast<int>(work.top) + (height(work) - h) / 2;
  RECT place{left, top, left + w, top + h};
  const auto kept = readNumbers(settings_.read(application, section, placeKey).value_or(u""));
  if (!kept || kept->size() != 4) return place;
  const std::vector<int>& n = *kept;
  if (n[2] > 0 && n[3] > 0)
    place = {toPixels(n[0], dpi), toPixels(n[1], dpi), toPixels(n[0], dpi) + toPixels(n[2], dpi),
             toPixels(n[1], dpi) + toPixels(n[3], dpi)};
  return pulledBack(fitted(place, workAreas()), workAreas(), titleHeight(dpi), scaled(gripWidth, dpi));
}

bool MainWindow::comesBackMaximised() const {
  return settings_.read(application, section, maximisedKey) == u"1";
}

void MainWindow::readSettings() {
  ColumnLayout layout;
  const auto read = [&](std::u16string_view key) {
    return settings_.read(application, section, key).value_or(u"");
  };
  if (const auto widths = readWidths(read(widthsKey))) layout.widths = *widths;
  if (const auto order = readOrder(read(orderKey))) layout.order = *order;
  grid_.setLayout(layout);
  const auto pane = readNumbers(read(paneKey));
  if (pane && pane->size() == 1) paneHeight_ = scaled(pane->front(), dpi_);
}

void MainWindow::writeSettings() {
  const ColumnLayout layout = grid_.layout();
  const RECT at = normalPlace(window_);
  const int dpi = systemDpi();
  const auto write = [&](std::u16string_view key, const std::u16string& value) {
    settings_.write(application, section, key, value);
  };
  write(widthsKey, widthsAsText(layout));
  write(orderKey, orderAsText(layout));
  write(paneKey, joined({MulDiv(paneHeight_, designDpi, dpi_)}));
  write(placeKey, joined({toTwips(at.left, dpi), toTwips(at.top, dpi), toTwips(width(at), dpi),
                          toTwips(height(at), dpi)}));
  write(maximisedKey, isMaximised(window_) ? u"1" : u"0");
}

// The starter's wish (a hidden or minimised first window) goes for programs that it starts for a person to
// use; this window shows when its host says so, hence no ShowWindow for the first time. The host's window is
// in the foreground then: the system lets this one take its place when the host has handed over its right.
void MainWindow::setVisible(bool visible) {
  if (restyleWanted_) restyle();
  const UINT how = visible ? SWP_SHOWWINDOW : SWP_HIDEWINDOW | SWP_NOACTIVATE | SWP_NOZORDER;
  SetWindowPos(window_, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | how);
  attention_.look();
  if (!visible) return;
  if (IsIconic(window_)) ShowWindow(window_, SW_RESTORE);
  SetForegroundWindow(window_);
}

void MainWindow::refresh() {
  grid_.refresh();
  showSelected();
}

void MainWindow::setInputEnabled(bool enabled) {
  if (inputEnabled_ == enabled) return;
  inputEnabled_ = enabled;
  updateInput();
}

void MainWindow::setHourglass(bool on) {
  hourglass_ = on;
  SetCursor(LoadCursorW(nullptr, on ? IDC_WAIT : IDC_ARROW));
}

// Its name and identifier; empty without one.
std::u16string MainWindow::chosenExchange() {
  const Control* list = control(u"drpPBXList");
  if (list == nullptr || list->listIndex() < 0) return {};
  const auto& entry = list->items().at(static_cast<std::size_t>(list->listIndex()));
  return entry.text + u'\n' + text::decimal(entry.itemData);
}

std::vector<std::int64_t> MainWindow::exchangeIds() {
  std::vector<std::int64_t> ids;
  if (const Control* list = control(u"drpPBXList"))
    for (const Control::Entry& entry : list->items()) ids.push_back(entry.itemData);
  return ids;
}

// For screen readers; empty without any.
std::u16string MainWindow::newsOf(std::size_t entry) {
  const Control* list = control(u"drpPBXList");
  if (list == nullptr || entry >= list->items().size()) return {};
  const std::u16string faults = look_.newFaults(list->items()[entry].itemData);
  return faults.empty() ? faults : fillText(texts_.text(ViewText::newFaults), {faults});
}

void MainWindow::setRows(GridSource* rows) {
  list_.setRows(rows, chosenExchange());
  look_.rowsSet();
  storeWatch_.rowsSet();
  notes_.look();
  place();
}

void MainWindow::setLamp(bool major, bool lit) {
  lit_[major ? 0 : 1] = lit;
  const HWND lamp = item(major ? idMajor : idMinor);
  setWindowText(lamp, lampWords(major, lit));
  NotifyWinEvent(EVENT_OBJECT_STATECHANGE, lamp, OBJID_CLIENT, CHILDID_SELF);
  InvalidateRect(lamp, nullptr, FALSE);
  attention_.shown(chosenExchange(), major ? attention::Lamp::major : attention::Lamp::minor, lit);
}

void MainWindow::setLampNote(std::u16string_view note) {
  if (lampNote_ == note) return;
  lampNote_ = note;
  for (const auto& [shown, id] : ids_) {
    if (id != idMajor && id != idMinor) continue;
    applyTip(*shown, id);
    NotifyWinEvent(EVENT_OBJECT_DESCRIPTIONCHANGE, item(id), OBJID_CLIENT, CHILDID_SELF);
  }
}

void MainWindow::setStatus(int part, std::u16string_view text) {
  if (part < 0 || part >= StatusLine::parts || window_ == nullptr) return;
  if (part != countPart) {
    status_.setText(part, std::u16string(text));
    return placeStatus();
  }
  countText_ = text;
  showCount();
}

void MainWindow::showCount() {
  if (window_ == nullptr || status_.window() == nullptr) return;
  std::u16string words = list_.count().value_or(countText_);
  if (const std::size_t selected = grid_.selection().size(); selected > 1)
    words = fillText(texts_.text(ViewText::rowsSelected),
                     {words, text::decimal(static_cast<std::int64_t>(selected))});
  status_.setText(countPart, words);
  placeStatus();
}

void MainWindow::setNotice(std::u16string_view text) {
  noticeText_ = text;
  const bool other = windowText(notice_) != noticeWords();
  setWindowText(notice_, noticeWords());
  place();
  InvalidateRect(notice_, nullptr, FALSE);
  // Who waits has asked for it himself, and is told how far it is again and again.
  if (other && noticeKind_ != NoticeKind::waiting && !noticeText_.empty()) tellLive(notice_);
}

void MainWindow::setNoticeKind(NoticeKind kind) {
  noticeKind_ = kind;
  InvalidateRect(notice_, nullptr, FALSE);
}

void MainWindow::paintNow() {
  if (restyleWanted_) restyle();
  RedrawWindow(window_, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
}

void MainWindow::popUpMenu(std::u16string_view) {
  const Menu menu(CreatePopupMenu());
  const Control* whatsThis = control(whatsThisItem);
  if (whatsThis == nullptr) return;
  AppendMenuW(menu.get(), MF_STRING, 1, wide(wordsOf(*whatsThis, u"Caption")));
  POINT at{};
  GetCursorPos(&at);
  SetForegroundWindow(window_);
  const BOOL chosen =
      TrackPopupMenu(menu.get(), TPM_RETURNCMD | TPM_RIGHTBUTTON, at.x, at.y, 0, window_, nullptr);
  if (chosen == 1 && events_ != nullptr) events_->whatsThisChosen();
}

void MainWindow::showWhatsThis(Control& control, std::u16string_view help) {
  if (window_ == nullptr || help.empty()) return;
  const auto found = ids_.find(&control);
  help_.show(window_, found != ids_.end() ? item(found->second) : window_, std::u16string(help), font_.get(),
             dpi_);
}

View::Size MainWindow::screenSize() {
  const int dpi = systemDpi();
  return {toTwips(GetSystemMetrics(SM_CXSCREEN), dpi), toTwips(GetSystemMetrics(SM_CYSCREEN), dpi)};
}

View::Size MainWindow::windowSize() {
  const RECT at = normalPlace(window_);
  return {toTwips(width(at), systemDpi()), toTwips(height(at), systemDpi())};
}

void MainWindow::moveTo(std::int32_t left, std::int32_t top) {
  const int dpi = systemDpi();
  RECT at = normalPlace(window_);
  OffsetRect(&at, toPixels(left, dpi) - static_cast<int>(at.left),
             toPixels(top, dpi) - static_cast<int>(at.top));
  const RECT inside = fitted(at, workAreas());  // the place stays as stated
  at.right = at.left + width(inside);
  at.bottom = at.top + height(inside);
  setNormalPlace(window_, pulledBack(at, workAreas(), titleHeight(dpi), scaled(gripWidth, dpi)));
}

std::pair<std::int32_t, std::int32_t> MainWindow::position() {
  const RECT at = normalPlace(window_);
  return {toTwips(at.left, systemDpi()), toTwips(at.top, systemDpi())};
}

}  // namespace vordane::window::win32
