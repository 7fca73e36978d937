// Where everything stands in the window, from the sizes that its texts need. Pure: pixels in, pixels out.
#pragma once

#include <windows.h>

#include <array>
#include <vector>

namespace vordane::window::win32 {

struct LayoutInput {
  int dpi = 96;
  int width = 0, height = 0;                                   // of the client area
  int textHeight = 16;                                         // a line of the controls' face
  int dropDownHeight = 24;                                     // the closed drop-down
  int exchangeLabel = 0, receivedLabel = 0, frameCaption = 0;  // text widths
  std::array<int, 2> lamps{};                                  // the longest words of each lamp
  std::vector<int> buttons;  // caption widths from the left; the last one stands at the right
  int lookUpHeight = 0;      // 0: the look-up bar is closed
  int filterHeight = 0;      // likewise the filter bar
  int noticeHeight = 0;      // 0: no notice above the grid
  int floodHeight = 0;       // 0: no flood is told
  int newerHeight = 0;       // 0: no newer faults are above
  int noteHeight = 0;        // 0: no note is shown below the fault
  int statusHeight = 0;
  int paneHeight = 0;  // as the user wants it
};

struct Layout {
  RECT exchangeLabel{}, dropDown{}, receivedLabel{}, received{};
  RECT frame{};
  std::array<RECT, 2> lamps{};
  std::vector<RECT> buttons;
  RECT panel{}, lookUp{}, filter{}, notice{}, flood{}, newer{}, grid{}, splitter{}, pane{}, note{}, status{};
};

Layout arrange(const LayoutInput& input);

// The smallest client area in which everything can be reached.
SIZE smallestClient(const LayoutInput& input);

// The pane's height for a splitter dragged to `y`, so that grid and pane both stay usable.
int paneHeightFor(const LayoutInput& input, int y);

}  // namespace vordane::window::win32
