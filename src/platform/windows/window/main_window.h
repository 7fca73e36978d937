// The one window: draws the form and turns messages into ViewEvents calls. It decides nothing about the
// system. Its parts stand in several files: creation and the View interface (main_window.cpp), what the form
// says (main_window_model.cpp), messages (main_window_messages.cpp), place and ground
// (main_window_layout.cpp), the rows' menu and the look-up bar (main_window_list.cpp).
#pragma once

#include <array>
#include <map>

#include "platform/windows/window/accessible_parts.h"
#include "platform/windows/window/attention_work.h"
#include "platform/windows/window/background.h"
#include "platform/windows/window/children.h"
#include "platform/windows/window/detail_pane.h"
#include "platform/windows/window/exchange_list.h"
#include "platform/windows/window/grid.h"
#include "platform/windows/window/help_popup.h"
#include "platform/windows/window/layout.h"
#include "platform/windows/window/list_work.h"
#include "platform/windows/window/look_up_bar.h"
#include "platform/windows/window/look_work.h"
#include "platform/windows/window/note_work.h"
#include "platform/windows/window/status_line.h"
#include "platform/windows/window/store_watch.h"
#include "platform/windows/window/tick_timer.h"
#include "platform/windows/window/win32_view.h"

namespace vordane::window::win32 {

class MainWindow final : public Win32View {
 public:
  MainWindow(ViewTexts& texts, platform::SettingsStore& settings, std::unique_ptr<Signals> signals);
  ~MainWindow() override;

  HWND window() const override { return window_; }
  bool translate(MSG& message) override;
  void serveDueTick() override;

  void attach(Form& form, ViewEvents& events) override;
  void detach() override;
  void setVisible(bool visible) override;
  bool visible() override { return IsWindowVisible(window_) != FALSE; }
  void refresh() override;
  void setInputEnabled(bool enabled) override;
  void setHourglass(bool on) override;
  void startTimer(int milliseconds) override { timer_.start(window_, milliseconds); }
  void stopTimer() override { timer_.stop(window_); }
  void setWords(Form* words) override;
  void setRows(GridSource* rows) override;
  void setSortMark(int column, bool descending) override { grid_.setSortMark(column, descending); }
  void setLamp(bool major, bool lit) override;
  void setLampNote(std::u16string_view note) override;
  void setStatus(int part, std::u16string_view text) override;
  void setNotice(std::u16string_view text) override;
  void setNoticeKind(NoticeKind kind) override;
  void paintNow() override;
  void popUpMenu(std::u16string_view menu) override;
  void showWhatsThis(Control& control, std::u16string_view help) override;
  Size screenSize() override;
  Size windowSize() override;
  void moveTo(std::int32_t left, std::int32_t top) override;
  std::pair<std::int32_t, std::int32_t> position() override;

 private:
  static constexpr UINT restyleMessage = WM_APP + 1, nameMessage = WM_APP + 2, sortMessage = WM_APP + 3;

  // Creation.
  void createChildren();
  void createGridAndPane();
  void createNotes();
  void createAttention();
  void createLook();
  void watchExchanges();
  void createMenuEntries();
  void showMenuEntries(HMENU menu);
  void showLanguages(HMENU menu);
  void nameParts();
  void nameLookUp();
  void nameFilter();
  void nameButton(HWND button, ViewText name);
  void readSettings();
  void writeSettings();
  RECT placeFromSettings() const;
  bool comesBackMaximised() const;

  // What the form says.
  Control* control(std::u16string_view name) { return form_ != nullptr ? form_->find(name) : nullptr; }
  // Null for one that the window has not got.
  HWND item(int id) const {
    const auto made = items_.find(id);
    return made != items_.end() ? made->second : GetDlgItem(window_, id);
  }
  const Control& worded(const Control& own) const;
  const Control* worded(std::u16string_view name);
  std::u16string wordsOf(const Control& own, std::u16string_view property) const;
  void controlChanged(Control& control, std::u16string_view property);
  void formChanged(std::u16string_view property);
  void applyWhole();
  void apply(Control& control, int id);
  void applyEnabled(const Control& control, int id);
  void applyItems(const Control& control);
  void applyHeading(const Control& grid, std::u16string_view property);
  void applyTip(const Control& control, int id);
  void setTip(HWND window, const std::u16string& tip);
  void wantRestyle();
  void restyle();
  void recolour();
  void lookChanged(UINT message, WPARAM wide, LPARAM low);
  void dressPane();
  bool inputAllowed() const;
  void updateInput();
  std::u16string lampWords(bool major, bool lit);
  std::u16string chosenExchange();
  std::vector<std::int64_t> exchangeIds();
  std::u16string newsOf(std::size_t entry);
  void showSelected();

  // Place and ground.
  LayoutInput layoutInput() const;
  void place();
  std::u16string noticeWords() const;
  void placeShowAll(const RECT& rows);
  bool noticeInRowsPlace() const;  // no rows: it stands below the headings, else above them
  int headingHeight() const;
  void placeNotice(const Layout& layout);
  void placeStatus();
  void tellModelOfPlaces();
  void tellPlace(Control& panel, const RECT& pixels) const;
  HBRUSH ground();
  void paintGround(HDC dc);
  bool onSplitter(POINT point) const;
  void moveSplitter(int top);

  // Messages.
  static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wide, LPARAM low);
  LRESULT childHeard(int id, UINT message, WPARAM wide, LPARAM low);
  LRESULT handle(UINT message, WPARAM wide, LPARAM low);
  LRESULT handleInput(UINT message, WPARAM wide, LPARAM low);
  LRESULT handleDrawing(UINT message, WPARAM wide, LPARAM low);
  LRESULT command(int id, int code);
  LRESULT notify(LPARAM low);
  LRESULT objectFor(int id, WPARAM wide, LPARAM low) const;
  std::u16string lampsName() const;
  void buttonClicked(int id);
  void headingClicked(int column);
  void exchangeNotified(int code);
  void exchangePicked();
  bool served(MSG& message);
  bool keyDown(WPARAM key);
  bool systemKeyDown(WPARAM key);
  void contextMenu(HWND source, POINT place);
  void gridMenu(POINT place);
  void appendFilters(HMENU menu, const GridRow& row);
  void appendCopies(HMENU menu);
  void chosenInMenu(UINT command, const GridRow& row);
  void drawItem(const DRAWITEMSTRUCT& item);
  void drawExchange(const DRAWITEMSTRUCT& item);
  int entryHeight() const;
  void densityChanged(int dpi, const RECT& place);
  void escape();
  void showCount();
  void keepFocus();
  void giveFocusBack();
  std::u16string focusedPart() const;

  // Looking up.
  void openLookUp();
  void closeLookUp();
  void lookUpNext(LookUpWay way = LookUpWay::forwards);
  void markFound();
  void showFound();
  list::Sheet sheet();
  void goToNextNew();

  ViewTexts& texts_;
  platform::SettingsStore& settings_;
  Form* form_ = nullptr;
  Form* words_ = nullptr;  // whose texts and fonts show; null: the form's own
  ViewEvents* events_ = nullptr;
  HWND window_ = nullptr;
  HWND tips_ = nullptr, notice_ = nullptr;
  HWND exchangeBox_ = nullptr;
  std::size_t shownExchanges_ = 0;  // entries of the box
  std::map<const Control*, int> ids_;
  std::map<int, HWND> items_;     // of the form's controls: the system would look through all children
  std::map<int, Watch> watches_;  // of the controls that a right click explains
  Watch exchangeWatch_, exchangeListWatch_;
  Grid grid_;
  DetailPane pane_;
  LookUpBar lookUp_;
  ListWork list_{grid_, texts_};
  NoteWork notes_{grid_, texts_};
  LookWork look_;
  StoreWatch storeWatch_;
  StatusLine status_;
  AttentionWork attention_;
  HelpPopup help_;
  Background background_;
  TickTimer timer_;
  AccessibleLife accessible_;
  const AccessibleParts accessibleParts_;
  Palette palette_;
  int dpi_ = 96;
  std::map<int, Font> fonts_;  // by the child's identifier
  Font font_, bold_;
  LOGFONTW workstation_{};  // what the faces were made from
  std::array<bool, 2> lit_{};
  std::u16string noticeText_, countText_, lampNote_;  // as the form says them
  NoticeKind noticeKind_ = NoticeKind::hint;
  std::u16string lookUpNote_;  // of the last step: the search went round, or found nothing
  Layout layout_;
  int paneHeight_ = 0;
  bool inputEnabled_ = true, hourglass_ = false, restyleWanted_ = false, ownChange_ = false;
  bool draggingSplitter_ = false, severalSelected_ = false;
  HWND lastFocus_ = nullptr;
};

}  // namespace vordane::window::win32
