// Message boxes over the window, and over nothing while it is hidden.
#include "platform/windows/services/services.h"
#include "windows/window/view_fixture.h"

namespace vordane::window::win32 {
namespace {

struct Seen {
  HWND owner = nullptr;
};
Seen seen;

// Looks at the box as soon as it stands, and answers it.
void CALLBACK lookAtBox(HWND, UINT, UINT_PTR timer, DWORD) {
  const HWND box = FindWindowW(L"#32770", L"Fault List");
  if (box == nullptr || !IsWindowVisible(box)) return;
  KillTimer(nullptr, timer);
  seen.owner = GetWindow(box, GW_OWNER);
  PostMessageW(box, WM_COMMAND, IDOK, 0);
}

class BoxTest : public ViewTest {
 protected:
  int show() {
    seen = Seen();
    SetTimer(nullptr, 0, 10, lookAtBox);
    platform::MessageBoxRequest request;
    request.prompt = u"The report was refused.";
    request.title = u"Fault List";
    request.style = MB_OK;
    return boxes.show(request);
  }
  windows::SystemMessageBoxes boxes{[this] { return view->window(); }, {}};
};

TEST_F(BoxTest, aBoxBelongsToTheWindowThatIsShown) {
  EXPECT_EQ(show(), IDOK);
  EXPECT_EQ(seen.owner, view->window());
}

TEST_F(BoxTest, aBoxOfAHiddenWindowStandsByItself) {
  view->setVisible(false);
  EXPECT_EQ(show(), IDOK);
  EXPECT_EQ(seen.owner, nullptr);
  EXPECT_FALSE(IsWindowVisible(view->window()));
  view->setVisible(true);
  EXPECT_EQ(show(), IDOK);
  EXPECT_EQ(seen.owner, view->window());
}

TEST_F(BoxTest, aBoxWithoutAnOwnerAsksForTheForeground) {
  EXPECT_EQ(windows::SystemMessageBoxes::styleFor(MB_YESNO | MB_ICONQUESTION, nullptr),
            static_cast<int>(MB_YESNO | MB_ICONQUESTION | MB_SETFOREGROUND));
  EXPECT_EQ(windows::SystemMessageBoxes::styleFor(MB_YESNO | MB_ICONQUESTION, view->window()),
            static_cast<int>(MB_YESNO | MB_ICONQUESTION));
}

TEST_F(BoxTest, aBoxWithoutAnyWindowStandsByItself) {
  view->detach();
  EXPECT_EQ(show(), IDOK);
  EXPECT_EQ(seen.owner, nullptr);
}

}  // namespace
}  // namespace vordane::window::win32
