// The record of a file request: a property bag with a list of file names, offered to the exchange server and
// to hosts; this program itself sends none.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/member_table.h"

namespace vordane {

class cSLVRequest : public automation::TableObject {
 public:
  static const automation::ClassTable& classTable();
  const automation::ClassTable& table() const override { return classTable(); }

  // `timeTag`: the moment of creation as text in the workstation's short format.
  explicit cSLVRequest(std::u16string timeTag) : TimeTag(std::move(timeTag)) {}

  std::int16_t Mode = 0;
  std::u16string Key, LoginID, RequestID;
  std::int16_t CommandType = 0;
  std::u16string PBXName, PBXNumber, Tag, TimeTag, OfficeName;
  std::uint8_t AreaNum = 0, ProcessorKind = 0, SensSW = 0;
  bool ShowBusy = true;
  std::int32_t ErrCount = 0, ErrCode = 0;

  // Throws AutomationError (run-time error 6, overflow) at the 32,768th name.
  void AddFileName(std::u16string_view argFileName);
  void Clear() { names_.clear(); }
  std::int16_t FileCount() const { return static_cast<std::int16_t>(names_.size()); }
  // "" for an index out of range.
  std::u16string FileName(std::int32_t argIndex) const;

 protected:
  automation::Value invokeMember(std::size_t member, automation::CallKind kind,
                                 std::span<automation::Argument> arguments) override;

 private:
  std::vector<std::u16string> names_;
};

}  // namespace vordane
