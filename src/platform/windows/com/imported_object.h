// Another program's object, called by name through its IDispatch.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>

#include "platform/automation.h"
#include "platform/windows/com/owned.h"

namespace vordane::com {

// Lives in a shared pointer: a call may bring about that everybody lets go of it, and it is there until the
// call has returned.
class ImportedObject final : public automation::Object, public std::enable_shared_from_this<ImportedObject> {
 public:
  // Holds one reference to each.
  ImportedObject(ComPtr<IDispatch> dispatch, ComPtr<IUnknown> identity);
  ~ImportedObject() override;

  automation::Value invoke(std::u16string_view member, automation::CallKind kind,
                           std::span<automation::Argument> arguments) override;
  bool hasMember(std::u16string_view member) const override;

  IDispatch* dispatch() const { return dispatch_.get(); }

 private:
  DISPID numberOf(std::u16string_view member) const;
  automation::Value invokeEitherWay(DISPID id, WORD flags, std::span<automation::Argument> arguments);

  ComPtr<IDispatch> dispatch_;
  ComPtr<IUnknown> identity_;
  mutable std::unordered_map<std::u16string, DISPID> numbers_;
  bool byValueOnly_ = false;  // it turned typed references down before
};

}  // namespace vordane::com
