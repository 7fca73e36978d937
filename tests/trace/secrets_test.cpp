#include "trace/secrets.h"

#include <gtest/gtest.h>

#include "text/numbers.h"
#include "text/utf8.h"

namespace vordane::trace {
namespace {

std::string shown(const Secrets& secrets, std::u16string_view text) {
  std::u16string place;
  return text::toUtf8(secrets.hidden(text, place));
}

TEST(TraceSecrets, AnIdentifierIsHiddenWhereverItStandsAsAWord) {
  Secrets secrets(false);
  secrets.keep(u"L1");
  EXPECT_EQ(shown(secrets, u"L1"), "(identifier 1)");
  EXPECT_EQ(shown(secrets, u"Logged in: L1."), "Logged in: (identifier 1).");
  EXPECT_EQ(shown(secrets, u"L1 and L1"), "(identifier 1) and (identifier 1)");
  EXPECT_EQ(shown(secrets, u"XL1 L12 L1_ L1ж"), "XL1 L12 L1_ L1ж") << "parts of other words";
}

TEST(TraceSecrets, ALongOneIsHiddenAlsoInsideOfWords) {
  Secrets secrets(false);
  secrets.keep(u"4711");
  EXPECT_EQ(shown(secrets, u"id=x4711y"), "id=x(identifier 1)y");
}

TEST(TraceSecrets, OneThatIsAPartOfAnotherLeavesNothingOfThatOne) {
  for (const bool shortFirst : {true, false}) {
    Secrets secrets(false);
    secrets.keep(shortFirst ? u"4711" : u"471123");
    secrets.keep(shortFirst ? u"471123" : u"4711");
    EXPECT_EQ(shown(secrets, u"471123"), shortFirst ? "(identifier 2)" : "(identifier 1)");
  }
}

TEST(TraceSecrets, EachHasANumberThatStays) {
  Secrets secrets(false);
  secrets.keep(u"first");
  secrets.keep(u"second");
  secrets.keep(u"first");
  EXPECT_EQ(shown(secrets, u"second first"), "(identifier 2) (identifier 1)");
}

TEST(TraceSecrets, WhatTurnsALogInDownIsNone) {
  Secrets secrets(false);
  for (const auto* word : {u"", u"BUSY", u"ERROR"}) secrets.keep(word);
  EXPECT_EQ(shown(secrets, u"BUSY ERROR"), "BUSY ERROR");
}

TEST(TraceSecrets, TheOldestAreForgotten) {
  Secrets secrets(false);
  for (std::size_t i = 0; i <= Secrets::most; ++i)
    secrets.keep(u"key" + text::decimal(static_cast<std::int64_t>(i)));
  EXPECT_EQ(shown(secrets, u"key0"), "key0");
  EXPECT_EQ(shown(secrets, u"key32"), "(identifier 33)");
}

TEST(TraceSecrets, NothingIsHiddenWhenTheyAreAskedFor) {
  Secrets secrets(true);
  secrets.keep(u"L1");
  EXPECT_EQ(shown(secrets, u"L1"), "L1");
}

}  // namespace
}  // namespace vordane::trace
