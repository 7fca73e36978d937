// The record of a command-list request: a property bag that the exchange server reads and fills.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/member_table.h"

namespace vordane {

class cListRequest : public automation::TableObject {
 public:
  static const automation::ClassTable& classTable();
  const automation::ClassTable& table() const override { return classTable(); }

  std::int16_t Mode = 0;
  std::u16string Key;
  std::int16_t CompIndication = 0;
  std::u16string PBXName, PBXNumber;
  bool ShowBusy = true;
  bool WaitFlag = true;
  std::u16string LoginID, Tag, RequestID, TimeTag;
  std::int16_t CommandType = 20;
  std::int32_t ErrCode = 0;

  enum class Column { CMD, FirstData, SecondData, ExtraData, DescriptionData, CK, ERMFP, MSGFP };
  static constexpr std::size_t columnCount = 8;
  static constexpr std::size_t maximumCount = 32767;  // what the 16-bit count holds

  using Entry = std::array<std::u16string, columnCount>;
  static constexpr std::size_t bytesOfEntry = sizeof(Entry);  // its texts not counted

  // Throws AutomationError (run-time error 6, overflow) at the 32,768th entry.
  void AddToList(std::u16string_view CMD, std::u16string_view FD = {}, std::u16string_view SD = {},
                 std::u16string_view ED = {}, std::u16string_view PDesc = {});
  void Clear();  // frees the texts too
  std::int16_t Count() const { return static_cast<std::int16_t>(entries_.size()); }

  // An index out of range reads "" and drops a write.
  const std::u16string& at(Column column, std::int32_t index) const;
  void set(Column column, std::int32_t index, std::u16string_view value);
  const std::u16string& CMD(std::int32_t index) const { return at(Column::CMD, index); }
  const std::u16string& FirstData(std::int32_t index) const { return at(Column::FirstData, index); }
  const std::u16string& SecondData(std::int32_t index) const { return at(Column::SecondData, index); }
  const std::u16string& ExtraData(std::int32_t index) const { return at(Column::ExtraData, index); }

 protected:
  automation::Value invokeMember(std::size_t member, automation::CallKind kind,
                                 std::span<automation::Argument> arguments) override;

 private:
  automation::Value indexed(Column column, automation::CallKind kind,
                            std::span<automation::Argument> arguments);

  std::vector<Entry> entries_;
};

}  // namespace vordane
