// The reference of the kinds, as it comes out of the decoder and the shipped English texts.
#include "guide_kinds.h"

#include <gtest/gtest.h>

#include "faults/kind_table.h"
#include "guide/guide_folder.h"

namespace vordane::tools {
namespace {

class KindReference : public testing::Test {
 protected:
  static const std::string& whole() {
    static const std::string text = [] {
      const fakes::GuideFolder guide;
      Problems none;
      const GuideSource source = readGuide(guide.folder(), none);
      return textOfMark("kinds", guide.language, source.words, {}, none);
    }();
    return text;
  }
  // The entry of a kind, without its heading.
  static std::string entry(const std::string& anchor) {
    const auto heading = whole().find("{#" + anchor + "}");
    if (heading == std::string::npos) return {};
    const auto begin = whole().find("\n\n", heading) + 2;
    return whole().substr(begin, whole().find("### ", begin) - begin);
  }
};

TEST_F(KindReference, HasEveryKindOnce) {
  for (const faults::FaultKind& row : faults::faultKinds) {
    const std::string anchor = "{#" + kindAnchor(row.kind) + "}";
    const auto at = whole().find(anchor);
    EXPECT_NE(at, std::string::npos) << anchor;
    EXPECT_EQ(whole().find(anchor, at + 1), std::string::npos) << anchor;
  }
  EXPECT_NE(whole().find("### Fault of an unknown kind {#kind-other}"), std::string::npos);
}

TEST_F(KindReference, SaysWhatACodeMeans) {
  EXPECT_NE(whole().find("### 20 · External alarm {#kind-20}"), std::string::npos);
  const std::string text = entry("kind-03");
  EXPECT_EQ(text,
            "Below the title:\n\n    State: ⟨byte 1, second digit⟩\n\n"
            "**byte 1, second digit**: \n\n| Value | Shown as |\n|:---|:------|\n"
            "| 0 | ready to take over |\n| 1 | out of service |\n| 2–F | not known |\n\n\n");
}

TEST_F(KindReference, TellsNumbersFromCodesAndNarrowFromWide) {
  EXPECT_EQ(entry("kind-08"),
            "Below the title:\n\n     [module ⟨byte 1⟩]\n\n"
            "**byte 1**: the number, in decimal. From exchanges that send module numbers of 6 bits, only the "
            "lowest 6 "
            "bits count.\n\n");
}

TEST_F(KindReference, ShowsEachFormOfTheLines) {
  const std::string text = entry("kind-04");
  EXPECT_NE(
      text.find(
          "Below the title:\n\n    ⟨byte 1, second digit⟩\n     [battery ⟨byte 2⟩% charged]\n     [module "
          "⟨byte 3⟩]\n"),
      std::string::npos)
      << text;
  EXPECT_NE(text.find("Or, depending on the bytes:\n\n    ⟨byte 1, second digit⟩\n     [⟨byte 2⟩]\n"),
            std::string::npos)
      << text;
  EXPECT_NE(text.find("| 64–FF | battery fully charged |"), std::string::npos) << text;
}

TEST_F(KindReference, NamesPairsOfBytes) {
  const std::string text = entry("kind-13");
  EXPECT_NE(text.find("| 01 01 | no signal from the far end |\n| 02 09 | frame alignment lost |"),
            std::string::npos)
      << text;
  EXPECT_NE(text.find("| all others | nothing |"), std::string::npos) << text;
}

TEST_F(KindReference, KnowsOddNumbers) {
  EXPECT_NE(
      entry("kind-12").find("**bytes 3 to 4**: the four digits read as a decimal number; −1 above 255."),
      std::string::npos)
      << entry("kind-12");
  EXPECT_NE(entry("kind-16").find("only the lowest 3 bits count: the number, in decimal."), std::string::npos)
      << entry("kind-16");
  EXPECT_NE(entry("kind-17").find("a number of 16 bits with a sign; byte 3 comes first."), std::string::npos)
      << entry("kind-17");
  EXPECT_NE(entry("kind-05").find("**byte 1**: shown as it stands."), std::string::npos) << entry("kind-05");
}

TEST_F(KindReference, KnowsWhichDigitsADialledNumberHas) {
  EXPECT_NE(
      entry("kind-26").find("Digits are 0 1 2 3 4 5 6 7 8 9 A B; the first other character ends the number."),
      std::string::npos)
      << entry("kind-26");
  EXPECT_NE(entry("kind-27").find("(0 1 2 3 4 5 6 7 8 9 A B C D E); F fills up and is left out."),
            std::string::npos)
      << entry("kind-27");
}

TEST_F(KindReference, SaysWhatHasNothingButATitle) {
  EXPECT_EQ(entry("kind-02"), "Nothing but the title is shown.\n\n");
}

}  // namespace
}  // namespace vordane::tools
