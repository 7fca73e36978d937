// The colours of the window. In high contrast, and where the workstation's colours are not the light ones
// the accents were chosen for, everything is drawn in the workstation's own colours.
#pragma once

#include <windows.h>

namespace vordane::window::win32 {

struct Palette {
  bool systemOnly = false;
  COLORREF panel, panelText;        // around the grid
  COLORREF surface, text, quiet;    // rows and pane: ground, text, less important text
  COLORREF line, alternate;         // between columns; every second row's ground
  COLORREF selected, selectedText;  // the selected row while the grid has the focus
  COLORREF resting, restingText;    // and while it has not
  COLORREF accent;                  // the bar before the selected row, the focus line
  COLORREF major, minor;            // the severity shapes
  COLORREF mark, markText;          // marked data characters
  COLORREF lampLit, lampLitText, lampClear, lampClearText, lampFrame;
  COLORREF hint, hintText, failure, failureText, waiting, waitingText;  // the notice

  bool operator==(const Palette&) const = default;
};

// Of the workstation as it is now; asked again whenever it tells of a change.
Palette currentPalette();

// Selection and hot rows of a list as the system's own lists have them, where themes are drawn.
void drawAsExplorer(HWND list);

}  // namespace vordane::window::win32
