// Lengths and places: pixels at a screen's density, 1/1440 inch, the fitting of a window to its screen and
// the pulling back of one whose title bar nobody could reach. Pure but for the density of the system.
#pragma once

#include <windows.h>

#include <cstdint>
#include <vector>

namespace vordane::window::win32 {

inline constexpr int designDpi = 96;
inline constexpr int twipsPerInch = 1440;

// A length designed at 96 dots an inch, in pixels at `dpi`.
inline int scaled(int length, int dpi) {
  return MulDiv(length, dpi, designDpi);
}

inline std::int32_t toTwips(int pixels, int dpi) {
  return MulDiv(pixels, twipsPerInch, dpi);
}
inline int toPixels(std::int32_t twips, int dpi) {
  return MulDiv(twips, dpi, twipsPerInch);
}

inline int width(const RECT& rect) {
  return static_cast<int>(rect.right - rect.left);
}
inline int height(const RECT& rect) {
  return static_cast<int>(rect.bottom - rect.top);
}

// The place of `window` so that its title bar (the upper `titleHeight` pixels) can be reached on one of the
// work areas: where at least `grip` pixels of it are on one already it stays; otherwise it is moved, never
// resized, into the nearest one, and its upper left corner is inside.
RECT pulledBack(const RECT& window, const std::vector<RECT>& workAreas, int titleHeight, int grip);

// A window larger than the nearest work area takes that area's width or height, and stands inside it; any
// other place stays.
RECT fitted(const RECT& window, const std::vector<RECT>& workAreas);

std::vector<RECT> workAreas();  // of all screens

}  // namespace vordane::window::win32
