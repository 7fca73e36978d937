#include "pbx/cSLVRequest.h"

#include "pbx/cListRequest.h"
#include "pbx/record_fields.h"

namespace vordane {
namespace {

using automation::Member;
using automation::MemberKind;
using automation::Parameter;
using automation::Type;
using automation::Value;

constexpr Parameter index[] = {{u"argIndex", Type::integer}};
constexpr Parameter fileName[] = {{u"argFileName", Type::text}};

constexpr Member members[] = {
    {u"Mode", 1, MemberKind::readWrite, Type::integer},
    {u"Key", 2, MemberKind::readWrite, Type::text},
    {u"ObjectID", 3, MemberKind::readOnly, Type::integer},
    {u"LoginID", 4, MemberKind::readWrite, Type::text},
    {u"RequestID", 5, MemberKind::readWrite, Type::text},
    {u"CommandType", 6, MemberKind::readWrite, Type::integer},
    {u"PBXName", 7, MemberKind::readWrite, Type::text},
    {u"PBXNumber", 8, MemberKind::readWrite, Type::text},
    {u"Tag", 9, MemberKind::readWrite, Type::text},
    {u"TimeTag", 10, MemberKind::readWrite, Type::text},
    {u"OfficeName", 11, MemberKind::readWrite, Type::text},
    {u"AreaNum", 12, MemberKind::readWrite, Type::byte},
    {u"ProcessorKind", 13, MemberKind::readWrite, Type::byte},
    {u"SensSW", 14, MemberKind::readWrite, Type::byte},
    {u"ShowBusy", 15, MemberKind::readWrite, Type::boolean},
    {u"FileCount", 16, MemberKind::readOnly, Type::integer},
    {u"ErrCount", 17, MemberKind::readWrite, Type::longInteger},
    {u"ErrCode", 18, MemberKind::readWrite, Type::longInteger},
    {u"FileName", 19, MemberKind::readOnly, Type::text, index},
    {u"AddFileName", 20, MemberKind::method, Type::none, fileName},
    {u"Clear", 21, MemberKind::method, Type::none},
};

using Record = cSLVRequest;
constexpr pbx::Field<Record> fields[] = {
    &Record::Mode,        &Record::Key,      std::monostate{},       &Record::LoginID, &Record::RequestID,
    &Record::CommandType, &Record::PBXName,  &Record::PBXNumber,     &Record::Tag,     &Record::TimeTag,
    &Record::OfficeName,  &Record::AreaNum,  &Record::ProcessorKind, &Record::SensSW,  &Record::ShowBusy,
    std::monostate{},     &Record::ErrCount, &Record::ErrCode,
};

constexpr std::size_t objectId = automation::positionOf(members, u"ObjectID");
constexpr std::size_t fileCount = automation::positionOf(members, u"FileCount");
constexpr std::size_t name = automation::positionOf(members, u"FileName");
constexpr std::size_t add = automation::positionOf(members, u"AddFileName");
constexpr std::size_t clear = automation::positionOf(members, u"Clear");
static_assert(std::size(fields) == name);

}  // namespace

const automation::ClassTable& cSLVRequest::classTable() {
  static constexpr automation::ClassTable table{u"cSLVRequest",
                                                u"Vordane10013.cSLVRequest",
                                                u"A list of exchange files.",
                                                "{43754F0F-273D-4E2E-8CB8-DE8754E9857D}",
                                                "{A6F0A307-C48E-40FA-B204-786A511F7CA9}",
                                                members};
  return table;
}

void cSLVRequest::AddFileName(std::u16string_view argFileName) {
  if (names_.size() >= cListRequest::maximumCount) pbx::raiseOverflow();
  names_.emplace_back(argFileName);
}

std::u16string cSLVRequest::FileName(std::int32_t argIndex) const {
  if (argIndex < 0 || argIndex >= FileCount()) return {};
  return names_[static_cast<std::size_t>(argIndex)];
}

Value cSLVRequest::invokeMember(std::size_t member, automation::CallKind kind,
                                std::span<automation::Argument> arguments) {
  switch (member) {
    case objectId:
      return std::int16_t{2};  // a number here, a text in cListRequest
    case fileCount:
      return FileCount();
    case name:
      return FileName(std::get<std::int16_t>(arguments[0].value));
    case add:
      AddFileName(std::get<std::u16string>(arguments[0].value));
      return {};
    case clear:
      Clear();
      return {};
    default:
      break;
  }
  if (!automation::isPut(kind)) return pbx::readField<Record>(*this, fields[member]);
  pbx::writeField<Record>(*this, fields[member], arguments[0].value);
  return {};
}

}  // namespace vordane
