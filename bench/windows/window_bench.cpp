// The drawn window over a million rows, against the same window over rows that lie ready, and its drop-down
// against a plain one:
//
//   window_bench FAULT.MDB EXCHANGES
#include <windows.h>

#include <commctrl.h>
#include <objbase.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "bench/common/measure.h"
#include "platform/sqlite/engine.h"
#include "platform/windows/window/children.h"
#include "platform/windows/window/win32_view.h"
#include "startup/databases.h"
#include "text/utf8.h"
#include "windows/window/fake_form.h"

namespace vordane::bench {
namespace {

using namespace window;
using namespace window::testing;

struct NoEvents : ViewEvents {
  void buttonPressed(int) override {}
  void headingClicked(int) override {}
  void exchangeChosen(int) override {}
  void closeAsked() override {}
  void keyPressed(int) override {}
  void mousePressed(Control&, int) override {}
  void whatsThisChosen() override {}
  bool guideOffered() override { return false; }
  void guideAsked(std::u16string_view) override {}
  std::optional<std::size_t> lookUp(std::u16string_view, std::ptrdiff_t, LookUpWay) override { return {}; }
  void tick() override {}
};

GridRow rowFrom(const std::vector<database::Value>& values) {
  const auto text = [&](std::size_t i) { return automation::toText(values[i]); };
  return {text(0), text(1), text(2), text(3), text(4), automation::toLong(values[5])};
}

class NoProof : public GridSource {
  std::vector<Range> provenance(std::size_t, std::size_t) override { return {}; }
};

// The rows as the fault display reads them: each from the file, when it is shown.
class StoredRows : public NoProof {
 public:
  explicit StoredRows(database::RowList& rows) : rows_(rows) {}
  std::size_t size() const override { return rows_.size(); }
  std::optional<GridRow> row(std::size_t position) override {
    if (!rows_.fetch(position, values_)) return {};
    return rowFrom(values_);
  }

 private:
  database::RowList& rows_;
  std::vector<database::Value> values_;
};

// As many rows, but made beforehand: some of the same ones, again and again.
class ReadyRows : public NoProof {
 public:
  explicit ReadyRows(database::RowList& rows) : size_(rows.size()) {
    std::vector<database::Value> values;
    for (std::size_t i = 0; i < 512; ++i)
      if (rows.fetch(i * (size_ / 512), values)) ready_.push_back(rowFrom(values));
  }
  std::size_t size() const override { return size_; }
  std::optional<GridRow> row(std::size_t position) override { return ready_[position % ready_.size()]; }

 private:
  std::size_t size_;
  std::vector<GridRow> ready_;
};

class Window {
 public:
  Window() {
    view_->attach(form_, events_);
    view_->setVisible(true);
  }
  ~Window() { view_->detach(); }
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;

  Form& form() { return form_; }
  HWND item(int id) const { return GetDlgItem(view_->window(), id); }
  void show(GridSource& rows) {
    view_->setRows(&rows);
    pump();
  }
  // A key as a person presses it, painted at once.
  void press(WPARAM key) {
    SendMessageW(item(win32::idGrid), WM_KEYDOWN, key, 1);
    SendMessageW(item(win32::idGrid), WM_KEYUP, key, 1);
    UpdateWindow(item(win32::idGrid));
    pump();
  }
  void pump() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
    GdiFlush();
  }

 private:
  Form form_ = makeForm(Language::english);
  FakeTexts texts_{Language::english};
  FakeSettings settings_;
  NoEvents events_;
  std::unique_ptr<win32::Win32View> view_ = win32::makeWin32View(texts_, settings_);
};

// End, ten screens up, ten down, and the same from the top.
constexpr int pages = 10, screens = 4 * pages + 2;
double walk(Window& window) {
  return seconds([&] {
    for (const WPARAM start : {VK_END, VK_HOME}) {
      window.press(start);
      for (int i = 0; i < pages; ++i) window.press(start == VK_END ? VK_PRIOR : VK_NEXT);
      for (int i = 0; i < pages; ++i) window.press(start == VK_END ? VK_NEXT : VK_PRIOR);
    }
  });
}

void measureScrolling(const std::u16string& path) {
  const auto database = sqlite::makeEngine(startup::databases)->open(path, false);
  const std::u16string_view columns[] = {u"Fault", u"Alarm", u"Date", u"CPU", u"Description", u"Count"};
  const auto rows = database->openRowList(
      u"SELECT * FROM FaultDisplay WHERE ID = 1 Order by [Date] Desc, [Count] Desc, [Fault] Desc, [Alarm] "
      u"Desc, "
      u"[CPU] Desc, [Description] Desc",
      columns);
  while (!rows->isRead()) rows->readOn();
  StoredRows stored(*rows);
  ReadyRows ready(*rows);
  Window window;
  Comparison comparison("End, Page Up, Page Down in " + std::to_string(rows->size()) + " rows, a screen",
                        "the same over ready-made rows", timeAtMost(1.5, 0.016));
  window.show(ready);
  walk(window);
  for (int run = 0; run < runs; ++run) {
    window.show(stored);
    const double ours = walk(window);
    window.show(ready);
    comparison.add(ours, walk(window));
  }
  comparison.print(screens);
}

std::u16string exchangeName(int i) {
  return u"Exchange " + text::fromUtf8(std::to_string(i));
}

void measureDropDown(int exchanges) {
  Window window;
  Control& list = window.form().control(u"drpPBXList");
  const HWND plain = CreateWindowW(WC_COMBOBOXW, L"", WS_POPUP | WS_VSCROLL | CBS_DROPDOWNLIST, 0, 0, 200,
                                   300, nullptr, nullptr, nullptr, nullptr);
  Comparison comparison("fill the drop-down with " + std::to_string(exchanges), "filling a plain combo box",
                        timeAtMost(1.5));
  for (int run = 0; run < runs; ++run) {
    const double ours = seconds([&] {
      list.clearItems();
      for (int i = 0; i < exchanges; ++i) list.setItemData(list.addItem(exchangeName(i)), i);
      list.setListIndex(0);
    });
    const double bare = seconds([&] {
      SendMessageW(plain, CB_RESETCONTENT, 0, 0);
      for (int i = 0; i < exchanges; ++i) {
        const std::u16string name = exchangeName(i);
        const LRESULT entry = SendMessageW(plain, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name.c_str()));
        SendMessageW(plain, CB_SETITEMDATA, static_cast<WPARAM>(entry), i);
      }
      SendMessageW(plain, CB_SETCURSEL, 0, 0);
    });
    if (SendMessageW(window.item(win32::idExchange), CB_GETCOUNT, 0, 0) != exchanges) std::exit(1);
    comparison.add(ours, bare);
  }
  DestroyWindow(plain);
  comparison.print();
}

}  // namespace
}  // namespace vordane::bench

int main(int count, char** words) {
  if (count != 3) {
    std::fputs("usage: window_bench FAULT.MDB EXCHANGES\n", stderr);
    return 2;
  }
  CoInitialize(nullptr);
  vordane::bench::measureDropDown(std::atoi(words[2]));
  vordane::bench::measureScrolling(vordane::text::fromUtf8(words[1]));
  CoUninitialize();
}
