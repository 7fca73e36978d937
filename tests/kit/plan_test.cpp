// The lists that the kit works from.
#include "kit/core/plan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

namespace vordane::kit {
namespace {

using testing::ElementsAre;

const Program comTests{"x64", "com_tests", "x64/tests/windows/com/com_tests.exe", 410, false};

TEST(Programs, AreReadFromTheirColumns) {
  EXPECT_THAT(parsePrograms("# word size\tname\tpath\tseconds\thow\n"
                            "x64\tcom_tests\tx64/tests/windows/com/com_tests.exe\t410\twhole\r\n"
                            "\n"
                            "x86\tsuite_tests\tx86/s.exe\t380\talone\n"),
              ElementsAre(comTests, Program{"x86", "suite_tests", "x86/s.exe", 380, true}));
}

TEST(Programs, ALineThatMakesNoSenseIsNamed) {
  for (const char* bad : {"x65\ta\tb\t1\twhole", "x64\ta\tb\tsoon\twhole", "x64\ta\tb\t0\twhole",
                          "x64\ta\tb\t1\tsometimes", "x64\ta\tb\t1"}) {
    try {
      parsePrograms("# one\n" + std::string(bad));
      ADD_FAILURE() << bad;
    } catch (const std::runtime_error& failure) {
      EXPECT_EQ(std::string(failure.what()), "line 2 makes no sense: " + std::string(bad));
    }
  }
}

TEST(HeldBackTests, HaveAReason) {
  const auto held = parseHeldBack("com_tests\tRegistrar.*Machine*\tchanges rights of the machine\n");
  EXPECT_EQ(reasonToHold(held, comTests, "Registrar.OfTheMachineAll"), "changes rights of the machine");
  EXPECT_EQ(reasonToHold(held, comTests, "Registrar.Other"), "");
  EXPECT_EQ(reasonToHold(held, {"x64", "window", "w.exe", 1}, "Registrar.Machine"), "");
  EXPECT_THROW(parseHeldBack("com_tests\t*\t\n"), std::runtime_error);
}

TEST(Patterns, StarIsAnyTextAndQuestionMarkOneCharacter) {
  EXPECT_TRUE(fits("Registrar.Writes", "*"));
  EXPECT_TRUE(fits("Registrar.Writes", "Reg*.W*s"));
  EXPECT_TRUE(fits("A.B1", "A.B?"));
  EXPECT_FALSE(fits("A.B", "A.B?"));
  EXPECT_FALSE(fits("A.B", "A"));
  EXPECT_FALSE(fits("", "?"));
  EXPECT_TRUE(fits("", "*"));
}

TEST(Choice, IsOfWordSizeProgramAndTests) {
  EXPECT_TRUE(Choice().takes(comTests, "A.B"));
  const Choice choice({"x64/com_*:Registrar.*", "window"});
  EXPECT_TRUE(choice.takes(comTests));
  EXPECT_TRUE(choice.takes(comTests, "Registrar.Writes"));
  EXPECT_FALSE(choice.takes(comTests, "Callbacks.Come"));
  EXPECT_FALSE(choice.takes({"x86", "com_tests", "", 1}));
  EXPECT_TRUE(choice.takes({"x86", "window", "", 1}, "Any.Test"));
}

}  // namespace
}  // namespace vordane::kit
