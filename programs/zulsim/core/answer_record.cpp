#include "zulsim/core/answer_record.h"

#include <algorithm>

namespace vordane::zulsim {
namespace {

using automation::Argument;
using automation::AutomationError;
using automation::CallKind;
using automation::ClassTable;
using automation::Member;
using automation::MemberKind;
using automation::Parameter;
using automation::Type;
using automation::Value;

constexpr Parameter index[] = {{u"Index", Type::longInteger}};
constexpr Parameter entry[] = {{u"CMD", Type::text},
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
    {u"Count", 14, MemberKind::readOnly, Type::longInteger},
    {u"ErrCode", 15, MemberKind::readWrite, Type::longInteger},
    {u"Message", 16, MemberKind::readWrite, Type::text},
    {u"CMD", 17, MemberKind::readWrite, Type::text, index},
    {u"FirstData", 18, MemberKind::readWrite, Type::text, index},
    {u"SecondData", 19, MemberKind::readWrite, Type::text, index},
    {u"ExtraData", 20, MemberKind::readWrite, Type::text, index},
    {u"DescriptionData", 21, MemberKind::readWrite, Type::text, index},
    {u"CK", 22, MemberKind::readWrite, Type::text, index},
    {u"ERMFP", 23, MemberKind::readWrite, Type::text, index},
    {u"MSGFP", 24, MemberKind::readWrite, Type::text, index},
    {u"AddToList", 25, MemberKind::method, Type::none, entry},
    {u"Clear", 26, MemberKind::method, Type::none},
};

constexpr std::size_t countMember = 13, scalarCount = 16, firstColumn = 16, addToListMember = 24;

constexpr ClassTable recordTable{u"cListAnswer",
                                 u"",
                                 u"The answered record of a simulated exchange.",
                                 "{5C1B0E52-8A0F-4B36-9B7D-6E1D3C9A4F12}",
                                 "{5C1B0E53-8A0F-4B36-9B7D-6E1D3C9A4F12}",
                                 members};

std::size_t positionOf(std::u16string_view name) {
  const int position = automation::findMember(recordTable, name);
  if (position < 0) throw AutomationError(automation::error::unknownName, std::u16string(name));
  return static_cast<std::size_t>(position);
}

std::u16string textOr(const Value& value) {
  return automation::isMissing(value) ? std::u16string{} : automation::toText(value);
}

}  // namespace

const ClassTable& AnswerRecord::classTable() {
  return recordTable;
}

std::vector<Value> AnswerRecord::initialScalars() {
  std::vector<Value> values(scalarCount, std::u16string{});
  for (std::size_t i = 0; i < scalarCount; ++i) {
    if (members[i].type == Type::integer) values[i] = std::int16_t{0};
    if (members[i].type == Type::longInteger) values[i] = std::int32_t{0};
    if (members[i].type == Type::boolean) values[i] = true;
  }
  values[positionOf(u"ObjectID")] = std::u16string(u"1");
  values[positionOf(u"CommandType")] = std::int16_t{20};
  return values;
}

Value AnswerRecord::scalar(std::u16string_view name) const {
  return scalars_.at(positionOf(name));
}

void AnswerRecord::setScalar(std::u16string_view name, Value value) {
  scalars_.at(positionOf(name)) = std::move(value);
}

void AnswerRecord::copyHead(automation::Object& request) {
  for (std::size_t i = 0; i < scalarCount; ++i) {
    if (members[i].kind != MemberKind::readWrite || members[i].name == u"Message") continue;
    try {
      scalars_[i] = automation::coerce(automation::get(request, members[i].name),
                                       {members[i].name, members[i].type}, 0);
    } catch (const AutomationError&) {
      // A record of another class may lack it.
    }
  }
}

void AnswerRecord::addEntry(std::u16string_view command, const Entry& added) {
  Row row;
  row[0] = command;
  row[1] = added.FirstData;
  row[2] = added.SecondData;
  row[3] = added.ExtraData;
  row[4] = added.DescriptionData;
  rows_.push_back(std::move(row));
}

void AnswerRecord::omit(std::u16string_view member) {
  const int position = automation::findMember(recordTable, member);
  if (position >= 0) omitted_.push_back(static_cast<std::size_t>(position));
}

Value AnswerRecord::invokeMember(std::size_t member, CallKind kind, std::span<Argument> arguments) {
  if (watcher_) watcher_();
  if (std::find(omitted_.begin(), omitted_.end(), member) != omitted_.end())
    throw AutomationError(automation::error::memberNotFound);
  if (member == addToListMember) return addToList(arguments);
  if (member > addToListMember) {
    rows_.clear();
    return automation::Empty{};
  }
  if (member >= firstColumn) return column(member - firstColumn, kind, arguments);
  if (member == countMember) return static_cast<std::int32_t>(rows_.size());
  if (!automation::isPut(kind)) return scalars_[member];
  scalars_[member] = arguments.back().value;
  return automation::Empty{};
}

Value AnswerRecord::column(std::size_t column, CallKind kind, std::span<Argument> arguments) {
  const std::int32_t row = automation::toLong(arguments.front().value);
  const bool inside = row >= 0 && static_cast<std::size_t>(row) < rows_.size();
  if (!automation::isPut(kind))
    return inside ? rows_[static_cast<std::size_t>(row)][column] : std::u16string{};
  if (inside) rows_[static_cast<std::size_t>(row)][column] = automation::toText(arguments.back().value);
  return automation::Empty{};
}

Value AnswerRecord::addToList(std::span<Argument> arguments) {
  addEntry(automation::toText(arguments[0].value), {textOr(arguments[1].value), textOr(arguments[2].value),
                                                    textOr(arguments[3].value), textOr(arguments[4].value)});
  return automation::Empty{};
}

}  // namespace vordane::zulsim
