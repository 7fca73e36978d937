// A suite whose databases a bad disk has got at: the start ends without a word or goes on and says what is
// wrong, and no file gets worse.
#include <fstream>
#include <iterator>

#include "fakes/watched_database.h"
#include "startup/story.h"

namespace vordane::startup {
namespace {

class Damaged : public Story {
 protected:
  // Writes over the pages from `page` on, counted from 1; all of the file with 1.
  void spoil(std::u16string_view name, int page) {
    constexpr int pageSize = 4096;
    const std::filesystem::path path(engine.file(name));
    const auto from = pageSize * (page - 1);
    std::fstream bytes(path, std::ios::binary | std::ios::in | std::ios::out);
    bytes.seekp(from);
    bytes << std::string(static_cast<std::size_t>(std::filesystem::file_size(path)) - from, 'x');
  }
  std::string bytesOf(std::u16string_view name) const {
    std::ifstream in(std::filesystem::path(engine.file(name)), std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }
};

constexpr const char* damageBox = "Box 102 The database file is damaged.";

TEST_F(Damaged, FaultsThatAreNoDatabaseCountAsMissing) {
  spoil(u"FAULT.MDB", 1);
  const std::string before = bytesOf(u"FAULT.MDB");
  start();
  layer = createLayer();
  EXPECT_TRUE(registerPbx(u"PBX-1")) << "the load did not end well";
  EXPECT_THAT(taken(), ElementsAre("GetComData VORDANE MOVE& &", "ShowMessage not open", "ShowCode 3024",
                                   "GetMPVersion PBX-1&", "getsysinfo PBX-1&"));
  layer.reset();
  EXPECT_TRUE(bytesOf(u"FAULT.MDB") == before);
}

TEST_F(Damaged, FaultsThatOpenAndCantBeReadCountAsMissingForAHost) {
  engine.open(u"FAULT.MDB", false);  // its first use has been
  spoil(u"FAULT.MDB", 2);
  const std::string before = bytesOf(u"FAULT.MDB");
  start();
  layer = createLayer();
  EXPECT_THAT(taken(), IsEmpty()) << "the creation may wait where nobody is to answer a box";
  EXPECT_EQ(state.stepCode, 10002);
  const auto notOpen = ElementsAre("GetComData VORDANE MOVE& &", "ShowMessage not open", "ShowCode 3024",
                                   "GetMPVersion PBX-1&", "getsysinfo PBX-1&");
  EXPECT_TRUE(registerPbx(u"PBX-1"));
  EXPECT_THAT(taken(), notOpen);
  EXPECT_TRUE(view.attached);
  pressAndTick(0);
  exchange().answer(0, oneFault());
  taken();
  tick();
  EXPECT_THAT(taken(), testing::Contains("ShowCode 3024"));
  exchange().answerLamps(u"00");
  tick();
  EXPECT_FALSE(state.busy);
  auto second = createLayer();
  EXPECT_TRUE(registerPbx(u"PBX-1")) << "the load is not made again";
  EXPECT_THAT(taken(), testing::Not(testing::Contains(testing::StartsWith("Box"))));
  second.reset();
  layer.reset();
  EXPECT_TRUE(bytesOf(u"FAULT.MDB") == before);
}

TEST_F(Damaged, FaultsThatOpenAndCantBeReadAreToldOnceToWhoStartsByHand) {
  engine.open(u"FAULT.MDB", false);  // its first use has been
  spoil(u"FAULT.MDB", 2);
  startStandAlone(u"P");
  EXPECT_THAT(taken(), ElementsAre(damageBox));
  EXPECT_TRUE(view.shown);
  EXPECT_FALSE(form().life().CheckLoadError()) << "the load goes on";
  EXPECT_EQ(view.notice, u"database: The database file is damaged.");
  EXPECT_EQ(view.status[0], u"no list yet");
}

// Only the exchanges are read by the load itself: what fails behind it is told as at any other time.
TEST_F(Damaged, FaultsOfOneExchangeThatCantBeReadAreToldWhenItIsRegistered) {
  engine.between = [](std::u16string_view path, auto file) -> std::unique_ptr<database::Database> {
    if (!path.ends_with(u"FAULT.MDB")) return file;
    auto watched = std::make_unique<fakes::WatchedDatabase>(std::move(file));
    watched->before = [](std::u16string_view step) {
      if (step.find(u"FaultDisplay") != step.npos) throw database::DatabaseError(3343, u"damaged");
    };
    return watched;
  };
  start();
  layer = createLayer();
  EXPECT_THAT(taken(), IsEmpty());
  EXPECT_FALSE(registerPbx(u"PBX-1")) << "the load went well";
  EXPECT_THAT(taken(), testing::Contains("Box 102 damaged"));
}

TEST_F(Damaged, ARunOverFaultsThatCantBeReadIsNoSuccessInItsLog) {
  spoil(u"FAULT.MDB", 2);
  startWithHost();
  runSchedule(u"1");
  tick();
  tick();
  exchange().answer(0, oneFault());
  taken();
  tick();
  exchange().answerLamps(u"00");
  while (tick()) {
  }
  EXPECT_THAT(taken(), testing::Not(testing::Contains(testing::StartsWith("Box"))));
  EXPECT_THAT(log(), testing::Contains("M211: not open"));
  EXPECT_THAT(log(), testing::Not(testing::Contains(testing::StartsWith("1 received, 1 new"))));
  EXPECT_EQ(log().back(), "...");
}

TEST_F(Damaged, ARunThatMeetsTheDamageIsNoSuccessInItsLog) {
  bool damaged = false;
  engine.between = [&damaged](std::u16string_view path, auto file) -> std::unique_ptr<database::Database> {
    if (!path.ends_with(u"FAULT.MDB")) return file;
    auto watched = std::make_unique<fakes::WatchedDatabase>(std::move(file));
    watched->before = [&damaged](std::u16string_view) {
      if (damaged) throw database::DatabaseError(3343, u"damaged");
    };
    return watched;
  };
  startWithHost();
  runSchedule(u"1");
  tick();
  tick();
  damaged = true;
  exchange().answer(0, oneFault());
  taken();
  while (tick()) {
  }
  EXPECT_THAT(taken(), testing::Not(testing::Contains(testing::StartsWith("Box"))));
  EXPECT_THAT(log(), testing::Contains("102 damaged"));
  EXPECT_THAT(log(), testing::Not(testing::Contains(testing::StartsWith("1 received, 1 new"))));
  EXPECT_EQ(log().back(), "...");
}

TEST_F(Damaged, TextsEndTheStartWithoutAWord) {
  for (const int page : {1, 2})
    for (const char16_t* name : {u"VORDANE.LNG", u"Common.LNG"}) {
      if (page == 2 && name == std::u16string_view(u"Common.LNG")) continue;  // nothing is read of it yet
      const std::filesystem::path here(engine.file(name)), kept(engine.file(u"kept"));
      std::filesystem::copy_file(here, kept);
      spoil(name, page);
      EXPECT_THROW(start(), ProcessEnded) << text::toUtf8(name) << " from page " << page;
      EXPECT_THAT(taken(), IsEmpty());
      std::filesystem::rename(kept, here);
    }
}

TEST_F(Damaged, ARegistrationEndsTheCreationWithoutAWord) {
  for (const int page : {2, 1}) {
    spoil(u"Register.mdb", page);
    start();
    EXPECT_THROW(createLayer(), ProcessEnded) << page;
    EXPECT_THAT(taken(), IsEmpty());
  }
}

TEST_F(Damaged, WhatMayNotBeWrittenCountsAsNotOpened) {
  engine.unwritable = u"FAULT.MDB";
  start();
  layer = createLayer();
  EXPECT_TRUE(registerPbx(u"PBX-1"));
  EXPECT_THAT(taken(), testing::Contains("ShowCode 3024"));
  layer.reset();
  taken();
  engine.unwritable = u"Register.mdb";
  start();
  EXPECT_THROW(createLayer(), ProcessEnded);
  EXPECT_THAT(taken(), IsEmpty());
}

TEST_F(Damaged, OptionsAreTheUsualOnes) {
  for (const int page : {2, 1}) {
    spoil(u"Schedule.mdb", page);
    startWithHost();
    EXPECT_EQ(runSchedule(u"3"), 0);
    EXPECT_EQ(state.schedule.ScheduleCount, 1) << page;
    EXPECT_EQ(state.schedule.LogName, u"");
    layer.reset();
    view.timer = 0;
  }
}

}  // namespace
}  // namespace vordane::startup
