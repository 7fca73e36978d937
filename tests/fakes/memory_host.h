// A host that lends everything a host has and writes down what it is told.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "fakes/memory_exchange.h"
#include "fakes/scripted_object.h"

namespace vordane::fakes {

class MemoryHost : public ScriptedObject {
 public:
  explicit MemoryHost(Trace& trace)
      : exchange(std::make_shared<MemoryExchange>(trace)),
        access(std::make_shared<ScriptedObject>()),
        trace_(trace) {
    on(u"oPBX", [this](auto) { return automation::Value(automation::ObjectRef(exchange)); });
    on(u"oZUL", [this](auto) { return automation::Value(automation::ObjectRef(access)); });
    for (const char16_t* name :
         {u"ShowMessage", u"ShowCode", u"TurnOnFlow", u"TurnOffFlow", u"DisplayHelp", u"UnloadChild",
          u"UnloadChild2", u"EndCreateSchedule", u"EndProcess", u"REGComData", u"PrintReport"})
      on(name, [this, name](auto arguments) { return told(name, arguments); });
    on(u"GetComData", [this](auto arguments) -> automation::Value {
      told(u"GetComData", arguments);
      arguments[2].value = data[automation::toText(arguments[1].value)];
      return {};
    });
    access->on(u"GetMPVersion", [this](auto arguments) -> automation::Value {
      told(u"GetMPVersion", arguments);
      return version;
    });
    access->on(u"getsysinfo", [this](auto arguments) -> automation::Value {
      told(u"getsysinfo", arguments);
      return sysInfo;
    });
  }

  // Called after the line was written: what a host does while it is told something.
  std::map<std::u16string, std::function<void()>> meanwhile;
  std::map<std::u16string, std::u16string> data;
  std::u16string version = u"SC-1000 N1";
  automation::Value sysInfo = std::int16_t{0};
  std::shared_ptr<MemoryExchange> exchange;
  std::shared_ptr<ScriptedObject> access;

 private:
  automation::Value told(std::u16string_view name, std::span<automation::Argument> arguments) {
    std::string line = text::toUtf8(name);
    for (const automation::Argument& argument : arguments)
      line += " " + text::toUtf8(automation::toText(argument.value)) + (argument.byReference ? "&" : "");
    trace_.push_back(line);
    const auto action = meanwhile.find(std::u16string(name));
    if (action != meanwhile.end()) action->second();
    return std::u16string{};
  }

  Trace& trace_;
};

}  // namespace vordane::fakes
