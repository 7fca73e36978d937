#include "platform/program_guard.h"

#include <gtest/gtest.h>

namespace vordane::guard {
namespace {

const Account administrators{u"S-1-5-32-544", u"BUILTIN\\Administrators"};
const Account systemItself{u"S-1-5-18", u"NT AUTHORITY\\SYSTEM"};
const Account users{u"S-1-5-32-545", u"BUILTIN\\Users"};
const Account ann{u"S-1-5-21-1-2-3-1001", u"DESK\\ann"};
const Account everybody{u"S-1-1-0", u"Everyone"};

constexpr std::uint32_t full = 0x1F01FF, readAndRun = 0x1200A9, modify = 0x1301BF;

Place program(std::vector<Entry> entries, Account owner = administrators) {
  return {Kind::program, u"C:\\Q\\V.EXE", std::move(owner), false, std::move(entries)};
}
Place folder(std::vector<Entry> entries, Kind kind = Kind::folder) {
  return {kind, u"C:\\Q", administrators, false, std::move(entries)};
}
std::vector<Finding> found(const Place& place) {
  return whoMayReplace(std::vector<Place>{place});
}
const std::vector<Finding> nobody;

TEST(ProgramGuard, AdministratorsAndTheSystemAreTrusted) {
  EXPECT_EQ(
      found(program({{true, administrators, full}, {true, systemItself, full}, {true, users, readAndRun}})),
      nobody);
  for (const char16_t* sid : {u"S-1-5-80-956008885-3418522649-1831038044-1853292631-2271478464", u"S-1-3-0",
                              u"S-1-5-21-7-8-9-500", u"S-1-5-21-7-8-9-512", u"S-1-5-21-7-8-9-519"})
    EXPECT_EQ(found(program({{true, {sid, u""}, full}})), nobody);
}

TEST(ProgramGuard, AnotherAccountOfTheSameEndIsNotAnAdministrator) {
  EXPECT_EQ(found(program({{true, {u"S-1-5-21-7-8-9-1512", u"x"}, full}})).size(), 1U);
  EXPECT_EQ(found(program({{true, {u"S-1-5-99-512", u"x"}, full}})).size(), 1U);
}

TEST(ProgramGuard, EachRightThatReplacesAFileCounts) {
  for (const std::uint32_t right : {0x2U, 0x10000U, 0x40000U, 0x80000U, 0x10000000U, 0x40000000U})
    EXPECT_EQ(found(program({{true, users, right}})),
              (std::vector<Finding>{{u"C:\\Q\\V.EXE", u"BUILTIN\\Users"}}))
        << std::hex << right;
  // Appending, attributes and the removal of what is inside lead to no other program.
  for (const std::uint32_t right : {0x1U, 0x4U, 0x10U, 0x20U, 0x40U, 0x80U, 0x100U, 0x20000U, 0x80000000U})
    EXPECT_EQ(found(program({{true, users, right}})), nobody) << std::hex << right;
}

TEST(ProgramGuard, EachRightThatReplacesInAFolderCounts) {
  for (const std::uint32_t right : {0x2U, 0x40U, 0x10000U, 0x40000U, 0x80000U, 0x10000000U, 0x40000000U})
    EXPECT_EQ(found(folder({{true, users, right}})).size(), 1U) << std::hex << right;
  EXPECT_EQ(found(folder({{true, users, 0x4}})), nobody);  // makes folders beside it
}

TEST(ProgramGuard, AboveItOnlyWhatRenamesCounts) {
  for (const std::uint32_t right : {0x40U, 0x10000U, 0x40000U, 0x80000U, 0x10000000U})
    EXPECT_EQ(found(folder({{true, users, right}}, Kind::above)).size(), 1U) << std::hex << right;
  for (const std::uint32_t right : {0x2U, 0x4U, 0x40000000U})
    EXPECT_EQ(found(folder({{true, users, right}}, Kind::above)), nobody) << std::hex << right;
}

// A drive's root lets everybody modify what he makes there, and nothing more.
TEST(ProgramGuard, WhatOnlyIsHandedDownHoldsForOthers) {
  EXPECT_EQ(found(folder({{true, users, modify, true}})), nobody);
  EXPECT_EQ(found(folder({{true, users, modify, false}})).size(), 1U);
}

TEST(ProgramGuard, AnOwnerMayGiveHimselfTheRest) {
  EXPECT_EQ(found(program({{true, administrators, full}}, ann)),
            (std::vector<Finding>{{u"C:\\Q\\V.EXE", u"DESK\\ann"}}));
  // Unless the list says what owners may do.
  const Account owners{u"S-1-3-4", u"OWNER RIGHTS"};
  EXPECT_EQ(found(program({{true, owners, readAndRun}}, ann)), nobody);
  EXPECT_EQ(found(program({{true, owners, modify}}, ann)),
            (std::vector<Finding>{{u"C:\\Q\\V.EXE", u"DESK\\ann"}}));
  EXPECT_EQ(found(program({{true, owners, readAndRun, true}}, ann)).size(), 1U);
}

TEST(ProgramGuard, ADenialBeforeCountsAndOneBehindDoesNot) {
  EXPECT_EQ(found(program({{false, ann, modify}, {true, ann, modify}})), nobody);
  EXPECT_EQ(found(program({{false, everybody, modify}, {true, ann, modify}})), nobody);
  EXPECT_EQ(found(program({{true, ann, modify}, {false, ann, modify}})).size(), 1U);
  EXPECT_EQ(found(program({{false, users, modify}, {true, ann, modify}})).size(), 1U);
  EXPECT_EQ(found(program({{false, ann, 0x2}, {true, ann, 0x10002}})).size(), 1U) << "one right is left";
}

TEST(ProgramGuard, APlaceWithoutAListIsEverybodys) {
  Place open = program({});
  open.unguarded = true;
  EXPECT_EQ(found(open), (std::vector<Finding>{{u"C:\\Q\\V.EXE", u"Everyone"}}));
}

TEST(ProgramGuard, EachAccountOnceForEachPlace) {
  const std::vector<Place> places{program({{true, users, 0x2}, {true, users, 0x10000}}),
                                  folder({{true, {u"S-1-5-21-1-2-3-9", u""}, modify}})};
  EXPECT_EQ(whoMayReplace(places),
            (std::vector<Finding>{{u"C:\\Q\\V.EXE", u"BUILTIN\\Users"}, {u"C:\\Q", u"S-1-5-21-1-2-3-9"}}));
}

TEST(ProgramGuard, SaysItInOneSentence) {
  EXPECT_EQ(sentence({u"C:\\Q", u"BUILTIN\\Users"}), u"BUILTIN\\Users may write to C:\\Q");
}

}  // namespace
}  // namespace vordane::guard
