// An automation object made of functions, one for each member name: hosts and servers of any behaviour.
#pragma once

#include <functional>
#include <map>
#include <span>
#include <string>
#include <utility>

#include "platform/automation.h"
#include "text/text.h"

namespace vordane::fakes {

class ScriptedObject : public automation::Object {
 public:
  using Member = std::function<automation::Value(std::span<automation::Argument>)>;

  // Replaces what `name` does; names ignore case, as in most kinds of host.
  ScriptedObject& on(std::u16string name, Member member) {
    members_[text::toLower(name)] = std::move(member);
    return *this;
  }
  void remove(std::u16string_view name) { members_.erase(text::toLower(name)); }

  automation::Value invoke(std::u16string_view member, automation::CallKind,
                           std::span<automation::Argument> arguments) override {
    const auto found = members_.find(text::toLower(member));
    if (found == members_.end()) throw automation::AutomationError(automation::error::unknownName);
    const Member action = found->second;  // a member may replace itself while it runs
    return action(arguments);
  }

 private:
  std::map<std::u16string, Member> members_;
};

}  // namespace vordane::fakes
