#include "click/windows/ear.h"

#include <initguid.h>
// The identifiers of oleacc have to be spelled out: its import library does not carry them.
#include <oleacc.h>

#include <utility>

namespace vordane::click {
namespace {

VARIANT number(LONG value) {
  VARIANT variant;
  VariantInit(&variant);
  variant.vt = VT_I4;
  variant.lVal = value;
  return variant;
}

VARIANT self() {
  return number(CHILDID_SELF);
}

using Question = HRESULT (STDMETHODCALLTYPE IAccessible::*)(VARIANT, BSTR*);

std::wstring ask(IAccessible* part, Question question) {
  BSTR text = nullptr;
  if (part == nullptr || (part->*question)(self(), &text) != S_OK || text == nullptr) return {};
  std::wstring words(text, SysStringLen(text));
  SysFreeString(text);
  return words;
}

struct Word {
  long number;
  const wchar_t* word;
};

constexpr Word roles[] = {
    {ROLE_SYSTEM_CLIENT, L"client"},        {ROLE_SYSTEM_GROUPING, L"group"},
    {ROLE_SYSTEM_STATICTEXT, L"words"},     {ROLE_SYSTEM_TEXT, L"text"},
    {ROLE_SYSTEM_PUSHBUTTON, L"button"},    {ROLE_SYSTEM_CHECKBUTTON, L"tick"},
    {ROLE_SYSTEM_COMBOBOX, L"choice"},      {ROLE_SYSTEM_LIST, L"list"},
    {ROLE_SYSTEM_LISTITEM, L"row"},         {ROLE_SYSTEM_CELL, L"cell"},
    {ROLE_SYSTEM_COLUMNHEADER, L"heading"}, {ROLE_SYSTEM_STATUSBAR, L"status"},
    {ROLE_SYSTEM_ALERT, L"alert"},
};

// What a person would be told; what nearly every part has is left out.
constexpr Word states[] = {
    {STATE_SYSTEM_UNAVAILABLE, L"unavailable"}, {STATE_SYSTEM_SELECTED, L"selected"},
    {STATE_SYSTEM_FOCUSED, L"focused"},         {STATE_SYSTEM_CHECKED, L"checked"},
    {STATE_SYSTEM_READONLY, L"read-only"},      {STATE_SYSTEM_INVISIBLE, L"invisible"},
    {STATE_SYSTEM_OFFSCREEN, L"off-screen"},    {STATE_SYSTEM_EXPANDED, L"open"},
    {STATE_SYSTEM_ALERT_MEDIUM, L"alarm"},      {STATE_SYSTEM_ALERT_HIGH, L"high alarm"},
};

std::wstring roleWord(long role) {
  for (const Word& each : roles)
    if (each.number == role) return each.word;
  return L"role " + std::to_wstring(role);
}

std::wstring stateWords(DWORD state) {
  std::wstring words;
  for (const Word& each : states)
    if ((state & static_cast<DWORD>(each.number)) != 0)
      words += (words.empty() ? L"" : L", ") + std::wstring(each.word);
  return words;
}

// In one line.
std::wstring quoted(std::wstring text) {
  for (wchar_t& letter : text)
    if (letter == L'\r' || letter == L'\n') letter = L'|';
  return L"\"" + text + L"\"";
}

}  // namespace

void Ear::Drop::operator()(IAccessible* part) const {
  if (part != nullptr) part->Release();
}

Ear Ear::at(HWND window, LONG object) {
  void* found = nullptr;
  if (FAILED(AccessibleObjectFromWindow(window, static_cast<DWORD>(object), IID_IAccessible, &found)))
    return {};
  return Ear(static_cast<IAccessible*>(found));
}

// Takes over what the answer holds.
Ear Ear::from(VARIANT& answer, const Ear& asked) {
  Ear found;
  if (answer.vt == VT_I4 && answer.lVal == CHILDID_SELF) found = asked;
  if (answer.vt == VT_I4 && answer.lVal != CHILDID_SELF) found = asked.child(answer.lVal);
  void* part = nullptr;
  if (answer.vt == VT_DISPATCH && answer.pdispVal != nullptr &&
      SUCCEEDED(answer.pdispVal->QueryInterface(IID_IAccessible, &part)))
    found = Ear(static_cast<IAccessible*>(part));
  VariantClear(&answer);
  return found;
}

std::wstring Ear::name() const {
  return ask(part_.get(), &IAccessible::get_accName);
}
std::wstring Ear::value() const {
  return ask(part_.get(), &IAccessible::get_accValue);
}
std::wstring Ear::description() const {
  return ask(part_.get(), &IAccessible::get_accDescription);
}
std::wstring Ear::key() const {
  return ask(part_.get(), &IAccessible::get_accKeyboardShortcut);
}
std::wstring Ear::action() const {
  return ask(part_.get(), &IAccessible::get_accDefaultAction);
}

long Ear::role() const {
  VARIANT role{};
  return part_ != nullptr && part_->get_accRole(self(), &role) == S_OK && role.vt == VT_I4 ? role.lVal : 0;
}

DWORD Ear::state() const {
  VARIANT state{};
  if (part_ == nullptr || part_->get_accState(self(), &state) != S_OK || state.vt != VT_I4) return 0;
  return static_cast<DWORD>(state.lVal);
}

RECT Ear::place() const {
  LONG left = 0, top = 0, width = 0, height = 0;
  if (part_ != nullptr) part_->accLocation(&left, &top, &width, &height, self());
  return {left, top, left + width, top + height};
}

HWND Ear::window() const {
  HWND window = nullptr;
  if (part_ != nullptr) WindowFromAccessibleObject(part_.get(), &window);
  return window;
}

long Ear::children() const {
  LONG count = 0;
  return part_ != nullptr && part_->get_accChildCount(&count) == S_OK ? count : 0;
}

Ear Ear::child(long which) const {
  VARIANT answer{};
  answer.vt = VT_DISPATCH;
  if (part_ == nullptr || part_->get_accChild(number(which), &answer.pdispVal) != S_OK) return {};
  return from(answer, *this);
}

Ear Ear::parent() const {
  VARIANT answer{};
  answer.vt = VT_DISPATCH;
  if (part_ == nullptr || part_->get_accParent(&answer.pdispVal) != S_OK) return {};
  return from(answer, *this);
}

Ear Ear::focused() const {
  VARIANT answer{};
  if (part_ == nullptr || part_->get_accFocus(&answer) != S_OK) return {};
  return from(answer, *this);
}

Ear Ear::hit(POINT point) const {
  VARIANT answer{};
  if (part_ == nullptr || part_->accHitTest(point.x, point.y, &answer) != S_OK) return {};
  return from(answer, *this);
}

Ear Ear::next(long way) const {
  VARIANT answer{};
  if (part_ == nullptr || part_->accNavigate(way, self(), &answer) != S_OK) return {};
  return from(answer, *this);
}

std::vector<long> Ear::selected(std::size_t most) const {
  std::vector<long> numbers;
  VARIANT answer{};
  if (part_ == nullptr || part_->get_accSelection(&answer) != S_OK) return numbers;
  void* found = nullptr;
  if (answer.vt == VT_UNKNOWN && SUCCEEDED(answer.punkVal->QueryInterface(IID_IEnumVARIANT, &found))) {
    auto* each = static_cast<IEnumVARIANT*>(found);
    VARIANT one{};
    ULONG got = 0;
    while (numbers.size() < most && each->Next(1, &one, &got) == S_OK) numbers.push_back(one.lVal);
    each->Release();
  } else if (answer.vt == VT_DISPATCH) {
    numbers.push_back(0);  // one, which is asked by itself
  }
  VariantClear(&answer);
  return numbers;
}

Ear Ear::find(long wanted, std::wstring_view begin) const {
  for (long i = 1, all = children(); i <= all; ++i) {
    const Ear part = child(i);
    if (!part) continue;
    if (part.role() == wanted && part.name().starts_with(begin)) return part;
    if (wanted != ROLE_SYSTEM_LISTITEM && part.role() == ROLE_SYSTEM_LIST) continue;  // it may be long
    if (const Ear below = part.find(wanted, begin)) return below;
  }
  return {};
}

HRESULT Ear::act() const {
  return part_ != nullptr ? part_->accDoDefaultAction(self()) : E_POINTER;
}

HRESULT Ear::select(long flags) const {
  return part_ != nullptr ? part_->accSelect(flags, self()) : E_POINTER;
}

HRESULT Ear::failure() const {
  BSTR text = nullptr;
  const HRESULT answer = part_ != nullptr ? part_->get_accName(self(), &text) : E_POINTER;
  SysFreeString(text);
  return answer;
}

std::wstring Ear::told(long most) const {
  std::wstring lines;
  tell(lines, 0, most);
  return lines;
}

void Ear::tell(std::wstring& lines, std::size_t depth, long most) const {
  lines += std::wstring(2 * depth, L' ') + roleWord(role()) + L" " + quoted(name());
  if (const std::wstring text = value(); !text.empty()) lines += L" = " + quoted(text);
  if (const std::wstring text = description(); !text.empty()) lines += L" about " + quoted(text);
  if (const std::wstring text = key(); !text.empty()) lines += L" key " + text;
  if (const std::wstring text = action(); !text.empty()) lines += L" does " + text;
  if (const std::wstring words = stateWords(state()); !words.empty()) lines += L" [" + words + L"]";
  const long all = children();
  if (all > most) lines += L" of " + std::to_wstring(all);
  lines += L"\n";
  for (long i = 1; i <= all; i = i == most && all > most ? all : i + 1) {
    if (const Ear part = child(i)) part.tell(lines, depth + 1, most);
  }
}

}  // namespace vordane::click
