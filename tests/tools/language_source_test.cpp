#include "language_source.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "language_folder.h"

namespace vordane::tools {
namespace {

using testing::ElementsAre;

TEST(LanguageSource, RowsKeepTheirPlaceAndBlanks) {
  fakes::LanguageFolder texts;
  texts.write("messages.tsv", "\xEF\xBB\xBF# comment\r\n0\tTitle\r\n\n5\t padded \n6\t");
  Problems problems;
  const LanguageSource source = readLanguageSource(texts.folder(), problems);
  EXPECT_THAT(problems, ElementsAre());
  EXPECT_EQ(source.name, "en");
  ASSERT_EQ(source.messages.size(), 3U);
  EXPECT_EQ(source.messages[0].place, "en/messages.tsv:2");
  EXPECT_EQ(source.messages[0].fields[1], u"Title");
  EXPECT_EQ(source.messages[1].place, "en/messages.tsv:4");
  EXPECT_EQ(source.messages[1].fields[1], u" padded ");
  EXPECT_EQ(source.messages[2].fields[1], u"");
}

TEST(LanguageSource, MissingFilesAndWrongColumnsAreNamed) {
  fakes::LanguageFolder texts;
  std::filesystem::remove(texts.folder() / "help.tsv");
  texts.write("headings.tsv", "grdDisplayFault\t0\n");
  Problems problems;
  readLanguageSource(texts.folder() / "", problems);
  EXPECT_THAT(problems, ElementsAre("en/headings.tsv:1: 2 columns instead of 3", "en/help.tsv: missing"));
}

}  // namespace
}  // namespace vordane::tools
