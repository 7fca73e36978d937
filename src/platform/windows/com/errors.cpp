#include "platform/windows/com/errors.h"

#include <new>

#include "platform/automation.h"
#include "platform/database.h"
#include "platform/run_time_errors.h"
#include "platform/windows/com/values.h"
#include "text/utf8.h"

namespace vordane::com {
namespace {

using automation::AutomationError;

// What a caller of ours may not take for its own mistake: an unknown member of the host is no unknown
// member of ours, so the codes of failed calls become the run-time errors that hosts know.
std::int32_t asRunTimeError(std::int32_t code) {
  constexpr int objectFailed = 440;
  if (code == automation::error::exception) return automation::error::runTime(objectFailed);
  const auto number = automation::refusedCallNumber(code);
  return number ? automation::error::runTime(*number) : code;
}

// The same story for callers that ask for error information instead of an EXCEPINFO.
void setErrorInformation(const Details& details, const std::u16string& description) {
  ComPtr<ICreateErrorInfo> create;
  if (FAILED(CreateErrorInfo(create.put()))) return;
  const std::u16string source(details.source);
  create->SetSource(const_cast<wchar_t*>(wide(source.c_str())));
  create->SetDescription(const_cast<wchar_t*>(wide(description.c_str())));
  if (const auto info = create.as<IErrorInfo>(IID_IErrorInfo)) SetErrorInfo(0, info.get());
}

HRESULT raise(const Details& details, std::int32_t code, const std::u16string& description) {
  if (details.exception != nullptr) {
    *details.exception = {};
    details.exception->scode = asRunTimeError(code);
    details.exception->bstrSource = toBstr(details.source).release();
    details.exception->bstrDescription = toBstr(description).release();
  }
  setErrorInformation(details, description);
  return DISP_E_EXCEPTION;
}

HRESULT refuse(const Details& details, const Refusal& refusal) {
  if (details.argument != nullptr && refusal.position >= 0)
    *details.argument = static_cast<UINT>(refusal.position);
  return refusal.result;
}

// One ladder for both kinds of answer: `raised` says what a member's own error becomes.
template <class Raised>
HRESULT guarded(const Details& details, const std::function<void()>& body, Raised raised) noexcept {
  try {
    try {
      body();
      return S_OK;
    } catch (const Refusal& refusal) {
      return refuse(details, refusal);
    } catch (const AutomationError& failure) {
      return raised(failure.code(), failure.description());
    } catch (const database::DatabaseError& failure) {
      return raised(automation::error::runTime(failure.number()), failure.description());
    } catch (const std::bad_alloc&) {
      return E_OUTOFMEMORY;
    } catch (const std::exception& failure) {
      return raised(E_UNEXPECTED, text::fromUtf8(failure.what()));
    }
  } catch (...) {
    return E_UNEXPECTED;
  }
}

std::u16string takeText(BSTR& text) {
  const Bstr owned(std::exchange(text, nullptr));
  return toText(owned.get());
}

}  // namespace

HRESULT answer(const Details& details, const std::function<void()>& body) noexcept {
  return guarded(details, body,
                 [&](std::int32_t code, const std::u16string& text) { return raise(details, code, text); });
}

HRESULT answerPlain(const std::function<void()>& body) noexcept {
  return guarded({}, body, [](std::int32_t code, const std::u16string&) -> HRESULT { return code; });
}

void throwFailure(HRESULT result, EXCEPINFO& info, int position) {
  if (result != DISP_E_EXCEPTION) throw AutomationError(result, {}, {}, position);
  if (info.pfnDeferredFillIn != nullptr) info.pfnDeferredFillIn(&info);
  const std::int32_t code = info.scode != 0   ? info.scode
                            : info.wCode != 0 ? automation::error::runTime(info.wCode)
                                              : result;
  const std::u16string source = takeText(info.bstrSource);
  const std::u16string description = takeText(info.bstrDescription);
  takeText(info.bstrHelpFile);
  throw AutomationError(code, description, source);
}

}  // namespace vordane::com
