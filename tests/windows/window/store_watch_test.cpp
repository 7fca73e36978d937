// The timer that looks whether others have stored something newer than is shown.
#include "windows/window/view_fixture.h"

namespace vordane::window::win32 {
namespace {

class StoreWatchTest : public ViewTest {
 protected:
  void SetUp() override {
    ViewTest::SetUp();
    ASSERT_TRUE(pumpUntil([&] { return events.looks > 0; })) << "soon after the rows were shown";
  }
};

TEST_F(StoreWatchTest, ComesAgainWhenTheFormSays) {
  pump(100);
  EXPECT_EQ(events.looks, 1) << "in a minute, the form says";
  events.nextLook = std::chrono::milliseconds(1);
  view->setRows(&rows);
  EXPECT_TRUE(pumpUntil([&] { return events.looks > 3; }));
}

TEST_F(StoreWatchTest, RestsWhileAnAnswerIsWaitedForAndGoesOnBehindIt) {
  events.use = ListUse::later;
  events.nextLook = std::chrono::milliseconds(1);
  view->setRows(&rows);
  pump(700);
  EXPECT_EQ(events.looks, 1);
  events.use = ListUse::now;
  EXPECT_TRUE(pumpUntil([&] { return events.looks > 1; }));
}

TEST_F(StoreWatchTest, RestsWhileNobodySeesTheWindow) {
  events.nextLook = std::chrono::milliseconds(1);
  view->setVisible(false);
  view->setRows(&rows);
  pump(700);
  EXPECT_EQ(events.looks, 1);
  view->setVisible(true);
  EXPECT_TRUE(pumpUntil([&] { return events.looks > 1; }));
  ShowWindow(view->window(), SW_MINIMIZE);
  pump();
  const int before = events.looks;
  pump(700);
  EXPECT_EQ(events.looks, before);
  ShowWindow(view->window(), SW_RESTORE);
  EXPECT_TRUE(pumpUntil([&] { return events.looks > before; }));
}

TEST_F(StoreWatchTest, WhereNobodySitsThereIsNone) {
  events.use = ListUse::never;
  events.nextLook = std::chrono::milliseconds(1);
  view->setRows(&rows);
  pump(700);
  events.use = ListUse::now;
  pump(700);
  EXPECT_EQ(events.looks, 1) << "not before rows are shown again";
  view->setRows(&rows);
  EXPECT_TRUE(pumpUntil([&] { return events.looks > 1; }));
}

TEST_F(StoreWatchTest, AWindowThatGoesDuringTheQuestionIsAskedNoMore) {
  events.onLook = [&] { view->detach(); };
  view->setRows(&rows);
  EXPECT_TRUE(pumpUntil([&] { return view->window() == nullptr; }));
  pump(100);
  EXPECT_EQ(events.looks, 2);
}

TEST_F(StoreWatchTest, F5GoesToTheFormAndToNobodyElse) {
  key(item(idGrid), VK_F5);
  pump();
  EXPECT_EQ(events.keys, std::vector<int>{116});
  events.use = ListUse::now;
  view->setInputEnabled(false);
  key(item(idGrid), VK_F5);
  pump();
  EXPECT_EQ(events.keys, std::vector<int>{116}) << "while a request waits the window's own keys are dead";
}

}  // namespace
}  // namespace vordane::window::win32
