#include <gtest/gtest.h>

#include "fakes/memory_settings.h"
#include "settings/comRegQuil32.h"

namespace vordane {
namespace {

using comRegQuil32::GetInstallPath;
using comRegQuil32::GetSuiteVersion;
using comRegQuil32::Installation;

class InstallPaths : public testing::Test {
 protected:
  fakes::MemorySettings settings;
  Installation installation{settings, u"D:\\QUILMAR32\\30000\\ADDINS"};

  std::u16string path(std::u16string_view product, std::u16string_view item) {
    return GetInstallPath(installation, product, item);
  }
};

TEST_F(InstallPaths, VersionStandsAtFixedPlaces) {
  EXPECT_EQ(GetSuiteVersion(installation, u"Addins"), u"30000");
  installation.runningDirectory = u"d:\\quilmar32\\30000\\addins";
  EXPECT_EQ(GetSuiteVersion(installation, u"addins"), u"30000");
  installation.runningDirectory = u"C:\\QUILMAR32\\AB.12\\QUIL32";
  EXPECT_EQ(GetSuiteVersion(installation, u"Quil32"), u"AB.12");
}

TEST_F(InstallPaths, VersionOfAnyOtherProductCountsItsLength) {
  installation.runningDirectory = u"C:\\QUILMAR32\\30000\\ZUL";
  EXPECT_EQ(GetSuiteVersion(installation, u"zul"), u"30000");
  EXPECT_EQ(GetSuiteVersion(installation, u"zulu"), u"NONE");
  installation.runningDirectory = u"C:\\QUILMAR32\\30000\\LONGPRODUCT";
  EXPECT_EQ(GetSuiteVersion(installation, u"LongProduct"), u"30000");
}

TEST_F(InstallPaths, NoVersionOutsideTheSuite) {
  for (const char16_t* directory :
       {u"", u"C:", u"D:\\QUILMAR32\\3000\\ADDINS", u"D:\\QUILMAR32\\300000\\ADDINS",
        u"D:\\OTHER\\30000\\ADDINS", u"D:\\QUILMAR32\\30000\\QUIL32"}) {
    installation.runningDirectory = directory;
    EXPECT_EQ(GetSuiteVersion(installation, u"Addins"), u"NONE");
  }
}

TEST_F(InstallPaths, RunningDirectoryStandsInWithoutSettings) {
  EXPECT_EQ(path(u"Addins", u"Database"), u"D:\\QUILMAR32\\30000\\ADDINS\\DATABASE\\");
  EXPECT_EQ(path(u"Addins", u"BackGrnd"), u"D:\\QUILMAR32\\30000\\ADDINS\\..\\BACKGRND\\");
  EXPECT_EQ(path(u"Addins", u"Me"), u"D:\\QUILMAR32\\30000\\ADDINS\\");
  EXPECT_EQ(path(u"Addins", u"Help"), u"D:\\QUILMAR32\\30000\\ADDINS\\HELP\\");
  EXPECT_EQ(path(u"Addins", u"Report"), u"D:\\QUILMAR32\\30000\\ADDINS\\REPORT\\");
  EXPECT_EQ(path(u"Addins", u"Quilmar32"), u"D:\\QUILMAR32\\30000\\ADDINS\\");
}

TEST_F(InstallPaths, StoredInstallPathLeadsToTheProduct) {
  settings.write(u"QUILMAR32", u"30000", u"InstallPath", u"E:\\q\\");
  EXPECT_EQ(path(u"Addins", u"REGDBOFQUIL32"), u"E:\\Q\\ADDINS\\..\\QUIL32\\DATABASE\\");
  EXPECT_EQ(path(u"Addins", u"DATABASE"), u"E:\\Q\\ADDINS\\DATABASE\\");
  EXPECT_EQ(path(u"Addins", u"BACKGRND"), u"E:\\Q\\ADDINS\\..\\BACKGRND\\");
}

TEST_F(InstallPaths, MainProgramsHaveTheirOwnPlaces) {
  installation.runningDirectory = u"D:\\QUILMAR32\\30000\\QUIL32";
  settings.write(u"QUILMAR32", u"30000", u"InstallPath", u"E:\\Q\\");
  EXPECT_EQ(path(u"Quil32", u"AcrobatRd"), u"E:\\Q\\QUIL32\\READER\\");
  EXPECT_EQ(path(u"Quil32", u"RegDBofQuil32"), u"E:\\Q\\QUIL32\\DATABASE\\");
  EXPECT_EQ(path(u"Quil32", u"BackGrnd"), u"E:\\Q\\QUIL32\\..\\BACKGRND\\");
  EXPECT_EQ(path(u"Quil32", u"Me"), u"E:\\Q\\QUIL32\\");
}

TEST_F(InstallPaths, ItemsWithoutMeaningForTheProductGiveTheFixedFallback) {
  EXPECT_EQ(path(u"Addins", u"AcrobatRd"), u"30000");
  EXPECT_EQ(path(u"Other", u"AcrobatRd"), u"30000");
  EXPECT_EQ(path(u"Other", u"RegDBofQuil32"), u"30000");
  EXPECT_EQ(path(u"Other", u"BackGrnd"), u"30000");
}

TEST_F(InstallPaths, OtherProductsKeepTheirStoredDirectoryAsItIs) {
  installation.runningDirectory = u"C:\\QUILMAR32\\30000\\ZUL";
  settings.write(u"ZUL", u"30000", u"InstallPath", u"F:\\zul\\");
  EXPECT_EQ(path(u"Zul", u"Me"), u"F:\\ZUL\\");
  EXPECT_EQ(path(u"Zul", u"Help"), u"F:\\ZUL\\HELP\\");
}

TEST_F(InstallPaths, OtherItemsNameAProductAndItsVersion) {
  settings.write(u"QUILMAR32", u"30000", u"QUILMAR32", u"30000");
  settings.write(u"QUILMAR32", u"30000", u"InstallPath", u"C:\\Quilmar32\\30000\\");
  EXPECT_EQ(path(u"Addins", u"Quilmar32"), u"C:\\QUILMAR32\\30000\\");
  settings.write(u"QUILMAR32", u"30000", u"ZUL", u"30001");
  EXPECT_EQ(path(u"Addins", u"Zul"), u"\\");  // that version says nothing of its directory
  settings.write(u"ZUL", u"30001", u"InstallPath", u"G:\\z\\");
  EXPECT_EQ(path(u"Addins", u"Zul"), u"G:\\Z\\");
  settings.write(u"QUILMAR32", u"30000", u"ZUL", u"3001");  // four characters are no version
  EXPECT_EQ(path(u"Addins", u"Zul"), u"D:\\QUILMAR32\\30000\\ADDINS\\");
}

TEST_F(InstallPaths, WithoutAVersionTheSectionIsNone) {
  installation.runningDirectory = u"C:\\Tools";
  settings.write(u"QUILMAR32", u"NONE", u"InstallPath", u"H:\\n\\");
  EXPECT_EQ(path(u"Addins", u"Database"), u"H:\\N\\ADDINS\\DATABASE\\");
}

TEST_F(InstallPaths, StoredNoneIsAbsentAndStoredEmptyIsFound) {
  settings.write(u"QUILMAR32", u"30000", u"InstallPath", u"NONE");
  EXPECT_EQ(path(u"Addins", u"Database"), u"D:\\QUILMAR32\\30000\\ADDINS\\DATABASE\\");
  settings.write(u"QUILMAR32", u"30000", u"InstallPath", u"");
  EXPECT_EQ(path(u"Addins", u"Database"), u"ADDINS\\DATABASE\\");
}

TEST_F(InstallPaths, TheSuitesDirectoryIsThatOfTheRunningVersion) {
  EXPECT_EQ(comRegQuil32::suiteDirectory(installation), u"D:\\QUILMAR32\\30000");
  settings.write(u"QUILMAR32", u"30000", u"InstallPath", u"E:\\q\\");
  EXPECT_EQ(comRegQuil32::suiteDirectory(installation), u"E:\\q\\");
  installation.runningDirectory = u"C:\\Tools\\Vordane";
  EXPECT_EQ(comRegQuil32::suiteDirectory(installation), u"C:\\Tools\\Vordane");
}

// A capital may name another directory: the file system keeps these letters apart from their capitals.
TEST_F(InstallPaths, LettersWithoutACapitalInFileSystemsStayAsTheyAre) {
  installation.runningDirectory = u"C:\\Yazılım µ\\Quilmar32\\30000\\Addins";
  EXPECT_EQ(GetSuiteVersion(installation, u"Addins"), u"30000");
  EXPECT_EQ(path(u"Addins", u"Database"), u"C:\\YAZıLıM µ\\QUILMAR32\\30000\\ADDINS\\DATABASE\\");
  installation.runningDirectory = u"C:\\qu\u0131lmar32\\30000\\addins";  // not the suite's name
  EXPECT_EQ(GetSuiteVersion(installation, u"Addins"), u"NONE");
  settings.write(u"QUILMAR32", u"NONE", u"InstallPath", u"d:\\საქართველო\\Πίνακας\\");
  settings.write(u"QUILMAR32", u"NONE", u"ZUL", u"30001");
  settings.write(u"ZUL", u"30001", u"InstallPath", u"e:\\программы ſ\\");
  EXPECT_EQ(path(u"Addins", u"Database"), u"D:\\საქართველო\\ΠΊΝΑΚΑς\\ADDINS\\DATABASE\\");
  EXPECT_EQ(path(u"Addins", u"Zul"), u"E:\\ПРОГРАММЫ ſ\\");
}

}  // namespace
}  // namespace vordane
