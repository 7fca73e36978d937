// Hosts that hang, die or are watched no longer: none of them holds up the add-in or another host.
#include "platform/windows/com/host_watch.h"

#include <atomic>
#include <thread>

#include "platform/windows/com/counted.h"
#include "registered.h"

namespace vordane::test {
namespace {

// A host on a thread of its own that can stop serving calls. What happens to it is decided by the test's
// thread.
class HangingHost {
 public:
  HangingHost() : thread_([this] { serve(); }) {
    WaitForSingleObject(ready_.get(), 30000);
    com::ComPtr<IDispatch> host;
    CoGetInterfaceAndReleaseStream(passage_.release(), IID_IDispatch, host.putVoid());
    object_ = com::importObject(host.get());
  }
  ~HangingHost() {
    resume();
    object_ = nullptr;
    SetEvent(over_.get());
    com::serveMessagesUntil([&] { return WaitForSingleObject(ended_.get(), 0) == WAIT_OBJECT_0; }, 30000);
    thread_.join();
    if (rescuer_.joinable()) rescuer_.join();
  }
  HangingHost(const HangingHost&) = delete;
  HangingHost& operator=(const HangingHost&) = delete;

  const ObjectRef& object() const { return object_; }

  // Serves no call any more, until `resume`, or until somebody has waited for it far too long.
  void hang() {
    SetEvent(hang_.get());
    WaitForSingleObject(hangs_.get(), 30000);
    rescuer_ = std::thread([this] {
      rescued_ = WaitForSingleObject(resumed_.get(), 20000) != WAIT_OBJECT_0;
      SetEvent(resumed_.get());
    });
  }
  void resume() { SetEvent(resumed_.get()); }
  bool hadToBeRescued() {
    resume();
    if (rescuer_.joinable()) rescuer_.join();
    return rescued_;
  }

 private:
  static com::Handle newEvent() { return com::Handle(CreateEventW(nullptr, TRUE, FALSE, nullptr)); }
  static bool isSet(const com::Handle& event) { return WaitForSingleObject(event.get(), 0) == WAIT_OBJECT_0; }

  void serve() {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    {
      const com::ComPtr<IDispatch> face = com::exportObject(std::make_shared<Host>());
      CoMarshalInterThreadInterfaceInStream(IID_IDispatch, face.get(), passage_.put());
      SetEvent(ready_.get());
      com::serveMessagesUntil([&] { return isSet(hang_) || isSet(over_); }, 120000);
      SetEvent(hangs_.get());
      if (isSet(hang_)) WaitForSingleObject(resumed_.get(), INFINITE);
      com::serveMessagesUntil([&] { return isSet(over_); }, 120000);
    }
    CoUninitialize();
    SetEvent(ended_.get());
  }

  com::Handle ready_ = newEvent(), hang_ = newEvent(), hangs_ = newEvent(), resumed_ = newEvent(),
              over_ = newEvent(), ended_ = newEvent();
  com::ComPtr<IStream> passage_;
  bool rescued_ = false;
  std::thread rescuer_;
  ObjectRef object_;
  std::thread thread_;
};

// The server lets go of a hanging host only where the test wants it to: another probe holds it too.
class Watching : public AcrossProcesses {
 protected:
  HangingHost hanging;
  ObjectRef keeper = createProbe();

  Watching() { automation::call(*keeper, u"Hold", {byVal(hanging.object())}); }
  ~Watching() override {
    hanging.resume();
    automation::call(*probe, u"LetGo");
    automation::call(*keeper, u"LetGo");
    keeper = nullptr;
  }
  void watch(const ObjectRef& host) { automation::call(*probe, u"Watch", {byVal(host)}); }
};

TEST_F(Watching, AHostThatHangsDoesNotFreezeTheServer) {
  const auto other = std::make_shared<Host>();
  watch(hanging.object());
  hanging.hang();
  for (int round = 0; round < 5; ++round) watch(other);
  EXPECT_EQ(processOf(probe), process);
  EXPECT_FALSE(hanging.hadToBeRescued()) << "the server waited for a host that hangs";
  watch(nullptr);
}

TEST_F(Watching, ADeathIsNoticedWhileAnotherHostHangs) {
  const com::Handle released(CreateEventW(nullptr, TRUE, FALSE, L"VordaneProbeReleased"));
  const com::Handle dying = startDyingHost();
  ASSERT_TRUE(dying);
  ResetEvent(released.get());
  watch(hanging.object());
  hanging.hang();
  // Longer than the pause between two calls to a host: one of them is stuck now.
  com::serveMessagesUntil([] { return false; }, 4000);
  TerminateProcess(dying.get(), 0);
  EXPECT_TRUE(
      com::serveMessagesUntil([&] { return WaitForSingleObject(released.get(), 0) == WAIT_OBJECT_0; }, 15000))
      << "a host that hangs hides the death of another";
  EXPECT_FALSE(hanging.hadToBeRescued());
  watch(nullptr);
}

TEST_F(AcrossProcesses, AWatchThatEndsAtOnceLetsTheHostGo) {
  const auto host = std::make_shared<Host>();
  for (int round = 0; round < 50; ++round)
    for (const ObjectRef& watched : {ObjectRef(host), ObjectRef()})
      automation::call(*probe, u"Watch", {byVal(watched)});
  EXPECT_TRUE(com::serveMessagesUntil([&] { return host.use_count() == 1; }, 10000))
      << "somebody still holds the host";
}

// ---- the watch itself, with hosts whose calls the test holds in its hand: they go from thread to thread as
// they are, so that a probe runs on the watch's own thread

class HeldHost final : public com::Counted<IDispatch> {
 public:
  HeldHost() { CoCreateFreeThreadedMarshaler(static_cast<IDispatch*>(this), marshaler_.put()); }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
    return iid == IID_IMarshal ? marshaler_->QueryInterface(iid, out) : Counted::QueryInterface(iid, out);
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override {
    if (dead) return RPC_E_DISCONNECTED;
    SetEvent(asked.get());
    WaitForSingleObject(answer.get(), INFINITE);
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

  std::atomic<bool> dead = false;
  com::Handle asked{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
  com::Handle answer{CreateEventW(nullptr, TRUE, FALSE, nullptr)};

 private:
  com::ComPtr<IUnknown> marshaler_;
};

class HeldProbe : public testing::Test {
 protected:
  static constexpr UINT died = WM_APP + 77;

  // Lets the probe go when somebody has waited for it far too long.
  HeldProbe()
      : rescuer_([this] {
          rescued_ = WaitForSingleObject(over_.get(), 20000) != WAIT_OBJECT_0;
          SetEvent(hanging->answer.get());
        }) {}
  ~HeldProbe() override {
    finish();
    DestroyWindow(window_);
  }
  bool hadToBeRescued() {
    finish();
    return rescued_;
  }
  void waitForTheProbe() {
    EXPECT_TRUE(com::serveMessagesUntil(
        [&] { return WaitForSingleObject(hanging->asked.get(), 0) == WAIT_OBJECT_0; }, 15000));
  }

  HWND window_ = CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
  com::ComPtr<HeldHost> hanging{new HeldHost}, other{new HeldHost};
  std::shared_ptr<Host> layer = std::make_shared<Host>(), second = std::make_shared<Host>();
  com::HostWatch watch{window_, died};

 private:
  void finish() {
    SetEvent(over_.get());
    if (rescuer_.joinable()) rescuer_.join();
  }
  bool rescued_ = false;
  com::Handle over_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
  std::thread rescuer_;
};

TEST_F(HeldProbe, HoldsUpNeitherAnotherWatchNorItsOwnEnd) {
  SetEvent(other->answer.get());
  watch.watch(layer.get(), com::importObject(hanging.get()));
  waitForTheProbe();
  watch.watch(second.get(), com::importObject(other.get()));
  watch.forget(second.get());
  watch.watch(second.get(), com::importObject(other.get()));
  watch.forget(layer.get());
  EXPECT_FALSE(hadToBeRescued()) << "somebody waited for a call to a host";
}

TEST_F(HeldProbe, HidesNobodysDeath) {
  watch.watch(layer.get(), com::importObject(hanging.get()));
  waitForTheProbe();
  other->dead = true;
  watch.watch(second.get(), com::importObject(other.get()));
  // Nothing else is served, or the news would go to the window.
  const automation::Object* told = nullptr;
  for (const ULONGLONG end = GetTickCount64() + 15000; told == nullptr && GetTickCount64() < end; Sleep(20)) {
    MSG message;
    if (PeekMessageW(&message, window_, died, died, PM_REMOVE)) told = watch.takeDead(message.wParam);
  }
  EXPECT_EQ(told, second.get());
  EXPECT_FALSE(hadToBeRescued());
}

}  // namespace
}  // namespace vordane::test
