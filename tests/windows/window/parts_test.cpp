// The parts that need no window: what a row says, column texts, layout, and the pulling back.
#include <gtest/gtest.h>

#include "platform/windows/window/clipboard.h"
#include "platform/windows/window/columns.h"
#include "platform/windows/window/description.h"
#include "platform/windows/window/geometry.h"
#include "platform/windows/window/layout.h"

namespace vordane::window::win32 {
namespace {

bool same(const RECT& a, const RECT& b) {
  return EqualRect(&a, &b) != FALSE;
}

std::u16string part(std::u16string_view text, Range range) {
  return std::u16string(text.substr(range.begin, range.end - range.begin));
}

TEST(Description, titleAndDetailWithoutTheTrailer) {
  const RowText row = rowText(u"Line fault\r\nNo answer [C2D]\r\nData [03 4C]");
  EXPECT_EQ(row.title, u"Line fault");
  EXPECT_EQ(row.detail, u"No answer [C2D]");
}

TEST(Description, severalDetailLinesShareOne) {
  EXPECT_EQ(rowText(u"T\r\n one\r\n\r\n two \r\nData [00]").detail, u"one \u00B7 two");
}

TEST(Description, emptyDetailLineIsNoDetail) {
  EXPECT_EQ(rowText(u"T\r\n\r\nData [FF 00]").detail, u"");
}

TEST(Description, oneLineIsTheTitle) {
  EXPECT_EQ(rowText(u"only").title, u"only");
  EXPECT_EQ(rowText(u"").title, u"");
  EXPECT_EQ(rowText(u"title\r\nno data here!").detail, u"no data here!");
}

TEST(Description, dataPartIsTheLongestRunOfTheLastLine) {
  const std::u16string text = u"Title 0A\r\nBad face 12 34\r\nDaten [03 4C 2D]";
  const auto data = guessedDataPart(text);
  ASSERT_TRUE(data);
  EXPECT_EQ(part(text, *data), u"03 4C 2D");
  EXPECT_FALSE(guessedDataPart(u"T\r\nD\r\nLost []"));
}

TEST(Description, bytesAreWholeWords) {
  const auto guessed = [](std::u16string_view line) {
    const auto data = guessedDataPart(line);
    return data ? part(std::u16string(line), *data) : u"none";
  };
  EXPECT_EQ(guessed(u"no data came"), u"none");
  EXPECT_EQ(guessed(u"0F3E"), u"none");
  EXPECT_EQ(guessed(u"Data [0f 3E 1]"), u"0f 3E 1") << "cut in the middle of a byte";
  EXPECT_EQ(guessed(u"Data [0F  3E]"), u"0F  3E");
  EXPECT_EQ(guessed(u"Data 1 [0F 3"), u"0F 3");
  EXPECT_EQ(guessed(u"Data 12 ab [01 02 03]cd"), u"01 02 03");
  EXPECT_EQ(guessed(u"Байты12 [FF]"), u"FF");
  EXPECT_EQ(guessed(u"[7F 0G]"), u"7F");
  EXPECT_EQ(guessed(u""), u"none");
}

TEST(Description, paneCountsOneCharacterForALineEnd) {
  const PaneText pane = paneText(u"AB\r\nCD\r\nEF");
  EXPECT_EQ(pane.text, u"AB\rCD\rEF");
  EXPECT_EQ(pane.titleEnd, 2U);
  EXPECT_EQ(pane.shown(4), 3U);
  EXPECT_EQ(pane.origin[3], 4U);
  EXPECT_EQ(pane.shown(8), 6U);
}

TEST(Columns, widthsAndOrderComeBackFromText) {
  ColumnLayout layout;
  layout.widths = {50, 60, 70, 80, 0, 90};
  layout.order = {4, 0, 1, 2, 3, 5};
  EXPECT_EQ(widthsAsText(layout), u"50,60,70,80,0,90");
  EXPECT_EQ(orderAsText(layout), u"4,0,1,2,3,5");
  EXPECT_EQ(readWidths(u"50,60,70,80,0,90"), layout.widths);
  EXPECT_EQ(readOrder(u"4,0,1,2,3,5"), layout.order);
}

TEST(Columns, spoiltTextsAreRefused) {
  for (const char16_t* text : {u"", u"1,2,3", u"50,60,70,80,90,5000", u"50,60,70,80,90,0",
                               u"a,60,70,80,90,90", u"50,60,70,80,90,99999999999", u"50,60,70,80,90,60,60"})
    EXPECT_FALSE(readWidths(text)) << readWidths(text).has_value();
  EXPECT_FALSE(readOrder(u"0,1,2,3,4,4"));
  EXPECT_FALSE(readOrder(u"0,1,2,3,4,6"));
  EXPECT_FALSE(readOrder(u"-1,1,2,3,4,5"));
}

TEST(ClipboardHtml, saysInBytesWhereTheFragmentStands) {
  const std::string fragment = "<b>Ж</b>", whole = clipboardHtml(fragment);
  const auto at = [&](const std::string& name) {
    return static_cast<std::size_t>(std::stoul(whole.substr(whole.find(name) + name.size(), 10)));
  };
  EXPECT_EQ(whole.substr(at("StartFragment:"), at("EndFragment:") - at("StartFragment:")), fragment);
  EXPECT_EQ(whole.substr(at("StartHTML:"), 6), "<html>");
  EXPECT_EQ(at("EndHTML:"), whole.size());
  EXPECT_TRUE(whole.ends_with("</html>"));
}

const std::vector<RECT> oneScreen{{0, 0, 1920, 1040}};

TEST(PullingBack, aPlaceInReachStays) {
  const RECT place{100, 100, 1100, 700};
  EXPECT_TRUE(same(pulledBack(place, oneScreen, 30, 80), place));
  const RECT halfOut{-900, 100, 100, 700};  // 100 pixels of the title bar can be taken hold of
  EXPECT_TRUE(same(pulledBack(halfOut, oneScreen, 30, 80), halfOut));
}

TEST(PullingBack, aTitleBarOutOfReachComesBack) {
  EXPECT_TRUE(same(pulledBack({5000, 100, 6000, 700}, oneScreen, 30, 80), {920, 100, 1920, 700}));
  EXPECT_TRUE(same(pulledBack({100, -500, 1100, 100}, oneScreen, 30, 80), {100, 0, 1100, 600}));
  EXPECT_TRUE(same(pulledBack({-960, 100, 40, 700}, oneScreen, 30, 80), {0, 100, 1000, 700}));
  EXPECT_TRUE(same(pulledBack({100, 1035, 1100, 1635}, oneScreen, 30, 80), {100, 440, 1100, 1040}));
}

TEST(PullingBack, theNearestScreenTakesIt) {
  const std::vector<RECT> two{{0, 0, 1920, 1040}, {1920, 0, 3840, 1040}};
  EXPECT_TRUE(same(pulledBack({5000, 100, 6000, 700}, two, 30, 80), {2840, 100, 3840, 700}));
}

TEST(PullingBack, aWindowLargerThanTheScreenShowsItsUpperLeftCorner) {
  EXPECT_TRUE(same(pulledBack({5000, 100, 8000, 2000}, oneScreen, 30, 80), {0, 0, 3000, 1900}));
}

TEST(Fitting, aWindowThatHasRoomStays) {
  EXPECT_TRUE(same(fitted({-900, 100, 100, 700}, oneScreen), {-900, 100, 100, 700}));
  EXPECT_TRUE(same(fitted({0, 0, 1920, 1040}, oneScreen), {0, 0, 1920, 1040}));
}

TEST(Fitting, aWindowLargerThanTheScreenTakesItsSizeAndStandsInside) {
  EXPECT_TRUE(same(fitted({300, 200, 3300, 1100}, oneScreen), {0, 140, 1920, 1040}));
  EXPECT_TRUE(same(fitted({300, 200, 1300, 2200}, oneScreen), {300, 0, 1300, 1040}));
  const std::vector<RECT> two{{0, 0, 1920, 1040}, {1920, 0, 2944, 728}};
  EXPECT_TRUE(same(fitted({2000, 10, 3500, 900}, two), {1920, 0, 2944, 728}));
  EXPECT_TRUE(same(fitted({5, 5, 5000, 5000}, {}), {5, 5, 5000, 5000}));
}

TEST(Geometry, twipsAreOneInchIn1440) {
  EXPECT_EQ(toTwips(96, 96), 1440);
  EXPECT_EQ(toTwips(144, 144), 1440);
  EXPECT_EQ(toPixels(1200, 96), 80);
  EXPECT_EQ(toPixels(-1440, 144), -144);
}

LayoutInput sample(int wide, int high, int dpi = 96) {
  LayoutInput in;
  in.dpi = dpi;
  in.width = wide;
  in.height = high;
  in.lamps = {90, 90};
  in.buttons = {50, 70, 40, 50, 50, 35};
  in.statusHeight = 22;
  in.paneHeight = 100;
  return in;
}

std::vector<RECT> everything(const Layout& layout) {
  std::vector<RECT> all{layout.exchangeLabel, layout.dropDown, layout.receivedLabel, layout.received,
                        layout.frame,         layout.lookUp,   layout.notice,        layout.grid,
                        layout.splitter,      layout.pane,     layout.newer};
  all.insert(all.end(), layout.buttons.begin(), layout.buttons.end());
  return all;
}

void expectNothingOverlaps(const Layout& layout) {
  const std::vector<RECT> all = everything(layout);
  for (std::size_t a = 0; a < all.size(); ++a)
    for (std::size_t b = a + 1; b < all.size(); ++b) {
      RECT common;
      EXPECT_FALSE(IntersectRect(&common, &all[a], &all[b])) << a << " and " << b;
    }
}

TEST(Layout, nothingOverlapsAtAnyWidthOrDensity) {
  for (const int dpi : {96, 120, 144, 192})
    for (int wide = 460; wide <= 1600; wide += 60) {
      LayoutInput in = sample(MulDiv(wide, dpi, 96), MulDiv(700, dpi, 96), dpi);
      in.textHeight = MulDiv(16, dpi, 96);
      in.dropDownHeight = MulDiv(24, dpi, 96);
      in.lookUpHeight = MulDiv(38, dpi, 96);
      in.noticeHeight = MulDiv(30, dpi, 96);
      in.newerHeight = MulDiv(38, dpi, 96);
      expectNothingOverlaps(arrange(in));
    }
}

TEST(Layout, theGridTakesTheRoomAndCloseStandsAtTheRight) {
  const Layout small = arrange(sample(1000, 600));
  const Layout large = arrange(sample(1400, 900));
  EXPECT_EQ(height(large.grid) - height(small.grid), 300);
  EXPECT_EQ(width(large.grid), 1400);
  EXPECT_EQ(height(large.pane), height(small.pane));
  EXPECT_EQ(large.buttons.back().right, 1400 - 12);
}

TEST(Layout, buttonsWrapInANarrowWindow) {
  const Layout narrow = arrange(sample(460, 700));
  EXPECT_GT(narrow.buttons.back().top, narrow.buttons.front().top);
  for (const RECT& button : narrow.buttons) EXPECT_LE(button.right, 460);
}

TEST(Layout, theSplitterLeavesRoomForGridAndPane) {
  const LayoutInput in = sample(1000, 700);
  for (const int y : {-500, 0, 300, 600, 5000}) {
    LayoutInput dragged = in;
    dragged.paneHeight = paneHeightFor(in, y);
    const Layout layout = arrange(dragged);
    EXPECT_GE(height(layout.grid), 96) << y;
    EXPECT_GE(height(layout.pane), 48) << y;
  }
}

TEST(Layout, theSmallestWindowStillHoldsEverything) {
  LayoutInput in = sample(1000, 700);
  const SIZE least = smallestClient(in);
  in.width = static_cast<int>(least.cx);
  in.height = static_cast<int>(least.cy);
  const Layout layout = arrange(in);
  expectNothingOverlaps(layout);
  EXPECT_GE(height(layout.grid), 96);
  EXPECT_LE(layout.pane.bottom, least.cy - in.statusHeight);
  EXPECT_LE(layout.frame.right, least.cx);
}

}  // namespace
}  // namespace vordane::window::win32
