// The line at the window's bottom: at the left the account of the lists, on as many lines as its words need,
// at the right the short parts; in a narrow window the account stands above them. It has a text of its own,
// since a part of a status bar cuts what is longer than its one line. One thread; owns no window, all die
// with the parent.
#pragma once

#include <array>
#include <string>

#include "platform/windows/window/handles.h"

namespace vordane::window::win32 {

class StatusLine {
 public:
  static constexpr int parts = 3;  // account, number of faults, processor texts

  void create(HWND parent, int id, int accountId);
  HWND window() const { return bar_; }
  HWND account() const { return account_; }

  void setFont(HFONT font, int dpi);  // not owned
  void setText(int part, const std::u16string& text);
  // A word to the user in the account's place, until the account changes or the remark is taken away.
  void remark(const std::u16string& text, bool onTheWay = false);
  bool takeRemarkAway();  // false when there is none

  // What the texts need in a window of this width; at most `most`.
  int heightFor(int width, int most) const;
  void place(const RECT& line);
  // The account when not all of it can be seen, else empty: for the tool tip.
  std::u16string hiddenText() const;

 private:
  struct Places {
    RECT account, bar;  // from the line's own corner
    int height;
  };
  Places places(int width, int most) const;
  int px(int length) const;
  int partWidth(int part) const;
  int partsWidth() const;
  int rowHeight() const;
  int accountHeight(int width) const;
  const std::u16string& accountText() const { return remark_.empty() ? texts_[0] : remark_; }
  void showAccount(bool onTheWay = false);
  void placeParts(int width);

  HWND bar_ = nullptr, account_ = nullptr;
  std::array<std::u16string, parts> texts_;
  std::array<int, parts> textWidths_{};
  std::u16string remark_;
  HFONT font_ = nullptr;
  int dpi_ = 96, textHeight_ = 16;
};

}  // namespace vordane::window::win32
