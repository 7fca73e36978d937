#include "click/windows/eye.h"

#include <algorithm>
#include <array>
#include <cwchar>
#include <cwctype>

#include "platform/windows/window/children.h"

namespace vordane::click {
namespace {

using window::win32::Child;
using window::win32::children;

constexpr UINT answersWithin = 5000;
constexpr int messageText = 0xFFFF;  // of a message box

bool isNamed(const Child& child, std::wstring_view name) {
  return std::equal(child.control.begin(), child.control.end(), name.begin(), name.end(),
                    [](char16_t a, wchar_t b) { return std::towlower(a) == std::towlower(b); });
}

struct Search {
  const wchar_t* type;
  const Eye::Own& own;
  HWND found = nullptr;
};

BOOL CALLBACK look(HWND window, LPARAM parameter) {
  auto& search = *reinterpret_cast<Search*>(parameter);
  std::array<wchar_t, 64> type{};
  if (!IsWindowVisible(window) || GetClassNameW(window, type.data(), 64) == 0 ||
      std::wcscmp(type.data(), search.type) != 0)
    return TRUE;
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  if (search.own && !search.own(process)) return TRUE;
  search.found = window;
  return FALSE;
}

}  // namespace

HWND Eye::find(const wchar_t* type) const {
  Search search{type, own_};
  EnumWindows(look, reinterpret_cast<LPARAM>(&search));
  return search.found;
}

HWND Eye::frame() const {
  return find(window::win32::windowClassName);
}

HWND Eye::control(std::wstring_view name) const {
  const HWND shown = frame();
  if (shown == nullptr) return nullptr;
  if (name == L"account") return GetDlgItem(shown, window::win32::idAccount);
  const auto* child = std::find_if(std::begin(children), std::end(children),
                                   [&](const Child& entry) { return isNamed(entry, name); });
  return child == std::end(children) ? nullptr : GetDlgItem(shown, child->id);
}

HWND Eye::heading() const {
  const HWND shown = frame();
  if (shown == nullptr) return nullptr;
  const HWND grid = GetDlgItem(shown, window::win32::idGrid);
  const auto found = reinterpret_cast<HWND>(SendMessageW(grid, LVM_GETHEADER, 0, 0));
  return found != nullptr && IsWindowVisible(found) ? found : nullptr;
}

HWND Eye::box() const {
  return find(L"#32770");
}

HWND Eye::menu() const {
  return find(L"#32768");
}

HWND Eye::help() const {
  return find(window::win32::helpClassName);
}

std::wstring textOf(HWND window) {
  std::wstring text(4096, L'\0');
  DWORD_PTR length = 0;
  if (SendMessageTimeoutW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()), SMTO_NORMAL,
                          answersWithin, &length) == 0)
    length = 0;
  text.resize(length);
  return text;
}

std::wstring titleOf(HWND box) {
  return textOf(box);
}

std::wstring messageOf(HWND box) {
  const HWND text = GetDlgItem(box, messageText);
  return text == nullptr ? std::wstring{} : textOf(text);
}

bool takesInput(HWND control) {
  const HWND frame = GetAncestor(control, GA_ROOT);
  return frame != nullptr && IsWindowVisible(control) && IsWindowEnabled(control) && IsWindowEnabled(frame);
}

RECT placeOf(HWND window) {
  RECT area{};
  GetWindowRect(window, &area);
  return area;
}

POINT middleOf(HWND window) {
  const RECT area = placeOf(window);
  return {(area.left + area.right) / 2, (area.top + area.bottom) / 2};
}

// The place lies in the other process's memory while it is asked for.
RECT placeOfHeading(HWND headings, int column) {
  RECT place{};
  DWORD processId = 0;
  GetWindowThreadProcessId(headings, &processId);
  const HANDLE process =
      OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_READ | PROCESS_VM_WRITE, FALSE, processId);
  void* const there = VirtualAllocEx(process, nullptr, sizeof place, MEM_COMMIT, PAGE_READWRITE);
  if (there != nullptr && SendMessageW(headings, HDM_GETITEMRECT, static_cast<WPARAM>(column),
                                       reinterpret_cast<LPARAM>(there)) != 0)
    ReadProcessMemory(process, there, &place, sizeof place, nullptr);
  if (there != nullptr) VirtualFreeEx(process, there, 0, MEM_RELEASE);
  CloseHandle(process);
  if (place.right > place.left) MapWindowPoints(headings, nullptr, reinterpret_cast<POINT*>(&place), 2);
  return place;
}

std::string utf8(std::wstring_view text) {
  const int length = static_cast<int>(text.size());
  std::string bytes(static_cast<std::size_t>(
                        WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr)),
                    '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.data(), length, bytes.data(), static_cast<int>(bytes.size()), nullptr,
                      nullptr);
  return bytes;
}

}  // namespace vordane::click
