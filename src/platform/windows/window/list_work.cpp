#include "platform/windows/window/list_work.h"

#include <windows.h>

#include <commctrl.h>

#include <chrono>

#include "list/flood_words.h"
#include "platform/windows/window/child_window.h"
#include "platform/windows/window/children.h"
#include "platform/windows/window/handles.h"
#include "text/fill.h"
#include "text/numbers.h"
#include "text/text.h"

namespace vordane::window::win32 {
namespace {

constexpr UINT_PTR sliceTimer = 1, placeTimer = 2;
constexpr UINT pause = USER_TIMER_MINIMUM, rest = 100;  // milliseconds between slices, and while it rests
constexpr std::chrono::milliseconds sliceLength{6};     // and the piece that was begun: less than 10
constexpr std::size_t dayLength = 10;

std::u16string number(std::size_t value) {
  return text::decimal(static_cast<std::int64_t>(value));
}

}  // namespace

void ListWork::create(HWND parent, Around around) {
  parent_ = parent;
  around_ = std::move(around);
  opened_ = false;
  output_.create(parent, {around_.use, around_.sheet, around_.say});
  showAll_ = makeChild(parent, idShowAll, WC_BUTTONW, withoutAccessKey(texts_.text(ViewText::filterClear)),
                       WS_TABSTOP | BS_PUSHBUTTON);
  flood_.create(parent, idFlood, Strip::Sign::flood);
  newer_.create(parent, idNewer, Strip::Sign::above);
  bar_.create(parent, flood_.window(), texts_, {[this] { follow(bar_.wanted()); }, around_.barMade});
}

void ListWork::enable(bool enabled) {
  bar_.enable(enabled);
  EnableWindow(flood_.window(), enabled);
  EnableWindow(newer_.window(), enabled);
}

void ListWork::reword() {
  bar_.reword();
  setWindowText(showAll_, withoutAccessKey(texts_.text(ViewText::filterClear)));
  desk_.reword();
  if (desk_.stored() != nullptr && around_.use() != ListUse::never) digest_.begin();
  tellFlood();
  tellNewer();
  wake();
  tell();
}

void ListWork::noteWritten() {
  desk_.noteWritten();
  finder_.begin();
  wake();
  tell();
}

void ListWork::forgetRows() {
  output_.forget();
  finder_.seek({});
  steady_.forget();
  digest_.forget();
  desk_.setStored(nullptr, {});
}

void ListWork::setRows(GridSource* rows, const std::u16string& exchange) {
  resized_ = false;
  const bool used = around_.use() != ListUse::never;
  used ? output_.giveUp() : output_.forget();
  desk_.setStored(rows, used ? std::optional(exchange) : std::nullopt);
  if (!used) finder_.seek({});
  finder_.begin();
  lastSelected_ = 0;
  const bool another = std::exchange(exchange_, exchange) != exchange;
  // In another order there are the same faults.
  const bool sameFaults = byChoice_ && !another;
  if (!used || rows == nullptr || another || (sameFaults && !digest_.done())) digest_.forget();
  if (used && rows != nullptr && !sameFaults) digest_.begin();
  if (another || !bar_.open()) {  // else what is being typed stays
    bar_.fill(desk_.filter());
    mistake_ = list::Mistake::none;
  }
  const auto place = used && rows != nullptr ? placeIn(*rows, another) : std::nullopt;
  if (!used) steady_.forget();
  bar_.offerNotes(used && rows != nullptr && keepsNotes());
  grid_.setRows(rows != nullptr ? &desk_ : nullptr, place);
  line_ = place && desk_.choosing() ? std::optional(place->line) : std::nullopt;
  grid_.mark(finder_.needle());
  if (used && rows != nullptr && (opened_ || isOn(desk_.filter()))) {
    if (!bar_.open()) bar_.show(false);
  } else {
    bar_.hide();
  }
  wake();
  tell();
  tellFlood();
  tellNewer();
}

bool ListWork::keepsNotes() {
  try {
    return desk_.list() != nullptr && desk_.list()->notes() != nullptr;
  } catch (const database::DatabaseError&) {
    return false;
  }
}

std::optional<Grid::Place> ListWork::placeIn(GridSource& rows, bool another) {
  using Why = list::Steady::Why;
  const Why why = another ? Why::other : byChoice_ ? Why::choice : Why::renewed;
  const int line = line_.value_or(grid_.line());
  const auto row = steady_.shown(rows, why, grid_.moved());
  return row ? std::optional(Grid::Place{*row, line}) : std::nullopt;
}

void ListWork::byChoice(const std::function<void()>& choice) {
  struct While {
    explicit While(bool& what) : flag(what) { flag = true; }
    ~While() { flag = false; }
    bool& flag;
  };
  const While chosen(byChoice_);
  choice();
}

void ListWork::selectionMoved() {
  line_.reset();
  const auto selected = grid_.selected();
  const ShownRow* row = grid_.selectedRow();
  if (!selected || row == nullptr) return;
  steady_.caretAt(row->fault, desk_.storedPosition(*selected), desk_.storedSize());
}

// Whether the newest faults are in sight is looked at when the rows have been painted.
void ListWork::scrolled() {
  if (newer_.shown()) SetTimer(parent_, placeTimer, USER_TIMER_MINIMUM, nullptr);
}

// The strip is as tall as a row: the rows go a line down or up for it, and so stay where they are. One that
// stands in the first line makes room for it.
void ListWork::tellNewer() {
  if (steady_.newer() > 0 && desk_.stored() != nullptr && grid_.top() == 0 && grid_.size() > 0 &&
      desk_.list() != nullptr)
    steady_.seen(*desk_.stored());
  const std::size_t newer = desk_.shownBefore(steady_.newer());
  const bool was = newer_.shown();
  newer_.tell(newer == 0   ? std::u16string{}
              : newer == 1 ? texts_.text(ViewText::newerFault)
                           : fillText(texts_.text(ViewText::newerFaults), {number(newer)}));
  if (newer_.shown() == was) return;
  rowsMoveFor(!was);
}

// A strip has come, or is gone.
void ListWork::rowsMoveFor(bool strip) {
  around_.placeAgain();
  if (strip && grid_.line() == 0) return;
  grid_.scrollBy(strip ? 1 : -1);
  if (line_) *line_ += strip ? -1 : 1;
}

// While the beginning of the list is in sight it stays there.
void ListWork::tellFlood() {
  const auto& flood = digest_.flood();
  const bool was = flood_.shown(), beginning = grid_.top() == 0;
  const bool chosen = flood && desk_.filter() == flood->filter();
  const std::u16string words = flood ? list::floodWords(*flood, texts_) : std::u16string{};
  const bool same = words == flood_.words();
  flood_.tell(words, chosen ? std::u16string{} : texts_.text(ViewText::floodShow));
  if (same) return;
  beginning || flood_.shown() == was ? around_.placeAgain() : rowsMoveFor(!was);
}

void ListWork::showFlood() {
  if (around_.use() != ListUse::now || !digest_.flood()) return;
  const list::Filter filter = digest_.flood()->filter();
  bar_.fill(filter);
  follow(filter);
  showBar(false);
  SetFocus(grid_.window());
}

void ListWork::goToNewest() {
  if (around_.use() != ListUse::now || grid_.size() == 0) return;
  grid_.select(0);
  SetFocus(grid_.window());
  tellNewer();
}

std::optional<std::u16string> ListWork::count() {
  if ((!desk_.filtered() && !resized_) || desk_.list() == nullptr) return {};
  return fillText(texts_.text(ViewText::shownCount), {number(desk_.size()), number(desk_.storedSize())});
}

void ListWork::seek(const std::u16string& text) {
  if (around_.use() == ListUse::never) return;
  longCount_ = false;
  finder_.seek(text);
  grid_.mark(finder_.needle());
  wake();
  around_.foundAgain();
}

std::u16string ListWork::found() const {
  if (finder_.needle().empty()) return {};
  if (!finder_.failure().empty()) return fillText(texts_.text(ViewText::filterFailed), {finder_.failure()});
  if (!finder_.complete())
    return longCount_ ? fillText(texts_.text(ViewText::findAtWork),
                                 {number(finder_.progress().done), number(finder_.progress().of)})
                      : std::u16string{};
  if (finder_.hits() == 0) return texts_.text(ViewText::lookUpNotFound);
  const auto selected = grid_.selected();
  const auto place = selected ? finder_.number(*selected) : std::nullopt;
  return place ? fillText(texts_.text(ViewText::findPlace), {number(*place), number(finder_.hits())})
               : fillText(texts_.text(ViewText::findCount), {number(finder_.hits())});
}

void ListWork::copy(RowOutput::What what) {
  output_.copy(what, grid_.chosen());
  slice();
  wake();
}

void ListWork::save() {
  output_.save();
  wake();
}

std::u16string ListWork::notice() const {
  if (!desk_.filtered() || desk_.size() > 0) return {};
  return fillText(texts_.text(ViewText::filterHidesAll), {number(desk_.storedSize())});
}

std::optional<std::size_t> ListWork::lookUp(ViewEvents& events, const std::u16string& text, LookUpWay way) {
  const std::size_t rows = desk_.storedSize();
  const auto selected = grid_.selected();
  std::ptrdiff_t from = selected ? static_cast<std::ptrdiff_t>(desk_.storedPosition(*selected)) : -1;
  // The hits go once round all stored rows; the first that is shown is the one.
  for (std::size_t walked = 0; walked < rows;) {
    const auto hit = events.lookUp(text, from, way);
    if (!hit || *hit >= rows || desk_.storedSize() != rows) return {};
    const auto place = desk_.shownPosition(*hit);
    if (place && desk_.storedPosition(*place) == *hit) return place;
    const std::size_t before =
        from < 0 ? (way == LookUpWay::forwards ? rows - 1 : 0) : static_cast<std::size_t>(from);
    const std::size_t step = way == LookUpWay::forwards ? *hit + rows - before : before + rows - *hit;
    walked += step % rows == 0 ? rows : step % rows;
    from = static_cast<std::ptrdiff_t>(*hit);
  }
  return {};
}

void ListWork::showBar(bool focus) {
  opened_ = true;
  bar_.show(focus);
  wake();
  tell();
  around_.placeAgain();
}

void ListWork::open() {
  if (around_.use() != ListUse::now || desk_.storedSize() == 0) return;
  if (!bar_.open()) bar_.fill(desk_.filter());
  showBar(true);
}

void ListWork::close() {
  const bool focused = bar_.has(GetFocus());
  opened_ = false;
  mistake_ = list::Mistake::none;
  bar_.fill({});
  follow({});
  bar_.hide();
  if (focused) SetFocus(grid_.window());
  around_.placeAgain();
}

bool ListWork::escape() {
  if (bar_.listOpen()) {
    bar_.closeList();
    return true;
  }
  if (output_.escape()) return true;
  if (desk_.choosing()) {
    desk_.giveUp();
    bar_.fill(desk_.filter());
    wake();
    tell();
    return true;
  }
  if (!bar_.has(GetFocus())) return false;
  close();
  return true;
}

std::u16string ListWork::menuText(Only what, const GridRow& row) const {
  const auto filled = [&](ViewText which, std::u16string_view value) {
    const auto word = text::trim(value);
    return word.empty() ? std::u16string{} : fillText(texts_.text(which), {word});
  };
  switch (what) {
    case Only::kind:
      return filled(ViewText::onlyKind, row.fault);
    case Only::otherKinds:
      return filled(ViewText::withoutKind, row.fault);
    case Only::processor:
      return filled(ViewText::onlyProcessor, row.cpu);
    case Only::day:
      return list::minuteOf(row.date) == list::noMinute
                 ? std::u16string{}
                 : filled(ViewText::onlyDay, std::u16string_view(row.date).substr(0, dayLength));
  }
  return {};
}

void ListWork::show(Only what, const GridRow& row) {
  if (around_.use() != ListUse::now) return;
  list::Filter filter = desk_.filter();
  if (what == Only::kind) filter.kinds = {list::KindRule::Way::only, {list::keyOf(row.fault)}};
  if (what == Only::otherKinds) filter.kinds.set(list::keyOf(row.fault), false);
  if (what == Only::processor) filter.processor = list::keyOf(row.cpu);
  if (what == Only::day) filter.since = filter.until = row.date.substr(0, dayLength);
  bar_.fill(filter);
  follow(filter);
  showBar(false);
}

bool ListWork::command(int id, int code) {
  if (code == BN_CLICKED && (id == idFilterClear || id == idShowAll)) {
    bar_.fill({});
    follow({});
    SetFocus(grid_.window());
    return true;
  }
  if (code == BN_CLICKED && id == idNewer) {
    goToNewest();
    return true;
  }
  if (code == BN_CLICKED && id == idFlood) {
    showFlood();
    return true;
  }
  if (code == BN_CLICKED && id == idFilterClose) {
    close();
    return true;
  }
  return bar_.command(id, code);
}

void ListWork::follow(const list::Filter& filter) {
  if (around_.use() == ListUse::never) return;
  longWork_ = false;
  mistake_ = desk_.setFilter(filter);
  wake();
  tell();
  tellFlood();
}

// The timer runs while there is work.
void ListWork::wake() {
  desk_.wantFacts(bar_.open());
  if (desk_.busy() || finder_.busy() || output_.busy() || digest_.busy())
    SetTimer(parent_, sliceTimer, around_.use() == ListUse::now ? pause : rest, nullptr);
  else
    KillTimer(parent_, sliceTimer);
}

bool ListWork::timer(WPARAM id) {
  if (id == placeTimer) {
    if (around_.use() == ListUse::later) {
      SetTimer(parent_, placeTimer, rest, nullptr);
      return true;
    }
    KillTimer(parent_, placeTimer);
    tellNewer();
    return true;
  }
  if (id != sliceTimer) return false;
  if (around_.use() == ListUse::now) slice();
  wake();
  return true;
}

// One work at a time: a long list is read first; then what is written, since its rows must stay; then the
// rows shown, then the count, then the flood.
void ListWork::slice() {
  const auto end = std::chrono::steady_clock::now() + sliceLength;
  const auto again = [end] { return std::chrono::steady_clock::now() < end; };
  if (desk_.reading()) return deskSlice(again);
  if (output_.busy()) return output_.work(again);
  if (desk_.busy()) return deskSlice(again);
  if (!finder_.busy()) {
    if (digest_.work(again)) tellFlood();
    return;
  }
  finder_.work(again);
  longCount_ = true;
  around_.foundAgain();
}

void ListWork::deskSlice(const std::function<bool()>& again) {
  if (const auto selected = grid_.selected()) lastSelected_ = desk_.storedPosition(*selected);
  const bool failedBefore = !desk_.failure().empty();
  const list::Desk::Did did = desk_.work(again);
  if (did.resized) return rowsResized();
  if (did.facts) bar_.setKinds(list::kindsOf(*desk_.facts()), list::processorsOf(*desk_.facts()));
  if (did.shown) {
    finder_.begin();
    const auto line = line_;
    grid_.rowsChanged(desk_.shownPosition(lastSelected_), line);
    tellNewer();
  }
  if (!desk_.failure().empty() && !failedBefore) bar_.fill(desk_.filter());
  longWork_ = desk_.choosing();
  tell();
  if (did.shown) around_.placeAgain();
}

// The file was wrong about the length of its list: the rows are shown as if they came anew.
void ListWork::rowsResized() {
  const std::u16string exchange = exchange_;
  setRows(desk_.stored(), exchange);
  resized_ = true;
  tell();
  around_.placeAgain();
}

int ListWork::barHeight() const {
  RECT client{};
  GetClientRect(parent_, &client);
  return bar_.heightFor(static_cast<int>(client.right));
}

void ListWork::tell() {
  const int before = barHeight();
  bar_.setOtherDates(desk_.otherDates());
  bar_.tell(message(), desk_.choosing());
  around_.countAgain();
  if (barHeight() != before) around_.placeAgain();
}

std::u16string ListWork::message() const {
  const std::u16string stored = number(desk_.storedSize());
  if (mistake_ == list::Mistake::order) return texts_.text(ViewText::filterBadOrder);
  if (mistake_ != list::Mistake::none) return texts_.text(ViewText::filterBadDate);
  if (desk_.choosing() && longWork_)
    return fillText(texts_.text(ViewText::filterAtWork), {number(desk_.progress().done), stored});
  if (!desk_.failure().empty()) return fillText(texts_.text(ViewText::filterFailed), {desk_.failure()});
  return isOn(desk_.filter()) ? fillText(texts_.text(ViewText::filterNote), {stored}) : std::u16string{};
}

}  // namespace vordane::window::win32
