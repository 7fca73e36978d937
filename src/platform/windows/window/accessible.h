// What screen readers and other programs are told of the window: elements with a name, a role, a state, a
// place and children, and the automation objects that carry them to whoever asks. An element is made when it
// is asked for and looks at the window each time, so a grid of a million rows costs nothing until somebody
// walks through it. One thread, that of the window: questions from another process arrive there, also while
// the window waits for an answer of its own.
#pragma once

#include <windows.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "list/selection.h"

namespace vordane::window::win32 {

// What came of asking an element to do something.
enum class Done { yes, notNow, never };

// One part of the window. It holds no window and no row, and is asked nothing after the window's end.
class Element {
 public:
  Element() = default;
  Element(const Element&) = delete;
  Element& operator=(const Element&) = delete;
  virtual ~Element() = default;

  virtual HWND window() const = 0;             // that it is, or is drawn in
  virtual bool there() const { return true; }  // false when what it tells of has gone
  virtual int role() const = 0;                // ROLE_SYSTEM_...
  virtual DWORD state() const;                 // STATE_SYSTEM_...; the window's own to begin with
  virtual std::u16string name() const = 0;     // the texts are empty where there is none
  virtual std::u16string value() const { return {}; }
  virtual std::u16string description() const { return {}; }
  virtual std::u16string key() const { return {}; }     // that goes there
  virtual std::u16string action() const { return {}; }  // what `act` does, in a word
  virtual RECT place() const;                           // on the screen

  virtual std::unique_ptr<Element> parent() const { return nullptr; }  // null: the window's frame
  virtual std::optional<std::size_t> number() const { return {}; }     // among the children of its parent
  virtual std::size_t children() const { return 0; }
  virtual std::unique_ptr<Element> child(std::size_t) const { return nullptr; }
  virtual std::optional<std::size_t> childAt(POINT point) const;  // on the screen
  virtual std::optional<std::size_t> focusedChild() const { return {}; }
  virtual std::vector<list::Stretch> selected() const { return {}; }  // of the children

  virtual Done act() { return Done::never; }
  virtual Done select(long) { return Done::never; }  // SELFLAG_...
};

// The objects that were handed out during one window's life: from its end on they answer that nothing is
// behind them, however long somebody holds them.
class AccessibleLife {
 public:
  void begin() { life_ = std::make_shared<char>(); }
  void end() { life_.reset(); }

  // The answer to WM_GETOBJECT: the element, for whoever asked.
  LRESULT answer(WPARAM wide, std::unique_ptr<Element> element) const;

 private:
  std::shared_ptr<const char> life_;
};

// Whether WM_GETOBJECT with this `low` asks for that object (OBJID_...).
bool asksFor(LPARAM low, LONG object);

}  // namespace vordane::window::win32
