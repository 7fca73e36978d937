#include "platform/windows/com/apartment.h"

#include <objidl.h>

#include <array>
#include <exception>
#include <string>
#include <vector>

#include "platform/automation.h"
#include "platform/call_filter.h"
#include "platform/windows/com/counted.h"
#include "platform/windows/com/kept_interfaces.h"
#include "platform/windows/com/permissions.h"

namespace vordane::com {
namespace {

// A crash must show instead of becoming a strange answer, and a client that died must be noticed in
// seconds. Wine knows neither option; that is no reason not to run.
void setProcessOptions() {
  ComPtr<IGlobalOptions> options;
  if (FAILED(CoCreateInstance(CLSID_GlobalOptions, nullptr, CLSCTX_INPROC_SERVER, IID_IGlobalOptions,
                              options.putVoid())))
    return;
  options->Set(COMGLB_EXCEPTION_HANDLING, COMGLB_EXCEPTION_DONOT_HANDLE_ANY);
  options->Set(COMGLB_RO_SETTINGS, COMGLB_FAST_RUNDOWN);
}

// The name of this program's file, by which its rights are found.
std::u16string fileName() {
  std::vector<wchar_t> buffer(32768);
  const DWORD length = GetModuleFileNameW(nullptr, buffer.data(), static_cast<DWORD>(buffer.size()));
  const std::u16string_view path = fromWide({buffer.data(), length});
  return std::u16string(path.substr(path.rfind(u'\\') + 1));
}

// Calls come in under the workstation's own rules, nothing for everyone: what an unnamed application gets,
// and besides no other program's library is loaded to take an argument apart. Processes may be started on the
// way: by hand the exchange server is.
void secureCalls() {
  const CallSecurity security = callSecurity(fileName());
  AbsoluteRights access(security.access);
  if (access.get() != nullptr &&
      SUCCEEDED(CoInitializeSecurity(access.get(), -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_DEFAULT,
                                     RPC_C_IMP_LEVEL_IDENTIFY, nullptr, security.capabilities, nullptr)))
    return;
  CoInitializeSecurity(nullptr, -1, nullptr, nullptr, 0, 0, nullptr, EOAC_APPID, nullptr);
}

}  // namespace

// The object that COM asks while an outgoing call waits. Accepts everything that comes in.
class Apartment::Filter final : public Counted<IMessageFilter> {
 public:
  explicit Filter(platform::CallQuestions& questions) : rules(questions) {}

  platform::CallFilter rules;

  DWORD STDMETHODCALLTYPE HandleInComingCall(DWORD, HTASK, DWORD, LPINTERFACEINFO) override {
    return SERVERCALL_ISHANDLED;
  }

  // A question that can't be put is answered with giving up.
  DWORD STDMETHODCALLTYPE RetryRejectedCall(HTASK, DWORD elapsed, DWORD) override {
    constexpr auto giveUp = static_cast<DWORD>(-1);
    try {
      return static_cast<DWORD>(rules.rejected(elapsed));
    } catch (const std::exception&) {
      return giveUp;
    }
  }

  DWORD STDMETHODCALLTYPE MessagePending(HTASK, DWORD elapsed, DWORD) override {
    try {
      rules.waiting(GetTickCount(), elapsed, inputWaits());
    } catch (const std::exception&) {
      // The call goes on whatever is told.
    }
    return PENDINGMSG_WAITDEFPROCESS;
  }

 private:
  static bool inputWaits() {
    constexpr std::array<UINT, 5> presses{WM_KEYDOWN, WM_SYSKEYDOWN, WM_LBUTTONDOWN, WM_RBUTTONDOWN,
                                          WM_NCLBUTTONDOWN};
    MSG message;
    for (const UINT press : presses)
      if (PeekMessageW(&message, nullptr, press, press, PM_NOREMOVE | PM_NOYIELD)) return true;
    return false;
  }
};

Apartment::Apartment() {
  const HRESULT result = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE);
  if (FAILED(result)) throw automation::AutomationError(result);
  setProcessOptions();
  secureCalls();
  keepInterfaces();
}

Apartment::~Apartment() {
  if (filter_) CoRegisterMessageFilter(nullptr, nullptr);
  filter_ = nullptr;
  CoUninitialize();
}

void Apartment::filterCalls(platform::CallQuestions& questions) {
  rules_ = new Filter(questions);
  filter_ = ComPtr<IMessageFilter>(rules_);
  CoRegisterMessageFilter(filter_.get(), nullptr);
}

void Apartment::setCallTimes(const platform::CallTimes& times) {
  if (rules_ != nullptr) rules_->rules.setTimes(times);
}

namespace {

// A message whose translation fails is served as it is.
bool translated(const std::function<bool(MSG&)>& translate, MSG& message) {
  try {
    return translate && translate(message);
  } catch (const std::exception&) {
    return false;
  }
}

}  // namespace

int runMessageLoop(const std::function<bool(MSG&)>& translate) {
  MSG message{};
  while (GetMessageW(&message, nullptr, 0, 0) > 0) {
    if (translated(translate, message)) continue;
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  return static_cast<int>(message.wParam);
}

bool serveMessages() {
  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
    if (message.message == WM_QUIT) {
      PostQuitMessage(static_cast<int>(message.wParam));
      return false;
    }
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  return true;
}

bool serveMessagesUntil(const std::function<bool()>& done, int milliseconds) {
  const ULONGLONG end = GetTickCount64() + static_cast<ULONGLONG>(milliseconds);
  constexpr DWORD longestNap = 50;  // `done` may turn true without a message
  while (!done()) {
    const ULONGLONG now = GetTickCount64();
    if (now >= end) return false;
    const DWORD nap = end - now < longestNap ? static_cast<DWORD>(end - now) : longestNap;
    MsgWaitForMultipleObjectsEx(0, nullptr, nap, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    if (!serveMessages()) return false;
  }
  return true;
}

}  // namespace vordane::com
