// Whole stories, line by line.
#include <gmock/gmock.h>

#include <atomic>
#include <regex>

#include "fakes/memory_folder.h"
#include "fakes/watched_database.h"
#include "startup/conversation.h"
#include "trace/traced_stories.h"

namespace vordane::trace {
namespace {

using startup::Lines;
using testing::ElementsAre;

class TracedStory : public startup::Conversation {
 protected:
  TracedStory() {
    startup::makeBetween() = [this](const startup::Workstation& station) {
      auto made = record(std::make_unique<fakes::MemoryFolder>(held), wish, [time = now] { return ++*time; });
      recorder = made;
      return std::make_unique<TracedBetween>(station, std::move(made));
    };
  }
  ~TracedStory() override { startup::makeBetween() = nullptr; }

  // The lines since the last time, without their times.
  Lines traced() {
    if (const auto alive = recorder.lock()) alive->flush();
    const std::string all = folder.all();
    Lines lines;
    for (std::size_t end; (end = all.find('\n', read)) != all.npos; read = end + 1) {
      std::string line = all.substr(read, end - read);
      EXPECT_TRUE(line.starts_with(R"({"at":"2026-11-23T06:45:12.)")) << line;
      line.erase(0, std::string(R"({"at":"2026-11-23T06:45:12.345678Z",)").size());
      static const std::regex took(R"(,"took":\d+)");
      lines.push_back(std::regex_replace(line, took, ""));
    }
    return lines;
  }
  void pressTraced(int action) { view.events->buttonPressed(action); }
  void tickTraced() {
    view.timer = 0;
    view.events->tick();
  }

  // Asked by two threads.
  std::shared_ptr<std::atomic<Moment>> now = std::make_shared<std::atomic<Moment>>(1'795'416'312'000'000);
  Wish wish;
  std::shared_ptr<fakes::MemoryFolderState> held = std::make_shared<fakes::MemoryFolderState>();
  fakes::MemoryFolderState& folder = *held;
  std::weak_ptr<Recorder> recorder;
  std::size_t read = 0;
};

TEST_F(TracedStory, AStartAndARegistration) {
  start();
  layer = createLayer();
  registerPbx(u"PBX-1");
  EXPECT_THAT(
      traced(),
      ElementsAre(
          R"("event":"start","format":1,"version":"1.0.12","hosted":true,"interactive":true,"exchange":"","words":64})",
          R"("event":"lent","object":1,"class":"cOLELayer"})",
          R"("event":"called","number":3,"object":1,"member":"RegisterPBX","as":"method","arguments":["PBX-1",{"object":2},7]})",
          R"("event":"call","number":4,"object":2,"member":"GetComData","as":"method","arguments":["VORDANE","MOVE",""],"references":[1,2]})",
          R"("event":"answer","number":4})",
          R"("event":"call","number":5,"object":2,"member":"oZUL","as":"method or get","arguments":[]})",
          R"("event":"answer","number":5,"answer":{"object":6}})",
          R"("event":"call","number":7,"object":6,"member":"GetMPVersion","as":"method","arguments":["PBX-1"],"references":[0]})",
          R"("event":"answer","number":7,"answer":"SC-1000 N1"})", R"("event":"let go","object":6})",
          R"("event":"call","number":8,"object":2,"member":"oZUL","as":"method or get","arguments":[]})",
          R"("event":"answer","number":8,"answer":{"object":9}})",
          R"("event":"call","number":10,"object":9,"member":"getsysinfo","as":"method","arguments":["PBX-1"],"references":[0]})",
          R"("event":"answer","number":10,"answer":0})", R"("event":"let go","object":9})",
          R"("event":"returned","number":3,"answer":false})"));
}

TEST_F(TracedStory, ARequestIsSent) {
  startWithHost();
  traced();
  pressTraced(0);
  tickTraced();
  EXPECT_THAT(
      traced(),
      ElementsAre(
          R"("event":"person","what":"button","which":0})", R"("event":"timer","milliseconds":100})",
          R"("event":"tick","number":11,"action":"request"})",
          R"("event":"call","number":12,"object":2,"member":"oPBX","as":"method or get","arguments":[]})",
          R"("event":"answer","number":12,"answer":{"object":13}})",
          R"("event":"lent","object":14,"class":"dlgFaultDisplay"})",
          R"("event":"call","number":15,"object":13,"member":"Login","as":"method","arguments":["PBX-1",{"object":14}],"references":[0]})",
          R"=("event":"answer","number":15,"answer":"(identifier 1)"})=", R"("event":"let go","object":13})",
          R"=("event":"call","number":16,"object":2,"member":"ShowMessage","as":"method","arguments":["PBX (identifier 1)"]})=",
          R"("event":"answer","number":16,"answer":""})",
          R"("event":"call","number":17,"object":2,"member":"oPBX","as":"method or get","arguments":[]})",
          R"("event":"answer","number":17,"answer":{"object":18}})",
          R"("event":"lent","object":19,"class":"cListRequest"})",
          R"("event":"call","number":20,"object":18,"member":"SendRequest","as":"method","arguments":[{"object":19}],"references":[0]})",
          R"("event":"called","number":21,"object":19,"member":"CMD","as":"method or get","arguments":[0]})",
          R"("event":"returned","number":21,"answer":"LEA0"})",
          R"("event":"called","number":22,"object":19,"member":"FirstData","as":"method or get","arguments":[0]})",
          R"("event":"returned","number":22,"answer":""})",
          R"("event":"called","number":23,"object":19,"member":"SecondData","as":"method or get","arguments":[0]})",
          R"("event":"returned","number":23,"answer":""})",
          R"("event":"called","number":24,"object":19,"member":"Tag","as":"method or get","arguments":[]})",
          R"("event":"returned","number":24,"answer":"10"})",
          R"("event":"called","number":25,"object":19,"member":"PBXName","as":"method or get","arguments":[]})",
          R"("event":"returned","number":25,"answer":"PBX-1"})",
          R"("event":"called","number":26,"object":19,"member":"LoginID","as":"method or get","arguments":[]})",
          R"=("event":"returned","number":26,"answer":"(identifier 1)"})=",
          R"("event":"called","number":27,"object":19,"member":"ShowBusy","as":"method or get","arguments":[]})",
          R"("event":"returned","number":27,"answer":true})",
          R"("event":"called","number":28,"object":19,"member":"Mode","as":"method or get","arguments":[]})",
          R"("event":"returned","number":28,"answer":0})",
          R"("event":"called","number":29,"object":19,"member":"Key","as":"method or get","arguments":[]})",
          R"("event":"returned","number":29,"answer":""})",
          R"("event":"answer","number":20,"answer":"ACCEPTED"})", R"("event":"let go","object":18})",
          R"("event":"call","number":30,"object":2,"member":"ShowMessage","as":"method","arguments":["PBX ACCEPTED"]})",
          R"("event":"answer","number":30,"answer":""})",
          R"("event":"call","number":31,"object":2,"member":"TurnOnFlow","as":"method","arguments":[]})",
          R"("event":"answer","number":31,"answer":""})", R"("event":"done","number":11})"));
}

TEST_F(TracedStory, IdentifiersAreLeftOut) {
  startWithHost();
  pressTraced(0);
  tickTraced();
  EXPECT_THAT(traced(), testing::Each(testing::Not(testing::ContainsRegex("[^A-Z0-9]L1[^0-9]"))));
}

TEST_F(TracedStory, IdentifiersStandInItWhenTheyAreAskedFor) {
  wish.identifiers = true;
  startWithHost();
  pressTraced(0);
  tickTraced();
  EXPECT_THAT(traced(), testing::Contains(testing::HasSubstr(R"("answer":"L1")")));
}

TEST_F(TracedStory, CallsThatFail) {
  startWithHost();
  exchange().loginRaises = true;
  traced();
  pressTraced(0);
  tickTraced();
  EXPECT_THAT(
      traced(),
      ElementsAre(
          R"("event":"person","what":"button","which":0})", R"("event":"timer","milliseconds":100})",
          R"("event":"tick","number":11,"action":"request"})",
          R"("event":"call","number":12,"object":2,"member":"oPBX","as":"method or get","arguments":[]})",
          R"("event":"answer","number":12,"answer":{"object":13}})",
          R"("event":"lent","object":14,"class":"dlgFaultDisplay"})",
          R"("event":"call","number":15,"object":13,"member":"Login","as":"method","arguments":["PBX-1",{"object":14}],"references":[0]})",
          R"("event":"answer","number":15,"error":"0x800a0005"})", R"("event":"let go","object":13})",
          R"("event":"call","number":16,"object":2,"member":"ShowMessage","as":"method","arguments":["PBX "]})",
          R"("event":"answer","number":16,"answer":""})", R"("event":"done","number":11})"));
}

TEST_F(TracedStory, WhatAPersonDoesAndIsAsked) {
  startWithHost();
  fetchOneFault();
  traced();
  boxes.answer = 6;
  view.events->headingClicked(2);
  view.events->keyPressed(112);
  view.events->exchangeChosen(0);
  pressTraced(3);
  tickTraced();
  view.events->closeAsked();
  EXPECT_THAT(
      traced(),
      ElementsAre(
          R"("event":"person","what":"heading","which":2})", R"("event":"person","what":"key","which":112})",
          R"("event":"call","number":117,"object":2,"member":"DisplayHelp","as":"method","arguments":["VORDANE.HLP"],"references":[0]})",
          R"("event":"answer","number":117,"answer":""})", R"("event":"person","what":"exchange","which":0})",
          R"("event":"person","what":"button","which":3})", R"("event":"timer","milliseconds":100})",
          R"("event":"tick","number":118,"action":"clear"})",
          R"("event":"box","number":119,"prompt":"105  ","title":"Title","style":0})",
          R"("event":"box answer","number":119,"answer":6})", R"("event":"done","number":118})",
          R"("event":"person","what":"close","which":0})", R"("event":"window","visible":false})"));
}

TEST_F(TracedStory, ATickInsideACallDoesNothing) {
  startWithHost();
  exchange().duringLogin = [&] { view.events->tick(); };
  traced();
  pressTraced(0);
  tickTraced();
  EXPECT_THAT(traced(), testing::Contains(testing::HasSubstr(R"("event":"tick",)")).Times(2));
  EXPECT_THAT(traced(), testing::IsEmpty());
}

TEST_F(TracedStory, StatementsThatFail) {
  bool fails = false;
  engine.between = [&](std::u16string_view path, std::unique_ptr<database::Database> inner) {
    auto watched = std::make_unique<fakes::WatchedDatabase>(std::move(inner));
    if (path.ends_with(u"FAULT.MDB"))
      watched->before = [&](std::u16string_view step) {
        if (fails && step == u"update") throw database::DatabaseError(3026, u"no \"room\"");
        if (fails && step.starts_with(u"SELECT * FROM FaultDisplay"))
          throw database::DatabaseError(3049, u"damaged");
      };
    return std::unique_ptr<database::Database>(std::move(watched));
  };
  startWithHost();
  pressTraced(0);
  tickTraced();
  exchange().answer(0, oneFault());
  traced();
  fails = true;
  tickTraced();
  EXPECT_THAT(
      traced(),
      ElementsAre(
          R"("event":"tick","number":73,"action":"ingest"})",
          R"("event":"database failed","step":"update","file":"C:\\QUILMAR32\\30000\\ADDINS\\DATABASE\\FAULT.MDB","code":3026,"reason":"no \"room\""})",
          R"("event":"box","number":74,"prompt":"102 no \"room\"","title":"Title","style":0})",
          R"("event":"box answer","number":74,"answer":1})",
          R"("event":"database failed","step":"select","file":"C:\\QUILMAR32\\30000\\ADDINS\\DATABASE\\FAULT.MDB","statement":"SELECT * FROM FaultDisplay Order by [Date] Desc","code":3049,"reason":"damaged"})",
          R"("event":"done","number":73})"));
}

TEST_F(TracedStory, AFileThatIsMissingAndAnEndAtOnce) {
  std::filesystem::remove(engine.folder() / "Common.LNG");
  EXPECT_THROW(start(), startup::ProcessEnded);
  EXPECT_THAT(
      traced(),
      ElementsAre(
          R"("event":"start","format":1,"version":"1.0.12","hosted":true,"interactive":true,"exchange":"","words":64})",
          testing::StartsWith(
              R"("event":"database failed","step":"open to read","file":"C:\\QUILMAR32\\30000\\ADDINS\\..\\QUIL32\\DATABASE\\Common.LNG","code":3024,"reason":"Could not find file)"),
          R"("event":"ends at once"})"));
}

TEST_F(TracedStory, AStartByHandWithoutAnExchangeServer) {
  startStandAlone(u"PBX-1");
  EXPECT_THAT(
      traced(),
      ElementsAre(
          R"("event":"start","format":1,"version":"1.0.12","hosted":false,"interactive":true,"exchange":"PBX-1","words":64})",
          R"("event":"not created","class":"CalderinProj.cPBXOle","error":"0x800a01ad","description":""})",
          R"("event":"window","visible":true})"));
}

TEST_F(TracedStory, AStartByHandWithAnExchangeServer) {
  creator.server = host->exchange;
  startStandAlone(u"PBX-1");
  EXPECT_THAT(
      traced(),
      ElementsAre(
          R"("event":"start","format":1,"version":"1.0.12","hosted":false,"interactive":true,"exchange":"PBX-1","words":64})",
          R"("event":"created","class":"CalderinProj.cPBXOle","object":1})",
          R"("event":"window","visible":true})"));
}

TEST_F(TracedStory, TheLastReleaseEndsIt) {
  startWithHost();
  automation::put(*layer, u"Visible", true);
  traced();
  layer = nullptr;
  EXPECT_THAT(
      traced(),
      ElementsAre(
          R"("event":"released","object":1})", R"("event":"stops serving"})",
          R"("event":"call","number":12,"object":2,"member":"REGComData","as":"method","arguments":["VORDANE","MOVE","5100,2400"],"references":[1,2]})",
          R"("event":"answer","number":12,"answer":""})", R"("event":"let go","object":2})",
          R"("event":"ends"})"));
  application.reset();
  between.reset();
  EXPECT_THAT(traced(), ElementsAre(R"("event":"end"})"));
}

// An answer that is the exchange server's own, as between processes.
TEST_F(TracedStory, EntriesStandTogether) {
  startWithHost();
  pressTraced(0);
  tickTraced();
  traced();
  const auto record = std::make_shared<cListRequest>();
  record->Tag = u"10";
  for (const std::u16string& entry : oneFault()) record->AddToList(u"LEA0", entry);
  exchange().callBack(record);
  EXPECT_THAT(
      traced(),
      ElementsAre(
          R"("event":"called","number":33,"object":14,"member":"CallBack","as":"method","arguments":[{"object":32}]})",
          R"("event":"call","number":34,"object":32,"member":"LoginID","as":"method or get","arguments":[]})",
          R"("event":"answer","number":34,"answer":""})",
          R"("event":"call","number":35,"object":32,"member":"Count","as":"method or get","arguments":[]})",
          R"("event":"answer","number":35,"answer":4})",
          R"("event":"entries","object":32,"first":0,"entries":[["LEA0","15 MJ MP000","",""],["LEA0","26/11/20 10:15","",""],["LEA0","00","",""],["LEA0","","",""]]})",
          R"("event":"call","number":36,"object":32,"member":"ErrCode","as":"method or get","arguments":[]})",
          R"("event":"answer","number":36,"answer":0})",
          R"("event":"call","number":37,"object":32,"member":"Tag","as":"method or get","arguments":[]})",
          R"("event":"answer","number":37,"answer":"10"})",
          R"("event":"call","number":38,"object":32,"member":"Message","as":"method or get","arguments":[]})",
          R"("event":"answer","number":38,"error":"0x80020006"})",
          R"("event":"call","number":39,"object":32,"member":"Message","as":"method or get","arguments":[]})",
          R"("event":"answer","number":39,"error":"0x80020006"})",
          R"("event":"call","number":40,"object":2,"member":"ShowCode","as":"method","arguments":[0]})",
          R"("event":"answer","number":40,"answer":""})",
          R"("event":"call","number":41,"object":2,"member":"oPBX","as":"method or get","arguments":[]})",
          R"("event":"answer","number":41,"answer":{"object":42}})",
          R"=("event":"call","number":43,"object":42,"member":"LogOut","as":"method","arguments":["PBX-1","(identifier 1)"],"references":[0,1]})=",
          R"("event":"answer","number":43})", R"("event":"let go","object":42})",
          R"("event":"call","number":44,"object":2,"member":"TurnOffFlow","as":"method","arguments":[]})",
          R"("event":"answer","number":44,"answer":""})", R"("event":"timer","milliseconds":100})",
          R"("event":"returned","number":33})", R"("event":"let go","object":32})"));
}

TEST_F(TracedStory, TextsThatMeanHarmStayInTheirPlaces) {
  startWithHost();
  pressTraced(0);
  tickTraced();
  traced();
  const std::u16string harm =
      std::u16string(u"\"}\n{\"at\":\"") + char16_t{0} + char16_t{0xD800} + u"\\u0022";
  const auto record = std::make_shared<cListRequest>();
  record->AddToList(u"LEA0", harm);
  record->AddToList(u"LEA0", std::u16string(1 << 20, u'x'));
  exchange().callBack(record);
  const Lines lines = traced();
  EXPECT_THAT(lines, testing::Contains(testing::EndsWith(
                         R"("first":0,"entries":[["LEA0","\"}\u000a{\"at\":\"\u0000\ud800\\u0022","",""],)"
                         R"(["LEA0",null,null,null]]})")));
  EXPECT_THAT(lines, testing::Contains(testing::EndsWith(R"("answer":{"cut":")" + std::string(65536, 'x') +
                                                         R"(","length":1048576}})")));
  EXPECT_THAT(lines, testing::Contains(testing::EndsWith(R"("first":1,"entries":[[null,null,"",""]]})")));
}

}  // namespace
}  // namespace vordane::trace
