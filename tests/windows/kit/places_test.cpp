// What is saved before the tests begin: all that they write, and nothing of an installed suite's own.
#include "kit/windows/places.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace vordane::kit {
namespace {

bool isSaved(const RegistryPlace& place) {
  const auto places = writtenPlaces();
  return std::find(places.begin(), places.end(), place) != places.end();
}

TEST(WrittenPlaces, HoldEveryKindOfRegistrationInBothHivesAndViews) {
  for (const Hive hive : {Hive::machine, Hive::user})
    for (const View view : {View::words64, View::words32})
      for (const char16_t* key : {u"Vordane10013.cOLELayer", u"Vordane10013.cSLVRequest",
                                  u"CLSID\\{A075C3FD-C044-4FB3-B4E3-5596C07EB160}",
                                  u"Interface\\{62CC4A41-F04A-4820-9505-1C5DD1FA82AA}",
                                  u"TypeLib\\{3CF3E9A4-E2A4-4AE1-8329-337153D4646E}",
                                  u"AppID\\{A075C3FD-C044-4FB3-B4E3-5596C07EB160}", u"AppID\\VORDANE.EXE",
                                  u"AppID\\Zulsim.exe", u"CalderinProj30001.cPBXOLE", u"VordaneProbe.cBag",
                                  u"AppID\\probeserver.exe", u"DAO.DBEngine.120", u"DAO.DBEngine.36"})
        EXPECT_TRUE(isSaved({hive, view, std::u16string(u"Software\\Classes\\") + key}))
            << std::string(key, key + 12);
}

TEST(WrittenPlaces, HoldTheSourcesOfTheEventLogOnceForBothWordSizes) {
  const std::u16string sources = u"SYSTEM\\CurrentControlSet\\Services\\EventLog\\Application";
  for (const char16_t* name : {u"\\Vordane", u"\\VordaneProbe"})
    EXPECT_TRUE(isSaved({Hive::machine, View::words64, sources + name}));
  EXPECT_FALSE(isSaved({Hive::machine, View::words64, sources})) << "others have theirs there";
}

TEST(WrittenPlaces, TheSettingsAreThoseOfVersionsThatNobodyHas) {
  const std::u16string settings = u"Software\\VB and VBA Program Settings\\";
  for (const char16_t* key : {u"QUILMAR32\\39000", u"QUILMAR32\\39001", u"VORDANE"})
    EXPECT_TRUE(isSaved({Hive::user, View::words64, settings + key}));
  EXPECT_FALSE(isSaved({Hive::user, View::words64, settings + u"QUILMAR32"}));
  EXPECT_FALSE(isSaved({Hive::user, View::words64, settings + u"QUILMAR32\\30000"}));
}

}  // namespace
}  // namespace vordane::kit
