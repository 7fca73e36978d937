#include "platform/windows/com/host_watch.h"

#include <algorithm>
#include <array>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "platform/windows/com/imported_object.h"
#include "platform/windows/com/owned.h"

namespace vordane::com {
namespace {

constexpr std::chrono::seconds pause{3};
// How long an ending waits for the thread to let go of the hosts: one slow call must not hold it up.
constexpr std::chrono::seconds lettingGo{2};
constexpr int failuresOfTheDead = 2;  // one alone may be a call that the death cut off

constexpr std::array<HRESULT, 4> deathSigns{static_cast<HRESULT>(0x800706BA), RPC_E_DISCONNECTED,
                                            RPC_E_SERVER_DIED, CO_E_OBJNOTCONNECTED};

bool isDeathSign(HRESULT result) {
  return std::find(deathSigns.begin(), deathSigns.end(), result) != deathSigns.end();
}

}  // namespace

struct HostWatch::State {
  struct Entry {
    WPARAM number;
    const automation::Object* layer;  // read on the user-interface thread only
    ComPtr<IStream> passage;          // carries the reference to the thread once
  };

  std::mutex mutex;
  std::condition_variable changed;
  std::vector<Entry> entries;
  bool over = false;
  bool running = false;  // the thread holds, or may hold, references
  WPARAM lastNumber = 0;
  HWND window = nullptr;
  UINT message = 0;
};

namespace {

// The thread's own references: they belong to its apartment and are made and released here.
struct Probed {
  WPARAM number;
  ComPtr<IDispatch> host;
  int failures = 0;
};

template <class State>
void takeOver(State& state, std::vector<Probed>& hosts) {
  std::erase_if(hosts, [&](const Probed& host) {
    return std::none_of(state.entries.begin(), state.entries.end(),
                        [&](const auto& entry) { return entry.number == host.number; });
  });
  for (auto& entry : state.entries) {
    if (!entry.passage) continue;
    Probed host{entry.number, {}, 0};
    if (SUCCEEDED(
            CoGetInterfaceAndReleaseStream(entry.passage.release(), IID_IDispatch, host.host.putVoid())))
      hosts.push_back(std::move(host));
  }
}

// A slow or rejecting host lives; only a broken connection, twice running, is a death.
bool isDead(Probed& host) {
  UINT count = 0;
  host.failures = isDeathSign(host.host->GetTypeInfoCount(&count)) ? host.failures + 1 : 0;
  return host.failures == failuresOfTheDead;
}

template <class State>
void run(const std::shared_ptr<State>& state) {
  CoInitializeEx(nullptr, COINIT_MULTITHREADED);
  {
    std::vector<Probed> hosts;
    std::unique_lock lock(state->mutex);
    while (!state->over) {
      takeOver(*state, hosts);
      lock.unlock();
      for (Probed& host : hosts)
        if (isDead(host)) PostMessageW(state->window, state->message, host.number, 0);
      lock.lock();
      if (!state->over) state->changed.wait_for(lock, pause);
    }
    lock.unlock();
  }
  CoUninitialize();
  const std::lock_guard lock(state->mutex);
  state->running = false;
  state->changed.notify_all();
}

}  // namespace

HostWatch::HostWatch(HWND window, UINT message) : state_(std::make_shared<State>()) {
  state_->window = window;
  state_->message = message;
}

// A reference that goes down with this process stays in the host's.
HostWatch::~HostWatch() {
  std::unique_lock lock(state_->mutex);
  state_->over = true;
  state_->changed.notify_all();
  state_->changed.wait_for(lock, lettingGo, [&] { return !state_->running; });
}

void HostWatch::watch(const automation::Object* layer, const automation::ObjectRef& host) {
  forget(layer);
  const auto* imported = dynamic_cast<const ImportedObject*>(host.get());
  if (imported == nullptr) return;
  ComPtr<IStream> passage;
  if (FAILED(CoMarshalInterThreadInterfaceInStream(IID_IDispatch, imported->dispatch(), passage.put())))
    return;
  const std::lock_guard lock(state_->mutex);
  state_->entries.push_back({++state_->lastNumber, layer, std::move(passage)});
  if (!std::exchange(state_->running, true)) std::thread(run<State>, state_).detach();
  state_->changed.notify_all();
}

void HostWatch::forget(const automation::Object* layer) {
  const std::lock_guard lock(state_->mutex);
  std::erase_if(state_->entries, [&](const State::Entry& entry) { return entry.layer == layer; });
  state_->changed.notify_all();
}

const automation::Object* HostWatch::takeDead(WPARAM number) {
  const std::lock_guard lock(state_->mutex);
  const auto found = std::find_if(state_->entries.begin(), state_->entries.end(),
                                  [&](const State::Entry& entry) { return entry.number == number; });
  if (found == state_->entries.end()) return nullptr;
  const automation::Object* layer = found->layer;
  state_->entries.erase(found);
  return layer;
}

}  // namespace vordane::com
