#include "platform/windows/com/class_server.h"

#include <cstdlib>
#include <exception>
#include <thread>
#include <utility>

#include "platform/server_life.h"
#include "platform/windows/com/counted.h"
#include "platform/windows/com/errors.h"
#include "platform/windows/com/host_watch.h"
#include "platform/windows/com/objects.h"
#include "platform/windows/com/values.h"

namespace vordane::com {
namespace {

constexpr UINT messageEnd = WM_APP + 1;
constexpr UINT messageHostDied = WM_APP + 2;
constexpr UINT_PTR timerUnused = 1;
constexpr UINT unusedFor = 60000;     // a start that nobody used, in milliseconds
constexpr DWORD endingAtMost = 2000;  // from the wish to end, in milliseconds

constexpr const wchar_t* windowClass = L"VordaneProcess";

// An outgoing call may be waiting below us, in which posted messages are not dispatched; the other program
// may never answer it.
void endAfterDeadline() {
  std::thread([] {
    Sleep(endingAtMost);
    TerminateProcess(GetCurrentProcess(), 0);
  }).detach();
}

}  // namespace

class ClassServer::Impl {
 public:
  explicit Impl(Apartment& home) : apartment(home), window_(makeWindow()), watch(window_, messageHostDied) {}
  ~Impl() {
    stopServing();
    DestroyWindow(window_);
  }
  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;

  void serve(const std::vector<ServedClass>& classes);
  void stopServing();
  void end();
  ComPtr<IDispatch> create(const ServedClass& entry);
  void lock(bool on);
  bool serving() const { return serving_; }

  Apartment& apartment;

 private:
  class Factory;

  static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  bool handle(UINT message, WPARAM wParam);
  HWND makeWindow();
  automation::ObjectRef make(const ServedClass& entry);
  void released(const automation::Object* object);
  void endWhenOver();
  void hostDied(WPARAM number);

  HWND window_;

 public:
  HostWatch watch;

 private:
  std::vector<DWORD> registrations_;
  platform::ServerLife life_;
  bool serving_ = false;
  bool ending_ = false;
  std::shared_ptr<Impl*> self_ = std::make_shared<Impl*>(this);
};

// One class's factory. COM keeps it as long as it is registered; a client may keep it longer, past the end of
// the server too.
class ClassServer::Impl::Factory final : public Counted<IClassFactory> {
 public:
  Factory(std::weak_ptr<Impl*> server, ServedClass served)
      : server_(std::move(server)), served_(std::move(served)), clsid_(toGuid(served_.clsid)) {}

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** out) override {
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    const auto server = server_.lock();
    if (!server) return CO_E_SERVER_STOPPING;
    if (!(*server)->serving()) return createElsewhere(iid, out);
    return answerPlain([&] {
      const ComPtr<IDispatch> object = (*server)->create(served_);
      const HRESULT result = object->QueryInterface(iid, out);
      if (FAILED(result)) throw Refusal{result};
    });
  }

  HRESULT STDMETHODCALLTYPE LockServer(BOOL on) override {
    const auto server = server_.lock();
    if (!server) return CO_E_SERVER_STOPPING;
    return answerPlain([&] { (*server)->lock(on != FALSE); });
  }

 private:
  // This request was under way when the ending began: a new process takes it.
  HRESULT createElsewhere(REFIID iid, void** out) const {
    const HRESULT result = CoCreateInstance(clsid_, nullptr, CLSCTX_LOCAL_SERVER, iid, out);
    return SUCCEEDED(result) ? result : CO_E_SERVER_STOPPING;
  }

  std::weak_ptr<Impl*> server_;
  ServedClass served_;
  GUID clsid_;
};

LRESULT CALLBACK ClassServer::Impl::procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  auto* self = reinterpret_cast<Impl*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  if (self == nullptr) return DefWindowProcW(window, message, wParam, lParam);
  try {
    if (self->handle(message, wParam)) return 0;
  } catch (const std::exception&) {
    return 0;  // nothing may leave a window procedure but its answer
  }
  return DefWindowProcW(window, message, wParam, lParam);
}

// False for a message that is none of ours.
bool ClassServer::Impl::handle(UINT message, WPARAM wParam) {
  if (message == messageEnd) {
    PostQuitMessage(0);
  } else if (message == messageHostDied) {
    hostDied(wParam);
  } else if (message == WM_TIMER && wParam == timerUnused) {
    KillTimer(window_, timerUnused);
    if (life_.neverUsed()) end();
  } else {
    return false;
  }
  return true;
}

HWND ClassServer::Impl::makeWindow() {
  WNDCLASSW entry{};
  entry.lpfnWndProc = procedure;
  entry.hInstance = GetModuleHandleW(nullptr);
  entry.lpszClassName = windowClass;
  RegisterClassW(&entry);
  const HWND window =
      CreateWindowExW(0, windowClass, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, entry.hInstance, nullptr);
  SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  return window;
}

void ClassServer::Impl::serve(const std::vector<ServedClass>& classes) {
  serving_ = true;
  for (const ServedClass& served : classes) {
    const ComPtr<IClassFactory> factory(new Factory(self_, served));
    DWORD registration = 0;
    const HRESULT result = CoRegisterClassObject(toGuid(served.clsid), factory.get(), CLSCTX_LOCAL_SERVER,
                                                 REGCLS_MULTIPLEUSE | REGCLS_SUSPENDED, &registration);
    if (FAILED(result)) throw automation::AutomationError(result);
    registrations_.push_back(registration);
  }
  const HRESULT result = CoResumeClassObjects();
  if (FAILED(result)) throw automation::AutomationError(result);
  SetTimer(window_, timerUnused, unusedFor, nullptr);
}

void ClassServer::Impl::stopServing() {
  serving_ = false;
  for (const DWORD registration : std::exchange(registrations_, {})) CoRevokeClassObject(registration);
}

void ClassServer::Impl::end() {
  stopServing();
  refusePublicCalls();
  if (std::exchange(ending_, true)) return;
  endAfterDeadline();
  PostMessageW(window_, messageEnd, 0, 0);
}

// The object is counted before it is there: while it is made, another one's release must not end the process.
automation::ObjectRef ClassServer::Impl::make(const ServedClass& entry) {
  life_.creating();
  try {
    return entry.create();
  } catch (...) {
    life_.failed();
    endWhenOver();
    throw;
  }
}

ComPtr<IDispatch> ClassServer::Impl::create(const ServedClass& entry) {
  const bool endsItself = entry.endsItself;
  automation::ObjectRef object = make(entry);
  const automation::Object* name = object.get();
  life_.created(endsItself);
  // A client may keep an object longer than this server lives: COM lets go of it when the apartment ends.
  const std::weak_ptr<Impl*> server = self_;
  return exportObject(object, LifeToken(this, [server, name](void*) {
                        if (const auto alive = server.lock()) (*alive)->released(name);
                      }));
}

void ClassServer::Impl::lock(bool on) {
  life_.locked(on);
  endWhenOver();
}

void ClassServer::Impl::released(const automation::Object* object) {
  watch.forget(object);
  life_.released();
  endWhenOver();
}

void ClassServer::Impl::endWhenOver() {
  if (life_.over()) end();
}

void ClassServer::Impl::hostDied(WPARAM number) {
  if (const automation::Object* layer = watch.takeDead(number))
    disconnectObject(const_cast<automation::Object&>(*layer));
}

ClassServer::ClassServer(Apartment& apartment) : impl_(std::make_unique<Impl>(apartment)) {}
ClassServer::~ClassServer() = default;

void ClassServer::serve(const std::vector<ServedClass>& classes) {
  impl_->serve(classes);
}
void ClassServer::stay() {
  impl_->lock(true);
}
void ClassServer::setCallTimes(const platform::CallTimes& times) {
  impl_->apartment.setCallTimes(times);
}
void ClassServer::stopServing() {
  impl_->stopServing();
}
void ClassServer::end() {
  impl_->end();
}
void ClassServer::endAtOnce() {
  // A class that a dead process still offers would be everybody's until the workstation notices.
  impl_->stopServing();
  TerminateProcess(GetCurrentProcess(), 1);
  std::abort();  // not reached
}
void ClassServer::watchHost(automation::Object& layer, const automation::ObjectRef& host) {
  impl_->watch.watch(&layer, host);
}

}  // namespace vordane::com
