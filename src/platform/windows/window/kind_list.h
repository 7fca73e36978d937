// The list that drops down from the filter's button for kinds: each with a tick, its title and how many
// faults are stored; first of all a line that ticks them all. One thread.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

#include "list/facts.h"
#include "list/filter.h"

namespace vordane::window::win32 {

class KindList {
 public:
  struct Events {
    std::function<void()> changed;  // a tick: `rule` has it
    std::function<void()> left;     // it lost the focus
  };
  // `allKinds` is what the first line says.
  void create(HWND parent, int id, const std::u16string& allKinds, Events events);
  HWND window() const { return window_; }  // null before it was made
  // It went with its parent; what was filled in stays.
  void forgetWindow() { window_ = nullptr; }
  void reword(const std::u16string& allKinds);
  void setFont(HFONT font, int dpi);  // `font` must live until the next one is set
  void setColours(COLORREF ground, COLORREF text);

  // Also before it was made.
  void fill(const std::vector<list::Tally>& kinds, const list::KindRule& rule);
  const list::KindRule& rule() const { return rule_; }
  std::size_t shownKinds() const;
  std::size_t kinds() const { return kinds_.size(); }
  const std::vector<list::Tally>& tallies() const { return kinds_; }

  bool open() const;
  // Below the button, as large as it needs and the parent's client area lets it; in pixels of that area.
  void place(const RECT& button, const RECT& client);
  void show();
  void hide();

  bool notified(const NMHDR& header, LPARAM message);  // true when it was its own

 private:
  void showTicks();
  void ticked(int item, bool on);

  HWND window_ = nullptr;
  Events events_;
  std::u16string allKinds_;
  std::vector<list::Tally> kinds_;
  list::KindRule rule_;
  HFONT font_ = nullptr;  // not owned
  int dpi_ = 96;
  bool filling_ = false;
};

}  // namespace vordane::window::win32
