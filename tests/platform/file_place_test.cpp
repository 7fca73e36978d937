#include "platform/file_place.h"

#include <gtest/gtest.h>

#include <string>

namespace vordane::platform {
namespace {

// A workstation whose drive N stands for a share.
bool onNetwork(std::u16string_view path) {
  return liesOnNetwork(path, [](char16_t letter) { return letter == u'N' || letter == u'n'; });
}

TEST(FilePlace, AShareIsOnTheNetwork) {
  for (const char16_t* path :
       {u"\\\\server\\share\\FAULT.MDB", u"//server/share/FAULT.MDB", u"\\\\?\\UNC\\server\\share\\FAULT.MDB",
        u"\\\\?\\unc\\server\\share\\FAULT.MDB", u"\\\\.\\UNC\\server\\share\\FAULT.MDB"}) {
    EXPECT_TRUE(onNetwork(path)) << std::string(path, path + std::u16string_view(path).size());
    EXPECT_TRUE(liesOnNetwork(path));
  }
}

TEST(FilePlace, ADriveIsAskedForItsKind) {
  for (const char16_t* path :
       {u"N:\\FAULT.MDB", u"n:/FAULT.MDB", u"\\\\?\\N:\\FAULT.MDB", u"\\\\.\\n:\\FAULT.MDB"}) {
    EXPECT_TRUE(onNetwork(path));
    EXPECT_FALSE(liesOnNetwork(path)) << "where nobody can tell";
  }
  for (const char16_t* path :
       {u"C:\\QUILMAR32\\FAULT.MDB", u"\\\\?\\C:\\QUILMAR32\\FAULT.MDB", u"\\\\.\\C:\\FAULT.MDB"})
    EXPECT_FALSE(onNetwork(path));
}

TEST(FilePlace, ADriveIsALetterOfTheAlphabet) {
  const auto every = [](char16_t) { return true; };
  for (const char16_t* path : {u"A:\\F", u"Z:\\F", u"a:\\F", u"z:\\F"})
    EXPECT_TRUE(liesOnNetwork(path, every));
  for (const char16_t* path : {u"@:\\F", u"[:\\F", u"`:\\F", u"{:\\F", u"\u00C4:\\F"})
    EXPECT_FALSE(liesOnNetwork(path, every));
}

TEST(FilePlace, AnythingElseIsHere) {
  for (const char16_t* path : {u"", u"N", u"\\", u"\\NOWHERE\\FAULT.MDB", u"FAULT.MDB", u"/home/n/FAULT.MDB",
                               u"\\\\?\\Volume{0}\\FAULT.MDB", u"\\\\?\\UNCLE\\FAULT.MDB", u"1:\\FAULT.MDB"})
    EXPECT_FALSE(onNetwork(path)) << std::string(path, path + std::u16string_view(path).size());
}

}  // namespace
}  // namespace vordane::platform
