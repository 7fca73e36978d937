// The pane below the grid: the selected fault whole, its data in a fixed-width face, and the data characters
// marked that the value under the mouse pointer or the caret came from. A standard rich text control, so
// that screen readers, selecting and copying work as everywhere. One thread.
#pragma once

#include <functional>
#include <map>

#include "platform/windows/window/description.h"
#include "platform/windows/window/fonts.h"
#include "platform/windows/window/theme.h"
#include "platform/windows/window/watch.h"

namespace vordane::window::win32 {

class DetailPane {
 public:
  // `objectAsked` answers WM_GETOBJECT; with 0 the control does.
  void create(HWND parent, int id, std::function<LRESULT(WPARAM wide, LPARAM low)> objectAsked);
  HWND window() const { return window_; }

  void setLook(const Control* control, int dpi, const Palette& palette);
  // The fault that is shown already stays, with what is selected in it.
  void showFault(GridSource& source, std::size_t row, const std::u16string& description);
  void showHint(const std::u16string& text);           // while no fault is selected
  void mark(const std::u16string& needle);             // in small letters; wherever the fault holds it
  void takeInput(bool takes) { takesInput_ = takes; }  // when not, it looks as ever and stays as it is

  bool notified(const NMHDR& header);

  // The marked places of the pane's text, in order: the value and the data it came from.
  const std::vector<Range>& marks() const { return marks_; }
  std::vector<Range> hits() const;  // of the text that is looked for
  const PaneText& text() const { return text_; }
  std::optional<Range> data() const { return data_; }  // in the pane's text
  // Marks for the character at this place of the text; nothing marked past the end.
  void point(std::size_t position);

 private:
  LRESULT heard(UINT message, WPARAM wide, LPARAM low);
  void mouseAt(POINT place);
  void render();
  void formatText();
  void fitScale();
  void zoom(int numerator, int denominator);
  void format(Range range, COLORREF ink, HFONT face, COLORREF ground);
  void paintMarks(const std::vector<Range>& ranges, bool on);
  std::vector<Range> marksFor(std::size_t position);
  const std::vector<Range>& provenance(std::size_t position);

  HWND window_ = nullptr;
  Watch watch_;
  std::function<LRESULT(WPARAM wide, LPARAM low)> objectAsked_;
  Library richText_;
  GridSource* source_ = nullptr;
  std::size_t row_ = 0;
  std::u16string description_;
  PaneText text_;
  int dpi_ = 0, zoomed_ = 0;
  bool takesInput_ = true, scaleKnown_ = false;
  std::optional<Range> data_;
  std::size_t dataInDescription_ = 0;
  std::map<std::size_t, std::vector<Range>> known_;  // provenance by place in the description
  std::vector<Range> marks_;
  std::u16string needle_;
  Font plain_, bold_, fixed_;
  Palette palette_;
};

}  // namespace vordane::window::win32
