// How often a station waits for its server: what a network far away makes of a step is its round trips.
#include "database/contract.h"
#include "odbc/proxy.h"
#include "odbc/server_story.h"

namespace vordane::startup {
namespace {

class RoundTrips : public ServerStory {
 protected:
  RoundTrips() {
    // A busy machine shall not make a step save in between.
    useServer({.longestUnsavedMilliseconds = 3'600'000}, sources_.writeThrough(wire_.folder(), store_));
    startWithHost();
    fetch(faults(0, 5));
    form().input().exchangeChosen(0);
    form().input().lookAtStore();
    view.rows->row(0);  // every question has been asked once now: the driver keeps them prepared
  }
  int of(const std::function<void()>& step) {
    wire_.breakAt(odbc::Proxy::Breakage::none, 0);
    step();
    return wire_.roundTrips();
  }
  struct Trips {
    int untilSaved, ofDisplay;
  };
  // Takes a list in; its lamps are another step.
  Trips ofList(const std::vector<std::u16string>& list) {
    pressAndTick(0);
    exchange().answer(0, list);
    const int all = of([&] { tick(); });
    const int untilSaved = wire_.roundTripsUntilSaved();
    exchange().answerLamps(u"00");
    tick();
    return {untilSaved, all - untilSaved};
  }
  // All different.
  static std::vector<std::u16string> manyFaults(int count) {
    std::vector<std::u16string> entries;
    for (int i = 0; i < count; ++i)
      for (const std::u16string& entry :
           {std::u16string(u"15 MJ MP000"),
            u"26/11/" + text::decimalPadded(1 + i / 1440, 2) + u" " + text::decimalPadded(i / 60 % 24, 2) +
                u":" + text::decimalPadded(i % 60, 2),
            std::u16string(u"00"), std::u16string()})
        entries.push_back(entry);
    return entries;
  }

  odbc::Proxy wire_;
};

TEST_F(RoundTrips, OfALongListAreFew) {
  const auto list = manyFaults(8000);
  const Trips ofNew = ofList(list);
  EXPECT_LE(ofNew.untilSaved, 40);
  EXPECT_THAT(text::toUtf8(view.status[0]),
              testing::HasSubstr("8000 received, 8000 new, 0 stored, 0 refused"));
  EXPECT_EQ(ask("select count(*)::text from vordane.\"FaultDisplay\""), "8005");
  const Trips ofKnown = ofList(list);
  EXPECT_LE(ofKnown.untilSaved, 10);
  EXPECT_LE(ofKnown.ofDisplay, 6) << "the exchanges, what is new of each, a choice";
  EXPECT_LE(ofNew.ofDisplay, 6);
  EXPECT_THAT(text::toUtf8(view.status[0]),
              testing::HasSubstr("8000 received, 0 new, 8000 stored, 0 refused"));
  EXPECT_EQ(ask("select count(*)::text from vordane.\"FaultDisplay\""), "8005");
  std::printf("round trips: %d of 8,000 new faults, %d of 8,000 known ones, %d of the display behind them\n",
              ofNew.untilSaved, ofKnown.untilSaved, ofKnown.ofDisplay);
}

TEST_F(RoundTrips, OfAChoiceAndAScreenAreFew) {
  const int ofChoice = of([&] { form().input().exchangeChosen(0); });
  EXPECT_LE(ofChoice, 5);
  std::printf("round trips: %d of a choice\n", ofChoice);
  EXPECT_EQ(of([&] { view.rows->row(0); }), 1);
  EXPECT_EQ(of([&] { view.rows->row(4); }), 0) << "of the same screen";
  EXPECT_EQ(of([&] { view.rows->note(view.rows->row(4)->count); }), 0) << "its notes have come with it";
}

TEST_F(RoundTrips, OfTheLookForANewerListIsOne) {
  EXPECT_EQ(of([&] { form().input().lookAtStore(); }), 1);
}

}  // namespace
}  // namespace vordane::startup
