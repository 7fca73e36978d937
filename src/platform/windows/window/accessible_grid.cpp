#include "platform/windows/window/accessible_grid.h"

#include <oleacc.h>

#include "platform/windows/window/geometry.h"
#include "platform/windows/window/grid.h"
#include "text/fill.h"
#include "text/text.h"

namespace vordane::window::win32 {
namespace {

constexpr DWORD selectableRow = STATE_SYSTEM_SELECTABLE | STATE_SYSTEM_FOCUSABLE |
                                STATE_SYSTEM_MULTISELECTABLE | STATE_SYSTEM_EXTSELECTABLE;

RECT onScreen(HWND window, RECT place) {
  MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&place), 2);
  return place;
}

RECT inSight(HWND window) {
  RECT client{};
  GetClientRect(window, &client);
  return onScreen(window, client);
}

std::u16string headingText(HWND headings, int column) {
  wchar_t text[256] = L"";
  HDITEMW item{};
  item.mask = HDI_TEXT;
  item.pszText = text;
  item.cchTextMax = 256;
  Header_GetItem(headings, column, &item);
  return fromWide(text, wcslen(text));
}

RECT headingPlace(HWND headings, int column) {
  RECT place{};
  Header_GetItemRect(headings, column, &place);
  return onScreen(headings, place);
}

class GridPart : public Element {
 public:
  GridPart(const AccessibleParts& parts, std::size_t number) : parts_(parts), number_(number) {}
  HWND window() const override { return parts_.grid.window(); }
  std::optional<std::size_t> number() const override { return number_; }

 protected:
  Grid& grid() const { return parts_.grid; }
  const AccessibleParts& parts_;
  const std::size_t number_;
};

class GridElement final : public GridPart {
 public:
  using GridPart::GridPart;
  int role() const override { return ROLE_SYSTEM_LIST; }
  DWORD state() const override {
    return Element::state() | STATE_SYSTEM_MULTISELECTABLE | STATE_SYSTEM_EXTSELECTABLE |
           STATE_SYSTEM_READONLY;
  }
  std::u16string name() const override { return windowText(window()); }
  std::unique_ptr<Element> parent() const override { return groupElement(parts_, Group::frame); }
  std::size_t children() const override { return grid().size() + 1; }
  std::unique_ptr<Element> child(std::size_t number) const override;
  std::optional<std::size_t> childAt(POINT point) const override;
  std::optional<std::size_t> focusedChild() const override {
    return GetFocus() == window() ? grid().selected() : std::nullopt;
  }
  std::vector<list::Stretch> selected() const override { return grid().selection().stretches(); }
  Done select(long flags) override {
    if (flags != SELFLAG_TAKEFOCUS) return Done::never;
    if (!parts_.inputAllowed()) return Done::notNow;
    SetFocus(window());
    return Done::yes;
  }
};

// A part of a row: it has gone when other rows came.
class RowPart : public GridPart {
 public:
  RowPart(const AccessibleParts& parts, std::size_t number, std::size_t row)
      : GridPart(parts, number), row_(row), generation_(parts.grid.generation()) {}
  bool there() const override { return generation_ == grid().generation() && row_ < grid().size(); }

 protected:
  RECT rowPlace() const {
    RECT place{};
    ListView_GetItemRect(window(), static_cast<int>(row_), &place, LVIR_BOUNDS);
    return onScreen(window(), place);
  }
  bool visible(const RECT& place) const {
    RECT seen{};
    const RECT sight = inSight(window()), heading = onScreen(grid().heading(), headingArea());
    return IntersectRect(&seen, &place, &sight) != FALSE && place.bottom > heading.bottom;
  }
  DWORD sightState() const {
    if (!IsWindowVisible(window())) return STATE_SYSTEM_INVISIBLE;
    return visible(place()) ? 0 : STATE_SYSTEM_INVISIBLE | STATE_SYSTEM_OFFSCREEN;
  }
  const std::size_t row_;

 private:
  RECT headingArea() const {
    RECT area{};
    GetClientRect(grid().heading(), &area);
    return area;
  }
  const unsigned generation_;
};

class RowElement final : public RowPart {
 public:
  RowElement(const AccessibleParts& parts, std::size_t row) : RowPart(parts, row, row) {}
  int role() const override { return ROLE_SYSTEM_LISTITEM; }
  // Of a new one that word first; then the title, then what tells faults of one kind apart.
  std::u16string name() const override {
    const ShownRow* row = grid().row(row_);
    if (row == nullptr) return {};
    std::u16string words = grid().newWord(row_);
    if (!words.empty()) words += u", ";
    words += row->text.title;
    for (const std::u16string& each : {row->fault.alarm, row->fault.date, row->fault.cpu}) {
      const auto word = text::trim(each);
      if (word.empty()) continue;
      if (!words.empty()) words += u", ";
      words += word;
    }
    return words;
  }
  std::u16string description() const override {
    const ShownRow* row = grid().row(row_);
    if (row == nullptr || row->note.text.empty()) return row != nullptr ? row->text.detail : std::u16string{};
    const std::u16string note =
        fillText(parts_.texts.text(ViewText::noteBegin), {row->note.author, row->note.moment}) + u" " +
        row->note.text;
    return row->text.detail.empty() ? note : row->text.detail + u". " + note;
  }
  std::u16string action() const override { return parts_.texts.text(ViewText::actSelect); }
  DWORD state() const override {
    DWORD state = selectableRow | STATE_SYSTEM_READONLY | sightState();
    if (grid().selection().has(row_)) state |= STATE_SYSTEM_SELECTED;
    if (grid().selected() == row_ && GetFocus() == window()) state |= STATE_SYSTEM_FOCUSED;
    return state;
  }
  RECT place() const override { return rowPlace(); }
  std::unique_ptr<Element> parent() const override { return ownElement(parts_, idGrid); }
  std::size_t children() const override { return columnCount; }
  std::unique_ptr<Element> child(std::size_t number) const override;

  Done act() override { return select(SELFLAG_TAKEFOCUS | SELFLAG_TAKESELECTION); }
  Done select(long flags) override {
    if ((flags & ~SELFLAG_VALID) != 0 || flags == 0) return Done::never;
    if (!parts_.inputAllowed()) return Done::notNow;
    if ((flags & SELFLAG_TAKEFOCUS) != 0) SetFocus(window());
    if ((flags & SELFLAG_EXTENDSELECTION) != 0)
      grid().choose(row_, Grid::Choose::extend);
    else if ((flags & SELFLAG_ADDSELECTION) != 0)
      grid().choose(row_, Grid::Choose::add);
    else if ((flags & SELFLAG_REMOVESELECTION) != 0)
      grid().choose(row_, Grid::Choose::remove);
    else
      grid().choose(row_, Grid::Choose::only);  // the row with the focus is the one that the pane shows
    return Done::yes;
  }
};

class CellElement final : public RowPart {
 public:
  CellElement(const AccessibleParts& parts, std::size_t row, std::size_t column)
      : RowPart(parts, column, row) {}
  int role() const override { return ROLE_SYSTEM_CELL; }
  std::u16string name() const override { return headingText(grid().heading(), column()); }
  std::u16string value() const override {
    const ShownRow* row = grid().row(row_);
    return row != nullptr ? std::u16string(text::trim(cellText(*row, column()))) : std::u16string{};
  }
  DWORD state() const override { return STATE_SYSTEM_READONLY | sightState(); }
  RECT place() const override {
    RECT place = rowPlace();
    const RECT heading = headingPlace(grid().heading(), column());
    place.left = heading.left;
    place.right = heading.right;
    return place;
  }
  std::unique_ptr<Element> parent() const override { return std::make_unique<RowElement>(parts_, row_); }

 private:
  int column() const { return static_cast<int>(number_); }
};

class HeadingsElement final : public GridPart {
 public:
  using GridPart::GridPart;
  HWND window() const override { return grid().heading(); }
  int role() const override { return ROLE_SYSTEM_LIST; }
  std::u16string name() const override { return windowText(grid().window()); }
  std::unique_ptr<Element> parent() const override { return ownElement(parts_, idGrid); }
  std::size_t children() const override { return columnCount; }
  std::unique_ptr<Element> child(std::size_t number) const override;
};

class HeadingElement final : public GridPart {
 public:
  using GridPart::GridPart;
  HWND window() const override { return grid().heading(); }
  int role() const override { return ROLE_SYSTEM_COLUMNHEADER; }
  std::u16string name() const override { return headingText(window(), column()); }
  std::u16string description() const override {
    const auto [sorted, downwards] = grid().sortMark();
    if (sorted != column()) return {};
    return parts_.texts.text(downwards ? ViewText::sortedDownwards : ViewText::sortedUpwards);
  }
  std::u16string key() const override {
    return std::u16string(u"Ctrl+") + static_cast<char16_t>(u'1' + column());
  }
  std::u16string action() const override { return parts_.texts.text(ViewText::actSort); }
  DWORD state() const override {
    return IsWindowVisible(window()) ? STATE_SYSTEM_READONLY : STATE_SYSTEM_INVISIBLE;
  }
  RECT place() const override { return headingPlace(window(), column()); }
  std::unique_ptr<Element> parent() const override {
    return std::make_unique<HeadingsElement>(parts_, grid().size());
  }
  Done act() override {
    if (!parts_.inputAllowed()) return Done::notNow;
    parts_.sortByHeading(column());
    return Done::yes;
  }

 private:
  int column() const { return static_cast<int>(number_); }
};

std::unique_ptr<Element> GridElement::child(std::size_t number) const {
  if (number < grid().size()) return std::make_unique<RowElement>(parts_, number);
  return std::make_unique<HeadingsElement>(parts_, number);
}

std::optional<std::size_t> GridElement::childAt(POINT point) const {
  RECT headings{};
  GetWindowRect(grid().heading(), &headings);
  if (PtInRect(&headings, point)) return grid().size();
  LVHITTESTINFO hit{};
  hit.pt = point;
  ScreenToClient(window(), &hit.pt);
  const int row = ListView_HitTest(window(), &hit);
  return row >= 0 ? std::optional(static_cast<std::size_t>(row)) : std::nullopt;
}

std::unique_ptr<Element> RowElement::child(std::size_t number) const {
  return std::make_unique<CellElement>(parts_, row_, number);
}

std::unique_ptr<Element> HeadingsElement::child(std::size_t number) const {
  return std::make_unique<HeadingElement>(parts_, number);
}

}  // namespace

std::unique_ptr<Element> gridElement(const AccessibleParts& parts, std::size_t number) {
  return std::make_unique<GridElement>(parts, number);
}

}  // namespace vordane::window::win32
