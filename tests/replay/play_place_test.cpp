#include "play_place.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <random>

#include "whole_file.h"

namespace vordane::tools {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::ThrowsMessage;

class PlayPlaceTest : public testing::Test {
 protected:
  PlayPlaceTest() { fs::create_directories(folder); }
  ~PlayPlaceTest() override { fs::remove_all(folder); }
  void write(const fs::path& name, std::string_view text = "x") {
    fs::create_directories((folder / name).parent_path());
    writeFile(folder / name, text);
  }
  const fs::path folder =
      fs::temp_directory_path() / ("vordane-play-" + std::to_string(std::random_device()()));
};

TEST_F(PlayPlaceTest, OneThatHoldsSomethingElseIsRefused) {
  write("notes.txt");
  EXPECT_THAT([&] { takePlace(folder); }, ThrowsMessage<ToolError>(HasSubstr("holds something else")));
  EXPECT_THAT([&] { takePlace(folder / "notes.txt"); }, ThrowsMessage<ToolError>(HasSubstr("is a file")));
  EXPECT_TRUE(fs::exists(folder / "notes.txt"));
}

TEST_F(PlayPlaceTest, WhatAnEarlierPlayLeftGoesAndNothingElse) {
  const PlayPlace place = takePlace(folder / "play");
  write("play/stage/answer-7");
  write("play/texts/VORDANE.LNG");
  write("play/QUILMAR32/38000/ADDINS/DATABASE/FAULT.MDB");
  write("play/mine.txt");
  write("beside.txt");
  takePlace(folder / "play");
  EXPECT_TRUE(fs::is_empty(place.stage()));
  EXPECT_TRUE(fs::is_empty(place.texts()));
  EXPECT_TRUE(fs::is_empty(place.suite().root));
  EXPECT_TRUE(fs::exists(folder / "play" / "mine.txt"));
  EXPECT_TRUE(fs::exists(folder / "beside.txt"));
}

TEST_F(PlayPlaceTest, OneThatLeadsElsewhereIsRefused) {
  takePlace(folder / "play");
  write("else/kept.txt");
  fs::remove(folder / "play" / "stage");
  fs::create_directory_symlink(folder / "else", folder / "play" / "stage");
  EXPECT_THAT([&] { takePlace(folder / "play"); }, ThrowsMessage<ToolError>(HasSubstr("leads elsewhere")));
  EXPECT_TRUE(fs::exists(folder / "else" / "kept.txt"));
}

TEST_F(PlayPlaceTest, TheFilesOfAProcessAreOneTrace) {
  write("trace-20261123-064512-aaaaaaaa-0001.jsonl", "a1\r\na2\n");
  write("trace-20261123-064513-bbbbbbbb-0001.jsonl", "b1\nhalf");
  write("trace-20261123-064514-aaaaaaaa-0002.jsonl", "a3\n");
  write("trace-notes.jsonl");
  write("other.txt");
  const auto traces = readTraces(folder);
  ASSERT_EQ(traces.size(), 2U);
  EXPECT_EQ(traces[0].name, "trace-20261123-064512-aaaaaaaa-0001.jsonl");
  EXPECT_THAT(traces[0].lines, ElementsAre("a1", "a2", "a3"));
  EXPECT_THAT(traces[1].lines, ElementsAre("b1", "half"));
  EXPECT_THAT(readTraces(folder / "other.txt").at(0).lines, ElementsAre("x"));
  fs::create_directories(folder / "empty");
  EXPECT_THAT([&] { readTraces(folder / "empty"); },
              ThrowsMessage<ToolError>(HasSubstr("no trace lies in this folder")));
}

TEST_F(PlayPlaceTest, ScenarioAndScriptAreWrittenAndAnEarlierTraceGoes) {
  const PlayPlace place = takePlace(folder / "play");
  write("play/QUILMAR32/38000/QUIL32/DATABASE/Schedule.mdb");
  write("play/trace/trace-20261123-064512-aaaaaaaa-0001.jsonl");
  write("play/stage/host-7");
  write("play/stage/Zulsim.exe");
  write("play/texts/VORDANE.LNG");
  replay::Play play;
  play.scenario = "exchange *\n";
  play.script = "when end\n";
  play.jobs = {{3, true, 2, true}, {3, false, 9, true}};
  writePlay(place, play);
  EXPECT_EQ(readFile(place.scenario()), "exchange *\n");
  EXPECT_EQ(readFile(place.script()), "when end\n");
  EXPECT_TRUE(fs::is_empty(place.trace()));
  EXPECT_FALSE(fs::exists(place.stage() / "host-7"));
  EXPECT_TRUE(fs::exists(place.simulator()));
  EXPECT_TRUE(fs::exists(place.texts() / "VORDANE.LNG"));
  EXPECT_THAT(readFile(place.suite().schedule()), testing::StartsWith("SQLite format 3"));
}

}  // namespace
}  // namespace vordane::tools
