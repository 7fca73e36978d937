#include "zulsim/core/answer_record.h"

#include <gtest/gtest.h>

namespace vordane::zulsim {
namespace {

using automation::AutomationError;
using automation::byVal;
using automation::get;
using automation::put;
using automation::toLong;
using automation::toText;

std::u16string at(automation::Object& record, std::u16string_view column, std::int32_t row) {
  return toText(get(record, column, {byVal(row)}));
}

TEST(AnswerRecord, BeginsLikeARequestRecord) {
  AnswerRecord record;
  EXPECT_EQ(std::get<std::u16string>(get(record, u"ObjectID")), u"1");
  EXPECT_EQ(std::get<std::int16_t>(get(record, u"CommandType")), 20);
  EXPECT_EQ(std::get<bool>(get(record, u"ShowBusy")), true);
  EXPECT_EQ(std::get<bool>(get(record, u"WaitFlag")), true);
  EXPECT_EQ(std::get<std::int32_t>(get(record, u"ErrCode")), 0);
  EXPECT_EQ(std::get<std::u16string>(get(record, u"Message")), u"");
  EXPECT_EQ(toLong(get(record, u"Count")), 0);
}

TEST(AnswerRecord, HasEveryMemberOfARequestRecordAndMessage) {
  for (const std::u16string_view name :
       {u"Mode",        u"Key",       u"CompIndication",  u"ObjectID", u"PBXName",   u"PBXNumber",
        u"ShowBusy",    u"WaitFlag",  u"LoginID",         u"Tag",      u"RequestID", u"TimeTag",
        u"CommandType", u"Count",     u"ErrCode",         u"Message",  u"CMD",       u"FirstData",
        u"SecondData",  u"ExtraData", u"DescriptionData", u"CK",       u"ERMFP",     u"MSGFP",
        u"AddToList",   u"Clear"})
    EXPECT_GE(automation::findMember(AnswerRecord::classTable(), name), 0);
}

TEST(AnswerRecord, IndexesOutsideReadEmptyAndDropWrites) {
  AnswerRecord record;
  record.addEntry(u"LEA0", {u"first", u"second", u"extra", u"description"});
  EXPECT_EQ(at(record, u"CMD", 0), u"LEA0");
  EXPECT_EQ(at(record, u"DescriptionData", 0), u"description");
  EXPECT_EQ(at(record, u"FirstData", -1), u"");
  EXPECT_EQ(at(record, u"FirstData", 1), u"");
  automation::Argument write[] = {byVal(std::int16_t{1}), byVal(std::u16string(u"x"))};
  record.invoke(u"FirstData", automation::CallKind::put, write);
  EXPECT_EQ(toLong(get(record, u"Count")), 1);
  write[0].value = std::int16_t{0};
  record.invoke(u"FirstData", automation::CallKind::put, write);
  EXPECT_EQ(at(record, u"FirstData", 0), u"x");
}

TEST(AnswerRecord, MessageCanBeWritten) {
  AnswerRecord record;
  put(record, u"Message", std::u16string(u"done"));
  EXPECT_EQ(toText(get(record, u"message")), u"done");
  EXPECT_THROW(put(record, u"ObjectID", std::u16string(u"2")), AutomationError);
}

TEST(AnswerRecord, GrowsAndClears) {
  AnswerRecord record;
  automation::call(record, u"AddToList", {byVal(std::u16string(u"LEA0"))});
  EXPECT_EQ(toLong(get(record, u"Count")), 1);
  EXPECT_EQ(at(record, u"FirstData", 0), u"");
  automation::call(record, u"Clear");
  EXPECT_EQ(toLong(get(record, u"Count")), 0);
}

TEST(AnswerRecord, AnOmittedMemberFailsAlone) {
  AnswerRecord record;
  record.omit(u"message");
  EXPECT_THROW(get(record, u"Message"), AutomationError);
  EXPECT_EQ(toLong(get(record, u"ErrCode")), 0);
}

TEST(AnswerRecord, TakesOverTheHeadOfTheRequest) {
  AnswerRecord request, answer;
  put(request, u"Tag", std::u16string(u"10"));
  put(request, u"Mode", std::int16_t{2});
  put(request, u"Message", std::u16string(u"not for the answer"));
  request.omit(u"Key");
  answer.copyHead(request);
  EXPECT_EQ(toText(get(answer, u"Tag")), u"10");
  EXPECT_EQ(toLong(get(answer, u"Mode")), 2);
  EXPECT_EQ(toText(get(answer, u"Key")), u"");
  EXPECT_EQ(toText(get(answer, u"Message")), u"");
}

TEST(AnswerRecord, HoldsMoreEntriesThanSixteenBitsCount) {
  AnswerRecord record;
  for (int i = 0; i < 40000; ++i) record.addEntry(u"LEA0", {});
  EXPECT_EQ(toLong(get(record, u"Count")), 40000);
}

}  // namespace
}  // namespace vordane::zulsim
