#include "faults/kind_table.h"

#include <gtest/gtest.h>

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
static_assert(!wellFormed({0x01, Family::oneCode, 0}));                             // no title
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
  EXPECT_EQ(own, 52u);
}

TEST(KindTable, EveryKindHasATitleOfItsOwn) {
  for (const FaultKind& a : faultKinds)
    for (const FaultKind& b : faultKinds) EXPECT_EQ(a.title == b.title, a.kind == b.kind);
}

TEST(KindTable, HasTheListsOfTheWindow) {
  constexpr int lists[] = {0x01, 0x03, 0x09, 0x0A, 0x10, 0x11, 0x12, 0x16, 0x17, 0x19, 0x1A, 0x20,
                           0x23, 0x26, 0x28, 0x2B, 0x30, 0x33, 0x36, 0x3B, 0x48, 0x49, 0x58};
  std::vector<int> found;
  for (const FaultKind& row : faultKinds)
    if (row.list != noList) found.push_back(row.list);
  EXPECT_EQ(found, std::vector<int>(std::begin(lists), std::end(lists)));
}

}  // namespace
}  // namespace vordane::faults
