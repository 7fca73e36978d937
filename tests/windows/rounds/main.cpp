// A host that creates and lets go of the add-in's objects again and again, and measures what stays behind:
//
//   rounds keeper N    N rounds beside a layer that is held all the time: handles and private memory of the
//                      add-in and of this host must stand still
//   rounds endings N   N add-ins created and released to the end of their process; every tenth host creates
//                      the next one while it is told of the last release
//
// Prints the figures as they come. Ends with 1 and a line that begins with FAILED when something grows, a
// process stays or a creation gets the old process.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>

#include "measuring.h"
#include "platform/windows/com/apartment.h"
#include "platform/windows/services/services.h"

namespace vordane::test {
namespace {

using automation::byVal;
using automation::ObjectRef;

const std::wstring addIn = L"VORDANE.EXE";
constexpr int endsInTime = 15000;         // milliseconds, on a machine that is busy with other tests
constexpr DWORD handlesMayGrow = 16;      // in all rounds: pools and caches that fill once
constexpr SIZE_T bytesMayGrow = 4 << 20;  // likewise, and a thread that is kept has a stack of 1 MB

void require(bool good, const std::string& otherwise) {
  if (!good) throw std::runtime_error(otherwise);
}

// Lends what registration and release ask for.
class Host : public automation::Object {
 public:
  std::function<void()> whenSaving;  // runs while the add-in saves its place

  automation::Value invoke(std::u16string_view member, automation::CallKind,
                           std::span<automation::Argument>) override {
    if (member == u"REGComData" && whenSaving) whenSaving();
    return automation::Empty{};
  }
  bool hasMember(std::u16string_view member) const override { return member != u"oZUL"; }
};

ObjectRef create(std::u16string_view progId) {
  return windows::ComObjectCreator().create(progId);
}
ObjectRef createLayer() {
  return create(u"Vordane10013.cOLELayer");
}

void registerHost(const ObjectRef& layer, const std::shared_ptr<Host>& host) {
  const auto failed = automation::call(
      *layer, u"RegisterPBX", {byVal(std::u16string{}), byVal(ObjectRef(host)), byVal(std::int16_t{1})});
  require(!automation::toBoolean(failed), "the add-in could not load its window");
}

com::Handle onlyAddIn() {
  const auto running = processesOf(addIn);
  require(running.size() == 1, std::to_string(running.size()) + " add-ins run");
  return openProcess(running.front());
}

// --- beside a keeper

void useRecords() {
  const ObjectRef list = create(u"Vordane10013.cListRequest");
  automation::call(*list, u"AddToList", {byVal(std::u16string(u"LEA0"))});
  require(automation::toInteger(automation::get(*list, u"Count")) == 1, "a list request lost its entry");
  const ObjectRef files = create(u"Vordane10013.cSLVRequest");
  automation::call(*files, u"AddFileName", {byVal(std::u16string(u"FAULT.TXT"))});
}

void roundBeside(int number) {
  const ObjectRef layer = createLayer();
  require(!automation::toBoolean(automation::get(*layer, u"Visible")), "the window is shown");
  if (number % 10 == 0) useRecords();
}

struct Both {
  Holding addIn, host;
};

Both measure(HANDLE process) {
  return {holdingOf(process), holdingOf(GetCurrentProcess())};
}

void print(int number, const Both& now) {
  std::printf("%6d rounds: add-in %lu handles %lu KB, host %lu handles %lu KB\n", number, now.addIn.handles,
              static_cast<unsigned long>(now.addIn.privateBytes / 1024), now.host.handles,
              static_cast<unsigned long>(now.host.privateBytes / 1024));
  std::fflush(stdout);
}

void compare(const char* who, const Holding& before, const Holding& after) {
  require(after.handles <= before.handles + handlesMayGrow, std::string(who) + " holds more handles");
  require(after.privateBytes <= before.privateBytes + bytesMayGrow, std::string(who) + " holds more memory");
}

void keeper(int rounds) {
  const auto host = std::make_shared<Host>();
  const ObjectRef kept = createLayer();
  registerHost(kept, host);
  const com::Handle process = onlyAddIn();
  const int step = std::max(rounds / 10, 1);
  Both first;
  for (int number = 1; number <= rounds; ++number) {
    roundBeside(number);
    if (number % step != 0) continue;
    const Both now = measure(process.get());
    print(number, now);
    if (number == step) first = now;  // what is made once has been made by now
    require(now.addIn.handles > 0 && now.addIn.privateBytes > 0, "nothing can be measured here");
    compare("the add-in", first.addIn, now.addIn);
    compare("the host", first.host, now.host);
  }
  require(WaitForSingleObject(process.get(), 0) == WAIT_TIMEOUT, "the keeper's process has ended");
}

// --- to the end of the process

void ending(bool createMeanwhile) {
  const auto host = std::make_shared<Host>();
  ObjectRef layer = createLayer();
  registerHost(layer, host);
  const com::Handle process = onlyAddIn();
  ObjectRef next;
  if (createMeanwhile) host->whenSaving = [&] { next = createLayer(); };
  layer = nullptr;
  require(endsWithin(process.get(), endsInTime), "a process stays after its last release");
  require(com::serveMessagesUntil([&] { return host.use_count() == 1; }, endsInTime),
          "somebody still holds the host");
  if (!createMeanwhile) return;
  require(next != nullptr, "nothing was created during the last release");
  const com::Handle second = onlyAddIn();
  require(!automation::toBoolean(automation::get(*next, u"Visible")), "the new add-in does not answer");
  next = nullptr;
  require(endsWithin(second.get(), endsInTime), "the process of a creation during a release stays");
}

void endings(int rounds) {
  // What this host makes once, threads and their stacks among it, is made in both kinds of ending.
  for (const bool createMeanwhile : {false, true, false, true}) ending(createMeanwhile);
  Holding first;
  for (int number = 1; number <= rounds; ++number) {
    ending(number % 10 == 5);
    if (number % std::max(rounds / 10, 1) != 0) continue;
    const Holding now = holdingOf(GetCurrentProcess());
    std::printf("%6d endings: host %lu handles %lu KB\n", number, now.handles,
                static_cast<unsigned long>(now.privateBytes / 1024));
    std::fflush(stdout);
    require(now.handles > 0 && now.privateBytes > 0, "nothing can be measured here");
    if (first.handles == 0) first = now;
    compare("the host", first, now);
  }
  require(processesOf(addIn).empty(), "an add-in still runs");
}

int run(const std::string& what, int rounds) {
  const com::Apartment apartment;
  try {
    what == "keeper" ? keeper(rounds) : endings(rounds);
    return 0;
  } catch (const automation::AutomationError& failure) {
    std::printf("FAILED: a call ended with 0x%08X\n", static_cast<unsigned>(failure.code()));
  } catch (const std::exception& failure) {
    std::printf("FAILED: %s\n", failure.what());
  }
  return 1;
}

}  // namespace
}  // namespace vordane::test

int main(int count, char** values) {
  const std::string what = count == 3 ? values[1] : "";
  const int rounds = count == 3 ? std::atoi(values[2]) : 0;
  if ((what == "keeper" || what == "endings") && rounds > 0) return vordane::test::run(what, rounds);
  std::fputs("usage: rounds keeper|endings N\n", stderr);
  return 2;
}
