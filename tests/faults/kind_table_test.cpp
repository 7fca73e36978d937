#include "faults/kind_lists.h"

#include <gtest/gtest.h>

#include "faults/fault_texts.h"
#include "text/utf8.h"

namespace vordane::faults {
namespace {

// The checks that the table passes at compile time must be able to fail.
constexpr FaultKind backwards[] = {{0x02, Family::titleOnly, 15}, {0x01, Family::titleOnly, 9}};
constexpr FaultKind twice[] = {{0x02, Family::titleOnly, 15}, {0x02, Family::titleOnly, 45}};
static_assert(!strictlyAscending(backwards));
static_assert(!strictlyAscending(twice));
static_assert(!wellFormed({0x01, Family::oneCode, 9, 0, {{{1, 2}}}, 15, 0x02}));    // another kind's list
static_assert(!wellFormed({0x01, Family::oneCode, 9, 0, {{{1, 2}}}, 15, noList}));  // held to no list
static_assert(!wellFormed({0x01, Family::oneCode, 9, 0, {{{1, 3}}}, 15, 0x01}));    // three characters
static_assert(!wellFormed({0x01, Family::oneCode, 9, 0, {{{0, 2}}}, 15, 0x01}));    // from nowhere
static_assert(!wellFormed({0x01, Family::oneCode, 9, 0, {{{23, 2}}}, 15, 0x01}));   // behind the eighth byte
static_assert(!wellFormed({0x01, Family::oneCode, 0, 0, {{{1, 2}}}, 15, 0x01}));    // no title
static_assert(!wellFormed({0x01, Family::oneCode, 9, 0, {}, 15, 0x01}));            // no field
static_assert(!wellFormed({0x01, Family::oneCode, 9, 14, {{{1, 2}}}, 15, 0x01}));   // a label nobody shows
static_assert(!wellFormed({0x01, Family::oneValue, 9, 0, {{{1, 2}}}}));             // no label
static_assert(!wellFormed({0x01, Family::titleOnly, 9, 0, {{{1, 2}}}}));            // a field nobody reads
static_assert(!wellFormed({0x01, Family::oneValue, 9, 14, {{{1, 2}}}, 15}));        // a code nobody shows
constexpr FaultKind sameTitle[] = {{0x02, Family::titleOnly, 15}, {0x03, Family::titleOnly, 15}};
static_assert(!titlesDiffer(sameTitle));
static_assert(wellFormed({0x01, Family::oneCode, 9, 0, {{{1, 2}}}, 15, 0x01}));

TEST(KindTable, TheIndexFindsEachRowAndTheDefaultForTheRest) {
  std::size_t own = 0;
  for (int kind = -32768; kind <= 32767; ++kind) {
    const FaultKind& row = kindIndex[kind];
    if (row.kind == 0) {
      EXPECT_EQ(&row, &defaultKind);
      continue;
    }
    EXPECT_EQ(row.kind, kind);
    ++own;
  }
  EXPECT_EQ(own, std::size(faultKinds));
}

// Lists that every installed language fills with so many items. A kind that comes later adds one of its own.
TEST(KindTable, TheListsOfTheWindowKeepTheirLengths) {
  struct List {
    std::u16string_view name;
    int items;
    bool atLeast;
  };
  constexpr bool exactly = false, atLeast = true;
  constexpr List lists[] = {
      {u"cboFK01", 17, exactly}, {u"cboFK03", 3, exactly},  {u"cboFK09", 17, exactly},
      {u"cboFK0A", 17, exactly}, {u"cboFK10", 17, exactly}, {u"cboFK11", 4, exactly},
      {u"cboFK12", 17, exactly}, {u"cboFK16", 9, exactly},  {u"cboFK17", 17, atLeast},
      {u"cboFK19", 17, exactly}, {u"cboFK1A", 17, exactly}, {u"cboFK20", 17, exactly},
      {u"cboFK23", 5, exactly},  {u"cboFK26", 17, exactly}, {u"cboFK28", 3, exactly},
      {u"cboFK2B", 17, exactly}, {u"cboFK30", 17, exactly}, {u"cboFK33", 5, exactly},
      {u"cboFK36", 17, exactly}, {u"cboFK3B", 17, exactly}, {u"cboFK48", 1, atLeast},
      {u"cboFK49", 1, atLeast},  {u"cboFK58", 1, atLeast},
  };
  for (const List& list : lists) {
    SCOPED_TRACE(text::toUtf8(list.name));
    const auto found = std::find_if(kindLists.begin(), kindLists.end(),
                                    [&](const KindList& own) { return own.name() == list.name; });
    ASSERT_NE(found, kindLists.end());
    EXPECT_EQ(found->items, list.items);
    EXPECT_EQ(found->atLeast, list.atLeast);
    EXPECT_EQ(found->kind, listKind(list.name));
  }
}

TEST(KindTable, EveryListBelongsToAKind) {
  for (const KindList& list : kindLists) EXPECT_EQ(kindIndex[list.kind].list, list.kind);
  EXPECT_EQ(kindLists.size(),
            static_cast<std::size_t>(std::count_if(std::begin(faultKinds), std::end(faultKinds), hasList)));
}

}  // namespace
}  // namespace vordane::faults
