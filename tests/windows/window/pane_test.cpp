// The pane below the grid: its picture, and the marks that lead from a value to its data.
#include <richedit.h>

#include "platform/windows/window/detail_pane.h"
#include "windows/window/pictures.h"
#include "windows/window/view_fixture.h"

namespace vordane::window::win32 {
namespace {

TEST_F(ViewTest, thePaneShowsItsPictureAroundATextThatStaysReadable) {
  const auto paneGround = [&] {
    const auto plain = static_cast<LPARAM>(currentPalette().surface);
    const LRESULT ground = SendMessageW(item(idPane), EM_SETBKGNDCOLOR, 0, plain);  // answers the one before
    SendMessageW(item(idPane), EM_SETBKGNDCOLOR, 0, ground);
    return static_cast<COLORREF>(ground);
  };
  const COLORREF plain = paneGround();
  Control& picture = form.control(u"imgDetail");
  picture.set(u"Picture", pictureOfPoints({RGB(0, 0, 255)}));
  pump();
  const COLORREF blue = paneGround();
  EXPECT_GT(GetBValue(blue), GetRValue(blue) + 50);
  EXPECT_GT(GetRValue(blue), 100) << "washed, so that dark text stays readable";
  picture.set(u"Visible", false);
  pump();
  EXPECT_EQ(paneGround(), plain);
  picture.set(u"Visible", true);
  pump();
  EXPECT_EQ(paneGround(), blue);
  picture.set(u"Picture", std::u16string());
  pump();
  EXPECT_EQ(paneGround(), plain);
}

class PaneTest : public ViewTest {
 protected:
  void SetUp() override {
    ViewTest::SetUp();
    pane.create(view->window(), 900, [](WPARAM, LPARAM) { return LRESULT{0}; });
    pane.setLook(nullptr, 96, currentPalette());
    SetWindowPos(pane.window(), nullptr, 0, 0, 600, 120, SWP_NOZORDER);
    pane.showFault(rows, 1, rows.row(1)->description);
  }
  std::vector<std::u16string> marked() const {
    std::vector<std::u16string> found;
    for (const Range mark : pane.marks())
      found.push_back(pane.text().text.substr(mark.begin, mark.end - mark.begin));
    return found;
  }
  COLORREF groundAt(std::size_t position) {
    const CHARRANGE range{static_cast<LONG>(position), static_cast<LONG>(position) + 1};
    SendMessageW(pane.window(), EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&range));
    CHARFORMAT2W look{};
    look.cbSize = sizeof look;
    SendMessageW(pane.window(), EM_GETCHARFORMAT, SCF_SELECTION, reinterpret_cast<LPARAM>(&look));
    return look.crBackColor;
  }
  DetailPane pane;
};

TEST_F(PaneTest, theValuePointedAtMarksItselfAndItsData) {
  const std::size_t value = pane.text().text.find(u"C2D");
  pane.point(value + 1);
  EXPECT_EQ(marked(), (std::vector<std::u16string>{u"C2D", u"C", u"2D"}));
  const std::size_t data = pane.text().text.find(u"03 4C 2D");
  EXPECT_EQ(groundAt(data + 4), currentPalette().mark);
  EXPECT_EQ(groundAt(data + 6), currentPalette().mark);
  EXPECT_NE(groundAt(data + 3), currentPalette().mark);
  EXPECT_NE(groundAt(data + 9), currentPalette().mark);
}

TEST_F(PaneTest, pointingElsewhereTakesTheMarksAway) {
  const std::size_t value = pane.text().text.find(u"C2D");
  pane.point(value);
  pane.point(0);
  EXPECT_TRUE(marked().empty());
  EXPECT_NE(groundAt(value), currentPalette().mark);
}

TEST_F(PaneTest, pastTheEndNothingIsMarked) {
  pane.point(100'000);
  EXPECT_TRUE(marked().empty());
}

TEST_F(PaneTest, isAsLargeAsTheRestAtEveryDensity) {
  const std::u16string title = pane.text().text.substr(0, pane.text().titleEnd - 1);
  const auto place = [&](std::size_t position) {
    POINTL at{};
    SendMessageW(pane.window(), EM_POSFROMCHAR, reinterpret_cast<WPARAM>(&at), static_cast<LPARAM>(position));
    return at;
  };
  for (const int dpi : {96, 192, 144, 120, 96}) {
    pane.setLook(nullptr, dpi, currentPalette());
    const Font bold = makeFont({}, dpi, FontStyle::bold);
    const auto wanted = static_cast<double>(textWidth(bold.get(), title));
    EXPECT_NEAR(static_cast<double>(place(title.size()).x - place(0).x), wanted, wanted / 20) << dpi;
    const CHARRANGE first{0, 1};
    SendMessageW(pane.window(), EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&first));
    CHARFORMAT2W look{};
    look.cbSize = sizeof look;
    SendMessageW(pane.window(), EM_GETCHARFORMAT, SCF_SELECTION, reinterpret_cast<LPARAM>(&look));
    LOGFONTW face{};
    GetObjectW(bold.get(), sizeof face, &face);
    EXPECT_EQ(look.yHeight, MulDiv(-static_cast<int>(face.lfHeight), 1440, dpi))
        << "points, whatever the density";
  }
}

TEST_F(PaneTest, theFaultThatIsShownAlreadyKeepsItsSelection) {
  const CHARRANGE chosen{3, 9};
  SendMessageW(pane.window(), EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&chosen));
  const auto selection = [&] {
    CHARRANGE now{};
    SendMessageW(pane.window(), EM_EXGETSEL, 0, reinterpret_cast<LPARAM>(&now));
    return std::pair(now.cpMin, now.cpMax);
  };
  pane.showFault(rows, 1, rows.row(1)->description);
  EXPECT_EQ(selection(), std::pair(3L, 9L));
  pane.showFault(rows, 2, rows.row(2)->description);
  EXPECT_EQ(windowText(pane.window()).substr(0, 7), u"Station");
  EXPECT_EQ(selection(), std::pair(0L, 0L));
}

}  // namespace
}  // namespace vordane::window::win32
