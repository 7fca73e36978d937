// How much is done for a known list, not how long it takes: statements prepared, rows the engine hands over,
// calls that cross a process, allocations. A number here grows only when somebody means it to.
#include "startup/story.h"
#include "trace/traced_station.h"
#include "work/counting.h"

namespace vordane::startup {
namespace {

using work::counted;
using work::Work;

constexpr std::size_t faults = 1000;

std::vector<std::u16string> listOf(std::size_t count) {
  std::vector<std::u16string> entries;
  for (std::size_t i = 0; i < count; ++i) {
    const auto two = [](std::size_t n) { return text::decimalPadded(static_cast<std::int64_t>(n), 2); };
    entries.push_back(i % 2 == 0 ? u"15 MJ MP000" : u"01 MN LP 0C");
    entries.push_back(u"26/11/" + two(1 + i / 60 % 28) + u" 10:" + two(i % 60));
    entries.push_back(two(i % 90) + u" 01 02 " + two(i / 90));
    entries.push_back(u"");
  }
  return entries;
}

class WorkTest : public Story {
 protected:
  // From the answer to the refreshed window.
  Work takeIn(std::size_t count) {
    pressAndTick(0);
    const auto record = exchange().record(0, listOf(count));
    recordCalls = 0;
    record->broken = [this](std::u16string_view) { return ++recordCalls == 0; };
    trace.clear();
    exchange().callBack(record);
    outgoing = calls();
    const Work before = counted;
    tick();
    const Work used{counted.prepared - before.prepared, counted.rows - before.rows,
                    counted.allocations - before.allocations, 0, 0};
    exchange().answerLamps(u"00");
    tick();
    return used;
  }
  // Lines in round brackets are the window's own, boxes no calls.
  std::size_t calls() {
    const Lines lines = taken();
    return static_cast<std::size_t>(std::count_if(lines.begin(), lines.end(), [](const std::string& line) {
      return line.front() != '(' && !line.starts_with("Box ");
    }));
  }

  std::size_t recordCalls = 0, outgoing = 0;
};

TEST_F(WorkTest, AnAnswerIsReadOnce) {
  startWithHost();
  takeIn(faults);
  EXPECT_EQ(recordCalls, 4 * 4 * faults + 7) << "four values for each entry, and seven of the record";
  EXPECT_EQ(outgoing, 4U) << "two messages, the log-out, the flow";
}

TEST_F(WorkTest, AListCostsNoStatementForEachFault) {
  startWithHost();
  takeIn(1);  // makes the exchange
  takeIn(2);  // its first list is the last to meet statements that nobody prepared
  const Work few = takeIn(3), added = takeIn(faults), again = takeIn(faults);
  EXPECT_EQ(added.prepared, few.prepared);
  EXPECT_EQ(again.prepared, few.prepared);
  EXPECT_LE(few.prepared, 2U) << "reading the keys of the shown exchange again would be one more";
}

TEST_F(WorkTest, AListReadsTheRowsThatAreAlike) {
  startWithHost();
  takeIn(1);
  const Work none = takeIn(1), added = takeIn(faults), again = takeIn(faults);
  EXPECT_LE(added.rows, none.rows) << "the one fault that is stored already, and the exchange's own rows";
  EXPECT_EQ(again.rows, none.rows + faults - 1);
}

TEST_F(WorkTest, AFaultCostsAFewAllocations) {
  startWithHost();
  takeIn(1);
  takeIn(2);
  const Work small = takeIn(100), added = takeIn(faults), again = takeIn(faults);
  EXPECT_LE((added.allocations - small.allocations) / (faults - 100), 12U);
  EXPECT_LE(again.allocations / faults, 8U);
}

// Settings that say nothing, and cost nothing.
class NoSettings final : public platform::SettingsStore {
 public:
  std::optional<std::u16string> read(std::u16string_view, std::u16string_view, std::u16string_view) override {
    ++asked;
    return {};
  }
  void write(std::u16string_view, std::u16string_view, std::u16string_view, std::u16string_view) override {}
  int asked = 0;
};

using TraceTest = WorkTest;

TEST_F(TraceTest, OneThatNobodyAskedForIsNotThere) {
  NoSettings user, everybody;
  const Workstation station{user,   clock, files,    creator, boxes,  documents,
                            engine, view,  pictures, process, events, program};
  const std::size_t before = counted.allocations;
  const auto traced = trace::traceAsWished(station, everybody);
  EXPECT_EQ(counted.allocations, before);
  EXPECT_EQ(traced, nullptr) << "nothing stands in front of the workstation";
  EXPECT_EQ(user.asked + everybody.asked, 2) << "each is asked whether, and no more";
}

TEST_F(TraceTest, OneThatIsAskedForIsThere) {
  settings.write(u"VORDANE", u"Trace", u"On", u"1");
  settings.write(u"VORDANE", u"Trace", u"Folder", (engine.folder() / "trace").u16string());
  NoSettings everybody;
  const Workstation station{settings, clock, files,    creator, boxes,  documents,
                            engine,   view,  pictures, process, events, program};
  const auto traced = trace::traceAsWished(station, everybody);
  ASSERT_NE(traced, nullptr);
  EXPECT_NE(&traced->station().boxes, &station.boxes);
  EXPECT_NE(&traced->station().engine, &station.engine);
  EXPECT_EQ(&traced->station().files, &station.files);
  EXPECT_EQ(everybody.asked, 0);
}

}  // namespace
}  // namespace vordane::startup
