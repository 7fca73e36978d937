// A newer list that another station has stored: when it is told, and that looking for it changes nothing.
#include "store/newer_list.h"

#include "fakes/memory_arrivals.h"
#include "store/store_fixture.h"

namespace vordane::store {
namespace {

using testing::HasSubstr;
using testing::Not;
using Shown = NewerList::Shown;

class NewerListRule : public testing::Test {
 protected:
  NewerListRule() {
    store->listed = {{1, u"monday"}, {2, u"monday"}};
    store->add(1, 3);
    store->add(2, 2);
  }
  // As the window does while it can be seen; the same display is asked for each time.
  bool ask() {
    return rule.ask(shown, [this] { return store; });
  }
  void showAnew() {
    shown->listed = store->listed[shown->exchange];
    ++shown->display;
  }

  std::shared_ptr<fakes::MemoryArrivals> store = std::make_shared<fakes::MemoryArrivals>();
  std::optional<Shown> shown = Shown{1, u"PBX-1", u"monday", 1};
  NewerList rule;
};

TEST_F(NewerListRule, WhileNothingComesNothingIsTold) {
  for (int times = 1; times < 4; ++times) {
    EXPECT_FALSE(ask());
    EXPECT_EQ(store->questions, times) << "one question each time";
  }
  EXPECT_EQ(rule.pause(), std::chrono::seconds(4));
}

TEST_F(NewerListRule, ANewerTimeIsToldOnceAndNotAskedForAgain) {
  ask();
  store->listed[1] = u"tuesday";
  EXPECT_TRUE(ask());
  EXPECT_FALSE(ask());
  EXPECT_EQ(store->questions, 2);
  showAnew();
  EXPECT_FALSE(ask());
  store->listed[1] = u"wednesday";
  EXPECT_TRUE(ask());
}

TEST_F(NewerListRule, WhatWasStoredBeforeTheFirstQuestionIsToldToo) {
  store->listed[1] = u"tuesday";
  EXPECT_TRUE(ask());
}

TEST_F(NewerListRule, AListThatComesInPiecesIsToldAgain) {
  ask();
  store->listed[1] = u"tuesday";
  store->add(1);
  EXPECT_TRUE(ask());
  showAnew();
  EXPECT_FALSE(ask());
  store->add(1);
  EXPECT_TRUE(ask()) << "its time is shown already, its last faults are not";
}

TEST_F(NewerListRule, OtherExchangesListsAreNotTold) {
  ask();
  store->listed[2] = u"tuesday";
  store->add(2, 2);
  EXPECT_FALSE(ask());
  shown = Shown{2, u"PBX-2", u"monday", 2};
  EXPECT_TRUE(ask());
}

TEST_F(NewerListRule, NoFaultIsLookedAtTwice) {
  ask();
  store->add(2, 2);
  ask();
  EXPECT_EQ(store->mark, 5) << "what was there when it was shown";
  ask();
  EXPECT_EQ(store->mark, 7);
}

TEST_F(NewerListRule, AnExchangeThatSomebodyHasDeletedSaysNothing) {
  ask();
  store->listed.erase(1);
  EXPECT_FALSE(ask());
}

TEST_F(NewerListRule, WithoutAnExchangeOrAnAnswerNothingIsAsked) {
  shown.reset();
  EXPECT_FALSE(ask());
  EXPECT_EQ(store->questions, 0);
  shown = Shown{1, u"PBX-1", u"sunday", 2};
  EXPECT_FALSE(rule.ask(shown, [] { return nullptr; })) << "a store that can't tell";
}

TEST_F(NewerListRule, AFailureSaysNothingAndTheNextQuestionsComeLater) {
  store->fails = true;
  for (const int seconds : {15, 30, 60, 120, 240, 240}) {
    EXPECT_FALSE(ask());
    EXPECT_EQ(rule.pause(), std::chrono::seconds(seconds));
  }
  EXPECT_FALSE(rule.ask(
      shown, []() -> std::shared_ptr<database::Arrivals> { throw database::DatabaseError(3260, u""); }));
  store->fails = false;
  EXPECT_FALSE(ask());
  EXPECT_EQ(rule.pause(), std::chrono::seconds(4));
  store->listed[1] = u"tuesday";
  store->fails = true;
  ask();
  store->fails = false;
  EXPECT_TRUE(ask()) << "nothing is lost by a failure";
}

TEST_F(NewerListRule, AfterAFailureAnotherDisplayBeginsAnew) {
  store->fails = true;
  ask();
  ask();
  showAnew();
  ask();
  EXPECT_EQ(rule.pause(), std::chrono::seconds(15));
  store->fails = false;
  showAnew();
  ask();
  EXPECT_EQ(rule.pause(), std::chrono::seconds(4));
}

// --- in the window, over a file that another station writes into

class NewerListShown : public StoreTest {
 protected:
  NewerListShown() {
    form.shared.Messages[message::statusNewerList] = u"newer of {1}";
    id = addExchange(u"PBX-1", u"2026-11-20 10:00:00");
    addFault(id, {});
    store.RefreshDisplay();
    store.lookForNewerList();
  }
  void another() {  // station takes in a list
    const auto station = file.open();
    const auto row = station->openRecordset(findExchange(u"PBX-1"));
    row->edit();
    row->set(u"TimeStamp", std::u16string(u"2026-11-20 11:00:00"));
    row->update();
  }
  std::string line() { return text::toUtf8(form.memoryView.status[window::accountPart]); }
  static constexpr const char* said = "newer of PBX-1\n";

  std::int16_t id = 0;
};

TEST_F(NewerListShown, TheStatusLineSaysSoUntilItIsShown) {
  EXPECT_THAT(line(), Not(HasSubstr(said)));
  another();
  store.lookForNewerList();
  EXPECT_THAT(line(), testing::StartsWith(said));
  EXPECT_EQ(form.window.control(u"txtTimeTag").text(u"Text"), u"20.11.2026 10:00:00");
  store.lookForNewerList();
  EXPECT_THAT(line(), testing::StartsWith(said));
  store.exchangeListClicked();
  EXPECT_THAT(line(), Not(HasSubstr(said)));
  EXPECT_EQ(form.window.control(u"txtTimeTag").text(u"Text"), u"20.11.2026 11:00:00");
  store.lookForNewerList();
  EXPECT_THAT(line(), Not(HasSubstr(said)));
}

TEST_F(NewerListShown, EachPieceOfAListIsToldWhenTheOneBeforeItIsShown) {
  for (int piece = 0; piece < 3; ++piece) {
    addFault(id, {});
    store.lookForNewerList();
    EXPECT_THAT(line(), testing::StartsWith(said)) << piece;
    store.exchangeListClicked();
    store.lookForNewerList();
    EXPECT_THAT(line(), Not(HasSubstr(said))) << piece;
  }
}

TEST_F(NewerListShown, SortingShowsItToo) {
  another();
  store.lookForNewerList();
  store.headingClicked(0);
  EXPECT_THAT(line(), Not(HasSubstr(said)));
  store.lookForNewerList();
  EXPECT_THAT(line(), Not(HasSubstr(said)));
}

TEST_F(NewerListShown, LookingRunsNoStatementAndCallsNobody) {
  database->statements.clear();
  form.trace.clear();
  const int rowsSet = form.memoryView.rowsSet, batches = database->batches;
  another();
  store.lookForNewerList();
  store.lookForNewerList();
  EXPECT_THAT(line(), testing::StartsWith(said));
  EXPECT_THAT(database->statements, testing::IsEmpty());
  EXPECT_THAT(form.trace, testing::IsEmpty());
  EXPECT_EQ(form.memoryView.rowsSet, rowsSet);
  EXPECT_EQ(database->batches, batches);
}

TEST_F(NewerListShown, AnEmptiedDisplaySaysNothingOfIt) {
  another();
  store.lookForNewerList();
  database->before = [](std::u16string_view) { throw database::DatabaseError(3049, u"damaged"); };
  store.RefreshDisplay();
  status::showLine(form.memoryView, form.status);
  EXPECT_THAT(line(), Not(HasSubstr(said)));
  store.lookForNewerList();
  EXPECT_THAT(line(), Not(HasSubstr(said)));
}

TEST_F(NewerListShown, WithoutADatabaseNothingIsAsked) {
  store.close();
  form.database.reset();
  EXPECT_EQ(store.lookForNewerList(), NewerList::betweenQuestions);
  EXPECT_THAT(form.trace, Not(testing::Contains(HasSubstr("not open"))));
}

// While the store is waited for the window paints, from the rows it has.
TEST_F(NewerListShown, AStoreThatAnswersSlowlyIsPaintedOver) {
  form.memoryView.paintNow();
  const std::size_t painted = form.memoryView.painted.size();
  form.setClock.secondsPerLook = 1;
  database->beforeArrivals = [this] { database->progress(0, 0); };
  store.lookForNewerList();
  EXPECT_EQ(form.memoryView.painted.size(), painted + 1);
  EXPECT_EQ(form.memoryView.screen, std::vector<std::u16string>{u"text"});
  EXPECT_FALSE(database->progress);
}

}  // namespace
}  // namespace vordane::store
