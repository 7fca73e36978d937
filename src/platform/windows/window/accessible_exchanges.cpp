#include "platform/windows/window/accessible_exchanges.h"

#include <oleacc.h>

#include <algorithm>

#include "platform/windows/window/exchange_list.h"
#include "platform/windows/window/handles.h"

namespace vordane::window::win32 {
namespace {

class ExchangeListPart : public Element {
 public:
  explicit ExchangeListPart(const AccessibleParts& parts) : parts_(parts) {}
  HWND window() const override { return listOf(box()); }

 protected:
  HWND box() const { return parts_.item(idExchange); }
  bool open() const { return IsWindowVisible(window()) != FALSE; }
  std::optional<std::size_t> chosen() const {
    const LRESULT entry = SendMessageW(window(), LB_GETCURSEL, 0, 0);
    return entry >= 0 ? std::optional(static_cast<std::size_t>(entry)) : std::nullopt;
  }
  const AccessibleParts& parts_;
};

class EntryElement final : public ExchangeListPart {
 public:
  EntryElement(const AccessibleParts& parts, std::size_t number) : ExchangeListPart(parts), number_(number) {}
  std::optional<std::size_t> number() const override { return number_; }
  std::unique_ptr<Element> parent() const override { return exchangeListElement(parts_); }
  bool there() const override {
    return static_cast<LRESULT>(number_) < SendMessageW(window(), LB_GETCOUNT, 0, 0);
  }
  int role() const override { return ROLE_SYSTEM_LISTITEM; }
  std::u16string name() const override {
    const LRESULT length = SendMessageW(window(), LB_GETTEXTLEN, number_, 0);
    if (length < 0) return {};
    std::wstring text(static_cast<std::size_t>(length) + 1, L'\0');
    SendMessageW(window(), LB_GETTEXT, number_, reinterpret_cast<LPARAM>(text.data()));
    return withNews(fromWide(text.data(), static_cast<std::size_t>(length)), parts_.newsOf(number_));
  }
  DWORD state() const override {
    DWORD state = STATE_SYSTEM_SELECTABLE | STATE_SYSTEM_FOCUSABLE;
    if (!open()) state |= STATE_SYSTEM_INVISIBLE;
    if (chosen() == number_)
      state |= open() ? STATE_SYSTEM_SELECTED | STATE_SYSTEM_FOCUSED : STATE_SYSTEM_SELECTED;
    return state;
  }
  RECT place() const override {
    RECT place{};
    SendMessageW(window(), LB_GETITEMRECT, number_, reinterpret_cast<LPARAM>(&place));
    MapWindowPoints(window(), nullptr, reinterpret_cast<POINT*>(&place), 2);
    return place;
  }
  std::u16string action() const override { return parts_.texts.text(ViewText::actSelect); }
  // Taken when the question has been answered, as a click in the list is.
  Done act() override {
    if (!parts_.inputAllowed() || !open()) return Done::notNow;
    SendMessageW(box(), CB_SETCURSEL, number_, 0);
    PostMessageW(parts_.frame(), WM_COMMAND, MAKEWPARAM(idExchange, CBN_SELENDOK),
                 reinterpret_cast<LPARAM>(box()));
    PostMessageW(box(), CB_SHOWDROPDOWN, FALSE, 0);
    return Done::yes;
  }

 private:
  const std::size_t number_;
};

class ExchangeListElement final : public ExchangeListPart {
 public:
  using ExchangeListPart::ExchangeListPart;
  int role() const override { return ROLE_SYSTEM_LIST; }
  std::u16string name() const override { return withoutAccessKey(windowText(parts_.item(idExchangeLabel))); }
  std::unique_ptr<Element> parent() const override { return ownElement(parts_, idExchange); }
  std::size_t children() const override {
    return static_cast<std::size_t>(std::max<LRESULT>(0, SendMessageW(window(), LB_GETCOUNT, 0, 0)));
  }
  std::unique_ptr<Element> child(std::size_t number) const override {
    return std::make_unique<EntryElement>(parts_, number);
  }
  std::optional<std::size_t> focusedChild() const override { return open() ? chosen() : std::nullopt; }
  std::vector<list::Stretch> selected() const override {
    const auto entry = chosen();
    return entry ? std::vector{list::Stretch{*entry, *entry + 1}} : std::vector<list::Stretch>{};
  }
};

}  // namespace

std::unique_ptr<Element> exchangeListElement(const AccessibleParts& parts) {
  return std::make_unique<ExchangeListElement>(parts);
}

}  // namespace vordane::window::win32
