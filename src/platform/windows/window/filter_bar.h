// The bar with what a person wants to see of the stored faults: boxes, ticks and lists in a row that breaks
// where the window is narrow, and a line below them for a word about it. It says what was asked for; what
// comes of it is not its business. One thread.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "list/filter.h"
#include "platform/view.h"
#include "platform/windows/window/kind_list.h"

namespace vordane::window::win32 {

class FilterBar {
 public:
  struct Events {
    std::function<void()> changed;  // a person has changed what the boxes say
    std::function<void()> made;     // its windows are there, since it is shown for the first time
  };
  // Its place in the tab order is before `next`, one of the parent's children. `texts` must live longer.
  void create(HWND parent, HWND next, ViewTexts& texts, Events events);
  void reword();                      // the texts say something else now; what is typed and ticked stays
  void setFont(HFONT font, int dpi);  // `font` must live until the next one is set
  void setColours(COLORREF ground, COLORREF text);

  // What it needs in a window of this width, both in pixels; 0 while it is closed.
  int heightFor(int width) const;
  void place(const RECT& bar);  // within the parent's client area

  bool open() const { return open_; }
  void show(bool focus);  // with the focus in the box for the text, if wanted
  void hide();
  void enable(bool enabled);

  void fill(const list::Filter& filter);  // shows it; nothing is told
  list::Filter wanted() const;            // as it stands in the boxes
  void setKinds(const std::vector<list::Tally>& kinds, const std::vector<list::Tally>& processors);
  // Whether the faults can have notes at all.
  void offerNotes(bool offered);
  // Rows whose date has another form; 0 takes the tick away.
  void setOtherDates(std::size_t rows);
  void tell(const std::u16string& message, bool onTheWay);  // what says how far it is is not read out
  HWND message() const { return part(partMessage); }        // null before it was shown, as are the two below

  bool has(HWND window) const;  // one of its parts, or the open list of kinds
  bool listOpen() const { return kindList_.open(); }
  void closeList();  // the focus goes back to its button

  // What the parent hands on; true when it was the bar's.
  bool command(int id, int code);
  bool notified(const NMHDR& header, LPARAM message) { return kindList_.notified(header, message); }
  HWND closeButton() const { return part(partClose); }
  HWND kindWindow() const { return kindList_.window(); }

 private:
  enum Part : std::size_t {
    partTextLabel,
    partText,
    partMajor,
    partMinor,
    partNoted,
    partKinds,
    partProcessorLabel,
    partProcessor,
    partSinceLabel,
    partSince,
    partUntilLabel,
    partUntil,
    partClear,
    partClose,
    partOtherDates,
    partMessage,
    partCount,
  };
  struct Placed {
    Part part;
    RECT at;
  };
  HWND part(Part which) const { return parts_[which]; }
  bool isMade() const { return parts_.front() != nullptr; }
  void make();
  void makeParts();
  std::vector<Placed> arranged(int width, int& height) const;
  void arrangeWords(std::vector<Placed>& placed, int end, int& y) const;
  void put(std::vector<Placed>& placed, Part which, int x, int y) const;
  int lineTall() const;
  int widthOf(Part which) const;
  int px(int length) const;
  void toggleList();
  void placeList();
  void showKindsCaption();
  void fillProcessors(const std::optional<std::u16string>& chosen);
  void showDateStyle();
  void told();

  HWND parent_ = nullptr, next_ = nullptr;
  ViewTexts* texts_ = nullptr;
  Events events_;
  std::vector<HWND> parts_ = std::vector<HWND>(partCount);
  KindList kindList_;
  std::vector<list::Tally> processors_;
  std::size_t otherDates_ = 0;
  list::Filter waiting_;  // to be filled in when the windows are made
  HFONT font_ = nullptr;  // not owned
  int dpi_ = 96;
  COLORREF ground_ = 0, ink_ = 0;
  bool open_ = false, filling_ = false, enabled_ = true, notes_ = true;
};

}  // namespace vordane::window::win32
