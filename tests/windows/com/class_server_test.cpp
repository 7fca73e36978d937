// Creations that take long or fail, and factories that clients keep.
#include "platform/windows/com/class_server.h"

#include <memory>
#include <thread>

#include "platform/windows/com/values.h"
#include "probe.h"
#include "raw_call.h"
#include "registered.h"

namespace vordane::test {
namespace {

com::Handle newEvent(const wchar_t* name) {
  com::Handle event(CreateEventW(nullptr, TRUE, FALSE, name));
  ResetEvent(event.get());
  return event;
}

com::ComPtr<IClassFactory> factoryOf(const automation::ClassTable& table) {
  com::ComPtr<IClassFactory> factory;
  CoGetClassObject(com::toGuid(std::string(table.clsid)), CLSCTX_LOCAL_SERVER, nullptr, IID_IClassFactory,
                   factory.putVoid());
  return factory;
}

// The process of a new object; 0 when none was made or it does not answer.
DWORD processOfNew(IClassFactory& factory, com::ComPtr<IDispatch>& object) {
  if (FAILED(factory.CreateInstance(nullptr, IID_IDispatch, object.putVoid()))) return 0;
  const Answer answer = rawInvoke(object.get(), idOf(object.get(), L"ProcessId"), DISPATCH_PROPERTYGET);
  return answer.result == S_OK ? static_cast<DWORD>(answer.value.get().lVal) : 0;
}

// Creates a probe from a program's other thread, as a second host does; `process` is its process, or 0.
void createElsewhere(DWORD& process) {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  {
    com::ComPtr<IDispatch> probe;
    if (const auto factory = factoryOf(probeTable())) process = processOfNew(*factory.get(), probe);
  }
  CoUninitialize();
}

// Two hosts: while the one waits for its layer, the other lets go of the last record.
TEST_F(Registered, AnObjectThatIsBeingMadeKeepsTheProcess) {
  ObjectRef bag = create(u"VordaneProbe.cBag");
  const DWORD process = processOf(bag);
  const com::Handle making = newEvent(L"VordaneProbeMaking"), goOn = newEvent(L"VordaneProbeGoOn");
  DWORD processOfProbe = 0;
  std::thread second(createElsewhere, std::ref(processOfProbe));
  EXPECT_EQ(WaitForSingleObject(making.get(), 30000), WAIT_OBJECT_0);
  bag = nullptr;
  SetEvent(goOn.get());
  second.join();
  EXPECT_EQ(processOfProbe, process);
  EXPECT_TRUE(endsWithin(process, 10000));
}

TEST_F(Registered, ACreationThatFailsLeavesTheOthersAndTheNextOneWorks) {
  ObjectRef bag = create(u"VordaneProbe.cBag");
  const DWORD process = processOf(bag);
  {
    const com::Handle refused = newEvent(L"VordaneProbeRefused");
    EXPECT_THROW(createProbe(), automation::AutomationError);
    EXPECT_EQ(automation::toInteger(automation::get(*bag, u"Count")), 0);
  }
  ObjectRef probe = createProbe();
  EXPECT_EQ(processOf(probe), process);
  bag = nullptr;
  EXPECT_EQ(processOf(probe), process);
  probe = nullptr;
  EXPECT_TRUE(endsWithin(process, 10000));
}

TEST_F(Registered, ACreationThatFailedDoesNotKeepTheProcess) {
  ObjectRef bag = create(u"VordaneProbe.cBag");
  const DWORD process = processOf(bag);
  const com::Handle refused = newEvent(L"VordaneProbeRefused");
  EXPECT_THROW(createProbe(), automation::AutomationError);
  bag = nullptr;
  EXPECT_TRUE(endsWithin(process, 10000));
}

// As when a host's creation finds that it can't be registered.
TEST_F(Registered, AProcessThatEndsInACreationLeavesNoClassBehind) {
  {
    const com::Handle ends = newEvent(L"VordaneProbeEndsAtOnce");
    EXPECT_THROW(createProbe(), automation::AutomationError);
  }
  ObjectRef probe;
  EXPECT_NO_THROW(probe = createProbe()) << "the class of the dead process is still offered";
  ASSERT_TRUE(probe);
  const DWORD process = processOf(probe);
  probe = nullptr;
  EXPECT_TRUE(endsWithin(process, 10000));
}

TEST_F(Registered, AFactoryHeldThroughTheEndingCreatesInANewProcess) {
  com::ComPtr<IClassFactory> factory = factoryOf(probeTable());
  ASSERT_TRUE(factory);
  ObjectRef probe = createProbe();
  const DWORD process = processOf(probe);
  const auto host = std::make_shared<Host>();
  com::ComPtr<IDispatch> next;
  DWORD nextProcess = 0;
  host->during = [&] { nextProcess = processOfNew(*factory.get(), next); };
  automation::call(*probe, u"SetHost", {byVal(ObjectRef(host))});
  probe = nullptr;
  EXPECT_TRUE(com::serveMessagesUntil([&] { return endsWithin(process, 0); }, 10000))
      << "a factory that somebody holds is no use of the process";
  EXPECT_NE(nextProcess, 0U);
  EXPECT_NE(nextProcess, process);
  com::ComPtr<IDispatch> tooLate;
  EXPECT_EQ(processOfNew(*factory.get(), tooLate), 0U);
  next = nullptr;
  EXPECT_TRUE(endsWithin(nextProcess, 10000));
}

TEST(ClassServer, AFactoryThatOutlivesItIsStopped) {
  com::Apartment apartment;
  auto server = std::make_unique<com::ClassServer>(apartment);
  server->stay();
  server->serve({{std::string(bagTable().clsid),
                  [] { return automation::ObjectRef(std::make_shared<Bag>()); }, false}});
  const com::ComPtr<IClassFactory> factory = factoryOf(bagTable());
  ASSERT_TRUE(factory);
  com::ComPtr<IDispatch> bag;
  EXPECT_EQ(processOfNew(*factory.get(), bag), GetCurrentProcessId());
  server = nullptr;
  com::ComPtr<IDispatch> none;
  EXPECT_EQ(factory->LockServer(TRUE), CO_E_SERVER_STOPPING);
  EXPECT_EQ(factory->LockServer(FALSE), CO_E_SERVER_STOPPING);
  EXPECT_EQ(factory->CreateInstance(nullptr, IID_IDispatch, none.putVoid()), CO_E_SERVER_STOPPING);
  EXPECT_FALSE(none);
  const Answer answer = rawInvoke(bag.get(), idOf(bag.get(), L"Count"), DISPATCH_PROPERTYGET);
  EXPECT_EQ(answer.result, S_OK) << "an object goes with its last holder";
}

}  // namespace
}  // namespace vordane::test
