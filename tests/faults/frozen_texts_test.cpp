// The shipped texts of every language through the program's own loaders and decoders, against descriptions
// that are frozen. A stored fault is found again by its description, letter for letter: whatever changes one
// of these lines, a comma in a text or a blank in a layout, stores every fault that an exchange still reports
// a second time, on every workstation. So a failure here is never mended in the expected files.
#include <gtest/gtest.h>

#include <map>
#include <set>

#include "faults/cFaultDisplay.h"
#include "faults/kind_table.h"
#include "golden_lines.h"
#include "language/comLanguage.h"
#include "language/form_controls.h"
#include "language_build.h"
#include "places.h"
#include "platform/control_types.h"
#include "platform/sqlite/engine.h"
#include "text/numbers.h"
#include "tools/language_folder.h"

namespace vordane::faults {
namespace {

constexpr int firstFaultText = 5, lastFaultText = 164, runNumber = 89;  // 89 stands in the run log

struct Texts {
  std::vector<std::u16string> messages;
  std::map<int, std::vector<std::u16string>> lists;
};

// Built and loaded as in an installed suite.
Texts shippedTexts(const std::string& language) {
  fakes::LanguageFolder folder(language);
  tools::Problems problems;
  const std::filesystem::path file = folder.files.folder() / "VORDANE.LNG";
  tools::buildOwnLanguage(tools::readLanguage(folder.folder(), problems), file);
  EXPECT_TRUE(problems.empty());
  const auto database = sqlite::makeEngine()->open(tools::toText(file), true);

  Texts texts;
  EXPECT_TRUE(comLanguage::LoadTextArray(texts.messages, u"tMessages", *database));
  window::Form form(std::u16string(formName), window::designedProperties(u"Form"));
  for (const KindList& list : kindLists)
    form.add(std::u16string(list.name), -1, u"ComboBox", window::designedProperties(u"ComboBox"));
  EXPECT_TRUE(comLanguage::LoadComboLists(form, *database));
  for (const KindList& list : kindLists)
    for (const auto& item : form.control(list.name).items())
      texts.lists[*listKind(list.name)].push_back(item.text);
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

// What a list holds beyond what a record can ask for: the code is one digit of four bits or three, so that
// nothing is out of its range.
const std::set<std::u16string> beyondReach = {itemMark(0x01, 16), itemMark(0x10, 16), itemMark(0x16, 8),
                                              itemMark(0x20, 16), itemMark(0x30, 16)};

class FrozenTexts : public testing::TestWithParam<const char*> {
 protected:
  std::vector<GoldenLine> lines = frozenLines(GetParam());
  Texts texts = shippedTexts(GetParam());

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

TEST_P(FrozenTexts, EveryFaultTextIsShownByALine) {
  const std::u16string all = shown();
  for (int number = firstFaultText; number <= lastFaultText; ++number) {
    const bool needed = !texts.messages[static_cast<std::size_t>(number)].empty() && number != runNumber;
    EXPECT_EQ(text::contains(all, messageMark(number)), needed) << number;
  }
}

TEST_P(FrozenTexts, EveryItemOfEveryListIsShownByALine) {
  const std::u16string all = shown();
  for (const auto& [list, items] : texts.lists)
    for (std::size_t code = 0; code < items.size(); ++code) {
      const std::u16string mark = itemMark(list, code);
      EXPECT_EQ(text::contains(all, mark), beyondReach.count(mark) == 0) << text::toUtf8(mark);
    }
}

TEST_P(FrozenTexts, EveryKindHasALineAndSoHasNone) {
  std::set<int> kinds;
  for (const GoldenLine& line : lines) kinds.insert(text::hexField(text::left(line.record, 2)));
  for (const FaultKind& row : faultKinds) EXPECT_TRUE(kinds.contains(row.kind)) << static_cast<int>(row.kind);
  EXPECT_TRUE(kinds.contains(0));
}

// The same faults in each language, so that none is frozen less than the others.
TEST_P(FrozenTexts, TheFaultsAreThoseOfEveryLanguage) {
  const std::vector<GoldenLine> english = frozenLines("en");
  ASSERT_EQ(lines.size(), english.size());
  for (std::size_t i = 0; i < lines.size(); ++i) {
    EXPECT_EQ(lines[i].width, english[i].width);
    EXPECT_EQ(lines[i].record, english[i].record);
    EXPECT_EQ(lines[i].first, english[i].first);
    EXPECT_EQ(lines[i].second, english[i].second);
  }
}

INSTANTIATE_TEST_SUITE_P(Languages, FrozenTexts, testing::Values("en", "ru", "ja"),
                         [](const auto& language) { return std::string(language.param); });

}  // namespace
}  // namespace vordane::faults
