#include "platform/windows/com/host_watch.h"

#include <algorithm>
#include <array>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/windows/com/imported_object.h"
#include "platform/windows/com/owned.h"

namespace vordane::com {
namespace {

constexpr std::chrono::seconds pause{3};
// How long an ending waits for the threads to let go of the hosts: one slow call must not hold it up.
constexpr std::chrono::seconds lettingGo{2};
constexpr int failuresOfTheDead = 2;  // one alone may be a call that the death cut off

constexpr std::array<HRESULT, 4> deathSigns{static_cast<HRESULT>(0x800706BA), RPC_E_DISCONNECTED,
                                            RPC_E_SERVER_DIED, CO_E_OBJNOTCONNECTED};

bool isDeathSign(HRESULT result) {
  return std::find(deathSigns.begin(), deathSigns.end(), result) != deathSigns.end();
}

}  // namespace

// How many threads hold, or may hold, a reference.
struct HostWatch::Threads {
  std::mutex mutex;
  std::condition_variable changed;
  int running = 0;

  void count(int change) {
    const std::lock_guard lock(mutex);
    running += change;
    changed.notify_all();
  }
};

// What a thread and the watch share; the thread may outlive the watch by one slow call. No call to a host is
// made under the mutex.
struct HostWatch::Probe {
  HWND window;
  UINT message;
  WPARAM number;
  std::shared_ptr<Threads> threads;
  ComPtr<IStream> passage;  // carries the reference to the thread, once

  std::mutex mutex;
  std::condition_variable changed;
  bool over = false;

  void end() {
    const std::lock_guard lock(mutex);
    over = true;
    changed.notify_all();
  }
  bool endsWithin(std::chrono::seconds time) {
    std::unique_lock lock(mutex);
    return changed.wait_for(lock, time, [&] { return over; });
  }
  // The thread's own reference. A passage holds the host's object until it is received, so each one is.
  HRESULT receive(ComPtr<IDispatch>& host) {
    return CoGetInterfaceAndReleaseStream(passage.release(), IID_IDispatch, host.putVoid());
  }
  // True when the host has died, false when the watch has ended. A slow or rejecting host lives; only a
  // broken connection, twice running, is a death.
  bool seesDeath() {
    ComPtr<IDispatch> host;
    if (const HRESULT result = receive(host); FAILED(result)) return isDeathSign(result);
    for (int failures = 0; failures < failuresOfTheDead;) {
      if (endsWithin(pause)) return false;
      UINT count = 0;
      failures = isDeathSign(host->GetTypeInfoCount(&count)) ? failures + 1 : 0;
    }
    return true;
  }
};

void HostWatch::run(const std::shared_ptr<Probe>& probe) {
  CoInitializeEx(nullptr, COINIT_MULTITHREADED);
  if (probe->seesDeath()) PostMessageW(probe->window, probe->message, probe->number, 0);
  CoUninitialize();
  probe->threads->count(-1);
}

HostWatch::HostWatch(HWND window, UINT message)
    : window_(window), message_(message), threads_(std::make_shared<Threads>()) {}

// A reference that goes down with this process stays in the host's.
HostWatch::~HostWatch() {
  for (const Entry& entry : entries_) entry.probe->end();
  std::unique_lock lock(threads_->mutex);
  threads_->changed.wait_for(lock, lettingGo, [&] { return threads_->running == 0; });
}

void HostWatch::watch(const automation::Object* layer, const automation::ObjectRef& host) {
  forget(layer);
  const auto* imported = dynamic_cast<const ImportedObject*>(host.get());
  if (imported == nullptr) return;
  auto probe = std::make_shared<Probe>();
  probe->window = window_;
  probe->message = message_;
  probe->number = ++lastNumber_;
  probe->threads = threads_;
  entries_.push_back({probe->number, layer, probe});
  if (FAILED(
          CoMarshalInterThreadInterfaceInStream(IID_IDispatch, imported->dispatch(), probe->passage.put())))
    return;
  threads_->count(1);
  try {
    std::thread(run, probe).detach();
  } catch (const std::system_error&) {
    ComPtr<IDispatch> unwatched;
    probe->receive(unwatched);
    threads_->count(-1);
  }
}

void HostWatch::remove(std::vector<Entry>::iterator entry) {
  entry->probe->end();
  entries_.erase(entry);
}

void HostWatch::forget(const automation::Object* layer) {
  const auto found = std::find_if(entries_.begin(), entries_.end(),
                                  [&](const Entry& entry) { return entry.layer == layer; });
  if (found != entries_.end()) remove(found);
}

const automation::Object* HostWatch::takeDead(WPARAM number) {
  const auto found = std::find_if(entries_.begin(), entries_.end(),
                                  [&](const Entry& entry) { return entry.number == number; });
  if (found == entries_.end()) return nullptr;
  const automation::Object* layer = found->layer;
  remove(found);
  return layer;
}

}  // namespace vordane::com
