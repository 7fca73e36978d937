#include "capsule/other_names.h"

#include <gtest/gtest.h>

namespace vordane::tools {
namespace {

using Kind = OtherNames::Kind;

TEST(OtherNames, TheSameNameIsAlwaysTheSameOther) {
  OtherNames names;
  names.add(Kind::exchange, u"Hamburg");
  names.add(Kind::exchange, u"Hamburg Nord");
  names.add(Kind::exchange, u" HAMBURG ");
  names.add(Kind::person, u"anna");
  names.add(Kind::person, u"");
  names.add(Kind::workstation, u"STATION-3");
  names.add(Kind::identifier, u"SIM-1");
  EXPECT_EQ(names.in(u"Hamburg"), u"Exchange-1");
  EXPECT_EQ(names.in(u"hamburg nord"), u"Exchange-2");
  EXPECT_EQ(names.in(u"Fault List (Hamburg Nord), Hamburg; ANNA at station-3 as SIM-1"),
            u"Fault List (Exchange-2), Exchange-1; Person-1 at Workstation-1 as Identifier-1");
  EXPECT_EQ(names.in(u""), u"");
  EXPECT_EQ(names.in(u"Hambur"), u"Hambur");
}

TEST(OtherNames, AShortNameCountsWhereItIsAllOfTheText) {
  OtherNames names;
  names.add(Kind::exchange, u"10");
  names.add(Kind::exchange, u"Kiel");
  EXPECT_EQ(names.in(u"10"), u"Exchange-1");
  EXPECT_EQ(names.in(u"06/11/27 10:15"), u"06/11/27 10:15");
  EXPECT_EQ(names.in(u"xKielx"), u"xExchange-2x");
}

TEST(OtherNames, LettersBeyondAsciiAreFolded) {
  OtherNames names;
  names.add(Kind::exchange, u"МОСКВА");
  EXPECT_EQ(names.in(u"в Москва-1"), u"в Exchange-1-1");
}

TEST(OtherNames, FoldersNamePeople) {
  OtherNames names;
  names.addFolders(u"at C:\\Users\\anna\\AppData and /home/berta/x, \\Documents and Settings\\Carla");
  names.addFolders(u"C:\\Users\\Public\\x C:\\Users and homework/dora, C:\\QUILMAR32\\USERS");
  EXPECT_EQ(names.in(u"anna berta Carla Public dora"), u"Person-1 Person-3 Person-2 Public dora");
}

TEST(OtherNames, OfALineTheValuesAreRenamedAndNothingElse) {
  OtherNames names;
  names.add(Kind::exchange, u"event");
  names.add(Kind::exchange, u"call");
  EXPECT_EQ(
      names.inJson(
          R"({"at":"2026-11-23T06:45:12.345678Z","event":"call","number":4,"member":"call","as":"call","arguments":["event",{"object":2},7,[{"is":"event"},"a call \"x\""]],"took":3})"),
      R"({"at":"2026-11-23T06:45:12.345678Z","event":"call","number":4,"member":"call","as":"call","arguments":["Exchange-1",{"object":2},7,[{"is":"event"},"a Exchange-2 \"x\""]],"took":3})");
  EXPECT_EQ(names.inJson("no call of JSON"), "no Exchange-2 of JSON");
  EXPECT_EQ(names.inJson(R"({"event":"box","text":"\ud83d event"})"),
            R"({"event":"box","text":"\ud83d Exchange-1"})");
}

TEST(OtherNames, ATraceTellsWhoIsNamed) {
  OtherNames names;
  for (
      const char* line :
      {R"=({"event":"start","exchange":"Bremen","words":64})=",
       R"=({"event":"called","number":3,"member":"RegisterPBX","arguments":["Kassel",{"object":2},7]})=",
       R"=({"event":"call","number":4,"member":"Login","arguments":["Lübeck",{"object":14}],"references":[0]})=",
       R"=({"event":"answer","number":4,"answer":"SIM-76"})=",
       R"=({"event":"called","number":8,"member":"LoginID","arguments":[]})=",
       R"=({"event":"returned","number":8,"answer":"SIM-77"})=",
       R"=({"event":"called","number":9,"member":"LoginID","arguments":[]})=",
       R"=({"event":"returned","number":9,"answer":"(identifier 2)"})=",
       R"=({"event":"call","number":10,"member":"LogOut","arguments":["SIM-78"]})=",
       R"=({"event":"call","number":11,"member":"ShowMessage","arguments":["Rostock"]})=",
       R"=({"event":"database failed","file":"C:\\Users\\anna\\FAULT.MDB"})=",
       R"=({"event":"called","number":)="})
    names.addFromTrace(line);
  EXPECT_EQ(
      names.in(u"Bremen Kassel Lübeck SIM-76 SIM-77 SIM-78 Rostock anna (identifier 2)"),
      u"Exchange-1 Exchange-2 Exchange-3 SIM-76 Identifier-1 Identifier-2 Rostock Person-1 (identifier 2)");
}

}  // namespace
}  // namespace vordane::tools
