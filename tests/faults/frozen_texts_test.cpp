// The shipped texts of every language through the program's own loaders and decoders, against descriptions
// that are frozen. A stored fault is found again by its description, letter for letter: whatever changes one
// of these lines, a comma in a text or a blank in a layout, stores every fault that an exchange still reports
// a second time, on every workstation. So a failure here is never mended in the expected files.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

#include "faults/cFaultDisplay.h"
#include "faults/kind_lists.h"
#include "golden_lines.h"
#include "language/comLanguage.h"
#include "language/form_controls.h"
#include "language_build.h"
#include "places.h"
#include "platform/control_types.h"
#include "platform/sqlite/engine.h"
#include "startup/databases.h"
#include "text/numbers.h"
#include "tools/language_folder.h"

namespace vordane::faults {
namespace {

constexpr int firstFaultText = 5, runNumber = 89;  // 89 stands in the run log

struct Texts {
  std::vector<std::u16string> messages;
  std::map<int, std::vector<std::u16string>> lists;
};

// Built and loaded as in an installed suite.
Texts shippedTexts(const std::string& language) {
  fakes::LanguageFolder folder(language);
  tools::Problems problems;
  const std::filesystem::path file = folder.files.folder() / "VORDANE.LNG";
  tools::buildOwnLanguage(tools::readLanguageSource(folder.folder(), problems), file);
  EXPECT_TRUE(problems.empty());
  const auto database = sqlite::makeEngine(startup::databases)->open(tools::toText(file), true);

  Texts texts;
  EXPECT_TRUE(comLanguage::LoadTextArray(texts.messages, u"tMessages", *database));
  window::Form form(std::u16string(formName), window::designedProperties(u"Form"));
  for (const KindList& list : kindLists)
    form.add(std::u16string(list.name()), -1, u"ComboBox", window::designedProperties(u"ComboBox"));
  EXPECT_TRUE(comLanguage::LoadComboLists(form, *database));
  for (const KindList& list : kindLists)
    for (const auto& item : form.control(list.name()).items()) texts.lists[list.kind].push_back(item.text);
  return texts;
}

FaultTextTable tableOf(const Texts& texts) {
  FaultTextTable table;
  table.setMessages(texts.messages);
  for (const auto& [kind, items] : texts.lists) table.setList(kind, items);
  return table;
}

// Every text replaced by a mark that tells which it is.
std::u16string messageMark(int number) {
  return u"<" + text::decimal(number) + u">";
}
std::u16string itemMark(int list, std::size_t code) {
  return u"<" + text::decimal(list) + u"." + text::decimal(static_cast<int>(code)) + u">";
}
FaultTextTable marks(const Texts& texts) {
  FaultTextTable table;
  for (int number = 0; number < static_cast<int>(texts.messages.size()); ++number)
    table.setMessage(number, messageMark(number));
  for (const auto& [kind, items] : texts.lists)
    for (std::size_t code = 0; code < items.size(); ++code) table.addItem(kind, itemMark(kind, code));
  return table;
}

std::vector<GoldenLine> frozenLines(const std::string& language) {
  return goldenLines(test::dataFolder() / "faults/shipped" / (language + ".tsv"));
}

// Everything that a kind shows of its list: a code stands in one byte, or in a digit of it. Some lists hold
// more than a record can ask for, since nothing is out of the range of a single digit.
std::u16string allCodes(const FaultTextTable& table, int kind) {
  constexpr std::u16string_view digits = u"0123456789ABCDEF";
  const std::u16string record = {digits[kind / 16U], digits[kind % 16U]};
  std::u16string all;
  for (std::size_t byte = 0; byte < 256; ++byte) {
    std::u16string data;
    for (int i = 0; i < 8; ++i) data += {digits[byte / 16], digits[byte % 16], u' '};
    all += cFaultDisplay(table, true).GetFaultMessage(record, data, {});
  }
  return all;
}

class FrozenTexts : public testing::TestWithParam<const char*> {
 protected:
  std::vector<GoldenLine> lines = frozenLines(GetParam());
  Texts texts = shippedTexts(GetParam());

  std::string file() const { return std::string("tests/data/faults/shipped/") + GetParam() + ".tsv"; }

  // The marks of all texts that the lines show.
  std::u16string shown() const {
    const FaultTextTable table = marks(texts);
    std::u16string all;
    for (const GoldenLine& line : lines)
      for (const bool wide : {true, false})
        if (line.holdsFor(wide))
          all += cFaultDisplay(table, wide).GetFaultMessage(line.record, line.first, line.second);
    return all;
  }
};

TEST_P(FrozenTexts, EveryDescriptionIsTheStoredOne) {
  const FaultTextTable table = tableOf(texts);
  for (const GoldenLine& line : lines) {
    for (const bool wide : {true, false}) {
      if (!line.holdsFor(wide)) continue;
      EXPECT_EQ(oneLine(cFaultDisplay(table, wide).GetFaultMessage(line.record, line.first, line.second)),
                line.description);
    }
  }
}

// The exchange's fault texts, and the titles and labels of the kinds that came later.
bool isFaultText(int number) {
  if (number <= lastSharedText) return number != runNumber;
  return std::any_of(std::begin(faultKinds), std::end(faultKinds),
                     [&](const FaultKind& row) { return row.title == number || row.label == number; });
}

TEST_P(FrozenTexts, EveryFaultTextIsShownByALine) {
  const std::u16string all = shown();
  ASSERT_GT(texts.messages.size(), static_cast<std::size_t>(lastFaultText))
      << "the title or label of a kind is missing in data/language/" << GetParam() << "/messages.tsv";
  for (int number = firstFaultText; number <= lastFaultText; ++number) {
    const bool needed = !texts.messages[static_cast<std::size_t>(number)].empty() && isFaultText(number);
    EXPECT_EQ(text::contains(all, messageMark(number)), needed)
        << "message " << number << " is shown by no line of " << file();
  }
}

TEST_P(FrozenTexts, EveryItemOfEveryListIsShownByALine) {
  const std::u16string all = shown();
  const FaultTextTable table = marks(texts);
  for (const auto& [list, items] : texts.lists) {
    const std::u16string reachable = allCodes(table, list);
    for (std::size_t code = 0; code < items.size(); ++code) {
      const std::u16string mark = itemMark(list, code);
      EXPECT_EQ(text::contains(all, mark), text::contains(reachable, mark))
          << kindName(list) << ": the text of code " << code << " is shown by no line of " << file();
    }
  }
}

// Lists may hold more than a record can ask for, but never the other way round.
TEST_P(FrozenTexts, WhatNoRecordCanAskForIsKnown) {
  const FaultTextTable table = marks(texts);
  const std::pair<int, std::size_t> beyondReach[] = {
      {0x01, 16}, {0x10, 16}, {0x16, 8}, {0x20, 16}, {0x30, 16}};
  for (const auto& [list, code] : beyondReach)
    EXPECT_FALSE(text::contains(allCodes(table, list), itemMark(list, code))) << kindName(list);
}

TEST_P(FrozenTexts, EveryKindHasALineAndSoHasNone) {
  std::set<int> kinds;
  for (const GoldenLine& line : lines) kinds.insert(text::hexField(text::left(line.record, 2)));
  for (const FaultKind& row : faultKinds)
    EXPECT_TRUE(kinds.contains(row.kind)) << kindName(row.kind) << " has no line in " << file();
  EXPECT_TRUE(kinds.contains(0));
}

// The same faults in each language, so that none is frozen less than the others.
TEST_P(FrozenTexts, TheFaultsAreThoseOfEveryLanguage) {
  const std::vector<GoldenLine> english = frozenLines("en");
  ASSERT_EQ(lines.size(), english.size()) << file() << " has other faults than that of en";
  for (std::size_t i = 0; i < lines.size(); ++i) {
    EXPECT_EQ(lines[i].width, english[i].width);
    EXPECT_EQ(lines[i].record, english[i].record);
    EXPECT_EQ(lines[i].first, english[i].first);
    EXPECT_EQ(lines[i].second, english[i].second);
  }
}

// A description that is stored in this language, read in each of the others.
TEST_P(FrozenTexts, EveryStoredDescriptionIsReadInEveryOtherLanguage) {
  const FaultTextTable own = tableOf(texts);
  const bool wide = true;
  const cFaultDisplay decoder(own, wide);
  for (const char* language : {"en", "ru", "ja"}) {
    const FaultTextTable other = tableOf(shippedTexts(language));
    const std::vector<GoldenLine> expected = frozenLines(language);
    ASSERT_EQ(lines.size(), expected.size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
      std::u16string stored = cFaultDisplay(own, lines[i].holdsFor(true))
                                  .GetFaultMessage(lines[i].record, lines[i].first, lines[i].second);
      ASSERT_EQ(oneLine(stored), lines[i].description);
      std::u16string read;
      for (const auto& piece : decoder.translateStored(text::left(lines[i].record, 2), stored, other))
        read += piece.text;
      EXPECT_EQ(oneLine(read), expected[i].description);
      if (std::string(language) == GetParam()) continue;
      stored.front() = u'#';
      EXPECT_TRUE(decoder.translateStored(text::left(lines[i].record, 2), stored, other).empty());
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Languages, FrozenTexts, testing::Values("en", "ru", "ja"),
                         [](const auto& language) { return std::string(language.param); });

}  // namespace
}  // namespace vordane::faults
