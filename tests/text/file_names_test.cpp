// Names that stay in their folder, and names for texts that are none.
#include "text/file_names.h"

#include <gtest/gtest.h>

namespace vordane::text {
namespace {

TEST(PlainFileName, IsThatOfAFileInItsFolder) {
  for (const char16_t* name :
       {u"A.BMP", u"night run 1", u".hidden", u"COM10", u"CONSOLE.TXT", u"\u65E5\u672C.gif"})
    EXPECT_TRUE(isPlainFileName(name));
}

TEST(PlainFileName, IsNoPathDriveStreamPatternOrFolder) {
  for (const char16_t* name : {u"", u".", u"..", u". .", u"..\\A.BMP", u"SETS\\A.BMP", u"/etc/x", u"C:A.BMP",
                               u"A.BMP:x", u"\\\\server\\A.BMP", u"*.BMP", u"A?.BMP", u"A|B", u"A\nB"})
    EXPECT_FALSE(isPlainFileName(name));
}

TEST(PlainFileName, IsNoDevice) {
  for (const char16_t* name : {u"CON", u"nul.bmp", u"Aux .txt", u"com1", u"LPT\u00B9.BMP", u"CONIN$"})
    EXPECT_FALSE(isPlainFileName(name));
}

TEST(AsFileName, EachTextHasItsOwn) {
  EXPECT_EQ(asFileName(u"PBX-1 south_2"), u"PBX-1 south_2");
  EXPECT_EQ(asFileName(u"A/1"), u"A%2F1");
  EXPECT_EQ(asFileName(u"A?1"), u"A%3F1");
  EXPECT_EQ(asFileName(u"A%2F1"), u"A%252F1");
  EXPECT_EQ(asFileName(u"a\tb"), u"a%09b");
}

TEST(AsFileName, OfADeviceIsNone) {
  EXPECT_EQ(asFileName(u"CON"), u"%43ON");
  EXPECT_EQ(asFileName(u"com1"), u"%63om1");
  EXPECT_TRUE(isPlainFileName(asFileName(u"CON")));
}

}  // namespace
}  // namespace vordane::text
