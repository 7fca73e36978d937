// Where exceptions become HRESULTs, the one place: every method that COM calls runs inside `answer`.
#pragma once

#include <functional>
#include <string_view>

#include "platform/windows/com/owned.h"

namespace vordane::com {

// A call turned down at the door, before any member ran: its HRESULT is the call's own answer.
struct Refusal {
  HRESULT result;
  int position = -1;  // in rgvarg, of the argument to blame
};

// What an answer may tell besides its HRESULT; any pointer may be null.
struct Details {
  EXCEPINFO* exception = nullptr;
  UINT* argument = nullptr;
  std::u16string_view source = {};
};

// Runs `body` and answers S_OK, the refusal, or DISP_E_EXCEPTION with the error's number and text.
HRESULT answer(const Details& details, const std::function<void()>& body) noexcept;

// The same for methods outside IDispatch::Invoke: the error's own code is the answer.
HRESULT answerPlain(const std::function<void()>& body) noexcept;

// Throws the AutomationError of a failed Invoke; frees what `info` holds.
[[noreturn]] void throwFailure(HRESULT result, EXCEPINFO& info, int position);

}  // namespace vordane::com
