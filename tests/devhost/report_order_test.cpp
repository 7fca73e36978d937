#include "devhost/core/report_order.h"

#include <gtest/gtest.h>

namespace vordane::devhost {
namespace {

using Column = SortKey::Column;

TEST(SortFormula, NamesAColumnAndADirection) {
  EXPECT_EQ(parseSortFormula(u"+{FaultDisplay.Fault}"), (SortKey{Column::fault, false}));
  EXPECT_EQ(parseSortFormula(u"-{FaultDisplay.Fault}"), (SortKey{Column::fault, true}));
  EXPECT_EQ(parseSortFormula(u"+{FaultDisplay.Alarm}"), (SortKey{Column::alarm, false}));
  EXPECT_EQ(parseSortFormula(u"-{FaultDisplay.Date}"), (SortKey{Column::date, true}));
  EXPECT_EQ(parseSortFormula(u"+{FaultDisplay.Count}"), (SortKey{Column::count, false}));
  EXPECT_EQ(parseSortFormula(u"-{faultdisplay.cpu}"), (SortKey{Column::cpu, true}));
  EXPECT_EQ(parseSortFormula(u"+{FaultDisplay.Description}"), (SortKey{Column::description, false}));
}

TEST(SortFormula, AnythingElseIsNone) {
  for (const std::u16string_view wrong :
       {u"", u"+", u"{FaultDisplay.Date}", u"+{PbxList.Date}", u"+{FaultDisplay.ID}", u"+{FaultDisplay.}",
        u"+{FaultDisplay.Date", u"*{FaultDisplay.Date}"})
    EXPECT_FALSE(parseSortFormula(wrong));
}

TEST(SelectionFormula, HoldsTheName) {
  EXPECT_EQ(parseSelectionFormula(u"{PbxList.PBXName} = 'PBX-1'"), u"PBX-1");
  EXPECT_EQ(parseSelectionFormula(u"{PbxList.PBXName} = ''"), u"");
  EXPECT_EQ(parseSelectionFormula(u"{PBXList.PBXName}='A = \"B\"'"), u"A = \"B\"");
  EXPECT_EQ(parseSelectionFormula(u"{PbxList.PBXName} = 'O''Hara'"), u"O'Hara");
}

TEST(SelectionFormula, ABrokenOneIsNone) {
  for (const std::u16string_view wrong :
       {u"", u"{PbxList.PBXName}", u"{PbxList.PBXName} = PBX-1", u"{PbxList.PBXName} = 'O'Hara'",
        u"{PbxList.PBXName} = '", u"{PbxList.ID} = '1'", u"{PbxList.PBXName} = 'A' or 'B'"})
    EXPECT_FALSE(parseSelectionFormula(wrong));
}

Fault fault(std::u16string kind, std::u16string alarm, std::u16string date, std::u16string cpu,
            std::u16string text, std::int32_t count) {
  return {std::move(kind), std::move(alarm), std::move(date), std::move(cpu), std::move(text), count};
}

// Five faults that each column orders differently, ties included.
std::vector<Fault> faults() {
  return {fault(u"02", u"MN", u"2006/11/27 10:15", u"LP 3", u"delta", 1),
          fault(u"01", u"MJ", u"2006/11/27 10:15", u"MP   ", u"Charlie", 2),
          fault(u"01", u"MN", u"2006/11/26 08:00", u"LP 1", u"alpha", 3),
          fault(u"3B", u"MJ", u"2006/11/28 23:59", u"LP 1", u"bravo", 4),
          fault(u"01", u"MN", u"2006/11/26 08:00", u"LP 1", u"alpha", 5)};
}

std::vector<std::int32_t> sortedBy(const char16_t (&sign)[2],
                                   std::initializer_list<const char16_t*> columns) {
  std::vector<SortKey> keys;
  for (const char16_t* column : columns)
    keys.push_back(parseSortFormula(std::u16string(sign) + u"{FaultDisplay." + column + u"}").value());
  std::vector<Fault> list = faults();
  sortFaults(list, keys);
  std::vector<std::int32_t> counts;
  for (const Fault& sorted : list) counts.push_back(sorted.count);
  return counts;
}

using Counts = std::vector<std::int32_t>;

TEST(ReportOrder, EveryKeyAscending) {
  EXPECT_EQ(sortedBy(u"+", {u"Fault", u"Alarm", u"Date", u"Count", u"CPU", u"Description"}),
            (Counts{2, 3, 5, 1, 4}));
  EXPECT_EQ(sortedBy(u"+", {u"Alarm", u"Fault", u"Date", u"Count", u"CPU", u"Description"}),
            (Counts{2, 4, 3, 5, 1}));
  EXPECT_EQ(sortedBy(u"+", {u"Date", u"Count", u"Fault", u"Alarm", u"CPU", u"Description"}),
            (Counts{3, 5, 1, 2, 4}));
  EXPECT_EQ(sortedBy(u"+", {u"CPU", u"Fault", u"Alarm", u"Date", u"Count", u"Description"}),
            (Counts{3, 5, 4, 1, 2}));
  EXPECT_EQ(sortedBy(u"+", {u"Description", u"Fault", u"Alarm", u"Date", u"Count", u"CPU"}),
            (Counts{3, 5, 4, 2, 1}));
}

TEST(ReportOrder, EveryKeyDescending) {
  EXPECT_EQ(sortedBy(u"-", {u"Fault", u"Alarm", u"Date", u"Count", u"CPU", u"Description"}),
            (Counts{4, 1, 5, 3, 2}));
  EXPECT_EQ(sortedBy(u"-", {u"Alarm", u"Fault", u"Date", u"Count", u"CPU", u"Description"}),
            (Counts{1, 5, 3, 4, 2}));
  EXPECT_EQ(sortedBy(u"-", {u"Date", u"Count", u"Fault", u"Alarm", u"CPU", u"Description"}),
            (Counts{4, 2, 1, 5, 3}));
  EXPECT_EQ(sortedBy(u"-", {u"CPU", u"Fault", u"Alarm", u"Date", u"Count", u"Description"}),
            (Counts{2, 1, 4, 5, 3}));
  EXPECT_EQ(sortedBy(u"-", {u"Description", u"Fault", u"Alarm", u"Date", u"Count", u"CPU"}),
            (Counts{1, 2, 4, 5, 3}));
}

TEST(ReportOrder, DirectionsMayDiffer) {
  std::vector<Fault> list = faults();
  const SortKey keys[] = {{Column::alarm, true}, {Column::count, false}};
  sortFaults(list, keys);
  EXPECT_EQ(list[0].count, 1);
  EXPECT_EQ(list[4].count, 4);
}

TEST(ReportOrder, NullFirstCaseAndTrailingBlanksDoNotCount) {
  std::vector<Fault> list = {
      fault(u"b", u"", u"", u"", u"", 1),          fault(u"A ", u"", u"", u"", u"", 2),
      fault(u"a", u"", u"", u"", u"", 3),          fault(u"", u"", u"", u"", u"", 4),
      fault(u"\U0001F4DE", u"", u"", u"", u"", 5), fault(u"\uFF21", u"", u"", u"", u"", 6)};
  list.push_back({});
  list.back().count = 7;
  const SortKey keys[] = {{Column::fault, false}};
  sortFaults(list, keys);
  Counts counts;
  for (const Fault& sorted : list) counts.push_back(sorted.count);
  EXPECT_EQ(counts, (Counts{7, 4, 2, 3, 1, 6, 5}));  // code points: full-width A before the telephone
}

TEST(ReportOrder, WithoutKeysNothingMoves) {
  std::vector<Fault> list = faults();
  sortFaults(list, {});
  for (std::size_t i = 0; i < list.size(); ++i) EXPECT_EQ(list[i].count, static_cast<std::int32_t>(i) + 1);
}

}  // namespace
}  // namespace vordane::devhost
