// The host object that the add-in gets as `Parent`: every member a host lends, each call of it in the trace.
// Members can be taken away, made to fail, to answer late or to end the process.
#pragma once

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "devhost/core/environment.h"
#include "devhost/core/trace.h"
#include "platform/automation.h"

namespace vordane::devhost {

// What a call of a member brings in place of its service: a value (of GetComData what it fills in) or an
// error.
using Answer = std::variant<automation::Value, automation::AutomationError>;

// How a member departs from serving its call.
struct Behaviour {
  bool omitted = false;
  std::optional<automation::AutomationError> raises;
  int pause = 0;  // milliseconds, before anything else but the trace
  bool dies = false;
  // Words: given at each call, and waited for before the call returns. A text limits them to calls whose
  // first argument begins with it.
  struct Word {
    std::u16string name, text;
  };
  std::optional<Word> gives, holds;
  std::deque<std::optional<Answer>> next;  // of its next calls, one each; nothing: as usual
};

// The ten arguments of PrintReport.
struct ReportRequest {
  std::u16string database, reportFile, selection;
  std::int16_t option = 0;
  std::u16string sort[6];
};

// What the host's members know and use. Others may hold a host object for longer than the host itself is
// there: once it is closed, every call on it fails.
struct HostState {
  Environment& environment;
  Trace& trace;
  automation::ObjectRef exchangeServer = {};  // oPBX; null: Nothing
  std::int32_t systemInfo = 0;
  std::u16string version = {};                          // of the main processor
  std::map<std::u16string, Behaviour> behaviours = {};  // by the member's name in small letters
  std::map<std::pair<std::u16string, std::u16string>, std::u16string> commonData =
      {};                                                           // by application and key
  std::function<std::u16string(const ReportRequest&)> report = {};  // "" or the reason why not
  bool closed = false;

  Behaviour& behaviour(std::u16string_view member);
  bool omitted(std::u16string_view member) const;
};

class Host : public automation::Object {
 public:
  explicit Host(std::shared_ptr<HostState> state);
  automation::Value invoke(std::u16string_view member, automation::CallKind kind,
                           std::span<automation::Argument> arguments) override;
  bool hasMember(std::u16string_view member) const override;

  // Every name that `omit`, `raise`, `slow` and `die` of a script can be said of, those of the lent objects
  // included.
  static bool knowsMember(std::u16string_view member);

 private:
  std::shared_ptr<HostState> state_;
  automation::ObjectRef access_;  // oZUL
};

// oPBX as the host lends it: the exchange server itself with a trace line for each call and each result.
class TracedServer : public automation::Object {
 public:
  TracedServer(const std::shared_ptr<HostState>& state, automation::ObjectRef server)
      : state_(state), server_(std::move(server)) {}
  automation::Value invoke(std::u16string_view member, automation::CallKind kind,
                           std::span<automation::Argument> arguments) override;
  bool hasMember(std::u16string_view member) const override;

 private:
  std::weak_ptr<HostState> state_;  // which holds this object as its oPBX
  automation::ObjectRef server_;
};

}  // namespace vordane::devhost
