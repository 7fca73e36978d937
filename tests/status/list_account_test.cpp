#include "status/list_account.h"

#include <gtest/gtest.h>

#include "fakes/memory_store_form.h"

namespace vordane::status {
namespace {

class AccountTest : public testing::Test {
 protected:
  fakes::MemoryStoreForm form;
  ListAccount account{u"now", ListEnd::complete, u"", 12, 9, 3};
};

TEST_F(AccountTest, AddsUp) {
  EXPECT_EQ(account.refused(), 0);
  account.added = 2;
  EXPECT_EQ(account.refused(), 7);
}

TEST_F(AccountTest, IsOneLine) {
  EXPECT_EQ(statusText(form.shared, account), u"now: 12 received, 9 new, 3 stored, 0 refused");
  EXPECT_EQ(runLogText(form.shared, account), u"12 received, 9 new, 3 stored, 0 refused");
}

TEST_F(AccountTest, NamesItsExchange) {
  form.shared.Messages[message::statusListComplete] = u"{6} at {1}: {2}={3}+{4}+{5}";
  account.exchange = u"PBX-1";
  EXPECT_EQ(statusText(form.shared, account), u"PBX-1 at now: 12=9+3+0");
}

TEST_F(AccountTest, TheReasonOfACutListStandsInItsPlaceOnly) {
  form.shared.Messages[message::reasonCutShort] = u"cut";
  EXPECT_EQ(reasonText(form.shared, account), u"");
  account.end = ListEnd::cutShort;
  EXPECT_EQ(reasonText(form.shared, account), u"cut");
  account.end = ListEnd::tooLong;
  EXPECT_EQ(reasonText(form.shared, account), u"too long");
}

TEST_F(AccountTest, SaysWhyItIsIncomplete) {
  const auto line = [&](ListEnd end, std::u16string cause) {
    account.end = end;
    account.cause = std::move(cause);
    return runLogText(form.shared, account).substr(std::u16string(u"incomplete, ").size());
  };
  const std::u16string counts = u"12 received, 9 new, 3 stored, 0 refused";
  EXPECT_EQ(line(ListEnd::cutShort, u""), counts);
  EXPECT_EQ(line(ListEnd::tooLong, u""), counts + u": too long");
  EXPECT_EQ(line(ListEnd::textCut, u""), counts + u": text cut");
  EXPECT_EQ(line(ListEnd::accessError, u"ZUL_TIMEOUT"), counts + u": access: ZUL_TIMEOUT");
  EXPECT_EQ(line(ListEnd::databaseError, u"disk full"), counts + u": database: disk full");
  EXPECT_EQ(line(ListEnd::noDatabase, u""), counts + u": not open");
}

}  // namespace
}  // namespace vordane::status
