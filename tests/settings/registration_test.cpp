#include <gtest/gtest.h>

#include "fakes/folder_engine.h"
#include "fakes/memory_settings.h"
#include "settings/comRegQuil32.h"
#include "settings/suite_databases.h"

namespace vordane {
namespace {

using text16 = std::u16string;

class Registration : public testing::Test {
 protected:
  fakes::MemorySettings settings;
  comRegQuil32::Installation installation{settings, u"D:\\QUILMAR32\\30000\\ADDINS"};
  fakes::FolderEngine engine;

  void makeRegistry() {
    const auto row = [](const char16_t* name) {
      return fakes::Row{text16(name), text16(u"Menu"), text16(u"Item"), text16(u"Tip"), text16(u"old")};
    };
    fakes::makeDatabase(engine, u"Register.mdb",
                        {{settings::registrationTables[0], {row(u"OTHER.WRX"), row(u"VORDANE.WRX")}}});
  }
  bool registerVersion(std::u16string_view name) {
    return comRegQuil32::RegisterVersion(installation, engine, u"Addins", name, u"1.0.12");
  }
  text16 versionOf(std::u16string_view name) {
    const auto database = engine.open(u"Register.mdb", true);
    const auto row =
        database->openRecordset(u"SELECT * FROM Registry WHERE AppName = \"" + text16(name) + u"\"");
    return automation::toText(row->get(u"Version"));
  }
};

TEST_F(Registration, WritesTheVersionOfItsOwnRowOnly) {
  makeRegistry();
  EXPECT_TRUE(registerVersion(u"VORDANE.WRX"));
  EXPECT_EQ(engine.opened.front().path, u"D:\\QUILMAR32\\30000\\ADDINS\\..\\QUIL32\\DATABASE\\Register.mdb");
  EXPECT_FALSE(engine.opened.front().readOnly);
  EXPECT_EQ(versionOf(u"VORDANE.WRX"), u"1.0.12");
  EXPECT_EQ(versionOf(u"OTHER.WRX"), u"old");
}

TEST_F(Registration, AMissingRowIsNotAdded) {
  makeRegistry();
  EXPECT_TRUE(registerVersion(u"NOBODY.WRX"));
  const auto database = engine.open(u"Register.mdb", true);
  EXPECT_TRUE(database->openRecordset(u"SELECT * FROM Registry WHERE AppName = \"NOBODY.WRX\"")->isEmpty());
}

TEST_F(Registration, AMissingDatabaseOrTableIsFalse) {
  EXPECT_FALSE(registerVersion(u"VORDANE.WRX"));
  fakes::makeDatabase(engine, u"Register.mdb", {{settings::scheduleTables[0], {}}});
  EXPECT_FALSE(registerVersion(u"VORDANE.WRX"));
}

}  // namespace
}  // namespace vordane
