#include "doctor_paths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <set>

#include "fakes/folder_engine.h"

namespace vordane::tools {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// A suite whose four files are there, and a program that looks for them on a workstation of the test's own.
class DoctorPaths : public testing::Test {
 protected:
  DoctorPaths() {
    for (const auto& file :
         {layout.ownDatabases() / "VORDANE.LNG", layout.ownDatabases() / "FAULT.MDB",
          layout.sharedDatabases() / "Common.LNG", layout.sharedDatabases() / "Register.mdb"}) {
      std::filesystem::create_directories(file.parent_path());
      std::ofstream(file) << "file";
    }
  }
  std::vector<std::string> look(std::u16string_view programDirectory) {
    std::vector<std::string> texts;
    for (const Finding& finding : examinePaths(layout, programDirectory, workstation))
      texts.push_back((finding.weight == Weight::fatal ? "! " : "") + finding.text);
    return texts;
  }

  fakes::FolderEngine files;
  SuiteLayout layout{files.folder() / "30000"};
  std::set<std::u16string> there;
  std::optional<std::u16string> installPath;
  Workstation workstation{[this](auto section, auto key) {
                            return section == u"30000" && key == u"InstallPath" ? installPath : std::nullopt;
                          },
                          {},
                          [](auto) { return std::vector<guard::Finding>{}; },
                          [this](auto path) { return there.count(std::u16string(path)) != 0; }};
};

TEST_F(DoctorPaths, FindsNothingWhereTheProgramFindsAll) {
  there = {u"C:\\YAZıLıM\\QUILMAR32\\30000\\ADDINS\\..\\QUIL32\\DATABASE\\Common.LNG",
           u"C:\\YAZıLıM\\QUILMAR32\\30000\\ADDINS\\DATABASE\\VORDANE.LNG",
           u"C:\\YAZıLıM\\QUILMAR32\\30000\\ADDINS\\DATABASE\\FAULT.MDB",
           u"C:\\YAZıLıM\\QUILMAR32\\30000\\ADDINS\\..\\QUIL32\\DATABASE\\Register.mdb"};
  EXPECT_THAT(look(u"C:\\Yazılım\\QUILMAR32\\30000\\ADDINS"), IsEmpty());
  installPath = u"C:\\Yazılım\\QUILMAR32\\30000\\";
  EXPECT_THAT(look(u"E:\\QUILMAR32\\30000\\ADDINS"), IsEmpty());
}

// A directory that tells capitals from small letters.
TEST_F(DoctorPaths, NamesWhatTheProgramLooksForInVain) {
  there = {u"C:\\KLEIN\\QUILMAR32\\30000\\ADDINS\\..\\QUIL32\\DATABASE\\Common.LNG",
           u"C:\\KLEIN\\QUILMAR32\\30000\\ADDINS\\DATABASE\\FAULT.MDB"};
  EXPECT_THAT(
      look(u"C:\\klein\\QUILMAR32\\30000\\ADDINS"),
      ElementsAre("! the program looks for C:\\KLEIN\\QUILMAR32\\30000\\ADDINS\\DATABASE\\VORDANE.LNG, which "
                  "is not there although the suite has it: the program ends at its start",
                  "! the program looks for C:\\KLEIN\\QUILMAR32\\30000\\ADDINS\\..\\QUIL32\\DATABASE\\"
                  "Register.mdb, which is not there although the suite has it: the program ends when a host "
                  "creates it"));
}

TEST_F(DoctorPaths, WhatTheSuiteLacksIsNamedElsewhere) {
  std::filesystem::remove(layout.ownDatabases() / "FAULT.MDB");
  const auto texts = look(u"C:\\klein\\QUILMAR32\\30000\\ADDINS");
  EXPECT_EQ(texts.size(), 3U);
  for (const std::string& text : texts) EXPECT_EQ(text.find("FAULT.MDB"), text.npos);
}

TEST_F(DoctorPaths, AreLookedAtOnlyWhereThereAreSuchPaths) {
  workstation.exists = nullptr;
  EXPECT_THAT(look(u"C:\\klein\\QUILMAR32\\30000\\ADDINS"), IsEmpty());
}

// The whole look at a workstation takes them in, unless the settings lead to another suite anyway.
TEST_F(DoctorPaths, BelongToTheLookAtTheWorkstation) {
  workstation.registered = [](auto) { return std::nullopt; };
  const auto inVain = [&] {
    const auto findings = examineWorkstation(layout, workstation);
    return std::count_if(findings.begin(), findings.end(), [](const Finding& finding) {
      return finding.text.find("the program looks for") != finding.text.npos;
    });
  };
  EXPECT_EQ(inVain(), 4);
  installPath = files.folder().u16string();
  EXPECT_EQ(inVain(), 0);
}

}  // namespace
}  // namespace vordane::tools
