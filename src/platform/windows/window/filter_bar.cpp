#include "platform/windows/window/filter_bar.h"

#include <windows.h>

#include <commctrl.h>

#include <algorithm>
#include <utility>

#include "platform/windows/window/accessible_name.h"
#include "platform/windows/window/child_window.h"
#include "platform/windows/window/children.h"
#include "platform/windows/window/fonts.h"
#include "platform/windows/window/geometry.h"
#include "platform/windows/window/handles.h"
#include "text/fill.h"
#include "text/numbers.h"

namespace vordane::window::win32 {
namespace {

constexpr wchar_t crossSign[] = L"\u00D7";

std::u16string number(std::size_t value) {
  return text::decimal(static_cast<std::int64_t>(value));
}

bool isTicked(HWND box) {
  return SendMessageW(box, BM_GETCHECK, 0, 0) == BST_CHECKED;
}

void tick(HWND box, bool on) {
  SendMessageW(box, BM_SETCHECK, on ? BST_CHECKED : BST_UNCHECKED, 0);
}

}  // namespace

void FilterBar::create(HWND parent, HWND next, ViewTexts& texts, Events events) {
  parent_ = parent;
  next_ = next;
  texts_ = &texts;
  events_ = std::move(events);
  parts_.assign(partCount, nullptr);
  kindList_.forgetWindow();
  waiting_ = {};
  open_ = false;
  enabled_ = notes_ = true;
}

void FilterBar::make() {
  makeParts();
  putBehind(GetWindow(next_, GW_HWNDPREV), parts_);
  kindList_.create(parent_, idKindList, texts_->text(ViewText::filterAnyProcessor),
                   {[this] {
                      showKindsCaption();
                      told();
                    },
                    [this] {
                      if (GetFocus() != part(partKinds)) kindList_.hide();
                    }});
  const HWND kinds = kindList_.window();
  putBehind(parts_.back(), {&kinds, 1});
  setFont(font_, dpi_);
  setColours(ground_, ink_);
  showDateStyle();
  fill(waiting_);
  setOtherDates(otherDates_);
  enable(enabled_);
  events_.made();
}

void FilterBar::makeParts() {
  ViewTexts& texts = *texts_;
  const DWORD label = SS_LEFT | SS_CENTERIMAGE, box = WS_TABSTOP | WS_BORDER | ES_AUTOHSCROLL;
  const DWORD ticked = WS_TABSTOP | BS_AUTOCHECKBOX, button = WS_TABSTOP | BS_PUSHBUTTON;
  const auto make = [&](Part which, int id, const wchar_t* type, const std::u16string& text, DWORD style) {
    parts_[which] = makeChild(parent_, id, type, text, style);
  };
  make(partTextLabel, idFilterTextLabel, WC_STATICW, texts.text(ViewText::filterText), label);
  make(partText, idFilterText, WC_EDITW, {}, box);
  make(partMajor, idFilterMajor, WC_BUTTONW, texts.text(ViewText::filterMajor), ticked);
  make(partMinor, idFilterMinor, WC_BUTTONW, texts.text(ViewText::filterMinor), ticked);
  make(partNoted, idFilterNoted, WC_BUTTONW, texts.text(ViewText::filterNoted), ticked);
  make(partKinds, idFilterKinds, WC_BUTTONW, texts.text(ViewText::filterKindsAll), button);
  make(partProcessorLabel, idFilterProcessorLabel, WC_STATICW, texts.text(ViewText::filterProcessor), label);
  make(partProcessor, idFilterProcessor, WC_COMBOBOXW, {}, WS_TABSTOP | WS_VSCROLL | CBS_DROPDOWNLIST);
  make(partSinceLabel, idFilterSinceLabel, WC_STATICW, texts.text(ViewText::filterSince), label);
  make(partSince, idFilterSince, WC_EDITW, {}, box);
  make(partUntilLabel, idFilterUntilLabel, WC_STATICW, texts.text(ViewText::filterUntil), label);
  make(partUntil, idFilterUntil, WC_EDITW, {}, box);
  make(partClear, idFilterClear, WC_BUTTONW, texts.text(ViewText::filterClear), button);
  make(partClose, idFilterClose, WC_BUTTONW, fromWide(crossSign, 1), button);
  make(partOtherDates, idFilterOtherDates, WC_BUTTONW, {}, ticked);
  make(partMessage, idFilterMessage, WC_STATICW, {}, label | SS_NOPREFIX | SS_ENDELLIPSIS);
}

void FilterBar::showDateStyle() {
  const std::u16string style = texts_->text(ViewText::filterDateStyle);
  for (const Part date : {partSince, partUntil})
    SendMessageW(part(date), EM_SETCUEBANNER, FALSE, reinterpret_cast<LPARAM>(wide(style)));
}

void FilterBar::reword() {
  if (!isMade()) return;
  constexpr std::pair<Part, ViewText> captions[] = {{partTextLabel, ViewText::filterText},
                                                    {partMajor, ViewText::filterMajor},
                                                    {partMinor, ViewText::filterMinor},
                                                    {partNoted, ViewText::filterNoted},
                                                    {partProcessorLabel, ViewText::filterProcessor},
                                                    {partSinceLabel, ViewText::filterSince},
                                                    {partUntilLabel, ViewText::filterUntil},
                                                    {partClear, ViewText::filterClear}};
  for (const auto& [which, words] : captions) setWindowText(part(which), texts_->text(words));
  showDateStyle();
  kindList_.reword(texts_->text(ViewText::filterAnyProcessor));
  const list::Filter filter = wanted();
  fillProcessors(filter.processor);
  showKindsCaption();
  setOtherDates(otherDates_);
}

void FilterBar::setFont(HFONT font, int dpi) {
  font_ = font;
  dpi_ = dpi;
  if (!isMade()) return;
  for (HWND window : parts_) SendMessageW(window, WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
  kindList_.setFont(font, dpi);
  SendMessageW(part(partProcessor), CB_SETITEMHEIGHT, static_cast<WPARAM>(-1),
               lineHeight(font_) + scaled(4, dpi_));
}

void FilterBar::setColours(COLORREF ground, COLORREF text) {
  ground_ = ground;
  ink_ = text;
  if (isMade()) kindList_.setColours(ground, text);
}

void FilterBar::show(bool focus) {
  if (!isMade()) make();
  open_ = true;
  for (std::size_t which = 0; which < partCount; ++which)
    ShowWindow(parts_[which], which != partOtherDates || otherDates_ > 0 ? SW_SHOWNA : SW_HIDE);
  if (!focus) return;
  SetFocus(part(partText));
  SendMessageW(part(partText), EM_SETSEL, 0, -1);
}

void FilterBar::hide() {
  if (!std::exchange(open_, false)) return;
  kindList_.hide();
  for (HWND window : parts_) ShowWindow(window, SW_HIDE);
}

void FilterBar::enable(bool enabled) {
  enabled_ = enabled;
  if (!isMade()) return;
  if (!enabled) kindList_.hide();
  for (std::size_t which = 0; which < partCount; ++which)
    if (which != partMessage) EnableWindow(parts_[which], enabled && (which != partNoted || notes_));
}

void FilterBar::fill(const list::Filter& filter) {
  if (!isMade()) {
    waiting_ = filter;
    return;
  }
  filling_ = true;
  setWindowText(part(partText), filter.text);
  tick(part(partMajor), filter.major);
  tick(part(partMinor), filter.minor);
  tick(part(partNoted), filter.noted);
  setWindowText(part(partSince), filter.since);
  setWindowText(part(partUntil), filter.until);
  tick(part(partOtherDates), filter.otherDates);
  const std::vector<list::Tally> kinds = kindList_.tallies();
  kindList_.fill(kinds, filter.kinds);
  fillProcessors(filter.processor);
  filling_ = false;
  showKindsCaption();
}

list::Filter FilterBar::wanted() const {
  if (!isMade()) return waiting_;
  list::Filter filter;
  filter.text = windowText(part(partText));
  filter.major = isTicked(part(partMajor));
  filter.minor = isTicked(part(partMinor));
  filter.noted = isTicked(part(partNoted));
  filter.kinds = kindList_.rule();
  filter.since = windowText(part(partSince));
  filter.until = windowText(part(partUntil));
  filter.otherDates = isTicked(part(partOtherDates));
  const auto chosen = SendMessageW(part(partProcessor), CB_GETCURSEL, 0, 0);
  if (chosen > 0 && static_cast<std::size_t>(chosen) <= processors_.size())
    filter.processor = processors_[static_cast<std::size_t>(chosen) - 1].key;
  return filter;
}

void FilterBar::setKinds(const std::vector<list::Tally>& kinds, const std::vector<list::Tally>& processors) {
  const list::Filter filter = wanted();
  processors_ = processors;
  kindList_.fill(kinds, filter.kinds);
  if (!isMade()) return;
  fillProcessors(filter.processor);
  showKindsCaption();
}

// A processor of which nothing is stored any more stays in the list while the filter names it.
void FilterBar::fillProcessors(const std::optional<std::u16string>& chosen) {
  const HWND box = part(partProcessor);
  const auto is = [&](const list::Tally& tally) { return tally.key == *chosen; };
  if (chosen && std::none_of(processors_.begin(), processors_.end(), is))
    processors_.push_back({*chosen, *chosen, {}});
  SendMessageW(box, CB_RESETCONTENT, 0, 0);
  const std::u16string any = texts_->text(ViewText::filterAnyProcessor);
  SendMessageW(box, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(wide(any)));
  WPARAM place = 0;
  for (std::size_t i = 0; i < processors_.size(); ++i) {
    SendMessageW(box, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(wide(processors_[i].shown)));
    if (chosen && processors_[i].key == *chosen) place = i + 1;
  }
  SendMessageW(box, CB_SETCURSEL, place, 0);
}

void FilterBar::showKindsCaption() {
  const bool all = kindList_.rule().way == list::KindRule::Way::all;
  const std::u16string some = fillText(texts_->text(ViewText::filterKindsSome),
                                       {number(kindList_.shownKinds()), number(kindList_.kinds())});
  setWindowText(part(partKinds), all ? texts_->text(ViewText::filterKindsAll) : some);
}

void FilterBar::offerNotes(bool offered) {
  notes_ = offered;
  if (isMade()) EnableWindow(part(partNoted), enabled_ && offered);
}

void FilterBar::setOtherDates(std::size_t rows) {
  otherDates_ = rows;
  if (!isMade()) return;
  setWindowText(part(partOtherDates), fillText(texts_->text(ViewText::filterOtherDates), {number(rows)}));
  ShowWindow(part(partOtherDates), open_ && rows > 0 ? SW_SHOWNA : SW_HIDE);
}

void FilterBar::tell(const std::u16string& message, bool onTheWay) {
  if (!isMade() || windowText(part(partMessage)) == message) return;
  SetWindowTextW(part(partMessage), wide(message));
  if (!message.empty() && !onTheWay) tellLive(part(partMessage));
}

bool FilterBar::has(HWND window) const {
  return window != nullptr &&
         (window == kindList_.window() || std::find(parts_.begin(), parts_.end(), window) != parts_.end());
}

void FilterBar::closeList() {
  kindList_.hide();
  SetFocus(part(partKinds));
}

void FilterBar::toggleList() {
  if (kindList_.open()) return closeList();
  placeList();
  kindList_.show();
}

void FilterBar::told() {
  if (!filling_) events_.changed();
}

bool FilterBar::command(int id, int code) {
  switch (id) {
    case idFilterText:
    case idFilterSince:
    case idFilterUntil:
      if (code == EN_CHANGE) told();
      return true;
    case idFilterMajor:
    case idFilterMinor:
    case idFilterNoted:
    case idFilterOtherDates:
      if (code == BN_CLICKED) told();
      return true;
    case idFilterProcessor:
      if (code == CBN_SELCHANGE) told();
      return true;
    case idFilterKinds:
      if (code == BN_CLICKED) toggleList();
      return true;
    default:
      return false;
  }
}

}  // namespace vordane::window::win32
