// The automation layer between processes: the test server beside this program, as a host and the add-in
// stand beside each other.
#include <gtest/gtest.h>

#include <ocidl.h>

#include "platform/windows/com/apartment.h"
#include "platform/windows/com/objects.h"
#include "raw_call.h"
#include "registered.h"

namespace vordane::test {
namespace {

TEST_F(AcrossProcesses, TheServerIsAnotherProcess) {
  EXPECT_NE(process, GetCurrentProcessId());
}

TEST_F(AcrossProcesses, PropertiesAndMethodsWork) {
  automation::put(*probe, u"Text", str(u"\u0424\u65E5 \xD800"));  // a lone surrogate passes too
  EXPECT_EQ(automation::toText(automation::get(*probe, u"Text")), u"\u0424\u65E5 \xD800");
  EXPECT_EQ(automation::toLong(automation::call(*probe, u"Add", {byVal(std::int16_t{40}), byVal(2)})), 42);
  EXPECT_EQ(automation::toText(automation::get(*probe, u"Item", {byVal(1)})), u"one");
}

TEST_F(AcrossProcesses, ReferencesGoThroughWhateverTheirType) {
  EXPECT_EQ(automation::toText(
                automation::call(*probe, u"Join", {byRef(str(u"a")), byRef(std::int16_t{2}), byRef(true)})),
            u"a|2|True");
  EXPECT_EQ(
      automation::toText(automation::call(*probe, u"Join", {byVal(str(u"a")), byVal(automation::Missing{})})),
      u"a|(left out)|(left out)");
}

TEST_F(AcrossProcesses, SeveralObjectsShareTheProcess) {
  const ObjectRef second = createProbe();
  EXPECT_EQ(processOf(second), process);
  EXPECT_NE(second, probe);
}

TEST_F(AcrossProcesses, ObjectsComeBackAsThemselves) {
  EXPECT_TRUE(automation::toBoolean(automation::call(*probe, u"IsSame", {byVal(probe)})));
  const auto host = std::make_shared<Host>();
  EXPECT_EQ(automation::toObject(automation::call(*probe, u"Echo", {byVal(ObjectRef(host))})), host);
  EXPECT_FALSE(automation::toBoolean(automation::call(*probe, u"IsSame", {byVal(ObjectRef(host))})));
}

TEST_F(AcrossProcesses, TheServersObjectsWorkHere) {
  const ObjectRef bag = automation::toObject(automation::call(*probe, u"MakeBag"));
  automation::call(*bag, u"Put", {byVal(str(u"first"))});
  automation::call(*bag, u"put", {byVal(str(u"second"))});
  EXPECT_EQ(automation::toInteger(automation::get(*bag, u"Count")), 2);
  EXPECT_EQ(automation::toText(automation::get(*bag, u"Item", {byVal(1)})), u"second");
}

TEST_F(AcrossProcesses, TheServerCallsBackWhileItsCallerWaits) {
  const auto host = std::make_shared<Host>();
  automation::call(*probe, u"SetHost", {byVal(ObjectRef(host))});
  EXPECT_EQ(automation::toText(
                automation::call(*probe, u"CallHost", {byVal(str(u"ShowMessage")), byVal(str(u"hello"))})),
            u"answered");
  EXPECT_EQ(host->calls, (std::vector<std::u16string>{u"ShowMessage hello"}));
}

TEST_F(AcrossProcesses, CallsNestBothWays) {
  const auto host = std::make_shared<Host>();
  host->during = [&] {
    if (host->calls.size() == 1)
      automation::call(*probe, u"CallHost", {byVal(str(u"Inner")), byVal(str(u"2"))});
  };
  automation::call(*probe, u"SetHost", {byVal(ObjectRef(host))});
  automation::call(*probe, u"CallHost", {byVal(str(u"Outer")), byVal(str(u"1"))});
  EXPECT_EQ(host->calls, (std::vector<std::u16string>{u"Outer 1", u"Inner 2"}));
}

TEST_F(AcrossProcesses, ReferencesComeBackChanged) {
  automation::call(*probe, u"SetHost", {byVal(ObjectRef(std::make_shared<Host>()))});
  EXPECT_EQ(automation::toText(automation::call(*probe, u"CallHostReference",
                                                {byVal(str(u"Change")), byVal(str(u"PBX-1"))})),
            u"PBX-1!");
}

TEST_F(AcrossProcesses, PropertiesOfTheHostAreRead) {
  const auto host = std::make_shared<Host>();
  host->server = std::make_shared<Host>();
  automation::call(*probe, u"SetHost", {byVal(ObjectRef(host))});
  EXPECT_EQ(automation::toObject(automation::call(*probe, u"GetHost", {byVal(str(u"oPBX"))})), host->server);
}

TEST_F(AcrossProcesses, TheHostsErrorsReachTheOutermostCaller) {
  automation::call(*probe, u"SetHost", {byVal(ObjectRef(std::make_shared<Host>()))});
  try {
    automation::call(*probe, u"CallHost", {byVal(str(u"Fail")), byVal(str(u""))});
    FAIL();
  } catch (const automation::AutomationError& failure) {
    EXPECT_EQ(failure.code(), automation::error::runTime(11));
    EXPECT_EQ(failure.description(), u"division");
    EXPECT_EQ(failure.source(), u"VordaneProbe");
  }
  try {
    automation::call(*probe, u"CallHost", {byVal(str(u"Absent")), byVal(str(u""))});
    FAIL();
  } catch (const automation::AutomationError& failure) {
    EXPECT_EQ(failure.code(), automation::error::runTime(438));
  }
}

TEST_F(AcrossProcesses, TypeInformationCrosses) {
  const com::ComPtr<IDispatch> face = com::exportObject(probe);
  com::ComPtr<ITypeInfo> info;
  ASSERT_EQ(face->GetTypeInfo(0, LOCALE_USER_DEFAULT, info.put()), S_OK);
  TYPEATTR* attributes = nullptr;
  ASSERT_EQ(info->GetTypeAttr(&attributes), S_OK);
  EXPECT_EQ(attributes->guid, com::toGuid(probeTable().iid));
  EXPECT_EQ(attributes->typekind, TKIND_DISPATCH);
  info->ReleaseTypeAttr(attributes);
}

TEST_F(AcrossProcesses, TheTypedQueryGivesTheDispatch) {
  const com::ComPtr<IDispatch> face = com::exportObject(probe);
  com::ComPtr<IDispatch> typed = face.as<IDispatch>(com::toGuid(probeTable().iid));
  ASSERT_TRUE(typed);
  EXPECT_EQ(text(rawInvoke(typed.get(), 7, get)), u"fixed");
  EXPECT_FALSE(face.as<IDispatch>(com::toGuid(bagTable().iid)));
}

// ---- life and end

TEST_F(Registered, TheLastReleaseSaysGoodByeAndEndsTheProcess) {
  ObjectRef probe = createProbe();
  ObjectRef second = createProbe();
  const DWORD process = processOf(probe);
  const auto host = std::make_shared<Host>();
  automation::call(*probe, u"SetHost", {byVal(ObjectRef(host))});
  automation::put(*probe, u"Text", str(u"1200,900"));
  second = nullptr;
  EXPECT_FALSE(endsWithin(process, 500));
  EXPECT_TRUE(host->calls.empty());
  probe = nullptr;
  EXPECT_TRUE(com::serveMessagesUntil([&] { return endsWithin(process, 0); }, 10000));
  EXPECT_EQ(host->calls, (std::vector<std::u16string>{u"GoodBye 1200,900"}));
}

TEST_F(Registered, ACreationDuringTheGoodByeGetsANewProcess) {
  ObjectRef probe = createProbe();
  const DWORD process = processOf(probe);
  const auto host = std::make_shared<Host>();
  ObjectRef next;
  DWORD nextProcess = 0;
  host->during = [&] {
    next = createProbe();
    nextProcess = processOf(next);
  };
  automation::call(*probe, u"SetHost", {byVal(ObjectRef(host))});
  probe = nullptr;
  EXPECT_TRUE(com::serveMessagesUntil([&] { return endsWithin(process, 0); }, 10000));
  ASSERT_EQ(host->calls.size(), 1u);
  EXPECT_NE(nextProcess, 0u);
  EXPECT_NE(nextProcess, process);
  EXPECT_EQ(processOf(next), nextProcess);
  next = nullptr;
  EXPECT_TRUE(endsWithin(nextProcess, 10000));
}

// What it is told at the end is worth waiting for, longer than the process takes to end behind it.
TEST_F(Registered, AHostThatIsSlowInItsGoodByeIsWaitedFor) {
  ObjectRef probe = createProbe();
  const DWORD process = processOf(probe);
  const auto host = std::make_shared<Host>();
  bool waited = false;
  host->during = [&] { waited = !com::serveMessagesUntil([&] { return endsWithin(process, 0); }, 3500); };
  automation::call(*probe, u"SetHost", {byVal(ObjectRef(host))});
  probe = nullptr;
  EXPECT_TRUE(com::serveMessagesUntil([&] { return endsWithin(process, 0); }, 10000));
  EXPECT_TRUE(waited) << "the process ended in the middle of its good-bye";
}

// The last release comes while the process waits for the answer to a call of its own, which never comes.
TEST_F(Registered, AnUnansweredCallHoldsNoEndingUp) {
  ObjectRef probe = createProbe();
  const DWORD process = processOf(probe);
  const auto host = std::make_shared<Host>();
  bool ended = false;
  host->during = [&] {
    if (host->calls.back() != u"Wait") return;  // the good-bye is answered
    probe = nullptr;
    ended = com::serveMessagesUntil([&] { return endsWithin(process, 0); }, 8000);
  };
  automation::call(*probe, u"SetHost", {byVal(ObjectRef(host))});
  automation::call(*probe, u"CallHostLater", {byVal(str(u"Wait"))});
  EXPECT_TRUE(com::serveMessagesUntil([&] { return host->calls.size() == 2 && !probe; }, 10000));
  EXPECT_TRUE(ended) << "the process waited for an answer that did not come";
  EXPECT_EQ(host->calls, (std::vector<std::u16string>{u"Wait", u"GoodBye "}));
}

TEST_F(Registered, AProcessStartedForARecordEndsWithTheLastOne) {
  ObjectRef bag = create(u"VordaneProbe.cBag");
  ObjectRef second = create(u"VordaneProbe.cBag");
  const DWORD process = processOf(bag);
  EXPECT_EQ(processOf(second), process);
  automation::call(*bag, u"Put", {byVal(str(u"only"))});
  EXPECT_EQ(automation::toInteger(automation::get(*second, u"Count")), 0);
  bag = nullptr;
  EXPECT_FALSE(endsWithin(process, 500));
  second = nullptr;
  EXPECT_TRUE(endsWithin(process, 10000));
}

TEST_F(Registered, RecordsDoNotEndAProcessThatHasALayer) {
  ObjectRef bag = create(u"VordaneProbe.cBag");
  ObjectRef probe = createProbe();
  const DWORD process = processOf(probe);
  EXPECT_EQ(processOf(bag), process);
  bag = nullptr;
  EXPECT_FALSE(endsWithin(process, 500));
  probe = nullptr;
  EXPECT_TRUE(endsWithin(process, 10000));
}

TEST_F(Registered, TheLastProbeEndsTheProcessRecordsOrNot) {
  ObjectRef probe = createProbe();
  const DWORD process = processOf(probe);
  const ObjectRef bag = create(u"VordaneProbe.cBag");
  const ObjectRef made = automation::toObject(automation::call(*probe, u"MakeBag"));
  probe = nullptr;
  EXPECT_TRUE(endsWithin(process, 10000));
  EXPECT_THROW(automation::get(*bag, u"Count"), automation::AutomationError);
  EXPECT_THROW(automation::get(*made, u"Count"), automation::AutomationError);
}

TEST_F(Registered, RoundsThatEndTheProcessLeaveNone) {
  for (int round = 0; round < 20; ++round) {
    ObjectRef probe = createProbe();
    const DWORD process = processOf(probe);
    probe = nullptr;
    ASSERT_TRUE(endsWithin(process, 10000)) << "round " << round;
  }
}

TEST_F(AcrossProcesses, ManyRoundsLeaveNothingBehind) {
  const auto host = std::make_shared<Host>();
  for (int round = 0; round < 100; ++round) {  // thousands are the business of another test
    const ObjectRef other = createProbe();
    automation::call(*other, u"SetHost", {byVal(ObjectRef(host))});
  }
  EXPECT_TRUE(host->calls.empty());
  EXPECT_EQ(host.use_count(), 1) << "somebody still holds the host";
}

// ---- a host that dies

TEST_F(Registered, ADeadHostsProbeIsLetGo) {
  const com::Handle hostProcess = startDyingHost();
  ASSERT_TRUE(hostProcess);
  DWORD server = 0;
  {
    const ObjectRef probe = createProbe();
    server = processOf(probe);
  }
  EXPECT_FALSE(endsWithin(server, 1000)) << "the host's own probe must keep it";
  TerminateProcess(hostProcess.get(), 0);
  EXPECT_TRUE(endsWithin(server, 30000)) << "nobody noticed the death";
}

}  // namespace
}  // namespace vordane::test
