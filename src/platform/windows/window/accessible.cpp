#include "platform/windows/window/accessible.h"

#include <initguid.h>
// The identifiers of oleacc have to be spelled out: its import library does not carry them.
#include <oleacc.h>

#include <algorithm>
#include <type_traits>
#include <utility>

#include "platform/windows/com/counted.h"
#include "platform/windows/com/system_function.h"
#include "platform/windows/window/geometry.h"
#include "platform/windows/window/guard.h"
#include "platform/windows/window/handles.h"

namespace vordane::window::win32 {
namespace {

using Life = std::weak_ptr<const char>;

// Loaded when the first question comes, and kept: most workstations never ask one.
template <typename Function>
Function oleacc(const char* name) {
  return com::systemFunction<Function>(L"oleacc.dll", name);
}

VARIANT nothing() {
  VARIANT value;
  VariantInit(&value);
  return value;
}

VARIANT number(std::size_t value) {
  VARIANT variant = nothing();
  variant.vt = VT_I4;
  variant.lVal = static_cast<LONG>(value);
  return variant;
}

// With the reference of whoever gets it.
template <typename Object>
Object* handedOut(Object* made) {
  made->AddRef();
  return made;
}

// The numbers of the selected children, one at a time: all of a million rows are one stretch.
class SelectedChildren final : public com::Counted<IEnumVARIANT> {
 public:
  SelectedChildren(std::vector<list::Stretch> stretches, std::size_t passed)
      : stretches_(std::move(stretches)), passed_(passed) {}

  HRESULT STDMETHODCALLTYPE Next(ULONG count, VARIANT* out, ULONG* fetched) override {
    if (out == nullptr) return E_POINTER;
    ULONG given = 0;
    for (; given < count; ++given, ++passed_) {
      const auto child = at(passed_);
      if (!child) break;
      out[given] = number(*child + 1);
    }
    if (fetched != nullptr) *fetched = given;
    return given == count ? S_OK : S_FALSE;
  }
  HRESULT STDMETHODCALLTYPE Skip(ULONG count) override {
    passed_ += count;
    return passed_ <= all() ? S_OK : S_FALSE;
  }
  HRESULT STDMETHODCALLTYPE Reset() override {
    passed_ = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Clone(IEnumVARIANT** out) override {
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    return guarded([&] { *out = handedOut(new SelectedChildren(stretches_, passed_)); }) ? S_OK
                                                                                         : E_OUTOFMEMORY;
  }

 private:
  std::size_t all() const {
    std::size_t sum = 0;
    for (const list::Stretch& stretch : stretches_) sum += stretch.end - stretch.begin;
    return sum;
  }
  std::optional<std::size_t> at(std::size_t place) const {
    for (const list::Stretch& stretch : stretches_) {
      if (place < stretch.end - stretch.begin) return stretch.begin + place;
      place -= stretch.end - stretch.begin;
    }
    return {};
  }

  std::vector<list::Stretch> stretches_;
  std::size_t passed_;
};

// An element as other programs see it.
class Accessible final : public com::Counted<IAccessible, IOleWindow> {
 public:
  Accessible(Life life, std::unique_ptr<Element> element)
      : life_(std::move(life)), element_(std::move(element)) {}

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
    return Counted::QueryInterface(iid == IID_IDispatch ? IID_IAccessible : iid, out);
  }

  // Members are called through their places in the interface alone.
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    if (count == nullptr) return E_POINTER;
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                   UINT*) override {
    return E_NOTIMPL;
  }

  HRESULT STDMETHODCALLTYPE GetWindow(HWND* out) override {
    return of(CHILDID_SELF, out, [&](Element& element) {
      *out = element.window();
      return S_OK;
    });
  }
  HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL) override { return E_NOTIMPL; }

  HRESULT STDMETHODCALLTYPE get_accParent(IDispatch** out) override {
    return of(CHILDID_SELF, out, [&](Element& element) {
      if (auto parent = element.parent()) return give(std::move(parent), out);
      return frameOf(element.window(), out);
    });
  }
  HRESULT STDMETHODCALLTYPE get_accChildCount(LONG* out) override {
    return of(CHILDID_SELF, out, [&](Element& element) {
      *out = static_cast<LONG>(element.children());
      return S_OK;
    });
  }
  HRESULT STDMETHODCALLTYPE get_accChild(VARIANT child, IDispatch** out) override {
    return of(CHILDID_SELF, out, [&](Element& element) {
      if (child.vt != VT_I4 || child.lVal < 1) return E_INVALIDARG;
      const auto wanted = static_cast<std::size_t>(child.lVal) - 1;
      return wanted < element.children() ? give(element.child(wanted), out) : E_INVALIDARG;
    });
  }
  HRESULT STDMETHODCALLTYPE get_accName(VARIANT child, BSTR* out) override {
    return text(child, out, &Element::name);
  }
  HRESULT STDMETHODCALLTYPE get_accValue(VARIANT child, BSTR* out) override {
    return text(child, out, &Element::value);
  }
  HRESULT STDMETHODCALLTYPE get_accDescription(VARIANT child, BSTR* out) override {
    return text(child, out, &Element::description);
  }
  HRESULT STDMETHODCALLTYPE get_accKeyboardShortcut(VARIANT child, BSTR* out) override {
    return text(child, out, &Element::key);
  }
  HRESULT STDMETHODCALLTYPE get_accDefaultAction(VARIANT child, BSTR* out) override {
    return text(child, out, &Element::action);
  }
  HRESULT STDMETHODCALLTYPE get_accRole(VARIANT child, VARIANT* out) override {
    return of(child, out, [&](Element& element) {
      *out = number(static_cast<std::size_t>(element.role()));
      return S_OK;
    });
  }
  HRESULT STDMETHODCALLTYPE get_accState(VARIANT child, VARIANT* out) override {
    return of(child, out, [&](Element& element) {
      *out = number(element.state());
      return S_OK;
    });
  }
  HRESULT STDMETHODCALLTYPE get_accHelp(VARIANT, BSTR* out) override { return none(out); }
  HRESULT STDMETHODCALLTYPE get_accHelpTopic(BSTR* out, VARIANT, LONG*) override { return none(out); }

  HRESULT STDMETHODCALLTYPE get_accFocus(VARIANT* out) override {
    return of(CHILDID_SELF, out, [&](Element& element) {
      if (const auto child = element.focusedChild()) return give(element.child(*child), out);
      if ((element.state() & STATE_SYSTEM_FOCUSED) == 0) return S_FALSE;
      *out = number(CHILDID_SELF);
      return S_OK;
    });
  }
  HRESULT STDMETHODCALLTYPE get_accSelection(VARIANT* out) override {
    return of(CHILDID_SELF, out, [&](Element& element) {
      std::vector<list::Stretch> stretches = element.selected();
      if (stretches.empty()) return S_FALSE;
      if (stretches.size() == 1 && stretches.front().end - stretches.front().begin == 1)
        return give(element.child(stretches.front().begin), out);
      out->punkVal = handedOut(new SelectedChildren(std::move(stretches), 0));
      out->vt = VT_UNKNOWN;
      return S_OK;
    });
  }
  HRESULT STDMETHODCALLTYPE accSelect(LONG flags, VARIANT child) override {
    return of(child, this, [&](Element& element) { return outcome(element.select(flags)); });
  }
  HRESULT STDMETHODCALLTYPE accDoDefaultAction(VARIANT child) override {
    return of(child, this, [&](Element& element) { return outcome(element.act()); });
  }
  HRESULT STDMETHODCALLTYPE accLocation(LONG* left, LONG* top, LONG* wide, LONG* high,
                                        VARIANT child) override {
    if (left == nullptr || top == nullptr || wide == nullptr || high == nullptr) return E_POINTER;
    *left = *top = *wide = *high = 0;
    return of(child, this, [&](Element& element) {
      const RECT place = element.place();
      *left = place.left;
      *top = place.top;
      *wide = width(place);
      *high = height(place);
      return S_OK;
    });
  }
  HRESULT STDMETHODCALLTYPE accHitTest(LONG left, LONG top, VARIANT* out) override {
    return of(CHILDID_SELF, out, [&](Element& element) {
      const POINT point{left, top};
      const RECT place = element.place();
      if (!PtInRect(&place, point)) return S_FALSE;
      if (const auto child = element.childAt(point)) return give(element.child(*child), out);
      *out = number(CHILDID_SELF);
      return S_OK;
    });
  }
  HRESULT STDMETHODCALLTYPE accNavigate(LONG way, VARIANT from, VARIANT* out) override {
    return of(from, out, [&](Element& element) {
      const bool self = from.lVal == CHILDID_SELF;
      if (way == NAVDIR_FIRSTCHILD || way == NAVDIR_LASTCHILD) {
        const std::size_t all = element.children();
        if (all == 0) return S_FALSE;
        return give(element.child(way == NAVDIR_FIRSTCHILD ? 0 : all - 1), out);
      }
      const auto parent = self ? element.parent() : nullptr;
      const auto place = self ? element.number() : std::optional(static_cast<std::size_t>(from.lVal) - 1);
      const Element* among = self ? parent.get() : element_.get();
      if (among == nullptr || !place) return S_FALSE;
      const bool on = way == NAVDIR_NEXT || way == NAVDIR_DOWN || way == NAVDIR_RIGHT;
      if (on ? *place + 1 >= among->children() : *place == 0) return S_FALSE;
      return give(among->child(on ? *place + 1 : *place - 1), out);
    });
  }

  HRESULT STDMETHODCALLTYPE put_accName(VARIANT, BSTR) override { return DISP_E_MEMBERNOTFOUND; }
  HRESULT STDMETHODCALLTYPE put_accValue(VARIANT, BSTR) override { return DISP_E_MEMBERNOTFOUND; }

 private:
  template <typename Out>
  static void clear(Out* out) {
    if constexpr (std::is_same_v<Out, VARIANT>)
      *out = nothing();
    else if constexpr (!std::is_same_v<Out, Accessible>)
      *out = Out{};
  }
  static HRESULT none(BSTR* out) {
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    return S_FALSE;
  }
  static HRESULT outcome(Done done) {
    if (done == Done::never) return DISP_E_MEMBERNOTFOUND;
    return done == Done::yes ? S_OK : E_ACCESSDENIED;
  }

  // Does the work with the element itself or its child of that number; what the window no longer has answers
  // that nothing is behind it. `out` is empty until the work fills it.
  template <typename Out, typename Work>
  HRESULT of(const VARIANT& child, Out* out, Work work) {
    if (child.vt != VT_I4 || child.lVal < 0) {
      if (out != nullptr) clear(out);
      return out == nullptr ? E_POINTER : E_INVALIDARG;
    }
    return of(child.lVal, out, work);
  }
  template <typename Out, typename Work>
  HRESULT of(LONG child, Out* out, Work work) {
    if (out == nullptr) return E_POINTER;
    clear(out);
    if (life_.expired()) return CO_E_OBJNOTCONNECTED;
    HRESULT answer = E_FAIL;
    guarded([&] {
      if (!element_->there()) {
        answer = CO_E_OBJNOTCONNECTED;
        return;
      }
      if (child == CHILDID_SELF) {
        answer = work(*element_);
        return;
      }
      const auto wanted = static_cast<std::size_t>(child) - 1;
      const auto made = wanted < element_->children() ? element_->child(wanted) : nullptr;
      answer = made != nullptr ? work(*made) : E_INVALIDARG;
    });
    return answer;
  }
  HRESULT text(const VARIANT& child, BSTR* out, std::u16string (Element::*what)() const) {
    return of(child, out, [&](Element& element) {
      const std::u16string words = (element.*what)();
      if (words.empty()) return S_FALSE;
      *out = SysAllocStringLen(wide(words), static_cast<UINT>(words.size()));
      return *out != nullptr ? S_OK : E_OUTOFMEMORY;
    });
  }
  HRESULT give(std::unique_ptr<Element> element, IDispatch** out) const {
    if (element == nullptr) return S_FALSE;
    *out = handedOut(new Accessible(life_, std::move(element)));
    return S_OK;
  }
  HRESULT give(std::unique_ptr<Element> element, VARIANT* out) const {
    if (element == nullptr) return S_FALSE;
    out->pdispVal = handedOut(new Accessible(life_, std::move(element)));
    out->vt = VT_DISPATCH;
    return S_OK;
  }
  // What the system says of a window as a whole: its title bar and edges.
  static HRESULT frameOf(HWND window, IDispatch** out) {
    using Ask = HRESULT(WINAPI*)(HWND, DWORD, REFIID, void**);
    static const auto ask = oleacc<Ask>("AccessibleObjectFromWindow");
    return ask != nullptr
               ? ask(window, static_cast<DWORD>(OBJID_WINDOW), IID_IDispatch, reinterpret_cast<void**>(out))
               : S_FALSE;
  }

  Life life_;
  std::unique_ptr<Element> element_;
};

}  // namespace

DWORD Element::state() const {
  const HWND own = window();
  DWORD state = 0;
  if (!IsWindowVisible(own)) state |= STATE_SYSTEM_INVISIBLE;
  if (!IsWindowEnabled(own)) return state | STATE_SYSTEM_UNAVAILABLE;
  if ((GetWindowLongPtrW(own, GWL_STYLE) & WS_TABSTOP) != 0) state |= STATE_SYSTEM_FOCUSABLE;
  if (GetFocus() == own) state |= STATE_SYSTEM_FOCUSED;
  return state;
}

RECT Element::place() const {
  RECT place{};
  GetWindowRect(window(), &place);
  return place;
}

std::optional<std::size_t> Element::childAt(POINT point) const {
  for (std::size_t i = 0; i < children(); ++i) {
    const auto each = child(i);
    if (each == nullptr || (each->state() & STATE_SYSTEM_INVISIBLE) != 0) continue;
    const RECT place = each->place();
    if (PtInRect(&place, point)) return i;
  }
  return {};
}

LRESULT AccessibleLife::answer(WPARAM wide, std::unique_ptr<Element> element) const {
  using Hand = LRESULT(WINAPI*)(REFIID, WPARAM, LPUNKNOWN);
  static const auto hand = oleacc<Hand>("LresultFromObject");
  if (life_ == nullptr || hand == nullptr) return 0;
  auto* object = handedOut(new Accessible(life_, std::move(element)));
  const LRESULT answer = hand(IID_IAccessible, wide, static_cast<IAccessible*>(object));
  object->Release();
  return answer;
}

bool asksFor(LPARAM low, LONG object) {
  return static_cast<DWORD>(low) == static_cast<DWORD>(object);
}

}  // namespace vordane::window::win32
