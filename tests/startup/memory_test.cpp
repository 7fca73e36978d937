// An answer meets an end of memory at every single place in turn: the conversation ends all the same, and the
// same objects go on.
#include <cstdlib>
#include <new>

#include "startup/story.h"

namespace {

long allocationsLeft = -1;  // until one fails; below 0 none does
bool failsFromThenOn = false;
bool failed = false;
int outside = 0;  // above 0 it is another process that allocates

bool starves() {
  if (outside > 0 || allocationsLeft < 0) return false;
  if (allocationsLeft > 0) {
    --allocationsLeft;
    return false;
  }
  if (!failsFromThenOn) allocationsLeft = -1;
  return failed = true;
}

}  // namespace

void* operator new(std::size_t size) {
  void* const memory = starves() ? nullptr : std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}

namespace vordane::startup {
namespace {

using namespace std::string_literals;

// An object of another process, which has memory of its own.
class Outside : public automation::Object {
 public:
  explicit Outside(automation::ObjectRef object) : object_(std::move(object)) {}
  automation::Value invoke(std::u16string_view member, automation::CallKind kind,
                           std::span<automation::Argument> arguments) override {
    const Elsewhere elsewhere;
    return object_->invoke(member, kind, arguments);
  }

 private:
  struct Elsewhere {
    Elsewhere() { ++outside; }
    ~Elsewhere() { --outside; }
  };
  automation::ObjectRef object_;
};

class MemoryRunsOut : public Story {
 protected:
  MemoryRunsOut() {
    host->on(u"oPBX", [this](auto) {
      return automation::Value(automation::ObjectRef(std::make_shared<Outside>(host->exchange)));
    });
    exchange().loginAnswer = u"LOGIN-0001"s;  // longer than a text can be without memory of its own
  }
  void startOutside() {
    start();
    layer = createLayer();
    automation::call(*layer, u"RegisterPBX",
                     {automation::byVal(u"EXCHANGE-1"s),
                      automation::byVal(automation::ObjectRef(std::make_shared<Outside>(host))),
                      automation::byVal(std::int16_t{7})});
  }
  // The answer to the request under way; the allocation behind the next `n` fails. False when there were not
  // as many.
  bool answerWithMemoryFor(long n, bool lasting) {
    EXPECT_EQ(view.timer, 0);
    EXPECT_FALSE(view.inputEnabled);
    const auto answer = std::make_shared<Outside>(exchange().record(0, oneFault()));
    trace.clear();
    trace.reserve(100);  // what the window does takes no memory
    failsFromThenOn = lasting;
    failed = false;
    allocationsLeft = n;
    form().CallBack(answer);
    allocationsLeft = -1;
    return failed;
  }
  std::ptrdiff_t times(const char* line) { return std::count(trace.begin(), trace.end(), line); }
  void expectConcluded() {
    EXPECT_EQ(times("LogOut EXCHANGE-1& LOGIN-0001&"), 1);
    EXPECT_EQ(times("TurnOffFlow"), 1);
    expectFree();
  }
  void expectFree() {
    EXPECT_TRUE(view.inputEnabled);
    EXPECT_FALSE(view.hourglass);
  }
  void acknowledge() {
    tick();
    exchange().answerLamps(u"00");
    tick();
  }
};

TEST_F(MemoryRunsOut, InAnAnswerAndTheNextRequestWorks) {
  startOutside();
  int lost = 0;
  for (long n = 0;; ++n) {
    SCOPED_TRACE(n);
    pressAndTick(0);
    ASSERT_TRUE(state.busy);
    const bool metTheEnd = answerWithMemoryFor(n, false);
    expectConcluded();
    if (view.timer == 0) {
      ++lost;
      EXPECT_FALSE(state.busy);
      EXPECT_EQ(view.notice, u"EXCHANGE-1: no memory");
    } else {
      EXPECT_EQ(form().session().response().Count(), 4) << "nothing that was not read is acknowledged";
      EXPECT_EQ(form().session().response().FirstData(0), oneFault()[0]);
      acknowledge();
    }
    if (HasFailure()) return;
    if (!metTheEnd) break;
  }
  EXPECT_GT(lost, 10);
  EXPECT_EQ(view.rows->size(), 1U);
  EXPECT_FALSE(state.busy);
}

TEST_F(MemoryRunsOut, ForGoodInAnAnswerAndNobodyIsKeptOut) {
  startOutside();
  for (long n = 0;; ++n) {
    SCOPED_TRACE(n);
    pressAndTick(0);
    ASSERT_TRUE(state.busy) << "there is memory again";
    const bool metTheEnd = answerWithMemoryFor(n, true);
    expectFree();
    EXPECT_EQ(state.busy, view.timer != 0) << "either over or going on";
    if (view.timer != 0) acknowledge();
    if (HasFailure()) return;
    if (!metTheEnd) break;
  }
  EXPECT_EQ(view.rows->size(), 1U);
}

TEST_F(MemoryRunsOut, InAnAnswerOfARunAndTheNextOneWorks) {
  startOutside();
  EXPECT_EQ(runSchedule(u"11"), 0);
  for (long n = 0;; ++n) {
    SCOPED_TRACE(n);
    tick();  // the step
    tick();  // the request
    const bool metTheEnd = answerWithMemoryFor(n, false);
    expectConcluded();
    EXPECT_EQ(view.timer, 100) << "the run goes on in any case";
    EXPECT_TRUE(state.busy);
    if (!metTheEnd) break;
    if (form().session().response().Count() == 4 && view.notice.find(u"no memory") == view.notice.npos)
      acknowledge();
    if (HasFailure()) return;
  }
  acknowledge();
  EXPECT_EQ(view.rows->size(), 1U);
  callInteger(u"CancelSchedule");
  EXPECT_EQ(log().back(), "...");
}

}  // namespace
}  // namespace vordane::startup
