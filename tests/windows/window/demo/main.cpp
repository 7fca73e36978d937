// Shows the window over rows in memory and prints every event that reaches the form, so that a person (or a
// program that presses its buttons) can see what the window does. Words on the command line: ru, ja; empty,
// waiting, failure, busy, million, long; filter, kinds, nothing; find; newer; flood; note, write; looked,
// exchanges;
// size=WIDTHxHEIGHT in pixels at 96 dots an inch; picture=PATH.
#include <windows.h>

#include <objbase.h>

#include <cstdio>
#include <cwchar>
#include <string>

#include "fakes/memory_arrivals.h"
#include "list/flood.h"
#include "platform/database.h"
#include "platform/windows/window/children.h"
#include "platform/windows/window/geometry.h"
#include "platform/windows/window/handles.h"
#include "platform/windows/window/win32_view.h"
#include "text/utf8.h"
#include "windows/window/fake_form.h"

namespace {

using namespace vordane;
using namespace vordane::window;
using namespace vordane::window::testing;

struct Options {
  Language language = Language::english;
  std::size_t rows = 1204;
  bool empty = false, waiting = false, failure = false, busy = false, longTexts = false;
  bool filter = false, kinds = false,
       nothing = false;              // the bar open, its list too, and no fault that passes
  bool find = false;                 // a text looked for, and gone to twice
  bool newer = false;                // faults have come while a person was in the list
  bool flood = false;                // many faults within ten minutes
  bool note = false, write = false;  // a fault with a note, and the note being written
  bool looked = false,
       exchanges = false;  // faults have come since the person looked; the list of exchanges open
  int width = 0, height = 0;
  std::u16string picture;
};

class PrintingEvents : public ViewEvents {
 public:
  explicit PrintingEvents(Form& form, FakeRows& rows) : form_(form), rows_(rows) {}
  View* view = nullptr;

  void buttonPressed(int action) override { say("button " + std::to_string(action)); }
  void headingClicked(int column) override {
    say("heading " + std::to_string(column));
    descending_ = !descending_;
    view->setSortMark(column, descending_);
  }
  void exchangeChosen(int listIndex) override {
    say("exchange " + std::to_string(listIndex));
    form_.control(u"drpPBXList").setListIndex(listIndex);
  }
  void closeAsked() override {
    say("close");
    PostQuitMessage(0);
  }
  void keyPressed(int keyCode) override { say("key " + std::to_string(keyCode)); }
  void mousePressed(Control& control, int button) override {
    say("mouse " + text::toUtf8(control.name()) + " " + std::to_string(button));
    if (button != 2) return;
    target_ = &control;
    view->popUpMenu(u"mnuWhatsThis");
    target_ = nullptr;
  }
  void whatsThisChosen() override {
    say("whats this");
    view->showWhatsThis(*target_,
                        u"The lamp shows the stored major alarm of the exchange chosen in the list. "
                        u"Request the list to bring it up to date.");
  }
  bool guideOffered() override { return true; }
  void guideAsked(std::u16string_view part) override { say("guide " + text::toUtf8(part)); }
  std::optional<std::size_t> lookUp(std::u16string_view wanted, std::ptrdiff_t after,
                                    LookUpWay way) override {
    say("look up " + text::toUtf8(wanted) + " from " + std::to_string(after));
    const auto count = static_cast<std::ptrdiff_t>(rows_.size());
    for (std::ptrdiff_t n = 1; n <= std::min<std::ptrdiff_t>(count, 1000); ++n) {
      const bool back = way == LookUpWay::backwards;
      const auto at = static_cast<std::size_t>((back ? after - n + 2 * count : after + n) % count);
      const auto row = rows_.row(at);
      if (row && row->description.find(wanted) != std::u16string::npos) return at;
    }
    return std::nullopt;
  }
  ListUse listUse() override { return ListUse::now; }
  std::shared_ptr<database::Arrivals> store;
  std::shared_ptr<database::Arrivals> arrivals() override { return store; }
  void tick() override { say("tick"); }

 private:
  static void say(const std::string& what) {
    std::printf("%s\n", what.c_str());
    std::fflush(stdout);
  }
  Form& form_;
  FakeRows& rows_;
  Control* target_ = nullptr;
  bool descending_ = true;
};

Options readOptions(int count, char** words) {
  Options options;
  for (int n = 1; n < count; ++n) {
    const std::string word = words[n];
    if (word == "ru") options.language = Language::russian;
    if (word == "ja") options.language = Language::japanese;
    if (word == "empty") options.empty = true;
    if (word == "waiting") options.waiting = true;
    if (word == "failure") options.failure = true;
    if (word == "busy") options.busy = true;
    if (word == "filter") options.filter = true;
    if (word == "kinds") options.filter = options.kinds = true;
    if (word == "nothing") options.filter = options.nothing = true;
    if (word == "find") options.find = true;
    if (word == "newer") options.newer = true;
    if (word == "flood") options.flood = true;
    if (word == "note") options.note = true;
    if (word == "write") options.note = options.write = true;
    if (word == "looked") options.looked = true;
    if (word == "exchanges") options.looked = options.exchanges = true;
    if (word == "long") options.longTexts = true;
    if (word == "million") options.rows = 1'000'000;
    if (word.rfind("size=", 0) == 0) std::sscanf(word.c_str(), "size=%dx%d", &options.width, &options.height);
    if (word.rfind("picture=", 0) == 0) options.picture = text::fromUtf8(word.substr(8));
  }
  return options;
}

void fillExchanges(Form& form) {
  Control& list = form.control(u"drpPBXList");
  for (const char16_t* name : {u"PBX-1", u"PBX-2 (warehouse)", u"Hospital east wing", u"Закупки"}) {
    const int entry = list.addItem(name);
    list.setItemData(entry, entry + 1);
  }
  list.setListIndex(0);
}

void showState(View& view, Form& form, const Options& options, FakeRows& rows) {
  view.setLamp(true, !options.empty);
  view.setLamp(false, false);
  const std::u16string account = accountOfList(options.language);
  view.setStatus(0, options.failure ? failureAccount(options.language) + u"\n" + account : account);
  view.setStatus(1, u"1,204 faults");
  view.setStatus(2, u"Processor texts: wide");
  view.setSortMark(2, true);
  if (options.empty)
    for (const char16_t* name : {u"cmdReset", u"cmdPrint", u"cmdClear", u"cmdLookUp", u"cmdFilter"})
      form.control(name).set(u"Enabled", false);
  view.setRows(options.empty ? nullptr : &rows);
  view.setNoticeKind(options.failure   ? NoticeKind::failure
                     : options.waiting ? NoticeKind::waiting
                                       : NoticeKind::hint);
  if (options.failure)
    view.setNotice(failureNotice(options.language));
  else if (options.waiting)
    view.setNotice(waitingNotice(options.language));
  else if (options.empty)
    view.setNotice(hintNotice(options.language));
  if (!options.picture.empty()) {
    Control& back = form.control(u"imgBackground");
    back.set(u"Picture", options.picture);
  }
}

void CALLBACK pressKinds(HWND, UINT, UINT_PTR timer, DWORD) {
  KillTimer(nullptr, timer);
  SendMessageW(GetDlgItem(FindWindowW(win32::windowClassName, nullptr), win32::idFilterKinds), BM_CLICK, 0,
               0);
}

// As a person opens and uses it.
void showFilter(HWND window, const Options& options) {
  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);  // the first look
  const auto press = [&](int id) { SendMessageW(GetDlgItem(window, id), BM_CLICK, 0, 0); };
  press(win32::idFilter);
  if (options.nothing) SetWindowTextW(GetDlgItem(window, win32::idFilterText), L"no such text");
  if (options.kinds) {
    press(win32::idFilterMinor);
    SetWindowTextW(GetDlgItem(window, win32::idFilterSince), L"2026/11/20");
    SetTimer(nullptr, 0, 1000, pressKinds);
  }
}

void showFind(HWND window, Language language) {
  const auto press = [&](int id) { SendMessageW(GetDlgItem(window, id), BM_CLICK, 0, 0); };
  press(win32::idLookUp);
  const wchar_t* words[] = {L"fault", L"плат", L"回線"};
  SetWindowTextW(GetDlgItem(window, win32::idLookUpText), words[static_cast<std::size_t>(language)]);
  for (int step = 0; step < 2; ++step) press(win32::idLookUpNext);
}

// The second fault has one; it is selected, and written to.
void showNote(HWND window, const Options& options, FakeRows& rows) {
  const wchar_t* cable[] = {L"cable to be replaced on Monday, tell Boris",
                            L"кабель заменят в понедельник, сказать Борису",
                            L"月曜日にケーブルを交換予定、ボリスに連絡"};
  const wchar_t* text = cable[static_cast<std::size_t>(options.language)];
  for (const std::size_t row : {1U, 3U})
    rows.kept.notes[static_cast<std::int64_t>(rows.size() - row)] = {
        u"NORTH-7\\anna", u"2026/11/21 08:15", win32::fromWide(text, std::wcslen(text))};
  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);  // the first look
  const HWND grid = GetDlgItem(window, win32::idGrid);
  constexpr UINT chosen = LVIS_SELECTED | LVIS_FOCUSED;
  ListView_SetItemState(grid, 1, chosen, chosen);
  SetFocus(grid);
  if (options.write) PostMessageW(grid, WM_KEYDOWN, VK_F2, 1);
}

// The rows before the newest ones came.
struct RowsBefore final : GridSource {
  explicit RowsBefore(FakeRows& all) : rows(all) {}
  static constexpr std::size_t come = 7;
  std::size_t size() const override { return rows.size() - come; }
  std::optional<GridRow> row(std::size_t position) override { return rows.row(position + come); }
  std::vector<Range> provenance(std::size_t, std::size_t) override { return {}; }
  FakeRows& rows;
};

// The same faults, newest first: five, then a flood, then one in a while.
struct FloodedRows final : GridSource, database::RowList {
  explicit FloodedRows(FakeRows& all) : rows(all) {}
  std::size_t size() const override { return rows.size(); }
  std::optional<GridRow> row(std::size_t position) override {
    constexpr std::size_t before = 5, many = 43;
    auto row = rows.row(position < before ? position : position % 3 * (position % 2));
    if (!row) return row;
    // One in a quarter of an hour, but for the flood; what would be before that day is of another form.
    const std::size_t behind = position < before + many ? 0 : position - before - many;
    const std::size_t minute = position < before          ? 1260 - 15 * position
                               : position < before + many ? 1140 - (position - before) / 5
                                                          : 1100 - 15 * std::min<std::size_t>(behind, 70);
    row->date = list::writtenMinute(202611200000 + minute / 60 * 100 + minute % 60);
    if (behind >= 70) row->date = u"20/11/19";
    row->count = static_cast<std::int64_t>(size() - position);
    return row;
  }
  std::vector<Range> provenance(std::size_t, std::size_t) override { return {}; }
  database::RowList* list() override { return this; }
  bool fetch(std::size_t position, std::vector<database::Value>& out) override {
    const auto found = row(position);
    out.clear();
    if (found)
      out = {found->fault, found->alarm,       found->date,
             found->cpu,   found->description, static_cast<std::int32_t>(found->count)};
    return found.has_value();
  }
  FakeRows& rows;
};

// A fault in the middle is chosen, then the list is renewed.
void showNewer(View& view, HWND window, FakeRows& rows) {
  const HWND grid = GetDlgItem(window, win32::idGrid);
  constexpr UINT chosen = LVIS_SELECTED | LVIS_FOCUSED;
  RowsBefore before(rows);
  view.setRows(&before);
  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);  // the first look
  ListView_EnsureVisible(grid, 46, FALSE);
  ListView_SetItemState(grid, 42, chosen, chosen);
  view.setRows(&rows);
}

// Five faults of the exchange shown are new, some of the second and very many of the last.
void showLooked(PrintingEvents& events, FakeSettings& settings, std::size_t rows) {
  const std::size_t seen = rows - 5;
  auto store = std::make_shared<fakes::MemoryArrivals>();
  store->all.push_back({1, static_cast<std::int64_t>(seen)});
  store->add(1, 5);
  store->add(2, 12);
  store->add(4, 1400);
  settings.write(u"VORDANE", u"LastLook", u"aa", text::fromUtf8(std::to_string(seen)));
  events.store = store;
}

void CALLBACK openExchanges(HWND, UINT, UINT_PTR timer, DWORD) {
  KillTimer(nullptr, timer);
  const HWND box = GetDlgItem(FindWindowW(win32::windowClassName, nullptr), win32::idExchange);
  SetFocus(box);
  SendMessageW(box, CB_SHOWDROPDOWN, TRUE, 0);
}

}  // namespace

int main(int count, char** words) {
  const Options options = readOptions(count, words);
  CoInitialize(nullptr);
  Form form = makeForm(options.language);
  FakeTexts texts(options.language);
  FakeSettings settings;
  FakeRows rows(options.language, options.rows);
  rows.longTexts = options.longTexts;
  PrintingEvents events(form, rows);
  const auto view = win32::makeWin32View(texts, settings);
  events.view = view.get();
  if (options.looked) showLooked(events, settings, options.rows);
  if (options.exchanges) SetTimer(nullptr, 0, 1000, openExchanges);
  view->attach(form, events);
  fillExchanges(form);
  showState(*view, form, options, rows);
  if (options.width > 0) {
    const int dpi = static_cast<int>(GetDpiForSystem());
    SetWindowPos(view->window(), nullptr, 0, 0, win32::scaled(options.width, dpi),
                 win32::scaled(options.height, dpi), SWP_NOMOVE | SWP_NOZORDER);
  }
  view->setVisible(true);
  if (options.busy) view->setInputEnabled(false);
  if (options.filter) showFilter(view->window(), options);
  if (options.find) showFind(view->window(), options.language);
  if (options.note) showNote(view->window(), options, rows);
  if (options.newer) showNewer(*view, view->window(), rows);
  FloodedRows flooded(rows);
  if (options.flood) view->setRows(&flooded);
  MSG message;
  while (GetMessageW(&message, nullptr, 0, 0) > 0) {
    if (view->translate(message)) continue;
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  view->detach();
  CoUninitialize();
}
