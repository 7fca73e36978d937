#include <gtest/gtest.h>

#include "fakes/memory_files.h"
#include "language/comPicture.h"
#include "language/language_databases.h"
#include "language_database.h"

namespace vordane {
namespace {

using fakes::n;
using fakes::null;
using fakes::Row;
using fakes::t;

class ReadingPictures : public comPicture::PictureLoader {
 public:
  bool readable(std::u16string_view path) override {
    asked.emplace_back(path);
    return path != broken;
  }
  std::u16string broken;
  std::vector<std::u16string> asked;
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
    common.with(fakes::tableNamed(language::commonTables, u"PictureFileName"), std::move(sets));
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

TEST_F(Backgrounds, ARowWithoutANameStaysWithoutInEverySet) {
  EXPECT_TRUE(apply({row(u"imgBackground", t(u""), u"me"), row(u"imgBackground", null, u"me")}, 1,
                    {{n(1), t(u""), t(u"SET.BMP")}}));
  EXPECT_EQ(pictureOf(image), u"");
}

TEST_F(Backgrounds, RowsWithoutAPictureAreSkipped) {
  EXPECT_TRUE(apply({row(u"imgBackground", t(u"-1"), u"me"), row(u"imgBackground", null, u"me"),
                     row(u"imgBackground", t(u""), u"me"), row(u"imgBackground", t(u"MISSING.BMP"), u"me")}));
  EXPECT_EQ(pictureOf(image), u"");
  EXPECT_EQ(image.number(u"Left"), 50);
}

// A language file may have been made by anybody.
TEST_F(Backgrounds, APictureOfAnotherFolderIsNotLookedAt) {
  for (const char16_t* elsewhere : {u"..\\A.WMF", u"C:\\A.WMF", u"\\\\server\\A.WMF", u"A.BMP:x", u"NUL.BMP"})
    files.content[std::u16string(u"C:\\BACKGRND\\") + elsewhere] = "picture";
  EXPECT_TRUE(apply(
      {row(u"imgBackground", t(u"..\\A.WMF"), u"me"), row(u"lstBar", t(u"C:\\A.WMF"), u"me"),
       row(u"imgBackground", t(u"\\\\server\\A.WMF"), u"me"), row(u"imgBackground", t(u"A.BMP:x"), u"me"),
       row(u"lstBar", t(u"NUL.BMP"), u"me"), row(u"imgBackground", t(u"A.BMP"), u"me")},
      1, {{n(1), t(u"A.BMP"), t(u"..\\A.WMF")}}));
  EXPECT_EQ(pictureOf(image), u"");
  EXPECT_TRUE(loader.asked.empty());
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

// Found, moved, loaded: an unreadable picture leaves its control at its place, without a picture.
TEST_F(Backgrounds, AnUnreadablePictureHasMovedItsControl) {
  loader.broken = u"C:\\BACKGRND\\A.BMP";
  std::vector<std::u16string> visibility;
  frame.listen([&](window::Control& base, std::u16string_view property) {
    if (property == u"Visible") visibility.push_back(base.flag(u"Visible") ? u"on" : u"off");
  });
  frame.set(u"Width", std::int32_t{700});
  frame.set(u"Height", std::int32_t{800});
  EXPECT_FALSE(
      apply({row(u"imgBackground", t(u"A.BMP"), u"fraAlarmLamp"), row(u"lstBar", t(u"B.BMP"), u"me")}));
  EXPECT_EQ(image.number(u"Left"), 0);
  EXPECT_EQ(image.number(u"Top"), 0);
  EXPECT_EQ(image.number(u"Width"), 700);
  EXPECT_EQ(image.number(u"Height"), 800);
  EXPECT_EQ(pictureOf(image), u"");
  EXPECT_EQ(visibility, (std::vector<std::u16string>{u"off", u"on"}));
  EXPECT_EQ(bar.text(u"PictureBackground"), u"");  // the rows behind it are not reached
}

TEST_F(Backgrounds, TheControlIsFoundBeforeItsPictureIsRead) {
  loader.broken = u"C:\\BACKGRND\\A.BMP";
  EXPECT_FALSE(apply({row(u"imgBackground", t(u"A.BMP"), u"pnlBase")}));  // no such base
  EXPECT_EQ(image.number(u"Left"), 50);
  EXPECT_TRUE(loader.asked.empty());
}

TEST_F(Backgrounds, ABaseThatIsNoPanelIsHiddenMeanwhile) {
  std::vector<std::u16string> seen;
  const auto note = [&](window::Control& control, std::u16string_view property) {
    if (property == u"Visible") seen.push_back(control.flag(u"Visible") ? u"on" : u"off");
    if (property == u"Picture") seen.push_back(u"picture");
  };
  frame.listen(note);
  image.listen(note);
  EXPECT_TRUE(apply({row(u"imgBackground", t(u"A.BMP"), u"fraAlarmLamp")}));
  EXPECT_EQ(seen, (std::vector<std::u16string>{u"off", u"picture", u"on"}));
}

// The window is "me" to the letter, and outside of every control array; anything else is a control's name.
TEST_F(Backgrounds, OnlyTheWindowItselfIsMe) {
  const auto applied = [&](const char16_t* base, int index) {
    fakes::LanguageDatabase texts;
    texts.with(u"tPicture", {row(u"imgBackground", t(u"A.BMP"), base, index)});
    database::Database& database = texts.open();
    return comPicture::ApplyBackground(form, database, database, 0, u"C:\\BACKGRND\\", files, loader);
  };
  EXPECT_FALSE(applied(u"me", 0));
  EXPECT_FALSE(applied(u"Me", -1));
  EXPECT_FALSE(applied(u"ME", -1));
  EXPECT_EQ(image.number(u"Left"), 50);
  window::Control& element = fakes::addControl(form, u"me", u"SSPanel", 3);
  element.set(u"Width", std::int32_t{123});
  EXPECT_TRUE(applied(u"me", 3));
  EXPECT_EQ(image.number(u"Width"), 123);
  EXPECT_TRUE(applied(u"me", -1));
  EXPECT_EQ(image.number(u"Width"), 9000);
}

// Its names stay unmapped; that the set is missing is told all the same.
TEST_F(Backgrounds, WithoutItsTableASetRenamesNothingAndFails) {
  own.with(u"tPicture", {row(u"imgBackground", t(u"A.BMP"), u"me")});
  common.with(fakes::tableNamed(language::commonTables, u"tMsgBox"), {});
  const auto applied = [&](std::int16_t set) {
    return comPicture::ApplyBackground(form, own.open(), common.open(), set, u"C:\\BACKGRND\\", files,
                                       loader);
  };
  EXPECT_FALSE(applied(1));
  EXPECT_EQ(pictureOf(image), u"C:\\BACKGRND\\A.BMP");
  image.set(u"Picture", std::u16string{});
  EXPECT_TRUE(applied(0));
  EXPECT_EQ(pictureOf(image), u"C:\\BACKGRND\\A.BMP");
}

TEST_F(Backgrounds, AMissingControlIsFalse) {
  EXPECT_FALSE(apply({row(u"imgNobody", t(u"-1"), u"me")}));
}

TEST_F(Backgrounds, AMissingBaseIsFalse) {
  EXPECT_FALSE(apply({row(u"imgBackground", t(u"A.BMP"), u"pnlBase")}));  // only element 2 exists
}

TEST_F(Backgrounds, AMissingTableIsFalse) {
  own.with(u"tForms", {});
  common.with(fakes::tableNamed(language::commonTables, u"tMsgBox"), {});
  EXPECT_FALSE(comPicture::ApplyBackground(form, own.open(), common.open(), 0, u"", files, loader));
}

TEST_F(Backgrounds, OnlyPanelsArePanelLike) {
  EXPECT_TRUE(comPicture::IsPanelLike(panel));
  EXPECT_TRUE(comPicture::IsPanelLike(image));
  EXPECT_FALSE(comPicture::IsPanelLike(frame));
}

}  // namespace
}  // namespace vordane
