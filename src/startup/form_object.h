// The window as other programs call it: its public members by name, outside the type library. It outlives
// the window safely; holding it keeps no process alive.
#pragma once

#include "platform/member_table.h"

namespace vordane {
class dlgFaultDisplay;
}

namespace vordane::startup {

class FormObject final : public automation::TableObject {
 public:
  explicit FormObject(dlgFaultDisplay& form) : form_(&form) {}
  const automation::ClassTable& table() const override;
  void detach() { form_ = nullptr; }

 protected:
  // After the unload every member succeeds and does nothing, but for the one late answer.
  automation::Value invokeMember(std::size_t member, automation::CallKind kind,
                                 std::span<automation::Argument> arguments) override;

 private:
  dlgFaultDisplay* form_;
};

}  // namespace vordane::startup
