// What the tests across processes share: the test server registered, and a host for it to call.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "platform/windows/com/apartment.h"
#include "platform/windows/com/objects.h"
#include "platform/windows/services/services.h"
#include "probe_library.h"
#include "server_process.h"

namespace vordane::test {

using automation::Argument;
using automation::byRef;
using automation::byVal;
using automation::ObjectRef;
using automation::Value;

inline std::u16string str(const char16_t* text) {
  return text;
}

// What the server calls back into.
class Host : public automation::Object {
 public:
  std::vector<std::u16string> calls;
  std::function<void()> during;  // runs inside a call
  ObjectRef server;              // its property oPBX

  Value invoke(std::u16string_view member, automation::CallKind, std::span<Argument> arguments) override {
    calls.push_back(std::u16string(member) +
                    (arguments.empty() ? u"" : u" " + automation::toText(arguments[0].value)));
    if (during) during();
    if (member == u"Change") arguments[0].value = automation::toText(arguments[0].value) + u"!";
    if (member == u"Fail") throw automation::AutomationError(automation::error::runTime(11), u"division");
    if (member == u"oPBX") return server;
    return str(u"answered");
  }
  bool hasMember(std::u16string_view member) const override { return member != u"Absent"; }
};

class Registered : public testing::Test {
 protected:
  static void SetUpTestSuite() { ASSERT_EQ(runServer(L"/RegServer"), 0); }
  static void TearDownTestSuite() { EXPECT_EQ(runServer(L"/UnregServer"), 0); }

  static ObjectRef create(std::u16string_view progId) { return windows::ComObjectCreator().create(progId); }
  static ObjectRef createProbe() { return create(u"VordaneProbe.cProbe"); }
  static DWORD processOf(const ObjectRef& object) {
    return static_cast<DWORD>(automation::toLong(automation::get(*object, u"ProcessId")));
  }
};

class AcrossProcesses : public Registered {
 protected:
  ObjectRef probe = createProbe();
  DWORD process = processOf(probe);

  ~AcrossProcesses() override {
    probe = nullptr;
    EXPECT_TRUE(endsWithin(process, 10000)) << "the server still runs";
  }
};

}  // namespace vordane::test
