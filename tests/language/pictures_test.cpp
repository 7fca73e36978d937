#include <gtest/gtest.h>

#include "fakes/memory_files.h"
#include "language/comPicture.h"
#include "language_database.h"

namespace vordane {
namespace {

using fakes::n;
using fakes::null;
using fakes::Row;
using fakes::t;

class ReadingPictures : public comPicture::PictureLoader {
 public:
  bool readable(std::u16string_view path) override { return path != broken; }
  std::u16string broken;
};

class Backgrounds : public testing::Test {
 protected:
  Backgrounds() {
    for (const char16_t* name : {u"A.BMP", u"B.BMP", u"SET.BMP"})
      files.content[std::u16string(u"C:\\BACKGRND\\") + name] = "picture";
    panel.set(u"Width", std::int32_t{4000});
    panel.set(u"Height", std::int32_t{300});
    image.set(u"Left", std::int32_t{50});
    image.set(u"Top", std::int32_t{60});
  }

  static Row row(const char16_t* object, database::Value file, const char16_t* base, int baseIndex = -1) {
    return {t(u"dlgFaultDisplay"), t(object), n(-1), std::move(file), t(base), n(baseIndex)};
  }
  bool apply(std::vector<Row> rows, std::int16_t set = 0, std::vector<Row> sets = {}) {
    own.with(u"tPicture", std::move(rows));
    common.with(fakes::tableNamed(sqlite::schema::commonLanguage(), u"PictureFileName"), std::move(sets));
    return comPicture::ApplyBackground(form, own.open(), common.open(), set, u"C:\\BACKGRND\\", files,
                                       loader);
  }
  std::u16string pictureOf(const window::Control& control) { return control.text(u"Picture"); }

  fakes::LanguageDatabase own, common;
  fakes::MemoryFiles files;
  ReadingPictures loader;
  window::Form form = fakes::makeForm();
  window::Control& image = fakes::addControl(form, u"imgBackground", u"PictureBox");
  window::Control& panel = fakes::addControl(form, u"pnlBase", u"SSPanel", 2);
  window::Control& frame = fakes::addControl(form, u"fraAlarmLamp", u"Frame");
  window::Control& bar = fakes::addControl(form, u"lstBar", u"SSListBar");
};

TEST_F(Backgrounds, APictureTakesTheWholeWindow) {
  std::vector<std::u16string> visibility;
  form.self().listen([&](window::Control& self, std::u16string_view property) {
    if (property == u"Visible") visibility.push_back(self.flag(u"Visible") ? u"on" : u"off");
  });
  EXPECT_TRUE(apply({row(u"imgBackground", t(u"A.BMP"), u"me")}));
  EXPECT_EQ(pictureOf(image), u"C:\\BACKGRND\\A.BMP");
  EXPECT_EQ(image.number(u"Left"), 0);
  EXPECT_EQ(image.number(u"Top"), 0);
  EXPECT_EQ(image.number(u"Width"), 9000);
  EXPECT_EQ(image.number(u"Height"), 6000);
  EXPECT_EQ(visibility, (std::vector<std::u16string>{u"off", u"on"}));
}

TEST_F(Backgrounds, APanelStaysVisibleWhileItsSizeIsTaken) {
  int changes = 0;
  panel.listen([&](window::Control&, std::u16string_view) { ++changes; });
  EXPECT_TRUE(apply({row(u"imgBackground", t(u"A.BMP"), u"pnlBase", 2)}));
  EXPECT_EQ(image.number(u"Width"), 4000);
  EXPECT_EQ(image.number(u"Height"), 300);
  EXPECT_EQ(changes, 0);
}

TEST_F(Backgrounds, AListBarTakesItAsBackgroundAndIsNotMoved) {
  bar.set(u"Left", std::int32_t{70});
  EXPECT_TRUE(apply({row(u"lstBar", t(u"B.BMP"), u"no such base")}));
  EXPECT_EQ(bar.text(u"PictureBackground"), u"C:\\BACKGRND\\B.BMP");
  EXPECT_EQ(bar.number(u"Left"), 70);
}

TEST_F(Backgrounds, ATreeTakesItAsBackgroundToo) {
  window::Control& tree = fakes::addControl(form, u"treAll", u"SSTree");
  tree.set(u"Left", std::int32_t{70});
  EXPECT_TRUE(apply({row(u"treAll", t(u"B.BMP"), u"me")}));
  EXPECT_EQ(tree.text(u"PictureBackground"), u"C:\\BACKGRND\\B.BMP");
  EXPECT_EQ(tree.number(u"Left"), 70);
}

TEST_F(Backgrounds, RowsWithoutAPictureAreSkipped) {
  EXPECT_TRUE(apply({row(u"imgBackground", t(u"-1"), u"me"), row(u"imgBackground", null, u"me"),
                     row(u"imgBackground", t(u""), u"me"), row(u"imgBackground", t(u"MISSING.BMP"), u"me")}));
  EXPECT_EQ(pictureOf(image), u"");
  EXPECT_EQ(image.number(u"Left"), 50);
}

TEST_F(Backgrounds, ASetRenamesThePictures) {
  const std::vector<Row> sets{{n(1), t(u"a.bmp"), t(u"SET.BMP")},
                              {n(1), t(u"A.BMP"), t(u"B.BMP")},  // the first of doubles wins
                              {n(2), t(u"A.BMP"), t(u"B.BMP")}};
  EXPECT_TRUE(
      apply({row(u"imgBackground", t(u"A.BMP"), u"me"), row(u"lstBar", t(u"B.BMP"), u"me")}, 1, sets));
  EXPECT_EQ(pictureOf(image), u"C:\\BACKGRND\\SET.BMP");
  EXPECT_EQ(bar.text(u"PictureBackground"), u"C:\\BACKGRND\\B.BMP");  // not in the set
}

TEST_F(Backgrounds, SetZeroUsesTheNamesUnchanged) {
  EXPECT_TRUE(apply({row(u"imgBackground", t(u"A.BMP"), u"me")}, 0, {{n(0), t(u"A.BMP"), t(u"SET.BMP")}}));
  EXPECT_EQ(pictureOf(image), u"C:\\BACKGRND\\A.BMP");
}

TEST_F(Backgrounds, ASetMayTakeAPictureAway) {
  EXPECT_TRUE(apply({row(u"imgBackground", t(u"A.BMP"), u"me")}, 1, {{n(1), t(u"A.BMP"), null}}));
  EXPECT_EQ(pictureOf(image), u"");
}

TEST_F(Backgrounds, AFailureKeepsThePicturesPlacedBefore) {
  loader.broken = u"C:\\BACKGRND\\B.BMP";
  EXPECT_FALSE(
      apply({row(u"imgBackground", t(u"A.BMP"), u"fraAlarmLamp"), row(u"lstBar", t(u"B.BMP"), u"me")}));
  EXPECT_EQ(pictureOf(image), u"C:\\BACKGRND\\A.BMP");
  EXPECT_TRUE(frame.flag(u"Visible"));
  EXPECT_EQ(bar.text(u"PictureBackground"), u"");
}

TEST_F(Backgrounds, AMissingControlIsFalse) {
  EXPECT_FALSE(apply({row(u"imgNobody", t(u"-1"), u"me")}));
}

TEST_F(Backgrounds, AMissingBaseIsFalse) {
  EXPECT_FALSE(apply({row(u"imgBackground", t(u"A.BMP"), u"pnlBase")}));  // only element 2 exists
}

TEST_F(Backgrounds, AMissingTableIsFalse) {
  own.with(u"tForms", {});
  common.with(fakes::tableNamed(sqlite::schema::commonLanguage(), u"tMsgBox"), {});
  EXPECT_FALSE(comPicture::ApplyBackground(form, own.open(), common.open(), 0, u"", files, loader));
}

TEST_F(Backgrounds, OnlyPanelsArePanelLike) {
  EXPECT_TRUE(comPicture::IsPanelLike(panel));
  EXPECT_TRUE(comPicture::IsPanelLike(image));
  EXPECT_FALSE(comPicture::IsPanelLike(frame));
}

}  // namespace
}  // namespace vordane
