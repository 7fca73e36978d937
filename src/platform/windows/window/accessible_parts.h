// The parts of the window as elements: its frame with everything in it, the lamps, the bars, the pane and the
// status line; the grid's own stand in accessible_grid.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/view.h"
#include "platform/windows/window/accessible.h"
#include "platform/windows/window/children.h"

namespace vordane::window::win32 {

class Grid;

// What the elements look at; it lives as long as the window.
struct AccessibleParts {
  ViewTexts& texts;
  Grid& grid;
  std::function<HWND()> frame;
  std::function<bool()> inputAllowed;
  std::function<bool(bool major)> lit;
  std::function<std::u16string()> lampNote;                 // what is told of the lamps besides
  std::function<std::u16string()> lampsName;                // what stands in the lamps' frame
  std::function<void(int column)> sortByHeading;            // once the question is answered
  std::function<std::u16string(std::size_t entry)> newsOf;  // what is said behind an entry of the drop-down

  HWND item(int id) const { return GetDlgItem(frame(), id); }
};

// What an exchange is told as: its name, and behind it how many of its faults are new, if any are.
inline std::u16string withNews(std::u16string name, const std::u16string& news) {
  return news.empty() ? name : name.append(u", ").append(news);
}

// What the window holds, as a person sees it: the frame's children, in groups where they belong together.
enum class Group { frame, lamps, findBar, filterBar, status };
std::unique_ptr<Element> groupElement(const AccessibleParts& parts, Group group);

// The element of the control with that number; null where the system's own serves, or there is none.
std::unique_ptr<Element> ownElement(const AccessibleParts& parts, int id);
// The same lamp as the alert that it has just become.
std::unique_ptr<Element> alertElement(const AccessibleParts& parts, bool major);

}  // namespace vordane::window::win32
