// What a host sees of the layer: creation, registration, capability flags, its members.
#include "startup/story.h"

namespace vordane::startup {
namespace {

using Layer = Story;
using namespace std::string_literals;

TEST_F(Layer, CreationRegistersTheVersionAndLoadsTheWindow) {
  start();
  EXPECT_FALSE(view.attached) << "the start alone shows nothing";
  layer = createLayer();
  EXPECT_TRUE(view.attached);
  EXPECT_FALSE(view.shown);
  EXPECT_EQ(state.stepCode, 10003);
  EXPECT_EQ(process.times.pendingMilliseconds, 10000);
  EXPECT_EQ(process.times.busyMilliseconds, 20000);
  const auto registration = engine.open(u"Register.mdb", true);
  const auto row = registration->openRecordset(u"SELECT * FROM Registry WHERE AppName = \"VORDANE.WRX\"");
  EXPECT_EQ(automation::toText(row->get(u"Version")), u"1.0.12");
}

TEST_F(Layer, AFailedRegistrationEndsTheProcess) {
  start();
  std::filesystem::remove(engine.file(u"Register.mdb"));
  EXPECT_THROW(createLayer(), ProcessEnded);
  EXPECT_FALSE(view.attached);
}

TEST_F(Layer, RegistrationGoesStepByStep) {
  start();
  layer = createLayer();
  EXPECT_FALSE(registerPbx(u"PBX-1")) << "the load went well";
  EXPECT_THAT(taken(), ElementsAre("GetComData VORDANE MOVE& &", "GetMPVersion PBX-1&", "getsysinfo PBX-1&"));
  EXPECT_EQ(form().form().self().text(u"Caption"), u"Faults (PBX-1)");
  EXPECT_EQ(application->texts.Title, u"Fault display (PBX-1)");
  EXPECT_EQ(process.watched, host);
  EXPECT_THAT(creator.asked, IsEmpty()) << "the host lends its exchange server";
}

TEST_F(Layer, TheTitleCarriesAnExchangeOnce) {
  startWithHost(u"P1");
  registerPbx(u"P1");
  EXPECT_EQ(application->texts.Title, u"Fault display (P1)");
  registerPbx(u"P2");
  EXPECT_EQ(application->texts.Title, u"Fault display (P1) (P2)");
  registerPbx(u"p1");
  EXPECT_EQ(application->texts.Title, u"Fault display (P1) (P2) (p1)") << "compared with regard to case";
}

TEST_F(Layer, AnEmptyNameClearsTheFlagsAndAsksNothing) {
  host->sysInfo = std::int16_t{14};
  startWithHost();
  EXPECT_TRUE(state.SysInfoBit2 && state.SysInfoBit4 && state.SysInfoBit8);
  registerPbx(u"");
  EXPECT_THAT(taken(), testing::Not(testing::Contains(testing::HasSubstr("getsysinfo"))));
  EXPECT_FALSE(state.SysInfoBit2 || state.SysInfoBit4 || state.SysInfoBit8);
  EXPECT_EQ(state.SysInfo, 14) << "left as it was";
  EXPECT_EQ(application->texts.Title, u"Fault display (PBX-1)");
}

TEST_F(Layer, EachFlagIsItsOwnBit) {
  host->sysInfo = std::int16_t{1};
  startWithHost();
  EXPECT_FALSE(state.SysInfoBit2 || state.SysInfoBit4 || state.SysInfoBit8);
  host->sysInfo = std::int16_t{0x71 | 2};
  registerPbx(u"PBX-1");
  EXPECT_TRUE(state.SysInfoBit2);
  EXPECT_FALSE(state.SysInfoBit4 || state.SysInfoBit8);
  host->sysInfo = std::int16_t{0x71 | 4};
  registerPbx(u"PBX-1");
  EXPECT_TRUE(state.SysInfoBit4);
  EXPECT_FALSE(state.SysInfoBit2 || state.SysInfoBit8);
  host->sysInfo = std::int16_t{0x71 | 12};
  registerPbx(u"PBX-1");
  EXPECT_TRUE(state.SysInfoBit4 && state.SysInfoBit8);
}

TEST_F(Layer, Bit8IsWrittenOnlyBesideBit4) {
  host->sysInfo = std::int16_t{12};
  startWithHost();
  EXPECT_TRUE(state.SysInfoBit8);
  host->sysInfo = std::int16_t{2};
  registerPbx(u"PBX-1");
  EXPECT_TRUE(state.SysInfoBit2);
  EXPECT_FALSE(state.SysInfoBit4);
  EXPECT_TRUE(state.SysInfoBit8);
  host->sysInfo = std::int16_t{4};
  registerPbx(u"PBX-1");
  EXPECT_FALSE(state.SysInfoBit8);
}

TEST_F(Layer, AHostWithoutItsAccessComponentHearsTheError) {
  start();
  layer = createLayer();
  host->remove(u"oZUL");
  try {
    registerPbx(u"PBX-1");
    FAIL() << "no error";
  } catch (const automation::AutomationError& failure) {
    EXPECT_EQ(failure.code(), static_cast<std::int32_t>(0x800A0000U + 438));
    EXPECT_EQ(failure.source(), u"Vordane10013");
  }
  EXPECT_TRUE(state.WideFaultFields) << "no answer counts as a new exchange";
  EXPECT_EQ(form().form().self().text(u"Caption"), u"Faults (PBX-1)");
  EXPECT_EQ(application->texts.Title, u"Fault display (PBX-1)");
  taken();
  callInteger(u"CancelSchedule");
  EXPECT_THAT(taken(), testing::Contains("UnloadChild 0&")) << "the identifier comes behind the error";
}

TEST_F(Layer, CapabilitiesAreConvertedAndLostOnlyByAnAnswer) {
  host->sysInfo = std::u16string(u"13.6");
  startWithHost();
  EXPECT_EQ(state.SysInfo, 14);
  EXPECT_TRUE(state.SysInfoBit2 && state.SysInfoBit4 && state.SysInfoBit8);
  const std::pair<automation::Value, int> unusable[] = {
      {std::int32_t{40000}, 6}, {std::u16string(u"none"), 13}, {automation::Null{}, 13}};
  for (const auto& [answer, number] : unusable) {
    host->sysInfo = answer;
    try {
      registerPbx(u"PBX-1");
      ADD_FAILURE() << "no error " << number;
    } catch (const automation::AutomationError& failure) {
      EXPECT_EQ(failure.code(), automation::error::runTime(number));
    }
    EXPECT_EQ(state.SysInfo, 14);
    EXPECT_TRUE(state.SysInfoBit2 && state.SysInfoBit4 && state.SysInfoBit8);
  }
}

TEST_F(Layer, TheProcessorGenerationDecidesTheFieldWidth) {
  const std::pair<const char16_t*, bool> cases[] = {{u"SC-1000 M1", false}, {u"SC-1000 M", false},
                                                    {u"SC-1000 N", true},   {u"SC-1000 4.2", false},
                                                    {u"SC-1000", true},     {u"", true}};
  start();
  layer = createLayer();
  for (const auto& [version, wide] : cases) {
    host->version = version;
    registerPbx(u"PBX-1");
    EXPECT_EQ(state.WideFaultFields, wide) << text::toUtf8(version);
  }
}

TEST_F(Layer, AMissingDatabaseIsToldOnceAndByTheResult) {
  std::filesystem::remove(engine.file(u"FAULT.MDB"));
  start();
  layer = createLayer();
  EXPECT_TRUE(registerPbx(u"PBX-1"));
  EXPECT_THAT(taken(), ElementsAre("GetComData VORDANE MOVE& &", "ShowMessage not open", "ShowCode 3024",
                                   "GetMPVersion PBX-1&", "getsysinfo PBX-1&"));
  EXPECT_TRUE(view.attached) << "the window stays";
  EXPECT_EQ(state.stepCode, 10002);
}

TEST_F(Layer, AMissingDatabaseStillAcknowledges) {
  std::filesystem::remove(engine.file(u"FAULT.MDB"));
  startWithHost();
  pressAndTick(0);
  exchange().answer(0, oneFault());
  taken();
  tick();
  EXPECT_THAT(taken(), ElementsAre("ShowMessage not open", "ShowCode 3024", "(hourglass)", "Login PBX-1&",
                                   "ShowMessage PBX L1",
                                   "SendRequest EA1/00/ tag 12 for PBX-1 as L1 busy False mode 0 key ",
                                   "ShowMessage PBX ACCEPTED", "(disabled)", "TurnOnFlow"));
  exchange().answerLamps(u"11");
  taken();
  tick();
  EXPECT_THAT(taken(), ElementsAre("ShowMessage not open", "ShowCode 3024"));
  EXPECT_FALSE(state.busy);
}

TEST_F(Layer, VisibleShowsAndHides) {
  startWithHost();
  const int refreshed = view.refreshed;
  automation::put(*layer, u"Visible", true);
  EXPECT_TRUE(view.shown);
  EXPECT_EQ(view.refreshed, refreshed + 1);
  EXPECT_TRUE(automation::toBoolean(automation::get(*layer, u"Visible")));
  automation::put(*layer, u"Visible", std::int16_t{0});
  EXPECT_FALSE(view.shown);
}

TEST_F(Layer, MembersStandInTheirOrder) {
  const auto& table = cOLELayer::classTable();
  const char16_t* names[] = {u"RegisterPBX", u"Visible",        u"CreateSchedule",
                             u"RunSchedule", u"CancelSchedule", u"SetBackGround"};
  ASSERT_EQ(table.members.size(), std::size(names));
  for (std::size_t i = 0; i < std::size(names); ++i) {
    EXPECT_EQ(table.members[i].name, names[i]);
    EXPECT_EQ(table.members[i].dispid, static_cast<int>(i) + 1);
  }
}

TEST_F(Layer, WrongTypesAreRefusedWithTheirPlace) {
  startWithHost();
  try {
    automation::call(
        *layer, u"RegisterPBX",
        {automation::byVal(u"P"s), automation::byVal(u"no object"s), automation::byVal(std::int16_t{1})});
    FAIL();
  } catch (const automation::AutomationError& failure) {
    EXPECT_EQ(failure.code(), automation::error::typeMismatch);
    EXPECT_EQ(failure.argument(), 1);
  }
}

TEST_F(Layer, RecordsAreMadeForOtherProcesses) {
  start();
  EXPECT_EQ(automation::toText(automation::get(*application->createListRequest(), u"ObjectID")), u"1");
  const auto files_ = application->createSLVRequest();
  EXPECT_EQ(automation::toText(automation::get(*files_, u"TimeTag")), u"20.11.2026 21:14:05");
  EXPECT_FALSE(view.attached) << "a record needs no window";
}

TEST_F(Layer, TheWindowsOwnObjectHasItsPublicMembersAndNoInterface) {
  startWithHost();
  const auto window = form().caller();
  EXPECT_FALSE(automation::toBoolean(automation::call(*window, u"CheckLoadError")));
  automation::put(*window, u"Key", u"12"s);
  EXPECT_EQ(form().job().Key(), u"12");
  EXPECT_THROW(automation::call(*window, u"Unload"), automation::AutomationError);
  EXPECT_TRUE(std::static_pointer_cast<automation::TableObject>(window)->table().iid.empty());
}

}  // namespace
}  // namespace vordane::startup
