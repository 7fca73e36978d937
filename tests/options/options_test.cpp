#include "options/options.h"

#include <gtest/gtest.h>

namespace vordane::options {
namespace {

// A program that takes something of everything.
class Carrier : public Program {
 public:
  Carrier() : Program("carry", "Carries things.", 4) {
    option("--to", "PLACE", place, "where to");
    flag("--fast", fast, "at once");
    flag("--slow", slow, "some day");
    option("--weight", "KILOGRAMS", weight, "of the whole");
    options("--stop", "PLACE", stops, "on the way");
    argument("THING", thing, "the thing");
    optionalArgument("BOX", box, "what it lies in");
    oneAtMost({"--fast", "--slow"});
    needs("--weight", "--to");
    runs([] { return 17; });
  }

  std::string place = "here", thing, box;
  Words stops;
  std::optional<long> weight;
  bool fast = false, slow = false;
};

// One with commands, and commands of a command.
class Keeper : public Program {
 public:
  Keeper() : Program("keep", "Keeps things.", 2) {
    Command& store = command("store", "Stores a thing.");
    store.argument("THING", thing, "the thing");
    store.runs([this] { return ran("store"); });
    Command& box = command("box", "Looks after boxes.");
    Command& empty = box.command("empty", "Empties boxes.");
    empty.flag("--carefully", carefully, "nothing breaks");
    empty.arguments("BOX", boxes, "the box");
    empty.runs([this] { return ran("empty"); });
    Command& mend = box.command("mend", "Mends a box.");
    mend.option("--glue", "NAME", glue, "a glue");
    mend.option("--nails", "NUMBER", nails, "so many nails");
    mend.exactlyOne({"--glue", "--nails"});
    mend.notes("Exit code: 0 mended, 3 broken for good.");
    mend.runs([this] { return ran("mend"); });
  }

  std::string thing, done;
  std::optional<std::string> glue;
  std::optional<long> nails;
  Words boxes;
  bool carefully = false;

 private:
  int ran(const char* what) {
    done = what;
    return 3;
  }
};

std::string mistake(Program&& program, const Words& words) {
  const auto ending = program.read(words);
  if (!ending) return "none";
  EXPECT_EQ(ending->output, "");
  return std::to_string(ending->code) + ' ' + ending->errors.substr(0, ending->errors.find('\n'));
}

TEST(Options, OptionsStandAnywhereAndArgumentsInTheirOrder) {
  Carrier carrier;
  ASSERT_EQ(carrier.read({"--to", "Aix", "lamp", "--fast", "chest", "--weight=12"}), std::nullopt);
  EXPECT_EQ(carrier.place, "Aix");
  EXPECT_EQ(carrier.thing, "lamp");
  EXPECT_EQ(carrier.box, "chest");
  EXPECT_EQ(carrier.weight, 12);
  EXPECT_TRUE(carrier.fast);
  EXPECT_FALSE(carrier.slow);
  EXPECT_EQ(carrier.perform(), 17);
}

TEST(Options, WhatIsNotGivenKeepsItsValue) {
  Carrier carrier;
  ASSERT_EQ(carrier.read({"lamp"}), std::nullopt);
  EXPECT_EQ(carrier.place, "here");
  EXPECT_EQ(carrier.box, "");
  EXPECT_EQ(carrier.weight, std::nullopt);
  EXPECT_EQ(carrier.stops, Words{});
}

// Nothing given and given as nothing are not the same.
TEST(Options, AnEmptyWordIsAValue) {
  Keeper keeper, other;
  ASSERT_EQ(keeper.read({"box", "mend", "--glue", ""}), std::nullopt);
  EXPECT_EQ(keeper.glue, "");
  ASSERT_EQ(other.read({"box", "mend", "--nails", "0"}), std::nullopt);
  EXPECT_EQ(other.glue, std::nullopt);
  EXPECT_EQ(other.nails, 0);
}

TEST(Options, TheLastOfTwoCountsAndSeveralAreKept) {
  Carrier carrier;
  ASSERT_EQ(
      carrier.read({"--to", "a", "lamp", "--to", "b", "--fast", "--fast", "--stop", "c", "--stop", "d"}),
      std::nullopt);
  EXPECT_EQ(carrier.place, "b");
  EXPECT_EQ(carrier.stops, (Words{"c", "d"}));
}

// Names of files and exchanges hold every letter, and so do their values.
TEST(Options, EveryWordIsTakenAsItStands) {
  for (const std::string word : {"[a,b]", "{}", "", "\"q\"", "/x", "C:\\Станция 1\\故障.mdb", "a=b", "-",
                                 "%%", "++", "'", " ", "-1", "🔔"}) {
    Carrier carrier;
    ASSERT_EQ(carrier.read({word, word, "--to", word, "--stop", word, "--stop", word}), std::nullopt) << word;
    EXPECT_EQ(carrier.thing, word);
    EXPECT_EQ(carrier.box, word);
    EXPECT_EQ(carrier.place, word);
    EXPECT_EQ(carrier.stops, (Words{word, word}));
    if (word == "++") continue;  // ends a command
    Keeper keeper;
    ASSERT_EQ(keeper.read({"box", "empty", "x", word, word}), std::nullopt) << word;
    EXPECT_EQ(keeper.boxes, (Words{"x", word, word}));
  }
  Carrier equals;
  ASSERT_EQ(equals.read({"lamp", "--to=Б=[1]"}), std::nullopt);
  EXPECT_EQ(equals.place, "Б=[1]");
}

// A thing may be called as an option or a command is.
TEST(Options, NamesMayLookLikeOptionsAndCommands) {
  Carrier carrier;
  ASSERT_EQ(carrier.read({"--to", "--fast", "--", "--slow"}), std::nullopt);
  EXPECT_EQ(carrier.place, "--fast");
  EXPECT_EQ(carrier.thing, "--slow");
  EXPECT_FALSE(carrier.fast || carrier.slow);
  Keeper keeper;
  ASSERT_EQ(keeper.read({"store", "box"}), std::nullopt);
  EXPECT_EQ(keeper.thing, "box");
  EXPECT_EQ(keeper.perform(), 3);
  EXPECT_EQ(keeper.done, "store");
  Keeper boxes;
  ASSERT_EQ(boxes.read({"box", "empty", "box", "--carefully", "store", "empty", "--", "mend"}), std::nullopt);
  EXPECT_EQ(boxes.boxes, (Words{"box", "store", "empty", "mend"}));
  EXPECT_TRUE(boxes.carefully);
  boxes.perform();
  EXPECT_EQ(boxes.done, "empty");
}

TEST(Options, AMistakeIsNamedAndEndsWithItsCode) {
  EXPECT_EQ(mistake(Carrier(), {}), "4 carry: the thing is missing");
  EXPECT_EQ(mistake(Carrier(), {"a", "b", "c"}), "4 carry: c is one argument too many");
  EXPECT_EQ(mistake(Carrier(), {"a", "--fats"}), "4 carry: unknown option --fats");
  EXPECT_EQ(mistake(Carrier(), {"--fats"}), "4 carry: unknown option --fats");
  EXPECT_EQ(mistake(Carrier(), {"a", "-f"}), "4 carry: unknown option -f");
  EXPECT_EQ(mistake(Carrier(), {"a", "--to"}), "4 carry: --to needs PLACE behind it");
  EXPECT_EQ(mistake(Carrier(), {"a", "--to="}), "4 carry: --to needs PLACE behind it");
  EXPECT_EQ(mistake(Carrier(), {"a", "--stop"}), "4 carry: --stop needs PLACE behind it");
  EXPECT_EQ(mistake(Carrier(), {"a", "--fast=no"}), "4 carry: --fast takes no value");
  EXPECT_EQ(mistake(Carrier(), {"a", "--fast", "--slow"}), "4 carry: --fast and --slow exclude each other");
  EXPECT_EQ(mistake(Carrier(), {"a", "--weight", "1"}), "4 carry: --weight requires --to");
  for (const std::string word : {"heavy", "-1", "1kg", "", " 1", "1.5", "99999999999999999999"})
    EXPECT_EQ(mistake(Carrier(), {"a", "--to", "b", "--weight", word}),
              "4 carry: --weight: " + word + " is no number from 0");
  EXPECT_EQ(mistake(Keeper(), {}), "2 keep: a command is missing");
  EXPECT_EQ(mistake(Keeper(), {"stroe", "x"}), "2 keep: there is no command stroe");
  EXPECT_EQ(mistake(Keeper(), {"--store"}), "2 keep: unknown option --store");
  EXPECT_EQ(mistake(Keeper(), {"store"}), "2 keep store: the thing is missing");
  EXPECT_EQ(mistake(Keeper(), {"store", "a", "--", "b"}), "2 keep store: b is one argument too many");
  EXPECT_EQ(mistake(Keeper(), {"--fast", "store", "a"}), "2 keep store: unknown option --fast");
  EXPECT_EQ(mistake(Keeper(), {"box"}), "2 keep box: a command is missing");
  EXPECT_EQ(mistake(Keeper(), {"box", "fill"}), "2 keep box: there is no command fill");
  EXPECT_EQ(mistake(Keeper(), {"box", "empty"}), "2 keep box empty: the box is missing");
  EXPECT_EQ(mistake(Keeper(), {"box", "empty", "a", "--bravely"}),
            "2 keep box empty: unknown option --bravely");
  EXPECT_EQ(mistake(Keeper(), {"box", "mend"}), "2 keep box mend: --glue or --nails is missing");
  EXPECT_EQ(mistake(Keeper(), {"box", "mend", "--glue", "g", "--nails", "1"}),
            "2 keep box mend: --glue and --nails exclude each other");
}

TEST(Options, BehindAMistakeStandsTheUsage) {
  EXPECT_EQ(
      Carrier().read({}),
      (Ending{
          4, "",
          "carry: the thing is missing\n"
          "usage: carry [--to PLACE] [--fast | --slow] [--weight KILOGRAMS] [--stop PLACE] ... THING [BOX]\n"
          "       carry --help | --version\n"}));
  EXPECT_EQ(Keeper().read({"box"}), (Ending{2, "",
                                            "keep box: a command is missing\n"
                                            "usage: keep box empty [--carefully] BOX ...\n"
                                            "       keep box mend (--glue NAME | --nails NUMBER)\n"}));
  EXPECT_EQ(Keeper().read({"go"})->errors,
            "keep: there is no command go\n"
            "usage: keep COMMAND [ARGUMENT ...]\n"
            "       keep store THING\n"
            "       keep box empty [--carefully] BOX ...\n"
            "       keep box mend (--glue NAME | --nails NUMBER)\n"
            "       keep COMMAND --help | --help | --version\n");
}

TEST(Options, HelpIsOutputAndNoMistake) {
  for (const Words& words : {Words{"--help"}, Words{"-h"}, Words{"a", "--help"}, Words{"--bad", "-h"}})
    EXPECT_EQ(
        Carrier().read(words),
        (Ending{0,
                "usage: carry [--to PLACE] [--fast | --slow] [--weight KILOGRAMS] [--stop PLACE] ... THING "
                "[BOX]\n"
                "       carry --help | --version\n"
                "\n"
                "Carries things.\n"
                "\n"
                "  --to PLACE          where to\n"
                "  --fast              at once\n"
                "  --slow              some day\n"
                "  --weight KILOGRAMS  of the whole\n"
                "  --stop PLACE        on the way\n"
                "  THING               the thing\n"
                "  BOX                 what it lies in\n"
                "  -h, --help          this text\n"
                "  --version           the version\n",
                ""}));
}

TEST(Options, EachCommandHasItsHelp) {
  EXPECT_EQ(Keeper().read({"--help"})->output,
            "usage: keep COMMAND [ARGUMENT ...]\n"
            "       keep store THING\n"
            "       keep box empty [--carefully] BOX ...\n"
            "       keep box mend (--glue NAME | --nails NUMBER)\n"
            "       keep COMMAND --help | --help | --version\n"
            "\n"
            "Keeps things.\n"
            "\n"
            "  store       Stores a thing.\n"
            "  box         Looks after boxes.\n"
            "  -h, --help  this text; behind a command more of it\n"
            "  --version   the version\n");
  EXPECT_EQ(Keeper().read({"box", "--help"})->output,
            "usage: keep box empty [--carefully] BOX ...\n"
            "       keep box mend (--glue NAME | --nails NUMBER)\n"
            "\n"
            "Looks after boxes.\n"
            "\n"
            "  empty       Empties boxes.\n"
            "  mend        Mends a box.\n"
            "  -h, --help  this text; behind a command more of it\n");
  const std::string mend =
      "usage: keep box mend (--glue NAME | --nails NUMBER)\n"
      "\n"
      "Mends a box.\n"
      "\n"
      "  --glue NAME     a glue\n"
      "  --nails NUMBER  so many nails\n"
      "  -h, --help      this text\n"
      "\n"
      "Exit code: 0 mended, 3 broken for good.\n";
  for (const Words& words : {Words{"box", "mend", "--help"}, Words{"box", "mend", "-h", "--glue", "x"}})
    EXPECT_EQ(Keeper().read(words), (Ending{0, mend, ""}));
}

TEST(Options, LongHelpIsBrokenIntoLines) {
  Program program("p", "Does.", 1);
  bool given = false;
  program.flag(
      "--option", given,
      "about as many words as fill one line of a page with a hundred columns and then some more of them\n"
      "and a line of its own");
  EXPECT_EQ(
      program.read({"--help"})->output,
      "usage: p [--option]\n"
      "       p --help | --version\n"
      "\n"
      "Does.\n"
      "\n"
      "  --option    about as many words as fill one line of a page with a hundred columns and then some\n"
      "              more of them\n"
      "              and a line of its own\n"
      "  -h, --help  this text\n"
      "  --version   the version\n");
}

TEST(Options, TheVersionStandsBehindTheName) {
  EXPECT_EQ(Keeper().read({"--version"}), (Ending{0, "keep " + std::string(version()) + "\n", ""}));
  EXPECT_EQ(version(), "1.0.12");
}

TEST(Options, WhatNobodyDeclaresCanNotBeGrouped) {
  Program program("p", "Does.", 1);
  EXPECT_THROW(program.oneAtMost({"--a"}), std::logic_error);
}

}  // namespace
}  // namespace vordane::options
