// A control whose messages somebody else hears first.
#include "platform/windows/window/watch.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace vordane::window::win32 {
namespace {

TEST(Watch, AMessageThatFailsIsAnsweredByTheControlItself) {
  Watch watch;
  const HWND control = CreateWindowExW(0, L"STATIC", L"its own text", 0, 0, 0, 10, 10, HWND_MESSAGE, nullptr,
                                       nullptr, nullptr);
  int heard = 0;
  bool fails = true;
  watch.start(control, [&](UINT message, WPARAM wide, LPARAM low) -> LRESULT {
    ++heard;
    if (fails) throw std::runtime_error("no room");
    return message == WM_GETTEXTLENGTH ? 99 : watch.pass(message, wide, low);
  });
  EXPECT_EQ(SendMessageW(control, WM_GETTEXTLENGTH, 0, 0), 12);
  EXPECT_EQ(heard, 1);
  fails = false;
  EXPECT_EQ(SendMessageW(control, WM_GETTEXTLENGTH, 0, 0), 99) << "it is heard all the same";
  DestroyWindow(control);
}

}  // namespace
}  // namespace vordane::window::win32
