// What a screen reader is told of the running fault display, from outside: the parts of its window with their
// roles, names, states and children, asked of the program itself. Needs COM on the calling thread.
#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct IAccessible;
struct tagVARIANT;

namespace vordane::click {

// One part. It may have gone at the next question, which `failure` then tells.
class Ear {
 public:
  Ear() = default;
  // The part that a window or one of its objects (OBJID_...) is; none when it has no answer.
  static Ear at(HWND window, LONG object = OBJID_CLIENT);

  explicit operator bool() const { return part_ != nullptr; }
  std::wstring name() const;
  std::wstring value() const;
  std::wstring description() const;
  std::wstring key() const;
  std::wstring action() const;
  long role() const;    // ROLE_SYSTEM_...
  DWORD state() const;  // STATE_SYSTEM_...
  RECT place() const;
  HWND window() const;
  long children() const;
  Ear child(long number) const;  // from 1
  Ear parent() const;
  Ear focused() const;
  Ear hit(POINT point) const;
  Ear next(long way) const;  // NAVDIR_...
  // The numbers of the selected children, at most `most`, and how many there were of those.
  std::vector<long> selected(std::size_t most) const;
  // The first part below this one, in its order, with that name (as it begins) and role.
  Ear find(long role, std::wstring_view name) const;

  HRESULT act() const;
  HRESULT select(long flags) const;  // SELFLAG_...
  HRESULT failure() const;           // of asking its name

  // A line for each part: role, name, value, states and so on; of more than `most` children the first and the
  // last.
  std::wstring told(long most) const;

 private:
  struct Drop {
    void operator()(IAccessible* part) const;
  };
  explicit Ear(IAccessible* part) : part_(part, Drop{}) {}
  static Ear from(tagVARIANT& answer, const Ear& asked);
  void tell(std::wstring& lines, std::size_t depth, long most) const;

  std::shared_ptr<IAccessible> part_;
};

}  // namespace vordane::click
