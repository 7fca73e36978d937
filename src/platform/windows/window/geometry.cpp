#include "platform/windows/window/geometry.h"

#include <algorithm>
#include <cstdlib>
#include <exception>

namespace vordane::window::win32 {
namespace {

bool reachable(const RECT& title, const RECT& area, int grip) {
  RECT common;
  if (!IntersectRect(&common, &title, &area)) return false;
  return title.top >= area.top && height(common) >= height(title) / 2 && width(common) >= grip;
}

// How far apart the middles are; enough to choose among screens.
long long distance(const RECT& a, const RECT& b) {
  return std::llabs(static_cast<long long>(a.left) + a.right - b.left - b.right) +
         std::llabs(static_cast<long long>(a.top) + a.bottom - b.top - b.bottom);
}

std::vector<RECT>::const_iterator nearestOf(const RECT& window, const std::vector<RECT>& areas) {
  return std::min_element(areas.begin(), areas.end(), [&](const RECT& a, const RECT& b) {
    return distance(window, a) < distance(window, b);
  });
}

long into(long start, long length, long areaStart, long areaEnd) {
  return std::max(areaStart, std::min(start, areaEnd - length));
}

BOOL CALLBACK addWorkArea(HMONITOR monitor, HDC, LPRECT, LPARAM list) {
  MONITORINFO info{};
  info.cbSize = sizeof info;
  try {
    if (GetMonitorInfoW(monitor, &info)) reinterpret_cast<std::vector<RECT>*>(list)->push_back(info.rcWork);
    return TRUE;
  } catch (const std::exception&) {
    return FALSE;  // the screens found so far have to do
  }
}

}  // namespace

RECT fitted(const RECT& window, const std::vector<RECT>& areas) {
  const auto area = nearestOf(window, areas);
  if (area == areas.end() || (width(window) <= width(*area) && height(window) <= height(*area)))
    return window;
  const long wide = std::min(width(window), width(*area)), high = std::min(height(window), height(*area));
  const long left = into(window.left, wide, area->left, area->right);
  const long top = into(window.top, high, area->top, area->bottom);
  return {left, top, left + wide, top + high};
}

RECT pulledBack(const RECT& window, const std::vector<RECT>& areas, int titleHeight, int grip) {
  const RECT title{window.left, window.top, window.right, window.top + titleHeight};
  for (const RECT& area : areas)
    if (reachable(title, area, grip)) return window;
  const auto nearest = nearestOf(window, areas);
  if (nearest == areas.end()) return window;
  const long left = into(window.left, width(window), nearest->left, nearest->right);
  const long top = into(window.top, height(window), nearest->top, nearest->bottom);
  return {left, top, left + width(window), top + height(window)};
}

std::vector<RECT> workAreas() {
  std::vector<RECT> areas;
  EnumDisplayMonitors(nullptr, nullptr, addWorkArea, reinterpret_cast<LPARAM>(&areas));
  return areas;
}

}  // namespace vordane::window::win32
