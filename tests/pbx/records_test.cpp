#include <gtest/gtest.h>

#include "pbx/cListRequest.h"
#include "pbx/cSLVRequest.h"
#include "platform/automation.h"

namespace vordane {
namespace {

using namespace std::string_literals;
using automation::AutomationError;
using automation::byVal;
using automation::call;
using automation::get;
using automation::Missing;
using automation::Null;
using automation::put;
using automation::Value;

std::u16string text(automation::Object& object, std::u16string_view name) {
  return std::get<std::u16string>(get(object, name));
}
std::int16_t integer(automation::Object& object, std::u16string_view name) {
  return std::get<std::int16_t>(get(object, name));
}
std::u16string entry(automation::Object& object, std::u16string_view name, int index) {
  return std::get<std::u16string>(get(object, name, {byVal(std::int32_t{index})}));
}
void putEntry(automation::Object& object, std::u16string_view name, int index, std::u16string value) {
  automation::Argument arguments[] = {byVal(std::int32_t{index}), byVal(std::move(value))};
  object.invoke(name, automation::CallKind::put, arguments);
}
std::int32_t errorOf(auto&& action) {
  try {
    action();
  } catch (const AutomationError& failure) {
    return failure.code();
  }
  return 0;
}

TEST(ListRequest, ANewOneHoldsTheInitialValues) {
  cListRequest record;
  for (const char16_t* name :
       {u"Key", u"PBXName", u"PBXNumber", u"LoginID", u"Tag", u"RequestID", u"TimeTag"})
    EXPECT_EQ(get(record, name), Value(u""s)) << "a text";
  EXPECT_EQ(get(record, u"Mode"), Value(std::int16_t{0}));
  EXPECT_EQ(get(record, u"CompIndication"), Value(std::int16_t{0}));
  EXPECT_EQ(get(record, u"ObjectID"), Value(u"1"s));
  EXPECT_EQ(get(record, u"ShowBusy"), Value(true));
  EXPECT_EQ(get(record, u"WaitFlag"), Value(true));
  EXPECT_EQ(get(record, u"CommandType"), Value(std::int16_t{20}));
  EXPECT_EQ(get(record, u"Count"), Value(std::int16_t{0}));
  EXPECT_EQ(get(record, u"ErrCode"), Value(std::int32_t{0}));
}

TEST(ListRequest, MembersStandInTheirOrderWithRunningNumbers) {
  const char16_t* expected[] = {
      u"Mode",      u"Key",       u"CompIndication", u"ObjectID",  u"PBXName",
      u"PBXNumber", u"ShowBusy",  u"WaitFlag",       u"LoginID",   u"Tag",
      u"RequestID", u"TimeTag",   u"CommandType",    u"Count",     u"ErrCode",
      u"CMD",       u"FirstData", u"SecondData",     u"ExtraData", u"DescriptionData",
      u"CK",        u"ERMFP",     u"MSGFP",          u"AddToList", u"Clear"};
  const auto& members = cListRequest::classTable().members;
  ASSERT_EQ(members.size(), std::size(expected));
  for (std::size_t i = 0; i < members.size(); ++i) {
    EXPECT_EQ(members[i].name, expected[i]);
    EXPECT_EQ(members[i].dispid, static_cast<int>(i) + 1);
  }
}

TEST(ListRequest, PropertiesKeepWhatIsWrittenAndConvertIt) {
  cListRequest record;
  put(record, u"mode", u"2"s);
  put(record, u"SHOWBUSY", std::int16_t{0});
  put(record, u"Key", std::int32_t{70001});
  put(record, u"ErrCode", u"-61"s);
  EXPECT_EQ(record.Mode, 2);
  EXPECT_FALSE(record.ShowBusy);
  EXPECT_EQ(record.Key, u"70001");
  EXPECT_EQ(record.ErrCode, -61);
  EXPECT_EQ(errorOf([&] { put(record, u"Mode", std::int32_t{40000}); }), automation::error::overflow);
  EXPECT_EQ(errorOf([&] { put(record, u"Mode", u"two"s); }), automation::error::typeMismatch);
}

TEST(ListRequest, ReadOnlyAndUnknownMembersFail) {
  cListRequest record;
  EXPECT_EQ(errorOf([&] { put(record, u"Count", std::int16_t{3}); }), automation::error::memberNotFound);
  EXPECT_EQ(errorOf([&] { put(record, u"ObjectID", u"2"s); }), automation::error::memberNotFound);
  EXPECT_EQ(errorOf([&] { get(record, u"Message"); }), automation::error::unknownName);
}

TEST(ListRequest, OneCommandAloneHasEmptyData) {
  cListRequest record;
  call(record, u"AddToList", {byVal(u"LEA0"s)});
  EXPECT_EQ(integer(record, u"Count"), 1);
  EXPECT_EQ(entry(record, u"CMD", 0), u"LEA0");
  for (const char16_t* name :
       {u"FirstData", u"SecondData", u"ExtraData", u"DescriptionData", u"CK", u"ERMFP", u"MSGFP"})
    EXPECT_EQ(entry(record, name, 0), u"");
}

TEST(ListRequest, OmittedAndNullDataAreStoredEmpty) {
  cListRequest record;
  call(record, u"AddToList",
       {byVal(u"EA1"s), byVal(Missing{}), byVal(Null{}), byVal(Missing{}), byVal(Null{})});
  call(record, u"AddToList", {byVal(u"EA1"s), byVal(u"00"s), byVal(u"CCC"s), byVal(u"e"s), byVal(u"p"s)});
  EXPECT_EQ(entry(record, u"SecondData", 0), u"");
  EXPECT_EQ(entry(record, u"FirstData", 1), u"00");
  EXPECT_EQ(entry(record, u"SecondData", 1), u"CCC");
  EXPECT_EQ(entry(record, u"ExtraData", 1), u"e");
  EXPECT_EQ(entry(record, u"DescriptionData", 1), u"p");
  EXPECT_EQ(errorOf([&] {
              call(record, u"AddToList", {byVal(u"EA1"s), byVal(Null{})});
            }),
            automation::error::typeMismatch);
  EXPECT_EQ(errorOf([&] { call(record, u"AddToList"); }), automation::error::badParameterCount);
  EXPECT_EQ(integer(record, u"Count"), 2);
}

TEST(ListRequest, AnIndexOutOfRangeReadsEmptyAndDropsAWrite) {
  cListRequest record;
  record.AddToList(u"A", u"1");
  for (int outside : {-1, 1, 32767, -32768}) {
    EXPECT_EQ(entry(record, u"FirstData", outside), u"");
    putEntry(record, u"FirstData", outside, u"lost");
  }
  EXPECT_EQ(entry(record, u"FirstData", 0), u"1");
  EXPECT_EQ(integer(record, u"Count"), 1);
}

TEST(ListRequest, EveryColumnIsWrittenByItself) {
  cListRequest record;
  record.AddToList(u"");
  const char16_t* columns[] = {u"CMD", u"FirstData", u"SecondData", u"ExtraData", u"DescriptionData",
                               u"CK",  u"ERMFP",     u"MSGFP"};
  for (const char16_t* name : columns) putEntry(record, name, 0, name);
  for (const char16_t* name : columns) EXPECT_EQ(entry(record, name, 0), name);
}

TEST(ListRequest, ClearEmptiesTheListsAndKeepsTheRest) {
  cListRequest record;
  record.CommandType = 7;
  record.LoginID = u"L1";
  for (int i = 0; i < 3; ++i) record.AddToList(u"C", u"d");
  call(record, u"Clear");
  EXPECT_EQ(integer(record, u"Count"), 0);
  EXPECT_EQ(entry(record, u"CMD", 0), u"");
  EXPECT_EQ(integer(record, u"CommandType"), 7);
  EXPECT_EQ(text(record, u"LoginID"), u"L1");
}

TEST(ListRequest, The32768thEntryOverflows) {
  cListRequest record;
  for (int i = 0; i < 32767; ++i) record.AddToList(u"C");
  EXPECT_EQ(integer(record, u"Count"), 32767);
  EXPECT_EQ(errorOf([&] { call(record, u"AddToList", {byVal(u"C"s)}); }),
            static_cast<std::int32_t>(0x800A0006));
  EXPECT_EQ(integer(record, u"Count"), 32767);
  EXPECT_EQ(entry(record, u"CMD", 32766), u"C");
}

TEST(SLVRequest, ANewOneHoldsTheInitialValues) {
  cSLVRequest record(u"11/21/2026 01:02:03");
  EXPECT_EQ(get(record, u"ObjectID"), Value(std::int16_t{2}));
  EXPECT_EQ(text(record, u"TimeTag"), u"11/21/2026 01:02:03");
  for (const char16_t* name :
       {u"Key", u"LoginID", u"RequestID", u"PBXName", u"PBXNumber", u"Tag", u"OfficeName"})
    EXPECT_EQ(text(record, name), u"");
  for (const char16_t* name : {u"Mode", u"CommandType", u"FileCount"}) EXPECT_EQ(integer(record, name), 0);
  for (const char16_t* name : {u"AreaNum", u"ProcessorKind", u"SensSW"})
    EXPECT_EQ(get(record, name), Value(std::uint8_t{0}));
  EXPECT_EQ(get(record, u"ShowBusy"), Value(true));
  for (const char16_t* name : {u"ErrCount", u"ErrCode"}) EXPECT_EQ(get(record, name), Value(std::int32_t{0}));
}

TEST(SLVRequest, KeepsItsFileNames) {
  cSLVRequest record(u"now");
  call(record, u"AddFileName", {byVal(u"a.dat"s)});
  call(record, u"AddFileName", {byVal(u"b.dat"s)});
  EXPECT_EQ(integer(record, u"FileCount"), 2);
  EXPECT_EQ(entry(record, u"FileName", 1), u"b.dat");
  EXPECT_EQ(entry(record, u"FileName", 2), u"");
  EXPECT_EQ(entry(record, u"FileName", -1), u"");
  call(record, u"Clear");
  EXPECT_EQ(integer(record, u"FileCount"), 0);
  EXPECT_EQ(entry(record, u"FileName", 0), u"");
}

TEST(SLVRequest, The32768thNameOverflows) {
  cSLVRequest record(u"now");
  for (int i = 0; i < 32767; ++i) record.AddFileName(u"f");
  EXPECT_EQ(errorOf([&] { record.AddFileName(u"f"); }), static_cast<std::int32_t>(0x800A0006));
  EXPECT_EQ(record.FileCount(), 32767);
}

TEST(SLVRequest, BytesRefuseWhatDoesNotFit) {
  cSLVRequest record(u"now");
  put(record, u"AreaNum", std::int16_t{255});
  EXPECT_EQ(record.AreaNum, 255);
  EXPECT_EQ(errorOf([&] { put(record, u"AreaNum", std::int16_t{256}); }), automation::error::overflow);
  EXPECT_EQ(errorOf([&] { put(record, u"FileName", u"x"s); }), automation::error::memberNotFound);
}

}  // namespace
}  // namespace vordane
