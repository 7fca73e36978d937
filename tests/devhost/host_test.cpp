#include "devhost/core/host.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "devhost/fakes.h"

namespace vordane::devhost {
namespace {

using automation::AutomationError;
using automation::byRef;
using automation::byVal;
using testing::ElementsAre;

class HostTest : public testing::Test {
 protected:
  FakeEnvironment environment_;
  Trace trace_{[this](std::string_view line) { environment_.print(line); }};
  std::shared_ptr<HostState> state_ = std::make_shared<HostState>(HostState{environment_, trace_});
  std::shared_ptr<Host> host_ = std::make_shared<Host>(state_);

  automation::ObjectRef access() { return automation::toObject(automation::get(*host_, u"oZUL")); }
};

TEST_F(HostTest, EveryNotificationIsOneLineAsItComes) {
  automation::call(*host_, u"ShowMessage", {byRef(std::u16string(u"PBX SIM-1"))});
  automation::call(*host_, u"SHOWCODE", {byRef(std::int32_t{61})});
  automation::call(*host_, u"TurnOnFlow");
  automation::call(*host_, u"TurnOffFlow");
  automation::call(*host_, u"DisplayHelp", {byRef(std::u16string(u"VORDANE.HLP"))});
  automation::call(*host_, u"EndCreateSchedule", {byRef(true)});
  automation::call(*host_, u"UnloadChild2", {byRef(std::int16_t{7})});
  automation::call(*host_, u"EndProcess", {byRef(std::u16string(u"12")), byRef(std::int16_t{10021})});
  automation::call(*host_, u"UnloadChild", {byRef(std::int16_t{7})});
  EXPECT_THAT(environment_.lines,
              ElementsAre("ShowMessage \"PBX SIM-1\"", "ShowCode 61", "TurnOnFlow", "TurnOffFlow",
                          "DisplayHelp \"VORDANE.HLP\"", "EndCreateSchedule True", "UnloadChild2 7",
                          "EndProcess \"12\" 10021", "UnloadChild 7"));
}

TEST_F(HostTest, GivesAWordAtEachCallThatIsMeant) {
  state_->behaviour(u"TurnOnFlow").gives = Behaviour::Word{u"heard", {}};
  state_->behaviour(u"ShowMessage").gives = Behaviour::Word{u"accepted", u"PBX ACC"};
  automation::call(*host_, u"TurnOnFlow");
  automation::call(*host_, u"TurnOnFlow");
  automation::call(*host_, u"ShowMessage", {byRef(std::u16string(u"PBX SIM-1"))});
  automation::call(*host_, u"ShowMessage", {byRef(std::u16string(u"PBX ACCEPTED-1"))});
  EXPECT_THAT(environment_.timers.words, ElementsAre(u"heard", u"heard", u"accepted"));
}

// The call returns when the word has been given, and not before; others return at once.
TEST_F(HostTest, HoldsACallUntilItsWord) {
  state_->behaviour(u"ShowMessage").holds = Behaviour::Word{u"answered", u"PBX ACC"};
  bool given = false;
  environment_.timers.after(700, [&] {
    given = true;
    environment_.timers.give(u"answered");
  });
  automation::call(*host_, u"ShowMessage", {byRef(std::u16string(u"PBX SIM-1"))});
  EXPECT_FALSE(given);
  automation::call(*host_, u"ShowMessage", {byRef(std::u16string(u"PBX ACCEPTED-1"))});
  EXPECT_TRUE(given);
  EXPECT_THAT(environment_.timers.words, ElementsAre()) << "the word was taken";
}

TEST_F(HostTest, WhatIsLaidDownForACallComesInThePlaceOfItsService) {
  auto& versions = state_->behaviour(u"GetMPVersion").next;
  versions = {automation::Value(std::u16string(u"SC-1 N")), std::nullopt};
  state_->version = u"usual";
  const auto version = [&] {
    return automation::toText(
        automation::call(*access(), u"GetMPVersion", {byRef(std::u16string(u"PBX-1"))}));
  };
  EXPECT_EQ(version(), u"SC-1 N");
  EXPECT_EQ(version(), u"usual");
  state_->behaviour(u"GetComData").next = {automation::Value(std::u16string(u"12,9"))};
  automation::Argument arguments[] = {byVal(std::u16string(u"VORDANE")), byRef(std::u16string(u"MOVE")),
                                      byRef(std::u16string{})};
  automation::call(*host_, u"GetComData", arguments);
  EXPECT_EQ(automation::toText(arguments[2].value), u"12,9");
  state_->behaviour(u"oZUL").next = {automation::Value(automation::ObjectRef{})};
  EXPECT_EQ(automation::get(*host_, u"oZUL"), automation::Value(automation::ObjectRef{}));
  EXPECT_NE(access(), nullptr);
}

TEST_F(HostTest, LendsTheExchangeAccess) {
  state_->systemInfo = 12;
  state_->version = u"SC-1000 4.2";
  EXPECT_EQ(
      automation::toInteger(automation::call(*access(), u"getsysinfo", {byRef(std::u16string(u"PBX-1"))})),
      12);
  EXPECT_EQ(
      automation::toText(automation::call(*access(), u"GetMPVersion", {byRef(std::u16string(u"PBX-1"))})),
      u"SC-1000 4.2");
  EXPECT_THAT(environment_.lines, ElementsAre("getsysinfo \"PBX-1\"", "GetMPVersion \"PBX-1\""));
}

TEST_F(HostTest, CommonDataComesBackThroughTheLastArgument) {
  automation::Argument arguments[] = {byRef(std::u16string(u"VORDANE")), byRef(std::u16string(u"MOVE")),
                                      byRef(std::u16string())};
  automation::call(*host_, u"GetComData", arguments);
  EXPECT_EQ(automation::toText(arguments[2].value), u"");
  automation::call(*host_, u"REGComData",
                   {byRef(std::u16string(u"VORDANE")), byRef(std::u16string(u"MOVE")),
                    byRef(std::u16string(u"1200,900"))});
  automation::call(*host_, u"GetComData", arguments);
  EXPECT_EQ(automation::toText(arguments[2].value), u"1200,900");
}

TEST_F(HostTest, AnOmittedMemberHasNoName) {
  state_->behaviour(u"ozul").omitted = true;
  EXPECT_FALSE(host_->hasMember(u"oZUL"));
  EXPECT_TRUE(host_->hasMember(u"oPBX"));
  try {
    access();
    FAIL() << "reading an omitted member raises";
  } catch (const AutomationError& failure) {
    EXPECT_EQ(failure.code(), automation::error::unknownName);
  }
}

TEST_F(HostTest, MembersRaiseAnswerLateOrEndTheProcess) {
  state_->behaviour(u"ShowMessage").raises.emplace(5, u"no");
  state_->behaviour(u"ShowCode").pause = 700;
  state_->behaviour(u"TurnOnFlow").dies = true;
  EXPECT_THROW(automation::call(*host_, u"ShowMessage", {byRef(std::u16string(u"x"))}), AutomationError);
  automation::call(*host_, u"ShowCode", {byRef(std::int32_t{0})});
  EXPECT_EQ(environment_.timers.paused, 700);
  automation::call(*host_, u"TurnOnFlow");
  EXPECT_EQ(environment_.timers.vanished, 1);
}

TEST_F(HostTest, UnknownMembersAndWrongCountsAreErrors) {
  EXPECT_THROW(automation::call(*host_, u"Anything"), AutomationError);
  EXPECT_THROW(automation::call(*host_, u"ShowMessage"), AutomationError);
  EXPECT_THROW(automation::put(*host_, u"oPBX", automation::ObjectRef{}), AutomationError);
}

TEST_F(HostTest, AClosedHostAnswersNothing) {
  const automation::ObjectRef kept = access();
  state_->closed = true;
  EXPECT_THROW(automation::call(*host_, u"TurnOnFlow"), AutomationError);
  EXPECT_THROW(automation::get(*host_, u"oPBX"), AutomationError);
  EXPECT_THROW(automation::call(*kept, u"getsysinfo", {byRef(std::u16string(u"A"))}), AutomationError);
  EXPECT_TRUE(environment_.lines.empty());
}

TEST_F(HostTest, ReportsGetTheirTenArguments) {
  ReportRequest asked;
  state_->report = [&](const ReportRequest& request) {
    asked = request;
    return std::u16string(u"no paper");
  };
  const auto reason = automation::call(
      *host_, u"PrintReport",
      {byRef(std::u16string(u"C:\\FAULT.MDB")), byRef(std::u16string(u"C:\\FAULT.RPT")),
       byRef(std::u16string(u"sel")), byRef(std::u16string(u"s1")), byVal(std::int16_t{0}),
       byRef(std::u16string(u"s2")), byRef(std::u16string(u"s3")), byRef(std::u16string(u"s4")),
       byRef(std::u16string(u"s5")), byRef(std::u16string(u"s6"))});
  EXPECT_EQ(automation::toText(reason), u"no paper");
  EXPECT_EQ(asked.database, u"C:\\FAULT.MDB");
  EXPECT_EQ(asked.reportFile, u"C:\\FAULT.RPT");
  EXPECT_EQ(asked.selection, u"sel");
  EXPECT_THAT(asked.sort, ElementsAre(u"s1", u"s2", u"s3", u"s4", u"s5", u"s6"));
  EXPECT_THAT(
      environment_.lines,
      ElementsAre("PrintReport \"C:\\\\FAULT.MDB\" \"C:\\\\FAULT.RPT\" \"sel\" \"s1\" 0 \"s2\" \"s3\" \"s4\" "
                  "\"s5\" \"s6\"",
                  "PrintReport = \"no paper\""));
}

TEST_F(HostTest, TheExchangeServerIsLentWithALineForEachCallAndResult) {
  auto server = std::make_shared<fakes::ScriptedObject>();
  server->on(u"Login", [](auto) { return automation::Value(std::u16string(u"BUSY")); });
  server->on(u"LogOut", [](auto) { return automation::Value(automation::Empty{}); });
  server->on(u"SendRequest", [](auto) -> automation::Value { throw AutomationError(5, u"no line"); });
  state_->exchangeServer = std::make_shared<TracedServer>(state_, server);
  const auto lent = automation::toObject(automation::get(*host_, u"oPBX"));
  automation::call(*lent, u"Login", {byRef(std::u16string(u"A")), byVal(automation::ObjectRef(host_))});
  EXPECT_THROW(automation::call(*lent, u"SendRequest", {byRef(automation::ObjectRef{})}), AutomationError);
  automation::call(*lent, u"LogOut", {byRef(std::u16string(u"A")), byRef(std::u16string(u"X"))});
  EXPECT_THAT(environment_.lines,
              ElementsAre("oPBX.Login \"A\" object", "oPBX.Login = \"BUSY\"", "oPBX.SendRequest Nothing",
                          "oPBX.SendRequest ! 0x00000005 \"no line\"", "oPBX.LogOut \"A\" \"X\""));
}

}  // namespace
}  // namespace vordane::devhost
