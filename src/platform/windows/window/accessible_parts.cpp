#include "platform/windows/window/accessible_parts.h"

#include <commctrl.h>
#include <oleacc.h>

#include <optional>
#include <span>

#include "platform/windows/window/accessible_grid.h"
#include "platform/windows/window/handles.h"

namespace vordane::window::win32 {
namespace {

// What stands in a group, in the order of the Tab key.
enum class Kind { words, label, button, tick, box, choice, exchanges, kinds, lamp, part, grid, pane, group };
struct Row {
  Kind kind;
  Id id;
  Id label = idNone;                  // that names it
  std::optional<ViewText> name = {};  // likewise, where no window does
  Group group = Group::frame;         // of Kind::group
};

constexpr Row inGroup(Group group) {
  return {Kind::group, idNone, idNone, {}, group};
}
constexpr Row named(Kind kind, Id id, ViewText name) {
  return {kind, id, idNone, name, Group::frame};
}

constexpr Row frameRows[] = {
    {Kind::label, idExchangeLabel}, {Kind::exchanges, idExchange, idExchangeLabel},
    {Kind::label, idReceivedLabel}, {Kind::box, idReceived, idReceivedLabel},
    inGroup(Group::lamps),          {Kind::button, idRequest},
    {Kind::button, idReset},        {Kind::button, idPrint},
    {Kind::button, idClear},        {Kind::button, idLookUp},
    {Kind::button, idFilter},       {Kind::button, idClose},
    inGroup(Group::findBar),        inGroup(Group::filterBar),
    {Kind::words, idNotice},        {Kind::button, idShowAll},
    {Kind::button, idFlood},        {Kind::button, idNewer},
    {Kind::grid, idGrid},           named(Kind::pane, idPane, ViewText::selectedFault),
    {Kind::label, idNoteLabel},     {Kind::box, idNoteText, idNoteLabel},
    {Kind::words, idNoteMessage},   inGroup(Group::status),
};
constexpr Row lampRows[] = {{Kind::lamp, idMajor}, {Kind::lamp, idMinor}};
constexpr Row findRows[] = {
    {Kind::label, idLookUpLabel},   {Kind::box, idLookUpText, idLookUpLabel},
    {Kind::button, idLookUpNext},   named(Kind::button, idLookUpClose, ViewText::lookUpClose),
    {Kind::words, idLookUpMessage},
};
constexpr Row filterRows[] = {
    {Kind::label, idFilterTextLabel},
    {Kind::box, idFilterText, idFilterTextLabel},
    {Kind::tick, idFilterMajor},
    {Kind::tick, idFilterMinor},
    {Kind::tick, idFilterNoted},
    {Kind::button, idFilterKinds},
    named(Kind::kinds, idKindList, ViewText::filterKindsName),
    {Kind::label, idFilterProcessorLabel},
    {Kind::choice, idFilterProcessor, idFilterProcessorLabel},
    {Kind::label, idFilterSinceLabel},
    {Kind::box, idFilterSince, idFilterSinceLabel},
    {Kind::label, idFilterUntilLabel},
    {Kind::box, idFilterUntil, idFilterUntilLabel},
    {Kind::button, idFilterClear},
    named(Kind::button, idFilterClose, ViewText::filterClose),
    {Kind::tick, idFilterOtherDates},
    {Kind::words, idFilterMessage},
};
// The account has a window of its own; the other texts are parts of the bar, and the first part is empty.
constexpr Row statusRows[] = {{Kind::words, idAccount}, {Kind::part, idStatus}, {Kind::part, idStatus}};

std::span<const Row> rowsOf(Group group) {
  switch (group) {
    case Group::lamps:
      return lampRows;
    case Group::findBar:
      return findRows;
    case Group::filterBar:
      return filterRows;
    case Group::status:
      return statusRows;
    default:
      return frameRows;
  }
}

bool isVisible(HWND window) {
  return IsWindowVisible(window) != FALSE;
}

std::u16string accessKey(const std::u16string& caption) {
  const auto mark = caption.find(u'&');
  if (mark == caption.npos || mark + 1 >= caption.size()) return {};
  wchar_t letter[2] = {static_cast<wchar_t>(caption[mark + 1]), L'\0'};
  CharUpperW(letter);
  return u"Alt+" + fromWide(letter, 1);
}

// What stands at one place of a group.
class PartElement : public Element {
 public:
  PartElement(const AccessibleParts& parts, Group group, std::size_t number)
      : parts_(parts), group_(group), number_(number) {}
  HWND window() const override { return parts_.item(row().id); }
  std::optional<std::size_t> number() const override { return number_; }
  std::unique_ptr<Element> parent() const override { return groupElement(parts_, group_); }
  std::u16string name() const override {
    if (row().name) return parts_.texts.text(*row().name);
    return withoutAccessKey(caption());
  }
  std::u16string key() const override { return accessKey(caption()); }
  Done select(long flags) override {
    if (flags != SELFLAG_TAKEFOCUS || (GetWindowLongPtrW(window(), GWL_STYLE) & WS_TABSTOP) == 0)
      return Done::never;
    if (!usable()) return Done::notNow;
    SetFocus(window());
    return Done::yes;
  }

 protected:
  const Row& row() const { return rowsOf(group_)[number_]; }
  std::u16string caption() const {
    return windowText(row().label != idNone ? parts_.item(row().label) : window());
  }
  bool usable() const {
    return parts_.inputAllowed() && isVisible(window()) && IsWindowEnabled(window()) != FALSE;
  }
  const AccessibleParts& parts_;
  const Group group_;
  const std::size_t number_;
};

class WordsElement final : public PartElement {
 public:
  using PartElement::PartElement;
  int role() const override { return ROLE_SYSTEM_STATICTEXT; }
  DWORD state() const override { return Element::state() | STATE_SYSTEM_READONLY; }
  std::u16string name() const override {
    return row().kind == Kind::label ? PartElement::name() : windowText(window());
  }
  std::u16string key() const override { return {}; }  // it is that of what it names
};

class ButtonElement final : public PartElement {
 public:
  using PartElement::PartElement;
  int role() const override { return ROLE_SYSTEM_PUSHBUTTON; }
  std::u16string action() const override { return parts_.texts.text(ViewText::actPress); }
  // Pressed when the question has been answered: what it does may take its time, or ask something.
  Done act() override {
    if (!usable()) return Done::notNow;
    PostMessageW(parts_.frame(), WM_COMMAND, MAKEWPARAM(row().id, BN_CLICKED),
                 reinterpret_cast<LPARAM>(window()));
    return Done::yes;
  }
};

class TickElement final : public PartElement {
 public:
  using PartElement::PartElement;
  int role() const override { return ROLE_SYSTEM_CHECKBUTTON; }
  DWORD state() const override {
    return Element::state() | (ticked() ? static_cast<DWORD>(STATE_SYSTEM_CHECKED) : 0);
  }
  std::u16string action() const override {
    return parts_.texts.text(ticked() ? ViewText::actUntick : ViewText::actTick);
  }
  Done act() override {
    if (!usable()) return Done::notNow;
    PostMessageW(window(), BM_CLICK, 0, 0);
    return Done::yes;
  }

 private:
  bool ticked() const { return SendMessageW(window(), BM_GETCHECK, 0, 0) == BST_CHECKED; }
};

class BoxElement final : public PartElement {
 public:
  using PartElement::PartElement;
  int role() const override { return ROLE_SYSTEM_TEXT; }
  DWORD state() const override {
    const bool fixed = (GetWindowLongPtrW(window(), GWL_STYLE) & ES_READONLY) != 0;
    return Element::state() | (fixed ? static_cast<DWORD>(STATE_SYSTEM_READONLY) : 0);
  }
  std::u16string value() const override { return windowText(window()); }
};

class ChoiceElement : public PartElement {
 public:
  using PartElement::PartElement;
  int role() const override { return ROLE_SYSTEM_COMBOBOX; }
  DWORD state() const override {
    return Element::state() | STATE_SYSTEM_HASPOPUP |
           (open() ? STATE_SYSTEM_EXPANDED : STATE_SYSTEM_COLLAPSED);
  }
  std::u16string value() const override { return windowText(window()); }
  std::u16string action() const override { return parts_.texts.text(ViewText::actOpen); }
  Done act() override {
    if (!usable()) return Done::notNow;
    SetFocus(window());
    PostMessageW(window(), CB_SHOWDROPDOWN, TRUE, 0);
    return Done::yes;
  }

 private:
  bool open() const { return SendMessageW(window(), CB_GETDROPPEDSTATE, 0, 0) != FALSE; }
};

class ExchangesElement final : public ChoiceElement {
 public:
  using ChoiceElement::ChoiceElement;
  std::u16string value() const override {
    const LRESULT entry = SendMessageW(window(), CB_GETCURSEL, 0, 0);
    if (entry < 0) return {};
    return withNews(ChoiceElement::value(), parts_.newsOf(static_cast<std::size_t>(entry)));
  }
};

class LampElement final : public PartElement {
 public:
  LampElement(const AccessibleParts& parts, std::size_t number, bool alert = false)
      : PartElement(parts, Group::lamps, number), alert_(alert) {}
  int role() const override { return alert_ ? ROLE_SYSTEM_ALERT : ROLE_SYSTEM_STATICTEXT; }
  DWORD state() const override {
    const bool major = row().id == idMajor;
    DWORD state = Element::state() | STATE_SYSTEM_READONLY;
    if (parts_.lit(major)) state |= major ? STATE_SYSTEM_ALERT_HIGH : STATE_SYSTEM_ALERT_MEDIUM;
    return state;
  }
  std::u16string name() const override { return windowText(window()); }
  std::u16string description() const override { return parts_.lampNote(); }
  std::u16string key() const override { return {}; }

 private:
  const bool alert_;
};

class StatusPartElement final : public PartElement {
 public:
  using PartElement::PartElement;
  int role() const override { return ROLE_SYSTEM_STATICTEXT; }
  DWORD state() const override { return Element::state() | STATE_SYSTEM_READONLY; }
  std::u16string name() const override {
    const auto length = LOWORD(SendMessageW(window(), SB_GETTEXTLENGTHW, number_, 0));
    std::wstring text(static_cast<std::size_t>(length) + 1, L'\0');
    SendMessageW(window(), SB_GETTEXTW, number_, reinterpret_cast<LPARAM>(text.data()));
    return fromWide(text.data(), length);
  }
  std::u16string key() const override { return {}; }
  RECT place() const override {
    RECT place{};
    SendMessageW(window(), SB_GETRECT, number_, reinterpret_cast<LPARAM>(&place));
    MapWindowPoints(window(), nullptr, reinterpret_cast<POINT*>(&place), 2);
    return place;
  }
};

class PaneElement final : public PartElement {
 public:
  using PartElement::PartElement;
  int role() const override { return ROLE_SYSTEM_TEXT; }
  DWORD state() const override { return Element::state() | STATE_SYSTEM_READONLY; }
  std::u16string value() const override { return windowText(window()); }
  std::u16string key() const override { return {}; }
};

// A line of the list of kinds.
class KindElement final : public Element {
 public:
  KindElement(const AccessibleParts& parts, std::size_t number) : parts_(parts), number_(number) {}
  HWND window() const override { return parts_.item(idKindList); }
  std::optional<std::size_t> number() const override { return number_; }
  std::unique_ptr<Element> parent() const override { return ownElement(parts_, idKindList); }
  bool there() const override { return item() < ListView_GetItemCount(window()); }
  int role() const override { return ROLE_SYSTEM_CHECKBUTTON; }
  DWORD state() const override {
    DWORD state = STATE_SYSTEM_FOCUSABLE | STATE_SYSTEM_SELECTABLE;
    if (!isVisible(window())) state |= STATE_SYSTEM_INVISIBLE;
    if (ticked()) state |= STATE_SYSTEM_CHECKED;
    const UINT own = ListView_GetItemState(window(), item(), LVIS_SELECTED | LVIS_FOCUSED);
    if ((own & LVIS_SELECTED) != 0) state |= STATE_SYSTEM_SELECTED;
    if ((own & LVIS_FOCUSED) != 0 && GetFocus() == window()) state |= STATE_SYSTEM_FOCUSED;
    return state;
  }
  std::u16string name() const override {
    constexpr int columns = 3, longest = 512;
    std::u16string words;
    for (int column = 0; column < columns; ++column) {
      wchar_t text[longest] = L"";
      ListView_GetItemText(window(), item(), column, text, longest);
      if (text[0] == L'\0') continue;
      if (!words.empty()) words += u", ";
      words += fromWide(text, wcslen(text));
    }
    return words;
  }
  std::u16string action() const override {
    return parts_.texts.text(ticked() ? ViewText::actUntick : ViewText::actTick);
  }
  RECT place() const override {
    RECT place{};
    ListView_GetItemRect(window(), item(), &place, LVIR_BOUNDS);
    MapWindowPoints(window(), nullptr, reinterpret_cast<POINT*>(&place), 2);
    return place;
  }
  Done act() override {
    if (!parts_.inputAllowed() || !isVisible(window())) return Done::notNow;
    ListView_SetCheckState(window(), item(), !ticked());
    return Done::yes;
  }

 private:
  int item() const { return static_cast<int>(number_); }
  bool ticked() const { return ListView_GetCheckState(window(), item()) != 0; }
  const AccessibleParts& parts_;
  const std::size_t number_;
};

class KindsElement final : public PartElement {
 public:
  using PartElement::PartElement;
  int role() const override { return ROLE_SYSTEM_LIST; }
  std::u16string key() const override { return {}; }
  std::size_t children() const override { return static_cast<std::size_t>(ListView_GetItemCount(window())); }
  std::unique_ptr<Element> child(std::size_t number) const override {
    return std::make_unique<KindElement>(parts_, number);
  }
  std::optional<std::size_t> focusedChild() const override {
    if (GetFocus() != window()) return {};
    const int item = ListView_GetNextItem(window(), -1, LVNI_FOCUSED);
    return item >= 0 ? std::optional(static_cast<std::size_t>(item)) : std::nullopt;
  }
};

std::unique_ptr<Element> makePart(const AccessibleParts& parts, Group group, std::size_t number) {
  const Row& row = rowsOf(group)[number];
  if (row.kind != Kind::group && parts.item(row.id) == nullptr) return nullptr;
  switch (row.kind) {
    case Kind::words:
    case Kind::label:
      return std::make_unique<WordsElement>(parts, group, number);
    case Kind::button:
      return std::make_unique<ButtonElement>(parts, group, number);
    case Kind::tick:
      return std::make_unique<TickElement>(parts, group, number);
    case Kind::box:
      return std::make_unique<BoxElement>(parts, group, number);
    case Kind::choice:
      return std::make_unique<ChoiceElement>(parts, group, number);
    case Kind::exchanges:
      return std::make_unique<ExchangesElement>(parts, group, number);
    case Kind::kinds:
      return std::make_unique<KindsElement>(parts, group, number);
    case Kind::lamp:
      return std::make_unique<LampElement>(parts, number);
    case Kind::part:
      return std::make_unique<StatusPartElement>(parts, group, number);
    case Kind::grid:
      return gridElement(parts, number);
    case Kind::pane:
      return std::make_unique<PaneElement>(parts, group, number);
    case Kind::group:
      return groupElement(parts, row.group);
  }
  return nullptr;
}

class GroupElement final : public Element {
 public:
  GroupElement(const AccessibleParts& parts, Group group) : parts_(parts), group_(group) {}
  HWND window() const override { return group_ == Group::status ? parts_.item(idStatus) : parts_.frame(); }
  int role() const override {
    if (group_ == Group::frame) return ROLE_SYSTEM_CLIENT;
    return group_ == Group::status ? ROLE_SYSTEM_STATUSBAR : ROLE_SYSTEM_GROUPING;
  }
  std::u16string name() const override {
    switch (group_) {
      case Group::frame:
        return windowText(parts_.frame());
      case Group::lamps:
        return parts_.lampsName();
      case Group::findBar:
        return buttonsName(idLookUp);
      case Group::filterBar:
        return buttonsName(idFilter);
      default:
        return {};
    }
  }
  DWORD state() const override {
    const DWORD state = Element::state() & ~static_cast<DWORD>(STATE_SYSTEM_FOCUSABLE);
    if (group_ == Group::frame || group_ == Group::status) return state;
    const RECT all = place();
    return IsRectEmpty(&all) ? state | STATE_SYSTEM_INVISIBLE : state & ~DWORD{STATE_SYSTEM_FOCUSED};
  }
  // Of a bar: what its parts take together.
  RECT place() const override {
    if (group_ == Group::status) return Element::place();
    RECT place{};
    if (group_ == Group::frame) {
      GetClientRect(window(), &place);
      MapWindowPoints(window(), nullptr, reinterpret_cast<POINT*>(&place), 2);
      return place;
    }
    for (const Row& row : rowsOf(group_)) {
      const HWND part = parts_.item(row.id);
      if (part == nullptr || !isVisible(part)) continue;
      RECT own{};
      GetWindowRect(part, &own);
      UnionRect(&place, &place, &own);
    }
    return place;
  }
  std::unique_ptr<Element> parent() const override {
    return group_ == Group::frame ? nullptr : groupElement(parts_, Group::frame);
  }
  std::optional<std::size_t> number() const override {
    const auto rows = rowsOf(Group::frame);
    for (std::size_t i = 0; i < rows.size(); ++i)
      if (rows[i].kind == Kind::group && rows[i].group == group_) return i;
    return {};
  }
  std::size_t children() const override { return rowsOf(group_).size(); }
  std::unique_ptr<Element> child(std::size_t number) const override {
    return makePart(parts_, group_, number);
  }
  std::optional<std::size_t> focusedChild() const override {
    const HWND focused = GetFocus();
    if (focused == nullptr || focused == parts_.frame()) return {};
    const auto rows = rowsOf(group_);
    for (std::size_t i = 0; i < rows.size(); ++i) {
      const bool inside =
          rows[i].kind == Kind::group && GroupElement(parts_, rows[i].group).focusedChild().has_value();
      if (inside || (rows[i].id != idNone && parts_.item(rows[i].id) == focused)) return i;
    }
    return {};
  }

 private:
  // A bar is named as the button that opens it, without the dots that promise a bar.
  std::u16string buttonsName(Id id) const {
    std::u16string words = withoutAccessKey(windowText(parts_.item(id)));
    while (!words.empty() && (words.back() == u'.' || words.back() == u'\u2026')) words.pop_back();
    return words;
  }
  const AccessibleParts& parts_;
  const Group group_;
};

}  // namespace

std::unique_ptr<Element> groupElement(const AccessibleParts& parts, Group group) {
  return std::make_unique<GroupElement>(parts, group);
}

std::unique_ptr<Element> ownElement(const AccessibleParts& parts, int id) {
  for (const Group group : {Group::frame, Group::lamps, Group::filterBar}) {
    const auto rows = rowsOf(group);
    for (std::size_t i = 0; i < rows.size(); ++i) {
      const Kind kind = rows[i].kind;
      const bool own = kind == Kind::grid || kind == Kind::pane || kind == Kind::lamp ||
                       kind == Kind::kinds || kind == Kind::exchanges;
      if (own && rows[i].id == id) return makePart(parts, group, i);
    }
  }
  return nullptr;
}

std::unique_ptr<Element> alertElement(const AccessibleParts& parts, bool major) {
  return std::make_unique<LampElement>(parts, major ? 0 : 1, true);
}

}  // namespace vordane::window::win32
