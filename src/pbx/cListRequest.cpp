#include "pbx/cListRequest.h"

#include "pbx/record_fields.h"

namespace vordane {
namespace {

using automation::Member;
using automation::MemberKind;
using automation::Parameter;
using automation::Type;
using automation::Value;

constexpr Parameter index[] = {{u"Index", Type::integer}};

// The exchange server's own programs leave data fields out or hand over Null; FD alone refuses a Null.
constexpr Parameter addToList[] = {{u"CMD", Type::text},
                                   {u"FD", Type::text, true},
                                   {u"SD", Type::text, true, true},
                                   {u"ED", Type::text, true, true},
                                   {u"PDesc", Type::text, true, true}};

constexpr Member members[] = {
    {u"Mode", 1, MemberKind::readWrite, Type::integer},
    {u"Key", 2, MemberKind::readWrite, Type::text},
    {u"CompIndication", 3, MemberKind::readWrite, Type::integer},
    {u"ObjectID", 4, MemberKind::readOnly, Type::text},
    {u"PBXName", 5, MemberKind::readWrite, Type::text},
    {u"PBXNumber", 6, MemberKind::readWrite, Type::text},
    {u"ShowBusy", 7, MemberKind::readWrite, Type::boolean},
    {u"WaitFlag", 8, MemberKind::readWrite, Type::boolean},
    {u"LoginID", 9, MemberKind::readWrite, Type::text},
    {u"Tag", 10, MemberKind::readWrite, Type::text},
    {u"RequestID", 11, MemberKind::readWrite, Type::text},
    {u"TimeTag", 12, MemberKind::readWrite, Type::text},
    {u"CommandType", 13, MemberKind::readWrite, Type::integer},
    {u"Count", 14, MemberKind::readOnly, Type::integer},
    {u"ErrCode", 15, MemberKind::readWrite, Type::longInteger},
    {u"CMD", 16, MemberKind::readWrite, Type::text, index},
    {u"FirstData", 17, MemberKind::readWrite, Type::text, index},
    {u"SecondData", 18, MemberKind::readWrite, Type::text, index},
    {u"ExtraData", 19, MemberKind::readWrite, Type::text, index},
    {u"DescriptionData", 20, MemberKind::readWrite, Type::text, index},
    {u"CK", 21, MemberKind::readWrite, Type::text, index},
    {u"ERMFP", 22, MemberKind::readWrite, Type::text, index},
    {u"MSGFP", 23, MemberKind::readWrite, Type::text, index},
    {u"AddToList", 24, MemberKind::method, Type::none, addToList},
    {u"Clear", 25, MemberKind::method, Type::none},
};

constexpr std::size_t objectId = automation::positionOf(members, u"ObjectID");
constexpr std::size_t count = automation::positionOf(members, u"Count");
constexpr std::size_t firstColumn = automation::positionOf(members, u"CMD");
constexpr std::size_t add = automation::positionOf(members, u"AddToList");
constexpr std::size_t clear = automation::positionOf(members, u"Clear");
static_assert(add == firstColumn + cListRequest::columnCount);

using Record = cListRequest;
constexpr pbx::Field<Record> fields[] = {
    &Record::Mode,      &Record::Key,      &Record::CompIndication, std::monostate{}, &Record::PBXName,
    &Record::PBXNumber, &Record::ShowBusy, &Record::WaitFlag,       &Record::LoginID, &Record::Tag,
    &Record::RequestID, &Record::TimeTag,  &Record::CommandType,    std::monostate{}, &Record::ErrCode,
};
static_assert(std::size(fields) == firstColumn);

const std::u16string nothing;

}  // namespace

const automation::ClassTable& cListRequest::classTable() {
  static constexpr automation::ClassTable table{u"cListRequest",
                                                u"Vordane10013.cListRequest",
                                                u"A list of exchange commands and their answers.",
                                                "{DDC132B9-9A00-4175-BD7D-11E10637B184}",
                                                "{A186D002-31F3-470B-83B1-1BDD17521405}",
                                                members};
  return table;
}

void cListRequest::AddToList(std::u16string_view CMD, std::u16string_view FD, std::u16string_view SD,
                             std::u16string_view ED, std::u16string_view PDesc) {
  if (entries_.size() >= maximumCount) pbx::raiseOverflow();
  Entry& entry = entries_.emplace_back();
  const std::u16string_view values[] = {CMD, FD, SD, ED, PDesc};
  for (std::size_t i = 0; i < std::size(values); ++i) entry[i] = values[i];
}

void cListRequest::Clear() {
  entries_.clear();
}

const std::u16string& cListRequest::at(Column column, std::int32_t position) const {
  if (position < 0 || position >= Count()) return nothing;
  return entries_[static_cast<std::size_t>(position)][static_cast<std::size_t>(column)];
}

void cListRequest::set(Column column, std::int32_t position, std::u16string_view value) {
  if (position < 0 || position >= Count()) return;
  entries_[static_cast<std::size_t>(position)][static_cast<std::size_t>(column)] = value;
}

Value cListRequest::indexed(Column column, automation::CallKind kind,
                            std::span<automation::Argument> arguments) {
  const std::int16_t position = std::get<std::int16_t>(arguments[0].value);
  if (!automation::isPut(kind)) return at(column, position);
  set(column, position, std::get<std::u16string>(arguments[1].value));
  return {};
}

Value cListRequest::invokeMember(std::size_t member, automation::CallKind kind,
                                 std::span<automation::Argument> arguments) {
  if (member >= firstColumn && member < add)
    return indexed(static_cast<Column>(member - firstColumn), kind, arguments);
  if (member == objectId) return u"1";  // a text here, a number in cSLVRequest: so servers tell them apart
  if (member == count) return Count();
  if (member == clear) {
    Clear();
    return {};
  }
  if (member == add) {
    const auto part = [&](std::size_t i) { return pbx::textOrEmpty(arguments[i].value); };
    AddToList(part(0), part(1), part(2), part(3), part(4));
    return {};
  }
  if (!automation::isPut(kind)) return pbx::readField<Record>(*this, fields[member]);
  pbx::writeField<Record>(*this, fields[member], arguments[0].value);
  return {};
}

}  // namespace vordane
