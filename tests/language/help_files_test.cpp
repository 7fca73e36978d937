#include "language/help_files.h"

#include <gtest/gtest.h>

namespace vordane::language {
namespace {

constexpr std::u16string_view addins = u"C:\\Quilmar32\\30000\\ADDINS", suite = u"C:\\QUILMAR32\\30000\\";

std::optional<std::u16string> openable(std::u16string_view file) {
  return openableHelp(file, addins, suite);
}

TEST(HelpFiles, OfTheSuiteAreDocumentsWithTheirDotsResolved) {
  EXPECT_EQ(openable(u"C:\\QUILMAR32\\30000\\ADDINS\\HELP\\V.HLP"),
            u"C:\\QUILMAR32\\30000\\ADDINS\\HELP\\V.HLP");
  EXPECT_EQ(openable(u"..\\Quil32\\Help\\error.hlp"), u"C:\\Quilmar32\\30000\\Quil32\\Help\\error.hlp");
  EXPECT_EQ(openable(u"c:\\quilmar32\\30000\\ADDINS\\..\\quil32\\.\\a b.pdf"),
            u"c:\\quilmar32\\30000\\quil32\\a b.pdf");
  EXPECT_EQ(openable(u"c:/quilmar32/30000//help/x.txt"), u"c:\\quilmar32\\30000\\help\\x.txt");
  for (const char16_t* name : {u"a.hlp", u"a.CHM", u"a.htm", u"a.Html", u"a.txt", u"a.PDF", u"a.b.pdf"})
    EXPECT_NE(openable(name), std::nullopt);
}

TEST(HelpFiles, OutsideTheSuiteAreNone) {
  EXPECT_EQ(openable(u"..\\..\\..\\windows\\help.hlp"), std::nullopt);
  EXPECT_EQ(openable(u"..\\..\\30001\\help.hlp"), std::nullopt);
  EXPECT_EQ(openable(u"..\\..\\30000x\\help.hlp"), std::nullopt);
  EXPECT_EQ(openable(u"..\\..\\..\\..\\..\\Quilmar32\\30000\\help.hlp"), std::nullopt);  // above the drive
  EXPECT_EQ(openable(u"D:\\QUILMAR32\\30000\\help.hlp"), std::nullopt);
  EXPECT_EQ(openable(u"C:\\QUILMAR32\\30000.hlp"), std::nullopt);
  EXPECT_EQ(openable(u"C:help.hlp"), std::nullopt);
  EXPECT_EQ(openable(u"C:\\QUILMAR32\\30000\\ADDINS\\..\\..\\30000\\x.hlp"), u"C:\\QUILMAR32\\30000\\x.hlp");
}

TEST(HelpFiles, ThatCouldBeProgramsAreNone) {
  for (const char16_t* name : {u"run.exe", u"a.hlp.exe", u"x.bat", u"x.lnk", u"x.url", u"x.hta", u"x.js",
                               u"x.chm.scr", u"help", u"hlp", u"dir.hlp\\run", u"x.", u""})
    EXPECT_EQ(openable(name), std::nullopt);
}

// Names that the system reads as others: it drops blanks and dots at the end, and what stands behind a colon
// names a stream.
TEST(HelpFiles, ThatAreNotWhatTheySayAreNone) {
  for (const char16_t* name : {u"run.exe:a.hlp", u"run.exe\\.. \\x.hlp", u"...\\x.hlp", u"x.hlp.", u"x.hlp ",
                               u"a\"b.hlp", u"a|b.hlp", u"a\nb.hlp", u"x.*.hlp"})
    EXPECT_EQ(openable(name), std::nullopt);
  EXPECT_EQ(openableHelp(u"x.hlp", u"\\\\?\\C:\\QUILMAR32\\30000\\ADDINS", suite), std::nullopt);
}

TEST(HelpFiles, OfASuiteOnAShareAreKnownByServerAndShare) {
  constexpr std::u16string_view shared = u"\\\\SERVER\\Suite\\30000";
  EXPECT_EQ(openableHelp(u"..\\Quil32\\x.hlp", u"\\\\server\\suite\\30000\\ADDINS", shared),
            u"\\\\server\\suite\\30000\\Quil32\\x.hlp");
  EXPECT_EQ(openableHelp(u"..\\..\\..\\other\\x.hlp", u"\\\\server\\suite\\30000\\ADDINS", shared),
            std::nullopt);
  EXPECT_EQ(openableHelp(u"x.hlp", u"\\\\server\\other\\30000\\ADDINS", shared), std::nullopt);
  constexpr std::u16string_view strange = u"\\\\server?\\Suite\\30000";
  EXPECT_EQ(openableHelp(u"x.hlp", u"\\\\server?\\suite\\30000\\ADDINS", strange), std::nullopt);
  EXPECT_EQ(openableHelp(u"\\\\evil\\share\\x.hlp", addins, suite),
            u"C:\\Quilmar32\\30000\\ADDINS\\evil\\share\\x.hlp");
}

TEST(HelpFiles, WithoutASuiteThereAreNone) {
  EXPECT_EQ(openableHelp(u"x.hlp", addins, u""), std::nullopt);
  EXPECT_EQ(openableHelp(u"x.hlp", u"", u""), std::nullopt);
}

// Letters whose capital is another file's: no way around the suite's directory.
TEST(HelpFiles, LettersAreComparedAsTheFileSystemDoes) {
  EXPECT_EQ(openableHelp(u"C:\\kıt\\x.hlp", u"C:\\KIT", u"C:\\KIT"), std::nullopt);
  EXPECT_NE(openableHelp(u"C:\\каталог\\x.hlp", u"C:\\КАТАЛОГ", u"C:\\КАТАЛОГ"), std::nullopt);
}

}  // namespace
}  // namespace vordane::language
