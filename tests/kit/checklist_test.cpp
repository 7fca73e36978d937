// The checklist as a table, and the one that is shipped.
#include "kit/core/checklist.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <stdexcept>

#include "places.h"

namespace vordane::kit {
namespace {

using testing::ElementsAre;

TEST(Checklist, RowsAreReadFromEveryTableOfTheDocument) {
  EXPECT_THAT(
      parseChecklist("# Head\n| No. | What to do | What must happen | Result |\n|---|---|---|---|\n"
                     "| 1 | Press `a\\|b` | it beeps | |\n\n| Other | Table |\n|---|---|\n| x | y |\n\n"
                     "| No. | What | Must |\n|--|--|--|\n| 2a | Look | red |\n"),
      ElementsAre(Check{"1", "Press `a|b`", "it beeps"}, Check{"2a", "Look", "red"}));
}

TEST(Checklist, TheShippedOneIsATableNumberedFromOne) {
  std::ifstream file(test::sourceFolder() / "docs" / "windows-checklist.md", std::ios::binary);
  std::stringstream text;
  text << file.rdbuf();
  const auto checks = parseChecklist(text.str());
  for (std::size_t i = 0; i < checks.size(); ++i) EXPECT_EQ(checks[i].number, std::to_string(i + 1));
  EXPECT_EQ(text.str().find("\n- "), std::string::npos) << "a bullet is in no report: make it a row";
}

TEST(Checklist, HalfARowIsRefused) {
  const std::string head = "| No. | What | Must |\n|---|---|---|\n";
  EXPECT_THROW(parseChecklist(head + "| 1 | Press | |\n"), std::runtime_error);
  EXPECT_THROW(parseChecklist(head + "| | Press | beeps |\n"), std::runtime_error);
  EXPECT_THROW(parseChecklist(head + "| 1 | Press |\n"), std::runtime_error);
  EXPECT_THROW(parseChecklist(head + "| 1 | a | b |\n| 1 | c | d |\n"), std::runtime_error);
  EXPECT_THROW(parseChecklist("no table\n"), std::runtime_error);
}

}  // namespace
}  // namespace vordane::kit
