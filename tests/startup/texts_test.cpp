// What the window takes from the language databases: the order of its loaders, background pictures, the help
// of its boxes.
#include <set>

#include "language/language_databases.h"
#include "startup/story.h"

namespace vordane::startup {
namespace {

using WindowTexts = Story;

// A loader that stops is named, in the order in which they are called, and none keeps the next from its turn.
TEST_F(WindowTexts, TheFourLoadersTakeTheirTurns) {
  const auto& own = language::ownTables;
  fakes::makeDatabase(
      engine, u"VORDANE.LNG",
      {{fakes::tableNamed(own, u"tProject"), {{u"VORDANE"_v, u"T"_v, u""_v, u""_v, u""_v, u""_v}}},
       {fakes::tableNamed(own, u"tMessages"), {{std::int32_t{0}, u"F"_v}}}});
  start();
  state.Messages.resize(message::count);
  state.Messages[message::statusTextsIncomplete] = u"incomplete: {1}";
  layer = createLayer();
  EXPECT_EQ(view.status[0], u"incomplete: tForms, tControls, tComboBoxDT, tSSGridsHD");
}

// "SetBackGround" reaches the window, with the number of the set, the pictures' folder and both databases.
TEST_F(WindowTexts, TheHostChoosesAPictureSet) {
  pictureRows = {
      {u"dlgFaultDisplay"_v, u"imgBackground"_v, std::int32_t{-1}, u"BACK.BMP"_v, u"imgBackground"_v,
       std::int32_t{-1}},
      {u"dlgOther"_v, u"imgHeader"_v, std::int32_t{-1}, u"BACK.BMP"_v, u"imgHeader"_v, std::int32_t{-1}}};
  makeLanguage();
  const auto& shared = language::commonTables;
  fakes::makeDatabase(
      engine, u"Common.LNG",
      {{fakes::tableNamed(shared, u"PictureFileName"),
        {{std::int32_t{2}, u"BACK.BMP"_v, u"SAGE.BMP"_v}, {std::int32_t{3}, u"BACK.BMP"_v, u"SAND.BMP"_v}}}});
  const std::u16string folder = u"C:\\QUILMAR32\\30000\\ADDINS\\..\\BACKGRND\\";
  for (const char16_t* name : {u"BACK.BMP", u"SAGE.BMP", u"SAND.BMP"})
    files.content[folder + name] = "picture";
  pictures.areReadable = true;
  startWithHost();
  const auto setBackGround = [&](std::int16_t set) {
    automation::call(*layer, u"SetBackGround", {automation::byVal(set)});
    return form().form().control(u"imgBackground").text(u"Picture");
  };
  EXPECT_EQ(setBackGround(2), folder + u"SAGE.BMP");
  EXPECT_EQ(setBackGround(3), folder + u"SAND.BMP");
  EXPECT_EQ(setBackGround(0), folder + u"BACK.BMP");
  EXPECT_EQ(form().form().control(u"imgHeader").text(u"Picture"), u"");
}

// The box says where the help stands; only what is a document of this suite is shown.
TEST_F(WindowTexts, TheHelpOfABoxIsADocumentOfTheSuite) {
  start();
  EXPECT_EQ(application->helpDocument(u"..\\Quil32\\Help\\error.hlp"),
            u"C:\\QUILMAR32\\30000\\Quil32\\Help\\error.hlp");
  EXPECT_EQ(application->helpDocument(u"C:\\QUILMAR32\\30000\\ADDINS\\..\\..\\..\\windows\\notes.txt"),
            std::nullopt);
  EXPECT_EQ(
      application->helpDocument(u"C:\\QUILMAR32\\30000\\ADDINS\\..\\..\\..\\windows\\system32\\calc.exe"),
      std::nullopt);
  EXPECT_EQ(application->helpDocument(u"C:\\QUILMAR32\\30000\\ADDINS\\devhost.exe"), std::nullopt);
  settings.write(u"QUILMAR32", u"30000", u"InstallPath", u"E:\\Suite\\");
  EXPECT_EQ(application->helpDocument(u"..\\Quil32\\Help\\error.hlp"), std::nullopt);
  EXPECT_EQ(application->helpDocument(u"E:\\SUITE\\Help\\a.chm"), u"E:\\SUITE\\Help\\a.chm");
}

// A whole start in a folder whose letters have no capital there, with blanks, or in another script:
// everything that is opened stands where the file system finds it.
struct Folder {
  const char16_t* running;
  const char16_t* expected;
};

class StartInAFolder : public Story, public testing::WithParamInterface<Folder> {
 protected:
  void expectAllOpenedBelow(const std::u16string& expected) {
    std::set<std::u16string> names;
    for (const auto& opened : engine.opened) {
      EXPECT_TRUE(opened.path.starts_with(expected)) << text::toUtf8(opened.path);
      names.insert(opened.path.substr(opened.path.rfind(u'\\') + 1));
    }
    EXPECT_EQ(names, (std::set<std::u16string>{u"Common.LNG", u"VORDANE.LNG", u"Register.mdb", u"FAULT.MDB",
                                               u"Schedule.mdb"}));
    for (const auto& [path, bytes] : files.content)
      EXPECT_TRUE(path.starts_with(expected)) << text::toUtf8(path);
    EXPECT_FALSE(files.content.empty());
    EXPECT_TRUE(state.BackGroundDir.starts_with(expected));
    EXPECT_TRUE(application->helpFile.starts_with(expected));
  }
  void runAJob() {
    startWithHost();
    EXPECT_EQ(runSchedule(u"3"), 0);
    tick();
    EXPECT_EQ(callInteger(u"CancelSchedule"), 0);
  }
};

TEST_P(StartInAFolder, FindsEverythingThroughTheProgramsOwnPlace) {
  program.directory = std::u16string(GetParam().running) + u"\\QUILMAR32\\30000\\Addins";
  runAJob();
  EXPECT_EQ(state.AddinsSection, u"30000");
  expectAllOpenedBelow(std::u16string(GetParam().expected) + u"\\QUILMAR32\\30000\\ADDINS\\");
}

TEST_P(StartInAFolder, FindsEverythingThroughTheStoredPlace) {
  settings.write(u"QUILMAR32", u"30000", u"InstallPath", std::u16string(GetParam().running) + u"\\");
  settings.write(u"QUILMAR32", u"30000", u"QUILMAR32", u"30000");
  runAJob();
  expectAllOpenedBelow(std::u16string(GetParam().expected) + u"\\");
}

INSTANTIATE_TEST_SUITE_P(Folders, StartInAFolder,
                         testing::Values(Folder{u"C:\\Yazılım", u"C:\\YAZıLıM"}, Folder{u"C:\\µ", u"C:\\µ"},
                                         Folder{u"C:\\Πίνακας", u"C:\\ΠΊΝΑΚΑς"}, Folder{u"C:\\ſ", u"C:\\ſ"},
                                         Folder{u"D:\\Программы связи", u"D:\\ПРОГРАММЫ СВЯЗИ"},
                                         Folder{u"D:\\საქართველო", u"D:\\საქართველო"},
                                         Folder{u"D:\\障害 表示", u"D:\\障害 表示"},
                                         Folder{u"c:\\Program Files (x86)", u"C:\\PROGRAM FILES (X86)"}));

}  // namespace
}  // namespace vordane::startup
