#include "trace/recorder.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <mutex>

#include "fakes/memory_folder.h"
#include "fakes/scripted_object.h"
#include "trace/traced_station.h"

namespace vordane::trace {
namespace {

constexpr Moment moment = 1'795'416'312'345'678;
#define AT R"({"at":"2026-11-23T06:45:12.345678Z",)"
#define END \
  "}"       \
  "\n"

// Holds the thread that writes inside of a writing, as a disk does that does not answer.
class Gate {
 public:
  void pass() {
    std::unique_lock<std::mutex> lock(mutex_);
    reached_ = true;
    changed_.notify_all();
    changed_.wait(lock, [this] { return open_; });
  }
  void waitUntilReached() {
    std::unique_lock<std::mutex> lock(mutex_);
    changed_.wait(lock, [this] { return reached_; });
  }
  void open() {
    const std::lock_guard<std::mutex> lock(mutex_);
    open_ = true;
    changed_.notify_all();
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool reached_ = false, open_ = false;
};

class GatedFolder final : public Folder {
 public:
  GatedFolder(std::shared_ptr<Gate> gate, std::shared_ptr<fakes::MemoryFolderState> state)
      : gate_(std::move(gate)), folder_(std::move(state)) {}
  std::vector<StoredFile> files() override { return folder_.files(); }
  bool append(const std::string& name, std::string_view bytes) override {
    if (gate_) gate_->pass();
    return folder_.append(name, bytes);
  }
  bool remove(const std::string& name) override { return folder_.remove(name); }
  std::uint64_t room() override { return folder_.room(); }

 private:
  std::shared_ptr<Gate> gate_;
  fakes::MemoryFolder folder_;
};

class Recording : public testing::Test {
 protected:
  void start(std::size_t ringBytes = Recorder::usualRing, std::shared_ptr<Gate> gate = nullptr) {
    recorder = record(
        std::make_unique<GatedFolder>(std::move(gate), held), {}, [] { return moment; }, ringBytes);
  }
  std::string written() {
    recorder->flush();
    return folder.all();
  }

  std::shared_ptr<fakes::MemoryFolderState> held = std::make_shared<fakes::MemoryFolderState>();
  fakes::MemoryFolderState& folder = *held;
  std::shared_ptr<Recorder> recorder;
};

TEST_F(Recording, EachValueHasAFormOfItsOwn) {
  start();
  const auto object = std::make_shared<fakes::ScriptedObject>();
  recorder->name(*object, 5);
  recorder->tell("values", [&](Line& line) {
    line.value("empty", automation::Empty{})
        .value("null", automation::Null{})
        .value("left", automation::Missing{});
    line.value("yes", true).value("byte", std::uint8_t{255}).value("integer", std::int16_t{-3});
    line.value("long", std::int32_t{-2147483647 - 1}).value("single", 0.5F).value("double", 1e300);
    line.value("none", std::numeric_limits<double>::quiet_NaN()).value("text", std::u16string(u"a\"b"));
    line.value("date", automation::Date{46349.5}).value("nothing", automation::ObjectRef{});
    line.value("object", automation::ObjectRef(object));
  });
  EXPECT_EQ(written(),
            AT R"("event":"values","empty":{"is":"Empty"},"null":{"is":"Null"},"left":{"is":"Missing"},)"
               R"("yes":true,"byte":255,"integer":-3,"long":-2147483648,"single":0.5,"double":1e+300,)"
               R"("none":{"is":"no number"},"text":"a\"b","date":{"date":"2026-11-23 12:00:00"},)"
               R"("nothing":{"is":"Nothing"},"object":{"object":5})" END);
}

TEST_F(Recording, OfALongTextThereIsTheBeginning) {
  start();
  recorder->tell("long", [&](Line& line) {
    line.text("fits", std::u16string(Recorder::longestText, u'a'))
        .text("long", std::u16string(1 << 20, u'b'));
  });
  EXPECT_EQ(written(), AT R"("event":"long","fits":")" + std::string(65536, 'a') + R"(","long":{"cut":")" +
                           std::string(65536, 'b') + R"(","length":1048576})" END);
}

TEST_F(Recording, EntriesStandInOneLineUntilAnotherEventComes) {
  start();
  for (std::int16_t i = 0; i < 2; ++i)
    for (int column = 0; column < 4; ++column) recorder->entry(3, column, i, u"x");
  recorder->tell("other", [](Line&) {});
  recorder->entry(3, 0, 2, u"y");
  EXPECT_EQ(written(), AT
            R"("event":"entries","object":3,"first":0,"entries":[["x","x","x","x"],["x","x","x","x"]])" END AT
            R"("event":"other")" END AT
            R"("event":"entries","object":3,"first":2,"entries":[["y",null,null,null]])" END);
}

// The one that traces never waits for the one that writes.
TEST_F(Recording, WhatFindsNoRoomIsLeftOutAndCounted) {
  const auto gate = std::make_shared<Gate>();
  start(1024, gate);
  recorder->tell("first", [](Line&) {});
  gate->waitUntilReached();
  for (int i = 0; i < 100; ++i) recorder->tell("many", [](Line&) {});
  for (std::int16_t i = 0; i < 100; ++i) recorder->entry(3, 0, i, u"x");
  recorder->tell("many", [](Line&) {});
  gate->open();
  recorder->flush();
  recorder->tell("last", [](Line&) {});
  const std::string all = written();
  const auto counted = [&](std::string_view part) {
    std::size_t count = 0;
    for (std::size_t at = all.find(part); at != all.npos; at = all.find(part, at + 1)) ++count;
    return count;
  };
  const std::size_t many = counted(R"("many")");
  EXPECT_GT(many, 0U);
  EXPECT_LT(many, 100U);
  EXPECT_EQ(counted(R"(["x",)"), 0U);
  const std::string count = std::to_string(201 - many);
  EXPECT_EQ(counted(AT R"("event":"left out","why":"too fast","count":)" + count + "}"), 1U) << all;
  EXPECT_EQ(counted(R"("last")"), 1U);
}

TEST_F(Recording, ALineThatCanNeverFitIsLeftOut) {
  start(1024);
  recorder->tell("long", [](Line& line) { line.text("text", std::u16string(2000, u'x')); });
  recorder->tell("next", [](Line&) {});
  EXPECT_EQ(written(), AT R"("event":"left out","why":"too fast","count":1)" END AT R"("event":"next")" END);
}

TEST_F(Recording, ADiskThatDoesNotAnswerHoldsNobodyUp) {
  const auto gate = std::make_shared<Gate>();
  start(Recorder::usualRing, gate);
  recorder->tell("first", [](Line&) {});
  gate->waitUntilReached();
  recorder.reset();  // returns all the same
  EXPECT_EQ(folder.all(), "");
  gate->open();
}

}  // namespace
}  // namespace vordane::trace
