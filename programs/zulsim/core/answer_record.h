// The record that the exchange server fills and hands to CallBack: the members of cListRequest and one of
// its own, Message. Unlike the caller's record its Count is not held to 16 bits, as on a real exchange
// with a long list.
#pragma once

#include <array>
#include <functional>
#include <string>
#include <vector>

#include "platform/member_table.h"
#include "zulsim/core/scenario.h"

namespace vordane::zulsim {

class AnswerRecord : public automation::TableObject {
 public:
  static const automation::ClassTable& classTable();
  const automation::ClassTable& table() const override { return classTable(); }

  // Takes over what the caller's record says of itself; a member that it lacks keeps its initial value.
  void copyHead(automation::Object& request);
  void addEntry(std::u16string_view command, const Entry& entry);
  void omit(std::u16string_view member);
  // Called before each access from outside.
  void watch(std::function<void()> watcher) { watcher_ = std::move(watcher); }

  // The scalar members by name, Count and ObjectID excepted.
  automation::Value scalar(std::u16string_view name) const;
  void setScalar(std::u16string_view name, automation::Value value);

 protected:
  automation::Value invokeMember(std::size_t member, automation::CallKind kind,
                                 std::span<automation::Argument> arguments) override;

 private:
  static constexpr std::size_t columnCount = 8;
  using Row = std::array<std::u16string, columnCount>;

  automation::Value column(std::size_t column, automation::CallKind kind,
                           std::span<automation::Argument> arguments);
  automation::Value addToList(std::span<automation::Argument> arguments);

  std::vector<automation::Value> scalars_ = initialScalars();
  static std::vector<automation::Value> initialScalars();
  std::vector<Row> rows_;
  std::vector<std::size_t> omitted_;
  std::function<void()> watcher_;
};

}  // namespace vordane::zulsim
